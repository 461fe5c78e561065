// The commands about rule sets: their bodies byte by byte, what they print for a reply, and replies
// that lie.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "CommandTest.h"
#include "PlainRule.h"
#include "TarnFWCmdClearRootRuleSet.h"
#include "TarnFWCmdClearRuleSet.h"
#include "TarnFWCmdClearRuleSetJump.h"
#include "TarnFWCmdCreateRuleSet.h"
#include "TarnFWCmdDestroyAllRuleSet.h"
#include "TarnFWCmdDestroyRuleSet.h"
#include "TarnFWCmdGetDlbOfRuleSet.h"
#include "TarnFWCmdGetRootRuleSet.h"
#include "TarnFWCmdGetRuleCountOfRuleSet.h"
#include "TarnFWCmdGetRuleOfRuleSet.h"
#include "TarnFWCmdGetRuleSetCount.h"
#include "TarnFWCmdGetRuleSetInfo.h"
#include "TarnFWCmdGetRuleSetJump.h"
#include "TarnFWCmdGetRuleSetList.h"
#include "TarnFWCmdGetStatOfRuleSet.h"
#include "TarnFWCmdSetRootRuleSet.h"
#include "TarnFWCmdSetRuleSetJump.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

using TarnFWCmdRuleSet = CommandTest<FWRuleSetID_t>;

TEST_F(TarnFWCmdRuleSet, CommandsWithoutArgumentsSendZeros) {
  expectCommand(CTarnFWCmdGetRuleSetCount(nullptr), 1, "describe count of ruleset", Bytes(4));
  expectCommand(CTarnFWCmdGetRootRuleSet(nullptr), 4, "describe root ruleset", Bytes(132));
  expectCommand(CTarnFWCmdClearRootRuleSet(nullptr), 36, "clear root ruleset", Bytes(4));
  expectCommand(CTarnFWCmdDestroyAllRuleSet(nullptr), 60, "destroy all ruleset", Bytes(4));
}

TEST_F(TarnFWCmdRuleSet, CommandsWithANameSendItAtTheStart) {
  expectCommand(CTarnFWCmdClearRuleSet(nullptr, id("web")), 6, "clear rule of ruleset web",
                Bytes(72).text(0, "web"));
  expectCommand(CTarnFWCmdDestroyRuleSet(nullptr, id(full())), 7, "destroy ruleset " + full(),
                Bytes(64).text(0, full()));
  expectCommand(CTarnFWCmdGetRuleSetInfo(nullptr, id("web")), 9, "describe info of ruleset web",
                Bytes(84).text(0, "web"));
  expectCommand(CTarnFWCmdGetRuleSetJump(nullptr, id("web")), 62, "describe jumpto of ruleset web",
                Bytes(128).text(0, "web"));
  expectCommand(CTarnFWCmdClearRuleSetJump(nullptr, id("web")), 63, "clear jumpto of ruleset web",
                Bytes(64).text(0, "web"));
}

TEST_F(TarnFWCmdRuleSet, AStatementEndsWithItsSelector) {
  const dvs_port_ port = filterPort("nic-1");
  EXPECT_EQ(CTarnFWCmdDestroyRuleSet(&port, id("web")).toString(),
            "destroy ruleset web of filter nic-1");
}

TEST_F(TarnFWCmdRuleSet, AJumpSendsBothNames) {
  expectCommand(CTarnFWCmdSetRuleSetJump(nullptr, id(full()), id("target")), 61,
                "set jumpto of ruleset " + full() + " as target",
                Bytes(128).text(0, full()).text(64, "target"));
}

TEST_F(TarnFWCmdRuleSet, ARuleCountSendsNameAndKind) {
  expectCommand(CTarnFWCmdGetRuleCountOfRuleSet(nullptr, id("web"), 0), 8,
                "describe rule count of ruleset web", Bytes(72).text(0, "web"));
  expectCommand(CTarnFWCmdGetRuleCountOfRuleSet(nullptr, id("web"), 1), 8,
                "describe snat rule count of ruleset web", Bytes(72).text(0, "web").at(64, {1}));
  CTarnFWCmdGetRuleCountOfRuleSet dnat(nullptr, id("web"), 2);
  expectIdentity(dnat, 8, 72, "describe dnat rule count of ruleset web");
  CTarnFWCmdGetRuleCountOfRuleSet three(nullptr, id("web"), 3);
  EXPECT_EQ(requestOf(three)[64], 3);
}

TEST_F(TarnFWCmdRuleSet, AKindAboveThreeIsRefused) {
  EXPECT_THROW_WITH(CTarnFWCmdGetRuleCountOfRuleSet(nullptr, id("web"), 4), CUnsupportedException,
                    7, "invalid rule type");
  EXPECT_THROW_WITH(CTarnFWCmdGetRuleOfRuleSet(nullptr, id("web"), 1u, 0u, 4u),
                    CUnsupportedException, 7, "invalid rule type");
  EXPECT_THROW_WITH(
      CTarnFWCmdGetStatOfRuleSet(nullptr, id("web"), std::make_unique<CTarnFWIDList>(), 4),
      CUnsupportedException, 7, "invalid rule type");
  const unsigned int ids[] = {1};
  EXPECT_THROW_WITH(CTarnFWCmdGetDlbOfRuleSet(nullptr, id("web"), 1u, ids, 4u),
                    CUnsupportedException, 7, "invalid rule type");
}

TEST_F(TarnFWCmdRuleSet, AListSendsMaxAndFrom) {
  CTarnFWCmdGetRuleSetList command(nullptr, 3, 0x01020304);
  expectIdentity(command, 2, 12 + 3 * 64, "describe list of ruleset from 16909060");
  EXPECT_EQ(requestOf(command), Bytes(204).at(0, {3, 0, 0, 0, 4, 3, 2, 1}));
  EXPECT_EQ(CTarnFWCmdGetRuleSetList(nullptr, 3, 0).toString(), "describe list of ruleset");
  EXPECT_THROW_WITH(CTarnFWCmdGetRuleSetList(nullptr, 67108864, 0), CIntegerOverflowException, 17,
                    "integer overflow for the number of rulesets: 67108864");
}

TEST_F(TarnFWCmdRuleSet, ReadingByIndexSetsTheLowFlagAndUsesNoIdArea) {
  CTarnFWCmdGetRuleOfRuleSet rules(nullptr, id("web"), 2u, 7u, 1u);
  expectIdentity(rules, 10, 96 + 2 * 896, "describe snat rule of ruleset web from 7");
  EXPECT_EQ(requestOf(rules),
            Bytes(96 + 2 * 896).text(0, "web").at(64, {2, 0, 0, 0, 7, 0, 0, 0, 1, 0, 1, 0}));
  CTarnFWCmdGetStatOfRuleSet stats(nullptr, id("web"), 2u, 0u, 0u);
  expectIdentity(stats, 11, 80 + 2 * 68, "describe stat of ruleset web");
  EXPECT_EQ(requestOf(stats), Bytes(80 + 2 * 68).text(0, "web").at(64, {2}).at(72, {1}));
  CTarnFWCmdGetDlbOfRuleSet dlb(nullptr, id("web"), 2u, 0u, 2u);
  expectIdentity(dlb, 12, 80 + 2 * 164, "describe dnat dlb of ruleset web");
  EXPECT_EQ(requestOf(dlb), Bytes(80 + 2 * 164).text(0, "web").at(64, {2}).at(72, {1, 0, 2}));
}

TEST_F(TarnFWCmdRuleSet, ReadingByIdSendsTheIdsInTheirArea) {
  const unsigned int ids[] = {9, 5, 9};
  CTarnFWCmdGetRuleOfRuleSet rules(nullptr, id("web"), 3u, ids, 2u);
  expectIdentity(rules, 10, 96 + 2 * 896, "describe dnat rule of ruleset web with {5,9}");
  EXPECT_EQ(
      requestOf(rules),
      Bytes(96 + 2 * 896).text(0, "web").at(64, {2}).at(74, {2}).at(96, {5, 0, 0, 0, 9, 0, 0, 0}));
  auto list = std::make_unique<CTarnFWIDList>();
  list->addID(0x01020304);
  CTarnFWCmdGetStatOfRuleSet stats(nullptr, id("web"), std::move(list), 0);
  EXPECT_EQ(requestOf(stats), Bytes(80 + 68).text(0, "web").at(64, {1}).at(80, {4, 3, 2, 1}));
  CTarnFWCmdGetDlbOfRuleSet dlb(nullptr, id("web"), 1u, ids, 0u);
  EXPECT_EQ(requestOf(dlb), Bytes(80 + 164).text(0, "web").at(64, {1}).at(80, {9}));
}

TEST_F(TarnFWCmdRuleSet, ACountThatNoMessageHoldsIsRefused) {
  EXPECT_EQ(CTarnFWCmdGetRuleOfRuleSet(nullptr, id("w"), 4793490u, 0u, 0u).getMsgSize(),
            4294967136u);
  EXPECT_THROW_WITH(CTarnFWCmdGetRuleOfRuleSet(nullptr, id("w"), 4793491u, 0u, 0u),
                    CIntegerOverflowException, 17,
                    "integer overflow for the number of rule id: 4793491");
  EXPECT_THROW_WITH(CTarnFWCmdGetStatOfRuleSet(nullptr, id("w"), 63161283u, 0u, 0u),
                    CIntegerOverflowException, 17,
                    "integer overflow for the number of rule id: 63161283");
  EXPECT_EQ(CTarnFWCmdGetStatOfRuleSet(nullptr, id("w"), 63161282u, 0u, 0u).getMsgSize(),
            4294967256u);
  EXPECT_EQ(CTarnFWCmdGetDlbOfRuleSet(nullptr, id("w"), 26188824u, 0u, 0u).getMsgSize(),
            4294967216u);
  EXPECT_THROW_WITH(CTarnFWCmdGetDlbOfRuleSet(nullptr, id("w"), 26188825u, 0u, 0u),
                    CIntegerOverflowException, 17,
                    "integer overflow for the number of rule id: 26188825");
  EXPECT_THROW_WITH(CTarnFWCmdGetDlbOfRuleSet(nullptr, id("w"), 0xffffffffu, 0u, 0u),
                    CIntegerOverflowException, 17,
                    "integer overflow for the number of rule id: -1");
}

TEST_F(TarnFWCmdRuleSet, PrintsTheCounts) {
  CTarnFWCmdGetRuleSetCount sets(nullptr);
  EXPECT_EQ(printedFor(sets, Bytes({7, 1, 0, 0})), "ruleset count : 263\n");
  EXPECT_EQ(printedFor(sets, Bytes(4, 0xff)), "ruleset count : -1\n");
  CTarnFWCmdGetRuleCountOfRuleSet rules(nullptr, id("web"), 0);
  EXPECT_EQ(printedForWord(rules, 68, 12), "rule count : 12\n");
}

TEST_F(TarnFWCmdRuleSet, CountsAndInfoOfAllOnesArePrintedAsTheyAre) {
  CTarnFWCmdGetRuleCountOfRuleSet rules(nullptr, id("web"), 0);
  EXPECT_EQ(printedForWord(rules, 68, 0), "rule count : 0\n");
  EXPECT_EQ(printedForWord(rules, 68, 0xffffffff), "rule count : -1\n");
  CTarnFWCmdGetRuleSetInfo info(nullptr, id("web"));
  const std::string ones = printedFor(info, Bytes(84, 0xff));
  EXPECT_EQ(ones.substr(0, ones.find("realization")),
            "rule count       : 4294967295\ngeneration number: 18446744073709551615\n");
}

TEST_F(TarnFWCmdRuleSet, PrintsTheRoots) {
  CTarnFWCmdGetRootRuleSet command(nullptr);
  EXPECT_EQ(printedFor(command, Bytes(132).text(0, full()).text(64, "l2")),
            "layer3 root ruleset : " + full() + "\nlayer2 root ruleset : l2\n");
  EXPECT_EQ(printedFor(command, Bytes(132)), "layer3 root ruleset : \nlayer2 root ruleset : \n");
}

