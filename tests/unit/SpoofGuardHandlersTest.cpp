// getspoofguard against a scripted kernel.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// Numbers of the commands.
enum : unsigned int { kSize = 15, kAddresses = 17, kGuard = 27, kStatistics = 28 };

Bytes ipv4(int last) { return Bytes(144).at(0, {1}).at(4, {10, 0, 0, last}); }
Bytes ipv6(int last) { return Bytes(144).at(0, {2}).at(4, {0xfd}).at(19, {last}); }
Bytes set(const std::string& name, int type = 11) { return Bytes(144).at(0, {type}).text(4, name); }

/// A guard, and the sets of the filter, which have one address each.
class GuardKernel : public HandlerKernel {
 public:
  GuardKernel() {
    on(kGuard, [this](Body& body) {
      EXPECT_EQ(body.size, 147468u);
      EXPECT_EQ(body.word(8), 1u);
      body.put(0, {2, 0, 0xa, 0xb, 0xc, 0xff});
      body.at[6] = enabled ? 1 : 0;
      body.put32(8, count.value_or(static_cast<std::uint32_t>(entries.size())));
      for (std::size_t i = 0; i < entries.size(); ++i) body.put(12 + 144 * i, entries[i]);
      return 0;
    });
    on(kStatistics, [](Body& body) {
      EXPECT_EQ(body.size, 56u);
      for (std::size_t i = 0; i < 7; ++i) body.put64(8 * i, 10 + i);
      return 0;
    });
    on(kSize, [this](Body& body) -> FWStatus_t {
      if (body.text(0, 38) != "hosts") return 29;
      body.put32(38, 1);
      body.put32(42, type);
      body.put32(46, 144);
      return 0;
    });
    on(kAddresses, [](Body& body) {
      body.put32(50, 1);
      body.put(70, ipv4(77));
      return 0;
    });
  }

  bool enabled = true;
  std::vector<Bytes> entries{};
  std::optional<std::uint32_t> count{};  // in place of the number of entries
  std::uint32_t type = 1;
};

CommandResult run(std::vector<std::string> options) {
  options.insert(options.begin(), {"getspoofguard", "-f", kFilter});
  return runCommand(options);
}

const char kMac[] = "MAC Address  : 02:00:0a:0b:0c:ff\n";

}  // namespace

TEST(GetSpoofGuard, ShowsAddressesAndTheMembersOfSets) {
  GuardKernel kernel;
  kernel.entries = {ipv4(7), ipv6(8), set("hosts")};
  EXPECT_EQ(run({}), (CommandResult{0,
                                    std::string("Spoofguard Enabled.\n"
                                                "IPv4 Address : 10.0.0.7\n"
                                                "IPv6 Address : fd00::8\n"
                                                "IPSet        : hosts {\n"
                                                "ip 10.0.0.77,\n"
                                                "}\n") +
                                        kMac,
                                    ""}));
}

TEST(GetSpoofGuard, NamesTheSetsOfAGuardThatIsOff) {
  GuardKernel kernel;
  kernel.enabled = false;
  kernel.entries = {set("hosts"), ipv4(7), set("other"), set("block", 5)};
  EXPECT_EQ(run({}), (CommandResult{0,
                                    std::string("Spoofguard Disabled.\n"
                                                "IPSet        : hosts\n"
                                                "IPv4 Address : 10.0.0.7\n"
                                                "IPSet        : other\n"
                                                "IPSet        : block\n") +
                                        kMac,
                                    ""}))
      << "whatever is no single address names a set";
  EXPECT_EQ(kernel.asked(), std::vector<unsigned int>{kGuard});
}

