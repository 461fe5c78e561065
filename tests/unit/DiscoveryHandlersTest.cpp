// Handlers of the addresses that the data path has discovered, against a scripted kernel.

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "DirectKernel.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// One entry of 26 bytes.
Bytes entry(int vlan, int ipv4, int source, std::initializer_list<int> address) {
  return Bytes(26)
      .at(0, {vlan, vlan >> 8, 0x00, 0x50, 0x56, 0xab, 0xcd, 0xef, ipv4})
      .at(9, address)
      .at(25, {source});
}

Bytes request(int operation) { return Bytes(161).text(0, kFilter).at(100, {operation}); }

/// A kernel with entries, the IPv4 ones first.
class DiscoveryKernel : public DirectKernel {
 public:
  explicit DiscoveryKernel(std::vector<Bytes> entries = {}) : entries_(std::move(entries)) {
    for (const Bytes& one : entries_) (one[8] != 0 ? v4 : v6) += 1;
    on(31, [this](std::uint8_t* body) { return read(body); });
    on(32, [](std::uint8_t*) { return 0u; });
    on(34, [](std::uint8_t*) { return 0u; });
  }

  // What the second answer counts instead of the truth.
  std::uint32_t grown = 0;
  std::uint32_t v4 = 0;
  std::uint32_t v6 = 0;
  std::uint32_t features = 0;
  std::optional<std::uint32_t> featuresBefore{};  // with the counts, when they were others

 private:
  std::uint32_t read(std::uint8_t* body) {
    const bool counts = body[100] == 4;
    Bytes fields(36);
    put32(put32(put32(fields, 0, v4 + (counts ? 0 : grown)), 4, v6), 8,
          counts ? featuresBefore.value_or(features) : features);
    put64(put64(put64(fields, 12, 11), 20, 22), 28, 33);
    if (!counts) {
      std::uint32_t room;
      std::uint64_t buffer;
      std::memcpy(&room, body + 137, sizeof room);
      std::memcpy(&buffer, body + 141, sizeof buffer);
      EXPECT_EQ(room, 26 * (v4 + v6));
      for (std::size_t i = 0; i < entries_.size() && 26 * (i + 1) <= room; ++i)
        std::memcpy(reinterpret_cast<std::uint8_t*>(buffer) + 26 * i, entries_[i].data(), 26);
    }
    std::memcpy(body + 101, fields.data(), fields.size());
    if (body[100] == 3 || counts) {
      const Bytes limits = Bytes(12).at(0, {64, 0, 0, 0, 65, 0, 0, 0, 0x20, 0x1c});
      std::memcpy(body + 149, limits.data(), limits.size());
    }
    return 0;
  }

  std::vector<Bytes> entries_;
};

}  // namespace

TEST(GetDiscoveredIps, NumbersTheEntriesAndNamesTheirSources) {
  const DiscoveryKernel kernel(
      {entry(0, 1, 1, {10, 0, 0, 1}), entry(4095, 1, 2, {10, 0, 0, 2}),
       entry(1, 255, 3, {10, 0, 0, 3}), entry(1, 1, 4, {10, 0, 0, 4}),
       entry(1, 1, 0, {10, 0, 0, 5}), entry(1, 1, 255, {10, 0, 0, 6}),
       entry(65535, 0, 3, {0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}),
       entry(1, 0, 4, {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2}), entry(1, 0, 2, {0}),
       entry(1, 0, 5, {0})});
  const std::string mac = "  mac = 00:50:56:ab:cd:ef  IP = ";
  EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter}),
            (CommandResult{0,
                           "Entries found for nic-1002672-eth0-kelpco-sfw.2: 10\n"
                           "\t[1] vlan = 0" +
                               mac +
                               "10.0.0.1 (DHCP snooping)\n"
                               "\t[2] vlan = 4095" +
                               mac +
                               "10.0.0.2 (ARP snooping)\n"
                               "\t[3] vlan = 1" +
                               mac +
                               "10.0.0.3 (Unknown source)\n"
                               "\t[4] vlan = 1" +
                               mac +
                               "10.0.0.4 (Unknown source)\n"
                               "\t[5] vlan = 1" +
                               mac +
                               "10.0.0.5 (Unknown source)\n"
                               "\t[6] vlan = 1" +
                               mac +
                               "10.0.0.6 (Unknown source)\n"
                               "\t[7] vlan = 65535" +
                               mac +
                               "2001:db8::1 (DHCP snooping)\n"
                               "\t[8] vlan = 1" +
                               mac +
                               "fe80::2 (ND snooping)\n"
                               "\t[9] vlan = 1" +
                               mac +
                               ":: (Unknown source)\n"
                               "\t[10] vlan = 1" +
                               mac + ":: (Unknown source)\n",
                           ""}));
  ASSERT_EQ(kernel.requests().size(), 2u);
  EXPECT_EQ(kernel.requests()[0].number, 31u);
  EXPECT_EQ(kernel.requests()[0].body, request(4));
  Bytes list = kernel.requests()[1].body;
  std::fill(list.begin() + 141, list.begin() + 149, std::uint8_t{0});  // where the buffer is
  EXPECT_EQ(list, request(2).at(137, {4, 1}));
}

TEST(GetDiscoveredIps, ShowsStatisticsWithAndWithoutEntries) {
  const std::string counters =
      "Number of Adds so far : 11\nNumber of Deletes so far : 22\nLast updated time : 33\n";
  const std::string arp = "Arp Timeout : 7200\nMaximum Arp Entries : 64\n";
  const std::string none = "Entries found for nic-1002672-eth0-kelpco-sfw.2: 0\n";
  const std::vector<std::pair<std::uint32_t, std::string>> rows = {
      {0, "Features Enabled : 00000000 : \n"},
      {1, "Features Enabled : 00000001 : (DHCP snooping)\n"},
      {2, "Features Enabled : 00000002 :  (ARP snooping)\n" + arp},
      {12, "Features Enabled : 0000000C :  (DHCPv6 snooping) (ND snooping)\n"},
      {~0u,
       "Features Enabled : FFFFFFFF : (DHCP snooping) (ARP snooping) (DHCPv6 snooping)"
       " (ND snooping)\n" +
           arp}};
  for (const auto& [features, text] : rows) {
    DiscoveryKernel kernel;
    kernel.features = features;
    EXPECT_EQ(runCommand({"getdiscoveredips", "-s", "-f", kFilter}),
              (CommandResult{0, text + counters + none, ""}));
    EXPECT_EQ(kernel.requests().size(), 1u);
    EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter}), (CommandResult{0, none, ""}));
  }
  DiscoveryKernel kernel({entry(7, 1, 1, {10, 0, 0, 1})});
  kernel.features = 2;
  kernel.featuresBefore = 1;
  EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter, "-s"}),
            (CommandResult{0,
                           rows[2].second + counters +
                               "Entries found for nic-1002672-eth0-kelpco-sfw.2: 1\n\t[1] vlan = 7"
                               "  mac = 00:50:56:ab:cd:ef  IP = 10.0.0.1 (DHCP snooping)\n",
                           ""}));
  EXPECT_EQ(kernel.requests().back().body[100], 3);
}

TEST(GetDiscoveredIps, EntriesThatGrowBetweenTheRequestsStayWithinTheRoom) {
  for (const std::uint32_t grown : {1u, 1000u, 0xfffffffeu}) {
    const LogCapture log;
    DiscoveryKernel kernel({entry(7, 1, 1, {10, 0, 0, 1})});
    kernel.grown = grown;
    EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter}),
              (CommandResult{0,
                             "Entries found for nic-1002672-eth0-kelpco-sfw.2: 1\n\t[1] vlan = 7"
                             "  mac = 00:50:56:ab:cd:ef  IP = 10.0.0.1 (DHCP snooping)\n",
                             ""}));
    EXPECT_EQ(log.lines().size(), 1u);
  }
  // Fewer are fewer.
  const LogCapture log;
  DiscoveryKernel kernel({entry(7, 1, 1, {10, 0, 0, 1})});
  kernel.grown = ~0u;
  EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter}),
            (CommandResult{0, "Entries found for nic-1002672-eth0-kelpco-sfw.2: 0\n", ""}));
  EXPECT_TRUE(log.lines().empty());
}

TEST(GetDiscoveredIps, CountsThatNoBufferHoldsAreRefused) {
  const std::vector<std::pair<std::uint32_t, std::uint32_t>> rows = {
      {~0u, ~0u}, {~0u, 0}, {165191050, 0}, {0x80000000, 0x80000000}};
  for (const auto& [v4, v6] : rows) {
    DiscoveryKernel kernel;
    kernel.v4 = v4;
    kernel.v6 = v6;
    EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter}),
              (CommandResult{1, "",
                             "ERROR: no memory for getting " +
                                 std::to_string(static_cast<int>(v4 + v6)) + " IP entries\n"}));
    EXPECT_EQ(kernel.requests().size(), 1u);
  }
}

