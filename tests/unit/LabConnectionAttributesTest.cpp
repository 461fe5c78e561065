#include "LabBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

class LabConnectionAttributes : public FilledLabBench {
 protected:
  /// Elements of a number, and of a sid with four sub-authorities.
  static ByteVector number(unsigned key, unsigned value) {
    return Record().u16(1).u16(0).u32(18).u16(key).u16(2).u32(18).u16(0).u64(value);
  }
  static ByteVector userSid(unsigned last) {
    return Record().u16(1).u16(0).u32(82).u16(9).u16(4).u32(82).u16(0).bytes(usualSid(last));
  }

  static ByteVector chain(const std::vector<ByteVector>& elements) {
    std::size_t size = 0;
    for (const ByteVector& element : elements) size += element.size();
    Record bytes;
    bytes.u32(2).u32(elements.size()).u32(size);
    for (const ByteVector& element : elements) bytes.bytes(element);
    return bytes;
  }

  /// A connection from 10.0.0.1, port 80 to 10.0.0.2, port 443, TCP in.
  static ByteVector connection() {
    return Record()
        .u32(0x0100000a)
        .to(16)
        .u32(0x0200000a)
        .to(32)
        .u16(0x5000)
        .u16(0xbb01)
        .u8(2)
        .to(39)
        .u8(6);
  }

  static ByteVector request(unsigned operation, const ByteVector& connection, unsigned selector,
                            std::uint64_t id, const std::vector<ByteVector>& elements) {
    const ByteVector attributes = chain(elements);
    return Record()
        .u32(0)
        .u32(operation)
        .bytes(connection)
        .u32(selector)
        .u64(id)
        .u32(elements.size())
        .u32(attributes.size())
        .bytes(attributes);
  }

  std::uint32_t setById(std::uint64_t id, const std::vector<ByteVector>& elements) {
    return command(73, request(0, ByteVector(40), 0, id, elements));
  }

  /// How many attributes a connection has, and in how many bytes.
  std::pair<unsigned, unsigned> count(unsigned selector, const ByteVector& connection,
                                      std::uint64_t id) {
    EXPECT_EQ(command(74, Record().u32(selector).bytes(connection).u64(id).u64(0)), 0u) << note();
    return {get32(reply, 52), get32(reply, 56)};
  }
  std::pair<unsigned, unsigned> countById(std::uint64_t id) { return count(0, ByteVector(40), id); }
};

TEST_F(LabConnectionAttributes, AttributesOfAConnectionAreKeptByItsId) {
  EXPECT_EQ(countById(5), (std::pair{0u, 12u}));
  ASSERT_EQ(setById(5, {number(0, 3), number(1, 771)}), 0u) << note();
  EXPECT_EQ(get32(reply, 0), 0u);
  EXPECT_EQ(countById(5), (std::pair{2u, 12 + 2 * 26u}));
  ASSERT_EQ(setById(5, {number(1, 771), number(2, 47)}), 0u);
  EXPECT_EQ(countById(5), (std::pair{3u, 12 + 3 * 26u})) << "the same attribute is kept once";
  EXPECT_EQ(countById(6), (std::pair{0u, 12u}));
}

TEST_F(LabConnectionAttributes, AConnectionIsFoundByItsAddressesAsGiven) {
  ASSERT_EQ(command(73, request(0, connection(), 1, 0, {number(0, 3)})), 0u) << note();
  EXPECT_EQ(count(2, connection(), 0), (std::pair{1u, 12 + 26u}));
  EXPECT_EQ(count(2, Record().bytes(connection()).set(35, 0xbc), 0), (std::pair{0u, 12u}));
}

TEST_F(LabConnectionAttributes, AttributesAreDeletedOneByOneOrAllAtOnce) {
  ASSERT_EQ(setById(5, {number(0, 3), number(1, 771), number(2, 47)}), 0u);
  ASSERT_EQ(command(73, request(1, ByteVector(40), 0, 5, {number(1, 771), number(3, 1)})), 0u);
  EXPECT_EQ(countById(5), (std::pair{2u, 12 + 2 * 26u}));
  ASSERT_EQ(command(73, request(1, ByteVector(40), 0, 5, {})), 0u);
  EXPECT_EQ(countById(5), (std::pair{0u, 12u}));
  EXPECT_FALSE(store.exists("filters/0/attributes"));
}

