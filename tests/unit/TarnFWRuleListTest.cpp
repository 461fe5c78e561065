#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressList.h"
#include "TarnFWRuleBuilder.h"
#include "TarnFWRuleList.h"

using namespace TarnFirewall;

namespace {

std::unique_ptr<CTarnFWRule> rule(unsigned int id) {
  CTarnFWRuleBuilder builder;
  builder.setId(id);
  builder.setPosition(-1);
  builder.setType(true);
  builder.setAction(FW_ACTION_DROP, "");
  return builder.buildRule();
}

/// A rule that can't be written: its source needs two records.
std::unique_ptr<CTarnFWRule> unwritable() {
  auto list = std::make_unique<CTarnFWAddressList>(false);
  list->addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", false));
  list->addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.2", false));
  CTarnFWRuleBuilder builder;
  builder.setType(true);
  builder.setAction(FW_ACTION_DROP, "");
  builder.setSource(std::move(list));
  return builder.buildRule();
}

Bytes record(int id) {
  return Bytes(892)
      .at(0, {id, 0, 0, 0, 0xff, 0xff, 0xff, 0xff})
      .at(750, {2})
      .at(790, {0x10})
      .at(884, {1});
}

}  // namespace

TEST(TarnFWRuleList, AnEmptyListHasNoSizeAndNoText) {
  CTarnFWRuleList list(false);
  EXPECT_EQ(list.getType(), 22);
  EXPECT_EQ(list.getRuleCount(), 0u);
  EXPECT_EQ(list.getMsgSize(), 0u);
  EXPECT_EQ(list.toString(), "");
  EXPECT_EQ(messageOf(list), Bytes(0));
}

TEST(TarnFWRuleList, RulesKeepTheOrderInWhichTheyWereAdded) {
  CTarnFWRuleList list(false);
  EXPECT_TRUE(list.addRule(rule(9)));
  EXPECT_TRUE(list.addRule(rule(3).release()));
  EXPECT_TRUE(list.addRule(rule(9)));
  EXPECT_EQ(list.getRuleCount(), 3u);
  const std::string text =
      "rule 9 inout protocol any from any to any drop;\n"
      "rule 3 inout protocol any from any to any drop;\n"
      "rule 9 inout protocol any from any to any drop;\n";
  EXPECT_EQ(list.toString(), text);
  EXPECT_EQ(list.to_string(), text);
  Bytes expected = record(9);
  const Bytes second = record(3);
  expected.insert(expected.end(), second.begin(), second.end());
  expected.insert(expected.end(), expected.begin(), expected.begin() + 892);
  EXPECT_EQ(messageOf(list), expected);
  EXPECT_EQ(list.getRules()[1]->toString(), "rule 3 inout protocol any from any to any drop;");
}

TEST(TarnFWRuleList, FiveRulesNeed4460Bytes) {
  CTarnFWRuleList list(false);
  for (unsigned int id = 0; id < 5; ++id) list.addRule(rule(id));
  EXPECT_EQ(list.getMsgSize(), 4460u);
  expectShortBuffersRefused(list);
}

TEST(TarnFWRuleList, TheFirstFailureEndsTheWriting) {
  CTarnFWRuleList list(false);
  list.addRule(rule(1));
  list.addRule(unwritable());
  list.addRule(rule(2));
  Bytes bytes(3 * 892, 0xee);
  unsigned int written = 0;
  EXPECT_FALSE(list.toMessage(bytes.data(), 3 * 892, &written));
  EXPECT_EQ(written, 892u);
  Bytes expected = record(1);
  expected.resize(3 * 892, 0xee);
  EXPECT_EQ(bytes, expected);
}

TEST(TarnFWRuleList, ABorrowedListLeavesItsRulesToTheCaller) {
  const auto mine = rule(5);
  {
    CTarnFWRuleList list(true);
    list.addRule(mine.get());
    EXPECT_EQ(list.getRuleCount(), 1u);
  }
  EXPECT_EQ(mine->toString(), "rule 5 inout protocol any from any to any drop;");
}

TEST(TarnFWRuleList, KeepsItsSelector) {
  dvs_port_ port{};
  port.type = FW_SELECTOR_VIF;
  EXPECT_EQ(CTarnFWRuleList(port, false).getPort().type, FW_SELECTOR_VIF);
  EXPECT_EQ(CTarnFWRuleList(false).getPort().type, FW_SELECTOR_NONE);
}

TEST(TarnFWRuleList, ASizeBeyond32BitsIsRefused) {
  const auto one = rule(1);
  CTarnFWRuleList list(true);
  const unsigned int most = 4294967295u / 892;  // 4814985
  for (unsigned int i = 0; i < most; ++i) list.addRule(one.get());
  EXPECT_EQ(list.getMsgSize(), most * 892);
  list.addRule(one.get());
  EXPECT_THROW_WITH(list.getMsgSize(), CIntegerOverflowException, 17, "too manu rules: 4814986");
}
