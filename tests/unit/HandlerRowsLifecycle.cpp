// Rows of the commands that make and remove filters and agents, and keep the filter tables.

#include "HandlerRows.h"

namespace {

#define OPTIONS "Usage: tarnioctl %s <options>\n"
#define FILTER "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
#define VERBOSE "    -v<number>  : enable verbose log\n"
#define COMPONENT "    -m <string> : verbose log component name or id\n"
#define AGENT "    -a <string> : agent name, default agent is kelpco-sfw\n"
#define HELP "    -h          : this help message\n"

}  // namespace

std::vector<HandlerRow> lifecycleRows() {
  return {
      plainRow({"addfilter", "deletefilter"},
               "Create or destroy a filter.\n\n" OPTIONS "    -w <number> : vm world id\n"
               "    -u <string> : vm uuid in the gfy form\n"
               "    -v <number> : vnic index\n"
               "    -f <number> : filter index\n" AGENT
               "    -o <number> : on failure policy, must be 0 or 1\n"
               "    -0 to -9, -A to -F <string> : filter parameter of that number, 0 to 15\n" HELP,
               "-F"),
      plainRow({"createagent"},
               "Create an agent.\n\n" OPTIONS "    -a <string> : agent name\n" HELP, "-a"),
      plainRow({"destroyagent"},
               "Destroy an agent.\n\n" OPTIONS "    -a <string> : agent name\n" HELP, "-a"),
      {.words = {"registeragent"}, .usage = nullptr},
      {.words = {"deleterules"},
       .usage = "Delete all rules of a ruleset.\n\n" OPTIONS FILTER VERBOSE COMPONENT
                "    -r <string> : ruleset to del all rules, e.g., domain-c7\n" HELP,
       .needed = {"-r", "domain-c7"}},
      plainRow({"clearallfilters"},
               "Clear all filters.\n\n" OPTIONS AGENT
               "    -d          : delay destroying disconnected filters\n"
               "    -e          : exclude list\n"
               "    -o          : only destroy disconnected filters\n" HELP,
               "-a"),
      plainRow({"getfiltertables"},
               "Get include and exclude tables.\n\n" OPTIONS AGENT
               "    -n          : print vnic index in the vnic form\n" HELP,
               "-a"),
      plainRow({"setfiltertables"},
               "Set include and exclude tables.\n\n" OPTIONS AGENT
               "    -e          : update exclude table instead of include table\n"
               "    -d          : delete an entry instead of adding an entry\n"
               "    -o          : entry is a host entry\n"
               "    -n <string> : entry is a vnic, vnic form\n" FILTER
               "    -s <number> : slot number for host entry, default is 2\n"
               "    -w <number> : vm world id, used with -n together\n"
               "                  world id can be obtained by /bin/tarn_vm_list.sh\n"
               "    -k          : skip Revalidate VM\n" HELP,
               "-s"),
      plainRow({"clrwgttable"},
               "Remove the weirgate dynamic filter creation entries for an agent.\n\n" OPTIONS
               "    -a <string> : agent name, default kelpco-sfw\n" VERBOSE
               "    -i          : only clear incl tables\n"
               "    -e          : only clear excl tables\n" HELP,
               "-v"),
      plainRow({"revalidatevm"},
               "Revalidate VM(s) according to weirgate tables.\n\n" OPTIONS
               "    -w <number> : vm world id, used with -u together to revalidate a single VM\n"
               "    -u <string> : vm uuid in the gfy form\n" HELP,
               "-w"),
  };
}
