#pragma once

/// Actions of the statements about rule sets.

#include "TarnFWCmd.h"
#include "TarnFWIDList.h"
#include "TarnFWParserActions.h"
#include "TarnFWRule.h"
#include "TarnFWRuleList.h"

namespace TarnFirewall {

/// The name in its field. Throws `CParseFailure` with status 32 for 64 characters and more.
FWRuleSetID_t ruleSetName(const FWParserText& text);

/// Where an action takes two names, the jump target's or the second one is judged first.
std::unique_ptr<CTarnFWCmd> createRuleSet(const dvs_port_* port, const FWParserText& name,
                                          std::unique_ptr<CTarnFWRuleList> rules);
std::unique_ptr<CTarnFWCmd> createRuleSetWithJump(const dvs_port_* port, const FWParserText& name,
                                                  const FWParserText& jump,
                                                  std::unique_ptr<CTarnFWRuleList> rules);
std::unique_ptr<CTarnFWCmd> createRuleSetOfOne(const dvs_port_* port, const FWParserText& name,
                                               std::unique_ptr<CTarnFWRule> rule);
std::unique_ptr<CTarnFWCmd> createEmptyRuleSet(const dvs_port_* port, const FWParserText& name);

/// The layer-2 root is the set of this name followed by "_L2".
std::unique_ptr<CTarnFWCmd> setRootRuleSet(const dvs_port_* port, const FWParserText& name);
std::unique_ptr<CTarnFWCmd> setRootRuleSets(const dvs_port_* port, const FWParserText& layer3,
                                            const FWParserText& layer2);

std::unique_ptr<CTarnFWCmd> setRuleSetJump(const dvs_port_* port, const FWParserText& name,
                                           const FWParserText& jump);
std::unique_ptr<CTarnFWCmd> getRuleSetList(const dvs_port_* port, std::int64_t from);

/// Kinds of rule in a rule set.
enum FWRuleKind : unsigned int { FW_RULES_FILTER = 0, FW_RULES_SNAT = 1, FW_RULES_DNAT = 2 };

/// Rules or statistics by index, at most 10000 of them, or by id.
std::unique_ptr<CTarnFWCmd> getRules(const dvs_port_* port, const FWParserText& name,
                                     std::int64_t from, FWRuleKind kind);
std::unique_ptr<CTarnFWCmd> getRules(const dvs_port_* port, const FWParserText& name,
                                     std::unique_ptr<CTarnFWIDList> ids, FWRuleKind kind);
std::unique_ptr<CTarnFWCmd> getStats(const dvs_port_* port, const FWParserText& name,
                                     std::int64_t from, FWRuleKind kind);
std::unique_ptr<CTarnFWCmd> getStats(const dvs_port_* port, const FWParserText& name,
                                     std::unique_ptr<CTarnFWIDList> ids, FWRuleKind kind);

std::unique_ptr<CTarnFWIDList> withID(std::unique_ptr<CTarnFWIDList> list, std::int64_t id);

}  // namespace TarnFirewall
