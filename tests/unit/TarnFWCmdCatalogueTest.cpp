#include <gtest/gtest.h>

#include <set>
#include <string>

#include "TarnFWCmdCatalogue.h"

using namespace TarnFirewall;

TEST(TarnFWCmdCatalogue, NamesStandAtTheirNumbers) {
  ASSERT_EQ(cmd_name.size(), 92u);
  EXPECT_STREQ(cmd_name[0], "unknown");
  EXPECT_STREQ(cmd_name[1], "GetRuleSetCount");
  EXPECT_STREQ(cmd_name[16], "GetAddrSetInfo");
  EXPECT_STREQ(cmd_name[31], "SetFailPolicy");
  EXPECT_STREQ(cmd_name[46], "SetAddrSetCfg");
  EXPECT_STREQ(cmd_name[60], "DestroyAllRuleSet");
  EXPECT_STREQ(cmd_name[74], "GetConnAttrInfo");
  EXPECT_STREQ(cmd_name[91], "GetRTTData");
}

TEST(TarnFWCmdCatalogue, ContainersCarryTheNameOfAddressSets) {
  EXPECT_STREQ(cmd_name[13], "CreateAddrSet");
  EXPECT_STREQ(cmd_name[75], "CreateAddrSet");
  std::set<std::string> names(cmd_name.begin(), cmd_name.end());
  EXPECT_EQ(names.size(), 91u) << "every other name is there once";
}

TEST(TarnFWCmdCatalogue, ANumberOutsideTheTableIsUnknown) {
  EXPECT_STREQ(commandName(91), "GetRTTData");
  EXPECT_STREQ(commandName(92), "unknown");
  EXPECT_STREQ(commandName(65535), "unknown");
}

TEST(TarnFWCmdCatalogue, TheRootIsSentAsACreationAndNothingSendsFive) {
  EXPECT_STREQ(kCmdCatalogue[3].forms[0].className, "CTarnFWCmdCreateRuleSet");
  EXPECT_STREQ(kCmdCatalogue[3].forms[1].className, "CTarnFWCmdSetRootRuleSet");
  EXPECT_EQ(kCmdCatalogue[5].forms[0].className, nullptr);
}

TEST(TarnFWCmdCatalogue, NumbersWithoutAClassAreTheKernelsOwn) {
  std::set<int> without;
  for (int number = 0; number < kCmdCount; ++number) {
    if (kCmdCatalogue[number].forms[0].className == nullptr) without.insert(number);
  }
  EXPECT_EQ(without, (std::set<int>{0, 5, 38, 50, 51, 52, 53, 57, 91}));
}

TEST(TarnFWCmdCatalogue, NoRequestIsLargerThanItsFixedBody) {
  for (const FWCmdRow_& row : kCmdCatalogue) {
    for (const FWCmdForm_& form : row.forms) {
      if (form.className == nullptr || form.body == kVaries) continue;
      EXPECT_LE(row.request, form.body) << row.name;
    }
  }
}

TEST(TarnFWCmdCatalogue, TheRequestSizesAddUp) {
  // The sum of the column, so that no single size changes unseen.
  std::uint64_t sum = 0;
  for (const FWCmdRow_& row : kCmdCatalogue) sum += row.request;
  EXPECT_EQ(sum, 47167u);
}
