#include <gtest/gtest.h>
#include <syslog.h>

#include <climits>
#include <cstring>
#include <memory>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWL7Attribute.h"

using namespace TarnFirewall;

namespace {

constexpr CTarnFWL7Attribute::Uuid kUuid = {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07,
                                            0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f};
const std::string kUuidText = "00010203-0405-0607-0809-0a0b0c0d0e0f";

constexpr auto key(int number) { return static_cast<FWAttrKeyID>(number); }

Bytes& putUuid(Bytes& bytes, std::size_t offset) {
  for (int i = 0; i < 16; ++i) bytes.at(offset + static_cast<std::size_t>(i), {i});
  return bytes;
}

/// Record of APP_ID with this value's lowest byte.
Bytes numberRecord(int keyNumber, int type, int value) {
  return Bytes(18).at(0, {keyNumber, 0, type, 0, 18, 0, 0, 0, 0, 0}).at(10, {value});
}

/// Record of an identifier with `text` and its NUL, or without text.
Bytes uuidRecord(int keyNumber, const std::string& text) {
  const std::size_t length = text.empty() ? 0 : text.size() + 1;
  Bytes bytes(28 + length);
  bytes.at(0, {keyNumber, 0, 3, 0, static_cast<int>(28 + length), 0, 0, 0});
  putUuid(bytes, 10).at(26, {static_cast<int>(length), 0}).text(28, text);
  return bytes;
}

/// S-1-5-21-7 under this key.
Bytes sidRecord(int keyNumber) {
  return Bytes(82)
      .at(0, {keyNumber, 0, 4, 0, 82, 0, 0, 0})
      .at(14, {1, 2, 0, 0, 0, 0, 0, 5})
      .at(22, {21, 0, 0, 0, 7, 0, 0, 0});
}

CTarnFWL7Attribute read(const Bytes& bytes) {
  return CTarnFWL7Attribute(reinterpret_cast<const _FWAttrValue*>(bytes.data()),
                            static_cast<unsigned int>(bytes.size()));
}

bool check(const Bytes& bytes) {
  return CTarnFWL7Attribute::checkFWAttrValue(reinterpret_cast<const _FWAttrValue*>(bytes.data()),
                                              static_cast<unsigned int>(bytes.size()));
}

/// The value's record, over a buffer that was not cleared.
Bytes write(const CTarnFWL7Attribute& attribute) {
  Bytes bytes(attribute.getTlvLength(), 0xee);
  unsigned int written = 0;
  EXPECT_TRUE(
      attribute.serializeValue(bytes.data(), static_cast<unsigned int>(bytes.size()), &written));
  EXPECT_EQ(written, bytes.size());
  return bytes;
}

/// An element that is no attribute.
class OtherElement final : public CTarnFWContainerElement {
 public:
  OtherElement() : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {}
  FWContElementType getTlvType() const override { return elementType(); }
  unsigned int getTlvLength() const override { return 0; }
  bool serializeValue(void*, unsigned int, unsigned int*) const override { return false; }
  bool operator==(const CTarnFWContainerElement&) const override { return true; }
  bool operator<(const CTarnFWContainerElement&) const override { return true; }
  std::string toString() const override { return "other"; }
};

}  // namespace

TEST(TarnFWL7Attribute, AnEncodedNumberIsMadeFromItsName) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_TLS_VERSION, std::string("TLS_V12"));
  EXPECT_EQ(attribute.getInt(), 771);
  EXPECT_EQ(attribute.getKeyID(), FW_ATTR_KEY_TLS_VERSION);
  EXPECT_EQ(attribute.getAttrType(), FW_ATTR_VALUE_EINT);
  EXPECT_EQ(attribute.getString(), "TLS_V12");
  EXPECT_EQ(attribute.toStringValue(), "TLS_V12");
  EXPECT_EQ(attribute.toString(), "TLS_VERSION : TLS_V12");
  EXPECT_EQ(attribute.getTlvType(), 0);
  EXPECT_EQ(attribute.getType(), 135);
  EXPECT_EQ(attribute.getTlvLength(), 18u);
  EXPECT_EQ(attribute.getMsgSize(), 26u);
  EXPECT_EQ(write(attribute), Bytes({1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 0x03, 0x03, 0, 0, 0, 0, 0, 0}));
}

