#include <gtest/gtest.h>
#include <syslog.h>

#include <cstring>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWAddressAttr.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

using IntAttr = CTarnFWAttr<FW_ATTR_ID_VALUE_INT>;
using UIntAttr = CTarnFWAttr<FW_ATTR_ID_VALUE_UINT>;
using StringAttr = CTarnFWAttr<FW_ATTR_ID_VALUE_STRING>;
using SidAttr = CTarnFWAttr<FW_ATTR_ID_VALUE_SID>;

constexpr auto key(std::uint32_t number) { return static_cast<FWAttrIDType>(number); }

const FWAddress_* record(const Bytes& bytes) {
  EXPECT_EQ(bytes.size(), 144u);
  return reinterpret_cast<const FWAddress_*>(bytes.data());
}

/// What the address writes over a buffer of `fill`.
template <typename Attr>
Bytes write(Attr&& attr, std::uint8_t fill = 0) {
  Bytes bytes(144, fill);
  unsigned int written = 0;
  EXPECT_TRUE(attr.toMessage(bytes.data(), 144, &written));
  EXPECT_EQ(written, 144u);
  return bytes;
}

class BareAttr final : public CTarnFWAddressAttr {
 public:
  BareAttr() : CTarnFWAddressAttr(key(0), FW_ATTR_ID_VALUE_INT, true) {}
};

}  // namespace

TEST(TarnFWAddressAttr, TheBaseHasNoTextAndNoWireForm) {
  BareAttr base;
  EXPECT_EQ(base.getType(), 0);
  EXPECT_EQ(base.toString(), "");
  EXPECT_TRUE(base.isContainer());
  EXPECT_FALSE(base.isIPAddress());
  Bytes bytes(144, 0xee);
  unsigned int written = 77;
  EXPECT_FALSE(base.toMessage(bytes.data(), 144, &written));
  EXPECT_EQ(bytes, Bytes(144, 0xee));
  EXPECT_EQ(written, 77u);
}

TEST(TarnFWAddressAttr, HasNoOrder) {
  const IntAttr one(key(0), "1", false);
  const IntAttr two(key(0), "2", true);
  const BareAttr base;
  EXPECT_FALSE(one < two);
  EXPECT_FALSE(two < one);
  EXPECT_FALSE(base < one);
}

TEST(TarnFWAddressAttr, ASignedNumberPrintsTheApplicationOfItsValue) {
  EXPECT_EQ(IntAttr(key(0), "33", false).toString(), "int attr 33 APP_UDP");
  EXPECT_EQ(IntAttr(key(0), "33", true).toString(), "not int attr 33 APP_UDP");
  EXPECT_EQ(IntAttr(key(0), "-1", false).toString(), "int attr -1 APP_INVALID");
}

TEST(TarnFWAddressAttr, TheApplicationNameStandsAfterEveryKeysNumber) {
  EXPECT_EQ(IntAttr(key(4), "2", false).toString(), "int attr 2 APP_IP");
}

TEST(TarnFWAddressAttr, ANumberThatIsNoApplicationIsUnknown) {
  LogCapture log;
  EXPECT_EQ(IntAttr(key(0), "1976", false).toString(), "int attr 1976 unknown");
  EXPECT_TRUE(log.has(LOG_WARNING, "app protobuf value 1976 not found\n"));
  // A number whose low 32 bits are an application is none.
  EXPECT_EQ(IntAttr(key(0), "4294967329", false).toString(), "int attr 4294967329 unknown");
  EXPECT_EQ(IntAttr(key(0), "-9223372036854775808", false).toString(),
            "int attr -9223372036854775808 unknown");
}

TEST(TarnFWAddressAttr, ASignedNumberIsWrittenAfterItsKey) {
  const Bytes expected = Bytes(144)
                             .at(0, {12, 0, 1, 0})
                             .at(4, {1, 0, 0, 0, 0, 0, 0, 0})
                             .at(16, {0xfe, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff});
  EXPECT_EQ(write(IntAttr(key(1), "-2", true)), expected);
  EXPECT_EQ(IntAttr(key(1), "-2", true).getType(), 12);
}

TEST(TarnFWAddressAttr, AnUnsignedNumberIsWrittenAfterItsKey) {
  EXPECT_EQ(write(UIntAttr(key(10), "2147483647", false)), Bytes(144)
                                                               .at(0, {13, 0, 0, 0})
                                                               .at(4, {10, 0, 0, 0, 1, 0, 0, 0})
                                                               .at(16, {0xff, 0xff, 0xff, 0x7f}));
  EXPECT_EQ(UIntAttr(key(10), "2147483647", true).toString(), "not unsigned int attr 2147483647");
  EXPECT_EQ(UIntAttr(key(10), "7", false).getType(), 13);
}

