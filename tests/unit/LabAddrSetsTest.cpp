#include <arpa/inet.h>
#include <gtest/gtest.h>

#include "LabBench.h"

namespace TarnLab {
namespace {

class LabAddrSets : public LabBench {
 protected:
  static ByteVector name(const std::string& text, std::size_t size) {
    return Record().text(text, 38).to(size);
  }

  /// An attribute of encoded value, as an element of a chain.
  static ByteVector attribute(unsigned key, unsigned value) {
    return Record().u16(1).u16(0).u32(18).u16(key).u16(2).u32(18).u16(0).u64(value);
  }

  static ByteVector chain(unsigned type, const std::vector<ByteVector>& elements) {
    std::size_t size = 0;
    for (const ByteVector& element : elements) size += element.size();
    Record bytes;
    bytes.u32(type).u32(elements.size()).u32(size);
    for (const ByteVector& element : elements) bytes.bytes(element);
    return bytes;
  }

  std::uint32_t createContainer(const std::string& set, const ByteVector& content,
                                unsigned type = 2) {
    return command(75, Record()
                           .text(set, 38)
                           .u64(0)
                           .u32(get32(content, 4))
                           .u32(type)
                           .u32(content.size())
                           .u8(3)
                           .to(86)
                           .bytes(content));
  }

  std::uint32_t configure(unsigned operation, const std::string& set, const std::string& address) {
    std::uint32_t binary = 0;
    if (!address.empty()) ::inet_pton(AF_INET, address.c_str(), &binary);
    return command(46, Record().u32(operation).text(set, 38).u32(1).u32(binary).to(194));
  }

