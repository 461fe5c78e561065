#include <gtest/gtest.h>

#include "Expect.h"
#include "LibcShim.h"
#include "LogCapture.h"
#include "TarnFWAddrSetID.h"
#include "TarnFWAddressAny.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressEtherRange.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWAddressIPv6Range.h"
#include "TarnFWAddressList.h"

using namespace TarnFirewall;

namespace {

FWAddrSetID_t id(const std::string& name) {
  FWAddrSetID_t id{};
  name.copy(id.text, sizeof id.text);
  return id;
}

/// An address of any type that counts how many of it live.
class Counted : public CTarnFWAddress {
 public:
  explicit Counted(int type, int* living = nullptr, bool writes = true)
      : type_(type), living_(living), writes_(writes) {
    if (living_ != nullptr) ++*living_;
  }
  ~Counted() override {
    if (living_ != nullptr) --*living_;
  }
  int getType() const override { return type_; }
  std::string toString() const override { return "type " + std::to_string(type_); }
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override {
    if (!writes_ || size < 144) return false;
    std::memset(buffer, type_, 144);
    *written = 144;
    return true;
  }
  bool operator<(const CTarnFWAddress&) const override { return false; }

 private:
  int type_;
  int* living_;
  bool writes_;
};

/// Whether a list of this set type takes an address of this type, and what it logs.
bool takes(FWAddrSetType_t setType, int type, std::vector<std::string>* lines = nullptr) {
  LogCapture log;
  CTarnFWAddressList list(true);
  list.setSetType(setType);
  Counted other(type);
  CTarnFWAddressIPv4CIDR block("10.0.0.0/8", false);  // looked at by its prefix length
  CTarnFWAddress* const address = type == 5 ? static_cast<CTarnFWAddress*>(&block) : &other;
  const bool taken = list.addAddress(address);
  EXPECT_EQ(list.getAddresses().size(), taken ? 1u : 0u);
  EXPECT_EQ(log.lines().size(), taken ? 0u : 1u);
  if (lines != nullptr) *lines = log.normalized();
  return taken;
}

}  // namespace

TEST(TarnFWAddressList, IsEmptyAtFirst) {
  CTarnFWAddressList list(false);
  EXPECT_EQ(list.getType(), 132);
  EXPECT_EQ(list.getMsgSize(), 0u);
  EXPECT_EQ(list.toString(), "{}");
  EXPECT_EQ(list.getSetType(), FW_ADDRSET_ANY);
  EXPECT_FALSE(list.hasIPv6());
  EXPECT_FALSE(list.isNegated());
  EXPECT_FALSE(list.isIPAddress());
  EXPECT_FALSE(list.isMACAddress());
  EXPECT_FALSE(list.isContainer());
  EXPECT_EQ(list.getName(), "");
  unsigned int written = 7;
  char nothing = 'x';
  EXPECT_TRUE(list.toMessage(&nothing, 0, &written));
  EXPECT_EQ(written, 0u);
  EXPECT_EQ(nothing, 'x');
}

TEST(TarnFWAddressList, GluesItsNameToTheFirstMember) {
  CTarnFWAddressList list(id("web"), false, false);
  EXPECT_EQ(list.toString(), "{web}");
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", false)));
  EXPECT_EQ(list.toString(), "{webip 10.0.0.1}");
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv6>("::1", true)));
  EXPECT_EQ(list.toString(), "{webip 10.0.0.1, not ip ::1}");
  CTarnFWText text;
  text += "in ";
  list.appendTo(text);
  EXPECT_EQ(text.view(), "in {webip 10.0.0.1, not ip ::1}");
  EXPECT_STREQ(list.getSetID().text, "web");
}

TEST(TarnFWAddressList, HasNoNotInFrontOfItsText) {
  const CTarnFWAddressList list(id("web"), true, false);
  EXPECT_TRUE(list.isNegated());
  EXPECT_EQ(list.toString(), "{web}");
}

TEST(TarnFWAddressList, ANameThatFillsItsFieldEndsThere) {
  EXPECT_EQ(CTarnFWAddressList(id(std::string(38, 'n')), false, false).toString(),
            "{" + std::string(38, 'n') + "}");
}

TEST(TarnFWAddressList, WritesItsMembersInOrder) {
  CTarnFWAddressList list(false);
  ASSERT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.2", false)));
  ASSERT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", true)));
  EXPECT_EQ(list.getMsgSize(), 288u);
  Bytes buffer(300);
  unsigned int written = 99;
  ASSERT_TRUE(list.toMessage(buffer.data(), 300, &written));
  EXPECT_EQ(written, 288u);
  EXPECT_EQ(buffer, Bytes(300).at(0, {1, 0, 0, 0, 10, 0, 0, 2}).at(144, {1, 0, 1, 0, 10, 0, 0, 1}));
  for (unsigned int size = 0; size < 288; ++size) {
    Bytes small(size, 0x5a);
    EXPECT_FALSE(list.toMessage(small.data(), size, &written));
    EXPECT_EQ(small, Bytes(size, 0x5a));
  }
}

