#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "AddressRecord.h"
#include "LogCapture.h"
#include "TarnFWAddressEtherRange.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

std::unique_ptr<CTarnFWAddress> read(const AddressGolden& golden) {
  const FWAddress_ record = golden.record();
  return CTarnFWAddressFactory::newFromMsgBuf(&record);
}

std::string textOf(FWAddrSetType_t setType, const char* text) {
  const auto address = CTarnFWAddressFactory::newFromString(setType, text);
  EXPECT_FALSE(address->isNegated());
  return std::to_string(address->getType()) + " " + address->toString();
}

/// One record of each type that can be read, with the text of its address.
const struct {
  AddressGolden golden;
  const char* text;
} kReadable[] = {
    {{1, false, {{4, {10, 0, 0, 1}}}}, "ip 10.0.0.1"},
    {{2, false, {{4, field(15, {})}, {19, {1}}}}, "ip ::1"},
    {{3, false, {{4, {10, 0, 0, 1}}, {8, {10, 0, 0, 2}}}}, "ip 10.0.0.1-10.0.0.2"},
    {{4, false, {{4, field(15, {})}, {19, {1}}, {20, field(15, {})}, {35, {2}}}}, "ip ::1-::2"},
    {{5, false, {{4, {10, 0, 0, 0}}, {8, {8}}}}, "ip 10.0.0.0/8"},
    {{6, false, {{4, field(16, {0x20, 1})}, {20, {16}}}}, "ip 2001::/16"},
    {{7, false, {{4, {1, 2, 3, 4, 5, 6}}}}, "mac 01:02:03:04:05:06"},
    {{9, false, {{4, {1, 2, 3, 4, 5, 6}}, {10, field(6, {255})}}},
     "mac 01:02:03:04:05:06/ff:00:00:00:00:00"},
    {{11, false, {{4, field(38, {'w', 'e', 'b'})}}}, "addrset web"},
};

}  // namespace

TEST(TarnFWAddressFactory, ReadsEveryTypeThatHasAClass) {
  for (const auto& [golden, text] : kReadable) {
    const auto address = read(golden);
    EXPECT_EQ(address->getType(), golden.type);
    EXPECT_EQ(address->toString(), text);
    expectWire(*address, golden);

    AddressGolden negated = golden;
    negated.negated = true;
    const auto other = read(negated);
    EXPECT_EQ(other->toString(), std::string("not ") + text);
    expectWire(*other, negated);
  }
}

TEST(TarnFWAddressFactory, ANegatedAnyIsReadAsAPlainOne) {
  const auto any = read({0, true, {}});
  EXPECT_EQ(any->getType(), 0);
  EXPECT_EQ(any->toString(), "any");
  EXPECT_FALSE(any->isNegated());
}

TEST(TarnFWAddressFactory, RefusesTypesWithoutAClass) {
  for (const int type : {8, 10, 16, 17, 19, 20, 255}) {
    EXPECT_THROW_WITH(read({type, false, {}}), CInvalidAddressException, 33,
                      "unknown address type: " + std::to_string(type));
  }
  FWAddress_ record = AddressGolden{0, false, {}}.record();
  record.type = 65535;
  EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromMsgBuf(&record), CInvalidAddressException, 33,
                    "unknown address type: 65535");
  record.type = 0x0100;
  EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromMsgBuf(&record), CInvalidAddressException, 33,
                    "unknown address type: 256");
}

TEST(TarnFWAddressFactory, AMacRangeIsWrittenAndNotReadBack) {
  // The kernel never sends one.
  CTarnFWAddressEtherRange range("0:0:0:0:0:1-0:0:0:0:0:2", false);
  FWAddress_ record = AddressGolden{0, false, {}}.record();
  ASSERT_TRUE(range.toMessage(&record, sizeof record, nullptr));
  EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromMsgBuf(&record), CInvalidAddressException, 33,
                    "unknown address type: 8");
}