TEST_F(TarnFWCmdRuleSet, PrintsTheInfoWithItsTime) {
  CTarnFWCmdGetRuleSetInfo command(nullptr, id("web"));
  Bytes reply(84);
  put32(reply, 64, 0xffffffff);
  put64(reply, 68, 86400);
  put64(reply, 76, 0xffffffffffffffff);
  EXPECT_EQ(maskTime(printedFor(command, reply), 86400),
            "rule count       : 4294967295\ngeneration number: 18446744073709551615\n"
            "realization time : TIME\n");
}

TEST_F(TarnFWCmdRuleSet, ATimeBeyondTheCalendarPrintsAndHarmsNothing) {
  CTarnFWCmdGetRuleSetInfo command(nullptr, id("web"));
  Bytes reply(84);
  put64(reply, 68, 0x7fffffffffffffff);
  const std::string text = printedFor(command, reply);
  EXPECT_NE(text.find("realization time : 1900-01-00T00:00:00\n"), std::string::npos) << text;
}

TEST_F(TarnFWCmdRuleSet, PrintsTheNamesOfAList) {
  CTarnFWCmdGetRuleSetList command(nullptr, 3, 0);
  Bytes reply = Bytes(204).at(8, {2}).text(12, "first").text(76, full()).text(140, "never");
  EXPECT_EQ(printedFor(command, reply), "first\n" + full() + "\n");
  EXPECT_TRUE(log.lines().empty());
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  printedFor(command, reply);
  EXPECT_TRUE(log.has(7, "retrieved 2 rulesets\n"));
}

TEST_F(TarnFWCmdRuleSet, AnUntrueNumberOfNamesIsCut) {
  CTarnFWCmdGetRuleSetList command(nullptr, 2, 0);
  EXPECT_EQ(printedForWord(command, 8, 0), "");
  EXPECT_EQ(printedForWord(command, 8, 3), "\n\n");
  EXPECT_EQ(printedForWord(command, 8, 0xffffffff), "\n\n");
}

TEST_F(TarnFWCmdRuleSet, PrintsStatisticsAfterTheIds) {
  CTarnFWCmdGetStatOfRuleSet command(nullptr, id("web"), 2u, 0u, 0u);
  Bytes reply(80 + 2 * 68);
  put32(put32(reply, 64, 2), 76, 2);
  put32(reply, 88, 1001);
  for (std::uint64_t i = 0; i < 7; ++i) put64(reply, 96 + 8 * i, i + 1);
  put32(reply, 152, 7);
  put64(reply, 160, 0xffffffffffffffff);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(printedFor(command, reply),
            "rule  1001: 1 evals, 2 hits, 3 sessions, in 4 out 5 pkts, in 6 out 7 bytes\n"
            "rule     7: 18446744073709551615 evals, 0 hits, 0 sessions, in 0 out 0 pkts, in 0 out "
            "0 bytes\n");
  EXPECT_TRUE(log.has(7, "retrieved 2 stats of ruleset web\n"));
}

TEST_F(TarnFWCmdRuleSet, UntrueNumbersOfStatisticsAreCut) {
  CTarnFWCmdGetStatOfRuleSet command(nullptr, id("web"), 2u, 0u, 0u);
  for (const std::uint32_t ids : {0u, 2u, 3u, 34u, 35u, 0x40000000u, 0xffffffffu}) {
    for (const std::uint32_t entries : {0u, 2u, 3u, 0xffffffffu}) {
      Bytes reply(command.getMsgSize());
      put32(put32(reply, 64, ids), 76, entries);
      const std::string text = printedFor(command, reply);
      // 136 bytes stand after the head; the ids take four each, a record takes 64.
      const std::uint64_t room = std::uint64_t{ids} * 4 <= 136 ? 136 - std::uint64_t{ids} * 4 : 0;
      EXPECT_EQ(lines(text), static_cast<long>(std::min<std::uint64_t>({entries, 2, room / 64})))
          << ids << " ids, " << entries << " entries";
    }
  }
}

