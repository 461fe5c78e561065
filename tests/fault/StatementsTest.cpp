// What becomes of a statement when memory fails while its text is loaded: it is loaded whole, or
// there is a status and nothing is left over.

#include <gtest/gtest.h>

#include <cstdarg>
#include <set>
#include <string>

#include "MemoryShim.h"
#include "TarnFWCmdList.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// While it lives, log lines go nowhere, so that they allocate nothing.
struct NoLog {
  NoLog() {
    FW_RegisterLogger([](int, const char*, va_list) {}, 6);
  }
  ~NoLog() { FW_UnregisterLogger(); }
};

struct Row {
  const char* name;
  const char* text;
};

void PrintTo(const Row& row, std::ostream* to) { *to << row.text; }

#define UUID "00010203-0405-0607-0809-0a0b0c0d0e0f"
#define MAC "00:11:22:33:44:5f"
#define SPEC "10.0.0.1 1024 10.0.0.2 80 tcp dir_in"

/// Every form of the statements about connections, attributes and settings, and some of those about
/// sets.
const Row kRows[] = {
    {"CreateRuleSet",
     "create ruleset r with { rule 7 at 1 in inet protocol tcp from 10.0.0.4-9 "
     "port { 80, 90-99 } to not addrset a attrprofile p accept with { log, rtt } tag t; };"},
    {"DescribeRules", "describe rule of ruleset r with { 1, 2 };"},
    {"CreateAddrSet", "create addrset a { 10.0.0.1-9, ::1 };"},
    {"CreateMacSet", "create addrset m { " MAC ", " MAC "/ff:ff:ff:00:00:00 };"},
    {"CountConnections", "describe connection count of filter f;"},
    {"SetConnectionByFilter", "set connection of filter f;"},
    {"SetConnections",
     "set connection with { from 10.0.0.1 port 1 to any port 2, from any:1 to 10.0.0.2:3 };"},
    {"SetOneConnection", "set connection with from 10.0.0.1:1 to 10.0.0.2:2;"},
    {"SetAllConnections", "set all connection;"},
    {"DescribeConnections", "describe connection stat;"},
    {"DescribeConnectionsFrom", "describe connection stat from 5;"},
    {"ClearConnections", "clear all connection;"},
    {"DescribeExportVersion", "describe exportver;"},
    {"SetExportVersion", "set exportver 1000 to vif " UUID ";"},
    {"CreateProfileOfTexts",
     "create attrprofile p with { [ APP_ID : APP_HTTP, APP_HTTPS ], "
     "[ WIN_SID : 'S-1-5-21-1004336348-1177238915-1001' ] };"},
    {"CreateProfileOfNumbers", "create attrprofile p with { [ TLS_VERSION : 770, 771 ] };"},
    {"CreateProfileOfIdentifiers",
     "create attrprofile p with { [ FQDN : www.example.com uuid " UUID
     ", a.name.that.is.longer.than.a.string.holds.in.itself uuid " UUID ", uuid " UUID " ] };"},
    {"DeleteProfile", "delete attrprofile p;"},
    {"AddDomain", "add domain2ip www.a.longer.name.example.com uuid " UUID
                  " with { { 10.0.0.1-9, 10.1.0.0/16, 2001:db8::/32 } };"},
    {"AddDomainWithoutName", "add domain2ip uuid " UUID " with { 10.0.0.1-9 };"},
    {"MapUser", "set uid2sidmap 'S-1-5-21' { 'S-1-5-32-544', 'S-1-6' };"},
    {"SetAttributesOfConnection",
     "set connattr " SPEC " with { [ TLS_VERSION : 771 ], [ APP_ID : APP_HTTP ] };"},
    {"SetAttributesOfIPv6Connection",
     "set connattr ::1 1 ::2 2 udp dir_out with { [ TLS_VERSION : 771 ] };"},
    {"SetAttributesOfState", "set connattr 77 with { [ FQDN : a uuid " UUID " ] };"},
    {"GuardAddresses", "create spoofguard with ip { 10.0.0.1, 10.1.0.0/16, ::1 } and mac " MAC ";"},
    {"GuardAnyAddress", "create spoofguard with ip any and mac " MAC ";"},
    {"GuardSet", "create spoofguard with addrset guarded and mac " MAC ";"},
    {"DeleteGuards", "delete spoofguard;"},
    {"DeleteGuard", "delete spoofguard with mac " MAC ";"},
    {"DescribeGuard", "describe spoofguard;"},
    {"DescribeGuardCounters", "describe stat of spoofguard;"},
    {"DescribeInterface", "describe stat of kif;"},
    {"ClearInterface", "clear stat of kif;"},
    {"DescribeBalancers", "describe config of lb;"},
    {"DescribeBalancerCounters", "describe stat of lb;"},
    {"EnableStrict", "enable tcp strict;"},
    {"DisableStrict", "disable tcp strict;"},
    {"DescribeStrict", "describe tcp strict;"},
    {"SetTimeout", "set timeout dfw.tcp.opening to 30;"},
    {"SetTimeouts", "set timeout to '1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22';"},
    {"DescribeTimeout", "describe timeout dfw.tcp.opening;"},
    {"DescribeTimeouts", "describe timeout;"},
    {"Debug", "debug dp 1;"},
};

class Statements : public testing::TestWithParam<Row> {
 protected:
  const NoLog noLog_;
};

/// A text that is loaded, or not.
struct Loaded {
  ~Loaded() {
    if (config != nullptr) FW_FreeConfigFile(config);
  }
  FWStatus_t load(const char* text) {
    fwlibhandle_* channel = nullptr;
    return FW_LoadConfigString(text, &channel, &config);
  }
  std::string commands() const { return reinterpret_cast<CTarnFWCmdList*>(config)->toString(); }

  fwconfigfile_* config = nullptr;
};

}  // namespace

TEST_P(Statements, LoadWholeOrEndWithAStatus) {
  const char* const text = GetParam().text;
  Loaded whole;
  ASSERT_EQ(whole.load(text), FW_STATUS_OK);
  for (const MemoryShim::Range range : {MemoryShim::kOne, MemoryShim::kFromThereOn}) {
    std::set<FWStatus_t> ends;
    for (unsigned int number = 0;; ++number) {
      Loaded loaded;
      FWStatus_t status;
      bool reached;
      {
        const MemoryShim::FailingAllocation failing(number, range);
        status = loaded.load(text);
        reached = failing.reached();
      }
      if (!reached) {
        EXPECT_EQ(status, FW_STATUS_OK);
        ASSERT_NE(loaded.config, nullptr);
        EXPECT_EQ(loaded.commands(), whole.commands());
        break;
      }
      EXPECT_EQ(loaded.config, nullptr) << number;
      ends.insert(status);
    }
    // A text of which there is no copy ends with the first, anything else with the second.
    ends.insert(FW_STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(ends, (std::set<FWStatus_t>{FW_STATUS_OUT_OF_MEMORY, FW_STATUS_PARSING_ERROR}))
        << range;
  }
}

INSTANTIATE_TEST_SUITE_P(All, Statements, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });
