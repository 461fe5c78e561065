#include <set>

#include "LabBench.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

constexpr unsigned config = 86, configSize = 87, stat = 88, statSize = 89, clearStat = 90;
constexpr unsigned ofServers = 5, ofPools = 9, byUuid = 2;

class LabBalancers : public LabBench {
 protected:
  static std::string uuid(unsigned service, unsigned what = 0, unsigned place = 0) {
    char text[64];
    std::snprintf(text, sizeof text, "1b0a7c50-5e41-4d%02x-a0%02x-0000632a%04x", service, what,
                  place);
    return text;
  }

  static Record sizes(unsigned flags, unsigned id = 0, const std::string& of = "") {
    return Record().zero(8).u32(id).text(of, 64).u8(flags).to(12077);
  }

  /// Asks for the sizes and fetches what they say. The size of the fetch comes back.
  std::size_t fetch(unsigned flags, unsigned id = 0, const std::string& of = "") {
    EXPECT_EQ(command(configSize, sizes(flags, id, of)), 0u) << note();
    const std::uint32_t active = get32(reply, 0), stale = get32(reply, 4);
    std::vector<std::array<std::uint32_t, 3>> services;
    std::size_t size = 81;
    for (std::size_t i = 0; i < active + stale; ++i) {
      const std::size_t at = 77 + 12 * i;
      services.push_back({get32(reply, at), get32(reply, at + 4), get32(reply, at + 8)});
      const auto& [servers, pools, members] = services.back();
      size += 85 + 90 * servers + 24 * pools + 74 * members;
    }
    Record body;
    body.u32(size).u32(active).u32(stale).u32(id).text(of, 64).u8(flags);
    std::size_t at = 81;
    for (const auto& [servers, pools, members] : services) {
      body.to(at + 68).u32(servers).u32(pools).u32(members);
      at += 85 + 90 * servers + 24 * pools + 74 * members;
    }
    EXPECT_EQ(command(config, body.to(size)), 0u) << note();
    return size;
  }

  static Record statistics(unsigned flags, const std::string& service,
                           const std::string& entry = "") {
    return Record().zero(12).text(service, 64).text(entry, 64).u8(flags).to(4141);
  }

  /// Asks how much there is, and fetches it.
  std::uint32_t fetchStatistics(unsigned flags, const std::string& service,
                                const std::string& entry = "") {
    if (const auto status = command(statSize, statistics(flags, service, entry)); status != 0) {
      return status;
    }
    std::size_t size = 4141 + 200 * get32(reply, 4) + 49 * get32(reply, 8);
    for (std::size_t i = 0; i < get32(reply, 8); ++i) size += 183 * get32(reply, 141 + 4 * i);
    ByteVector body(reply.begin(), reply.begin() + 4141);
    body.resize(size);
    return command(stat, body);
  }

  /// Every counter of the blocks of a size, which are the last 40 bytes of each.
  void collect(std::size_t& at, std::size_t size, std::size_t blocks) {
    for (; blocks > 0; --blocks, at += size) {
      for (std::size_t i = 0; i < 5; ++i) counters.push_back(get64(reply, at + size - 40 + 8 * i));
    }
  }

  std::vector<std::uint64_t> counters;
};

TEST_F(LabBalancers, ActiveServicesComeFirst) {
  EXPECT_EQ(fetch(2), 81u + (85 + 180 + 48 + 4 * 74) + (85 + 90 + 24 + 2 * 74) + (85 + 90));
  EXPECT_EQ(get32(reply, 4), 2u);
  EXPECT_EQ(get32(reply, 8), 1u);
  EXPECT_EQ(getText(reply, 81, 64), uuid(1));
  EXPECT_EQ(get32(reply, 81 + 64), 4001u);
  EXPECT_EQ(get32(reply, 81 + 68), 2u) << "the counts stay";
  const std::size_t second = 81 + 85 + 180 + 48 + 4 * 74;
  EXPECT_EQ(getText(reply, second, 64), uuid(2));
  EXPECT_EQ(getText(reply, second + 85, 64), uuid(2, 1)) << "its virtual server";
}