TEST_F(TarnFWCmdRuleSet, PrintsTheRulesOfADlbReply) {
  CTarnFWCmdGetDlbOfRuleSet command(nullptr, id("web"), 2u, 0u, 2u);
  Bytes reply(80 + 2 * 164);
  put32(put32(reply, 64, 2), 76, 2);
  put32(put32(reply, 80, 5), 84, 123456);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(printedFor(command, reply), "rule     5\nrule 123456\n");
  EXPECT_TRUE(log.has(7, "retrieved 2 dlb of ruleset web\n"));
  put32(reply, 76, 0xffffffff);
  EXPECT_EQ(printedFor(command, reply), "rule     5\nrule 123456\n");
  put32(reply, 76, 0);
  EXPECT_EQ(printedFor(command, reply), "");
}

TEST_F(TarnFWCmdRuleSet, AJumpTargetStaysInTheBufferAndPrintsNothing) {
  CTarnFWCmdGetRuleSetJump command(nullptr, id("web"));
  EXPECT_EQ(printedFor(command, Bytes(128).text(64, "target")), "");
}

// --- Creation and root

TEST_F(TarnFWCmdRuleSet, ARuleSetWithoutRulesSendsItsHead) {
  expectCommand(CTarnFWCmdCreateRuleSet(nullptr, "web"), 3, "create ruleset web",
                Bytes(168).text(64, "web").at(140, {3}));
}

TEST_F(TarnFWCmdRuleSet, AJumpTargetOfACreationIsPartOfTheTextOnly) {
  const dvs_port_ port = filterPort("nic-1");
  CTarnFWCmdCreateRuleSet command(&port, id("web"), id("next"));
  EXPECT_EQ(command.toString(), "create ruleset web for filter nic-1 jumpto next");
  EXPECT_EQ(requestOf(command), Bytes(168).text(64, "web").at(140, {3}));
}

TEST_F(TarnFWCmdRuleSet, ANameOfACreationMayHaveSixtyThreeCharacters) {
  const std::string longest(63, 'n');
  EXPECT_EQ(CTarnFWCmdCreateRuleSet(nullptr, longest.c_str()).toString(),
            "create ruleset " + longest);
  EXPECT_THROW_WITH(CTarnFWCmdCreateRuleSet(nullptr, full().c_str()), CIDTooLongException, 32,
                    "id is too long: " + full());
}

TEST_F(TarnFWCmdRuleSet, ACreationSendsItsRulesAfterTheHead) {
  auto list = std::make_unique<CTarnFWRuleList>(false);
  for (unsigned int number = 1; number <= 2; ++number) {
    list->addRule(plainRule(number, static_cast<int>(number), FW_DIRECTION_IN));
  }
  const std::string rules = list->toString();
  CTarnFWCmdCreateRuleSet command(nullptr, "web", std::move(list));
  EXPECT_EQ(command.getMsgSize(), 168u + 2 * 892);
  EXPECT_EQ(command.toString(), "create ruleset web with {\n" + rules + "\n}\n");
  const Bytes body = requestOf(command);
  ASSERT_EQ(body.size(), 168u + 2 * 892);
  EXPECT_EQ(std::vector<std::uint8_t>(body.begin(), body.begin() + 168),
            Bytes(168).text(64, "web").at(136, {2, 0, 0, 0, 3}));
  EXPECT_EQ(body[168], 1);
  EXPECT_EQ(body[168 + 892], 2);
}

TEST_F(TarnFWCmdRuleSet, TheTransactionIdIsKeptUnlessBothFlagsComeBack) {
  FakeKernel kernel;
  CTarnFWCmdCreateRuleSet command(nullptr, "web");
  Bytes reply(168);
  for (int i = 0; i < 16; ++i) reply.at(static_cast<std::size_t>(144 + i), {i + 1});
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  for (const int flags : {0, 1, 2, 0xfc}) {
    kernel.answer(0, reply.at(140, {flags}));
    EXPECT_EQ(executeOnce(kernel, command), 0u);
    EXPECT_EQ(command.transactionID()[0], 1) << flags;
    EXPECT_EQ(command.transactionID()[15], 16) << flags;
  }
  EXPECT_TRUE(log.has(7, "transaction id: 0x04030201, 0x08070605, 0x0c0b0a09, 0x100f0e0d\n"));
  kernel.answer(0, reply.at(140, {3}));
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  EXPECT_EQ(command.transactionID(), (std::array<std::uint8_t, 16>{}));
  EXPECT_EQ(kernel.last().body(), kernel.messages()[0].body()) << "the id is not sent again";
}

