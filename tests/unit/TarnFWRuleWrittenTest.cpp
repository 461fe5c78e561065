// What a rule has written once, it writes from then on.
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "RuleOfParts.h"
#include "TarnFWLog.h"

using namespace RuleOfParts;

TEST(TarnFWRule, ChangesAfterTheFirstWriteDoNotReachTheWire) {
  CTarnFWRule rule = tcp().make();
  EXPECT_EQ(messageOf(rule), tcpRecord());
  rule.setTag("late");
  rule.setDirection(FW_DIRECTION_OUT);
  rule.setAF(FW_AF_INET);
  rule.setInternal();
  EXPECT_EQ(rule.toString(),
            "# internal # rule 7 out inet protocol tcp from any to any accept tag 'late';");
  EXPECT_EQ(messageOf(rule), tcpRecord());
  EXPECT_EQ(messageOf(rule), tcpRecord());
}

TEST(TarnFWRule, ChangesBeforeTheFirstWriteReachIt) {
  CTarnFWRule rule = tcp().make();
  rule.setTag("tag");
  rule.setDirection(FW_DIRECTION_IN);
  EXPECT_EQ(rule.getDirection(), FW_DIRECTION_IN);
  const Bytes expected = tcpRecord().at(790, {0x34}).text(852, "tag");
  EXPECT_EQ(messageOf(rule), expected);
  EXPECT_EQ(messageOf(rule), expected);
}

TEST(TarnFWRule, ARefusedWriteDoesNotCount) {
  CTarnFWRule rule = tcp().make();
  Bytes bytes(891);
  EXPECT_FALSE(rule.toMessage(bytes.data(), 891, nullptr));
  rule.setTag("tag");
  EXPECT_EQ(messageOf(rule), tcpRecord().text(852, "tag"));
}

TEST(TarnFWRule, SetTCPStrictReachesTheWireOfAWrittenRule) {
  CTarnFWRule rule = tcp().make();
  EXPECT_EQ(messageOf(rule), tcpRecord());
  rule.setTCPStrict(true);
  EXPECT_EQ(messageOf(rule), tcpRecord().at(797, {0x08}));
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol tcp strict from any to any accept;");
  rule.setTag("late");
  rule.setTCPStrict(true);
  rule.setTCPStrict(false);
  EXPECT_EQ(messageOf(rule), tcpRecord());
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol tcp from any to any accept tag 'late';");
}

TEST(TarnFWRule, SetTCPStrictOnAgainAfterOffEditsTheRecordAndThrows) {
  CTarnFWRule rule = tcp().with<Strict>().make();
  messageOf(rule);
  rule.setTCPStrict(false);
  EXPECT_EQ(messageOf(rule), tcpRecord());
  EXPECT_THROW_WITH(rule.setTCPStrict(true), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of tcp strict");
  EXPECT_EQ(messageOf(rule), tcpRecord().at(797, {0x08}));
  EXPECT_EQ(rule.toString(), "rule 7 inout protocol tcp from any to any accept;");
}

TEST(TarnFWRule, SetTCPStrictBeforeTheFirstWriteChangesTheRule) {
  CTarnFWRule rule = tcp().with<DSCP>(1).make();
  rule.setTCPStrict(true);
  EXPECT_EQ(messageOf(rule), tcpRecord().at(796, {0x20, 0x08}));
  CTarnFWRule off = tcp().with<Strict>().make();
  off.setTCPStrict(false);
  EXPECT_EQ(messageOf(off), tcpRecord());
}

TEST(TarnFWRule, SetTCPStrictOfWhatItIsAlreadyChangesNothing) {
  CTarnFWRule strict = tcp().with<Strict>().make();
  strict.setTCPStrict(true);
  EXPECT_EQ(messageOf(strict), tcpRecord().at(797, {0x08}));
  strict.setTCPStrict(true);
  EXPECT_EQ(messageOf(strict), tcpRecord().at(797, {0x08}));
  CTarnFWRule loose = tcp().make();
  loose.setTCPStrict(false);
  EXPECT_EQ(messageOf(loose), tcpRecord());
}

TEST(TarnFWRule, SetTCPStrictLeavesEveryOtherProtocolAlone) {
  const auto unchanged = [](Parts parts) {
    CTarnFWRule rule = parts.make();
    const std::string text = rule.toString();
    const Bytes record = messageOf(rule);
    rule.setTag("late");  // the record is kept from here on
    rule.setTCPStrict(true);
    EXPECT_EQ(messageOf(rule), record);
    EXPECT_EQ(rule.toString(), text.substr(0, text.size() - 1) + " tag 'late';");
  };
  unchanged(Parts(17));
  unchanged(Parts());
  unchanged(std::move(Parts().layer3(6, true)));
  unchanged(std::move(Parts().layer2(6)));
}

TEST(TarnFWRule, TracesWhatItWrites) {
  CTarnFWRule rule = Parts().make();
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_RULE].level = 1;
  messageOf(rule);
  messageOf(rule);
  rule.setTag("late");
  messageOf(rule);
  EXPECT_EQ(
      log.normalized(),
      (std::vector<std::string>{
          "7|tarnfw:rule TarnFWRule:toMessage():N     fixing af\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N      rule qualifies as default rule, set copy "
          "mode\n\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N     wrote rule: 7.\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N     copy cached rule: 7.\n",
          "7|tarnfw:rule TarnFWRule:toMessage():N     copy cached rule: 7.\n"}));
}

TEST(TarnFWRule, TracesOfItsSpecsAreOfTheFirstWriteAlone) {
  CTarnFWRule rule = tcp()
                         .with<Strict>()
                         .with<TCPFlags>(0, 2, false)
                         .from<Port>(1, 1024, false)
                         .to<PortRange>(2, 80, 90, false)
                         .make();
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_PROTOCOL].level = 1;
  const Bytes first = messageOf(rule);
  EXPECT_EQ(log.lines().size(), 4u);
  log.clear();
  EXPECT_EQ(messageOf(rule), first);
  rule.setTag("late");
  EXPECT_EQ(messageOf(rule), first);
  EXPECT_TRUE(log.lines().empty());
}
