#include <gtest/gtest.h>

#include "LabBench.h"
#include "LabField.h"

namespace TarnLab {
namespace {

TEST(LabField, NumbersStandInTheirOrder) {
  ByteVector record(8);
  U32(0, "host").put(Bytes(record), 0x01020304);
  Net32(4, "network").put(Bytes(record), 0x01020304);
  EXPECT_EQ(record, ByteVector(Record().u8(4).u8(3).u8(2).u8(1).u8(1).u8(2).u8(3).u8(4)));
  EXPECT_EQ(U32(0, "host").get(record), 0x01020304u);
  EXPECT_EQ(Net32(4, "network").get(record), 0x01020304u);
  EXPECT_EQ(numberOf(U32(0, "host"), record), 0x01020304u);
  EXPECT_EQ(numberOf(Net32(4, "network"), record), 0x01020304u);
  EXPECT_EQ(numberOf(Net16(6, "network"), record), 0x0304u);
  EXPECT_THROW(U64(1, "long").get(record), std::out_of_range);
  EXPECT_THROW(U64(1, "long").put(Bytes(record), 1), std::out_of_range);
}

TEST(LabField, BitsLeaveTheOthersOfTheirByte) {
  constexpr Bits low{1, 7, "low"};
  ByteVector record = Record().u8(0xff).u8(0xa8).u8(0xff);
  low.put(Bytes(record), 0xfd);
  EXPECT_EQ(record, ByteVector(Record().u8(0xff).u8(0xad).u8(0xff)));
  EXPECT_EQ(low.get(record), 5u);
  EXPECT_EQ(numberOf(low, record), 5u);
  low.put(Bytes(record), 0);
  EXPECT_EQ(record, ByteVector(Record().u8(0xff).u8(0xa8).u8(0xff)));
}

TEST(LabField, TextAndBytesFillTheirFieldWithZeros) {
  constexpr Text text{0, 4, "text"};
  constexpr Blob blob{4, 3, "blob"};
  ByteVector record(8, std::byte{0xff});
  text.put(Bytes(record), "a");
  blob.put(Bytes(record), Record().u8(1).u8(2));
  EXPECT_EQ(record, ByteVector(Record().text("a", 4).u8(1).u8(2).u8(0).u8(0xff)));
  text.put(Bytes(record), "abcd");
  blob.put(Bytes(record), Record().u32(0x04030201));
  EXPECT_EQ(record, ByteVector(Record().text("abc", 4).u8(1).u8(2).u8(3).u8(0xff)));
  EXPECT_EQ(text.get(record), "abc");
}

TEST(LabField, ReservedBytesAndBitsAreZeroAsFarAsTheBodyGoes) {
  constexpr FieldList fields{U8(0, "one"), Reserved(0, 1, "flags", 0xf0), Reserved(1, 4)};
  const auto fault = [&](const Record& body) { return reservedFault(fields, body, "command 1"); };
  EXPECT_EQ(fault(Record().u8(0x0f).zero(4).u8(1)), "");
  EXPECT_EQ(fault(Record().u8(0x10).zero(4)), "flags with reserved bytes set");
  EXPECT_EQ(fault(Record().u8(0).zero(3).u8(1)), "command 1 with reserved bytes set");
  EXPECT_EQ(fault(Record().u8(0).u8(1)), "command 1 with reserved bytes set");
  EXPECT_EQ(fault(Record().u8(0).zero(2)), "");
  EXPECT_EQ(fault(Record()), "");
}

TEST(LabField, NamesEndInsideTheirFieldWithZerosAfterThem) {
  constexpr FieldList fields{Text(0, 2, "text"), Name(2, 4, "name", "rule set")};
  const auto fault = [&](const Record& body) { return nameFault(fields, body); };
  const std::string wrong = "rule set name is not padded with zeros";
  EXPECT_EQ(fault(Record().text("t", 2).zero(4)), "");
  EXPECT_EQ(fault(Record().u16(0xffff).text("abc", 4)), "");
  EXPECT_EQ(fault(Record().zero(2).u32(0x64636261)), wrong);
  EXPECT_EQ(fault(Record().zero(2).u32(0x64006261)), wrong);
  EXPECT_THROW(fault(Record().zero(5)), std::out_of_range);
}

TEST(LabField, TheLogPrintsEachAsItsKindAndEndsWhereTheBodyDoes) {
  constexpr FieldList fields{U8(0, "number"),
                             Hex32(1, "hex"),
                             Text(5, 2, "text"),
                             Blob(7, 2, "bytes"),
                             Blob(9, 6, "mac", As::mac),
                             Blob(15, 16, "id", As::id),
                             Reserved(31, 1),
                             Net16(32, "port")};
  Record body;
  body.u8(7).u32(0xabc).u8('"').u8(1).u8(0x0a).u8(0xb0).u32(0x03020100).u16(0x0504);
  EXPECT_EQ(fieldsText(fields, Record().zero(34)),
            "number 0, hex 0x0, text \"\", mac 00:00:00:00:00:00, port 0");
  EXPECT_EQ(fieldsText(fields, body),
            "number 7, hex 0xabc, text \"\\x22\\x01\", bytes 0ab0, mac 00:01:02:03:04:05");
  body.u64(1).u64(2).u8(0xff).u8(0).u8(80);
  EXPECT_EQ(fieldsText(fields, body),
            "number 7, hex 0xabc, text \"\\x22\\x01\", bytes 0ab0, mac 00:01:02:03:04:05, "
            "id 00000000000000010000000000000002, port 80");
}

}  // namespace
}  // namespace TarnLab
