#include <gtest/gtest.h>

#include "TarnFWAddrSetID.h"
#include "TarnFWAddress.h"
#include "TarnFWAddressAny.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv6.h"

using namespace TarnFirewall;

namespace {

/// The least that a class of the family must say.
class Least : public CTarnFWAddress {
 public:
  int getType() const override { return 99; }
  std::string toString() const override { return "least"; }
  bool toMessage(void*, unsigned int, unsigned int*) override { return false; }
  bool operator<(const CTarnFWAddress&) const override { return false; }
};

}  // namespace

TEST(TarnFWAddress, IsNothingInParticularByDefault) {
  const Least address;
  EXPECT_EQ(address.getMsgSize(), 144u);
  EXPECT_FALSE(address.isIPAddress());
  EXPECT_FALSE(address.isMACAddress());
  EXPECT_FALSE(address.isContainer());
  EXPECT_FALSE(address.isIPv4Address());
  EXPECT_FALSE(address.isIPv6Address());
  EXPECT_FALSE(address.isNegated());
  EXPECT_EQ(address.getName(), "");
}

TEST(TarnFWAddress, AppendsItsTextByDefault) {
  CTarnFWText text;
  text += "the ";
  Least().appendTo(text);
  EXPECT_EQ(text.view(), "the least");
}

TEST(TarnFWAddress, TypeComesBeforeEverythingElseInTheOrder) {
  const CTarnFWAddressAny any;
  const CTarnFWAddressIPv4 ipv4("255.255.255.255", true);
  const CTarnFWAddressIPv6 ipv6("::", false);
  const CTarnFWAddressEther ether("00:00:00:00:00:00", false);
  const CTarnFWAddrSetID set("", false);
  const CTarnFWAddress* const sorted[] = {&any, &ipv4, &ipv6, &ether, &set};
  for (std::size_t i = 0; i < std::size(sorted); ++i) {
    for (std::size_t j = 0; j < std::size(sorted); ++j) {
      EXPECT_EQ(*sorted[i] < *sorted[j], i < j) << i << " " << j;
    }
  }
}

TEST(TarnFWAddress, PlainComesBeforeNegatedWhateverTheValue) {
  const CTarnFWAddressIPv4 plain("255.255.255.255", false);
  const CTarnFWAddressIPv4 negated("0.0.0.0", true);
  EXPECT_TRUE(plain < negated);
  EXPECT_FALSE(negated < plain);
}
