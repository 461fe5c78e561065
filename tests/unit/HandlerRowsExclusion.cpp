// Rows of the commands about flow exclusion.

#include "HandlerRows.h"

std::vector<HandlerRow> exclusionRows() {
  return {
      {.words = {"getflowexclusion"},
       .usage = "Get current flow exclusion setting of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -l          : print setting in long format\n"
                "    -h          : this help message\n",
       .missing = nullptr,
       .verbose = nullptr,
       .opensLibrary = false},
      // The line about a name that is too long is its own.
      {.words = {"setflowexclusion"},
       .usage = "Set flow exclusion setting of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -g <on|off> : collecting flows\n"
                "    -l <on|off> : collecting non-IP L2 flows\n"
                "    -2 <on|off> : collecting L2 flows\n"
                "    -d <on|off> : collecting flows of dropped packets\n"
                "    -a <on|off> : aggregate source address\n"
                "    -b <on|off> : aggregate dest address\n"
                "    -s <on|off> : aggregate source port\n"
                "    -t <on|off> : aggregate dest port\n"
                "    -p <on|off> : aggregate protocol\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -F <definition> : one flow exclusion definition, repeatable:\n"
                "                  smac|dmac|ethertype|sip|dip|protocol|sport|dport|svnic|dvnic\n"
                "    -h          : this help message\n",
       .valueOption = "-F",
       .takesFilter = false,
       .verbose = nullptr,
       .opensLibrary = false},
  };
}
