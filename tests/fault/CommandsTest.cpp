// What each command does when memory or standard output fails. This program is run in a lab by
// "tarnlab run". A command that is new gets a row in `kRows`.
#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <string>

#include "CommandProcess.h"
#include "CommandTable.h"
#include "Program.h"

using CommandProcess::Result;
using CommandProcess::Words;

const CommandProcess::Program CommandProcess::kProgram = {"tarnioctl", runProgram, "ERROR", 1};

namespace {

#define FILTER "nic-1002672-eth0-kelpco-sfw.2"
#define OTHER_FILTER "nic-1002731-eth0-kelpco-sfw.2"
#define STORAGE_FILTER "nic-1003044-eth1-kelpco-sfw.2"
#define FILTER_WITHOUT_FLOWS "nic-1003120-eth0-kelpco-sfw.2"
#define GUARDED_FILTER "nic-998214-eth0-kelpco-spoof.guard.1"
#define VM_UUID "50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26"

// Statements. Each text can be evaluated again and again.
#define CONNECTIONS                                                                             \
  "describe connection count; set connection with { from 10.0.0.1:1 to any:2, from any port 1 " \
  "to 10.0.0.2 port 3 }; set connection; set all connection; describe connection stat from 5; " \
  "clear all connection;"
#define ATTRIBUTES                                                                              \
  "create attrprofile p with { [ APP_ID : APP_HTTP, APP_HTTPS ], [ TLS_VERSION : 771 ] }; "     \
  "delete attrprofile p; "                                                                      \
  "add domain2ip www.example.com uuid 00010203-0405-0607-0809-0a0b0c0d0e0f with { 10.0.0.1 }; " \
  "set uid2sidmap 'S-1-5-21' { 'S-1-5-32-544' }; "                                              \
  "set connattr 10.0.0.1 1 10.0.0.2 2 tcp dir_in with { [ WIN_SID : 'S-1-5-21-1' ] };"
#define SETTINGS                                                                                  \
  "set exportver 1000; describe exportver; enable tcp strict; describe tcp strict; "              \
  "set timeout to '1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22'; describe timeout; " \
  "set timeout dfw.tcp.opening to 31; describe timeout dfw.tcp.opening; debug dp 0; "             \
  "create spoofguard with ip { 10.0.0.1, 10.1.0.0/16 } and mac 00:11:22:33:44:5f; "               \
  "describe spoofguard; describe stat of spoofguard; delete spoofguard; "                         \
  "describe stat of kif; clear stat of kif;"

/// How a command may end when an allocation fails: its status and the last line on standard error.
/// Without one it is "whole" or "part", which is how much of its output there is.
using Ends = std::set<std::string>;

/// A command and every end that it has; none, when it allocates nothing.
struct Row {
  const char* name;
  Words words;
  Ends ends;
  const char* lost = nullptr;  // the line about lost output of a command that ends with 0 then
};

void PrintTo(const Row& row, std::ostream* to) { *to << row.name; }

Ends both(Ends some, const Ends& others) {
  some.insert(others.begin(), others.end());
  return some;
}

// Scripts know the statuses: 255 for a library handle that cannot be made, 0 for a set that cannot
// be read among others. A request that fails in `FW_Ioctl` counts no filters. An address or a line
// that has no text is left out.

Ends listEnds(const std::string& filters, const std::string& agent) {
  return {"1 ERROR: kernel out of memory", "1 ERROR: no memory for getting filters: " + filters,
          "1 ERROR: there is no filter for agent " + agent};
}

Ends statementEnds(const std::string& text) {
  return {"1 ERROR: failed to alloc memory for configs",
          "1 ERROR: Could not load config `" + text + "': out of memory",
          "1 ERROR: Could not load config `" + text + "': parsing error",
          "1 ERROR: Failed to eval config `" + text + "': out of memory",
          "1 ERROR: Failed to eval config `" + text + "': unknown error"};
}

const Ends kRuleSetEnds = {
    "255 part",
    "1 ERROR: failed to get total rulesets: out of memory",
    "1 ERROR: failed to get root ruleset: out of memory",
    "1 ERROR: failed to get #0 ruleset: out of memory",
};
const Ends kRuleEnds = {
    "0 part",
    "0 ERROR: failed to get 0 rule in ruleset web: out of memory",
    "0 ERROR: failed to get 1 rule count for ruleset web: out of memory",
    "0 ERROR: failed to get 2 rule count for ruleset web: out of memory",
    "0 ERROR:   rule conversion failed unknown error",
};
const Ends kAddrSetEnds = {
    "255 part",
    "0 part",
    "0 whole",
    "0 ERROR: no memory for addrset hosts",
    "0 ERROR: failed to find type and size of hosts",
    "0 ERROR: failed to get address of addrset hosts: out of memory",
};
const Ends kAddrSetListEnds = {
    "1 ERROR: failed to get addrset count: out of memory",
    "1 ERROR: no memory for getting 1 addrsets",
    "1 ERROR: failed to get 1 address sets: out of memory",
};
const Ends kContainerEnds = {
    "255 part",
    "0 whole",
    "0 ERROR: failed to find type and size of hosts",
    "1 ERROR: failed to get container count: out of memory",
    "1 ERROR: no memory for getting 1 containers",
    "1 ERROR: failed to get 1 address sets: out of memory",
};

const Row kRows[] = {
    {"Help", {"help"}, {}},
    {"Unknown", {"nonesuch"}, {}},
    {"Unsupported", {"migrate"}, {}},
    {"Getfilters", {"getfilters"}, listEnds("8", "")},
    {"GetfiltersStatistics", {"getfilters", "-s"}, listEnds("8", "")},
    {"GetfiltersDistribution", {"getfilters", "-d"}, listEnds("8", "")},
    {"GetfiltersSlowPath", {"getfilters", "-c", "7"}, listEnds("8", "")},
    {"GetfiltersVifs", {"getfilters", "-i"}, listEnds("8", "")},
    {"GetfiltersAgent", {"getfilters", "-a", "kelpco-sfw"}, listEnds("6", "kelpco-sfw")},
    {"GetfiltersNumber", {"getfilters", "-n"}, {"0 part"}},
    {"Getrules", {"getrules", "-f", FILTER}, both(kRuleSetEnds, kRuleEnds)},
    {"GetrulesOfOne", {"getrules", "-f", FILTER, "-r", "web"}, both(kRuleSetEnds, kRuleEnds)},
    {"GetrulesStatistics",
     {"getrules", "-f", FILTER, "-s"},
     both(kRuleSetEnds, {"0 ERROR: failed to get 0 rule stat: out of memory",
                         "0 ERROR: failed to get 1 rule count: out of memory",
                         "0 ERROR: failed to get 2 rule count: out of memory",
                         "0 ERROR: no memory for getting 1 0 rule stats"})},
    {"GetrulesBalancers",
     {"getrules", "-f", FILTER, "-d"},
     both(kRuleSetEnds, {"0 ERROR: failed to get dnat rule count for ruleset web: out of memory"})},
    {"Getaddrsets", {"getaddrsets", "-f", FILTER}, both(kAddrSetEnds, kAddrSetListEnds)},
    {"GetaddrsetsOfOne", {"getaddrsets", "-f", FILTER, "-a", "hosts"}, kAddrSetEnds},
    {"Getcontainers", {"getcontainers", "-f", FILTER}, kContainerEnds},
    {"Getfwconfig",
     {"getfwconfig", "-f", FILTER},
     both({"1 ERROR: kernel out of memory"},
          both(both(kRuleSetEnds, kRuleEnds),
               both(both(kAddrSetEnds, kAddrSetListEnds), kContainerEnds)))},
    {"Setfailpolicy",
     {"setfailpolicy", "-f", FILTER, "-p", "1"},
     {"255 whole", "1 ERROR: failed to set fail policy: out of memory 8"}},
    {"Getfailpolicy",
     {"getfailpolicy", "-f", FILTER},
     {"255 part", "1 ERROR: failed to get fail policy: out of memory"}},
    {"Setverbose",
     {"setverbose", "-f", FILTER, "-c", "DP", "-v", "1"},
     {"255 whole", "1 ERROR: failed to set verbose log: out of memory"}},
    {"Getspoofguard",
     {"getspoofguard", "-f", GUARDED_FILTER},
     {"255 part", "0 part", "1 ERROR: kernel out of memory",
      "1 ERROR: unable to get Spoofguard information: out of memory.",
      "0 ERROR: no memory for addrset backup-addresses",
      "0 ERROR: failed to get size of addrset backup-addresses: out of memory",
      "0 ERROR: failed to get address of addrset backup-addresses: out of memory"}},
    {"GetspoofguardStatistics",
     {"getspoofguard", "-f", GUARDED_FILTER, "-s"},
     {"255 part", "1 ERROR: Failed to get Spoofguard stat"}},
    {"Getfloodstat",
     {"getfloodstat", "-f", FILTER, "-s"},
     {"255 part", "1 ERROR: Failed to allocate 12424 bytes for flood stat",
      "1 ERROR: Failed to get flood status: out of memory"}},
    {"Setfloodconfig",
     {"setfloodconfig", "-f", FILTER, "-u", "5"},
     {"255 whole", "1 ERROR: Failed to set flood config: out of memory"}},
    {"Gettimeout",
     {"gettimeout", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to get timeout for filter " FILTER}},
    {"Settimeout",
     {"settimeout", "-Override", "-f", FILTER, "-t", "dfw.interval=5"},
     {"255 whole", "1 ERROR: no memory for parsing timeout setting dfw.interval=5",
      "1 ERROR: Failed to change timeout setting for filter " FILTER "."}},
    {"Getkifflags",
     {"getkifflags", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to get filter kif flags"}},
    {"Setkifflags",
     {"setkifflags", "-Override", "-f", FILTER, "-n", "log_invalid", "-e", "1"},
     {"255 whole", "1 ERROR: Failed to set kif flag"}},
    {"Kiffastpath",
     {"kiffastpath", "-f", FILTER, "-i"},
     {"255 part", "1 ERROR: failed to set fp interface flag: out of memory"}},
    {"Getfwstatus", {"getfwstatus"}, {"1 part", "1 ERROR: no memory for include table of size 47"}},
    {"Getthresholds", {"getthresholds"}, {"0 part"}},
    {"Setthresholds", {"setthresholds", "-c", "50"}, {"0 whole"}},
    {"Setfilterflags", {"setfilterflags", "-Override", "-f", FILTER, "-a"}, {"0 whole"}},
    {"Setsharedaddrset",
     {"setsharedaddrset", "-Override", "-f", OTHER_FILTER, "-s", "0"},
     {"255 whole", "1 ERROR: Failed to set filter shared addrset setting"}},
    {"Getsharedaddrset",
     {"getsharedaddrset", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to get filter shared addrset setting"}},
    {"Setaddrsetcfg",
     {"setaddrsetcfg", "-Override", "-f", FILTER, "display"},
     {"255 part", "1 ERROR: Failed to set addrset config for filter " FILTER "."}},
    {"SetaddrsetcfgMarks",
     {"setaddrsetcfg", "-Override", "-f", FILTER, "-a", "hosts", "getvalid"},
     {"255 part", "1 ERROR: failed to get size of addrset hosts: out of memory",
      "1 ERROR: no memory for addrset hosts",
      "1 ERROR: failed to get addrv of addrset hosts: out of memory", "1 part"}},
    {"Seticmperrpktdrop",
     {"seticmperrpktdrop", "-Override", "-f", FILTER, "-e", "0"},
     {"255 whole", "1 ERROR: Failed to set filter icmp error drop enable setting"}},
    {"Getexportversion",
     {"getexportversion", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to get skiffer export version for filter " FILTER}},
    {"Setexportversion",
     {"setexportversion", "-f", FILTER, "-e", "1000"},
     {"255 whole", "1 ERROR: Failed to set export version for filter " FILTER ": out of memory"}},
    {"Setexportversionall",
     {"setexportversionall", "-r", "-a", "kelpco-inspect"},
     {"255 part", "1 part", "1 ERROR: kernel out of memory",
      "1 ERROR: no memory for getting filters: 1"}},
    {"Setdnsconfigprofile",
     {"setdnsconfigprofile", "-f", FILTER, "-t", "MAX"},
     {"255 whole", "1 ERROR: Failed to set dns config for " FILTER}},
    {"Getdnsconfigprofile",
     {"getdnsconfigprofile", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to set dns config for " FILTER}},
    {"Setcopymode",
     {"setcopymode", "-f", FILTER, "-d"},
     {"255 whole", "1 ERROR: Failed to set L7 copy mode config for " FILTER}},
    {"Getflowexclusion",
     {"getflowexclusion", "-f", STORAGE_FILTER},
     {"0 part", "1 ERROR: kernel out of memory",
      "1 ERROR: no memory for 1024 flow exclusion records"}},
    {"Setflowexclusion",
     {"setflowexclusion", "-Override", "-f", FILTER, "-F",
      "||0x88cc|10.0.0.0/8||tcp,6|1024-65535|||"},
     {"0 whole", "1 ERROR: kernel out of memory",
      "1 ERROR: no memory for 1024 flow exclusion records",
      "0 ERROR: bad flow exclusion spec: ||0x88cc|10.0.0.0/8||tcp,6|1024-65535|||",
      "1 ERROR: invalid ethertype 0x88cc", "1 ERROR: invalid ip protocol tcp,6"}},
    {"GetflowsDropped",
     {"getflows", "-f", FILTER, "-F", "1", "-T", "d"},
     {"255 part", "1 ERROR: kernel out of memory",
      "1 ERROR: no memory for getting 112 flow records (33081 bytes)"}},
    {"Getconnections",
     {"getconnections", "-f", FILTER},
     {"255 part", "1 part", "1 ERROR: kernel out of memory",
      "1 ERROR: Failed to allocate memeory for records"}},
    {"Getconncount", {"getconncount", "-f", FILTER}, {"255 part", "1 part"}},
    {"Clrconnection",
     {"clrconnection", "-Override", "-f", FILTER_WITHOUT_FLOWS},
     {"255 part", "1 ERROR: failed to clear connection: out of memory"}},
    {"Tarnfwcli",
     {"tarnfwcli", "-Override", "-f", FILTER, "-c", "destroy ruleset \"none\";"},
     both(statementEnds("destroy ruleset \"none\";"), {"255 whole"})},
    {"TarnfwcliConnections",
     {"tarnfwcli", "-Override", "-f", FILTER_WITHOUT_FLOWS, "-c", CONNECTIONS},
     both(statementEnds(CONNECTIONS), {"255 part"})},
    {"TarnfwcliAttributes",
     {"tarnfwcli", "-Override", "-f", FILTER_WITHOUT_FLOWS, "-c", ATTRIBUTES},
     both(statementEnds(ATTRIBUTES), {"255 whole"})},
    {"TarnfwcliSettings",
     {"tarnfwcli", "-Override", "-f", FILTER_WITHOUT_FLOWS, "-c", SETTINGS},
     both(statementEnds(SETTINGS), {"255 part"})},
    {"Getdiscoveredips",
     {"getdiscoveredips", "-f", FILTER, "-s"},
     {"0 part", "1 ERROR: no memory for getting 7 IP entries"}},
    {"Setipdiscovery", {"setipdiscovery", "-f", OTHER_FILTER, "-d"}, {"0 whole"}},
    {"Cleardiscoveredips", {"cleardiscoveredips", "-f", OTHER_FILTER}, {"0 whole"}},
    {"Getfqdnentries",
     {"getfqdnentries", "-f", FILTER},
     {"255 part", "1 ERROR: failed to get fqdn total entries: out of memory",
      "1 ERROR: failed to fqdn entries: out of memory", "1 ERROR: failed to uuid: out of memory",
      "1 ERROR: GetFqdnEntries: no memory for getting fqdn records",
      "1 ERROR: GetFqdnEntries: no memory for getting uuid"}},
    {"GetfqdnentriesDeletes",
     {"getfqdnentries", "-f", OTHER_FILTER, "-d"},
     {"255 whole", "1 ERROR: failed to delete fqdn entries: out of memory"}},
    {"Getsidcache",
     {"getsidcache", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to get uid to sid map size for filter : " FILTER,
      "1 ERROR: Failed to get uid to sid map for filter : " FILTER}},
    // The agent is none of this lab, so that nothing changes for the rows after these.
    {"Addfilter",
     {"addfilter", "-Override", "-w", "1", "-u", VM_UUID, "-v", "0", "-f", "1", "-a", "none"},
     {"1 ERROR: no memory for filter config",
      "1 ERROR: Create filter failed: error unknown error"}},
    {"Deletefilter",
     {"deletefilter", "-Override", "-w", "1", "-u", VM_UUID, "-v", "0", "-f", "1", "-a", "none"},
     {"1 ERROR: no memory for filter config",
      "1 ERROR: Delete filter failed: error unknown error"}},
    {"Createagent", {"createagent", "-Override", "-a", "kelpco-sfw"}, {"0 whole"}},
    {"Destroyagent", {"destroyagent", "-Override", "-a", "none"}, {"0 whole"}},
    {"Registeragent", {"registeragent"}, {"0 ERROR: ioctl failed to set registeragent 195887105"}},
    {"Deleterules",
     {"deleterules", "-Override", "-f", OTHER_FILTER, "-r", "none"},
     {"255 whole", "1 ERROR: failed to delete all rules of ruleset none on filter " OTHER_FILTER
                   ": out of memory"}},
    {"Getfiltertables",
     {"getfiltertables", "-a", "kelpco-inspect"},
     {"0 part", "1 ERROR: no memory for exclude table of size 33",
      "1 ERROR: no memory for include table of size 84"}},
    {"Setfiltertables",
     {"setfiltertables", "-Override", "-a", "none", "-o"},
     {"0 whole", "1 ERROR: Failed to revalidate vm(s) after set weirgate table"}},
    {"Clrwgttable", {"clrwgttable", "-Override", "-a", "none"}, {"1 part"}},
    {"Clearallfilters", {"clearallfilters", "-Override", "-a", "none"}, {"0 whole", "1 part"}},
    {"Revalidatevm", {"revalidatevm", "-Override"}, {"1 whole"}},
    {"Getmeminfo", {"getmeminfo"}, {"0 ERROR: ioctl failed to get meminfo 195887105"}},
    {"Createinstance", {"createinstance", "-Override", "-i", "guest-tap", "-t", "1"}, {"0 whole"}},
    {"Replaceinstance",
     {"replaceinstance", "-Override", "-i", "guest-tap", "-t", "3=a=m=0"},
     {"0 whole"}},
    {"Destroyinstance", {"destroyinstance", "-Override", "-i", "nothing"}, {"0 whole"}},
    {"Getinstances",
     {"getinstances"},
     {"0 part", "1 ERROR: kernel out of memory",
      "1 ERROR: no memory for 5 instances: Cannot allocate memory"}},
    {"GetinstancesOne",
     {"getinstances", "-i", "web-inspection"},
     {"0 part", "1 ERROR: kernel out of memory"}},
    {"Createprofile",
     {"createprofile", "-Override", "-f", FILTER, "-p", "profile", "-i", "nothing"},
     {"0 whole"}},
    {"Destroyprofile", {"destroyprofile", "-Override", "-f", FILTER}, {"0 whole"}},
    {"Getprofiles",
     {"getprofiles"},
     {"0 part", "1 ERROR: kernel out of memory",
      "1 ERROR: no memory for 1 profiles: Cannot allocate memory"}},
    {"Gre",
     {"gre", "-Override", "-a", "10.0.0.1", "-k", "8", "-f", "0", "-m", "1:2:3:4:5:6", "-g",
      "10.0.0.2"},
     {"0 whole", "1 ERROR: no memory for gre buffer"}},
    {"Getsisvctable", {"getsisvctable"}, {"1 part", "1 ERROR: kernel out of memory"}},
    {"Getsinshtable", {"getsinshtable"}, {"1 part"}},
    {"Getsiproxytable", {"getsiproxytable"}, {"1 part"}},
    {"Getsisvmstats", {"getsisvmstats", "-p", "67108875"}, {"1 part"}},
    {"Getalginfo",
     {"getalginfo", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to get alg structure count",
      "0 ERROR: no memory for getting 33 alg records", "1 ERROR: Failed to get 33 alg records",
      "1 ERROR: Failed to get alg port structure count",
      "0 ERROR: no memory for getting 64 alg records",
      "1 ERROR: Failed to get 64 alg port records"}},
    {"Getlbinfo",
     {"getlbinfo", "-f", FILTER, "-a"},
     {"255 part", "1 ERROR: Failed to get LB info size", "1 ERROR: Failed to get LB info"}},
    {"Getlbstat",
     {"getlbstat", "-f", FILTER, "-l", "1b0a7c50-5e41-4d01-a000-0000632a0000", "-p", "-d"},
     {"255 part", "1 ERROR: Failed to get LB stat size", "1 ERROR: Failed to get LB stat"}},
    {"Getfilterstat",
     {"getfilterstat", "-f", FILTER},
     {"255 part", "1 ERROR: Failed to get filter stat"}},
    {"Clearfilterstat", {"clearfilterstat", "-Override", "-f", OTHER_FILTER}, {"0 whole"}},
    {"Rtt", {"rtt", "-f", FILTER, "-i", "5c1e000100001001"}, {"1 part"}},
    {"Getattrinfo", {"getattrinfo", "-Override", "-f", FILTER, "-m", "1"}, {"255 part", "1 part"}},
    {"Getstatedpiinfo",
     {"getstatedpiinfo", "-Override", "-f", FILTER, "-s", "1001"},
     {"255 part", "0 part"}},
    {"Tracehulld", {"tracehulld", "-s"}, {}, "ERROR: failed to print data: 0\n"},
    {"TracehulldList", {"tracehulld", "-c", "help"}, {}},
    {"Tracetarn",
     {"tracetarn", "-f", FILTER, "-s"},
     {"255 part", "0 ERROR: failed to execute tarn trace command: out of memory"}},
    {"TracetarnLevel",
     {"tracetarn", "-f", FILTER, "-c", "comp-log", "-m", "icmp"},
     {"255 whole", "0 ERROR: failed to execute tarn trace command: out of memory"}},
    {"Getdpiinfo", {"getdpiinfo", "-s"}, {"0 ERROR: Failed to allocate buffer to recv dpi stats"}},
    {"GetdpiinfoQuery",
     {"getdpiinfo", "-m", "www.example.com"},
     {"0 ERROR: Failed to allocate buffer to recv response"}},
    {"GetdpiinfoCommand", {"getdpiinfo", "-d"}, {}},
    {"Uuid2number", {"uuid2number", "01234567-89ab-cdef-0123-456789abcdef"}, {}},
    {"Number2uuid", {"number2uuid", "81985529216486895,81985529216486895"}, {}},
};

class Commands : public testing::TestWithParam<Row> {
 protected:
  static void SetUpTestSuite() {
    const Result made = CommandProcess::run(
        {"tarnfwcli", "-Override", "-f", FILTER, "-c",
         "create addrset \"hosts\" with {10.0.0.1, 10.1.0.0/16};"
         "create ruleset \"web\" with {rule 10 in protocol tcp from addrset \"hosts\" to any"
         " port {80, 443} accept with log tag 'a tag of some length';};"
         "set root ruleset \"web\" and \"\";"});
    ASSERT_EQ(made.status, 0) << made;
  }
};

/// The end of a run as rows name it.
std::string endOf(const Result& result, const std::string& wholeOutput) {
  const std::string status = std::to_string(result.status) + " ";
  if (result.err.empty()) return status + (result.out == wholeOutput ? "whole" : "part");
  const std::size_t start = result.err.rfind('\n', result.err.size() - 2);
  std::string line = result.err.substr(start == std::string::npos ? 0 : start + 1);
  if (line.back() == '\n') line.pop_back();
  return status + line;
}

TEST_P(Commands, HasItsEndsWhenAnAllocationFails) {
  const Row& row = GetParam();
  const std::string wholeOutput = CommandProcess::run(row.words).out;
  std::set<std::string> ends;
  for (const bool onwards : {false, true}) {
    for (unsigned int number = 0;; ++number) {
      const Result result = CommandProcess::runWithoutMemory(row.words, number, onwards);
      if (!result.reached && result.status >= 0) break;
      const std::string end = endOf(result, wholeOutput);
      EXPECT_NE(row.ends.count(end), 0u) << number << (onwards ? " onwards: " : ": ") << result;
      ends.insert(end);
    }
  }
  EXPECT_EQ(ends, row.ends);
}

TEST_P(Commands, ReportsOutputThatIsLost) {
  const Row& row = GetParam();
  const Result whole = CommandProcess::run(row.words);
  unsigned int number = 0;
  for (;; ++number) {
    const Result result = CommandProcess::runWithoutRoom(row.words, number, ENOSPC);
    if (!result.reached) {
      EXPECT_EQ(result.out, whole.out);
      break;
    }
    if (row.lost != nullptr) {
      EXPECT_EQ(result.err, whole.err + row.lost);
      EXPECT_EQ(result.status, whole.status);
    } else {
      EXPECT_EQ(result.err, whole.err + "ERROR: failed to write output: No space left on device\n");
      EXPECT_EQ(result.status, whole.status != 0 ? whole.status : 1);
    }
    EXPECT_LT(result.out.size(), whole.out.size());
  }
  EXPECT_EQ(number != 0, !whole.out.empty());
}

INSTANTIATE_TEST_SUITE_P(All, Commands, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(CommandRows, NameEveryHandler) {
  std::set<FWHandler_t> named;
  for (const Row& row : kRows) {
    if (const FWCommand_* const command = findCommand(row.words[0].c_str()))
      named.insert(command->handler);
  }
  for (const FWCommand_& command : g_cmd_table)
    EXPECT_EQ(named.count(command.handler), 1u) << command.name << " has no row in kRows";
}

TEST(LostOutput, IsReportedWithTheFirstErrorWhenItIsLostInTheMiddle) {
  std::string rules = "create ruleset \"long\" with {";
  for (int id = 1; id <= 250; ++id) {
    rules += "rule " + std::to_string(id) + " inout protocol any from any to any accept;";
  }
  const Words load{"tarnfwcli",  "-Override", "-f",
                   OTHER_FILTER, "-c",        rules + "}; set root ruleset \"long\" and \"\";"};
  const Result loaded = CommandProcess::run(load);
  ASSERT_EQ(loaded.status, 0) << loaded;
  const Words words{"getrules", "-f", OTHER_FILTER};
  const Result whole = CommandProcess::run(words);
  ASSERT_GT(whole.out.size(), 3u * 4096);
  const Result result = CommandProcess::runWithoutRoom(words, 1, EIO);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "ERROR: failed to write output: Input/output error\n");
  // The first block came, whose realization time is longer than what stands for it; the second is
  // missing, with the rest of the line that was being printed; what follows came.
  const std::size_t block = 4096 - (sizeof "2026-11-22T09:52:43" - sizeof "TIME");
  EXPECT_EQ(result.out.substr(0, block), whole.out.substr(0, block));
  const std::string rest = result.out.substr(block);
  EXPECT_EQ(rest, whole.out.substr(whole.out.size() - rest.size()));
  EXPECT_GE(whole.out.size() - result.out.size(), 4096u);
  EXPECT_LT(whole.out.size() - result.out.size(), 4096u + 80);
}

}  // namespace