TEST(TarnFWAddressFactory, ReadsARecordOnlyWhenAWholeOneIsThere) {
  const Bytes bytes = kReadable[0].golden.over(0);
  for (unsigned int size = 0; size < 144; ++size) {
    const Bytes part(bytes.begin(), bytes.begin() + size);
    unsigned int used = 7;
    EXPECT_EQ(CTarnFWAddressFactory::newFromMsgBuf(part.data(), size, &used), nullptr);
    EXPECT_EQ(used, 0u);
  }
  for (const unsigned int size : {144u, 145u, 0xffffffffu}) {
    unsigned int used = 7;
    const auto address = CTarnFWAddressFactory::newFromMsgBuf(bytes.data(), size, &used);
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(address->toString(), "ip 10.0.0.1");
    EXPECT_EQ(used, 144u);
  }
}

TEST(TarnFWAddressFactory, ReadsARecordAtAnyAddress) {
  Bytes buffer(144 + 8);
  const Bytes bytes = kReadable[3].golden.over(0);
  for (std::size_t shift = 0; shift < 8; ++shift) {
    std::memcpy(buffer.data() + shift, bytes.data(), 144);
    unsigned int used = 0;
    EXPECT_EQ(CTarnFWAddressFactory::newFromMsgBuf(buffer.data() + shift, 144, &used)->toString(),
              "ip ::1-::2");
  }
}

TEST(TarnFWAddressFactory, WhatARecordOfAnyBytesGivesIsWrittenAndReadBackAlike) {
  std::mt19937 random(144);
  unsigned int readable = 0;
  for (int i = 0; i < 50000; ++i) {
    Bytes bytes(144);
    for (std::uint8_t& byte : bytes) {
      // Many zeros and small numbers, so that ranges and prefix lengths are met on both sides.
      const auto number = static_cast<std::uint32_t>(random());
      byte = static_cast<std::uint8_t>((number >> 8) % 3 == 0 ? number & 0xff : number & 0x03);
    }
    bytes[0] = static_cast<std::uint8_t>(random() % 20);
    bytes[1] = 0;
    unsigned int used = 0;
    std::unique_ptr<CTarnFWAddress> first;
    try {
      first = CTarnFWAddressFactory::newFromMsgBuf(bytes.data(), 144, &used);
    } catch (const CTarnFWException& refused) {
      ASSERT_EQ(refused.retcode(), 33);
      continue;
    }
    ++readable;
    // A block loses its host bits in the first writing, and nothing after that.
    Bytes written(144);
    ASSERT_TRUE(first->toMessage(written.data(), 144, nullptr));
    const auto second = CTarnFWAddressFactory::newFromMsgBuf(written.data(), 144, &used);
    Bytes again(144);
    ASSERT_TRUE(second->toMessage(again.data(), 144, nullptr));
    ASSERT_EQ(again, written);
    if (first->getType() != 5 && first->getType() != 6) {
      ASSERT_EQ(second->toString(), first->toString());
    }
  }
  EXPECT_GT(readable, 10000u);
}

TEST(TarnFWAddressFactory, ThePunctuationOfAnIPTextTellsItsClass) {
  EXPECT_EQ(textOf(FW_ADDRSET_IP, "10.0.0.1"), "1 ip 10.0.0.1");
  EXPECT_EQ(textOf(FW_ADDRSET_IP, "10.0.0.1-10.0.0.2"), "3 ip 10.0.0.1-10.0.0.2");
  EXPECT_EQ(textOf(FW_ADDRSET_IP, "10.0.0.1/8"), "5 ip 10.0.0.1/8");
  EXPECT_EQ(textOf(FW_ADDRSET_IP, "::1"), "2 ip ::1");
  EXPECT_EQ(textOf(FW_ADDRSET_IP, "::1-::2"), "4 ip ::1-::2");
  EXPECT_EQ(textOf(FW_ADDRSET_IP, "::1/64"), "6 ip ::1/64");
}

TEST(TarnFWAddressFactory, ATextWithBothMarksGoesToTheRangeAndFailsThere) {
  EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "1.2.3.4-1.2.3.9/24"),
                    CInvalidAddressException, 33, "1.2.3.4-1.2.3.9/24");
  EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "::1-::9/64"),
                    CInvalidAddressException, 33, "::1-::9/64");
}

