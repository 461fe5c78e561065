#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "Expect.h"
#include "Message.h"
#include "TarnFWAddress.h"
#include "TarnFWRuleAction.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleActionClear.h"
#include "TarnFWRuleActionCopy.h"
#include "TarnFWRuleActionDivert.h"
#include "TarnFWRuleActionDrop.h"
#include "TarnFWRuleActionPunt.h"
#include "TarnFWRuleActionReject.h"

using namespace TarnFirewall;

namespace {

/// An accept with the flags log, copy, noflow, rtt and lbrule by the bits of `set`, lowest first.
CTarnFWRuleActionAccept accept(unsigned int set) {
  CTarnFWRuleActionAccept action;
  if ((set & 1) != 0) action.enableLogPacket();
  if ((set & 2) != 0) action.enableCopyPacket();
  if ((set & 4) != 0) action.enableNoFlow();
  if ((set & 8) != 0) action.enableRtt();
  if ((set & 16) != 0) action.enableLBRule();
  return action;
}

}  // namespace

TEST(TarnFWRuleAction, NamesAreInTheOrderOfTheCodes) {
  const char* const words[] = {"unknown", "accept",  "drop",  "reject", "jumpto",
                               "punt",    "divert",  "snat",  "dnat",   "macrewrite",
                               "copy",    "encrypt", "clear", "lb",     "pbr"};
  ASSERT_EQ(std::size(words), kRuleActions);
  for (unsigned int i = 0; i < kRuleActions; ++i) EXPECT_EQ(rule_action_name[i], words[i]);
}

TEST(TarnFWRuleAction, PlainActionsAreTheirWordAndTheirCode) {
  CTarnFWRuleActionAccept acceptAction;
  CTarnFWRuleActionDrop drop;
  CTarnFWRuleActionReject reject;
  CTarnFWRuleActionPunt punt;
  CTarnFWRuleActionDivert divert;
  CTarnFWRuleActionCopy copy;
  CTarnFWRuleActionClear clear;
  const struct {
    CTarnFWRuleAction& action;
    int code;
    const char* word;
  } rows[] = {{acceptAction, 1, "accept"}, {drop, 2, "drop"},     {reject, 3, "reject"},
              {punt, 5, "punt"},           {divert, 6, "divert"}, {copy, 10, "copy"},
              {clear, 12, "clear"}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.action.getType(), 20);
    EXPECT_EQ(row.action.getMsgSize(), 330u);
    EXPECT_EQ(row.action.getAction(), static_cast<unsigned int>(row.code));
    EXPECT_EQ(row.action.toString(), row.word);
    EXPECT_EQ(row.action.toString(0), std::string(row.word) + "\n");
    EXPECT_EQ(row.action.replaceIPRangeAddress("name"), nullptr);
    EXPECT_EQ(messageOf(row.action), Bytes(330).at(290, {row.code}));
    expectShortBuffersRefused(row.action);
  }
}

TEST(TarnFWRuleAction, OneFlagStandsWithoutBraces) {
  EXPECT_EQ(accept(0).flagToString(), "");
  EXPECT_EQ(accept(1).toString(), "accept with log");
  EXPECT_EQ(accept(2).toString(), "accept with copy");
  EXPECT_EQ(accept(4).toString(), "accept with noflow");
  EXPECT_EQ(accept(8).toString(), "accept with rtt");
  EXPECT_EQ(accept(16).toString(), "accept with lbrule");
}

TEST(TarnFWRuleAction, LogAndCopyStandInOneRunOfBraces) {
  EXPECT_EQ(accept(3).toString(), "accept with {log,copy}");
}

TEST(TarnFWRuleAction, CopyAndNoflowHaveOneCommaBetweenThem) {
  EXPECT_EQ(accept(6).flagToString(), " with {copy,noflow}");
}

TEST(TarnFWRuleAction, EverySetOfFlagsIsJoinedByCommas) {
  const char* const words[] = {"log", "copy", "noflow", "rtt", "lbrule"};
  for (unsigned int set = 0; set < 32; ++set) {
    if (std::popcount(set) < 2) continue;
    std::string expected;
    for (unsigned int i = 0; i < 5; ++i) {
      if ((set >> i & 1) == 0) continue;
      expected += expected.empty() ? " with {" : ",";
      expected += words[i];
    }
    EXPECT_EQ(accept(set).flagToString(), expected + "}");
  }
}

TEST(TarnFWRuleAction, LabelledFormIsTheWordALineEndAndTheFlags) {
  CTarnFWRuleActionAccept action = accept(3);
  action.enableDynamic(1);
  EXPECT_EQ(action.toString(7), "accept\n with {log,copy} as ftp");
}

