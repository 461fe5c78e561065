// Flows and connections: what makes them, request 22, and commands 23, 24, 37, 43, 66 and 67.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

constexpr const char* noInactive = "nic-1003044-eth0-kelpco-sfw.2";
constexpr const char* noLayer2 = "nic-1003044-eth1-kelpco-sfw.2";
constexpr const char* noTraffic = "nic-1003120-eth0-kelpco-sfw.2";
constexpr const char* noFlows = "nic-998214-eth0-kelpco-spoof.guard.1";

std::uint64_t net64(ConstBytes bytes, std::size_t at) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < 8; ++i) value = value << 8 | get8(bytes, at + i);
  return value;
}

std::uint64_t idOf(ConstBytes flow) { return net64(flow, 3); }
unsigned kindOf(ConstBytes flow) { return get8(flow, 87); }
unsigned protocolOf(ConstBytes flow) { return get8(flow, 89); }
unsigned familyOf(ConstBytes flow) { return get8(flow, 90); }

/// Bytes by their hexadecimal digits; blanks are for the reader.
ByteVector hex(const std::string& digits) {
  ByteVector bytes;
  std::string pair;
  for (const char c : digits) {
    if (c == ' ') continue;
    pair += c;
    if (pair.size() < 2) continue;
    bytes.push_back(static_cast<std::byte>(std::stoul(pair, nullptr, 16)));
    pair.clear();
  }
  return bytes;
}

/// What a reply of request 22 says of one group of flows.
struct Amounts {
  std::uint32_t records, attributes, attributeBytes, bytes;
};

struct Fetch {
  unsigned flush = 0, resetRtt = 0, withAttributes = 1;
};

class LabFlows : public FilledLabBench {
 protected:
  static ByteVector query(unsigned operation, const std::string& filter, const Fetch& fetch,
                          const std::string& agent = "kelpco-sfw") {
    return Record()
        .text(agent, 100)
        .text(filter, 64)
        .to(199)
        .u8(7)
        .u8(operation)
        .u8(fetch.flush)
        .u8(fetch.resetRtt)
        .u8(fetch.withAttributes)
        .to(264);
  }

  static Amounts amounts(ConstBytes body, std::size_t group) {
    const std::size_t at = 216 + 16 * group;
    return {get32(body, at), get32(body, at + 4), get32(body, at + 8), get32(body, at + 12)};
  }

  /// Asks for the counts of a filter.
  ByteVector counts(const std::string& filter = web, const std::string& agent = "kelpco-sfw") {
    ByteVector body = query(1, filter, {}, agent);
    EXPECT_EQ(direct(22, body), 0) << note();
    return body;
  }

  /// Reads flows as the counts in a body say, or those of one group. The buffer is as it came.
  int read(const ByteVector& counted, const Fetch& fetch, const std::string& filter = web,
           int onlyGroup = -1) {
    query_ = query(2, filter, fetch);
    std::size_t room = 32;
    for (std::size_t group = 0; group < 3; ++group) {
      if (onlyGroup >= 0 && group != static_cast<std::size_t>(onlyGroup)) continue;
      const std::size_t at = 216 + 16 * group;
      std::copy_n(counted.begin() + static_cast<std::ptrdiff_t>(at), 16,
                  query_.begin() + static_cast<std::ptrdiff_t>(at));
      room += get32(counted, at + 12);
    }
    buffer.assign(room, std::byte{0xee});
    put32(query_, 204, static_cast<std::uint32_t>(room));
    put64(query_, 208, reinterpret_cast<std::uintptr_t>(buffer.data()));
    return direct(22, query_);
  }

  /// The records of the buffer, each with its attributes.
  std::vector<ByteVector> records() const {
    std::vector<ByteVector> all;
    ConstBytes rest = ConstBytes(buffer).subspan(32);
    std::size_t left = 0;
    for (std::size_t group = 0; group < 3; ++group) left += amounts(query_, group).records;
    for (; left > 0; --left) {
      const std::size_t length = get16(rest, 0);
      const ConstBytes record = part(rest, 0, length);
      all.emplace_back(record.begin(), record.end());
      rest = rest.subspan(length);
    }
    return all;
  }

  /// All flows of a filter, without a change to them.
  std::vector<ByteVector> allFlows(const std::string& filter = web) {
    EXPECT_EQ(read(counts(filter), {}, filter), 0) << note();
    return records();
  }

  static ByteVector pageBody(std::uint64_t cursor, std::uint32_t max) {
    Record body;
    body.u32(1);
    for (int shift = 56; shift >= 0; shift -= 8) body.u8(cursor >> shift & 0xff);
    return body.u32(max).zero(12).u32(32 + 251 * max).zero(std::size_t{251} * max);
  }

