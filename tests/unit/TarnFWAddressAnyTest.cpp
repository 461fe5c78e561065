#include <gtest/gtest.h>

#include "Expect.h"
#include "TarnFWAddressAny.h"

using namespace TarnFirewall;

TEST(TarnFWAddressAny, HasItsWordAndItsCode) {
  const CTarnFWAddressAny any;
  EXPECT_EQ(any.toString(), "any");
  EXPECT_EQ(any.getType(), 0);
  EXPECT_EQ(any.getMsgSize(), 144u);
  EXPECT_FALSE(any.isIPAddress());
  EXPECT_FALSE(any.isMACAddress());
  EXPECT_FALSE(any.isContainer());
  EXPECT_EQ(any.getName(), "");
  CTarnFWText text;
  text += "from ";
  any.appendTo(text);
  EXPECT_EQ(text.view(), "from any");
}

TEST(TarnFWAddressAny, WritesOnlyItsType) {
  CTarnFWAddressAny any;
  Bytes buffer(144, 0xff);
  unsigned int written = 0;
  ASSERT_TRUE(any.toMessage(buffer.data(), 144, &written));
  EXPECT_EQ(written, 144u);
  EXPECT_EQ(buffer, Bytes(144, 0xff).at(0, {0, 0}));
  EXPECT_TRUE(any.toMessage(buffer.data(), 144, nullptr));
}

TEST(TarnFWAddressAny, WritesNothingIntoAShortBuffer) {
  CTarnFWAddressAny any;
  for (unsigned int size = 0; size < 144; ++size) {
    Bytes buffer(size, 0xff);
    unsigned int written = 7;
    EXPECT_FALSE(any.toMessage(buffer.data(), size, &written));
    EXPECT_EQ(buffer, Bytes(size, 0xff));
    EXPECT_EQ(written, 7u);
  }
}

TEST(TarnFWAddressAny, NegationDoesNotSurviveAReading) {
  const Bytes bytes = Bytes(144).at(2, {1});
  const auto record = loadRecord<FWAddress_>(bytes.data());
  const CTarnFWAddressAny any(&record);
  EXPECT_FALSE(any.isNegated());
  EXPECT_EQ(any.toString(), "any");
}

TEST(TarnFWAddressAny, TwoAreNeverLessThanEachOther) {
  const CTarnFWAddressAny one;
  const CTarnFWAddressAny other;
  EXPECT_FALSE(one < other);
  EXPECT_FALSE(other < one);
}
