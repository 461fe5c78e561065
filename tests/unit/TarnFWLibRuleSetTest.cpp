// The flat functions about rule sets: what they hand out, and what they refuse.

#include <algorithm>

#include "LibraryTest.h"
#include "PlainRule.h"
#include "TarnFWRule.h"
#include "TarnFWRuleRecord.h"

using namespace TarnFirewall;

namespace {

FWRuleSetID_t id(const std::string& name) {
  FWRuleSetID_t result{};
  name.copy(result.text, sizeof result.text);
  return result;
}

FWRule_ ruleRecord(unsigned int number) {
  FWRule_ record{};
  unsigned int written = 0;
  EXPECT_TRUE(plainRule(number, 1, FW_DIRECTION_OUT)->toMessage(&record, sizeof record, &written));
  return record;
}

class TarnFWLibRuleSet : public LibraryTest {
 protected:
  const FWRuleSetID_t web = id("web");
};

}  // namespace

TEST_F(TarnFWLibRuleSet, RequestsWithoutResultsReachTheKernelWithSelectorAndContext) {
  int context = 0;
  const std::vector<std::pair<int, std::function<FWStatus_t()>>> calls = {
      {36, [&] { return FW_ClearRootRuleSet(handle, &port, &context); }},
      {60, [&] { return FW_DestroyAllRuleSet(handle, &port, &context); }},
      {7, [&] { return FW_DestroyRuleSet(handle, &port, &context, &web); }},
      {6, [&] { return FW_ClearRuleSet(handle, &port, &context, &web); }},
      {63, [&] { return FW_ClearRuleSetJump(handle, &port, &context, &web); }},
      {61, [&] { return FW_SetRuleSetJump(handle, &port, &context, &web, &web); }},
      {3, [&] { return FW_SetRootRuleSet(handle, &port, &context, &web, &web); }},
      {3, [&] { return FW_CreateRuleSet(handle, &port, &context, &web, nullptr, nullptr, 0); }},
  };
  for (const auto& [number, call] : calls) {
    EXPECT_EQ(call(), 0u) << number;
    EXPECT_EQ(command(), number);
    EXPECT_EQ(kernel.last().context, &context);
    ASSERT_TRUE(kernel.last().port.has_value());
    EXPECT_STREQ(kernel.last().port->identifier, "nic-1");
    kernel.answer(28);
    EXPECT_EQ(call(), 28u) << number;
  }
}

