// Rows of the commands that show flows and connections.

#include "HandlerRows.h"

std::vector<HandlerRow> flowRows() {
  return {
      {.words = {"getflows"},
       .usage = "Get flow records of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -t <number> : refresh interval in seconds\n"
                "    -T <a|i|d>  : type of flows only: active, inactive or drop\n"
                "    -F <number> : flush flows in kernel after fetching, must be 0 or 1\n"
                "    -n          : display flow count numbers only\n"
                "    -R          : reset RTT average\n"
                "    -a          : don't include attributes\n"
                "    -v          : display start and end times\n"
                "    -h          : this help message\n",
       .verbose = nullptr},
      {.words = {"getconnections"},
       .usage = "Get active connections for a filter.\n\n"
                "usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -t <number> : refresh interval in seconds\n"
                "    -h          : this help message\n",
       .verbose = "Setting verbose level to : 2\n",
       .libraryFailed = "ERROR: unable to open firewall library\n"
                        "ERROR: Failed to initialize FW library\n"},
      {.words = {"getconncount"},
       .usage = "Get active connection count for a filter.\n\n"
                "usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -h          : this help message\n",
       .verbose = "Setting verbose level : 2"},
      {.words = {"clrconnection"},
       .usage = "Clear all active connections of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name\n"
                "    -v<number>  : enable verbose log\n"
                "    -h          : this help message\n",
       .verbose = ""},
  };
}
