// Requests and replies of the commands on settings.

#include "CommandFamily.h"
#include "TarnFWCmdGetFailPolicy.h"
#include "TarnFWCmdSetFailPolicy.h"

using namespace TarnFirewall;

namespace {

/// The commands, by number. Offsets are those of the body.
std::vector<Golden> goldens() {
  std::vector<Golden> rows;
  rows.push_back({"CTarnFWCmdSetFailPolicy", 31, 54, "SetFailPolicy", 1, 1, 1,
                  plain<CTarnFWCmdSetFailPolicy, FW_FAIL_CLOSE>, Bytes({1})});

  rows.push_back({"CTarnFWCmdGetFailPolicy", 35, 58, "GetFailPolicy", 1, 0, 1,
                  plain<CTarnFWCmdGetFailPolicy>, Bytes(1)});
  return rows;
}

std::vector<ReplyRow> replies() {
  std::vector<ReplyRow> rows;
  rows.push_back({"CTarnFWCmdGetFailPolicy",
                  plain<CTarnFWCmdGetFailPolicy>,
                  Bytes({1}),
                  {{1, "filter fail policy: fail close\n"}},
                  {}});

  readsNothing(rows, "CTarnFWCmdSetFailPolicy", plain<CTarnFWCmdSetFailPolicy, FW_FAIL_OPEN>);
  return rows;
}

}  // namespace

CommandFamily settingsCommands() {
  CommandFamily family;
  family.goldens = goldens();
  family.replies = replies();
  family.later = {
      "CTarnFWCmdCreateSpoofGuard",      // 25
      "CTarnFWCmdDeleteSpoofGuard",      // 26
      "CTarnFWCmdCheckSpoofGuard",       // 27
      "CTarnFWCmdGetSpoofGuardStat",     // 28
      "CTarnFWCmdGetKifStat",            // 29
      "CTarnFWCmdClearKifStat",          // 30
      "CTarnFWCmdEnableVerbose",         // 32
      "CTarnFWCmdDebugComponent",        // 33
      "CTarnFWCmdDebugStatus",           // 34
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