TEST(TarnFWAddressList, AFailingMemberEndsTheWriting) {
  CTarnFWAddressList list(true);
  Counted good(1);
  Counted bad(2, nullptr, false);
  Counted never(3);
  for (Counted* const address : {&good, &bad, &never}) ASSERT_TRUE(list.addAddress(address));
  Bytes buffer(432);
  unsigned int written = 0;
  EXPECT_FALSE(list.toMessage(buffer.data(), 432, &written));
  EXPECT_EQ(written, 144u);
  EXPECT_EQ(buffer[143], 1);
  EXPECT_EQ(buffer[288], 0);
}

TEST(TarnFWAddressList, AMemberWithoutATextLeavesTheListWithoutOne) {
  CTarnFWAddressList list(false);
  ASSERT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", false)));
  ASSERT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv6>("::1", false)));
  {
    const LibcShim::FailingAddressTexts failing;
    EXPECT_THROW_WITH(list.toString(), CInvalidAddressException, 33, "invalid ip6 address");
  }
  EXPECT_EQ(list.toString(), "{ip 10.0.0.1, ip ::1}");
}

TEST(TarnFWAddressList, RefusesACountWhoseSizeNeedsMoreThan32Bits) {
  EXPECT_EQ(CTarnFWAddressList::getMsgSize(std::size_t{29826161}), 4294967184u);
  EXPECT_THROW_WITH(CTarnFWAddressList::getMsgSize(std::size_t{29826162}),
                    CIntegerOverflowException, 17, "too many addresses: 29826162");
}

TEST(TarnFWAddressList, AnIPSetTakesTypes1To6) {
  for (int type = 0; type < 20; ++type) {
    std::vector<std::string> lines;
    EXPECT_EQ(takes(FW_ADDRSET_IP, type, &lines), type >= 1 && type <= 6) << type;
    if (type == 0 || type == 7) {
      EXPECT_EQ(lines.at(0),
                "4|tarnfw: TarnFWAddressList:addAddress():N cannot add non-IP address of type " +
                    std::to_string(type) + " into an IP set\n");
    }
  }
}

TEST(TarnFWAddressList, AMacSetTakesTypes7To9) {
  for (int type = 0; type < 20; ++type) {
    std::vector<std::string> lines;
    EXPECT_EQ(takes(FW_ADDRSET_MAC, type, &lines), type >= 7 && type <= 9) << type;
    if (type == 6 || type == 10) {
      EXPECT_EQ(lines.at(0),
                "4|tarnfw: TarnFWAddressList:addAddress():N cannot add non-MAC address of type " +
                    std::to_string(type) + " into a MAC set\n");
    }
  }
}

TEST(TarnFWAddressList, ASetOfAnyKindTakesNoUnsignedAttribute) {
  for (int type = 0; type < 20; ++type) {
    std::vector<std::string> lines;
    EXPECT_EQ(takes(FW_ADDRSET_ANY, type, &lines),
              type <= 9 || type == 12 || type == 14 || type == 15)
        << type;
    if (type == 10 || type == 11 || type == 13 || type == 16) {
      EXPECT_EQ(
          lines.at(0),
          "4|tarnfw: TarnFWAddressList:addAddress():N cannot add address of unsupported type " +
              std::to_string(type) + "\n");
    }
  }
}

TEST(TarnFWAddressList, ASetOfAnotherKindTakesEverything) {
  for (const FWAddrSetType_t setType : {FW_ADDRSET_ATTRIBUTE, FW_ADDRSET_SID}) {
    for (int type = 0; type < 20; ++type) {
      EXPECT_TRUE(takes(setType, type)) << type;
    }
  }
}

TEST(TarnFWAddressList, TakesNoNullAddress) {
  CTarnFWAddressList list(false);
  EXPECT_FALSE(list.addAddress(static_cast<CTarnFWAddress*>(nullptr)));
  EXPECT_FALSE(list.addAddress(std::unique_ptr<CTarnFWAddress>()));
  EXPECT_EQ(list.getMsgSize(), 0u);
}

TEST(TarnFWAddressList, RemembersAnIPv6Member) {
  for (const FWAddrSetType_t setType : {FW_ADDRSET_ANY, FW_ADDRSET_IP}) {
    for (const int type : {1, 2, 3, 4, 6}) {
      CTarnFWAddressList list(true);
      list.setSetType(setType);
      Counted address(type);
      EXPECT_TRUE(list.addAddress(&address));
      EXPECT_EQ(list.hasIPv6(), type % 2 == 0) << type;
    }
  }
  CTarnFWAddressList sid(false);
  sid.setSetType(FW_ADDRSET_SID);
  EXPECT_TRUE(sid.addAddress(std::make_unique<CTarnFWAddressIPv6>("::1", false)));
  EXPECT_FALSE(sid.hasIPv6());
}