TEST(TarnFWAddressFactory, AMacTextIsAnAddressOrAMask) {
  EXPECT_EQ(textOf(FW_ADDRSET_MAC, "0:1:2:3:4:5"), "7 mac 00:01:02:03:04:05");
  EXPECT_EQ(textOf(FW_ADDRSET_MAC, "0:1:2:3:4:5/ff:0:0:0:0:0"),
            "9 mac 00:01:02:03:04:05/ff:00:00:00:00:00");
}

TEST(TarnFWAddressFactory, AMacRangeIsNotRecognisedInText) {
  EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromString(FW_ADDRSET_MAC, "0:0:0:0:0:1-0:0:0:0:0:2"),
                    CInvalidAddressException, 33, "0:0:0:0:0:1-0:0:0:0:0:2");
}

TEST(TarnFWAddressFactory, RefusesATextThatIsNotThere) {
  for (const FWAddrSetType_t setType : {FW_ADDRSET_IP, FW_ADDRSET_MAC}) {
    EXPECT_THROW_WITH(CTarnFWAddressFactory::newFromString(setType, nullptr),
                      CInvalidAddressException, 33, "");
  }
}

TEST(TarnFWAddressFactory, RefusesOtherKindsOfSets) {
  for (const unsigned int setType : {0u, 3u, 4u, 6u}) {
    EXPECT_THROW_WITH(
        CTarnFWAddressFactory::newFromString(static_cast<FWAddrSetType_t>(setType), "10.0.0.1"),
        CUnsupportedException, 7, "unsupported address set type" + std::to_string(setType));
  }
}

TEST(TarnFWAddressFactory, TracesWhatItReads) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_ADDRESS].level = 1;
  read(kReadable[4].golden);
  EXPECT_THROW(read({10, false, {}}), CInvalidAddressException);
  EXPECT_THROW(read({16, false, {}}), CInvalidAddressException);
  const std::string place = "7|tarnfw:address TarnFWAddressFactory:newFromMsgBuf():N ";
  EXPECT_EQ(log.normalized(), (std::vector<std::string>{
                                  place + "newFromMsgBuf: address type is ipv4/cidr\n",
                                  place + "newFromMsgBuf: address type is vnic\n",
                                  place + "newFromMsgBuf: address type is unknown\n",
                              }));
}

TEST(TarnFWAddressFactory, TracesTheWordOfEveryType) {
  const char* const words[] = {"any",
                               "ipv4",
                               "ipv6",
                               "ipv4 range",
                               "ipv6 range",
                               "ipv4/cidr",
                               "ipv6/cidr",
                               "ether",
                               "ether range",
                               "ether/mask",
                               "vnic",
                               "addrset",
                               "attribute integer",
                               "attribute unsigned integer",
                               "attribute string",
                               "attribute sid",
                               "unknown",
                               "unknown",
                               "unknown",
                               "unknown"};
  for (int type = 0; type < 20; ++type) {
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_ADDRESS].level = 1;
    try {
      read({type, false, {}});
    } catch (const CTarnFWException&) {
      // Only the trace in front of the reading is looked at.
    }
    ASSERT_FALSE(log.lines().empty());
    EXPECT_TRUE(log.has(7, std::string("newFromMsgBuf: address type is ") + words[type] + "\n"))
        << type;
  }
}

TEST(TarnFWAddressFactory, TracesWhatItMakesFromText) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_ADDRESS].level = 1;
  CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "10.0.0.1");
  CTarnFWAddressFactory::newFromString(FW_ADDRSET_MAC, "0:1:2:3:4:5");
  CTarnFWAddressFactory::newFromString(FW_ADDRSET_SID, "S-1-5");
  const std::string place = "7|tarnfw:address TarnFWAddressFactory:newFromString():N ";
  EXPECT_EQ(log.normalized(), (std::vector<std::string>{
                                  place + "creating ip address from 10.0.0.1\n",
                                  place + "creating mac address from 0:1:2:3:4:5\n",
                                  place + "creating sid address from S-1-5\n",
                              }));
}

TEST(TarnFWAddressFactory, IsSilentWithoutTracing) {
  LogCapture log;
  read(kReadable[0].golden);
  CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "10.0.0.1");
  EXPECT_TRUE(log.lines().empty());
}
