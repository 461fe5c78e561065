// What the parts of the rule-set commands share.
#ifndef TARNLAB_RULE_COMMANDS_H
#define TARNLAB_RULE_COMMANDS_H

#include "LabRuleRecord.h"
#include "LabSets.h"

namespace TarnLab::RuleSets {

inline constexpr std::size_t nameSize = 64;

/// The root is the set without a name.
inline constexpr SetKind sets{"rulesets", Status::noRuleSet, "rule set"};

inline constexpr Name name{0, nameSize, "name", "rule set"};

inline constexpr RecordKind rules{RuleRecord::size, RuleRecord::text};

}  // namespace TarnLab::RuleSets

#endif