TEST(TarnFWAddressList, ABlockOfPrefixLength0BecomesItsTwoHalves) {
  LogCapture log;
  CTarnFWAddressList list(false);
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4CIDR>("0.0.0.0/0", false)));
  EXPECT_EQ(list.toString(), "{ip 0.0.0.0/1, ip 128.0.0.0/1}");
  EXPECT_EQ(list.getMsgSize(), 288u);
  ASSERT_EQ(log.normalized().size(), 1u);
  EXPECT_EQ(log.normalized()[0],
            "4|tarnfw: TarnFWAddressList:addAddress():N handling 0 prefix ip cidr\n");
}

TEST(TarnFWAddressList, AnyBlockOfPrefixLength0IsReplacedEvenANegatedOne) {
  CTarnFWAddressList list(false);
  list.setSetType(FW_ADDRSET_SID);
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4CIDR>("10.0.0.1/0", true)));
  EXPECT_EQ(list.toString(), "{ip 0.0.0.0/1, ip 128.0.0.0/1}");
}

TEST(TarnFWAddressList, KeepsAnIPv6BlockOfPrefixLength0AndABlockOfOneBit) {
  CTarnFWAddressList list(false);
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv6CIDR>("::/0", false)));
  EXPECT_TRUE(list.addAddress(std::make_unique<CTarnFWAddressIPv4CIDR>("0.0.0.0/1", false)));
  EXPECT_EQ(list.toString(), "{ip ::/0, ip 0.0.0.0/1}");
}

TEST(TarnFWAddressList, ABorrowedListDeletesTheHalvesItMadeAndNoneOfTheCallers) {
  int living = 0;
  Counted mine(1, &living);
  CTarnFWAddressIPv4CIDR everything("0.0.0.0/0", false);
  {
    CTarnFWAddressList list(true);
    EXPECT_TRUE(list.addAddress(&mine));
    EXPECT_TRUE(list.addAddress(&everything));  // the two halves are the list's: no leak
    EXPECT_EQ(list.getAddresses().size(), 3u);
  }
  EXPECT_EQ(living, 1);
  EXPECT_EQ(everything.toString(), "ip 0.0.0.0/0");
}

TEST(TarnFWAddressList, AnOwningListDeletesItsMembers) {
  int living = 0;
  {
    CTarnFWAddressList list(false);
    EXPECT_TRUE(list.addAddress(new Counted(1, &living)));
    EXPECT_TRUE(list.addAddress(std::make_unique<Counted>(2, &living)));
    EXPECT_EQ(living, 2);
  }
  EXPECT_EQ(living, 0);
}

TEST(TarnFWAddressList, ARefusedAddressIsDestroyedOrStaysTheCallers) {
  int living = 0;
  CTarnFWAddressList list(false);
  EXPECT_FALSE(list.addAddress(std::make_unique<Counted>(11, &living)));
  EXPECT_EQ(living, 0);
  Counted mine(11, &living);
  EXPECT_FALSE(list.addAddress(&mine));
  EXPECT_EQ(living, 1);
}

TEST(TarnFWAddressList, AnAddressThatWasHandedOverBelongsToABorrowedListToo) {
  int living = 0;
  {
    CTarnFWAddressList list(true);
    EXPECT_TRUE(list.addAddress(std::make_unique<Counted>(1, &living)));
    EXPECT_EQ(living, 1);
  }
  EXPECT_EQ(living, 0);
}

TEST(TarnFWAddressList, HandsItsMembersOver) {
  int living = 0;
  CTarnFWAddressList list(false);
  EXPECT_TRUE(list.addAddress(std::make_unique<Counted>(1, &living)));
  EXPECT_TRUE(list.addAddress(std::make_unique<Counted>(2, &living)));
  auto members = list.takeAddresses();
  EXPECT_EQ(list.toString(), "{}");
  ASSERT_EQ(members.size(), 2u);
  EXPECT_EQ(members[1]->getType(), 2);
  members.clear();
  EXPECT_EQ(living, 0);
}

TEST(TarnFWAddressList, KeepsNoMoreThanAMessageHoldsAndCountsTheRest) {
  constexpr unsigned int kMost = 29826161;  // of 144 bytes each in 32 bits
  CTarnFWAddressIPv4 address("10.0.0.1", false);
  CTarnFWAddressList list(true);
  for (unsigned int i = 0; i < kMost; ++i) list.addAddress(&address);
  EXPECT_TRUE(list.isFull());
  EXPECT_EQ(list.getMsgSize(), 4294967184u);
  EXPECT_TRUE(list.addAddress(&address));
  list.count();
  EXPECT_EQ(list.getAddresses().size(), kMost);
  EXPECT_THROW_WITH(static_cast<void>(list.getMsgSize()), CIntegerOverflowException, 17,
                    "too many addresses: 29826163");
}

TEST(TarnFWAddressList, ListsAreNotComparable) {
  const CTarnFWAddressList one(false);
  const CTarnFWAddressList other(false);
  EXPECT_THROW_WITH(static_cast<void>(one < other), CInvalidAddressException, 33,
                    "compare address two sets");
  const CTarnFWAddressAny any;
  EXPECT_TRUE(any < one);
  EXPECT_FALSE(one < any);
}
