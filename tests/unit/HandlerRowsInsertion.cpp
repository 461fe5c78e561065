// Rows of the commands about service insertion.

#include "HandlerRows.h"

namespace {

#define OPTIONS "Usage: tarnioctl %s <options>\n"
#define FILTER "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
#define HELP "    -h          : this help message\n"

// Written out once: the three texts differ in their first line alone.
#define INSTANCE                                                    \
  OPTIONS                                                           \
  "    -i <string> : service instance id\n"                         \
  "    -n <string> : service name\n"                                \
  "    -s <number> : slot, 0 to 15\n"                               \
  "    -d <number> : deploy type, 1 (RIBS), 2 (PLANKIO), 3 (L2),\n" \
  "                  or 4 (L3)\n"                                   \
  "    -t <string> : transport specification\n"                     \
  "       transport is '=' separated string and its first token\n"  \
  "       defines the transport protocol in number, and the rest\n" \
  "       of string defines the options for the protocol:\n"        \
  "       1: RIBS, no option\n"                                     \
  "       2: PLANKIO, no option\n"                                  \
  "       3: MACRED, 3=addrstr=dgtmac=flipdir\n"                    \
  "       4: GRE, 4=addrstr=key=flags=encapProto=gtmac=flipdir\n"   \
  "       11: NONE, no option\n" HELP

/// Those about profiles have a filter, and no line when it is missing.
HandlerRow profileRow(const char* word, const char* usage, const char* valueOption) {
  HandlerRow row = plainRow({word}, usage, valueOption);
  row.takesFilter = true;
  row.missing = nullptr;
  return row;
}

}  // namespace

std::vector<HandlerRow> insertionRows() {
  return {
      plainRow({"createinstance"}, "Create a service instance.\n\n" INSTANCE, "-i"),
      plainRow({"replaceinstance"}, "Replace a service instance.\n\n" INSTANCE, "-n"),
      plainRow({"destroyinstance"}, "Destroy a service instance.\n\n" INSTANCE, "-t"),
      plainRow({"getinstances"},
               "Get service instances.\n\n" OPTIONS "    -i <string> : service instance id\n" HELP,
               "-i"),
      profileRow("createprofile",
                 "Create a service profile for a filter.\n\n" OPTIONS FILTER
                 "    -p <string> : service profile id\n"
                 "    -i <string> : service instance id\n"
                 "    -v <string> : vendor template id\n"
                 "    -t <string> : vendor provided template id\n" HELP,
                 "-p"),
      profileRow("destroyprofile",
                 "Destroy a service profile for a filter.\n\n" OPTIONS FILTER HELP, "-f"),
      profileRow("getprofiles", "Get service profiles.\n\n" OPTIONS FILTER HELP, "-f"),
      plainRow({"gre"},
               "Add a GRE entry.\n\n" OPTIONS "    -a <string> : ip address, e.g., 192.168.1.1\n"
               "    -k <hex>    : key, e.g., 0x8\n"
               "    -f <hex>    : flag, e.g., 0x2000,0\n"
               "    -e <hex>    : encapslated ethertypes, e.g., 0x0800, 0x6558, 0x883e\n"
               "    -m <string> : mac address\n"
               "    -g <string> : guest ip address, e.g., 172.16.1.1\n" HELP,
               "-e"),
      {.words = {"getsisvctable"}, .usage = nullptr},
      {.words = {"getsinshtable"}, .usage = nullptr},
      {.words = {"getsiproxytable"}, .usage = nullptr},
      plainRow({"getsisvmstats"},
               "get svm stats command help.\n\n" OPTIONS
               "    -p <string> : SVM port id, such as 67108875\n" HELP,
               "-p"),
  };
}
