// Rows of the commands about balancers, ALGs and statistics.

#include "HandlerRows.h"

namespace {

#define OPTIONS "Usage: tarnioctl %s <options>\n"
#define FILTER "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
#define VERBOSE "    -v<number>  : enable verbose log\n"
#define COMPONENT "    -m <string> : verbose log component name or id\n"
#define HELP "    -h          : this help message\n"

constexpr const char* kPlain = "ERROR: filter is missing\n";
constexpr const char* kNamed =
    "verbose level : 2\nweirgate agent: kelpco-sfw\n"
    "weirgate vm uuid: nic-1002672-eth0-kelpco-sfw.2\n";

HandlerRow clearRow() {
  HandlerRow row = directRow("clearfilterstat",
                             "Clear statistics for a filter.\n\n" OPTIONS FILTER VERBOSE HELP);
  row.missingUsage = "";
  return row;
}

}  // namespace

std::vector<HandlerRow> statisticsRows() {
  return {
      {.words = {"getfilterstat"},
       .usage = "Get traffic statistics of a filter.\n\n" OPTIONS FILTER
                "    -z          : reset the stats to zero\n" VERBOSE COMPONENT HELP,
       .missingUsage = ""},
      clearRow(),
      plainRow({"rtt"},
               "retrieve RTT info for a flow.\n\n" OPTIONS FILTER
               "    -i <flowid> : flow id, hexadecimal, as getflows prints it\n"
               "    -r          : reset RTT average\n" HELP,
               "-f"),
      {.words = {"getattrinfo"},
       .usage = "Set connection attribute setting for a filter.\n\n" OPTIONS FILTER
                "    -m <number> : state id\n"
                "    -S <IP Address> : source address\n"
                "    -D <IP Address> : destination address\n"
                "    -s <0-65535> : source port\n"
                "    -d <0-65535> : destination port\n"
                "    -p <TCP,UDP> : protocol, default is TCP\n"
                "    -i <IN, OUT> : direction, default is OUT\n"
                "    -v <number> : enable verbose log\n" HELP,
       .missing = kPlain,
       .needed = {"-m", "1"},
       .verbose = kNamed},
      {.words = {"getstatedpiinfo"},
       .usage = "get state dpi info for a filter.\n\n" OPTIONS FILTER
                "    -s <stateid> : state id, hexadecimal\n" VERBOSE HELP,
       .missing = kPlain,
       .verbose = kNamed},
      {.words = {"getalginfo"},
       .usage = "Print current ALG structure info.\n\n" OPTIONS FILTER
                "    -c <1|0>    : display|omit control flows\n"
                "    -d <1|0>    : display|omit dynamic data flows\n" HELP,
       .verbose = nullptr},
      {.words = {"getlbinfo"},
       .usage = "Get LB configuration.\n\n" OPTIONS FILTER "    -i <number> : lbs ID\n"
                "    -u <UUID>   : lbs UUID\n"
                "    -c          : active lbs only\n"
                "    -a          : both active and stale lbs\n"
                "    -d          : display more info\n" VERBOSE COMPONENT HELP,
       .missingUsage = ""},
      {.words = {"getlbstat"},
       .usage = "Get LB statistics.\n\n" OPTIONS FILTER "    -l <UUID>   : lbs UUID\n"
                "    -u <UUID>   : virtual server or pool UUID\n"
                "    -s          : virtual server statistics\n"
                "    -p          : pool statistics\n"
                "    -d          : display more info\n"
                "    -z          : reset the stats to zero\n" VERBOSE COMPONENT HELP,
       .missingUsage = "",
       .needed = {"-l", "5a43ddda-c21a-632a-4ae1-00505699723f", "-s"}},
  };
}