TEST(TarnFWAddressAttr, OnlyTheFieldsOfItsKindAreWritten) {
  const Bytes number = write(IntAttr(key(0), "1", false), 0xee);
  EXPECT_EQ(number[2], 0xee & 0xfe);
  EXPECT_EQ(number[3], 0xee);
  EXPECT_EQ(number[12], 0);
  EXPECT_EQ(number[23], 0);
  for (std::size_t i = 24; i < 144; ++i) EXPECT_EQ(number[i], 0xee) << i;
  const Bytes sid = write(SidAttr(key(8), "S-1-5", true), 0xee);
  EXPECT_EQ(sid[2], 0xef);
  EXPECT_EQ(sid[87], 0);
  for (std::size_t i = 88; i < 144; ++i) EXPECT_EQ(sid[i], 0xee) << i;
}

TEST(TarnFWAddressAttr, ATooSmallBufferIsNotTouched) {
  IntAttr attr(key(0), "1", false);
  unsigned int written = 77;
  Bytes bytes(143, 0xee);
  EXPECT_FALSE(attr.toMessage(bytes.data(), 143, &written));
  EXPECT_FALSE(attr.toMessage(nullptr, 144, &written));
  EXPECT_EQ(bytes, Bytes(143, 0xee));
  EXPECT_EQ(written, 77u);
  Bytes whole(144);
  EXPECT_TRUE(attr.toMessage(whole.data(), 144, nullptr));
}

TEST(TarnFWAddressAttr, ASignedNumberTakesWhatStartsWithANumber) {
  EXPECT_EQ(IntAttr(key(0), " 33abc", false).toString(), "int attr 33 APP_UDP");
  for (const char* text : {"", "abc", "-", "9223372036854775808", "-9223372036854775809"}) {
    LogCapture log;
    EXPECT_THROW_WITH(IntAttr(key(0), text, false), CInvalidAddressException, 33, text);
    EXPECT_TRUE(
        log.has(LOG_ERR, std::string("CTarnFWAttr: exception in string to integer conversion of "
                                     "string ") +
                             text + ".\n"));
  }
  EXPECT_THROW_WITH(IntAttr(key(0), nullptr, false), CInvalidAddressException, 33, "");
}

TEST(TarnFWAddressAttr, AnUnsignedNumberMustBeWholeAndOf32Bits) {
  for (const char* text : {"", "-1", "7x", "x", "4294967296", "99999999999999999999"}) {
    LogCapture log;
    EXPECT_THROW_WITH(UIntAttr(key(10), text, false), CInvalidAddressException, 33, text);
    const std::string place = "3|tarnfw: TarnFWAddressAttr:CTarnFWAttr():N CTarnFWAttr: ";
    EXPECT_EQ(log.normalized(),
              (std::vector<std::string>{
                  place + text + " is not a valid uint64\n",
                  place + "exception in string to integer conversion of string " + text + ".\n"}));
  }
}

TEST(TarnFWAddressAttr, AnUnsignedNumberEndsAtTheSignedLimit) {
  EXPECT_EQ(UIntAttr(key(10), "2147483647", false).toString(), "unsigned int attr 2147483647");
  // -18446744073709551615 is 1 for the first test and out of range for the second.
  for (const char* text : {"2147483648", "4294967295", "-18446744073709551615"}) {
    LogCapture log;
    EXPECT_THROW_WITH(UIntAttr(key(10), text, false), CInvalidAddressException, 33, text);
    EXPECT_EQ(log.lines().size(), 1u) << text;
  }
}

TEST(TarnFWAddressAttr, ATextIsReadAfterTwoBytesThatAreKept) {
  Bytes bytes(144);
  bytes.at(0, {14, 0, 1, 0}).at(4, {5, 0, 0, 0, 2, 0, 0, 0}).at(12, {0xab, 0xcd}).text(14, "/path");
  StringAttr attr(record(bytes));
  EXPECT_EQ(attr.getType(), 14);
  EXPECT_EQ(attr.getKey(), 5u);
  EXPECT_EQ(attr.getValueType(), 2u);
  EXPECT_EQ(attr.toString(), "not str attr /path");
  EXPECT_EQ(write(attr), bytes);
}

TEST(TarnFWAddressAttr, ATextThatFillsItsFieldIsReadUpToTheLastByteButOne) {
  Bytes bytes(144, 'a');
  bytes.at(0, {14, 0, 0, 0});
  StringAttr attr(record(bytes));
  EXPECT_EQ(attr.toString(), "str attr " + std::string(129, 'a'));
  // The record's last byte is not taken over.
  EXPECT_EQ(write(attr), bytes.at(143, {0}));
}

TEST(TarnFWAddressAttr, ASecurityIdentifierIsNotRendered) {
  Bytes bytes(144);
  bytes.at(0, {15, 0, 0, 0}).at(4, {8, 0, 0, 0, 5, 0, 0, 0}).at(12, {1, 2, 3}).at(87, {9});
  SidAttr attr(record(bytes));
  EXPECT_EQ(attr.getType(), 15);
  EXPECT_EQ(attr.toString(), "sid attr ");
  EXPECT_EQ(write(attr), bytes);
  EXPECT_EQ(SidAttr(key(8), "S-1-5", true).toString(), "not sid attr ");
}

