// Requests and replies of the commands on connections.

#include "CommandFamily.h"

CommandFamily connectionCommands() {
  CommandFamily family;
  family.later = {
      "CTarnFWCmdGetConnectionCount",     // 23
      "CTarnFWCmdGetConnectionStat",      // 24
      "CTarnFWCmdSetConnectionByList",    // 37
      "CTarnFWCmdClearAllConnection",     // 43
      "CTarnFWCmdSetConnectionByFilter",  // 66
      "CTarnFWCmdSetAllConnection",       // 67
  };
  return family;
}
