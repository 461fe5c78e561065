// Rows of the commands on shared address sets, export versions, names and layer 7, and of those
// that make direct requests.

#include "HandlerRows.h"

namespace {

#define OPTIONS "Usage: tarnioctl %s <options>\n"
#define FILTER "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
#define VERBOSE "    -v<number>  : enable verbose log\n"
#define COMPONENT "    -m <string> : verbose log component name or id\n"
#define HELP "    -h          : this help message\n"

constexpr const char* kPlain = "ERROR: filter is missing\n";

}  // namespace

std::vector<HandlerRow> featureRows() {
  return {
      {.words = {"getfwstatus"}, .usage = nullptr},
      plainRow({"getthresholds"},
               "Get the event thresholds for CPU, Memory and CPS.\n\n" OPTIONS HELP),
      plainRow({"setthresholds"},
               "Set the event thresholds for CPU, Memory and CPS.\n\n" OPTIONS
               "    -c <number> : Percent number to raise CPU threshold cross event\n"
               "    -p <number> : CPS Number to raise CPS threshold cross event\n" HELP,
               "-c"),
      directRow("setfilterflags",
                "Set flow collection flag setting for a filter.\n\n" OPTIONS FILTER
                "    -p          : L2 Pass Flows\n"
                "    -d          : L2 Drop Flows\n"
                "    -D          : L3 Drop Flows\n"
                "    -I          : L3 Inactive Flows\n"
                "    -A          : L3 Active Flows\n"
                "    -a          : All Flows\n"
                "    -G          : Override global flags\n" HELP
                "    empty option: turn on all flows\n"),
      {.words = {"setsharedaddrset"},
       .usage = "Set shared addrset setting.\n\n" OPTIONS FILTER VERBOSE COMPONENT
                "    -s <0|1>    : set shared addrset setting (0: disable, 1: enable)\n" HELP,
       .missing = kPlain,
       .needed = {"-s", "1"}},
      {.words = {"getsharedaddrset"},
       .usage = "Get shared addrset setting.\n\n" OPTIONS FILTER VERBOSE COMPONENT HELP,
       .missing = kPlain},
      {.words = {"setaddrsetcfg"},
       .usage = "Enable/disable addreset stats collection for a filter.\n\n"
                "Usage: tarnioctl %s <options> <cmd>\n" FILTER "    -a <string> : addrset name\n"
                "    -i <ipaddr> : IP address\n"
                "    -v <number> : enable verbose log\n" COMPONENT HELP "    cmd:\n"
                "    enablestats  : enable addrset stat collection\n"
                "    disablestats : disable addrset stat collection\n"
                "    display      : show stat collection status\n"
                "    setvalid     : set valid flag bit for <ipaddr> within <addrset>\n"
                "    clearvalid   : clear valid flag bit for <ipaddr> within <addrset>\n"
                "    getvalid     : get valid flags for entries within <addrset>\n",
       .operand = "display"},
      {.words = {"seticmperrpktdrop"},
       .usage =
           "Set ICMP err pkt drop enable setting.\n\n" OPTIONS FILTER VERBOSE
           "    -e <0|1>    : set ICMP err pkt drop enable setting (0: disable, 1: enable)\n" HELP,
       .missing = kPlain,
       .needed = {"-e", "1"}},
      {.words = {"getexportversion"},
       .usage = "Get skiffer export version for a filter.\n\n" OPTIONS FILTER VERBOSE HELP,
       .missing = kPlain},
      {.words = {"setexportversion"},
       .usage = "Set skiffer export version for a filter.\n\n" OPTIONS FILTER VERBOSE
                "    -e <number> : export version to set\n" HELP,
       .missing = "ERROR: Filter name is not specified\n",
       .needed = {"-e", "7"},
       .verbose = "verbose level : 2\nweirgate agent: kelpco-sfw\nexport version : 7\n"},
      {.words = {"setexportversionall"},
       .usage = "Set skiffer export version for all kelpco-sfw filters.\n\n" OPTIONS
                "    -a <string> : agent name\n"
                "    -e <number> : export version to set\n"
                "    -r          : read export versions only\n"
                "    -x          : run on BRQV\n" VERBOSE HELP,
       .valueOption = "-e",
       .takesFilter = false,
       .needed = {"-r"},
       .verbose = nullptr},
      {.words = {"setdnsconfigprofile"},
       .usage = "set dns config profile for a filter.\n\n" OPTIONS FILTER VERBOSE
                "    -t <ttl>    : AUTO, MAX or time to live in seconds, Range (0-1024)\n" HELP,
       .missing = kPlain},
      {.words = {"getdnsconfigprofile"},
       .usage = "get dns config profile for a filter.\n\n" OPTIONS FILTER VERBOSE
                "    -t <ttl>    : AUTO, MAX or time to live in seconds, Range (0-1024)\n" HELP,
       .missing = kPlain},
      {.words = {"setcopymode"},
       .usage = "set L7 copy mode for a filter.\n\n" OPTIONS FILTER VERBOSE
                "    -e          : enable L7 copy mode\n"
                "    -d          : disable L7 copy mode\n" HELP,
       .missing = kPlain,
       .needed = {"-e"}},
  };
}