TEST(TarnFWL7Attribute, AnEncodedNumberIsMadeFromItsNumber) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_APP_ID, -1L);
  EXPECT_EQ(attribute.toString(), "APP_ID : APP_INVALID");
  EXPECT_EQ(write(attribute), Bytes(18, 0xff).at(0, {0, 0, 2, 0, 18, 0, 0, 0, 0, 0}));
}

TEST(TarnFWL7Attribute, AnUnsignedNumberHasNoTextAndPrintsInDecimal) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_PROCESS_HASH, 0xfedcba9876543210UL);
  EXPECT_EQ(attribute.getUInt(), 0xfedcba9876543210UL);
  EXPECT_EQ(attribute.getString(), "");
  EXPECT_EQ(attribute.toString(), "PROCESS_HASH : 18364758544493064720");
  EXPECT_EQ(write(attribute), Bytes({10, 0, 1, 0, 18, 0, 0, 0, 0, 0, 0x10, 0x32, 0x54, 0x76, 0x98,
                                     0xba, 0xdc, 0xfe}));
}

TEST(TarnFWL7Attribute, AnIdentifierIsWrittenWithItsTextAndNul) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_FQDN, kUuid, "www.a.org");
  EXPECT_EQ(attribute.getUUID(), kUuid);
  EXPECT_EQ(attribute.toString(), "FQDN : www.a.org");
  EXPECT_EQ(attribute.getTlvLength(), 29u + 9u);
  EXPECT_EQ(write(attribute), uuidRecord(7, "www.a.org"));
}

TEST(TarnFWL7Attribute, AnIdentifierWithoutTextHas28Bytes) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_CTX_PROFILE_ID, kUuid, "");
  EXPECT_EQ(attribute.getTlvLength(), 28u);
  EXPECT_EQ(write(attribute), uuidRecord(11, ""));
}

TEST(TarnFWL7Attribute, TwoNumbersAreTheIdentifiersHalvesInNetworkOrder) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_HTTP_PATH, 0x0001020304050607UL,
                                     0x08090a0b0c0d0e0fUL, "/x");
  EXPECT_EQ(attribute.getUUID(), kUuid);
  EXPECT_EQ(write(attribute), uuidRecord(5, "/x"));
}

TEST(TarnFWL7Attribute, ASecurityIdentifierConvertsAndPrintsBackTheSame) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_WIN_SID, std::string("S-1-5-21-1-2-3"));
  EXPECT_EQ(attribute.getSID(), "S-1-5-21-1-2-3");
  EXPECT_EQ(attribute.toString(), "WIN_SID : S-1-5-21-1-2-3");
  EXPECT_EQ(attribute.getTlvLength(), 82u);
  const Bytes bytes = write(attribute);
  EXPECT_EQ(bytes, Bytes(82)
                       .at(0, {8, 0, 4, 0, 82, 0, 0, 0})
                       .at(14, {1, 4, 0, 0, 0, 0, 0, 5})
                       .at(22, {21, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0}));
  EXPECT_EQ(read(bytes).getSID(), "S-1-5-21-1-2-3");
}

TEST(TarnFWL7Attribute, RefusesWhatIsNoKey) {
  EXPECT_THROW_WITH(CTarnFWL7Attribute(key(12), 1L), CInvalidAttrKey, 66,
                    "invalid attribute key 12");
  EXPECT_THROW_WITH(CTarnFWL7Attribute(key(-1), 1UL), CInvalidAttrKey, 66,
                    "invalid attribute key -1");
  EXPECT_THROW_WITH(CTarnFWL7Attribute(key(99), std::string("x")), CInvalidAttrKey, 66,
                    "invalid attribute key 99");
  EXPECT_THROW_WITH(CTarnFWL7Attribute(key(12), kUuid, "x"), CInvalidAttrKey, 66,
                    "invalid attribute key 12");
  EXPECT_THROW_WITH(CTarnFWL7Attribute(key(12), 1UL, 2UL, "x"), CInvalidAttrKey, 66,
                    "invalid attribute key 12");
}