TEST_F(LabConnectionAttributes, AUserWithoutAMappingIsAnsweredInTheReply) {
  ASSERT_EQ(setById(5, {number(0, 3), userSid(9999)}), 0u);
  EXPECT_EQ(get32(reply, 0), 70u);
  EXPECT_EQ(note(), "an attribute names a user without a mapping");
  EXPECT_EQ(countById(5), (std::pair{0u, 12u})) << "nothing is kept then";
  ASSERT_EQ(setById(5, {userSid(1101)}), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  EXPECT_EQ(countById(5), (std::pair{1u, 12 + 90u}));
}

TEST_F(LabConnectionAttributes, RequestsThatMakeNoSenseAreRefused) {
  EXPECT_EQ(command(73, request(2, ByteVector(40), 0, 5, {})), 3u);
  EXPECT_EQ(command(73, request(0, ByteVector(40), 2, 5, {})), 3u);
  EXPECT_EQ(note(), "operation 0, selector 2");
  EXPECT_EQ(command(73, request(0, ByteVector(40), 0, 0, {})), 3u);
  EXPECT_EQ(note(), "no connection");
  EXPECT_EQ(command(73, request(0, ByteVector(40), 1, 0, {})), 3u);
  EXPECT_EQ(command(73, request(0, connection(), 1, 5, {})), 25u);
  EXPECT_EQ(command(73, request(0, connection(), 0, 5, {})), 25u);
  EXPECT_EQ(note(), "connection by its addresses and by its id");
  const ByteVector good = request(0, ByteVector(40), 0, 5, {number(0, 3)});
  EXPECT_EQ(command(73, Record().bytes(good).set(0, 1)), 25u) << "the result is cleared";
  EXPECT_EQ(command(73, Record().bytes(good).set(44, 8)), 25u);
  EXPECT_EQ(command(73, Record().bytes(good).set(64, 1)), 25u);
  EXPECT_EQ(command(73, Record().bytes(good).set(60, 2)), 35u);
  EXPECT_EQ(note(), "chain with another count");
  EXPECT_EQ(command(73, Record().bytes(good).set(72, 2)), 35u);
  EXPECT_EQ(command(73, Record().zero(48).u32(0).u64(5).u64(0)), 35u);
  EXPECT_EQ(note(), "chain of 0 bytes");
  EXPECT_EQ(command(73, Record().zero(67)), 25u);
  EXPECT_EQ(command(74, Record().u32(1).bytes(connection()).u64(0).u64(0)), 3u);
  EXPECT_EQ(command(74, Record().u32(0).zero(40).u64(5).u64(1)), 25u);
  EXPECT_EQ(countById(5), (std::pair{0u, 12u}));
}

TEST_F(LabConnectionAttributes, InspectedConnectionsAreFoundByTheirIds) {
  Record body;
  body.u32(3).u32(0);
  for (const unsigned last : {1u, 5u, 9u}) body.u32(0).u16(0).u8(0x10).u8(last).u64(0);
  ASSERT_EQ(command(77, body), 0u) << note();
  EXPECT_EQ(get32(reply, 0), 3u);
  const ByteVector wanted = Record()
                                .u32(0)
                                .u16(0)
                                .u8(0x10)
                                .u8(1)
                                .u8(1)
                                .u8(0)
                                .zero(6)
                                .u32(0)
                                .u16(0)
                                .u8(0x10)
                                .u8(5)
                                .u8(1)
                                .u8(4)
                                .zero(6)
                                .u32(0)
                                .u16(0)
                                .u8(0x10)
                                .u8(9)
                                .u64(0);
  EXPECT_EQ(ByteVector(reply.begin() + 8, reply.end()), wanted);
  ASSERT_EQ(command(77, Record().u64(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
}

TEST_F(LabConnectionAttributes, InspectionRequestsAreCheckedByTheirCounts) {
  EXPECT_EQ(command(77, Record().u32(2).u32(0).zero(16)), 25u);
  EXPECT_EQ(note(), "2 entries in 16 bytes");
  EXPECT_EQ(command(77, Record().u32(1).u32(0).zero(17)), 25u);
  EXPECT_EQ(command(77, Record().u32(0x10000001).u32(0).zero(16)), 25u);
  EXPECT_EQ(command(77, Record().u32(1).u32(1).zero(16)), 25u);
  EXPECT_EQ(command(77, Record().u32(1).u32(0).u64(1).u8(1).zero(7)), 25u);
  EXPECT_EQ(note(), "entry 0 with reserved bytes set");
  EXPECT_EQ(command(77, Record().zero(7)), 25u);
}

// Two flows that every lab has, 5c1e000100001001 and 5c1e00010000100a. The first has learned
// nothing and the second three attributes. The first goes from 10.31.0.1, port 49152 to 10.20.1.40,
// port 443, TCP in.
constexpr std::uint64_t plainFlow = 0x0110000001001e5c, inspectedFlow = 0x0a10000001001e5c;

ByteVector plainFlowConnection(unsigned port = 443) {
  return Record()
      .u32(0x01001f0a)
      .to(16)
      .u32(0x2801140a)
      .to(32)
      .u16(0x00c0)
      .u8(port >> 8)
      .u8(port & 255)
      .u8(2)
      .to(39)
      .u8(6);
}

TEST_F(LabConnectionAttributes, AFlowHasWhatItLearnedAndWhatItWasGiven) {
  EXPECT_EQ(countById(plainFlow), (std::pair{0u, 12u}));
  const auto learned = countById(inspectedFlow);
  EXPECT_EQ(learned.first, 3u);
  ASSERT_EQ(setById(plainFlow, {number(1, 771)}), 0u) << note();
  ASSERT_EQ(setById(inspectedFlow, {number(1, 771)}), 0u);
  EXPECT_EQ(countById(plainFlow), (std::pair{1u, 12 + 26u}));
  EXPECT_EQ(countById(inspectedFlow), (std::pair{4u, learned.second + 26}));

  const ByteVector described = plainFlowConnection();
  EXPECT_EQ(count(2, described, 0), (std::pair{1u, 12 + 26u})) << "the same flow";
  ASSERT_EQ(command(73, request(0, described, 1, 0, {number(0, 3), number(1, 771)})), 0u);
  EXPECT_EQ(count(2, described, 0), (std::pair{2u, 12 + 2 * 26u})) << "the same is there once";
  EXPECT_EQ(countById(plainFlow), (std::pair{2u, 12 + 2 * 26u}));
  EXPECT_EQ(count(2, plainFlowConnection(444), 0), (std::pair{0u, 12u}));
}

TEST_F(LabConnectionAttributes, AFlowHasNoMoreAttributesThanItsRecordCounts) {
  std::vector<ByteVector> many;
  for (unsigned value = 0; value < 300; ++value) many.push_back(number(0, value));
  ASSERT_EQ(setById(plainFlow, many), 0u) << note();
  EXPECT_EQ(countById(plainFlow), (std::pair{255u, 12 + 255 * 26u}));
}

TEST_F(LabConnectionAttributes, TheInspectionOfAFlowIsAsFarAsItHasAttributes) {
  const auto stateOf = [this](std::uint64_t id) {
    EXPECT_EQ(command(77, Record().u32(1).u32(0).u64(id).u64(0)), 0u) << note();
    return std::pair<unsigned, unsigned>(get8(reply, 16), get8(reply, 17));
  };
  EXPECT_EQ(stateOf(plainFlow), (std::pair{1u, 0u}));
  EXPECT_EQ(stateOf(inspectedFlow), (std::pair{1u, 3u}));
  EXPECT_EQ(stateOf(plainFlow + 1), (std::pair{0u, 0u})) << "no flow";
  ASSERT_EQ(setById(plainFlow, {number(1, 771)}), 0u);
  ASSERT_EQ(setById(inspectedFlow, {number(1, 771)}), 0u);
  EXPECT_EQ(stateOf(plainFlow), (std::pair{1u, 1u}));
  EXPECT_EQ(stateOf(inspectedFlow), (std::pair{1u, 3u})) << "there is no state after it";
}

TEST_F(LabConnectionAttributes, TheLogShowsAttributesAndInspections) {
  ASSERT_EQ(setById(5, {number(0, 3), userSid(1101)}), 0u);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    APP_ID : 3\n"
            "    USER_SID : S-1-5-21-1004336348-1177238915-1101\n");
  ASSERT_EQ(command(77, Record().u32(2).u32(0).u32(0).u16(0).u8(0x10).u8(3).u64(0).zero(16)), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), "    id 1003 found, state 2\n    id 0\n");
}

}  // namespace
}  // namespace TarnLab
