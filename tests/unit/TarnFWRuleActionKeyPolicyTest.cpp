#include <gtest/gtest.h>

#include "Expect.h"
#include "Message.h"
#include "TarnFWRuleActionEncrypt.h"
#include "TarnFWRuleActionKeyPolicy.h"
#include "TarnFWRuleActionPbr.h"

using namespace TarnFirewall;

namespace {

const std::string kPolicy = "01234567-89ab-cdef-0123-456789abcdef";
const std::string kAllOnes = "ffffffff-ffff-ffff-ffff-ffffffffffff";

}  // namespace

TEST(TarnFWRuleActionKeyPolicy, EncryptNamesItsPolicyAfterTheFlags) {
  CTarnFWRuleActionEncrypt action(kPolicy);
  EXPECT_EQ(action.getAction(), 11u);
  EXPECT_EQ(action.toString(), "encrypt keypolicy " + kPolicy);
  action.enableLogPacket();
  action.enableDynamic(1);
  EXPECT_EQ(action.toString(), "encrypt with log as ftp keypolicy " + kPolicy);
  EXPECT_EQ(action.toString(1), "encrypt\n with log as ftp");
  EXPECT_EQ(CTarnFWRuleActionEncrypt(kAllOnes).toString(), "encrypt keypolicy " + kAllOnes);
}

TEST(TarnFWRuleActionKeyPolicy, AnEmptyPolicyPrintsNothing) {
  EXPECT_EQ(CTarnFWRuleActionEncrypt("").toString(), "encrypt");
  EXPECT_EQ(CTarnFWRuleActionPbr("").toString(), "pbr");
}

TEST(TarnFWRuleActionKeyPolicy, PbrOfAllOnesPassesThrough) {
  CTarnFWRuleActionPbr action(kAllOnes);
  action.enableCopyPacket();
  EXPECT_EQ(action.getAction(), 14u);
  EXPECT_EQ(action.toString(), "pbr with copy pass-through");
  EXPECT_EQ(CTarnFWRuleActionPbr(kPolicy).toString(), "pbr keypolicy " + kPolicy);
  EXPECT_EQ(CTarnFWRuleActionPbr(kAllOnes + "f").toString(), "pbr keypolicy " + kAllOnes + "f");
}

TEST(TarnFWRuleActionKeyPolicy, WireFormHasThePolicyAt293) {
  CTarnFWRuleActionEncrypt encrypt(kPolicy);
  EXPECT_EQ(messageOf(encrypt), Bytes(330).at(290, {11}).text(293, kPolicy));
  expectShortBuffersRefused(encrypt);
  CTarnFWRuleActionPbr pbr("");
  EXPECT_EQ(messageOf(pbr), Bytes(330).at(290, {14}));
}

TEST(TarnFWRuleActionKeyPolicy, ALongerPolicyIsCutOnTheWire) {
  CTarnFWRuleActionPbr action(std::string(50, 'k'));
  EXPECT_EQ(messageOf(action), Bytes(330).at(290, {14}).text(293, std::string(36, 'k')));
  EXPECT_EQ(action.toString(), "pbr keypolicy " + std::string(50, 'k'));
}