TEST(TarnFWAddressAttr, NumbersReadFromARecordWriteTheSameBytes) {
  Bytes bytes(144);
  bytes.at(0, {12, 0, 1, 0})
      .at(4, {4, 3, 2, 1, 8, 7, 6, 5, 0xa, 0xb, 0xc, 0xd})
      .at(16, {33, 0, 0, 0, 0, 0, 0, 0});
  IntAttr signedAttr(record(bytes));
  EXPECT_EQ(signedAttr.toString(), "not int attr 33 APP_UDP");
  EXPECT_EQ(write(signedAttr), bytes);
  bytes.at(0, {13}).at(16, {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff});
  UIntAttr unsignedAttr(record(bytes));
  EXPECT_EQ(unsignedAttr.toString(), "not unsigned int attr 18446744073709551615");
  EXPECT_EQ(write(unsignedAttr), bytes);
}

TEST(TarnFWAddressAttr, TextsAndSidsFromTextAreOnlyMeasured) {
  EXPECT_EQ(write(StringAttr(key(5), std::string(128, 'a').c_str(), false)),
            Bytes(144).at(0, {14}).at(4, {5, 0, 0, 0, 2}));
  EXPECT_EQ(write(SidAttr(key(8), std::string(75, 'a').c_str(), false)),
            Bytes(144).at(0, {15}).at(4, {8, 0, 0, 0, 5}));
  const std::string text(129, 'a');
  EXPECT_THROW_WITH(StringAttr(key(5), text.c_str(), false), CIDTooLongException, 32,
                    "id is too long: " + text);
  const std::string sid(76, 'a');
  EXPECT_THROW_WITH(SidAttr(key(8), sid.c_str(), false), CIDTooLongException, 32,
                    "id is too long: " + sid);
}

TEST(TarnFWAddressAttr, WritingIsTraced) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_ADDRESS].level = 1;
  write(IntAttr(key(0), "33", false));
  write(UIntAttr(key(0), "34", false));
  write(StringAttr(key(0), "", false));
  write(SidAttr(key(0), "", false));
  EXPECT_TRUE(log.has(LOG_DEBUG, "Attribute <int> toMessage 33\n"));
  EXPECT_TRUE(log.has(LOG_DEBUG, "Attribute <unsigned int> toMessage 34\n"));
  EXPECT_TRUE(log.has(LOG_DEBUG, "Attribute<fw_str> toMessage\n"));
  EXPECT_TRUE(log.has(LOG_DEBUG, "Attribute<fw_sid> toMessage\n"));
}

TEST(TarnFWAddressAttr, TheFactoryReadsEachKindOfRecord) {
  Bytes bytes(144);
  bytes.at(2, {1}).at(4, {0, 0, 0, 0}).at(14, {'n'}).at(16, {33});
  const auto readAs = [&](int type) {
    bytes.at(0, {type});
    return CTarnFWAddressFactory::newFromMsgBuf(record(bytes));
  };
  EXPECT_EQ(readAs(12)->getType(), 12);
  EXPECT_EQ(readAs(12)->toString(), "not int attr 33 APP_UDP");
  EXPECT_EQ(readAs(13)->getType(), 13);
  EXPECT_EQ(readAs(13)->toString(), "not unsigned int attr 33");
  EXPECT_EQ(readAs(14)->getType(), 14);
  EXPECT_EQ(readAs(14)->toString(), "not str attr n");
  EXPECT_EQ(readAs(15)->getType(), 15);
  EXPECT_EQ(readAs(15)->toString(), "not sid attr ");
  EXPECT_TRUE(readAs(15)->isContainer());
}

TEST(TarnFWAddressAttr, TheFactoryReadsTheSidListsTypeAsASidAttribute) {
  Bytes bytes(144);
  bytes.at(0, {18, 0, 0, 0}).at(4, {8, 0, 0, 0, 5, 0, 0, 0}).at(12, {1, 2, 3});
  const auto address = CTarnFWAddressFactory::newFromMsgBuf(record(bytes));
  EXPECT_EQ(address->getType(), 15);
  EXPECT_EQ(write(*address), bytes.at(0, {15}));
}

TEST(TarnFWAddressAttr, TheFactoryMakesASidAttributeFromTextWithoutAValue) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_ADDRESS].level = 1;
  const auto address = CTarnFWAddressFactory::newFromString(FW_ADDRSET_SID, "S-1-5-21");
  EXPECT_TRUE(log.has(LOG_DEBUG, "creating sid address from S-1-5-21\n"));
  EXPECT_FALSE(address->isNegated());
  EXPECT_EQ(write(*address), Bytes(144).at(0, {15}).at(4, {8, 0, 0, 0, 5}));
}

TEST(TarnFWAddressAttr, TheFactoryMeasuresTheTextOfASid) {
  const std::string fits(75, 'S');
  EXPECT_NE(CTarnFWAddressFactory::newFromString(FW_ADDRSET_SID, fits.c_str()), nullptr);
  const std::string tooLong(76, 'S');
  EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromString(FW_ADDRSET_SID, tooLong.c_str()),
                    CIDTooLongException, 32, "id is too long: " + tooLong);
}