TEST(TarnFWL7Attribute, RefusesANameThatTheKeyDoesNotHave) {
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_TLS_VERSION, std::string("TLS_V14")),
                    CInvalidAttrValue, 67, "invalid attribute value TLS_VERSION : TLS_V14");
}

TEST(TarnFWL7Attribute, RefusesSecurityIdentifiersThatDoNotConvert) {
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_WIN_SID, std::string("S-2-5")),
                    CInvalidAttrValue, 67, "invalid attribute value WIN_SID : S-2-5");
  const std::string sixteen = "S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15-16";
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_USER_SID, sixteen), CInvalidAttrValue, 67,
                    "invalid attribute value USER_SID : " + sixteen);
}

TEST(TarnFWL7Attribute, RefusesATextForAKeyOfAnotherKind) {
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_PROCESS_HASH, std::string("5")),
                    CInvalidAttrValue, 67,
                    "invalid attribute value invalid type for key: PROCESS_HASH value: 5");
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_FQDN, std::string("a.b")), CInvalidAttrValue, 67,
                    "invalid attribute value invalid type for key: FQDN value: a.b");
}

TEST(TarnFWL7Attribute, RefusesANumberWithoutAName) {
  LogCapture log;
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_APP_ID, 1976L), CInvalidAttrValue, 67,
                    "invalid attribute value APP_ID : 1976");
  EXPECT_TRUE(log.has(LOG_ERR, "APP_ID : failed to find value\n\n"));
}

TEST(TarnFWL7Attribute, RefusesANumberForAKeyOfAnotherKind) {
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_WIN_SID, -5L), CInvalidAttrValue, 67,
                    "invalid attribute value invalid type for WIN_SID : -5");
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_APP_ID, 5UL), CInvalidAttrValue, 67,
                    "invalid attribute value APP_ID : 5");
}

TEST(TarnFWL7Attribute, RefusesAnIdentifierForAKeyOfAnotherKind) {
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_APP_ID, kUuid, "x"), CInvalidAttrValue, 67,
                    "invalid attribute value APP_ID : " + kUuidText);
  EXPECT_THROW_WITH(
      CTarnFWL7Attribute(FW_ATTR_KEY_WIN_SID, 0x0001020304050607UL, 0x08090a0b0c0d0e0fUL, "x"),
      CInvalidAttrValue, 67, "invalid attribute value WIN_SID : " + kUuidText);
}

TEST(TarnFWL7Attribute, RefusesATextThatIts16BitLengthCantHold) {
  const std::string fits(65534, 'p');
  EXPECT_EQ(CTarnFWL7Attribute(FW_ATTR_KEY_HTTP_PATH, kUuid, fits).getTlvLength(), 28u + 65535u);
  const std::string tooLong(65535, 'p');
  EXPECT_THROW_WITH(CTarnFWL7Attribute(FW_ATTR_KEY_HTTP_PATH, kUuid, tooLong), CInvalidAttrValue,
                    67, "invalid attribute value HTTP_PATH : " + tooLong);
}

TEST(TarnFWL7Attribute, ReadsEachKindOfRecord) {
  EXPECT_EQ(read(numberRecord(0, 2, 33)).toString(), "APP_ID : APP_UDP");
  EXPECT_EQ(read(numberRecord(10, 1, 7)).toString(), "PROCESS_HASH : 7");
  EXPECT_EQ(read(sidRecord(9)).toString(), "USER_SID : S-1-5-21-7");
}

TEST(TarnFWL7Attribute, NumbersSidsAndBareIdentifiersWriteTheBytesThatWereRead) {
  for (const Bytes& bytes : {numberRecord(0, 2, 33), numberRecord(10, 1, 7), sidRecord(8)}) {
    EXPECT_EQ(write(read(bytes)), bytes);
  }
}

TEST(TarnFWL7Attribute, AReadIdentifierWithTextPrintsTheTextAndTheIdentifier) {
  const CTarnFWL7Attribute attribute = read(uuidRecord(7, "host"));
  EXPECT_EQ(attribute.getUUID(), kUuid);
  EXPECT_EQ(attribute.toString(), "FQDN : host(" + kUuidText + ")");
}