namespace {

/// The rule of a root: no addresses, stateless, a jump.
void expectJumpRule(const FWRule_& record, unsigned int number, const std::string& target) {
  EXPECT_EQ(record.id, number);
  EXPECT_EQ(record.position, static_cast<int>(number));
  char text[512];
  ASSERT_EQ(FW_GetRuleString(&record, 1, text, sizeof text, 0), 0u);
  EXPECT_NE(std::string(text).find("inout"), std::string::npos) << text;
  EXPECT_NE(std::string(text).find("stateless"), std::string::npos) << text;
  EXPECT_NE(std::string(text).find("jumpto " + target), std::string::npos) << text;
}

FWRule_ ruleIn(const Bytes& body, std::size_t index) {
  return loadRecord<FWRule_>(body.data() + 168 + 892 * index);
}

}  // namespace

TEST_F(TarnFWCmdRuleSet, ARootOfTwoLayersIsTwoJumpRulesOfTheUnnamedSet) {
  CTarnFWCmdSetRootRuleSet command(nullptr, id("l3"), id("l2"));
  EXPECT_EQ(command.getCommand(), 3) << "a root is sent as a creation";
  EXPECT_EQ(command.getType(), 28);
  EXPECT_EQ(command.toString(), "set root ruleset l3 and l2");
  const Bytes body = requestOf(command);
  ASSERT_EQ(body.size(), 168u + 2 * 892);
  EXPECT_EQ(std::vector<std::uint8_t>(body.begin(), body.begin() + 168),
            Bytes(168).at(136, {2, 0, 0, 0, 3}));
  expectJumpRule(ruleIn(body, 0), 1, "l3");
  expectJumpRule(ruleIn(body, 1), 2, "l2");
  EXPECT_TRUE(command.rules().getRules()[0]->isLayer3());
  EXPECT_FALSE(command.rules().getRules()[1]->isLayer3());
}

TEST_F(TarnFWCmdRuleSet, ARootOfOneLayerIsOneRule) {
  CTarnFWCmdSetRootRuleSet layer3(nullptr, id("a"), id(""));
  EXPECT_EQ(layer3.toString(), "set root ruleset a and \"\"");
  const Bytes first = requestOf(layer3);
  ASSERT_EQ(first.size(), 168u + 892);
  expectJumpRule(ruleIn(first, 0), 1, "a");
  CTarnFWCmdSetRootRuleSet layer2(nullptr, id(""), id("b"));
  EXPECT_EQ(layer2.toString(), "set root ruleset \"\" and b");
  expectJumpRule(ruleIn(requestOf(layer2), 0), 1, "b");
  EXPECT_FALSE(layer2.rules().getRules()[0]->isLayer3());
}

TEST_F(TarnFWCmdRuleSet, ARootWithoutNamesIsRefused) {
  EXPECT_THROW_WITH(CTarnFWCmdSetRootRuleSet(nullptr, id(""), id("")), CUnsupportedException, 3,
                    "root ruleset name is empty");
}

TEST_F(TarnFWCmdRuleSet, ALayerTwoNameMadeFromTheFirstIsNotPrinted) {
  EXPECT_EQ(CTarnFWCmdSetRootRuleSet(nullptr, id("x"), id("x_L2")).toString(),
            "set root ruleset x");
  EXPECT_EQ(CTarnFWCmdSetRootRuleSet(nullptr, id("x"), id("X_l2")).toString(),
            "set root ruleset x");
  EXPECT_EQ(CTarnFWCmdSetRootRuleSet(nullptr, id("x"), id("x_L22")).toString(),
            "set root ruleset x and x_L22");
}

