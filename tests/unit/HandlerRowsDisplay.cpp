// Rows of the commands that list filters, show what a filter holds, and configure it; and of those
// that have no options.

#include "HandlerRows.h"

namespace {

const char kRulesUsage[] =
    "Get rules of rulesets of a filter.\n\n"
    "Usage: tarnioctl %s <options>\n"
    "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "    -v<number>  : enable verbose log\n"
    "    -m <string> : verbose log component name or id\n"
    "    -r <string> : ruleset to get rules\n"
    "    -s          : print statistics\n"
    "    -d          : print DLB info\n"
    "    -h          : this help message\n";

}  // namespace

std::vector<HandlerRow> displayRows() {
  return {
      {.words = {"help", "getskifferdata", "setskifferdata", "migrate"}, .usage = nullptr},
      plainRow({"getfilters"},
               "Get all available filters in system.\n\n"
               "Usage: tarnioctl %s <options>\n"
               "    -a <string>     : agent name, default agent is kelpco-sfw\n"
               "    -s              : print statistics\n"
               "    -d              : get filter to slowpath distribution\n"
               "    -c <slowpathID> : get slowpath to filter distribution\n"
               "    -n              : get number of filters\n"
               "    -h              : this help message\n",
               "-a"),
      {.words = {"getrules", "getrule"}, .usage = kRulesUsage},
      {.words = {"getaddrsets", "getaddrset"},
       .usage = "Get addrsets of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -m <string> : verbose log component name or id\n"
                "    -a <string> : addrset to get addresses\n"
                "    -s <table|entry|all|clear> : retrieve addrset stats\n"
                "    -o          : always use original filter\n"
                "    -h          : this help message\n"},
      {.words = {"getcontainers"},
       .usage = "Get profiles of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -m <string> : verbose log component name or id\n"
                "    -a <string> : profile to get addresses or attributes\n"
                "    -s <table|entry|all|clear> : retrieve profile stats\n"
                "    -o          : always use original filter\n"
                "    -h          : this help message\n"},
      // Its -f takes no value in the first walk; what is missing is found by the rules.
      {.words = {"getfwconfig"},
       .usage = "Get rules, addrsets and containers of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -m <string> : verbose log component name or id\n"
                "    -i          : print summary info only\n"
                "    -h          : this help message\n",
       .valueOption = "-m",
       .missingUsage = kRulesUsage},
      {.words = {"tarnfwcli"},
       .usage = "Usage: tarnioctl %s <options>\n"
                "    -v <number> : verbose level of output\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -m <string> : verbose log component name or id\n"
                "    -l <file>   : file of config commands\n"
                "    -c <cmd>    : config command\n"
                "    -h          : this help message\n",
       .missing = nullptr},
  };
}
