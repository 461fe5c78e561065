#include "TarnFWParserActionsRuleSet.h"

#include "TarnFWCmdCreateRuleSet.h"
#include "TarnFWCmdGetRuleOfRuleSet.h"
#include "TarnFWCmdGetRuleSetList.h"
#include "TarnFWCmdGetStatOfRuleSet.h"
#include "TarnFWCmdSetRootRuleSet.h"
#include "TarnFWCmdSetRuleSetJump.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

/// Rules, statistics and names that one message asks for.
constexpr unsigned int kRulesPerMessage = 10000;

/// Longest name of a root that leaves room for "_L2".
constexpr std::size_t kRootNameLimit = 60;

template <typename Command>
std::unique_ptr<CTarnFWCmd> readFrom(const dvs_port_* port, const FWParserText& name,
                                     std::int64_t from, FWRuleKind kind) {
  const FWRuleSetID_t id = ruleSetName(name);
  const std::uint32_t first = number32(from, "rule position value overflows");
  return std::make_unique<Command>(port, id, kRulesPerMessage, first, kind);
}

template <typename Command>
std::unique_ptr<CTarnFWCmd> readByID(const dvs_port_* port, const FWParserText& name,
                                     std::unique_ptr<CTarnFWIDList> ids, FWRuleKind kind) {
  return std::make_unique<Command>(port, ruleSetName(name), std::move(ids), kind);
}

}  // namespace

FWRuleSetID_t ruleSetName(const FWParserText& text) {
  if (text.length >= sizeof(FWRuleSetID_t)) {
    throw CParseFailure(formatText("ruleset name (%s) is too long", text.data),
                        FW_STATUS_ID_TOO_LONG);
  }
  return nameField<FWRuleSetID_t>(text);
}

std::unique_ptr<CTarnFWCmd> createRuleSet(const dvs_port_* port, const FWParserText& name,
                                          std::unique_ptr<CTarnFWRuleList> rules) {
  return std::make_unique<CTarnFWCmdCreateRuleSet>(port, ruleSetName(name), FWRuleSetID_t{},
                                                   std::move(rules));
}

std::unique_ptr<CTarnFWCmd> createRuleSetWithJump(const dvs_port_* port, const FWParserText& name,
                                                  const FWParserText& jump,
                                                  std::unique_ptr<CTarnFWRuleList> rules) {
  const FWRuleSetID_t target = ruleSetName(jump);
  return std::make_unique<CTarnFWCmdCreateRuleSet>(port, ruleSetName(name), target,
                                                   std::move(rules));
}

std::unique_ptr<CTarnFWCmd> createRuleSetOfOne(const dvs_port_* port, const FWParserText& name,
                                               std::unique_ptr<CTarnFWRule> rule) {
  auto rules = std::make_unique<CTarnFWRuleList>(false);
  rules->addRule(std::move(rule));
  return createRuleSet(port, name, std::move(rules));
}

std::unique_ptr<CTarnFWCmd> createEmptyRuleSet(const dvs_port_* port, const FWParserText& name) {
  return std::make_unique<CTarnFWCmdCreateRuleSet>(port, ruleSetName(name), FWRuleSetID_t{});
}

std::unique_ptr<CTarnFWCmd> setRootRuleSet(const dvs_port_* port, const FWParserText& name) {
  if (name.length > kRootNameLimit) {
    throw CParseFailure(formatText("root ruleset name (%s) is too long", name.data),
                        FW_STATUS_ID_TOO_LONG);
  }
  FWRuleSetID_t layer2 = nameField<FWRuleSetID_t>(name);
  std::memcpy(layer2.text + name.length, "_L2", 3);
  return std::make_unique<CTarnFWCmdSetRootRuleSet>(port, nameField<FWRuleSetID_t>(name), layer2);
}

std::unique_ptr<CTarnFWCmd> setRootRuleSets(const dvs_port_* port, const FWParserText& layer3,
                                            const FWParserText& layer2) {
  const FWRuleSetID_t second = ruleSetName(layer2);
  return std::make_unique<CTarnFWCmdSetRootRuleSet>(port, ruleSetName(layer3), second);
}

std::unique_ptr<CTarnFWCmd> setRuleSetJump(const dvs_port_* port, const FWParserText& name,
                                           const FWParserText& jump) {
  const FWRuleSetID_t target = ruleSetName(jump);
  return std::make_unique<CTarnFWCmdSetRuleSetJump>(port, ruleSetName(name), target);
}

std::unique_ptr<CTarnFWCmd> getRuleSetList(const dvs_port_* port, std::int64_t from) {
  const std::uint32_t first = number32(from, "rule index value overflows");
  return std::make_unique<CTarnFWCmdGetRuleSetList>(port, kRulesPerMessage, first);
}

std::unique_ptr<CTarnFWCmd> getRules(const dvs_port_* port, const FWParserText& name,
                                     std::int64_t from, FWRuleKind kind) {
  return readFrom<CTarnFWCmdGetRuleOfRuleSet>(port, name, from, kind);
}

std::unique_ptr<CTarnFWCmd> getRules(const dvs_port_* port, const FWParserText& name,
                                     std::unique_ptr<CTarnFWIDList> ids, FWRuleKind kind) {
  return readByID<CTarnFWCmdGetRuleOfRuleSet>(port, name, std::move(ids), kind);
}

std::unique_ptr<CTarnFWCmd> getStats(const dvs_port_* port, const FWParserText& name,
                                     std::int64_t from, FWRuleKind kind) {
  return readFrom<CTarnFWCmdGetStatOfRuleSet>(port, name, from, kind);
}

std::unique_ptr<CTarnFWCmd> getStats(const dvs_port_* port, const FWParserText& name,
                                     std::unique_ptr<CTarnFWIDList> ids, FWRuleKind kind) {
  return readByID<CTarnFWCmdGetStatOfRuleSet>(port, name, std::move(ids), kind);
}

std::unique_ptr<CTarnFWIDList> withID(std::unique_ptr<CTarnFWIDList> list, std::int64_t id) {
  list->addID(static_cast<std::uint32_t>(id));
  return list;
}

}  // namespace TarnFirewall
