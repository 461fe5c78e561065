#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWProtocolSpecFactory.h"
#include "TarnFWProtocolSpecList.h"

using namespace TarnFirewall;

namespace {

std::unique_ptr<CTarnFWProtocolSpec> read(const Bytes& bytes) {
  return CTarnFWProtocolSpecFactory::newFromMsgBuf(bytes.data(),
                                                   static_cast<unsigned int>(bytes.size()));
}

std::unique_ptr<CTarnFWProtocolSpec> fromText(const char* text) {
  return CTarnFWProtocolSpecFactory::newL4PortSpecFromString(1, text);
}

/// One record of each kind: header, body and the text that it reads as.
struct Sample {
  Bytes record;
  std::uint32_t kind;
  const char* text;
};

std::vector<Sample> samples() {
  return {
      {Bytes{0x08, 0, 0x1f, 0x90}, 1, "port 8080"},
      {Bytes(8).at(0, {0x16, 0, 0, 80, 0, 90}), 2, "not port 80-90"},
      {Bytes(38).at(0, {0x19, 0, 0x53, 9, 0, 80, 0, 90, 0, 7}).at(34, {1, 0}), 3,
       "port {80-90, 7}"},
      {Bytes(8).at(0, {0x20, 0, 0x12, 0x01}), 4, "flag 0x0112"},
      {Bytes(44).at(0, {0x2c, 0, 2, 0, 0xab, 0x0c}), 5, "not tcpoptions 0xab0c"},
      {Bytes(8).at(0, {0x30, 0, 3, 0, 0, 0, 3, 1}), 6, "typecode 3:1"},
  };
}

}  // namespace

TEST(TarnFWProtocolSpecFactory, ReadsEachKind) {
  for (const Sample& sample : samples()) {
    const auto spec = read(sample.record);
    ASSERT_NE(spec, nullptr);
    EXPECT_EQ(spec->getSpecType(), sample.kind);
    EXPECT_EQ(spec->toString(), sample.text);
    EXPECT_EQ(spec->getDir(), sample.record[0] & 3);
    EXPECT_EQ(spec->isNegated(), (sample.record[0] & 4) != 0);
  }
}

TEST(TarnFWProtocolSpecFactory, ReadsBackWhatAListWrites) {
  for (const char* text : {"80", "80-90", "80,90"}) {
    CTarnFWProtocolSpecList list(1);
    list.setPortMode(true);
    list.addSpec(fromText(text));
    const auto spec = read(messageOf(list));
    ASSERT_NE(spec, nullptr) << text;
    EXPECT_EQ(spec->toString(), list.toString());
  }
}

TEST(TarnFWProtocolSpecFactory, KindZeroIsNoSpecAndNoError) {
  EXPECT_EQ(read(Bytes(38)), nullptr);
  EXPECT_EQ(read(Bytes{0x07, 0x00}), nullptr);
  EXPECT_EQ(read(Bytes{0x00, 0xf8}), nullptr);
}

TEST(TarnFWProtocolSpecFactory, LessThanAHeaderIsNoSpec) {
  EXPECT_EQ(CTarnFWProtocolSpecFactory::newFromMsgBuf(nullptr, 0), nullptr);
  EXPECT_EQ(read(Bytes{0x08}), nullptr);
}

TEST(TarnFWProtocolSpecFactory, EveryTruncatedBodyIsRefused) {
  for (const Sample& sample : samples()) {
    const unsigned int body = static_cast<unsigned int>(sample.record.size()) - 2;
    for (unsigned int size = 0; size < body; ++size) {
      Bytes cut = sample.record;
      cut.resize(size + 2);
      cut.shrink_to_fit();
      EXPECT_THROW_WITH(read(cut), CInsufficientMsgBufException, 9,
                        "expect " + std::to_string(body) +
                            " byte in message buffer, but only get " + std::to_string(size) +
                            " bytes");
    }
  }
}