TEST_F(TarnFWLibRuleSet, EveryArgumentStandsInItsPlaceOfTheRequest) {
  const FWRuleSetID_t db = id("db");
  const unsigned int ids[] = {9, 5};
  FWRuleSetID_t names[2] = {};
  FWRule_ rules[2] = {};
  FWRuleStat_ stats[2] = {};
  FWDlbRule_ dlb[2] = {};
  unsigned int n = 0;
  std::uint64_t large = 0;
  const auto byIndex = [](Bytes body, int kind) {
    return body.text(0, "web").at(64, {2, 0, 0, 0, 7, 0, 0, 0, 1, 0, kind});
  };
  const auto byId = [](Bytes body, int kind, std::size_t area) {
    return body.text(0, "web").at(64, {2}).at(74, {kind}).at(area, {5, 0, 0, 0, 9});
  };
  const std::vector<std::pair<std::function<FWStatus_t()>, Bytes>> calls = {
      {[&] { return FW_GetRuleSetList(handle, &port, nullptr, 2, 7, names, &n); },
       Bytes(140).at(0, {2, 0, 0, 0, 7})},
      {[&] { return FW_DestroyRuleSet(handle, &port, nullptr, &web); }, Bytes(64).text(0, "web")},
      {[&] { return FW_ClearRuleSet(handle, &port, nullptr, &web); }, Bytes(72).text(0, "web")},
      {[&] { return FW_ClearRuleSetJump(handle, &port, nullptr, &web); }, Bytes(64).text(0, "web")},
      {[&] { return FW_GetRuleSetJump(handle, &port, nullptr, &web, names); },
       Bytes(128).text(0, "web")},
      {[&] { return FW_SetRuleSetJump(handle, &port, nullptr, &web, &db); },
       Bytes(128).text(0, "web").text(64, "db")},
      {[&] { return FW_GetRuleCountOfRuleSet(handle, &port, nullptr, &web, 2, &n); },
       Bytes(72).text(0, "web").at(64, {2})},
      {[&] { return FW_GetRuleSetInfo(handle, &port, nullptr, &web, &n, &large, &large); },
       Bytes(84).text(0, "web")},
      {[&] { return FW_CreateRuleSet(handle, &port, nullptr, &web, &db, nullptr, 0); },
       Bytes(168).text(64, "web").at(140, {3})},
      {[&] {
         return FW_GetRuleOfRuleSet(handle, &port, nullptr, 1, 2, 7, &web, nullptr, rules, &n);
       },
       byIndex(Bytes(96 + 2 * 896), 1)},
      {[&] { return FW_GetRuleOfRuleSet(handle, &port, nullptr, 2, 2, 7, &web, ids, rules, &n); },
       byId(Bytes(96 + 2 * 896), 2, 96)},
      {[&] {
         return FW_GetStatOfRuleSet(handle, &port, nullptr, 1, 2, 7, &web, nullptr, stats, &n);
       },
       byIndex(Bytes(80 + 2 * 68), 1)},
      {[&] { return FW_GetStatOfRuleSet(handle, &port, nullptr, 2, 2, 7, &web, ids, stats, &n); },
       byId(Bytes(80 + 2 * 68), 2, 80)},
      {[&] { return FW_GetDlbOfRuleSet(handle, &port, nullptr, 1, 2, 7, &web, nullptr, dlb, &n); },
       byIndex(Bytes(80 + 2 * 164), 1)},
      {[&] { return FW_GetDlbOfRuleSet(handle, &port, nullptr, 2, 2, 7, &web, ids, dlb, &n); },
       byId(Bytes(80 + 2 * 164), 2, 80)},
  };
  for (const auto& [call, body] : calls) {
    EXPECT_EQ(call(), 0u);
    EXPECT_EQ(kernel.last().body(), body) << "command " << command();
  }
}

TEST_F(TarnFWLibRuleSet, ARootSendsTheLayerThreeNameFirst) {
  const FWRuleSetID_t db = id("db");
  EXPECT_EQ(FW_SetRootRuleSet(handle, &port, nullptr, &web, &db), 0u);
  const Bytes body = kernel.last().body();
  ASSERT_EQ(body.size(), 168u + 2 * 892);
  EXPECT_STREQ(reinterpret_cast<const char*>(body.data()) + 168 + 460, "web");
  EXPECT_STREQ(reinterpret_cast<const char*>(body.data()) + 168 + 892 + 460, "db");
}