TEST_F(TarnFWCmdRuleSet, ARootsTextHasNoSelector) {
  const dvs_port_ port = filterPort("nic-1");
  EXPECT_EQ(CTarnFWCmdSetRootRuleSet(&port, id("a"), id("b")).toString(),
            "set root ruleset a and b");
}

TEST_F(TarnFWCmdRuleSet, AnEmptyRootSendsItsHead) {
  CTarnFWCmdSetRootRuleSet command(nullptr);
  EXPECT_EQ(command.toString(), "set root ruleset \"\" and \"\"");
  EXPECT_EQ(requestOf(command), Bytes(168).at(140, {3}));
}

// --- Rules

namespace {

Bytes ruleRecord(unsigned int number) {
  Bytes bytes(892);
  unsigned int written = 0;
  EXPECT_TRUE(plainRule(number, 1, FW_DIRECTION_OUT)->toMessage(bytes.data(), 892, &written));
  return bytes;
}

std::string ruleText(unsigned int number) {
  return plainRule(number, 1, FW_DIRECTION_OUT)->toString();
}

}  // namespace

TEST_F(TarnFWCmdRuleSet, PrintsRulesAfterTheirHeader) {
  CTarnFWCmdGetRuleOfRuleSet command(nullptr, id("web"), 3u, 0u, 0u);
  Bytes reply(96 + 3 * 896);
  put32(put32(reply, 64, 3), 76, 2);
  put64(put64(reply, 80, 3600), 88, 42);
  for (unsigned int i = 0; i < 2; ++i) {
    const Bytes record = ruleRecord(11 + i);
    copyTo(reply, 108 + 892 * i, record);
  }
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(maskTime(printedFor(command, reply), 3600),
            "# generation number: 42\n# realization time : TIME\n" + ruleText(11) + "\n" +
                ruleText(12) + "\n");
  EXPECT_TRUE(log.has(7, "retrieved 2 rules of ruleset web\n"));
}

TEST_F(TarnFWCmdRuleSet, AnEmptyReplyOfRulesPrintsItsHeaderOnly) {
  CTarnFWCmdGetRuleOfRuleSet command(nullptr, id("web"), 1u, 0u, 0u);
  EXPECT_EQ(maskTime(printedFor(command, Bytes(992)), 0),
            "# generation number: 0\n# realization time : TIME\n");
}

TEST_F(TarnFWCmdRuleSet, ARuleThatDoesNotConvertEndsThePrinting) {
  CTarnFWCmdGetRuleOfRuleSet command(nullptr, id("web"), 2u, 0u, 0u);
  Bytes reply(96 + 2 * 896);
  put32(put32(reply, 64, 2), 76, 2);
  const Bytes record = ruleRecord(11);
  copyTo(reply, 104, record);
  for (int i = 0; i < 892; ++i) reply.at(static_cast<std::size_t>(104 + 892 + i), {0xff});
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  const std::string text = printedFor(command, reply);
  EXPECT_TRUE(text.ends_with("\n" + ruleText(11) + "\n")) << text;
  bool logged = false;
  for (const LogCapture::Line& line : log.lines()) {
    logged = logged || line.text.find("failed to convert rule #1: ") != std::string::npos;
  }
  EXPECT_TRUE(logged);
}

TEST_F(TarnFWCmdRuleSet, UntrueNumbersOfRulesAreCut) {
  CTarnFWCmdGetRuleOfRuleSet command(nullptr, id("web"), 1u, 0u, 0u);
  const Printed printed;
  for (const std::uint32_t ids : {0u, 1u, 2u, 224u, 225u, 0x40000000u, 0xffffffffu}) {
    for (const std::uint32_t entries : {0u, 1u, 2u, 0xffffffffu}) {
      Bytes reply(command.getMsgSize());
      put32(put32(reply, 64, ids), 76, entries);
      EXPECT_NO_THROW(command.checkCmdReply(reply.data(), static_cast<unsigned int>(reply.size())));
      EXPECT_EQ(command.records(CTarnFWCmdReply(reply.data(), reply.size())).size(),
                ids <= 1 && entries >= 1 ? 1u : 0u);
    }
  }
}