TEST(GetSpoofGuard, ASetThatCannotBeReadIsReportedAndLeftOut) {
  GuardKernel kernel;
  kernel.entries = {set("none"), ipv4(7)};
  const CommandResult result = run({});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, std::string("Spoofguard Enabled.\nIPv4 Address : 10.0.0.7\n") + kMac);
  kernel.entries = {set("hosts"), ipv4(7)};
  kernel.fail(kAddresses, 21);
  EXPECT_EQ(run({}), (CommandResult{0, result.out,
                                    "ERROR: failed to get address of addrset hosts: switch port "
                                    "not found\n"}));
  kernel.type = 2;
  EXPECT_EQ(run({}), (CommandResult{0, result.out, ""})) << "a container has no addresses";
}

TEST(GetSpoofGuard, ANameWithoutItsEndStopsAtTheEndOfItsField) {
  GuardKernel kernel;
  kernel.enabled = false;
  kernel.entries = {set(std::string(140, 'n'))};
  EXPECT_EQ(run({}).out,
            "Spoofguard Disabled.\nIPSet        : " + std::string(38, 'n') + "\n" + kMac);
}

TEST(GetSpoofGuard, ACountBeyondTheReplyIsNeverWalked) {
  for (const std::uint32_t count : {1025u, 0x80000000u, 0xffffffffu}) {
    const LogCapture log;
    GuardKernel kernel;
    kernel.entries = {ipv4(1)};
    kernel.count = count;
    const CommandResult result = run({});
    EXPECT_LE(result.out.size(), 1024u * 32 + 64) << count;
    EXPECT_EQ(result.out.find("IPv4 Address : 0.0.0.0"), std::string::npos) << count;
  }
}

TEST(GetSpoofGuard, A1024AddressesAreAll) {
  GuardKernel kernel;
  kernel.entries.assign(1024, ipv4(1));
  const CommandResult result = run({});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out.size(), std::string("Spoofguard Enabled.\n").size() +
                                   1024 * std::string("IPv4 Address : 10.0.0.1\n").size() +
                                   std::string(kMac).size());
}

TEST(GetSpoofGuard, ReportsWhatTheKernelRefuses) {
  GuardKernel kernel;
  kernel.fail(kGuard, 21);
  EXPECT_EQ(run({}), (CommandResult{1, "",
                                    "ERROR: unable to get Spoofguard information: switch port "
                                    "not found.\n"}));
}

TEST(GetSpoofGuard, StatisticsChangeTheFirstTwoCounters) {
  const GuardKernel kernel;
  const std::string lines =
      "l2 drop count     : 11\n"
      "l3 drop count     : 10\n"
      "invalid arp count : 12\n"
      "unknown arp count : 13\n"
      "bad MAC arp count : 14\n"
      "bad IP arp count  : 15\n"
      "good arp count    : 16\n";
  EXPECT_EQ(run({"-s"}), (CommandResult{0, lines, ""}));
  EXPECT_EQ(run({"--stat"}), (CommandResult{0, lines, ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kStatistics, kStatistics}));
}

TEST(GetSpoofGuard, ThePrinterStaysOnlyAfterStatisticsThatFailed) {
  GuardKernel kernel;
  kernel.entries = {ipv4(7)};
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  run({"-s"});
  EXPECT_EQ(TarnFirewall::g_tarnfw_pretty_printing, nullptr);
  kernel.fail(kStatistics, 21);
  EXPECT_EQ(run({"-s"}), (CommandResult{1, "", "ERROR: Failed to get Spoofguard stat\n"}));
  EXPECT_NE(TarnFirewall::g_tarnfw_pretty_printing, nullptr);
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  kernel.fail(kGuard, 21);
  run({});
  EXPECT_EQ(TarnFirewall::g_tarnfw_pretty_printing, nullptr);
}

TEST(GetSpoofGuard, EndsWithZeroWithoutAFilter) {
  const CommandResult help = runCommand({"getspoofguard", "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(runCommand({"getspoofguard"}),
            (CommandResult{0, help.out, "ERROR: filter is missing.\n"}));
  EXPECT_EQ(runCommand({"getspoofguard", "-s", "-v"}),
            (CommandResult{0, help.out, "ERROR: filter is missing.\n"}));
}