  ByteVector page(const std::string& set, unsigned max, unsigned from, std::size_t at,
                  std::size_t stride) {
    return Record().text(set, 38).u32(0).u32(max).u32(from).to(at + max * stride);
  }
};

TEST_F(LabAddrSets, ASetIsStoredAndTold) {
  ASSERT_EQ(createAddrSet("clients", {ipv4("10.0.0.1"), ipv4Block("10.1.0.0", 16)}), 0u);
  ASSERT_EQ(createAddrSet("clients", {ipv4("10.0.0.9")}), 0u);
  ASSERT_EQ(command(15, name("clients", 50)), 0u);
  EXPECT_EQ(get32(reply, 38), 1u);
  EXPECT_EQ(get32(reply, 42), 1u);
  EXPECT_EQ(get32(reply, 46), 144u);
  ASSERT_EQ(command(16, name("clients", 58)), 0u);
  EXPECT_EQ(get32(reply, 38), 1u);
  EXPECT_GT(get64(reply, 42), 0u);
  EXPECT_EQ(get64(reply, 50), 2u);
}

TEST_F(LabAddrSets, AddressesAreReadAPageAtATime) {
  ASSERT_EQ(createAddrSet("a", {ipv4("10.0.0.1"), ipv4("10.0.0.2"), ipv4("10.0.0.3")}), 0u);
  ASSERT_EQ(command(17, page("a", 2, 1, 70, 144)), 0u);
  EXPECT_EQ(get32(reply, 50), 2u);
  EXPECT_EQ(get64(reply, 62), 1u);
  EXPECT_EQ(ByteVector(reply.begin() + 70, reply.begin() + 214), ipv4("10.0.0.2"));
  EXPECT_EQ(ByteVector(reply.begin() + 214, reply.begin() + 358), ipv4("10.0.0.3"));
  ASSERT_EQ(command(17, page("a", 2, 3, 70, 144)), 0u);
  EXPECT_EQ(get32(reply, 50), 0u);
  EXPECT_EQ(command(17, page("a", 2, 4, 70, 144)), 30u);
  EXPECT_EQ(command(17, page("none", 2, 0, 70, 144)), 29u);
  EXPECT_EQ(command(17, Record().text("a", 38).u32(0).u32(0xffffffff).u32(0).to(70)), 25u);
}

TEST_F(LabAddrSets, SetsAreCountedAndListedByTheirKind) {
  const ByteVector mac = Record().u16(7).u16(0).u32(0x44332211).u16(0x6655).to(144);
  const ByteVector number = Record().u16(12).u16(0).u32(0).u32(0).u32(0).u64(33).to(144);
  ASSERT_EQ(createAddrSet("ip", {ipv4("10.0.0.1")}), 0u);
  ASSERT_EQ(createAddrSet("mac", {mac}), 0u);
  ASSERT_EQ(createAddrSet("attr", {number}), 0u);
  ASSERT_EQ(createContainer("profile", chain(2, {attribute(0, 1)})), 0u);
  const std::pair<unsigned, unsigned> counts[] = {{0, 4}, {1, 1}, {2, 1}, {4, 2}, {5, 0}};
  for (const auto& [type, count] : counts) {
    ASSERT_EQ(command(20, Record().u32(type).u32(0)), 0u);
    EXPECT_EQ(get32(reply, 4), count) << type;
    ASSERT_EQ(command(21, Record().u32(type).u32(9).u32(0).u32(0).zero(9 * 38)), 0u);
    EXPECT_EQ(get32(reply, 12), count) << type;
  }
  ASSERT_EQ(command(21, Record().u32(0).u32(9).u32(2).u32(0).zero(9 * 38)), 0u);
  EXPECT_EQ(getText(reply, 16, 38), "mac");
  EXPECT_EQ(getText(reply, 54, 38), "profile");
}

TEST_F(LabAddrSets, StatisticsAreTheSameAtEveryReadingUntilTheyAreCleared) {
  ASSERT_EQ(createAddrSet("a", {ipv4("10.0.0.1"), ipv4("10.0.0.2")}), 0u);
  ASSERT_EQ(command(22, Record().u32(0).u32(1).u32(0).u32(0).zero(130)), 0u);
  EXPECT_EQ(get32(reply, 12), 1u);
  EXPECT_EQ(getText(reply, 16, 38), "a");
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(get64(reply, 54 + 8 * i), 3 * (2 * i + 3));
  EXPECT_EQ(get64(reply, 118), 303u);
  EXPECT_EQ(get64(reply, 126), 159u);

  const auto entries = [](unsigned clear) {
    return Record().text("a", 38).u32(0).u32(2).u32(0).u32(clear).to(58 + 160);
  };
  ASSERT_EQ(command(19, entries(1)), 0u);
  EXPECT_EQ(get32(reply, 54), 2u);
  EXPECT_EQ(get64(reply, 58), 3u);
  EXPECT_EQ(get64(reply, 58 + 80), 6u);
  ASSERT_EQ(command(19, entries(0)), 0u);
  EXPECT_EQ(get64(reply, 58), 0u);
}

TEST_F(LabAddrSets, SetsAreEmptiedAndDestroyed) {
  ASSERT_EQ(createAddrSet("a", {ipv4("10.0.0.1")}), 0u);
  ASSERT_EQ(command(64, name("a", 46)), 0u);
  ASSERT_EQ(command(15, name("a", 50)), 0u);
  EXPECT_EQ(get32(reply, 38), 0u);
  ASSERT_EQ(command(14, name("a", 42)), 0u);
  for (const unsigned number : {14u, 15u, 16u, 64u}) {
    EXPECT_EQ(command(number, name("a", 70)), 29u) << number;
  }
  ASSERT_EQ(createAddrSet("a", {}), 0u);
  ASSERT_EQ(createAddrSet("b", {}), 0u);
  ASSERT_EQ(command(65, ByteVector(4)), 0u);
  ASSERT_EQ(command(20, ByteVector(8)), 0u);
  EXPECT_EQ(get32(reply, 4), 0u);
}

TEST_F(LabAddrSets, AContainerIsStoredAndItsChainComesBack) {
  const ByteVector content = chain(2, {attribute(0, 33), attribute(1, 771)});
  ASSERT_EQ(createContainer("tls", content), 0u);
  ASSERT_EQ(command(15, name("tls", 50)), 0u);
  EXPECT_EQ(get32(reply, 38), 2u);
  EXPECT_EQ(get32(reply, 42), 2u);
  EXPECT_EQ(get32(reply, 46), content.size());
  ASSERT_EQ(command(56, Record().text("tls", 38).u32(0).u32(2).to(70 + content.size())), 0u);
  EXPECT_EQ(ByteVector(reply.begin() + 70, reply.end()), content);
  EXPECT_EQ(get32(reply, 50), 2u);
  EXPECT_EQ(command(56, Record().text("tls", 38).u32(0).u32(2).to(69 + content.size())), 9u);
  EXPECT_EQ(command(56, name("none", 70)), 29u);
  EXPECT_EQ(command(17, page("tls", 1, 0, 70, 144)), 34u);
  ASSERT_EQ(createAddrSet("a", {}), 0u);
  EXPECT_EQ(command(56, name("a", 170)), 34u);
}

TEST_F(LabAddrSets, AnEmptiedContainerIsAnEmptyChain) {
  ASSERT_EQ(createContainer("tls", chain(2, {attribute(0, 33)})), 0u);
  ASSERT_EQ(command(64, name("tls", 46)), 0u);
  ASSERT_EQ(command(56, name("tls", 82)), 0u);
  EXPECT_EQ(ByteVector(reply.begin() + 70, reply.end()), chain(2, {}));
}

TEST_F(LabAddrSets, AContainerIsCheckedElementByElement) {
  const ByteVector good = chain(2, {attribute(0, 33)});
  const std::pair<std::size_t, unsigned> bad[] = {{0, 3},   {4, 2},   {8, 25}, {12, 2},  {14, 1},
                                                  {16, 19}, {20, 12}, {22, 3}, {24, 17}, {28, 1}};
  for (const auto& [offset, value] : bad) {
    EXPECT_EQ(createContainer("c", Record().bytes(good).set(offset, value)), 35u) << offset;
  }
  EXPECT_EQ(createContainer("c", good, 3), 35u);
  EXPECT_EQ(createContainer("c", Record().bytes(good).u8(0)), 35u);
}

TEST_F(LabAddrSets, ACreationIsCheckedByteForByte) {
  const ByteVector good =
      Record().text("a", 38).u64(0).u32(1).u32(1).u32(144).u8(3).to(86).bytes(ipv4("10.0.0.1"));
  ASSERT_EQ(command(13, good), 0u);
  for (const std::size_t reserved : {5u, 37u, 38u, 45u, 54u, 59u, 61u, 78u, 85u}) {
    EXPECT_EQ(command(13, Record().bytes(good).set(reserved, 1)), 25u) << reserved;
  }
  EXPECT_EQ(command(13, Record().bytes(good).set(46, 2)), 25u);
  EXPECT_EQ(command(13, Record().bytes(good).set(50, 2)), 34u);
  EXPECT_EQ(command(13, Record().bytes(good).set(58, 2)), 23u);
  EXPECT_EQ(command(13, Record().bytes(good).set(58, 7)), 25u);
  EXPECT_EQ(command(13, Record().bytes(good).set(58, 11)), 25u) << "no IPv6 address is in it";
  EXPECT_EQ(command(13, Record().bytes(good).set(0, 0)), 29u);
  EXPECT_EQ(command(13, Record().bytes(good).set(86, 10)), 33u);
  EXPECT_EQ(createAddrSet("a", {ipv4("10.0.0.1"), Record().u16(7).u16(0).u32(1).to(144)}), 34u);
  EXPECT_EQ(createAddrSet("a", {Record().u16(11).u16(0).text("b", 38).to(144)}), 33u);
}

TEST_F(LabAddrSets, AnIPv6SetNeedsItsFlag) {
  const ByteVector address = Record().u16(2).u16(0).u8(0x20).u8(1).to(144);
  EXPECT_EQ(createAddrSet("a", {address}), 25u);
  EXPECT_EQ(command(13, Record().text("a", 38).u64(0).u32(1).u32(1).u32(144).u8(11).to(86).bytes(
                            address)),
            0u);
}

TEST_F(LabAddrSets, SharingIsKeptForAFilter) {
  ASSERT_EQ(command(45, ByteVector(4)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  ASSERT_EQ(command(44, Record().u32(1)), 0u);
  ASSERT_EQ(command(45, ByteVector(4)), 0u);
  EXPECT_EQ(get32(reply, 0), 1u);
  ASSERT_EQ(command(45, ByteVector(4), filterSelector(other)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  ASSERT_EQ(command(44, Record().u32(0)), 0u);
  ASSERT_EQ(command(45, ByteVector(4)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
}

TEST_F(LabAddrSets, AnAgentsSharedSetsAreSetsOfTheirOwn) {
  const ByteVector shared = filterSelector("shared-addrset-filter-");
  ASSERT_EQ(createAddrSet("local", {}), 0u);
  ASSERT_EQ(command(20, ByteVector(8), shared), 0u);
  EXPECT_EQ(get32(reply, 4), 0u);
  const ByteVector body = Record().text("global", 38).u64(0).u32(0).u32(1).u32(0).u8(3).to(86);
  ASSERT_EQ(command(13, body, filterSelector("shared-addrset-filter-kelpco-sfw.2")), 0u);
  ASSERT_EQ(command(20, ByteVector(8), shared), 0u);
  EXPECT_EQ(get32(reply, 4), 1u);
  ASSERT_EQ(command(20, ByteVector(8), filterSelector("SHARED-addrset-filter-", "kelpco-inspect")),
            0u);
  EXPECT_EQ(get32(reply, 4), 0u);
  ByteVector sent = message(20, ByteVector(8));
  EXPECT_EQ(send(sent, filterSelector("shared-addrset-filter-", "nobody")), ENOENT);
  EXPECT_EQ(command(44, Record().u32(1), shared), 7u);
}

TEST_F(LabAddrSets, StatisticsAreSwitchedForTheFilterAndForASet) {
  ASSERT_EQ(createAddrSet("a", {}), 0u);
  ASSERT_EQ(configure(4, "a", ""), 0u);
  EXPECT_EQ(get32(reply, 186), 0u);
  EXPECT_EQ(get32(reply, 190), 0u);
  ASSERT_EQ(configure(1, "", ""), 0u);
  ASSERT_EQ(configure(2, "a", ""), 0u);
  ASSERT_EQ(configure(4, "a", ""), 0u);
  EXPECT_EQ(get32(reply, 186), 1u);
  EXPECT_EQ(get32(reply, 190), 2u);
  ASSERT_EQ(configure(1, "a", ""), 0u);
  EXPECT_EQ(get32(reply, 186), 2u);
  EXPECT_EQ(get32(reply, 190), 1u);
  ASSERT_EQ(configure(3, "a", ""), 0u);
  ASSERT_EQ(configure(4, "a", ""), 0u);
  EXPECT_EQ(get32(reply, 190), 0u);
  EXPECT_EQ(configure(1, "none", ""), 29u);
  EXPECT_EQ(configure(0, "a", ""), 3u);
  EXPECT_EQ(configure(7, "a", ""), 3u);
}

TEST_F(LabAddrSets, TheMarkOfAnAddressIsChangedAndRead) {
  ASSERT_EQ(createAddrSet("a", {ipv4("10.0.0.1"), ipv4("10.0.0.2")}), 0u);
  ASSERT_EQ(configure(5, "a", "10.0.0.2"), 0u);
  EXPECT_EQ(get32(reply, 186), 0u);
  EXPECT_EQ(get32(reply, 190), 1u);
  ASSERT_EQ(command(18, page("a", 2, 0, 54, 145)), 0u);
  EXPECT_EQ(get32(reply, 50), 2u);
  EXPECT_EQ(get8(reply, 54 + 144), 0u);
  EXPECT_EQ(get8(reply, 54 + 145 + 144), 1u);
  ASSERT_EQ(configure(6, "a", "10.0.0.2"), 0u);
  EXPECT_EQ(get32(reply, 186), 1u);
  EXPECT_EQ(configure(5, "a", "10.0.0.3"), 30u);
  EXPECT_EQ(configure(5, "none", "10.0.0.3"), 29u);
}

TEST_F(LabAddrSets, HalfAMillionAddressesAreStoredAndRead) {
  const std::vector<ByteVector> addresses(500000, ipv4("10.0.0.1"));
  ASSERT_EQ(createAddrSet("big", addresses), 0u);
  ASSERT_EQ(command(17, page("big", 1, 499999, 70, 144)), 0u);
  EXPECT_EQ(get32(reply, 50), 1u);
}

TEST_F(LabAddrSets, EveryTruncatedRequestIsABadMessage) {
  ASSERT_EQ(createAddrSet("a", {}), 0u);
  const std::pair<unsigned, std::size_t> sizes[] = {
      {13, 86}, {14, 38}, {15, 50}, {16, 58}, {17, 70},  {18, 54}, {19, 58}, {20, 8},
      {21, 16}, {22, 16}, {44, 4},  {45, 4},  {46, 194}, {56, 70}, {64, 38}, {75, 86}};
  for (const auto& [number, size] : sizes) {
    for (std::size_t cut = 0; cut < size; ++cut) {
      EXPECT_EQ(command(number, name("a", cut)), 25u) << number << " with " << cut;
    }
  }
}

}  // namespace
}  // namespace TarnLab