TEST(TarnFWL7Attribute, AReadIdentifierWithoutTextPrintsTheIdentifierAlone) {
  EXPECT_EQ(read(uuidRecord(7, "")).toString(), "FQDN : " + kUuidText);
}

TEST(TarnFWL7Attribute, TheComposedTextIsWhatAReadIdentifierWritesAgain) {
  EXPECT_EQ(write(read(uuidRecord(7, "host"))), uuidRecord(7, "host(" + kUuidText + ")"));
  EXPECT_EQ(write(read(uuidRecord(7, ""))), uuidRecord(7, kUuidText));
}

TEST(TarnFWL7Attribute, ATextWithoutANulEndsWithItsRecord) {
  Bytes bytes = uuidRecord(7, "abcd");
  bytes.at(32, {'e'});
  EXPECT_EQ(read(bytes).getString(), "abcde(" + kUuidText + ")");
}

TEST(TarnFWL7Attribute, ATextEndsAtItsFirstNul) {
  Bytes bytes = uuidRecord(7, "abcd");
  bytes.at(29, {0});
  EXPECT_EQ(read(bytes).getString(), "a(" + kUuidText + ")");
}

TEST(TarnFWL7Attribute, ATextThatGrowsPastItsLengthFieldIsCutOffAndLogged) {
  Bytes bytes(28 + 65535, 'p');
  bytes.at(0, {7, 0, 3, 0, 0x1b, 0x00, 0x01, 0x00, 0, 0}).at(26, {0xff, 0xff});
  LogCapture log;
  const CTarnFWL7Attribute attribute = read(bytes);
  EXPECT_EQ(attribute.getString().size(), 65534u);
  EXPECT_TRUE(log.has(LOG_WARNING, "text of attribute FQDN cut off at 65496 characters\n"));
  EXPECT_EQ(write(attribute).size(), 28u + 65535u);
}

TEST(TarnFWL7Attribute, RefusesANullRecordAndOneUnderItsHead) {
  EXPECT_THROW_WITH(CTarnFWL7Attribute(nullptr, 18), CInvalidAttrValue, 67,
                    "invalid attribute value null value pointer");
  for (std::size_t size = 1; size < 10; ++size) {
    EXPECT_THROW_WITH(read(Bytes(size)), CInvalidAttrValue, 67,
                      "invalid attribute value size of value pointer " + std::to_string(size) +
                          " is less than minsize 10");
  }
}

TEST(TarnFWL7Attribute, RefusesEveryTruncationOfEachRecord) {
  for (const Bytes& whole : {numberRecord(0, 2, 33), numberRecord(10, 1, 7), uuidRecord(7, "host"),
                             uuidRecord(7, ""), sidRecord(8)}) {
    for (std::size_t size = 10; size < whole.size(); ++size) {
      Bytes cut(size);
      std::memcpy(cut.data(), whole.data(), size);
      LogCapture log;
      EXPECT_THROW_WITH(read(cut), CInvalidAttrValue, 67,
                        "invalid attribute value invalid FWAttr Value");
      EXPECT_TRUE(log.has(LOG_ERR, "size of buffer (" + std::to_string(size) +
                                       ") != length of fwattrvalue (" +
                                       std::to_string(whole.size()) + ")\n"));
      // The length field says the truth about the cut record: the kind's own size refuses it.
      cut.at(4, {static_cast<int>(size)});
      EXPECT_THROW_WITH(read(cut), CInvalidAttrValue, 67,
                        "invalid attribute value invalid FWAttr Value");
    }
  }
}

TEST(TarnFWL7Attribute, RefusesARecordOfAnUnknownKey) {
  EXPECT_THROW_WITH(read(numberRecord(12, 2, 0)), CInvalidAttrKey, 66,
                    "invalid attribute key invalid key id 12");
  Bytes bytes = numberRecord(0, 2, 0);
  bytes.at(0, {0xff, 0xff});
  EXPECT_THROW_WITH(read(bytes), CInvalidAttrKey, 66, "invalid attribute key invalid key id 65535");
}

