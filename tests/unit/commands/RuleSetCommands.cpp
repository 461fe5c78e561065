// Requests and replies of the commands on rule sets.

#include "CommandFamily.h"
#include "TarnFWAddressIPv4.h"
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
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWRuleActionDrop.h"

using namespace TarnFirewall;

namespace {

// Names that fill their fields, so that the last byte of a name is seen.
const std::string kRules = std::string(63, 'r') + 'R';
const std::string kOther = std::string(63, 'o') + 'O';
const std::string kRoot = std::string(62, 't') + 'T';  // a jump target ends with a NUL

CommandPtr createRuleSet() {
  CTarnFWProtocolSpecList port(FW_SPEC_DIR_DESTINATION);
  port.addSpec(std::make_unique<CTarnFWProtocolSpecL4Port>(
      static_cast<unsigned char>(2), static_cast<unsigned short>(443), false));
  auto drop = std::make_unique<CTarnFWRuleActionDrop>();
  drop->enableLogPacket();
  FWRuleParts parts;
  parts.id = 0x01020304;
  parts.position = 5;
  parts.direction = FW_DIRECTION_IN;
  parts.protocol.emplace(FWProtocolLayer::ip, static_cast<unsigned short>(6), false);
  parts.source = std::make_unique<CTarnFWAddressIPv4>("10.1.2.3", true);
  parts.destinationPorts = std::move(port);
  parts.action = std::move(drop);
  auto rule = std::make_unique<CTarnFWRule>(std::move(parts));
  rule->setTag("seen");
  auto list = std::make_unique<CTarnFWRuleList>(false);
  list->addRule(std::move(rule));
  return std::make_unique<CTarnFWCmdCreateRuleSet>(nullptr, ruleSet(kRules), ruleSet(kOther),
                                                   std::move(list));
}

template <typename Class, auto... arguments>
CommandPtr ofRuleSet() {
  return std::make_unique<Class>(nullptr, ruleSet(kRules), arguments...);
}

template <typename Class, auto... arguments>
CommandPtr ofWeb() {
  return std::make_unique<Class>(nullptr, ruleSet("web"), arguments...);
}

/// The commands, by number. Offsets are those of the body.
std::vector<Golden> goldens() {
  std::vector<Golden> rows;
  rows.push_back({"CTarnFWCmdGetRuleSetCount", 1, 24, "GetRuleSetCount", 1, 0, 4,
                  plain<CTarnFWCmdGetRuleSetCount>, Bytes(4)});

  rows.push_back({"CTarnFWCmdGetRuleSetList", 2, 25, "GetRuleSetList", 8, 8, 140,
                  plain<CTarnFWCmdGetRuleSetList, 2u, kFrom>,
                  Bytes(140)                   // 12 and 64 for each of 2 names
                      .at(0, {2, 0, 0, 0})     // max
                      .at(4, {1, 2, 3, 4})});  // from

  rows.push_back(
      {"CTarnFWCmdCreateRuleSet", 3, 26, "CreateRuleSet", 144, 141, 168, createRuleSet,
       Bytes(1060)                     // 168 and 892
           .text(64, kRules)           // the jump target is not sent
           .at(136, {1, 0, 0, 0})      // rules
           .at(140, {0x03})            // flags
           .at(168 + 0, {4, 3, 2, 1})  // rule id
           .at(168 + 4, {5, 0, 0, 0})  // position
           .at(168 + 12, {1, 0, 1})    // source: IPv4, negated
           .at(168 + 16, {10, 1, 2, 3})
           .at(168 + 338, {0x0a, 0})           // destination port: direction 2, kind 1
           .at(168 + 340, {0x01, 0xbb})        // 443, high byte first
           .at(168 + 750, {2})                 // action: drop
           .at(168 + 751, {0x01, 0})           // log
           .at(168 + 790, {0xb5, 0, 0, 0x10})  // source, protocol, layer 3, in, inet by the address
           .at(168 + 794, {6, 0})              // tcp
           .text(168 + 852, "seen")            // tag
           .at(168 + 884, {1, 0, 0, 0})});     // no profile

  rows.push_back({"CTarnFWCmdSetRootRuleSet", 3, 28, "CreateRuleSet", 144, 141, 168,
                  [] {
                    return CommandPtr(std::make_unique<CTarnFWCmdSetRootRuleSet>(
                        nullptr, ruleSet(kRoot), ruleSet("l2")));
                  },
                  Bytes(1952)                           // 168 and 892 for each of 2 rules
                      .at(136, {2, 0, 0, 0})            // rules; the name at 64 is empty
                      .at(140, {0x03})                  // flags
                      .at(168 + 0, {1, 0, 0, 0})        // rule id
                      .at(168 + 4, {1, 0, 0, 0})        // position
                      .text(168 + 460, kRoot)           // jump target
                      .at(168 + 750, {4})               // action: jumpto
                      .at(168 + 790, {0x10})            // layer 3, inout, any protocol
                      .at(168 + 796, {0x01})            // stateless
                      .at(168 + 884, {1, 0, 0, 0})      // no profile
                      .at(168 + 892 + 0, {2, 0, 0, 0})  // the same for layer 2
                      .at(168 + 892 + 4, {2, 0, 0, 0})
                      .text(168 + 892 + 460, "l2")
                      .at(168 + 892 + 750, {4})
                      .at(168 + 892 + 796, {0x01})
                      .at(168 + 892 + 884, {1, 0, 0, 0})});

  rows.push_back({"CTarnFWCmdGetRootRuleSet", 4, 27, "GetRootRuleSet", 1, 0, 132,
                  plain<CTarnFWCmdGetRootRuleSet>, Bytes(132)});

  rows.push_back({"CTarnFWCmdClearRuleSet", 6, 29, "ClearRuleSet", 64, 64, 72,
                  ofRuleSet<CTarnFWCmdClearRuleSet>, Bytes(72).text(0, kRules)});

  rows.push_back({"CTarnFWCmdDestroyRuleSet", 7, 30, "DestroyRuleSet", 64, 64, 64,
                  ofRuleSet<CTarnFWCmdDestroyRuleSet>, Bytes(64).text(0, kRules)});

  rows.push_back({"CTarnFWCmdGetRuleCountOfRuleSet", 8, 31, "GetRuleCountOfRuleSet", 68, 65, 72,
                  ofRuleSet<CTarnFWCmdGetRuleCountOfRuleSet, 2u>,
                  Bytes(72).text(0, kRules).at(64, {2})});  // kind: dnat

  rows.push_back({"CTarnFWCmdGetRuleSetInfo", 9, 32, "GetRuleSetInfo", 64, 64, 84,
                  ofRuleSet<CTarnFWCmdGetRuleSetInfo>, Bytes(84).text(0, kRules)});

  rows.push_back({"CTarnFWCmdGetRuleOfRuleSet", 10, 33, "GetRuleOfRuleSet", 76, 75, 1888,
                  ofRuleSet<CTarnFWCmdGetRuleOfRuleSet, 2u, kFrom, 1u>,
                  Bytes(1888)  // 96 and 896 for each of 2 rules
                      .text(0, kRules)
                      .at(64, {2, 0, 0, 0})  // max
                      .at(68, {1, 2, 3, 4})  // from
                      .at(72, {1, 0})        // by index
                      .at(74, {1})});        // kind: snat

  rows.push_back({"CTarnFWCmdGetStatOfRuleSet", 11, 34, "GetStatOfRuleSet", 76, 75, 216,
                  ofRuleSet<CTarnFWCmdGetStatOfRuleSet, 2u, kFrom, 2u>,
                  Bytes(216)  // 80 and 68 for each of 2 rules
                      .text(0, kRules)
                      .at(64, {2, 0, 0, 0, 1, 2, 3, 4, 1, 0, 2})});

  rows.push_back({"CTarnFWCmdGetDlbOfRuleSet", 12, 35, "GetDlbOfRuleSet", 76, 75, 408,
                  ofRuleSet<CTarnFWCmdGetDlbOfRuleSet, 2u, kFrom, 3u>,
                  Bytes(408)  // 80 and 164 for each of 2 rules
                      .text(0, kRules)
                      .at(64, {2, 0, 0, 0, 1, 2, 3, 4, 1, 0, 3})});

  rows.push_back({"CTarnFWCmdClearRootRuleSet", 36, 59, "ClearRootRuleSet", 1, 0, 4,
                  plain<CTarnFWCmdClearRootRuleSet>, Bytes(4)});

  rows.push_back({"CTarnFWCmdDestroyAllRuleSet", 60, 83, "DestroyAllRuleSet", 1, 0, 4,
                  plain<CTarnFWCmdDestroyAllRuleSet>, Bytes(4)});

  rows.push_back({"CTarnFWCmdSetRuleSetJump", 61, 84, "SetRuleSetJump", 128, 128, 128,
                  [] {
                    return CommandPtr(std::make_unique<CTarnFWCmdSetRuleSetJump>(
                        nullptr, ruleSet(kRules), ruleSet(kOther)));
                  },
                  Bytes(128).text(0, kRules).text(64, kOther)});

  rows.push_back({"CTarnFWCmdGetRuleSetJump", 62, 85, "GetRuleSetJump", 64, 64, 128,
                  ofRuleSet<CTarnFWCmdGetRuleSetJump>, Bytes(128).text(0, kRules)});

  rows.push_back({"CTarnFWCmdClearRuleSetJump", 63, 86, "ClearRuleSetJump", 64, 64, 64,
                  ofRuleSet<CTarnFWCmdClearRuleSetJump>, Bytes(64).text(0, kRules)});
  return rows;
}

std::vector<ReplyRow> replies() {
  std::vector<ReplyRow> rows;
  rows.push_back({"CTarnFWCmdGetRuleSetCount",
                  plain<CTarnFWCmdGetRuleSetCount>,
                  Bytes({7, 1, 0, 0}),
                  {{4, "ruleset count : 263\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetRuleSetList",
                  plain<CTarnFWCmdGetRuleSetList, 2u, 0u>,
                  Bytes(140).at(8, {2}).text(12, "first").text(76, std::string(64, 'f')),
                  {{12, "", true}},
                  {12, 64, {"first\n", std::string(64, 'f') + "\n"}, "rulesets"}});

  rows.push_back({"CTarnFWCmdGetRootRuleSet",
                  plain<CTarnFWCmdGetRootRuleSet>,
                  Bytes(132).text(0, "l3").text(64, std::string(64, 'f')),
                  {{64, "layer3 root ruleset : l3\n"},
                   {128, "layer2 root ruleset : " + std::string(64, 'f') + "\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetRuleCountOfRuleSet",
                  ofWeb<CTarnFWCmdGetRuleCountOfRuleSet, 0u>,
                  Bytes(72).at(68, {9, 0, 0, 1}),
                  {{72, "rule count : 16777225\n"}},
                  {}});

  Bytes info = Bytes(84).at(64, {3});
  rows.push_back({"CTarnFWCmdGetRuleSetInfo",
                  ofWeb<CTarnFWCmdGetRuleSetInfo>,
                  at(info, 76, 68),
                  {{68, "rule count       : 3\n"}, {84, "generation number: 42\n"}, {76, kTime}},
                  {}});

  // Two records of zeros after two ids, as an accepting rule that is called 0.
  const std::string rule = "rule 0 at 0 inout ethertype any from any to any accept;\n";
  Bytes rules = Bytes(1888).at(64, {2}).at(76, {2}).at(104 + 750, {1}).at(996 + 750, {1});
  rows.push_back(
      {"CTarnFWCmdGetRuleOfRuleSet",
       ofWeb<CTarnFWCmdGetRuleOfRuleSet, 2u, 0u, 0u>,
       at(rules, 88, 80),
       {{68, "", true}, {80, "", true}, {96, "# generation number: 42\n"}, {88, kHashTime}},
       {104, 892, {rule, rule}, "rules of ruleset web"}});

  const auto stat = [](int number) {
    return "rule     " + std::to_string(number) +
           ": 0 evals, 0 hits, 0 sessions, in 0 out 0 pkts, in 0 out 0 bytes\n";
  };
  rows.push_back({"CTarnFWCmdGetStatOfRuleSet",
                  ofWeb<CTarnFWCmdGetStatOfRuleSet, 2u, 0u, 0u>,
                  Bytes(216).at(64, {2}).at(76, {2}).at(88, {5}).at(152, {6}),
                  {{68, "", true}, {80, "", true}},
                  {88, 64, {stat(5), stat(6)}, "stats of ruleset web"}});

  rows.push_back({"CTarnFWCmdGetDlbOfRuleSet",
                  ofWeb<CTarnFWCmdGetDlbOfRuleSet, 2u, 0u, 0u>,
                  Bytes(408).at(64, {2}).at(76, {2}).at(80, {5, 0, 0, 0, 0x40, 0xe2, 1}),
                  {{80, "", true}},
                  {80, 4, {"rule     5\n", "rule 123456\n"}, "dlb of ruleset web"}});

  readsNothing(rows, "CTarnFWCmdClearRuleSet", ofWeb<CTarnFWCmdClearRuleSet>);
  readsNothing(rows, "CTarnFWCmdDestroyRuleSet", ofWeb<CTarnFWCmdDestroyRuleSet>);
  readsNothing(rows, "CTarnFWCmdClearRootRuleSet", plain<CTarnFWCmdClearRootRuleSet>);
  readsNothing(rows, "CTarnFWCmdDestroyAllRuleSet", plain<CTarnFWCmdDestroyAllRuleSet>);
  readsNothing(rows, "CTarnFWCmdSetRuleSetJump", [] {
    return std::make_unique<CTarnFWCmdSetRuleSetJump>(nullptr, ruleSet("web"), ruleSet("next"));
  });
  readsNothing(rows, "CTarnFWCmdGetRuleSetJump", ofWeb<CTarnFWCmdGetRuleSetJump>);
  readsNothing(rows, "CTarnFWCmdClearRuleSetJump", ofWeb<CTarnFWCmdClearRuleSetJump>);
  return rows;
}

std::vector<Creation> creations() {
  return {
      {"CTarnFWCmdCreateRuleSet",
       [] { return std::make_unique<CTarnFWCmdCreateRuleSet>(nullptr, "web"); }, 140, 144},
      {"CTarnFWCmdSetRootRuleSet",
       [] { return std::make_unique<CTarnFWCmdSetRootRuleSet>(nullptr); }, 140, 144},
  };
}

}  // namespace

CommandFamily ruleSetCommands() {
  return {.goldens = goldens(),
          .replies = replies(),
          .creations = creations(),
          .ownReplyTest = {},
          .later = {}};
}
