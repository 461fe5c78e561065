// Requests and replies of the commands on identities and attributes.

#include "CommandFamily.h"

CommandFamily identityCommands() {
  CommandFamily family;
  family.later = {
      "CTarnFWCmdDeleteFqdnTree",         // 69
      "CTarnFWCmdGetFqdnCount",           // 70
      "CTarnFWCmdGetFqdnEntries",         // 71
      "CTarnFWCmdGetUuid",                // 72
      "CTarnFWCmdSetConnAttr",            // 73
      "CTarnFWCmdGetConnAttrInfo",        // 74
      "CTarnFWCmdAddDomain2IPMapping",    // 76
      "CTarnFWCmdGetConnectionDPIInfo",   // 77
      "CTarnFWCmdSetUid2SidMapping",      // 80
      "CTarnFWCmdGetUid2SidMapping",      // 81
      "CTarnFWCmdGetUid2SidMappingSize",  // 82
      "CTarnFWCmdSetDnsConfigProfile",    // 83
      "CTarnFWCmdGetDnsConfigProfile",    // 84
      "CTarnFWCmdConfigL7CopyMode",       // 85
  };
  return family;
}
