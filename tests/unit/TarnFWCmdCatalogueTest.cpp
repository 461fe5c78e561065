#include <gtest/gtest.h>

#include <set>
#include <string>

#include "TarnFWCmdCatalogue.h"

using namespace TarnFirewall;

namespace {

/// One number of the kernel's list: its name, the bytes of its request, and the classes that send
/// it, without what all their names begin with, each with the bytes of its body.
struct Row {
  const char* name;
  std::uint32_t request;
  const char* forms;
};

// clang-format off
const Row kRows[] = {
    {"unknown", 0, ""},  // 0
    {"GetRuleSetCount", 1, "GetRuleSetCount 4"},  // 1
    {"GetRuleSetList", 8, "GetRuleSetList varies"},  // 2
    {"CreateRuleSet", 144, "CreateRuleSet varies, SetRootRuleSet varies"},  // 3
    {"GetRootRuleSet", 1, "GetRootRuleSet 132"},  // 4
    {"SetRootRuleSet", 64, ""},  // 5
    {"ClearRuleSet", 64, "ClearRuleSet 72"},  // 6
    {"DestroyRuleSet", 64, "DestroyRuleSet 64"},  // 7
    {"GetRuleCountOfRuleSet", 68, "GetRuleCountOfRuleSet 72"},  // 8
    {"GetRuleSetInfo", 64, "GetRuleSetInfo 84"},  // 9
    {"GetRuleOfRuleSet", 76, "GetRuleOfRuleSet varies"},  // 10
    {"GetStatOfRuleSet", 76, "GetStatOfRuleSet varies"},  // 11
    {"GetDlbOfRuleSet", 76, "GetDlbOfRuleSet varies"},  // 12
    {"CreateAddrSet", 62, "CreateAddrSet varies"},  // 13
    {"DestroyAddrSet", 38, "DestroyAddrSet 42"},  // 14
    {"GetAddrSetTypeAndSize", 38, "GetAddrSetTypeAndSize 50"},  // 15
    {"GetAddrSetInfo", 38, "GetAddrSetInfo 58"},  // 16
    {"GetAddressOfAddrSet", 50, "GetAddressOfAddrSet varies"},  // 17
    {"GetAddrValidOfAddrSet", 54, "GetAddrValidOfAddrSet varies"},  // 18
    {"GetAddressStatOfAddrSet", 54, "GetAddressStatOfAddrSet varies"},  // 19
    {"GetAddrSetCount", 4, "GetAddrSetCount 8"},  // 20
    {"GetAddrSetList", 12, "GetAddrSetList varies"},  // 21
    {"GetAddrSetStatList", 12, "GetAddrSetStatList varies"},  // 22
    {"GetConnectionCount", 12, "GetConnectionCount 16"},  // 23
    {"GetConnectionStat", 28, "GetConnectionStat varies"},  // 24
    {"CreateSpoofGuard", 156, "CreateSpoofGuard varies"},  // 25
    {"DeleteSpoofGuard", 8, "DeleteSpoofGuard 8"},  // 26
    {"CheckSpoofGuard", 1, "CheckSpoofGuard 147468"},  // 27
    {"GetSpoofGuardStat", 56, "GetSpoofGuardStat 56"},  // 28
    {"GetKifStat", 1642, "GetKifStat 1642"},  // 29
    {"SetKifStat", 1642, "ClearKifStat 1642"},  // 30
    {"SetFailPolicy", 1, "SetFailPolicy 1"},  // 31
    {"EnableVerbose", 4, "EnableVerbose 4"},  // 32
    {"DebugComponent", 4, "DebugComponent 4"},  // 33
    {"DebugStatus", 23, "DebugStatus 23"},  // 34
    {"GetFailPolicy", 1, "GetFailPolicy 1"},  // 35
    {"ClearRootRuleSet", 1, "ClearRootRuleSet 4"},  // 36
    {"SetConnectionByList", 4, "SetConnectionByList varies"},  // 37
    {"SetConnectionActionByFilter", 4, ""},  // 38
    {"GetKifFlags", 1316, "GetKifFlags 1316"},  // 39
    {"ModifyKifFlags", 1316, "SetKifFlags 1316"},  // 40
    {"SetTimeout", 112, "SetTimeout 112"},  // 41
    {"GetTimeout", 112, "GetTimeout 112"},  // 42
    {"ClearAllConnection", 4, "ClearAllConnection 4"},  // 43
    {"ConfigSharedAddrSet", 4, "ConfigSharedAddrSet 4"},  // 44
    {"GetSharedAddrSet", 4, "GetSharedAddrSet 4"},  // 45
    {"SetAddrSetCfg", 194, "SetAddrSetCfg 194"},  // 46
    {"GetAlgInfo", 4, "GetAlgCount 8, GetAlgs varies"},  // 47
    {"GetAlgPortInfo", 4, "GetAlgPortCount 8, GetAlgPorts varies"},  // 48
    {"ConfigICMPErrPktDrop", 4, "ConfigICMPErrPktDrop 4"},  // 49
    {"GetNConnInfoByConnId", 4, ""},  // 50
    {"GetNConnInfoByTuple", 4, ""},  // 51
    {"SetNConnActionByConnId", 4, ""},  // 52
    {"SetNConnActionByTuple", 4, ""},  // 53
    {"SetSkifferExportVer", 4, "SetSkifferExportver 4"},  // 54
    {"GetSkifferExportVer", 4, "GetSkifferExportver 4"},  // 55
    {"GetElementsOfContainer", 50, "GetElementsOfContainer varies"},  // 56
    {"GetCpsStat", 24, ""},  // 57
    {"ConfigTCPStrict", 4, "ConfigTCPStrict 4"},  // 58
    {"GetTCPStrict", 4, "GetTCPStrict 4"},  // 59
    {"DestroyAllRuleSet", 1, "DestroyAllRuleSet 4"},  // 60
    {"SetRuleSetJump", 128, "SetRuleSetJump 128"},  // 61
    {"GetRuleSetJump", 64, "GetRuleSetJump 128"},  // 62
    {"ClearRuleSetJump", 64, "ClearRuleSetJump 64"},  // 63
    {"ClearAddrSet", 38, "ClearAddrSet 46"},  // 64
    {"DestroyAllAddrSet", 1, "DestroyAllAddrSet 4"},  // 65
    {"SetConnectionByFilter", 80, "SetConnectionByFilter 84"},  // 66
    {"SetAllConnection", 1, "SetAllConnection 4"},  // 67
    {"KifFastPathFlag", 4, "KifFp 8"},  // 68
    {"DeleteFqdnTree", 1, "DeleteFqdnTree 4"},  // 69
    {"GetFqdnCount", 4, "GetFqdnCount 8"},  // 70
    {"GetFqdnEntry", 166, "GetFqdnEntries 170"},  // 71
    {"GetUuidEntry", 1235, "GetUuid varies"},  // 72
    {"SetConnAttr", 68, "SetConnAttr varies"},  // 73
    {"GetConnAttrInfo", 60, "GetConnAttrInfo 60"},  // 74
    {"CreateAddrSet", 62, "CreateContainer varies"},  // 75
    {"AddDomain2IPMapping", 8, "AddDomain2IPMapping varies"},  // 76
    {"GetNConnDPIInfoByID", 8, "GetConnectionDPIInfo varies"},  // 77
    {"SetFloodCfg", 36, "SetFloodCfg 36"},  // 78
    {"GetFloodStat", 12424, "GetFloodStat 12424"},  // 79
    {"SetUid2SidMapping", 84, "SetUid2SidMapping varies"},  // 80
    {"GetUid2SidMapping", 84, "GetUid2SidMapping varies"},  // 81
    {"GetUid2SidMappingSize", 84, "GetUid2SidMappingSize 84"},  // 82
    {"SetDnsConfigProfile", 13, "SetDnsConfigProfile varies"},  // 83
    {"GetDnsConfigProfile", 13, "GetDnsConfigProfile 13"},  // 84
    {"ConfigL7CopyMode", 4, "ConfigL7CopyMode 4"},  // 85
    {"GetLBConfig", 81, "GetLBConfig varies"},  // 86
    {"GetLBConfigSize", 12077, "GetLBConfigSize 12077"},  // 87
    {"GetLBStat", 4141, "GetLBStat varies"},  // 88
    {"GetLBStatSize", 4141, "GetLBStatSize 4141"},  // 89
    {"ClearLBStat", 4141, "ClearLBStat 4141"},  // 90
    {"GetRTTData", 16, ""},  // 91
};
// clang-format on

/// The classes of a row as the list above writes them.
std::string formsOf(const FWCmdRow_& row) {
  const std::string prefix = "CTarnFWCmd";
  std::string text;
  for (const FWCmdForm_& form : row.forms) {
    if (form.className == nullptr) continue;
    const std::string name = form.className;
    EXPECT_EQ(name.substr(0, prefix.size()), prefix);
    text += (text.empty() ? "" : ", ") + name.substr(prefix.size()) + ' ' +
            (form.body == kVaries ? "varies" : std::to_string(form.body));
  }
  return text;
}

}  // namespace

