// Requests and replies of the commands on load balancers and ALGs.

#include "CommandFamily.h"

CommandFamily loadBalancerCommands() {
  CommandFamily family;
  family.later = {
      "CTarnFWCmdGetAlgCount",      // 47
      "CTarnFWCmdGetAlgs",          // 47
      "CTarnFWCmdGetAlgPortCount",  // 48
      "CTarnFWCmdGetAlgPorts",      // 48
      "CTarnFWCmdGetLBConfig",      // 86
      "CTarnFWCmdGetLBConfigSize",  // 87
      "CTarnFWCmdGetLBStat",        // 88
      "CTarnFWCmdGetLBStatSize",    // 89
      "CTarnFWCmdClearLBStat",      // 90
  };
  return family;
}
