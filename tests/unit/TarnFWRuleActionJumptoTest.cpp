#include <gtest/gtest.h>

#include <cstring>

#include "Expect.h"
#include "Message.h"
#include "TarnFWRuleActionJumpto.h"

using namespace TarnFirewall;

TEST(TarnFWRuleActionJumpto, HasTheRuleSetInTextAndRecord) {
  CTarnFWRuleActionJumpto action("web");
  EXPECT_EQ(action.getAction(), 4u);
  EXPECT_EQ(action.toString(), "jumpto web");
  EXPECT_EQ(messageOf(action), Bytes(330).text(0, "web").at(290, {4}));
  expectShortBuffersRefused(action);
  action.enableRtt();
  EXPECT_EQ(action.toString(), "jumpto web with rtt");
  EXPECT_EQ(CTarnFWRuleActionJumpto(static_cast<const char*>(nullptr)).toString(), "jumpto ");
}

TEST(TarnFWRuleActionJumpto, ANameOf64CharactersIsTooLong) {
  const std::string longest(63, 'r');
  CTarnFWRuleActionJumpto action(longest.c_str());
  EXPECT_EQ(messageOf(action), Bytes(330).text(0, longest).at(290, {4}));
  const std::string over(64, 'r');
  EXPECT_THROW_WITH(CTarnFWRuleActionJumpto(over.c_str()), CIDTooLongException, 32,
                    "id is too long: " + over);
}

TEST(TarnFWRuleActionJumpto, AnIDThatFillsItsFieldWithoutANulIsTooLong) {
  FWRuleSetID_t id{};
  std::memset(id.text, 'r', sizeof id.text - 1);
  CTarnFWRuleActionJumpto action(&id);
  EXPECT_EQ(action.toString(), "jumpto " + std::string(63, 'r'));
  EXPECT_EQ(messageOf(action), Bytes(330).text(0, std::string(63, 'r')).at(290, {4}));
  id.text[63] = 'r';
  const FWRuleSetID_t* const endless = &id;
  EXPECT_THROW_WITH(CTarnFWRuleActionJumpto{endless}, CIDTooLongException, 32,
                    "id is too long: " + std::string(64, 'r'));
}
