#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWAddrSetID.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4Range.h"
#include "TarnFWAddressIPv6Range.h"
#include "TarnFWAddressList.h"
#include "TarnFWRuleActionDNAT.h"
#include "TarnFWRuleActionNAT.h"
#include "TarnFWRuleActionSNAT.h"

using namespace TarnFirewall;

namespace {

std::unique_ptr<CTarnFWAddress> single() {
  return std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", false);
}
std::unique_ptr<CTarnFWAddress> range() {
  return std::make_unique<CTarnFWAddressIPv4Range>("10.0.0.1-10.0.0.5", true);
}

template <typename Record>
Record recordOf(CTarnFWAddress& address) {
  Record record{};
  EXPECT_TRUE(address.toMessage(&record, sizeof record, nullptr));
  return record;
}

}  // namespace

TEST(TarnFWRuleActionNAT, SNATHasItsAddressInTextAndRecord) {
  CTarnFWRuleActionSNAT action(single());
  EXPECT_EQ(action.getAction(), 7u);
  EXPECT_EQ(action.toString(), "snat ip 10.0.0.1");
  EXPECT_EQ(messageOf(action), Bytes(330).at(0, {1, 0, 0, 0, 10, 0, 0, 1}).at(290, {7}));
  expectShortBuffersRefused(action);
  action.enableLogPacket();
  EXPECT_EQ(action.toString(), "snat ip 10.0.0.1 with log");
  EXPECT_EQ(action.toString(0), "snat\n with log");
}

TEST(TarnFWRuleActionNAT, SNATReadsItsAddressFromARecord) {
  const auto record = recordOf<FWAddress_>(*range());
  CTarnFWRuleActionSNAT action(&record);
  EXPECT_EQ(action.toString(), "snat not ip 10.0.0.1-10.0.0.5");
  EXPECT_EQ(messageOf(action),
            Bytes(330).at(0, {3, 0, 1, 0, 10, 0, 0, 1, 10, 0, 0, 5}).at(290, {7}));
  FWAddress_ unknown{};
  unknown.type = 8;
  EXPECT_THROW_WITH(CTarnFWRuleActionSNAT{&unknown}, CInvalidAddressException, 33,
                    "unknown address type: 8");
}

TEST(TarnFWRuleActionNAT, EachDNATConstructorHasItsTextAndRecord) {
  const auto record = recordOf<FWAddress_>(*single());
  const Bytes address = Bytes(330).at(0, {1, 0, 0, 0, 10, 0, 0, 1}).at(290, {8});
  for (const bool fromRecord : {false, true}) {
    const auto make = [&](auto... arguments) {
      return fromRecord ? CTarnFWRuleActionDNAT(&record, arguments...)
                        : CTarnFWRuleActionDNAT(single(), arguments...);
    };
    CTarnFWRuleActionDNAT plain = make(FW_POOL_NONE, static_cast<unsigned short>(0));
    EXPECT_EQ(plain.getAction(), 8u);
    EXPECT_EQ(plain.toString(), "dnat ip 10.0.0.1");
    EXPECT_EQ(messageOf(plain), address);
    expectShortBuffersRefused(plain);

    CTarnFWRuleActionDNAT pool =
        make(FW_POOL_TCP_CONN_BALANCE, static_cast<unsigned short>(0x1234));
    EXPECT_EQ(pool.toString(), "dnat ip 10.0.0.1 poolopt tcp-conn-balance 4660");
    EXPECT_EQ(messageOf(pool), Bytes(address).at(282, {5 << 2, 0, 0x34, 0x12}));

    CTarnFWRuleActionDNAT port =
        make(FW_POOL_RANDOM, static_cast<unsigned short>(8080), static_cast<unsigned short>(7));
    EXPECT_EQ(port.toString(), "dnat ip 10.0.0.1 port 8080 poolopt random 7");
    EXPECT_EQ(messageOf(port), Bytes(address).at(144, {0x1f, 0x90}).at(282, {2 << 2 | 1, 0, 7, 0}));

    CTarnFWRuleActionDNAT ports =
        make(FW_POOL_NONE, static_cast<unsigned short>(80), static_cast<unsigned short>(8080),
             static_cast<unsigned short>(0));
    EXPECT_EQ(ports.toString(), "dnat ip 10.0.0.1 port 80-8080");
    EXPECT_EQ(messageOf(ports), Bytes(address).at(144, {0, 80, 0x1f, 0x90}).at(282, {3}));
  }
}

TEST(TarnFWRuleActionNAT, FlagsStandAfterTheDataOfADNAT) {
  CTarnFWRuleActionDNAT action(single(), FW_POOL_NONE, 80, 0);
  action.enableNoFlow();
  action.enableDynamic(2);
  EXPECT_EQ(action.toString(), "dnat ip 10.0.0.1 port 80 with noflow as oracle");
  EXPECT_EQ(action.toString(0), "dnat\n with noflow as oracle");
}