  /// A page of connections; what the reply has of them.
  std::vector<ByteVector> page(std::uint64_t cursor, std::uint32_t max,
                               const std::string& filter = web) {
    EXPECT_EQ(command(24, pageBody(cursor, max), filterSelector(filter)), 0u) << note();
    std::vector<ByteVector> all;
    for (std::size_t i = 0; i < get32(reply, 16); ++i) {
      const ConstBytes record = part(ConstBytes(reply), 32 + 251 * i, 251);
      all.emplace_back(record.begin(), record.end());
    }
    return all;
  }

  std::uint32_t connectionCount(const std::string& filter = web) {
    EXPECT_EQ(command(23, Record().zero(16), filterSelector(filter)), 0u) << note();
    return get32(reply, 4);
  }

  /// The flow of that number among those of the filter `web`.
  ByteVector flow(unsigned number) {
    for (const ByteVector& each : allFlows()) {
      if (idOf(each) == 0x5c1e000100001001 + 3 * std::uint64_t{number}) return each;
    }
    ADD_FAILURE() << "there is no flow " << number;
    return ByteVector(251);
  }

  ByteVector query_;
  ByteVector buffer;
};

TEST_F(LabFlows, AConnectionIsARecordOf251Bytes) {
  ByteVector expected = Record()
                            .u16(251)
                            .u8(0)
                            .bytes(hex("5c1e000100001001"))
                            .to(79)
                            .u32(1767600000)
                            .u32(1767600060)
                            .u8(1)
                            .u8(0)
                            .u8(6)
                            .u8(2)
                            .bytes(hex("0800 02147a000000 00505699002a"))
                            .u64(31)
                            .u64(27)
                            .u64(19840)
                            .u64(11070)
                            .u32(4095)
                            .u8(1)
                            .u8(24)
                            .u8(44)
                            .u8(4)
                            .bytes(hex("0a1f0001 0a140128 00000000"))
                            .to(173)
                            .bytes(hex("c000 01bb 0000"))
                            .u16(536)
                            .u16(4)
                            .u16(4)
                            .u16(0)
                            .u32(150000)
                            .u32(60)
                            .u32(80)
                            .to(251);
  const auto connections = page(0, 1);
  ASSERT_EQ(connections.size(), 1u);
  EXPECT_EQ(connections[0], expected);
}

TEST_F(LabFlows, AConnectionOfIpv6HasItsOwnShape) {
  ByteVector expected = Record()
                            .u16(251)
                            .u8(0)
                            .bytes(hex("5c1e000100001052"))
                            .to(79)
                            .u32(1767600081)
                            .u32(1767600168)
                            .u8(1)
                            .u8(0)
                            .u8(6)
                            .u8(28)
                            .bytes(hex("86dd 02147a00001b 00505699002a"))
                            .u64(868)
                            .u64(756)
                            .u64(555520)
                            .u64(309960)
                            .u32(4095)
                            .u8(0)
                            .u8(26)
                            .u8(45)
                            .u8(7)
                            .bytes(hex("20010db8003100000000 00000000001c"))
                            .bytes(hex("20010db8001400000000 000000000028"))
                            .bytes(hex("20010db8006400000000 00000000001c"))
                            .to(225)
                            .bytes(hex("c01b 0016 0453"))
                            .u16(563)
                            .u16(6)
                            .u16(5)
                            .u16(0)
                            .u32(150027)
                            .u32(70)
                            .u32(88);
  const auto connections = page(0x5c1e000100001052, 1);
  ASSERT_EQ(connections.size(), 1u);
  EXPECT_EQ(connections[0], expected);
}

TEST_F(LabFlows, AttributesFollowTheRecordOfAFlow) {
  const ByteVector one = flow(1);
  EXPECT_EQ(get16(one, 0), 251u + 18u);
  EXPECT_EQ(get8(one, 2), 1u);
  EXPECT_EQ(ByteVector(one.begin() + 251, one.end()),
            (const ByteVector&)Record().u16(0).u16(2).u32(18).u16(0).u64(70));
  const ByteVector two = flow(2);
  EXPECT_EQ(get8(two, 2), 2u);
  EXPECT_EQ(ByteVector(two.begin() + 251, two.end()),
            (const ByteVector&)Record()
                .u16(5)
                .u16(3)
                .u32(42)
                .u16(0)
                .bytes(hex("1623303d4a5764717e8b98a5b2bfccd9"))
                .u16(14)
                .text("/shop/items/0", 14)
                .u16(7)
                .u16(3)
                .u32(47)
                .u16(0)
                .bytes(hex("1623303d4a5764717e8b98a5b2bfccd9"))
                .u16(19)
                .text("db0.kelpco.example", 19));
  const ByteVector three = flow(3);
  EXPECT_EQ(get8(three, 2), 3u);
  EXPECT_EQ(ByteVector(three.begin() + 251, three.end()), (const ByteVector&)Record()
                                                              .u16(1)
                                                              .u16(2)
                                                              .u32(18)
                                                              .u16(0)
                                                              .u64(767)
                                                              .u16(2)
                                                              .u16(2)
                                                              .u32(18)
                                                              .u16(0)
                                                              .u64(0)
                                                              .u16(8)
                                                              .u16(4)
                                                              .u32(82)
                                                              .u16(0)
                                                              .zero(4)
                                                              .u8(1)
                                                              .u8(5)
                                                              .bytes(hex("000000000005"))
                                                              .u32(21)
                                                              .u32(1000)
                                                              .u32(2000)
                                                              .u32(3000)
                                                              .u32(4000)
                                                              .zero(40));
}

