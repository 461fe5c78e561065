// Requests and replies of the commands on settings.

#include "CommandFamily.h"

CommandFamily settingsCommands() {
  CommandFamily family;
  family.later = {
      "CTarnFWCmdCreateSpoofGuard",      // 25
      "CTarnFWCmdDeleteSpoofGuard",      // 26
      "CTarnFWCmdCheckSpoofGuard",       // 27
      "CTarnFWCmdGetSpoofGuardStat",     // 28
      "CTarnFWCmdGetKifStat",            // 29
      "CTarnFWCmdClearKifStat",          // 30
      "CTarnFWCmdSetFailPolicy",         // 31
      "CTarnFWCmdEnableVerbose",         // 32
      "CTarnFWCmdDebugComponent",        // 33
      "CTarnFWCmdDebugStatus",           // 34
      "CTarnFWCmdGetFailPolicy",         // 35
      "CTarnFWCmdGetKifFlags",           // 39
      "CTarnFWCmdSetKifFlags",           // 40
      "CTarnFWCmdSetTimeout",            // 41
      "CTarnFWCmdGetTimeout",            // 42
      "CTarnFWCmdConfigICMPErrPktDrop",  // 49
      "CTarnFWCmdSetSkifferExportver",   // 54
      "CTarnFWCmdGetSkifferExportver",   // 55
      "CTarnFWCmdConfigTCPStrict",       // 58
      "CTarnFWCmdGetTCPStrict",          // 59
      "CTarnFWCmdKifFp",                 // 68
      "CTarnFWCmdSetFloodCfg",           // 78
      "CTarnFWCmdGetFloodStat",          // 79
  };
  return family;
}
