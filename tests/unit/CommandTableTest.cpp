#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CommandTable.h"
#include "DeviceShim.h"
#include "Handlers.h"
#include "RunCommand.h"

namespace {

struct Row {
  unsigned long flags;
  FWHandler_t handler;
  const char* name;
  const char* description;
};

// clang-format off
const Row kRows[] = {
    {0, GetFWFilters, "getfilters", "get list of filters"},
    {0, GetFWConfig, "getfwconfig", "get rules and addrsets of a filter"},
    {0, GetFWRules, "getrules", "get rules of a filter"},
    {0, GetFWRules, "getrule", "get rules of a filter"},
    {0, GetFWAddrSets, "getaddrsets", "get addrsets of a filter"},
    {0, GetFWAddrSets, "getaddrset", "get addrsets of a filter"},
    {0, GetFWContainer, "getcontainers", "get containers of a filter"},
    {0, GetSpoofGuard, "getspoofguard", "get spoofguard setting of a filter"},
    {0, GetFWFlows, "getflows", "get flows of a filter"},
    {0, GetIpDisc, "getdiscoveredips", "get the discovered VM IPs"},
    {0, GetConnectionCount, "getconncount", "get active connection count"},
    {0, GetConnections, "getconnections", "get active connections"},
    {0, SetIpDisc, "setipdiscovery", "set the IP discovery configuration"},
    {0, ClearIpDisc, "cleardiscoveredips", "clear the discovered VM IPs"},
    {0, GetSISVMProxyStats, "getsisvmstats", "get service insertion service VM stats"},
    {0, GetSISvcTable, "getsisvctable", "dump service insertion service table"},
    {0, GetSINshTable, "getsinshtable", "display service insertion nsh table"},
    {0, GetSIProxyTable, "getsiproxytable", "display service insertion proxy table"},
    {0, GetMeminfoData, "getmeminfo", "get meminfo data"},
    {0, GetFilterStat, "getfilterstat", "get statistics of a filter"},
    {0, GetFloodStat, "getfloodstat", "get flood protection status"},
    {0, FWHelp, "help", "standard help message"},
    {3, DelRules, "deleterules", "delete all rules of a ruleset"},
    {3, AddFilter, "addfilter", "add a filter"},
    {3, DeleteFilter, "deletefilter", "delete a filter"},
    {1, GetFWStatus, "getfwstatus", "get firewall enable/disable status"},
    {1, GetFilterTables, "getfiltertables", "get include and exclude list"},
    {3, SetFilterTables, "setfiltertables", "set include and exclude list"},
    {3, RevalidateVM, "revalidatevm", "revalidate vm(s) according to weirgate table"},
    {3, ClearAllFilters, "clearallfilters", "clear all dynamic filters"},
    {3, CreateAgent, "createagent", "create an agent"},
    {3, DestroyAgent, "destroyagent", "destroy an agent"},
    {3, CreateInstance, "createinstance", "create a service instance"},
    {3, DestroyInstance, "destroyinstance", "destroy a service instance"},
    {3, ReplaceInstance, "replaceinstance", "replace a service instance"},
    {1, GetInstances, "getinstances", "get a service instance"},
    {3, CreateProfile, "createprofile", "create a service profile"},
    {3, DestroyProfile, "destroyprofile", "destroy a service profile"},
    {1, GetProfiles, "getprofiles", "get a service profile"},
    {1, SetVerbose, "setverbose", "set verbose level in kernel"},
    {1, SetFailPolicy, "setfailpolicy", "set filter fail policy in kernel"},
    {1, GetFailPolicy, "getfailpolicy", "get filter fail policy from kernel"},
    {3, AddGRE, "gre", "add a GRE tunnel config"},
    {1, GetFlowExclusion, "getflowexclusion", "get flow exclusion setting"},
    {3, SetFlowExclusion, "setflowexclusion", "set flow exclusion setting"},
    {3, TarnFWCLI, "tarnfwcli", "tarnfwcli tool"},
    {3, ClearFilterStat, "clearfilterstat", "clear statistics of a filter"},
    {3, SetFilterFlags, "setfilterflags", "set flags of a filter"},
    {1, GetKifFlags, "getkifflags", "get kif flags"},
    {3, SetKifFlags, "setkifflags", "set kif flags"},
    {1, SetThresholds, "setthresholds", "set memory and cpu threshold"},
    {1, GetThresholds, "getthresholds", "get memory and cpu threshold"},
    {1, TraceHulld, "tracehulld", "trace hulld"},
    {1, TraceTarn, "tracetarn", "trace tarn"},
    {1, GetFqdnEntries, "getfqdnentries", "get fqdn entries of a filter"},
    {1, KifsFastPath, "kiffastpath", "set/show kif fast path flag"},
    {1, GetUid2SidMap, "getsidcache", "get sid cache of a filter"},
    {1, SetDnsConfigProfile, "setdnsconfigprofile", "set dns config profile for a filter"},
    {1, GetDnsConfigProfile, "getdnsconfigprofile", "get dns config profile for a filter"},
    {1, SetL7CopyMode, "setcopymode", "set l7 copy mode for a filter"},
    {1, GetTimeout, "gettimeout", "get connection timeout setting of a filter"},
    {3, SetTimeout, "settimeout", "set connection timeout setting of a filter"},
    {3, ClearWeirgateTbl, "clrwgttable", "remove the weirgate dynamic filter creation entries from an agent"},
    {3, ClearConnection, "clrconnection", "clear all active connections of a filter"},
    {3, SetSharedAddrSet, "setsharedaddrset", "enable shared rule addrset"},
    {1, GetSharedAddrSet, "getsharedaddrset", "get shared addrset setting"},
    {3, SetAddrSetCfg, "setaddrsetcfg", "configure addrset settings"},
    {1, GetVDPIInfo, "getdpiinfo", "get dpi info"},
    {1, GetALGInfo, "getalginfo", "display stored alg structures"},
    {3, SetICMPErrPktDrop, "seticmperrpktdrop", "config ICMP error packet handling"},
    {1, GetSkifferExportVersion, "getexportversion", "get skiffer export version"},
    {1, SetSkifferExportVersion, "setexportversion", "set skiffer export version"},
    {1, SetSkifferExportVersionAllFilters, "setexportversionall", "set skiffer export version on all filters"},
    {1, FWUnsupported, "getskifferdata", "get skiffer data"},
    {1, FWUnsupported, "setskifferdata", "set skiffer data"},
    {1, FWUnsupported, "migrate", "export/import tlv skiffer data"},
    {3, GetConnAttrInfo, "getattrinfo", "get attr settings"},
    {3, GetStateDPIInfo, "getstatedpiinfo", "get state dpi info"},
    {1, SetRegisterAgent, "registeragent", "register kelpco-sfw agent"},
    {1, SetFloodConfig, "setfloodconfig", "set flood protection config"},
    {1, Uuid2Number, "uuid2number", "convert uuid to number"},
    {1, Uuid2Number, "uuid2num", "convert uuid to number"},
    {1, Number2Uuid, "number2uuid", "convert number to uuid"},
    {1, Number2Uuid, "num2uuid", "convert number to uuid"},
    {1, GetLBConfig, "getlbinfo", "get LB information"},
    {1, GetLBStat, "getlbstat", "get LB statistics"},
    {1, GetRTT, "rtt", "retrieve RTT info for a flow"},
};
// clang-format on

std::string helpText(const std::string& word) {
  std::string text =
      "Usage: %s <cmd> <options>\n"
      "  below is a list of available cmd:\n"
      "    getfilters      : get list of filters\n"
      "    getfwconfig     : get rules, addrsets and containers of a filter\n"
      "    getrules        : get rules of a filter\n"
      "    getaddrsets     : get addrsets of a filter\n"
      "    getcontainers   : get containers of a filter\n"
      "    getspoofguard   : get spoofguard setting of a filter\n"
      "    getflows        : get flows of a filter\n"
      "    getconncount    : get active connection count\n"
      "    getconnections  : get active connections\n"
      "    getsisvmstats   : get service insertion service VM stats\n"
      "    getsisvctable   : dump service insertion service table\n"
      "    getsinshtable   : display service insertion nsh table\n"
      "    getsiproxytable : display service insertion proxy table\n"
      "    getmeminfo      : get meminfo data\n"
      "    getfqdnentries  : get fqdn entries\n"
      "    getdnsconfigprofile : get dns config profile for a filter\n"
      "    getfilterstat   : get statistics of a filter\n"
      "    gettimeout      : get connection timeout setting of a filter\n"
      "    getfloodstat    : get flood protection status\n"
      "    getsidcache     : get sid cache of a filter\n"
      "    help            : this help message\n"
      "  run `tarnioctl <cmd> -h' to find out available options of a cmd.\n";
  return text.replace(text.find("%s"), 2, word);
}

std::string guardText(const std::string& word) {
  return "ERROR: Command " + word +
         " is dangerous and can cause unintended consequence!\n"
         "ERROR: Please supply first option -Override in order to override the safety guard and "
         "actually run the command.\n";
}

}  // namespace