TEST(TarnFWL7Attribute, RefusesARecordWhoseKindIsNotTheKeys) {
  EXPECT_THROW_WITH(read(numberRecord(0, 1, 0)), CInvalidAttrKey, 66,
                    "invalid attribute key invalid type for key APP_ID");
  EXPECT_THROW_WITH(read(numberRecord(10, 0, 0)), CInvalidAttrKey, 66,
                    "invalid attribute key invalid type for key PROCESS_HASH");
  EXPECT_THROW_WITH(read(sidRecord(7)), CInvalidAttrKey, 66,
                    "invalid attribute key invalid type for key FQDN");
}

TEST(TarnFWL7Attribute, TheFirstOfSeveralFaultsOfARecordIsReported) {
  // No key, no kind, and a length that is not the buffer's: the length is looked at first.
  Bytes bytes(17);
  bytes.at(0, {12, 0, 5, 0, 18});
  const auto firstLine = [&] {
    LogCapture log;
    EXPECT_THROW_WITH(read(bytes), CInvalidAttrValue, 67,
                      "invalid attribute value invalid FWAttr Value");
    EXPECT_EQ(log.lines().size(), 1u);
    const std::string line = log.normalized().at(0);
    return line.substr(line.find(":N ") + 3);
  };
  EXPECT_EQ(firstLine(), "size of buffer (17) != length of fwattrvalue (18)\n");
  bytes.at(4, {17});
  EXPECT_EQ(firstLine(), "unknown attribute value\n\n");
  bytes.at(2, {1});
  EXPECT_EQ(firstLine(), "invalid size for uint attribute\n");
  bytes.resize(18);
  bytes.at(4, {18});
  EXPECT_THROW_WITH(read(bytes), CInvalidAttrKey, 66, "invalid attribute key invalid key id 12");
  bytes.at(0, {1});
  EXPECT_THROW_WITH(read(bytes), CInvalidAttrKey, 66,
                    "invalid attribute key invalid type for key TLS_VERSION");
}

TEST(TarnFWL7Attribute, RefusesARecordOfANumberWithoutAName) {
  LogCapture log;
  EXPECT_THROW_WITH(read(numberRecord(1, 2, 9)), CInvalidAttrValue, 67,
                    "invalid attribute value invalid encoded int value 9 for key TLS_VERSION");
  EXPECT_TRUE(log.has(LOG_ERR, "TLS_VERSION : failed to find value\n\n"));
  Bytes bytes = numberRecord(0, 2, 0);
  bytes.at(10, {0, 0, 0, 0, 0, 0, 0, 0x80});
  EXPECT_THROW_WITH(
      read(bytes), CInvalidAttrValue, 67,
      "invalid attribute value invalid encoded int value -9223372036854775808 for key APP_ID");
}

TEST(TarnFWL7Attribute, ABadSecurityIdentifierIsQuotedAsItStandsUpToTheRecordsEnd) {
  Bytes bytes(82, 'z');
  bytes.at(0, {8, 0, 4, 0, 82, 0, 0, 0, 0, 0});
  EXPECT_THROW_WITH(read(bytes), CInvalidAttrValue, 67,
                    "invalid attribute value invalid sid value WIN_SID : " + std::string(68, 'z'));
}

TEST(TarnFWL7Attribute, ChecksTheLengthOfEachKind) {
  const struct {
    int type;
    std::size_t length;
    const char* text;
  } kCases[] = {
      {0, 17, "invalid size for int attribute\n"},
      {0, 19, "invalid size for int attribute\n"},
      {2, 17, "invalid size for int attribute\n"},
      {2, 10, "invalid size for int attribute\n"},
      {1, 17, "invalid size for uint attribute\n"},
      {1, 82, "invalid size for uint attribute\n"},
      {3, 17, "invalid minimum size for uuid attribute\n"},
      {3, 18, "invalid size for uuid attribute\n"},
      {3, 27, "invalid size for uuid attribute\n"},
      {3, 29, "invalid size for uuid attribute\n"},
      {4, 81, "invalid size for sid attribute\n"},
      {4, 83, "invalid size for sid attribute\n"},
      {5, 18, "unknown attribute value\n\n"},
      {255, 18, "unknown attribute value\n\n"},
  };
  for (const auto& c : kCases) {
    Bytes bytes(c.length);
    bytes.at(2, {c.type, 0, static_cast<int>(c.length)});
    LogCapture log;
    EXPECT_FALSE(check(bytes)) << c.type << " " << c.length;
    EXPECT_TRUE(log.has(LOG_ERR, c.text)) << c.type << " " << c.length;
    EXPECT_EQ(log.lines().size(), 1u);
  }
  for (const auto& [type, length] : {std::pair{0, 18}, {1, 18}, {2, 18}, {3, 28}, {4, 82}}) {
    Bytes bytes(static_cast<std::size_t>(length));
    bytes.at(2, {type, 0, length});
    EXPECT_TRUE(check(bytes)) << type;
  }
}

