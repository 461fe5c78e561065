// Rows of the commands about identifiers and what the data path has learned.

#include "HandlerRows.h"

std::vector<HandlerRow> identityRows() {
  return {
      plainRow({"number2uuid", "num2uuid"},
               "Convert coma separated number pairs to uuids.\n\n"
               "Usage: tarnioctl %s <number1,number2>\n"
               "    -b          : toggle byte order\n"
               "    -h          : this help message\n"),
      plainRow({"uuid2number", "uuid2num"},
               "Convert uuids like 5a43ddda-c21a-632a-4ae1-00505699723f to number pairs.\n\n"
               "Usage: tarnioctl %s <uuid>\n"
               "    -b          : toggle byte order\n"
               "    -h          : this help message\n"),
      directRow("getdiscoveredips",
                "Get discovered IPs of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -h          : this help message\n"),
      directRow("setipdiscovery",
                "Set IP discovery related configuration of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -d          : enable DHCP based discovery\n"
                "    -a          : enable ARP based discovery\n"
                "    -t <number> : timeout for entries discoverd by ARP snooping in seconds"
                " (default 2 hours, 7200)\n"
                "    -l <number> : maximum number of ARP snooped entries permitted (max 128)\n"
                "    -h          : this help message\n",
                /*badOption=*/0),
      directRow("cleardiscoveredips",
                "Clear discovered IPs of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -h          : this help message\n",
                /*badOption=*/0),
      {.words = {"getfqdnentries"},
       .usage = "Get fqdn records of a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -d          : delete all entries\n"
                "    -v          : enable verbose log\n"
                "    -h          : this help message\n",
       .verbose = "",
       .raisesLibraryLevel = false,
       .libraryFailed = "ERROR: unable to open firewall library\n"
                        "ERROR: Library handle init failure.\n"},
      {.words = {"getsidcache"},
       .usage = "print uid to sid mapping for a filter.\n\n"
                "Usage: tarnioctl %s <options>\n"
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -v<number>  : enable verbose log\n"
                "    -h          : this help message\n",
       .missing = "ERROR: filter is missing\n",
       .raisesLibraryLevel = false},
      plainRow({"getmeminfo"},
               "Get current memory usage data of datapath.\n\n"
               "Usage: tarnioctl %s <options>\n"
               "    -h          : this help message\n"),
  };
}
