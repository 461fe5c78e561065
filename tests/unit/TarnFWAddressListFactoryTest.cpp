#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "AddressRecord.h"
#include "TarnFWAddressListFactory.h"

using namespace TarnFirewall;

namespace {

FWAddrSetID_t id(const std::string& name) {
  FWAddrSetID_t id{};
  name.copy(id.text, sizeof id.text);
  return id;
}

const std::vector<int> kZero16(16, 0);

const FWAddress_ kAny = AddressGolden{0, false, {}}.record();
const FWAddress_ kIPv4 = AddressGolden{1, false, {{4, {10, 0, 0, 1}}}}.record();
const FWAddress_ kIPv6 = AddressGolden{2, true, {{19, {1}}}}.record();
const FWAddress_ kRange =
    AddressGolden{3, false, {{4, {10, 0, 0, 1}}, {8, {10, 0, 0, 2}}}}.record();
const FWAddress_ kRange6 = AddressGolden{4, false, {{4, kZero16}, {35, {9}}}}.record();
const FWAddress_ kEverything = AddressGolden{5, false, {}}.record();
const FWAddress_ kBlock6 = AddressGolden{6, false, {{20, {64}}}}.record();
const FWAddress_ kEther = AddressGolden{7, false, {{4, {1, 2, 3, 4, 5, 6}}}}.record();
const FWAddress_ kEtherMask =
    AddressGolden{9, false, {{4, {1, 2, 3, 4, 5, 6}}, {10, {255, 0, 0, 0, 0, 0}}}}.record();
const FWAddress_ kSid = AddressGolden{15, true, {{4, {8}}, {8, {5}}}}.record();
const FWAddress_ kSidSet = AddressGolden{18, false, {{4, {8}}, {8, {5}}}}.record();
const FWAddress_ kInteger = AddressGolden{13, false, {{16, {7}}}}.record();
const FWAddress_ kSet = AddressGolden{11, false, {{4, {'w', 'e', 'b'}}}}.record();

template <std::size_t N>
std::unique_ptr<CTarnFWAddressList> make(int type, const std::array<FWAddress_, N>& records) {
  return CTarnFWAddressListFactory::newFromArray(type, id("web"), records.data(), N);
}

}  // namespace

TEST(TarnFWAddressListFactory, MakesAnIPListOfTypes0To6) {
  const auto list = make(1, std::array{kAny, kIPv4, kIPv6, kRange, kRange6, kEverything, kBlock6});
  EXPECT_EQ(list->getType(), 16);
  EXPECT_EQ(list->toString(),
            "ip {webany, ip 10.0.0.1, not ip ::1, ip 10.0.0.1-10.0.0.2, ip ::-::9, ip 0.0.0.0/0, "
            "ip ::/64}");
  EXPECT_EQ(list->getMsgSize(), 7u * 144u);
}

TEST(TarnFWAddressListFactory, NeitherSplitsNorCountsOnThisPath) {
  const auto list = make(1, std::array{kEverything, kIPv6});
  EXPECT_EQ(list->getAddresses().size(), 2u);
  EXPECT_FALSE(list->hasIPv6());
  EXPECT_FALSE(list->isNegated());
  EXPECT_EQ(list->getSetType(), FW_ADDRSET_ANY);
  EXPECT_STREQ(list->getSetID().text, "web");
}

TEST(TarnFWAddressListFactory, WritesWhatItHasRead) {
  const std::array records{kIPv4, kIPv6, kRange};
  Bytes buffer(sizeof records);
  unsigned int written = 0;
  ASSERT_TRUE(make(1, records)->toMessage(buffer.data(), sizeof records, &written));
  EXPECT_EQ(written, sizeof records);
  EXPECT_EQ(std::memcmp(buffer.data(), records.data(), sizeof records), 0);
}

TEST(TarnFWAddressListFactory, AnIPListRefusesOtherTypesWithTheirText) {
  EXPECT_THROW_WITH(make(1, std::array{kIPv4, kEther}), CInvalidAddressException, 33,
                    "mac 01:02:03:04:05:06");
  EXPECT_THROW_WITH(make(1, std::array{kSet}), CInvalidAddressException, 33, "addrset web");
}

TEST(TarnFWAddressListFactory, MakesAMacListOfSingleAddresses) {
  const auto list = make(2, std::array{kEther, kEther});
  EXPECT_EQ(list->getType(), 17);
  EXPECT_EQ(list->toString(), "mac {webmac 01:02:03:04:05:06, mac 01:02:03:04:05:06}");
}

TEST(TarnFWAddressListFactory, AMacListRefusesAMaskWithItsText) {
  EXPECT_THROW_WITH(make(2, std::array{kEther, kEtherMask}), CInvalidAddressException, 33,
                    "mac 01:02:03:04:05:06/ff:00:00:00:00:00");
  EXPECT_THROW_WITH(make(2, std::array{kIPv4}), CInvalidAddressException, 33, "ip 10.0.0.1");
}

TEST(TarnFWAddressListFactory, ARecordThatCannotBeReadEndsTheList) {
  const FWAddress_ unknown = AddressGolden{8, false, {}}.record();
  EXPECT_THROW_WITH(make(2, std::array{kEther, unknown}), CInvalidAddressException, 33,
                    "unknown address type: 8");
}

TEST(TarnFWAddressListFactory, MakesEmptyLists) {
  const struct {
    int type;
    const char* text;
  } cases[] = {{1, "ip {web}"}, {2, "mac {web}"}, {15, "sid {web}"}};
  for (const auto& [type, text] : cases) {
    const auto list = CTarnFWAddressListFactory::newFromArray(type, id("web"), nullptr, 0);
    EXPECT_EQ(list->toString(), text);
    EXPECT_EQ(list->getMsgSize(), 0u);
  }
  EXPECT_EQ(CTarnFWAddressListFactory::newFromArray(1, id(""), nullptr, 0)->toString(), "ip {}");
}

TEST(TarnFWAddressListFactory, AppendsTheWordAndTheList) {
  CTarnFWText text;
  text += "set ";
  make(2, std::array{kEther})->appendTo(text);
  EXPECT_EQ(text.view(), "set mac {webmac 01:02:03:04:05:06}");
}

TEST(TarnFWAddressListFactory, MakesASidListOfSidAttributes) {
  // A record of the list's own type is read as an attribute and belongs here too.
  const auto list = make(15, std::array{kSid, kSidSet});
  EXPECT_EQ(list->getType(), 18);
  EXPECT_EQ(list->toString(), "sid {webnot sid attr , sid attr }");
  EXPECT_THROW_WITH(make(15, std::array{kSid, kInteger}), CInvalidAddressException, 33,
                    "unsigned int attr 7");
}

TEST(TarnFWAddressListFactory, ASidListRefusesOtherTypesWithTheirText) {
  EXPECT_THROW_WITH(make(15, std::array{kIPv4}), CInvalidAddressException, 33, "ip 10.0.0.1");
}

TEST(TarnFWAddressListFactory, TakesTheAttributesTypeForASidSetAndNotTheSetType) {
  for (const int type : {0, 3, 4, 5, 14, 16, 18, -1}) {
    EXPECT_THROW_WITH(make(type, std::array{kIPv4}), CInvalidAddressException, 33,
                      "unknown address type: " + std::to_string(type));
  }
}