TEST_F(TarnFWLibRuleSet, ARecordThatIsNoRuleIsRefusedBeforeSending) {
  FWRule_ rules[2] = {ruleRecord(11), ruleRecord(12)};
  rules[1].flags = kRuleLayer3 | (3u << kRuleDirectionShift);  // no such direction
  EXPECT_EQ(FW_CreateRuleSet(handle, &port, nullptr, &web, nullptr, rules, 2), 42u);
  rules[1].flags = kRuleLayer3 | kRuleHasSource;
  rules[1].source.type = 0xeeee;  // no such address
  EXPECT_EQ(FW_CreateRuleSet(handle, &port, nullptr, &web, nullptr, rules, 2), 33u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibRuleSet, ANullHandleIsStatusTwoBeforeAnythingElse) {
  EXPECT_EQ(FW_ClearRootRuleSet(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_DestroyAllRuleSet(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_DestroyRuleSet(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_ClearRuleSet(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_ClearRuleSetJump(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetRuleSetJump(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetRuleSetJump(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetRootRuleSet(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetRootRuleSet(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_CreateRuleSet(nullptr, &port, nullptr, nullptr, nullptr, nullptr, 0), 2u);
  EXPECT_EQ(FW_GetRuleSetCount(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetRuleSetList(nullptr, &port, nullptr, 1, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetRuleCountOfRuleSet(nullptr, &port, nullptr, nullptr, 0, nullptr), 2u);
  EXPECT_EQ(FW_GetRuleSetInfo(nullptr, &port, nullptr, nullptr, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetRuleOfRuleSet(nullptr, &port, nullptr, 0, 1, 0, &web, nullptr, nullptr, nullptr),
            2u);
  EXPECT_EQ(FW_GetStatOfRuleSet(nullptr, &port, nullptr, 0, 1, 0, &web, nullptr, nullptr, nullptr),
            2u);
  EXPECT_EQ(FW_GetDlbOfRuleSet(nullptr, &port, nullptr, 0, 1, 0, &web, nullptr, nullptr, nullptr),
            2u);
}

TEST_F(TarnFWLibRuleSet, ANullArgumentIsStatusThreeAndSendsNothing) {
  FWRuleSetID_t name{};
  unsigned int number = 0;
  std::uint64_t large = 0;
  EXPECT_EQ(FW_DestroyRuleSet(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_ClearRuleSet(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_ClearRuleSetJump(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_SetRuleSetJump(handle, &port, nullptr, &web, nullptr), 3u);
  EXPECT_EQ(FW_GetRuleSetJump(handle, &port, nullptr, &web, nullptr), 3u);
  EXPECT_EQ(FW_SetRootRuleSet(handle, &port, nullptr, &web, nullptr), 3u);
  EXPECT_EQ(FW_GetRootRuleSet(handle, &port, nullptr, &name, nullptr), 3u);
  EXPECT_EQ(FW_CreateRuleSet(handle, &port, nullptr, &web, nullptr, nullptr, 1), 3u);
  EXPECT_EQ(FW_CreateRuleSet(handle, &port, nullptr, nullptr, nullptr, nullptr, 0), 3u);
  EXPECT_EQ(FW_GetRuleSetCount(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetRuleSetList(handle, &port, nullptr, 1, 0, &name, nullptr), 3u);
  EXPECT_EQ(FW_GetRuleSetList(handle, &port, nullptr, 1, 0, nullptr, &number), 3u);
  EXPECT_EQ(FW_GetRuleCountOfRuleSet(handle, &port, nullptr, &web, 0, nullptr), 3u);
  EXPECT_EQ(FW_GetRuleSetInfo(handle, &port, nullptr, &web, &number, &large, nullptr), 3u);
  EXPECT_EQ(FW_GetRuleOfRuleSet(handle, &port, nullptr, 0, 1, 0, &web, nullptr, nullptr, &number),
            3u);
  EXPECT_EQ(FW_GetStatOfRuleSet(handle, &port, nullptr, 0, 1, 0, &web, nullptr, nullptr, &number),
            3u);
  EXPECT_EQ(FW_GetDlbOfRuleSet(handle, &port, nullptr, 0, 1, 0, &web, nullptr, nullptr, &number),
            3u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibRuleSet, AConstructorThatThrowsGivesItsCodeAndSendsNothing) {
  unsigned int count = 77;
  EXPECT_EQ(FW_GetRuleCountOfRuleSet(handle, &port, nullptr, &web, 4, &count), 7u);
  EXPECT_EQ(count, 77u);
  EXPECT_TRUE(log.has(4, "error 7: invalid rule type\n"));
  const FWRuleSetID_t none{};
  EXPECT_EQ(FW_SetRootRuleSet(handle, &port, nullptr, &none, &none), 3u);
  EXPECT_TRUE(log.has(4, "error 3: root ruleset name is empty\n"));
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibRuleSet, NumbersComeBack) {
  unsigned int count = 0;
  std::uint64_t time = 0;
  std::uint64_t generation = 0;
  kernel.answer(0, Bytes({5, 0, 0, 0}));
  EXPECT_EQ(FW_GetRuleSetCount(handle, &port, nullptr, &count), 0u);
  EXPECT_EQ(count, 5u);
  kernel.answer(0, Bytes(72).at(68, {6}));
  EXPECT_EQ(FW_GetRuleCountOfRuleSet(handle, &port, nullptr, &web, 2, &count), 0u);
  EXPECT_EQ(count, 6u);
  kernel.answer(0, Bytes(84).at(64, {7, 0, 0, 0, 8, 0, 0, 0, 0, 0, 0, 0, 9}));
  EXPECT_EQ(FW_GetRuleSetInfo(handle, &port, nullptr, &web, &count, &time, &generation), 0u);
  EXPECT_EQ(count, 7u);
  EXPECT_EQ(time, 8u);
  EXPECT_EQ(generation, 9u);
}

TEST_F(TarnFWLibRuleSet, NamesComeBackClosedWithANul) {
  const std::string full(64, 'f');
  FWRuleSetID_t layer3{};
  FWRuleSetID_t layer2{};
  kernel.answer(0, Bytes(132).text(0, full).text(64, "l2"));
  EXPECT_EQ(FW_GetRootRuleSet(handle, &port, nullptr, &layer3, &layer2), 0u);
  EXPECT_EQ(std::string(layer3.text), full.substr(0, 63));
  EXPECT_STREQ(layer2.text, "l2");
  kernel.answer(0, Bytes(128).text(64, full));
  EXPECT_EQ(FW_GetRuleSetJump(handle, &port, nullptr, &web, &layer3), 0u);
  EXPECT_EQ(std::string(layer3.text), full.substr(0, 63));
  FWRuleSetID_t names[3] = {};
  unsigned int returned = 0;
  kernel.answer(0, Bytes(140).at(8, {0xff, 0xff, 0xff, 0xff}).text(12, full).text(76, "b"));
  EXPECT_EQ(FW_GetRuleSetList(handle, &port, nullptr, 2, 0, names, &returned), 0u);
  EXPECT_EQ(returned, 0xffffffffu) << "more than was asked for";
  EXPECT_EQ(std::string(names[0].text), full.substr(0, 63));
  EXPECT_STREQ(names[1].text, "b");
  EXPECT_STREQ(names[2].text, "") << "memory after what was asked for is not touched";
}

TEST_F(TarnFWLibRuleSet, ARuleSetIsCreatedFromRecords) {
  const FWRule_ rules[2] = {ruleRecord(11), ruleRecord(12)};
  EXPECT_EQ(FW_CreateRuleSet(handle, &port, nullptr, &web, &web, rules, 2), 0u);
  const Bytes body = kernel.last().body();
  ASSERT_EQ(body.size(), 168u + 2 * 892);
  EXPECT_EQ(body[136], 2);
  EXPECT_EQ(std::memcmp(body.data() + 168, rules, sizeof rules), 0);
}

TEST_F(TarnFWLibRuleSet, RulesComeBackByIndexAndById) {
  FWRule_ rules[2] = {};
  unsigned int returned = 0;
  const FWRule_ record = ruleRecord(11);
  Bytes reply(992);
  put32(put32(reply, 64, 1), 76, 0xffffffff);
  std::memcpy(reply.data() + 100, &record, sizeof record);
  kernel.answer(0, reply);
  EXPECT_EQ(FW_GetRuleOfRuleSet(handle, &port, nullptr, 0, 1, 5, &web, nullptr, rules, &returned),
            0u);
  EXPECT_EQ(returned, 0xffffffffu) << "not one came";
  EXPECT_EQ(std::memcmp(&rules[0], &record, sizeof record), 0);
  EXPECT_EQ(rules[1].id, 0u);
  EXPECT_EQ(kernel.last().body()[68], 5);
  EXPECT_EQ(kernel.last().body()[72], 1);
  const unsigned int ids[] = {7};
  kernel.answer(0, reply);
  EXPECT_EQ(FW_GetRuleOfRuleSet(handle, &port, nullptr, 1, 1, 5, &web, ids, rules, &returned), 0u);
  EXPECT_EQ(kernel.last().body()[68], 0);
  EXPECT_EQ(kernel.last().body()[72], 0);
  EXPECT_EQ(kernel.last().body()[96], 7);
  // An id area that leaves no room for the rule: none came, whatever the count.
  kernel.answer(0, put32(reply, 64, 3));
  EXPECT_EQ(FW_GetRuleOfRuleSet(handle, &port, nullptr, 0, 1, 5, &web, nullptr, rules, &returned),
            0u);
  EXPECT_EQ(returned, 0u);
}

TEST_F(TarnFWLibRuleSet, StatisticsAndBalancingStateComeBack) {
  FWRuleStat_ stats[1] = {};
  unsigned int returned = 0;
  Bytes reply = Bytes(148).at(64, {1}).at(76, {1}).at(84, {9}).at(92, {1}).at(140, {7});
  kernel.answer(0, reply);
  EXPECT_EQ(FW_GetStatOfRuleSet(handle, &port, nullptr, 0, 1, 0, &web, nullptr, stats, &returned),
            0u);
  EXPECT_EQ(returned, 1u);
  EXPECT_EQ(stats[0].id, 9u);
  EXPECT_EQ(stats[0].evaluations, 1u);
  EXPECT_EQ(stats[0].bytesOut, 7u);
  FWDlbRule_ rules[1] = {};
  Bytes balancing(244);
  put32(put32(balancing, 64, 1), 76, 1);
  put32(put32(put32(put32(put32(balancing, 80, 9), 84, 1), 88, 2), 92, 3), 96, 4);
  kernel.answer(0, balancing.at(100, {1}));
  EXPECT_EQ(FW_GetDlbOfRuleSet(handle, &port, nullptr, 2, 1, 0, &web, nullptr, rules, &returned),
            0u);
  EXPECT_EQ(returned, 1u);
  EXPECT_EQ(rules[0].flows, 1u);
  EXPECT_EQ(rules[0].currentTime, 2u);
  EXPECT_EQ(rules[0].lastUse, 3u);
  EXPECT_EQ(rules[0].persistTimeout, 4u);
  EXPECT_EQ(rules[0].address[0], 1);
}

TEST(TarnFWLibText, RulesPrintOneAfterTheOther) {
  const FWRule_ rules[2] = {ruleRecord(1), ruleRecord(2)};
  const std::string one = "rule 1 at 1 out protocol any from any to any accept;";
  const std::string both = one + "rule 2 at 1 out protocol any from any to any accept;";
  char text[512];
  EXPECT_EQ(FW_GetRuleString(rules, 2, text, sizeof text, 0), 0u);
  EXPECT_EQ(text, both);
  EXPECT_EQ(FW_GetRuleString(rules, 1, text, static_cast<unsigned int>(one.size() + 1), 0), 0u);
  EXPECT_EQ(text, one);
  EXPECT_EQ(FW_GetRuleString(rules, 1, text, sizeof text, 1), 0u);
  EXPECT_NE(text, one) << "the labelled form";
}

TEST(TarnFWLibText, ABufferThatIsTooSmallIsRefusedWithItsSize) {
  LogCapture log;
  const FWRule_ rules[2] = {ruleRecord(1), ruleRecord(2)};
  const std::string one = "rule 1 at 1 out protocol any from any to any accept;";
  for (unsigned int size = 1; size <= one.size(); ++size) {
    std::vector<char> text(size, 'x');
    EXPECT_EQ(FW_GetRuleString(rules, 1, text.data(), size, 0), 9u);
    EXPECT_EQ(text[0], '\0');
  }
  EXPECT_TRUE(log.has(4, "error 9: input buffer of 1 bytes is too small\n"));
  const auto size = static_cast<unsigned int>(2 * one.size());
  std::vector<char> text(size, 'x');
  EXPECT_EQ(FW_GetRuleString(rules, 2, text.data(), size, 0), 9u);
  EXPECT_EQ(text.data(), one) << "closed after what fitted";
}

TEST(TarnFWLibText, NullAndZeroArgumentsAreRefused) {
  const FWRule_ rule = ruleRecord(1);
  const FWAddress_ address{};
  char text[64];
  EXPECT_EQ(FW_GetRuleString(nullptr, 1, text, 64, 0), 3u);
  EXPECT_EQ(FW_GetRuleString(&rule, 0, text, 64, 0), 3u);
  EXPECT_EQ(FW_GetRuleString(&rule, 1, nullptr, 64, 0), 3u);
  EXPECT_EQ(FW_GetRuleString(&rule, 1, text, 0, 0), 3u);
  EXPECT_EQ(FW_GetAddressString(nullptr, 1, text, 64), 3u);
  EXPECT_EQ(FW_GetAddressString(&address, 0, text, 64), 3u);
  EXPECT_EQ(FW_GetAddressString(&address, 1, nullptr, 64), 3u);
  EXPECT_EQ(FW_GetAddressString(&address, 1, text, 0), 3u);
}
