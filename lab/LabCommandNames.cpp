#include "LabCommandNames.h"

#include "LabText.h"

namespace TarnLab {

namespace {

// Indexed by the number. The creation of a container has a name of its own here.
constexpr std::string_view names[] = {
    "",
    "GetRuleSetCount",
    "GetRuleSetList",
    "CreateRuleSet",
    "GetRootRuleSet",
    "SetRootRuleSet",
    "ClearRuleSet",
    "DestroyRuleSet",
    "GetRuleCountOfRuleSet",
    "GetRuleSetInfo",
    "GetRuleOfRuleSet",
    "GetStatOfRuleSet",
    "GetDlbOfRuleSet",
    "CreateAddrSet",
    "DestroyAddrSet",
    "GetAddrSetTypeAndSize",
    "GetAddrSetInfo",
    "GetAddressOfAddrSet",
    "GetAddrValidOfAddrSet",
    "GetAddressStatOfAddrSet",
    "GetAddrSetCount",
    "GetAddrSetList",
    "GetAddrSetStatList",
    "GetConnectionCount",
    "GetConnectionStat",
    "CreateSpoofGuard",
    "DeleteSpoofGuard",
    "CheckSpoofGuard",
    "GetSpoofGuardStat",
    "GetKifStat",
    "SetKifStat",
    "SetFailPolicy",
    "EnableVerbose",
    "DebugComponent",
    "DebugStatus",
    "GetFailPolicy",
    "ClearRootRuleSet",
    "SetConnectionByList",
    "SetConnectionActionByFilter",
    "GetKifFlags",
    "ModifyKifFlags",
    "SetTimeout",
    "GetTimeout",
    "ClearAllConnection",
    "ConfigSharedAddrSet",
    "GetSharedAddrSet",
    "SetAddrSetCfg",
    "GetAlgInfo",
    "GetAlgPortInfo",
    "ConfigICMPErrPktDrop",
    "GetNConnInfoByConnId",
    "GetNConnInfoByTuple",
    "SetNConnActionByConnId",
    "SetNConnActionByTuple",
    "SetSkifferExportVer",
    "GetSkifferExportVer",
    "GetElementsOfContainer",
    "GetCpsStat",
    "ConfigTCPStrict",
    "GetTCPStrict",
    "DestroyAllRuleSet",
    "SetRuleSetJump",
    "GetRuleSetJump",
    "ClearRuleSetJump",
    "ClearAddrSet",
    "DestroyAllAddrSet",
    "SetConnectionByFilter",
    "SetAllConnection",
    "KifFastPathFlag",
    "DeleteFqdnTree",
    "GetFqdnCount",
    "GetFqdnEntry",
    "GetUuidEntry",
    "SetConnAttr",
    "GetConnAttrInfo",
    "CreateContainer",
    "AddDomain2IPMapping",
    "GetNConnDPIInfoByID",
    "SetFloodCfg",
    "GetFloodStat",
    "SetUid2SidMapping",
    "GetUid2SidMapping",
    "GetUid2SidMappingSize",
    "SetDnsConfigProfile",
    "GetDnsConfigProfile",
    "ConfigL7CopyMode",
    "GetLBConfig",
    "GetLBConfigSize",
    "GetLBStat",
    "GetLBStatSize",
    "ClearLBStat",
    "GetRTTData",
};
constexpr std::size_t nameCount = sizeof names / sizeof names[0];
static_assert(nameCount == 92);

}  // namespace

std::string commandName(std::uint32_t number) {
  if (number == 0 || number >= nameCount) return format("command %u", number);
  return std::string(names[number]);
}

std::optional<std::uint16_t> commandNumber(std::string_view name) {
  if (const auto number = parseNumber(name, 0xffff)) return static_cast<std::uint16_t>(*number);
  for (std::size_t i = 1; i < nameCount; ++i) {
    if (equalIgnoringCase(names[i], name)) return static_cast<std::uint16_t>(i);
  }
  return std::nullopt;
}

}  // namespace TarnLab