TEST_F(LabFlows, TheCountsAgreeWithTheRecords) {
  const ByteVector counted = counts();
  ASSERT_EQ(read(counted, {}), 0) << note();
  EXPECT_EQ(ByteVector(query_.begin() + 216, query_.end()),
            ByteVector(counted.begin() + 216, counted.end()));
  EXPECT_TRUE(isZero(part(ConstBytes(buffer), 0, 32)));
  Amounts sums[3] = {};
  for (const ByteVector& record : records()) {
    const unsigned kind = kindOf(record);
    Amounts& sum = sums[kind == 1 ? 0 : kind == 3 || kind == 5 ? 2 : 1];
    std::size_t at = 251;
    for (unsigned i = 0; i < get8(record, 2); ++i) at += get32(record, at + 4);
    EXPECT_EQ(at, record.size()) << "attributes end where the record does";
    ++sum.records;
    sum.attributes += get8(record, 2);
    sum.attributeBytes += static_cast<std::uint32_t>(record.size() - 251);
    sum.bytes += static_cast<std::uint32_t>(record.size());
  }
  for (std::size_t group = 0; group < 3; ++group) {
    const Amounts reported = amounts(counted, group);
    EXPECT_GT(reported.records, 50u);
    EXPECT_EQ(reported.records, sums[group].records);
    EXPECT_EQ(reported.attributes, sums[group].attributes);
    EXPECT_EQ(reported.attributeBytes, sums[group].attributeBytes);
    EXPECT_EQ(reported.bytes, sums[group].bytes);
    EXPECT_EQ(reported.bytes - reported.attributeBytes, 251 * reported.records);
  }
}

TEST_F(LabFlows, WithoutAttributesARecordIsItsFixedPart) {
  ByteVector counted = query(1, web, {.withAttributes = 0});
  ASSERT_EQ(direct(22, counted), 0) << note();
  EXPECT_EQ(amounts(counted, 0).attributes, 0u);
  EXPECT_EQ(amounts(counted, 0).attributeBytes, 0u);
  ASSERT_EQ(read(counted, {.withAttributes = 0}), 0) << note();
  EXPECT_EQ(buffer.size(), 32 + 251u * 470u);
  for (const ByteVector& record : records()) {
    EXPECT_EQ(record.size(), 251u);
    EXPECT_EQ(get8(record, 2), 0u);
  }
}

TEST_F(LabFlows, OneKindIsReadByTheCountsOfTheOthersLeftOut) {
  const ByteVector counted = counts();
  ASSERT_EQ(read(counted, {}, web, 2), 0) << note();
  EXPECT_EQ(amounts(query_, 0).records, 0u);
  EXPECT_EQ(amounts(query_, 1).bytes, 0u);
  EXPECT_EQ(amounts(query_, 2).records, amounts(counted, 2).records);
  for (const ByteVector& record : records()) {
    EXPECT_TRUE(kindOf(record) == 3 || kindOf(record) == 5);
  }
}

TEST_F(LabFlows, ASmallBufferGetsWhatItHasRoomFor) {
  ByteVector body = query(2, web, {});
  put32(body, 216, 10);
  buffer.assign(33 + 2 * 251 + 18 + 82 + 36, std::byte{0xee});
  put32(body, 204, static_cast<std::uint32_t>(buffer.size() - 1));
  put64(body, 208, reinterpret_cast<std::uintptr_t>(buffer.data()));
  ASSERT_EQ(direct(22, body), 0) << note();
  EXPECT_EQ(amounts(body, 0).records, 2u);
  EXPECT_EQ(amounts(body, 0).bytes, 2u * 251u + 118u);
  EXPECT_EQ(buffer.back(), std::byte{0xee});
}

