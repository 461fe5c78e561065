// Rows of the commands that show and set features.

#include "HandlerRows.h"

std::vector<HandlerRow> settingsRows() {
  return {
      {.words = {"setfailpolicy"},
       .usage = "Set fail policy.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -p<fail_policy> : fail policy (0: fail_open, 1: fail_close)\n"
                "    -h          : this help message\n",
       .needed = {"-p", "1"},
       .raisesLibraryLevel = false},
      {.words = {"getfailpolicy"},
       .usage = "Get fail policy.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -h          : this help message\n",
       .raisesLibraryLevel = false},
      {.words = {"setverbose"},
       .usage = "Set log level.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -c <comp>   : component, DP or CP\n"
                "    -v <number> : verbose level, from 0 to 3\n"
                "    -h          : this help message\n",
       .missing = nullptr,
       .needed = {"-c", "DP"},
       .verbose = nullptr},
      {.words = {"getspoofguard"},
       .usage = "Get spoofguard setting of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -m <string> : verbose log component name or id\n"
                "    -s          : print statistics\n"
                "    -h          : this help message\n",
       .missingStatus = 0},
      {.words = {"getfloodstat"},
       .usage = "Get flood protection status.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -s          : print syncache rows\n"
                "    -z          : zero flood and syncache counters\n"
                "    -h          : this help message\n",
       .missingUsage = "",
       .verbose = nullptr},
      {.words = {"setfloodconfig"},
       .usage = "Configure flood protection parameters.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -u <number> : UDP active flow limit (0 == no limit)\n"
                "    -i <number> : ICMP active flow limit (0 == no limit)\n"
                "    -t <number> : TCP half-open flow limit (0 == no limit)\n"
                "    -o <number> : OTHER active flow limit (0 == no limit)\n"
                "    -s <0|1>    : SYN cache\n"
                "    -b <hashsize> : number of hash buckets (power of 2)\n"
                "    -r <0|1>    : RST spoofing\n"
                "    -z          : zero counters\n"
                "    -h          : this help message\n",
       .missingUsage = "",
       .verbose = nullptr},
      {.words = {"gettimeout"},
       .usage = "Get connection timeout setting for a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -t <string> : timeout name, all timeouts without it\n"
                "    -v<number>  : enable verbose log\n"
                "    -h          : this help message\n",
       .missing = "ERROR: filter is missing\n"},
      {.words = {"settimeout"},
       .usage = "Set connection timeout setting for a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -t <string> : timeout setting, name=value\n"
                "    -v<number>  : enable verbose log\n"
                "    -h          : this help message\n",
       .missing = "ERROR: filter is missing\n"},
      {.words = {"getkifflags"},
       .usage = "Get kif flag settings for a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -m <string> : verbose log component name or id\n"
                "    -h          : this help message\n",
       .missing = "ERROR: filter is missing\n"},
      {.words = {"setkifflags"},
       .usage = "Set kif flag for a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -n <flagname> : flag name\n"
                "    -e <0|1>    : flag value\n"
                "    -v<number>  : enable verbose log\n"
                "    -h          : this help message\n",
       .missing = "ERROR: filter is missing\n",
       .needed = {"-n", "fast_path", "-e", "1"}},
      // It opens the library before it looks for the filter.
      {.words = {"kiffastpath"},
       .usage = "Set/Get kif fast path rule lookup flag.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -s <number> : set fp flag to 0/1 (disable/enable)\n"
                "    -i          : retrive fp kif configuration\n"
                "    -h          : this help message\n",
       .missing = nullptr,
       .needed = {"-i"},
       .verbose = nullptr,
       .libraryFailed = "ERROR: unable to open firewall library\n"
                        "ERROR: Library handle init failure.\n"},
  };
}