TEST_F(LabBalancers, FlagsChoose) {
  fetch(0);
  EXPECT_EQ(get32(reply, 4) + get32(reply, 8), 2u);
  fetch(1);
  EXPECT_EQ(get32(reply, 4) + get32(reply, 8), 2u);
  fetch(16, 4002);
  EXPECT_EQ(getText(reply, 81, 64), uuid(2));
  EXPECT_EQ(get32(reply, 4), 1u);
  fetch(8, 0, uuid(3));
  EXPECT_EQ(getText(reply, 81, 64), uuid(3));
  EXPECT_EQ(get32(reply, 8), 1u) << "a stale one is found by its name";
  fetch(16, 4003);
  EXPECT_EQ(get32(reply, 8), 1u) << "and by its number";
  fetch(1 | 2);
  EXPECT_EQ(get32(reply, 8), 0u) << "but not where only active ones are asked for";
  EXPECT_EQ(fetch(1 | 8, 0, uuid(3)), 81u);
  EXPECT_EQ(fetch(8 | 16, 4001, uuid(3)), 81u);
  EXPECT_EQ(fetch(16, 7), 81u);
}

TEST_F(LabBalancers, OnlyOneFilterHasServices) {
  ASSERT_EQ(command(configSize, sizes(2), filterSelector(other)), 0u);
  EXPECT_EQ(get32(reply, 0) + get32(reply, 4), 0u);
}

TEST_F(LabBalancers, ARequestWithoutServicesGetsTheirNumbers) {
  ASSERT_EQ(command(config, Record().u32(81).to(81)), 0u) << note();
  EXPECT_EQ(get32(reply, 4), 2u);
  EXPECT_EQ(get32(reply, 8), 0u);
}

TEST_F(LabBalancers, RefusesAConfigurationOfOtherCounts) {
  EXPECT_EQ(command(config, Record().u32(80).to(81)), 25u);
  EXPECT_EQ(note(), "80 bytes, 81 are there");
  EXPECT_EQ(command(config, Record().u32(81).u32(1).to(81)), 25u);
  EXPECT_EQ(note(), "1 and 0 services, there are 2 and 0");
  EXPECT_EQ(command(config, Record().u32(300).u32(2).to(300)), 25u);
  EXPECT_EQ(note(), "service 0 with other counts");
  // The second service, which has 1 virtual server, 1 pool and 2 members, with one count changed.
  for (const unsigned wrong : {0u, 1u, 2u}) {
    Record body = Record().u32(428).u32(1).u32(0).u32(4002).to(80).u8(16).to(81 + 68);
    for (const unsigned count : {0u, 1u, 2u}) {
      body.u32((count == 2 ? 2 : 1) + (count == wrong ? 1 : 0));
    }
    EXPECT_EQ(command(config, body.to(428)), 25u);
    EXPECT_EQ(note(), "service 1 with other counts") << wrong;
  }
  EXPECT_EQ(command(config, Record().u32(82).to(82)), 25u);
  EXPECT_EQ(note(), "1 bytes too many");
  EXPECT_EQ(command(configSize, sizes(32)), 3u);
  EXPECT_EQ(command(configSize, sizes(0, 5)), 3u);
  EXPECT_EQ(command(configSize, sizes(0, 0, "x")), 3u);
  EXPECT_EQ(command(configSize, sizes(0).set(12076, 1)), 25u);
  EXPECT_EQ(command(configSize, Record().zero(12076)), 25u);
}

TEST_F(LabBalancers, StatisticsDifferUntilTheyAreCleared) {
  for (const bool cleared : {false, true}) {
    counters.clear();
    for (const unsigned service : {1u, 2u}) {
      std::size_t at = 4141;
      ASSERT_EQ(fetchStatistics(ofServers, uuid(service)), 0u) << note();
      EXPECT_EQ(get32(reply, 8), 0u);
      collect(at, 200, get32(reply, 4));
      EXPECT_EQ(at, reply.size());
      at = 4141;
      ASSERT_EQ(fetchStatistics(ofPools, uuid(service)), 0u) << note();
      EXPECT_EQ(get32(reply, 4), 0u);
      const std::size_t pools = get32(reply, 8);
      collect(at, 49, pools);
      for (std::size_t i = 0; i < pools; ++i) collect(at, 183, get32(reply, 141 + 4 * i));
      EXPECT_EQ(at, reply.size());
    }
    EXPECT_EQ(counters.size(), 5u * (3 + 3 + 6));
    const std::set<std::uint64_t> different(counters.begin(), counters.end());
    EXPECT_EQ(different.size(), cleared ? 1u : counters.size());
    EXPECT_EQ(different.count(0), cleared ? 1u : 0u);
    for (const unsigned service : {1u, 2u}) {
      for (const unsigned flags : {ofServers, ofPools}) {
        ASSERT_EQ(command(clearStat, statistics(flags | 32, uuid(service)).set(0, 0x2d).set(1, 16)),
                  0u);
        EXPECT_EQ(get8(reply, 140), flags | 32);
      }
    }
  }
}