TEST(TarnFWRuleAction, FlagSettersGiveTheNewState) {
  CTarnFWRuleActionAccept action;
  EXPECT_TRUE(action.enableLogPacket());
  EXPECT_TRUE(action.enableCopyPacket());
  EXPECT_TRUE(action.enableNoFlow());
  EXPECT_TRUE(action.enableRtt());
  EXPECT_TRUE(action.enableLBRule());
  EXPECT_EQ(action.flagToString(), " with {log,copy,noflow,rtt,lbrule}");
  EXPECT_FALSE(action.disableLogPacket());
  EXPECT_FALSE(action.disableCopyPacket());
  EXPECT_FALSE(action.disableNoFlow());
  EXPECT_FALSE(action.disableRtt());
  EXPECT_EQ(action.flagToString(), " with lbrule");
}

TEST(TarnFWRuleAction, EachFlagHasItsBitInTheRecord) {
  const auto message = [](unsigned int set) {
    CTarnFWRuleActionAccept action = accept(set);
    return messageOf(action);
  };
  EXPECT_EQ(message(1), Bytes(330).at(290, {1, 0x01, 0x00}));
  EXPECT_EQ(message(2), Bytes(330).at(290, {1, 0x02, 0x00}));
  EXPECT_EQ(message(4), Bytes(330).at(290, {1, 0x08, 0x00}));
  EXPECT_EQ(message(8), Bytes(330).at(290, {1, 0x10, 0x00}));
  EXPECT_EQ(message(16), Bytes(330).at(290, {1, 0x00, 0x01}));
  EXPECT_EQ(message(31), Bytes(330).at(290, {1, 0x1b, 0x01}));
}

TEST(TarnFWRuleAction, DynamicApplicationsWithAndWithoutTheMark) {
  const struct {
    unsigned int app;
    const char* text;
    int plain, marked, unmarked;
  } rows[] = {{1, " as ftp", 3, 3, 3},
              {2, " as oracle", 1, 1, 1},
              {3, " as sunrpc", 5, 1, 4},
              {4, " as dcerpc", 5, 1, 4}};
  for (const auto& row : rows) {
    const int app = static_cast<int>(row.app) << 4;
    CTarnFWRuleActionAccept action;
    action.enableDynamic(row.app);
    EXPECT_EQ(action.flagToString(), row.text);
    EXPECT_EQ(messageOf(action), Bytes(330).at(288, {app | row.plain, 0, 1, 0x04}));
    action.enableDynamic(row.app, true);
    EXPECT_EQ(messageOf(action), Bytes(330).at(288, {app | row.marked, 0, 1, 0x04}));
    action.enableDynamic(row.app, false);
    EXPECT_EQ(messageOf(action), Bytes(330).at(288, {app | row.unmarked, 0, 1, 0x04}));
    action.disableDynamic();
    EXPECT_EQ(action.flagToString(), "");
    EXPECT_EQ(messageOf(action), Bytes(330).at(290, {1}));
  }
}

TEST(TarnFWRuleAction, UnknownDynamicApplicationsAreRefusedAndChangeNothing) {
  CTarnFWRuleActionAccept action;
  for (const unsigned int app : {0u, 5u, 256u, 4294967295u}) {
    EXPECT_THROW_WITH(action.enableDynamic(app), CUnsupportedException, 7,
                      "unknown dynamic application");
    EXPECT_THROW_WITH(action.enableDynamic(app, true), CUnsupportedException, 7,
                      "unknown dynamic application");
  }
  EXPECT_EQ(messageOf(action), Bytes(330).at(290, {1}));
}

TEST(TarnFWRuleAction, SetActionFlagLeavesAllOtherBitsAlone) {
  fw_rule_action_ record;
  std::memset(&record, 0xff, sizeof record);
  CTarnFWRuleActionAccept action = accept(1);
  action.setActionFlag(&record);
  Bytes expected(330, 0xff);
  expected.at(291, {0xe5, 0xfe});
  EXPECT_EQ(std::memcmp(&record, expected.data(), sizeof record), 0);
  action.enableDynamic(2);
  action.setActionFlag(&record);
  expected.at(288, {0x21, 0xf0});
  EXPECT_EQ(std::memcmp(&record, expected.data(), sizeof record), 0);
}

TEST(TarnFWRuleAction, IsExtraRuleIsNotToBeCalled) {
  EXPECT_THROW_WITH(CTarnFWRuleActionAccept().isExtraRule(), CUnsupportedException, 7,
                    "this function should not be called. use FWRule_t.is_internal flag instead");
}