TEST(TarnFWL7Attribute, ATextOfFiveBytesNeedsARecordOf33) {
  for (int length = 28; length <= 40; ++length) {
    Bytes bytes(static_cast<std::size_t>(length));
    bytes.at(2, {3, 0, length}).at(26, {5, 0});
    EXPECT_EQ(check(bytes), length == 33) << length;
  }
}

TEST(TarnFWL7Attribute, ChecksTheBufferBeforeTheRecord) {
  LogCapture log;
  EXPECT_FALSE(CTarnFWL7Attribute::checkFWAttrValue(nullptr, 18));
  EXPECT_TRUE(log.has(LOG_ERR, "size of buffer less than sizeof FWAttrValue\n"));
  log.clear();
  EXPECT_FALSE(check(Bytes(9)));
  EXPECT_TRUE(log.has(LOG_ERR, "size of buffer less than sizeof FWAttrValue\n"));
  log.clear();
  EXPECT_FALSE(check(Bytes(18).at(4, {0xff, 0xff, 0xff, 0xff})));
  EXPECT_TRUE(log.has(LOG_ERR, "size of buffer (18) != length of fwattrvalue (4294967295)\n"));
}

TEST(TarnFWL7Attribute, WritesNothingIntoAShortBuffer) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_FQDN, kUuid, "ab");
  unsigned int written = 77;
  EXPECT_FALSE(attribute.serializeValue(nullptr, 100, &written));
  for (unsigned int size = 1; size < 31; ++size) {
    Bytes bytes(size, 0xee);
    LogCapture log;
    EXPECT_FALSE(attribute.serializeValue(bytes.data(), size, &written));
    EXPECT_EQ(bytes, Bytes(size, 0xee));
    EXPECT_TRUE(log.has(LOG_ERR, "failed to serialize insufficient buffer space: " +
                                     std::to_string(size) + ", need : 31\n\n"));
  }
  EXPECT_EQ(written, 77u);
  Bytes bytes(31);
  EXPECT_TRUE(attribute.serializeValue(bytes.data(), 31, nullptr));
}

TEST(TarnFWL7Attribute, EqualityIsKeyKindAndValue) {
  const CTarnFWL7Attribute get(FW_ATTR_KEY_HTTP_METHOD, 0L);
  EXPECT_TRUE(get == CTarnFWL7Attribute(FW_ATTR_KEY_HTTP_METHOD, std::string("GET")));
  EXPECT_FALSE(get == CTarnFWL7Attribute(FW_ATTR_KEY_HTTP_METHOD, 1L));
  EXPECT_FALSE(get == CTarnFWL7Attribute(FW_ATTR_KEY_CIFS_SMB_VERSION, 0L));
  const CTarnFWL7Attribute hash(FW_ATTR_KEY_PROCESS_HASH, 5UL);
  EXPECT_TRUE(hash == CTarnFWL7Attribute(FW_ATTR_KEY_PROCESS_HASH, 5UL));
  EXPECT_FALSE(hash == CTarnFWL7Attribute(FW_ATTR_KEY_PROCESS_HASH, 6UL));
}

TEST(TarnFWL7Attribute, TheTextOfAnIdentifierPlaysNoPartInEqualityAndOrder) {
  const CTarnFWL7Attribute a(FW_ATTR_KEY_FQDN, kUuid, "a");
  const CTarnFWL7Attribute b(FW_ATTR_KEY_FQDN, kUuid, "b");
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
  CTarnFWL7Attribute::Uuid more = kUuid;
  more[15] = 0xf0;
  const CTarnFWL7Attribute c(FW_ATTR_KEY_FQDN, more, "a");
  EXPECT_FALSE(a == c);
  EXPECT_TRUE(a < c);
  EXPECT_FALSE(c < a);
}

