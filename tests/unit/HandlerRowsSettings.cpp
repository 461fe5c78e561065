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
  };
}