TEST(CommandTable, HasEveryRowInItsPlace) {
  ASSERT_EQ(std::size(kRows), 87u);
  ASSERT_EQ(kCommands, 87u);
  for (std::size_t i = 0; i < kCommands; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(g_cmd_table[i].flags, kRows[i].flags);
    EXPECT_EQ(g_cmd_table[i].handler, kRows[i].handler);
    EXPECT_STREQ(g_cmd_table[i].name, kRows[i].name);
    EXPECT_STREQ(g_cmd_table[i].description, kRows[i].description);
  }
}

TEST(CommandTable, FindsEachRowByItsNameInAnyCase) {
  for (const FWCommand_& row : g_cmd_table) {
    std::string upper(row.name);
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(findCommand(row.name), &row);
    EXPECT_EQ(findCommand(upper.c_str()), &row);
  }
}

TEST(CommandTable, FindsNoPartOfANameAndNoEmptyOne) {
  EXPECT_EQ(findCommand(""), nullptr);
  EXPECT_EQ(findCommand("getfilter"), nullptr);
  EXPECT_EQ(findCommand("getfilterss"), nullptr);
}

TEST(CommandTable, TakesTheProgramsNameFromAfterTheLastSlash) {
  EXPECT_STREQ(programName("/usr/bin/tarnioctl"), "tarnioctl");
  EXPECT_STREQ(programName("./a/b"), "b");
  EXPECT_STREQ(programName("tarnioctl"), "tarnioctl");
  EXPECT_STREQ(programName("bin/"), "");
}