TEST_F(LabFlows, FlushingTakesWhatWasReadAndIsNoConnection) {
  const ByteVector before = counts();
  ASSERT_EQ(read(before, {.flush = 1}, web, 1), 0) << note();
  ByteVector after = counts();
  EXPECT_EQ(amounts(after, 0).records, amounts(before, 0).records);
  EXPECT_EQ(amounts(after, 1).records, 0u);
  EXPECT_EQ(amounts(after, 2).records, amounts(before, 2).records);
  ASSERT_EQ(read(after, {.flush = 1}), 0) << note();
  after = counts();
  EXPECT_EQ(amounts(after, 0).records, amounts(before, 0).records);
  EXPECT_EQ(amounts(after, 2).records, 0u);
  EXPECT_EQ(connectionCount(), amounts(before, 0).records);
  EXPECT_GT(amounts(counts(other), 2).records, 50u) << "another filter keeps its flows";
}

TEST_F(LabFlows, CountingFlushesNothing) {
  const ByteVector before = counts();
  ByteVector body = query(1, web, {.flush = 1, .resetRtt = 1});
  ASSERT_EQ(direct(22, body), 0) << note();
  EXPECT_EQ(counts(), before);
  EXPECT_EQ(get32(flow(0), 187), 150000u);
}

TEST_F(LabFlows, ResettingRoundTripsSetsThemToZeroAfterTheyWereRead) {
  ASSERT_EQ(read(counts(), {.resetRtt = 1}), 0) << note();
  EXPECT_EQ(get32(records()[0], 187), 150000u);
  EXPECT_EQ(get32(flow(0), 187), 0u);
  EXPECT_EQ(get32(flow(27), 239), 0u);
  EXPECT_EQ(get32(flow(27), 243), 70u);
  EXPECT_EQ(allFlows().size(), 470u);
}

TEST_F(LabFlows, AFilterIsFoundByItsVifAsWell) {
  ByteVector body =
      Record().bytes(query(1, "8d0c7a10-55f4-4c1e-9b02-0000632a0000", {})).set(199, 8);
  const ByteVector byName = counts();
  ASSERT_EQ(direct(22, body), 0) << note();
  EXPECT_EQ(ByteVector(body.begin() + 216, body.end()),
            ByteVector(byName.begin() + 216, byName.end()));
  body = Record().bytes(query(1, "8d0c7a10-55f4-4c1e-9b02-0000632a0001", {})).set(199, 8);
  EXPECT_EQ(direct(22, body), ENOENT);
}

TEST_F(LabFlows, WhatTheFiltersFlagsSwitchOffIsNotCollected) {
  std::map<unsigned, int> kinds;
  for (const ByteVector& record : allFlows(noInactive)) ++kinds[kindOf(record)];
  EXPECT_EQ(kinds.count(2), 0u);
  EXPECT_GT(kinds[1] * kinds[3] * kinds[4] * kinds[5], 0);
  kinds.clear();
  for (const ByteVector& record : allFlows(noLayer2)) ++kinds[kindOf(record)];
  EXPECT_EQ(kinds.count(4) + kinds.count(5), 0u);
  EXPECT_GT(kinds[1] * kinds[2] * kinds[3], 0);
  const ByteVector none = counts(noFlows, "kelpco-spoof.guard");
  EXPECT_TRUE(isZero(part(none, 216, 48)));
  EXPECT_EQ(command(23, Record().zero(16), filterSelector(noFlows, "kelpco-spoof.guard")), 0u);
  EXPECT_GT(get32(reply, 4), 100u) << "they are connections all the same";
}