TEST_F(LabBalancers, ClearingIsOfOneServiceAndOneKind) {
  ASSERT_EQ(command(clearStat, statistics(ofPools, uuid(1)).set(0, 0x2d).set(1, 16)), 0u);
  ASSERT_EQ(fetchStatistics(ofServers, uuid(1)), 0u);
  EXPECT_NE(get64(reply, 4341 - 8), 0u);
  ASSERT_EQ(fetchStatistics(ofPools, uuid(1)), 0u);
  EXPECT_EQ(get64(reply, 4141 + 49 - 8), 0u);
  ASSERT_EQ(fetchStatistics(ofPools, uuid(2)), 0u);
  EXPECT_NE(get64(reply, 4141 + 49 - 8), 0u);
}

TEST_F(LabBalancers, WhatIsNotThereIsNotCleared) {
  const auto clear = [&](const std::string& service, const std::string& entry) {
    return command(clearStat, statistics(ofPools | byUuid, service, entry).set(0, 0x2d).set(1, 16));
  };
  ASSERT_EQ(clear(uuid(1), uuid(1, 2, 7)), 0u);
  EXPECT_EQ(get8(reply, 140), ofPools | byUuid | 128);
  ASSERT_EQ(fetchStatistics(ofPools, uuid(1)), 0u);
  EXPECT_NE(get64(reply, 4141 + 49 - 8), 0u);
}

TEST_F(LabBalancers, OneEntryIsFoundByItsName) {
  ASSERT_EQ(fetchStatistics(ofPools | byUuid, uuid(1), uuid(1, 2, 1)), 0u) << note();
  EXPECT_EQ(get32(reply, 8), 1u);
  EXPECT_EQ(get32(reply, 141), 1u);
  EXPECT_EQ(reply.size(), 4141u + 49 + 183);
  ASSERT_EQ(fetchStatistics(ofServers | byUuid, uuid(1), uuid(1, 1, 1)), 0u) << note();
  EXPECT_EQ(getText(reply, 4141, 64), uuid(1, 1, 1));
}

TEST_F(LabBalancers, FlagsOfTheReplySayWhatIsMissing) {
  ASSERT_EQ(fetchStatistics(ofServers, uuid(9)), 0u) << note();
  EXPECT_EQ(get8(reply, 140), ofServers | 64);
  ASSERT_EQ(fetchStatistics(ofServers | byUuid, uuid(1), uuid(1, 2, 0)), 0u) << note();
  EXPECT_EQ(get8(reply, 140), ofServers | byUuid | 128);
  EXPECT_EQ(reply.size(), 4141u);
  ASSERT_EQ(command(clearStat, statistics(ofServers, uuid(9)).set(0, 0x2d).set(1, 16)), 0u);
  EXPECT_EQ(get8(reply, 140), ofServers | 64);
}

TEST_F(LabBalancers, RefusesStatisticsThatAreNotInTheirForm) {
  EXPECT_EQ(command(statSize, statistics(1, uuid(1))), 3u);
  EXPECT_EQ(command(statSize, statistics(13, uuid(1))), 3u);
  EXPECT_EQ(command(statSize, statistics(4, uuid(1))), 3u);
  EXPECT_EQ(command(statSize, statistics(ofServers | 64, uuid(1))), 3u);
  EXPECT_EQ(command(statSize, statistics(ofServers, uuid(1), uuid(1, 1))), 3u);
  EXPECT_EQ(command(statSize, statistics(ofServers, uuid(1)).set(4, 1)), 25u);
  EXPECT_EQ(command(clearStat, statistics(ofServers, uuid(1))), 25u);
  EXPECT_EQ(note(), "size 0");
  EXPECT_EQ(command(stat, statistics(ofServers, uuid(1))), 25u);
  EXPECT_EQ(note(), "4141 bytes in place of 4541");
  EXPECT_EQ(command(stat, Record().zero(4141)), 0u) << "a statement asks without a record";
}

}  // namespace
}  // namespace TarnLab