TEST(RunCommand, ShowsTheUsageWithStatus1WithoutArguments) {
  EXPECT_EQ(runCommand({}), (CommandResult{1, helpText("help"), ""}));
}

TEST(RunCommand, ShowsTheUsageWithStatus0ForH) {
  EXPECT_EQ(runCommand({"-h"}), (CommandResult{0, helpText("help"), ""}));
}

TEST(RunCommand, HelpShowsTheWordAsTyped) {
  EXPECT_EQ(runCommand({"help"}), (CommandResult{0, helpText("help"), ""}));
  EXPECT_EQ(runCommand({"HELP"}), (CommandResult{0, helpText("HELP"), ""}));
  EXPECT_EQ(runCommand({"hElp", "-x", "ignored"}), (CommandResult{0, helpText("hElp"), ""}));
}

TEST(RunCommand, AnUnknownWordIsNamedAndTheUsageShown) {
  EXPECT_EQ(runCommand({"frobnicate"}),
            (CommandResult{1, helpText("help"), "ERROR: unknown command `frobnicate'\n\n"}));
  EXPECT_EQ(runCommand({""}),
            (CommandResult{1, helpText("help"), "ERROR: unknown command `'\n\n"}));
}

TEST(RunCommand, MoreThanHIsAnUnknownCommand) {
  EXPECT_EQ(runCommand({"-hx"}),
            (CommandResult{1, helpText("help"), "ERROR: unknown command `-hx'\n\n"}));
}

