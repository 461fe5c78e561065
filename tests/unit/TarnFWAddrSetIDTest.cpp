#include <gtest/gtest.h>

#include <cstring>

#include "AddressRecord.h"
#include "TarnFWAddrSetID.h"

using namespace TarnFirewall;

namespace {

FWAddrSetID_t id(const std::string& name) {
  FWAddrSetID_t id{};
  name.copy(id.text, sizeof id.text);
  return id;
}

/// The name's field of 38 bytes after the header.
AddressGolden golden(const std::string& name, bool negated) {
  std::vector<int> field(name.begin(), name.end());
  field.resize(38, 0);
  return {11, negated, {{4, field}}};
}

}  // namespace

TEST(TarnFWAddrSetID, IsAContainerWithAName) {
  const CTarnFWAddrSetID set("web-servers", false);
  EXPECT_EQ(set.toString(), "addrset web-servers");
  EXPECT_EQ(set.getName(), "web-servers");
  EXPECT_EQ(set.getType(), 11);
  EXPECT_TRUE(set.isContainer());
  EXPECT_FALSE(set.isIPAddress());
  EXPECT_FALSE(set.isMACAddress());
}

TEST(TarnFWAddrSetID, NegatedHasNotInFrontOfItsText) {
  EXPECT_EQ(CTarnFWAddrSetID("web", true).toString(), "not addrset web");
  EXPECT_EQ(CTarnFWAddrSetID(id("web"), true).toString(), "not addrset web");
}

TEST(TarnFWAddrSetID, GetAddressCopiesTheNameOut) {
  FWAddrSetID_t name = id(std::string(38, 'x'));
  EXPECT_FALSE(CTarnFWAddrSetID("web", false).getAddress(&name));
  EXPECT_EQ(std::memcmp(name.text, id("web").text, sizeof name.text), 0);
  EXPECT_TRUE(CTarnFWAddrSetID("web", true).getAddress(&name));
}

TEST(TarnFWAddrSetID, A37CharacterNameIsAcceptedAnd38AreTooLong) {
  const std::string longest(37, 'n');
  EXPECT_EQ(CTarnFWAddrSetID(longest.c_str(), false).getName(), longest);
  const std::string longer(38, 'n');
  EXPECT_THROW_WITH(CTarnFWAddrSetID(longer.c_str(), false), CIDTooLongException, 32,
                    "id is too long: " + longer);
  // The message has room for 255 characters.
  const std::string endless(1000000, 'n');
  EXPECT_THROW_WITH(CTarnFWAddrSetID(endless.c_str(), false), CIDTooLongException, 32,
                    "id is too long: " + std::string(255 - 16, 'n'));
}

TEST(TarnFWAddrSetID, WritesItsNameIntoTheWholeField) {
  CTarnFWAddrSetID plain("web", false);
  expectWire(plain, golden("web", false));
  CTarnFWAddrSetID negated("", true);
  expectWire(negated, golden("", true));
  const std::string longest(37, 'n');
  CTarnFWAddrSetID full(longest.c_str(), false);
  expectWire(full, golden(longest, false));
}

TEST(TarnFWAddrSetID, ReadsARecord) {
  const FWAddress_ plain = golden("web", false).record();
  EXPECT_EQ(CTarnFWAddrSetID(&plain).toString(), "addrset web");
  const FWAddress_ negated = golden("web", true).record();
  CTarnFWAddrSetID set(&negated);
  EXPECT_EQ(set.toString(), "not addrset web");
  expectWire(set, golden("web", true));
}

TEST(TarnFWAddrSetID, ANameThatFillsItsFieldEndsThere) {
  Bytes bytes = golden("", false).over('x');
  bytes.text(4, std::string(38, 'n'));
  const auto record = loadRecord<FWAddress_>(bytes.data());
  EXPECT_EQ(CTarnFWAddrSetID(&record).getName(), std::string(38, 'n'));
  EXPECT_EQ(CTarnFWAddrSetID(&record).toString(), "addrset " + std::string(38, 'n'));
}

TEST(TarnFWAddrSetID, RefusesARecordOfAnotherType) {
  for (const int type : {0, 10, 12}) {
    FWAddress_ record = golden("web", false).record();
    record.type = static_cast<std::uint16_t>(type);
    EXPECT_THROW_WITH(CTarnFWAddrSetID{&record}, CInvalidAddressException, 33,
                      "invalid address type: " + std::to_string(type));
  }
}

TEST(TarnFWAddrSetID, IsOrderedByName) {
  const CTarnFWAddrSetID a("a", false);
  const CTarnFWAddrSetID ab("ab", false);
  const CTarnFWAddrSetID b("b", false);
  EXPECT_TRUE(a < ab);
  EXPECT_TRUE(ab < b);
  EXPECT_FALSE(b < a);
}

TEST(TarnFWAddrSetID, TwoEqualOnesCompareNeitherWay) {
  const CTarnFWAddrSetID one("a", false);
  const CTarnFWAddrSetID other("a", false);
  EXPECT_FALSE(one < other);
  EXPECT_FALSE(other < one);
}

TEST(TarnFWAddrSetID, TheBytesAfterTheNameCountInTheOrder) {
  FWAddrSetID_t dirty = id("a");
  dirty.text[5] = 1;
  EXPECT_TRUE(CTarnFWAddrSetID(id("a"), false) < CTarnFWAddrSetID(dirty, false));
}