TEST(TarnFWCmdCatalogue, EveryNumberHasItsNameRequestClassesAndBodies) {
  ASSERT_EQ(std::size(kRows), std::size_t{kCmdCount});
  for (std::size_t number = 0; number < kCmdCount; ++number) {
    SCOPED_TRACE(number);
    EXPECT_STREQ(kCmdCatalogue[number].name, kRows[number].name);
    EXPECT_EQ(kCmdCatalogue[number].request, kRows[number].request);
    EXPECT_EQ(formsOf(kCmdCatalogue[number]), kRows[number].forms);
  }
}

TEST(TarnFWCmdCatalogue, ContainersCarryTheNameOfAddressSets) {
  EXPECT_STREQ(cmd_name[13], "CreateAddrSet");
  EXPECT_STREQ(cmd_name[75], "CreateAddrSet");
  std::set<std::string> names(cmd_name.begin(), cmd_name.end());
  EXPECT_EQ(names.size(), 91u) << "every other name is there once";
}

TEST(TarnFWCmdCatalogue, ANumberOutsideTheTableIsUnknown) {
  EXPECT_STREQ(commandName(91), "GetRTTData");
  EXPECT_STREQ(commandName(92), "unknown");
  EXPECT_STREQ(commandName(65535), "unknown");
}

TEST(TarnFWCmdCatalogue, TheRootIsSentAsACreationAndNothingSendsFive) {
  EXPECT_STREQ(kCmdCatalogue[3].forms[0].className, "CTarnFWCmdCreateRuleSet");
  EXPECT_STREQ(kCmdCatalogue[3].forms[1].className, "CTarnFWCmdSetRootRuleSet");
  EXPECT_EQ(kCmdCatalogue[5].forms[0].className, nullptr);
}

TEST(TarnFWCmdCatalogue, NumbersWithoutAClassAreTheKernelsOwn) {
  std::set<int> without;
  for (int number = 0; number < kCmdCount; ++number) {
    if (kCmdCatalogue[number].forms[0].className == nullptr) without.insert(number);
  }
  EXPECT_EQ(without, (std::set<int>{0, 5, 38, 50, 51, 52, 53, 57, 91}));
}

TEST(TarnFWCmdCatalogue, NoRequestIsLargerThanItsFixedBody) {
  for (const FWCmdRow_& row : kCmdCatalogue) {
    for (const FWCmdForm_& form : row.forms) {
      if (form.className == nullptr || form.body == kVaries) continue;
      EXPECT_LE(row.request, form.body) << row.name;
    }
  }
}
