// Request 22: the flows of a filter.
#include <gtest/gtest.h>

#include <fstream>

#include "FlowBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

using LabFlows = FlowBench;

/// One attribute: a head of 10 bytes, which says the size of all of it, and its value.
ByteVector attribute(unsigned key, unsigned type, unsigned size, const ByteVector& value) {
  return Record().u16(key).u16(type).u32(size).u16(0).bytes(value);
}

/// A value with a profile's identifier in front of its text.
ByteVector profileText(unsigned length, const std::string& text) {
  return Record().bytes(hex("1623303d4a5764717e8b98a5b2bfccd9")).u16(length).text(text, length);
}

TEST_F(LabFlows, AttributesFollowTheRecordOfAFlow) {
  const ByteVector one = flow(1);
  EXPECT_EQ(get16(one, 0), 251u + 18u);
  EXPECT_EQ(get8(one, 2), 1u);
  EXPECT_EQ(ByteVector(one.begin() + 251, one.end()), attribute(0, 2, 18, Record().u64(70)));
  const ByteVector two = flow(2);
  EXPECT_EQ(get8(two, 2), 2u);
  EXPECT_EQ(ByteVector(two.begin() + 251, two.end()),
            (const ByteVector&)Record()
                .bytes(attribute(5, 3, 42, profileText(14, "/shop/items/0")))
                .bytes(attribute(7, 3, 47, profileText(19, "db0.kelpco.example"))));
  const ByteVector three = flow(3);
  EXPECT_EQ(get8(three, 2), 3u);
  const ByteVector sid = Record()
                             .zero(4)
                             .u8(1)
                             .u8(5)
                             .bytes(hex("000000000005"))
                             .u32(21)
                             .u32(1000)
                             .u32(2000)
                             .u32(3000)
                             .u32(4000)
                             .zero(40);
  EXPECT_EQ(ByteVector(three.begin() + 251, three.end()),
            (const ByteVector&)Record()
                .bytes(attribute(1, 2, 18, Record().u64(767)))
                .bytes(attribute(2, 2, 18, Record().u64(0)))
                .bytes(attribute(8, 4, 82, sid)));
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
}

}  // namespace
}  // namespace TarnLab