TEST(TarnFWProtocolSpecFactory, KindsWithoutABodyAreUnknown) {
  for (unsigned int kind = 7; kind < 256; ++kind) {
    const unsigned int word = kind << 3;
    EXPECT_THROW_WITH(
        read(Bytes(58).at(0, {static_cast<int>(word & 0xff), static_cast<int>(word >> 8)})),
        CUnknownProtocolSpecTypeException, 43,
        "unknown protocol spec type: " + std::to_string(kind));
  }
}

TEST(TarnFWProtocolSpecFactory, ABodyThatIsCutOffIsRefusedBeforeItsDir) {
  EXPECT_THROW_WITH(read(Bytes{0x0b, 0, 0}), CInsufficientMsgBufException, 9,
                    "expect 2 byte in message buffer, but only get 1 bytes");
  EXPECT_THROW_WITH(read(Bytes(8).at(0, {0x13, 0, 0, 90, 0, 80})), CInvalidProtocolSpecDirException,
                    43, "invalid protocol spec dir (0-2): 3");
}

TEST(TarnFWProtocolSpecFactory, BadValuesInARecordAreRefused) {
  EXPECT_THROW_WITH(read(Bytes{0x0b, 0, 0, 80}), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 3");
  EXPECT_THROW_WITH(read(Bytes(8).at(0, {0x10, 0, 0, 90, 0, 90})), CInvalidL4PortRangeException, 38,
                    "invalid TCP/UDP port range: 90 - 90");
  EXPECT_THROW_WITH(read(Bytes(38).at(0, {0x18, 0, 1, 0, 0, 80}).at(34, {1})),
                    CInvalidL4PortException, 38, "invalid TCP/UDP port: 80");
  EXPECT_THROW_WITH(read(Bytes(38).at(0, {0x18, 0, 15, 0}).at(34, {0, 0x40})),
                    CInvalidL4PortException, 38, "invalid TCP/UDP port: 0");
  EXPECT_THROW_WITH(read(Bytes(44).at(0, {0x28, 0, 41, 0})), CTCPOptionsTooLongException, 41,
                    "TCP options is too long: 41");
}

TEST(TarnFWProtocolSpecFactory, PunctuationOfATextChoosesThePortForm) {
  EXPECT_EQ(fromText("80-90")->toString(), "port 80-90");
  EXPECT_EQ(fromText("80-90")->getSpecType(), FW_SPEC_L4_PORT_RANGE);
  EXPECT_EQ(fromText("80:90")->getSpecType(), FW_SPEC_L4_PORT_RANGE);
  EXPECT_EQ(fromText("80,90")->getSpecType(), FW_SPEC_L4_PORT_SET);
  EXPECT_EQ(fromText("80")->getSpecType(), FW_SPEC_L4_PORT);
  EXPECT_EQ(fromText("80")->getDir(), 1);
}

TEST(TarnFWProtocolSpecFactory, ARangeInASetGoesToTheRangeClassAndFails) {
  EXPECT_THROW_WITH(fromText("80-90,100"), CInvalidL4PortRangeException, 38,
                    "invalid TCP/UDP port range: 80-90,100");
}

TEST(TarnFWProtocolSpecFactory, BadTextsAreRefusedByTheChosenClass) {
  EXPECT_THROW_WITH(fromText("80-80"), CInvalidL4PortRangeException, 38,
                    "invalid TCP/UDP port range: 80-80");
  EXPECT_THROW_WITH(fromText("80 90"), CInvalidL4PortException, 38, "invalid TCP/UDP port: 80 90");
  EXPECT_THROW_WITH(fromText(nullptr), CInvalidL4PortException, 38, "invalid TCP/UDP port: ");
  EXPECT_THROW_WITH(CTarnFWProtocolSpecFactory::newL4PortSpecFromString(3, "80"),
                    CInvalidProtocolSpecDirException, 43, "invalid protocol spec dir (0-2): 3");
}