TEST(GetDiscoveredIps, ReportsMissingMemory) {
  DiscoveryKernel kernel({entry(7, 1, 1, {10, 0, 0, 1})});
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter}),
            (CommandResult{1, "", "ERROR: no memory for getting 1 IP entries\n"}));
}

TEST(GetDiscoveredIps, ARequestThatFailsCountsNothing) {
  const LogCapture log;
  DirectKernel kernel;
  EXPECT_EQ(runCommand({"getdiscoveredips", "-f", kFilter}),
            (CommandResult{0, "Entries found for nic-1002672-eth0-kelpco-sfw.2: 0\n", ""}));
  EXPECT_EQ(runCommand({"getdiscoveredips", "-sf", kFilter}),
            (CommandResult{0,
                           "Features Enabled : 00000000 : \nNumber of Adds so far : 0\n"
                           "Number of Deletes so far : 0\nLast updated time : 0\n"
                           "Entries found for nic-1002672-eth0-kelpco-sfw.2: 0\n",
                           ""}));
}

TEST(SetIpDiscovery, SendsItsFeaturesAndLimits) {
  struct Row {
    std::vector<std::string> options;
    Bytes body;
  };
  const std::vector<Row> rows = {
      {{}, request(5).at(149, {1, 0, 0, 0, 127, 0, 0, 0, 0x20, 0x1c})},
      {{"-d"}, request(5).at(109, {1}).at(149, {1, 0, 0, 0, 127, 0, 0, 0, 0x20, 0x1c})},
      {{"-a", "-l", "0", "-t0"}, request(5).at(109, {2}).at(149, {0, 0, 0, 0, 128})},
      {{"-dal128", "-t", "2147483647"},
       request(5).at(109, {3}).at(149, {128, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 0xff, 0x7f})},
  };
  for (const Row& row : rows) {
    DiscoveryKernel kernel;
    std::vector<std::string> words = {"setipdiscovery", "-f", kFilter};
    words.insert(words.end(), row.options.begin(), row.options.end());
    EXPECT_EQ(runCommand(words), (CommandResult{0, "", ""}));
    ASSERT_EQ(kernel.requests().size(), 1u);
    EXPECT_EQ(kernel.requests()[0].number, 32u);
    EXPECT_EQ(kernel.requests()[0].body, row.body);
  }
}

TEST(SetIpDiscovery, NumbersThatAreNoneOrTooLargeAreNotSent) {
  DiscoveryKernel kernel;
  for (const char* const value : {"129", "-1", "4294967296", "many", "", "12x"}) {
    EXPECT_EQ(runCommand({"setipdiscovery", "-f", kFilter, "-l", value}),
              (CommandResult{1, "", "ERROR: Maximum ARP VMI entries should between 0 and 128\n"}))
        << value;
  }
  const std::string usage = runCommand({"setipdiscovery", "-h"}).out;
  for (const char* const value : {"-1", "2147483648", "soon", "", "60s"}) {
    EXPECT_EQ(runCommand({"setipdiscovery", "-f", kFilter, "-t", value}),
              (CommandResult{1, usage, std::string("ERROR: invalid ARP timeout ") + value + "\n"}))
        << value;
  }
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(ClearDiscoveredIps, SendsTheFiltersName) {
  DiscoveryKernel kernel;
  EXPECT_EQ(runCommand({"cleardiscoveredips", "-f", kFilter}), (CommandResult{0, "", ""}));
  ASSERT_EQ(kernel.requests().size(), 1u);
  EXPECT_EQ(kernel.requests()[0].number, 34u);
  EXPECT_EQ(kernel.requests()[0].body, request(34));
}

TEST(Discovery, ARequestThatIsRefusedIsNoFailure) {
  const LogCapture log;
  DirectKernel kernel;
  kernel.on(32, [](std::uint8_t*) { return 5u; });
  EXPECT_EQ(runCommand({"setipdiscovery", "-f", kFilter}), (CommandResult{0, "", ""}));
  EXPECT_EQ(runCommand({"cleardiscoveredips", "-f", kFilter}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.requests().size(), 2u);
}

TEST(Discovery, ANameOf99CharactersIsSentWhole) {
  DiscoveryKernel kernel;
  const std::string longest(99, 'f');
  EXPECT_EQ(runCommand({"cleardiscoveredips", "-f", longest}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.requests()[0].body, Bytes(161).text(0, longest).at(100, {34}));
}
