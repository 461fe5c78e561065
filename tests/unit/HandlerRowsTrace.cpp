// Rows of the commands that trace and reach the inspection process.

#include "HandlerRows.h"

namespace {

#define OPTIONS "Usage: tarnioctl %s <options>\n"
#define HELP "    -h          : this help message\n"

HandlerRow dpiRow() {
  HandlerRow row = plainRow({"getdpiinfo"},
                            "Get VDPI info.\n\n" OPTIONS
                            "    -s          : stats\n"
                            "    -t          : thread status\n"
                            "    -e          : enable tracing\n"
                            "    -d          : disable tracing\n"
                            "    -c          : dump FQDN config\n"
                            "    -l          : load FQDN config\n"
                            "    -m <string> : get uuids matching FQDN\n" HELP,
                            "-m");
  row.getoptIsSilent = true;
  return row;
}

}  // namespace

std::vector<HandlerRow> traceRows() {
  return {
      plainRow({"tracehulld"},
               "Trace hulld process.\n\n" OPTIONS "    -e          : enable tracing\n"
               "    -q          : disable tracing\n"
               "    -s          : tracing status\n"
               "    -c <string> : execute a trace command\n"
               "    -o          : turn on a trace feature\n"
               "    -v<number>  : verbose log level for log commands\n"
               "    -m <string> : verbose log component name or id\n"
               "    -t <number> : addrset update timeout\n" HELP,
               "-c"),
      {.words = {"tracetarn"},
       .usage = "Trace tarn kernel module.\n\n" OPTIONS
                "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
                "    -s          : tracing status\n"
                "    -c <string> : execute a trace command\n"
                "    -m <string> : verbose log component name or id\n"
                "    -v<number>  : verbose log level for log commands\n" HELP,
       .needed = {"-s"},
       .verbose = nullptr,
       .libraryStatus = 0},
      dpiRow(),
  };
}
