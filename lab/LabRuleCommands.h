// What the parts of the rule-set commands share.
#ifndef TARNLAB_RULE_COMMANDS_H
#define TARNLAB_RULE_COMMANDS_H

#include "LabCommand.h"

namespace TarnLab::RuleSets {

inline constexpr std::size_t nameSize = 64;

/// Folder of the filter's rule sets. The root is the set without a name.
std::string folderOf(const CommandContext& context);

std::string fileOf(const CommandContext& context, std::string_view name);

/// The rule sets that have a name, in the order of their names.
std::vector<std::string> names(const CommandContext& context);

/// Whether a name field is not terminated or not zero behind its end: fails with status 25 then.
bool badName(const CommandContext& context, ConstBytes body, std::size_t offset,
             std::uint32_t& status);

/// Puts these rules in place of what the set held: kept by kind, and by position in each kind.
/// Returns a status; with any but 0 the set is as it was.
std::uint32_t replace(const CommandContext& context, std::string_view name, ConstBytes rules);

/// The commands that read rules, one by one or by their ids.
std::uint32_t getRules(const CommandContext& context, CommandBody& body);
std::uint32_t getStatistics(const CommandContext& context, CommandBody& body);
std::uint32_t getBalancers(const CommandContext& context, CommandBody& body);

}  // namespace TarnLab::RuleSets

#endif