TEST(RunCommand, AWordOfAnyLengthIsPrintedWhole) {
  const std::string word(100000, 'w');
  EXPECT_EQ(runCommand({word}),
            (CommandResult{1, helpText("help"), "ERROR: unknown command `" + word + "'\n\n"}));
}

TEST(RunCommand, RefusesEveryDangerousCommandWithoutItsOverride) {
  std::size_t dangerous = 0;
  for (const Row& row : kRows) {
    if ((row.flags & 2) == 0) continue;
    ++dangerous;
    EXPECT_EQ(runCommand({row.name}), (CommandResult{1, "", guardText(row.name)}));
    EXPECT_EQ(runCommand({row.name, "-h", "-Override"}),
              (CommandResult{1, "", guardText(row.name)}));
  }
  EXPECT_EQ(dangerous, 27u);
}

TEST(RunCommand, TheGuardsOptionDoesNotIgnoreCase) {
  EXPECT_EQ(runCommand({"AddFilter", "-override"}), (CommandResult{1, "", guardText("AddFilter")}));
  EXPECT_EQ(runCommand({"addfilter", "-Overrides"}),
            (CommandResult{1, "", guardText("addfilter")}));
}

TEST(RunCommand, TheGuardLooksAtTheSecondArgumentOnly) {
  EXPECT_EQ(runCommand({"addfilter", "-h"}), (CommandResult{1, "", guardText("addfilter")}));
}

TEST(RunCommand, TheHelpOfADangerousCommandFollowsItsOverride) {
  const CommandResult refused = runCommand({"TarnFWCLI", "-h"});
  EXPECT_EQ(refused, (CommandResult{1, "", guardText("TarnFWCLI")}));
  const CommandResult shown = runCommand({"TarnFWCLI", "-Override", "-h"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(shown.out.substr(0, 37), "Usage: tarnioctl TarnFWCLI <options>\n");
  EXPECT_EQ(shown.err, "");
}

TEST(RunCommand, ARefusedCommandHasNotOpenedTheLibrary) {
  // In a process of its own, where no library is open yet.
  EXPECT_FRESH([] {
    DeviceShim::put("/dev/brq-tarn");
    const std::vector<std::string> words{"tarnfwcli", "-f", "nic-1-eth0-kelpco-sfw.2", "-c",
                                         "clear root ruleset;"};
    EXPECT_EQ(runCommand(words), (CommandResult{1, "", guardText("tarnfwcli")}));
    EXPECT_TRUE(DeviceShim::opens().empty());

    std::vector<std::string> allowed = words;
    allowed.insert(allowed.begin() + 1, "-Override");
    runCommand(allowed);
    EXPECT_EQ(DeviceShim::opens().size(), 1u) << "the same words open it after the guard";
  });
}

TEST(RunCommand, AHandlerGetsTheWordInFrontOfItsFirstOption) {
  // getopt's own lines begin with it: the command's word, or the guard's.
  EXPECT_EQ(runCommand({"GetFilters", "-x"}).err, "GetFilters: invalid option -- 'x'\n");
  EXPECT_EQ(runCommand({"tarnfwcli", "-Override", "-x"}).err, "-Override: invalid option -- 'x'\n");
}

TEST(RunCommand, CommandsOfTheDebugBuildSayThatTheyAreUnsupported) {
  for (const char* word : {"getskifferdata", "setskifferdata", "migrate"}) {
    EXPECT_EQ(runCommand({word}),
              (CommandResult{1, "Command unsupported in release build.\n", ""}));
    EXPECT_EQ(runCommand({word, "-h"}),
              (CommandResult{1, "Command unsupported in release build.\n", ""}));
  }
}
