#pragma once

/// What the kernel's commands are called and how large they are: one constant row per command
/// number, from 0 to 91.

#include <algorithm>
#include <array>
#include <cstdint>

namespace TarnFirewall {

inline constexpr std::uint16_t kCmdCount = 92;

/// A command of number N has the object type 23 + N, unless its class says otherwise.
inline constexpr int kCmdObjectType = 23;

/// A class that sends a command, and the size of its body.
struct FWCmdForm_ {
  const char* className = nullptr;  // null: nothing here sends the command
  std::uint32_t body = 0;           // `kVaries` when the arguments decide
};

struct FWCmdRow_ {
  char name[28];          // as logs print it
  std::uint32_t request;  // bytes of the body that really are request
  FWCmdForm_ forms[2] = {};
};

inline constexpr std::uint32_t kVaries = 0xffffffff;

// Number 75 carries the name of number 13, since logs are searched for it, and the root rule set
// is sent as number 3: nothing sends 5.
// clang-format off
inline constexpr FWCmdRow_ kCmdCatalogue[kCmdCount] = {
    {"unknown", 0},  // 0
    {"GetRuleSetCount", 1, {{"CTarnFWCmdGetRuleSetCount", 4}}},  // 1
    {"GetRuleSetList", 8, {{"CTarnFWCmdGetRuleSetList", kVaries}}},  // 2
    {"CreateRuleSet", 144, {{"CTarnFWCmdCreateRuleSet", kVaries}, {"CTarnFWCmdSetRootRuleSet", kVaries}}},  // 3
    {"GetRootRuleSet", 1, {{"CTarnFWCmdGetRootRuleSet", 132}}},  // 4
    {"SetRootRuleSet", 64},  // 5
    {"ClearRuleSet", 64, {{"CTarnFWCmdClearRuleSet", 72}}},  // 6
    {"DestroyRuleSet", 64, {{"CTarnFWCmdDestroyRuleSet", 64}}},  // 7
    {"GetRuleCountOfRuleSet", 68, {{"CTarnFWCmdGetRuleCountOfRuleSet", 72}}},  // 8
    {"GetRuleSetInfo", 64, {{"CTarnFWCmdGetRuleSetInfo", 84}}},  // 9
    {"GetRuleOfRuleSet", 76, {{"CTarnFWCmdGetRuleOfRuleSet", kVaries}}},  // 10
    {"GetStatOfRuleSet", 76, {{"CTarnFWCmdGetStatOfRuleSet", kVaries}}},  // 11
    {"GetDlbOfRuleSet", 76, {{"CTarnFWCmdGetDlbOfRuleSet", kVaries}}},  // 12
    {"CreateAddrSet", 62, {{"CTarnFWCmdCreateAddrSet", kVaries}}},  // 13
    {"DestroyAddrSet", 38, {{"CTarnFWCmdDestroyAddrSet", 42}}},  // 14
    {"GetAddrSetTypeAndSize", 38, {{"CTarnFWCmdGetAddrSetTypeAndSize", 50}}},  // 15
    {"GetAddrSetInfo", 38, {{"CTarnFWCmdGetAddrSetInfo", 58}}},  // 16
    {"GetAddressOfAddrSet", 50, {{"CTarnFWCmdGetAddressOfAddrSet", kVaries}}},  // 17
    {"GetAddrValidOfAddrSet", 54, {{"CTarnFWCmdGetAddrValidOfAddrSet", kVaries}}},  // 18
    {"GetAddressStatOfAddrSet", 54, {{"CTarnFWCmdGetAddressStatOfAddrSet", kVaries}}},  // 19
    {"GetAddrSetCount", 4, {{"CTarnFWCmdGetAddrSetCount", 8}}},  // 20
    {"GetAddrSetList", 12, {{"CTarnFWCmdGetAddrSetList", kVaries}}},  // 21
    {"GetAddrSetStatList", 12, {{"CTarnFWCmdGetAddrSetStatList", kVaries}}},  // 22
    {"GetConnectionCount", 12, {{"CTarnFWCmdGetConnectionCount", 16}}},  // 23
    {"GetConnectionStat", 28, {{"CTarnFWCmdGetConnectionStat", kVaries}}},  // 24
    {"CreateSpoofGuard", 156, {{"CTarnFWCmdCreateSpoofGuard", kVaries}}},  // 25
    {"DeleteSpoofGuard", 8, {{"CTarnFWCmdDeleteSpoofGuard", 8}}},  // 26
    {"CheckSpoofGuard", 1, {{"CTarnFWCmdCheckSpoofGuard", 147468}}},  // 27
    {"GetSpoofGuardStat", 56, {{"CTarnFWCmdGetSpoofGuardStat", 56}}},  // 28
    {"GetKifStat", 1642, {{"CTarnFWCmdGetKifStat", 1642}}},  // 29
    {"SetKifStat", 1642, {{"CTarnFWCmdClearKifStat", 1642}}},  // 30
    {"SetFailPolicy", 1, {{"CTarnFWCmdSetFailPolicy", 1}}},  // 31
    {"EnableVerbose", 4, {{"CTarnFWCmdEnableVerbose", 4}}},  // 32
    {"DebugComponent", 4, {{"CTarnFWCmdDebugComponent", 4}}},  // 33
    {"DebugStatus", 23, {{"CTarnFWCmdDebugStatus", 23}}},  // 34
    {"GetFailPolicy", 1, {{"CTarnFWCmdGetFailPolicy", 1}}},  // 35
    {"ClearRootRuleSet", 1, {{"CTarnFWCmdClearRootRuleSet", 4}}},  // 36
    {"SetConnectionByList", 4, {{"CTarnFWCmdSetConnectionByList", kVaries}}},  // 37
    {"SetConnectionActionByFilter", 4},  // 38
    {"GetKifFlags", 1316, {{"CTarnFWCmdGetKifFlags", 1316}}},  // 39
    {"ModifyKifFlags", 1316, {{"CTarnFWCmdSetKifFlags", 1316}}},  // 40
    {"SetTimeout", 112, {{"CTarnFWCmdSetTimeout", 112}}},  // 41
    {"GetTimeout", 112, {{"CTarnFWCmdGetTimeout", 112}}},  // 42
    {"ClearAllConnection", 4, {{"CTarnFWCmdClearAllConnection", 4}}},  // 43
    {"ConfigSharedAddrSet", 4, {{"CTarnFWCmdConfigSharedAddrSet", 4}}},  // 44
    {"GetSharedAddrSet", 4, {{"CTarnFWCmdGetSharedAddrSet", 4}}},  // 45
    {"SetAddrSetCfg", 194, {{"CTarnFWCmdSetAddrSetCfg", 194}}},  // 46
    {"GetAlgInfo", 4, {{"CTarnFWCmdGetAlgCount", 8}, {"CTarnFWCmdGetAlgs", kVaries}}},  // 47
    {"GetAlgPortInfo", 4, {{"CTarnFWCmdGetAlgPortCount", 8}, {"CTarnFWCmdGetAlgPorts", kVaries}}},  // 48
    {"ConfigICMPErrPktDrop", 4, {{"CTarnFWCmdConfigICMPErrPktDrop", 4}}},  // 49
    {"GetNConnInfoByConnId", 4},  // 50
    {"GetNConnInfoByTuple", 4},  // 51
    {"SetNConnActionByConnId", 4},  // 52
    {"SetNConnActionByTuple", 4},  // 53
    {"SetSkifferExportVer", 4, {{"CTarnFWCmdSetSkifferExportver", 4}}},  // 54
    {"GetSkifferExportVer", 4, {{"CTarnFWCmdGetSkifferExportver", 4}}},  // 55
    {"GetElementsOfContainer", 50, {{"CTarnFWCmdGetElementsOfContainer", kVaries}}},  // 56
    {"GetCpsStat", 24},  // 57
    {"ConfigTCPStrict", 4, {{"CTarnFWCmdConfigTCPStrict", 4}}},  // 58
    {"GetTCPStrict", 4, {{"CTarnFWCmdGetTCPStrict", 4}}},  // 59
    {"DestroyAllRuleSet", 1, {{"CTarnFWCmdDestroyAllRuleSet", 4}}},  // 60
    {"SetRuleSetJump", 128, {{"CTarnFWCmdSetRuleSetJump", 128}}},  // 61
    {"GetRuleSetJump", 64, {{"CTarnFWCmdGetRuleSetJump", 128}}},  // 62
    {"ClearRuleSetJump", 64, {{"CTarnFWCmdClearRuleSetJump", 64}}},  // 63
    {"ClearAddrSet", 38, {{"CTarnFWCmdClearAddrSet", 46}}},  // 64
    {"DestroyAllAddrSet", 1, {{"CTarnFWCmdDestroyAllAddrSet", 4}}},  // 65
    {"SetConnectionByFilter", 80, {{"CTarnFWCmdSetConnectionByFilter", 84}}},  // 66
    {"SetAllConnection", 1, {{"CTarnFWCmdSetAllConnection", 4}}},  // 67
    {"KifFastPathFlag", 4, {{"CTarnFWCmdKifFp", 8}}},  // 68
    {"DeleteFqdnTree", 1, {{"CTarnFWCmdDeleteFqdnTree", 4}}},  // 69
    {"GetFqdnCount", 4, {{"CTarnFWCmdGetFqdnCount", 8}}},  // 70
    {"GetFqdnEntry", 166, {{"CTarnFWCmdGetFqdnEntries", 170}}},  // 71
    {"GetUuidEntry", 1235, {{"CTarnFWCmdGetUuid", kVaries}}},  // 72
    {"SetConnAttr", 68, {{"CTarnFWCmdSetConnAttr", kVaries}}},  // 73
    {"GetConnAttrInfo", 60, {{"CTarnFWCmdGetConnAttrInfo", 60}}},  // 74
    {"CreateAddrSet", 62, {{"CTarnFWCmdCreateContainer", kVaries}}},  // 75
    {"AddDomain2IPMapping", 8, {{"CTarnFWCmdAddDomain2IPMapping", kVaries}}},  // 76
    {"GetNConnDPIInfoByID", 8, {{"CTarnFWCmdGetConnectionDPIInfo", kVaries}}},  // 77
    {"SetFloodCfg", 36, {{"CTarnFWCmdSetFloodCfg", 36}}},  // 78
    {"GetFloodStat", 12424, {{"CTarnFWCmdGetFloodStat", 12424}}},  // 79
    {"SetUid2SidMapping", 84, {{"CTarnFWCmdSetUid2SidMapping", kVaries}}},  // 80
    {"GetUid2SidMapping", 84, {{"CTarnFWCmdGetUid2SidMapping", kVaries}}},  // 81
    {"GetUid2SidMappingSize", 84, {{"CTarnFWCmdGetUid2SidMappingSize", 84}}},  // 82
    {"SetDnsConfigProfile", 13, {{"CTarnFWCmdSetDnsConfigProfile", kVaries}}},  // 83
    {"GetDnsConfigProfile", 13, {{"CTarnFWCmdGetDnsConfigProfile", 13}}},  // 84
    {"ConfigL7CopyMode", 4, {{"CTarnFWCmdConfigL7CopyMode", 4}}},  // 85
    {"GetLBConfig", 81, {{"CTarnFWCmdGetLBConfig", kVaries}}},  // 86
    {"GetLBConfigSize", 12077, {{"CTarnFWCmdGetLBConfigSize", 12077}}},  // 87
    {"GetLBStat", 4141, {{"CTarnFWCmdGetLBStat", kVaries}}},  // 88
    {"GetLBStatSize", 4141, {{"CTarnFWCmdGetLBStatSize", 4141}}},  // 89
    {"ClearLBStat", 4141, {{"CTarnFWCmdClearLBStat", 4141}}},  // 90
    {"GetRTTData", 16},  // 91
};
// clang-format on

/// The name of a command.
struct FWCmdName_ {
  constexpr operator const char*() const { return text; }  // NOLINT(google-explicit-constructor)
  char text[sizeof FWCmdRow_::name];
};

// Code takes the column that it needs. The catalogue itself, with its names of classes for the
// compiler and for tests, would be a table of addresses for the loader to move.

/// Names by number.
inline constexpr auto cmd_name = [] {
  std::array<FWCmdName_, kCmdCount> names{};
  for (std::uint16_t number = 0; number < kCmdCount; ++number) {
    std::ranges::copy(kCmdCatalogue[number].name, names[number].text);
  }
  return names;
}();

/// Bytes of the requests by number.
inline constexpr auto cmd_request = [] {
  std::array<std::uint32_t, kCmdCount> requests{};
  for (std::uint16_t number = 0; number < kCmdCount; ++number) {
    requests[number] = kCmdCatalogue[number].request;
  }
  return requests;
}();

/// Name of any number, "unknown" above 91.
constexpr const char* commandName(std::uint16_t number) {
  return number < kCmdCount ? cmd_name[number] : cmd_name[0];
}

}  // namespace TarnFirewall