TEST_F(LabFlows, AFilterThatHasNotSeenTrafficHasNone) {
  const ByteVector none = counts(noTraffic);
  EXPECT_TRUE(isZero(part(none, 216, 48)));
  ASSERT_EQ(read(none, {.flush = 1, .resetRtt = 1}, noTraffic), 0) << note();
  EXPECT_EQ(connectionCount(noTraffic), 0u);
  EXPECT_TRUE(page(0, 64, noTraffic).empty());
  EXPECT_EQ(command(43, Record().u32(0), filterSelector(noTraffic)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  EXPECT_EQ(command(67, Record().u32(0), filterSelector(noTraffic)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
}

TEST_F(LabFlows, PagesLeadToEveryConnection) {
  const std::uint32_t count = connectionCount();
  EXPECT_EQ(count, amounts(counts(), 0).records);
  std::vector<ByteVector> all;
  std::uint64_t cursor = 0;
  for (;;) {
    const auto some = page(cursor, 64);
    if (some.empty()) break;
    EXPECT_LE(some.size(), 64u);
    for (const ByteVector& each : some) {
      EXPECT_GE(idOf(each), cursor);
      EXPECT_EQ(kindOf(each), 1u);
      EXPECT_EQ(get16(each, 0), 251u);
      cursor = idOf(each) + 1;
      all.push_back(each);
    }
  }
  EXPECT_EQ(all.size(), count);
  EXPECT_TRUE(page(~0ull, 64).empty());
  EXPECT_TRUE(page(0, 0).empty());
  std::size_t place = 0;
  for (ByteVector& record : allFlows()) {
    if (kindOf(record) != 1) continue;
    record.resize(251);
    put16(record, 0, 251);
    put8(record, 2, 0);
    EXPECT_EQ(record, all.at(place++)) << "a connection is an active flow";
  }
}

TEST_F(LabFlows, EveryFormOccursOnTheFirstFilter) {
  std::set<std::pair<unsigned, unsigned>> kindsAndProtocols, algs;
  std::set<std::tuple<unsigned, unsigned, bool>> translations;
  std::set<unsigned> directions, flags, states[2], types, keys;
  for (const ByteVector& record : allFlows()) {
    const bool six = familyOf(record) != 2;
    const std::size_t size = six ? 16 : 4;
    kindsAndProtocols.insert({kindOf(record), protocolOf(record)});
    directions.insert(get8(record, 141));
    if (kindOf(record) < 3) flags.insert(get8(record, 144));
    if (kindOf(record) < 4) {
      translations.insert({protocolOf(record), familyOf(record),
                           !isZero(part(ConstBytes(record), 145 + 2 * size, size))});
    }
    if (protocolOf(record) == 6) {
      states[0].insert(get16(record, six ? 233 : 181));
      states[1].insert(get16(record, six ? 235 : 183));
      algs.insert({get8(record, six ? 217 : 165), get8(record, six ? 218 : 166)});
    }
    for (std::size_t at = 251; at < record.size(); at += get32(record, at + 4)) {
      keys.insert(get16(record, at));
      types.insert(get16(record, at + 2));
    }
  }
  for (const unsigned protocol : {0u, 1u, 6u, 17u, 41u, 47u, 50u, 58u, 200u, 201u}) {
    for (const unsigned kind : {1u, 2u, 3u}) {
      EXPECT_EQ(kindsAndProtocols.count({kind, protocol}), 1u) << kind << " " << protocol;
    }
    const unsigned family =
        protocol == 41 || protocol == 50 || protocol == 58 || protocol == 201 ? 28 : 2;
    for (const bool translated : {false, true}) {
      EXPECT_EQ(translations.count({protocol, family, translated}), 1u) << protocol;
    }
  }
  for (const unsigned protocol : {6u, 17u}) {
    EXPECT_EQ(translations.count({protocol, 28, true}), 1u);
    EXPECT_EQ(translations.count({protocol, 28, false}), 1u);
  }
  for (const unsigned kind : {4u, 5u, 6u})
    EXPECT_EQ(kindsAndProtocols.count({kind, kind / 6 * 6}), 1u);
  EXPECT_EQ(directions, (std::set<unsigned>{0, 1, 2}));
  EXPECT_EQ(flags, (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(states[0], (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}));
  EXPECT_EQ(states[1], (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13}));
  for (const unsigned type : {0u, 1u, 2u, 3u, 4u, 5u, 7u}) {
    EXPECT_EQ(algs.count({type, 1}), 1u) << type;
    EXPECT_EQ(algs.count({type, 2}), 1u) << type;
  }
  EXPECT_EQ(algs.count({6, 3}), 1u);
  EXPECT_EQ(types, (std::set<unsigned>{0, 1, 2, 3, 4, 7}));
  EXPECT_EQ(keys, (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST_F(LabFlows, WhatFlowsSayAgrees) {
  std::map<std::uint64_t, ByteVector> byId;
  for (const ByteVector& record : allFlows()) {
    EXPECT_TRUE(byId.emplace(idOf(record), record).second);
    EXPECT_LT(get32(record, 79), get32(record, 83)) << "it ends after it began";
    EXPECT_NE(part(record, 93, 6).front(), part(record, 99, 6).front()) << "two MAC addresses";
  }
  unsigned data = 0;
  for (const auto& [id, record] : byId) {
    const bool six = familyOf(record) == 28;
    const std::size_t alg = six ? 209 : 157;
    if ((protocolOf(record) != 6 && protocolOf(record) != 17) || familyOf(record) == 7 ||
        get8(record, alg + 9) != 2) {
      continue;
    }
    ++data;
    const auto control = byId.find(net64(record, alg));
    ASSERT_NE(control, byId.end()) << "a data flow has a control flow";
    const ByteVector& its = control->second;
    EXPECT_EQ(get8(its, alg + 9), 1u);
    EXPECT_EQ(get8(its, alg + 8), get8(record, alg + 8));
    EXPECT_EQ(ByteVector(its.begin() + 145, its.begin() + (six ? 177 : 153)),
              ByteVector(record.begin() + 145, record.begin() + (six ? 177 : 153)));
    EXPECT_EQ(getNet16(its, alg + 10), getNet16(record, alg + 18)) << "it led to this port";
    EXPECT_EQ(getNet16(record, alg + 10), getNet16(its, alg + 18));
    EXPECT_LT(get32(its, 79), get32(record, 79));
  }
  EXPECT_GE(data, 36u);
}

TEST_F(LabFlows, TheSameHostHasTheSameFlows) {
  const auto before = allFlows();
  ASSERT_EQ(read(counts(), {.flush = 1}), 0);
  {
    const StoreLock lock(store);
    fillHost(store, Host::load(store));
  }
  EXPECT_EQ(allFlows(), before);
  EXPECT_NE(allFlows(other), before);
}

TEST_F(LabFlows, AHostIsMadeWithAnyNumberOfThem) {
  {
    const StoreLock lock(store);
    Host host = Host::sample();
    host.setFlows(100000);
    host.save(store);
    fillHost(store, Host::load(store));
  }
  const ByteVector counted = counts(noTraffic);
  EXPECT_EQ(amounts(counted, 0).records + amounts(counted, 1).records + amounts(counted, 2).records,
            100000u);
  EXPECT_EQ(page(0, 64, noTraffic).size(), 64u);
}

TEST_F(LabFlows, FlowsNameRulesOfTheFilterThatDecideThem) {
  const ByteVector accepting = ruleRecord(71);
  const ByteVector dropping = Record().bytes(ruleRecord(72, 2));
  const ByteVector rejecting = Record().bytes(ruleRecord(73, 3));
  const ByteVector onLayer2 = Record().bytes(ruleRecord(74)).set(790, 0);
  const ByteVector jump = Record().bytes(ruleRecord(75, 4));
  for (const ByteVector& record : allFlows()) EXPECT_EQ(get32(record, 137), 4095u);
  ASSERT_EQ(createRuleSet("web", {accepting, dropping, rejecting, onLayer2}), 0u) << note();
  std::map<unsigned, std::set<unsigned>> rules;
  for (const ByteVector& record : allFlows()) rules[kindOf(record)].insert(get32(record, 137));
  EXPECT_EQ(rules[1], (std::set<unsigned>{71}));
  EXPECT_EQ(rules[2], (std::set<unsigned>{71}));
  EXPECT_EQ(rules[3], (std::set<unsigned>{72, 73}));
  EXPECT_EQ(rules[4], (std::set<unsigned>{74}));
  EXPECT_EQ(rules[5], (std::set<unsigned>{4095})) << "no rule drops on layer 2";
  EXPECT_EQ(get32(page(0, 1)[0], 137), 71u);
  for (const ByteVector& record : allFlows(other)) EXPECT_EQ(get32(record, 137), 4095u);
}

TEST_F(LabFlows, ClearedConnectionsAreNoFlowsAnyMore) {
  const ByteVector before = counts();
  ASSERT_EQ(command(43, Record().u32(0)), 0u) << note();
  EXPECT_EQ(get32(reply, 0), amounts(before, 0).records);
  EXPECT_EQ(connectionCount(), 0u);
  EXPECT_TRUE(page(0, 64).empty());
  const ByteVector after = counts();
  EXPECT_EQ(amounts(after, 0).records, 0u);
  EXPECT_EQ(amounts(after, 1).records, amounts(before, 1).records);
  EXPECT_EQ(amounts(after, 2).records, amounts(before, 2).records);
  ASSERT_EQ(command(43, Record().u32(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  EXPECT_GT(connectionCount(other), 100u);
}

TEST_F(LabFlows, SetConnectionsHaveTheirFlag) {
  const std::uint32_t count = connectionCount();
  ASSERT_EQ(command(66, Record().u8(1).zero(83)), 0u) << note();
  EXPECT_EQ(get32(reply, 80), 0u) << "nobody but its maker knows what that filter describes";
  ASSERT_EQ(command(66, Record().zero(84)), 0u) << note();
  EXPECT_EQ(get32(reply, 80), count);
  for (const ByteVector& record : page(0, count)) EXPECT_EQ(get8(record, 144) & 2u, 2u);
  ASSERT_EQ(command(67, Record().u32(0), filterSelector(other)), 0u) << note();
  const std::uint32_t set = get32(reply, 0);
  EXPECT_EQ(set, connectionCount(other));
  for (const ByteVector& record : page(0, 64, other)) EXPECT_EQ(get8(record, 144) & 2u, 2u);
}

/// One entry of command 37; addresses and ports as they cross.
ByteVector entry(const std::string& source, const std::string& destination,
                 const std::string& ports, unsigned flags, unsigned protocol) {
  return Record()
      .bytes(hex(source))
      .to(16)
      .bytes(hex(destination))
      .to(32)
      .bytes(hex(ports))
      .u8(flags)
      .u16(0)
      .u8(protocol);
}

ByteVector entries(const std::vector<ByteVector>& list) {
  Record body;
  body.u32(list.size()).u32(0);
  for (const ByteVector& each : list) body.bytes(each);
  return body;
}

TEST_F(LabFlows, AListSetsTheConnectionsThatItNames) {
  const ByteVector first = entry("0a1f0001", "0a140128", "c00001bb", 2, 6);
  ASSERT_EQ(get8(page(0, 1)[0], 144), 4u);
  ASSERT_EQ(command(37, entries({first})), 0u) << note();
  EXPECT_EQ(get32(reply, 4), 1u);
  EXPECT_EQ(get8(page(0, 1)[0], 144), 6u);
  const ByteVector six = entry("20010db800310000000000000000001c",
                               "20010db8001400000000000000000028", "c01b0016", 1, 6);
  ASSERT_EQ(command(37, entries({first, six})), 0u) << note();
  EXPECT_EQ(get32(reply, 4), 2u);
  // As a statement makes it: no protocol, the ports in host order, any address.
  ASSERT_EQ(command(37, entries({entry("0a1f0001", "ffffffff", "00c0bb01", 0, 0)})), 0u);
  EXPECT_EQ(get32(reply, 4), 1u);
  ASSERT_EQ(command(37, entries({entry("0a1f0001", "ffffffff", "c00001bb", 0, 0)})), 0u);
  EXPECT_EQ(get32(reply, 4), 0u);
  ASSERT_EQ(command(37, entries({entry("0a1f0001", "ffffffff", "00000000", 4, 0)})), 0u);
  EXPECT_EQ(get32(reply, 4), 0u) << "another direction";
  ASSERT_EQ(command(37, entries({entry("0a1f0001", "ffffffff", "00000000", 0, 17)})), 0u);
  EXPECT_EQ(get32(reply, 4), 0u) << "another protocol";
}

TEST_F(LabFlows, AListThatIsWrongSetsNothing) {
  const ByteVector one = entry("0a1f0001", "0a140128", "c00001bb", 2, 6);
  const ByteVector two = entry("0a1f0002", "0a140128", "c00001bb", 2, 6);
  const auto refused = [this](const ByteVector& body, const std::string& why) {
    EXPECT_EQ(command(37, body), 25u);
    EXPECT_EQ(note(), why);
  };
  refused(entries({two, one}), "connections out of their order");
  refused(entries({one, one}), "connections out of their order");
  refused(Record().bytes(entries({one})).set(0, 2), "2 connections in 40 bytes");
  refused(Record().bytes(entries({one})).set(3, 0xff), "4278190081 connections in 40 bytes");
  refused(Record().bytes(entries({one})).zero(1), "1 connections in 41 bytes");
  refused(Record().bytes(entries({one})).set(4, 1), "command 37 with reserved bytes set");
  refused(Record().bytes(entries({one})).set(8 + 38, 1), "connection with reserved bytes set");
  refused(Record().bytes(entries({one})).set(8 + 36, 6), "connection with flags 6");
  refused(Record().bytes(entries({one})).set(8 + 36, 10), "connection with flags 10");
  refused(Record().bytes(entries({one})).set(8 + 4, 1),
          "connection with an IPv4 address of more than 4 bytes");
  refused(Record().u32(0), "command 37 with a body of 4 bytes, 8 needed");
  EXPECT_EQ(get8(page(0, 1)[0], 144), 4u);
}

TEST_F(LabFlows, CommandsThatAreWrongInTheirFormAreRefused) {
  const ByteVector good = pageBody(0, 2);
  const auto refused = [this](const ByteVector& body, const std::string& why) {
    EXPECT_EQ(command(24, body), 25u);
    EXPECT_EQ(note(), why);
  };
  refused(Record().bytes(good).set(0, 2), "connections of version 2");
  refused(Record().bytes(good).set(1, 1), "command 24 with reserved bytes set");
  refused(Record().bytes(good).set(16, 1), "command 24 with reserved bytes set");
  refused(Record().bytes(good).set(27, 1), "command 24 with reserved bytes set");
  refused(Record().bytes(good).set(12, 3), "3 connections in 534 bytes of room");
  refused(Record().bytes(good).set(15, 0x80), "2147483650 connections in 534 bytes of room");
  refused(Record().bytes(good).set(28, 0), "2 connections in 512 bytes of room");
  refused(Record().zero(31).set(0, 1), "command 24 with a body of 31 bytes, 32 needed");
  EXPECT_EQ(command(23, Record().zero(15).u8(1)), 25u);
  EXPECT_EQ(command(23, Record().zero(11)), 25u);
  EXPECT_EQ(command(43, Record().u32(1)), 25u);
  EXPECT_EQ(command(43, Record().zero(3)), 25u);
  EXPECT_EQ(command(66, Record().zero(83)), 25u);
  EXPECT_EQ(command(66, Record().zero(83).u8(1)), 25u);
  EXPECT_EQ(command(67, Record().u32(256)), 25u);
  for (const unsigned number : {23u, 24u, 37u, 43u, 66u, 67u}) {
    EXPECT_EQ(command(number, Record().zero(84), Record().zero(100)), 21u);
  }
  EXPECT_GT(connectionCount(), 100u);
}

TEST_F(LabFlows, RequestsThatAreWrongInTheirFormFail) {
  const ByteVector counting = query(1, web, {});
  const auto fails = [this](ByteVector body, int error, const std::string& why) {
    EXPECT_EQ(direct(22, body), error);
    EXPECT_EQ(note(), why);
  };
  fails(Record().bytes(counting).set(200, 0), EINVAL, "flow operation 0");
  fails(Record().bytes(counting).set(200, 3), EINVAL, "flow operation 3");
  fails(Record().bytes(counting).set(201, 2), EINVAL, "flush 2");
  fails(Record().bytes(counting).set(202, 2), EINVAL, "reset rtt 2");
  fails(Record().bytes(counting).set(203, 2), EINVAL, "with attributes 2");
  fails(Record().bytes(counting).set(204, 1), EINVAL, "count of flows with 1 bytes of room");
  fails(Record().bytes(counting).set(263, 1), EINVAL, "count of flows with counts set");
  fails(Record().bytes(counting).set(164, 'k'), EINVAL, "flows with reserved bytes set");
  fails(Record().bytes(counting).set(199, 2), EINVAL, "flows of a selector of type 2");
  fails(Record().bytes(counting).set(99, 'x'), EINVAL, "agent name is not padded with zeros");
  fails(Record().bytes(counting).set(163, 'x'), EINVAL, "filter name is not padded with zeros");
  fails(Record().zero(263), EINVAL, "body of 263 bytes in place of 264");
  fails(query(1, "nowhere", {}), ENOENT, "there is no filter nowhere of kelpco-sfw");
  fails(query(1, web, {}, "nobody"), ENOENT,
        "there is no filter nic-1002672-eth0-kelpco-sfw.2 of nobody");
  fails(query(1, "shared-addrset-filter-kelpco-sfw", {}), ENOENT,
        "there is no filter shared-addrset-filter-kelpco-sfw of kelpco-sfw");
  fails(Record().bytes(query(2, web, {})).set(204, 31), EINVAL, "room of 31 bytes");
}

TEST_F(LabFlows, WhatCannotBeWrittenIsNotFlushed) {
  const ByteVector counted = counts();
  ByteVector body = query(2, web, {.flush = 1, .resetRtt = 1});
  std::copy(counted.begin() + 216, counted.end(), body.begin() + 216);
  put32(body, 204, 1000000);
  put64(body, 208, 16);
  EXPECT_EQ(direct(22, body), EFAULT);
  EXPECT_EQ(note(), "buffer cannot be written");
  EXPECT_EQ(counts(), counted);
  EXPECT_EQ(get32(flow(0), 187), 150000u);
}

TEST_F(LabFlows, AFileThatIsDamagedFailsTheRequest) {
  for (const std::string& content : {std::string(), std::string("TARNFLW1"), std::string(64, 'x'),
                                     "TARNFLW1" + std::string(4, '\xff') + std::string(52, 0)}) {
    std::ofstream(store.path("filters/0/flows"), std::ios::binary) << content;
    ByteVector body = query(1, web, {});
    EXPECT_EQ(direct(22, body), EIO);
    EXPECT_NE(note().find("damaged file"), std::string::npos);
    ByteVector sent = message(23, Record().zero(16));
    EXPECT_EQ(send(sent, filterSelector(web)), EIO);
  }
}

TEST_F(LabFlows, TheLogHasTheFieldsAndALineForEachRecord) {
  ASSERT_EQ(read(counts(noLayer2), {.flush = 1}, noLayer2, 1), 0) << note();
  const std::string text = decodeRequest(journal().back());
  EXPECT_TRUE(
      text.starts_with("firewall 22: flows(agent \"kelpco-sfw\", filter "
                       "\"nic-1003044-eth1-kelpco-sfw.2\", selector 7, operation 2, "
                       "flush 1, reset rtt 0, with attributes 1, room "))
      << text;
  const std::string lines = decodeRecords(journal().back());
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), amounts(query_, 1).records);
  EXPECT_EQ(decodeRecords(journal()[journal().size() - 2]), "") << "a count has no records";
  page(0, 1);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    flow 5c1e000100001001 active protocol 6 ethertype 0800 rule 4095 direction 1 "
            "states 24 44 flags 4 from 10.31.0.1 port 49152 to 10.20.1.40 port 443, tcp 4:4, "
            "bytes in 19840 out 11070, packets in 31 out 27, attributes 0\n");
  command(37, entries({entry("0a1f0001", "0a140128", "c00001bb", 2, 6)}));
  EXPECT_EQ(decodeRecords(journal().back()),
            "    10.31.0.1 port 49152 to 10.20.1.40 port 443 direction 1 protocol 6\n");
}

}  // namespace
}  // namespace TarnLab