TEST(TarnFWL7Attribute, SecurityIdentifiersCompareByTheirText) {
  const CTarnFWL7Attribute small(FW_ATTR_KEY_WIN_SID, std::string("s-1-5"));
  const CTarnFWL7Attribute large(FW_ATTR_KEY_WIN_SID, std::string("S-1-5"));
  EXPECT_FALSE(small == large);
  EXPECT_TRUE(large < small);
  EXPECT_FALSE(small < large);
  EXPECT_TRUE(large == CTarnFWL7Attribute(FW_ATTR_KEY_WIN_SID, std::string("S-1-5")));
}

TEST(TarnFWL7Attribute, TheOrderIsKeyThenValueSignedOrUnsignedByKind) {
  const CTarnFWL7Attribute invalid(FW_ATTR_KEY_APP_ID, -1L);
  const CTarnFWL7Attribute all(FW_ATTR_KEY_APP_ID, 0L);
  EXPECT_TRUE(invalid < all);
  EXPECT_FALSE(all < invalid);
  EXPECT_FALSE(all < all);
  const CTarnFWL7Attribute tls(FW_ATTR_KEY_TLS_VERSION, 767L);
  EXPECT_TRUE(all < tls);
  EXPECT_FALSE(tls < all);
  const CTarnFWL7Attribute low(FW_ATTR_KEY_PROCESS_HASH, 1UL);
  const CTarnFWL7Attribute high(FW_ATTR_KEY_PROCESS_HASH, ULONG_MAX);
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
}

TEST(TarnFWL7Attribute, WhereSortKeysDifferTheyAreOrderedAsTheAttributesAre) {
  const auto uuid = [](std::size_t at) {
    CTarnFWL7Attribute::Uuid changed = kUuid;
    changed[at] = 0xf0;
    return CTarnFWL7Attribute(FW_ATTR_KEY_FQDN, changed, "a");
  };
  const auto sid = [](const char* text) { return CTarnFWL7Attribute(FW_ATTR_KEY_WIN_SID, text); };
  // In order. The longest two texts differ after the beginning that a key holds.
  const CTarnFWL7Attribute ordered[] = {
      {FW_ATTR_KEY_APP_ID, -1L},
      {FW_ATTR_KEY_APP_ID, 0L},
      {FW_ATTR_KEY_APP_ID, 33L},
      {FW_ATTR_KEY_TLS_VERSION, 767L},
      uuid(15),
      uuid(8),
      uuid(7),
      uuid(0),
      sid("S-1-5"),
      sid("S-1-5-21-1-2-3-4"),
      sid("S-1-5-21-1-2-3-4-5"),
      {FW_ATTR_KEY_PROCESS_HASH, 1UL},
      {FW_ATTR_KEY_PROCESS_HASH, ULONG_MAX},
  };
  for (const CTarnFWL7Attribute& left : ordered) {
    for (const CTarnFWL7Attribute& right : ordered) {
      EXPECT_EQ(left < right, &left < &right) << left.toString() << ' ' << right.toString();
      if (left.sortKey() == right.sortKey()) continue;
      EXPECT_EQ(left.sortKey() < right.sortKey(), &left < &right)
          << left.toString() << ' ' << right.toString();
    }
  }
  EXPECT_EQ(ordered[9].sortKey(), ordered[10].sortKey());
}

TEST(TarnFWL7Attribute, AnElementOfAnotherKindIsNeitherEqualNorLess) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_APP_ID, 0L);
  const OtherElement element;
  const CTarnFWContainerElement& other = element;
  const CTarnFWContainerElement& self = attribute;
  EXPECT_TRUE(self == self);
  EXPECT_FALSE(self == other);
  EXPECT_FALSE(self < other);
}

TEST(TarnFWL7Attribute, ACopyIsEqualAndIndependent) {
  auto original = std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_FQDN, kUuid, "host");
  const CTarnFWL7Attribute copy(*original);
  original.reset();
  EXPECT_EQ(copy.toString(), "FQDN : host");
  EXPECT_EQ(write(copy), uuidRecord(7, "host"));
}