TEST(TarnFWRuleActionNAT, EachPoolOptionHasItsWord) {
  const char* const words[] = {"none",        "bitmask",     "random",
                               "source-hash", "round-robin", "tcp-conn-balance"};
  ASSERT_EQ(std::size(words), kPoolOptions);
  for (unsigned int i = 0; i < kPoolOptions; ++i) {
    EXPECT_STREQ(rule_poolopt_name[i], words[i]);
    const CTarnFWRuleActionDNAT action(single(), static_cast<FWRulePoolOpt_t>(i), 9);
    EXPECT_EQ(action.toString(), i == 0
                                     ? "dnat ip 10.0.0.1"
                                     : std::string("dnat ip 10.0.0.1 poolopt ") + words[i] + " 9");
  }
  EXPECT_EQ(CTarnFWRuleActionDNAT(single(), static_cast<FWRulePoolOpt_t>(6), 9).toString(),
            "dnat ip 10.0.0.1 unknown");
}

TEST(TarnFWRuleActionNAT, APoolOptionWithValueZeroPrintsNoNumber) {
  EXPECT_EQ(CTarnFWRuleActionDNAT(single(), FW_POOL_SOURCE_HASH, 0).toString(),
            "dnat ip 10.0.0.1 poolopt source-hash");
}

TEST(TarnFWRuleActionNAT, ReversedPortsAreRefusedAndEqualOnesAreNot) {
  EXPECT_THROW_WITH(CTarnFWRuleActionDNAT(single(), FW_POOL_NONE, 81, 80, 0), CUnsupportedException,
                    7, "reversed port range");
  EXPECT_EQ(CTarnFWRuleActionDNAT(single(), FW_POOL_NONE, 80, 80, 0).toString(),
            "dnat ip 10.0.0.1 port 80-80");
}

TEST(TarnFWRuleActionNAT, ARangeIsReplacedByASetAndGivenToTheCaller) {
  CTarnFWRuleActionSNAT snat(range());
  const auto old = snat.replaceIPRangeAddress("target7");
  ASSERT_NE(old, nullptr);
  EXPECT_EQ(old->toString(), "not ip 10.0.0.1-10.0.0.5");
  EXPECT_EQ(snat.toString(), "snat addrset target7");
  EXPECT_EQ(messageOf(snat), Bytes(330).at(0, {11}).text(4, "target7").at(290, {7}));
  EXPECT_EQ(snat.replaceIPRangeAddress("again"), nullptr);

  CTarnFWRuleActionDNAT dnat(
      std::make_unique<CTarnFWAddressIPv6Range>("2001:db8::1-2001:db8::9", false), FW_POOL_NONE, 80,
      0);
  const std::string name(37, 'n');
  ASSERT_NE(dnat.replaceIPRangeAddress(name.c_str()), nullptr);
  EXPECT_EQ(dnat.toString(), "dnat addrset " + name + " port 80");
}

TEST(TarnFWRuleActionNAT, ASingleAddressIsNotReplaced) {
  CTarnFWRuleActionSNAT action(single());
  EXPECT_EQ(action.replaceIPRangeAddress("target1"), nullptr);
  EXPECT_EQ(action.toString(), "snat ip 10.0.0.1");
}

TEST(TarnFWRuleActionNAT, ATooLongNameIsRefusedWhateverTheAddressIs) {
  const std::string name(38, 'n');
  CTarnFWRuleActionSNAT plain(single());
  EXPECT_THROW_WITH(plain.replaceIPRangeAddress(name.c_str()), CIDTooLongException, 32,
                    "id is too long: " + name);
  CTarnFWRuleActionSNAT ranged(range());
  EXPECT_THROW_WITH(ranged.replaceIPRangeAddress(name.c_str()), CIDTooLongException, 32,
                    "id is too long: " + name);
  EXPECT_EQ(ranged.toString(), "snat not ip 10.0.0.1-10.0.0.5");
}

TEST(TarnFWRuleActionNAT, AnAddressThatNeedsMoreThanItsPlaceIsNotWritten) {
  auto list = std::make_unique<CTarnFWAddressList>(false);
  list->addAddress(single());
  list->addAddress(single());
  CTarnFWRuleActionSNAT action(std::move(list));
  Bytes bytes(330, 0xee);
  unsigned int written = 5;
  EXPECT_FALSE(action.toMessage(bytes.data(), 330, &written));
  EXPECT_EQ(written, 5u);
  EXPECT_EQ(bytes, Bytes(330, 0xee));
}
