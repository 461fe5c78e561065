// Commands 23, 24, 37, 43, 66 and 67: the active flows of a filter as its connections.
#include <gtest/gtest.h>

#include "FlowBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

using LabConnections = FlowBench;

TEST_F(LabConnections, AConnectionIsARecordOf251Bytes) {
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

TEST_F(LabConnections, AConnectionOfIpv6HasItsOwnShape) {
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

TEST_F(LabConnections, PagesLeadToEveryConnection) {
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

TEST_F(LabConnections, ClearedConnectionsAreNoFlowsAnyMore) {
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

TEST_F(LabConnections, SetConnectionsHaveTheirFlag) {
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

TEST_F(LabConnections, AListSetsTheConnectionsThatItNames) {
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

TEST_F(LabConnections, AListThatIsWrongSetsNothing) {
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

TEST_F(LabConnections, CommandsThatAreWrongInTheirFormAreRefused) {
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

TEST_F(LabConnections, TheLogHasALineForEachOfThem) {
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
