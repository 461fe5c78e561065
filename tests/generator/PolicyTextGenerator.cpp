#include "PolicyTextGenerator.h"

#include <array>
#include <vector>

namespace {

using Names = std::vector<std::string>;

const std::string& anyOf(Choices& choices, const Names& names) {
  return names[choices.below(static_cast<std::uint32_t>(names.size()))];
}

std::string ruleText(Choices& choices, std::uint32_t id, const Names& sets, const Names& ruleSets,
                     unsigned int chanceOfJump) {
  std::string text = " rule " + std::to_string(id) + " in protocol any from ";
  text += !sets.empty() && choices.chance(60) ? anyOf(choices, sets) : "any";
  text += " to any ";
  return text + (choices.chance(chanceOfJump) ? "jumpto " + anyOf(choices, ruleSets) : "drop") +
         ";";
}

std::string ruleSetText(Choices& choices, const std::string& name, const Names& sets,
                        const Names& ruleSets, unsigned int chanceOfJump) {
  const std::uint32_t rules = choices.below(3);
  if (rules == 0) return "create ruleset " + name + ";";
  std::string text = "create ruleset " + name + " with {";
  for (std::uint32_t id = 1; id <= rules; ++id) {
    text += ruleText(choices, id, sets, ruleSets, chanceOfJump);
  }
  return text + " };";
}

std::string rootText(Choices& choices, const Names& ruleSets, unsigned int chanceOfOpenLayer) {
  // A name that may or may not be that of a rule set.
  static constexpr std::array kOpen = {"a", "b", "x"};
  std::string layer2 = choices.chance(50) ? "\"\"" : anyOf(choices, ruleSets);
  if (choices.chance(chanceOfOpenLayer)) layer2 = kOpen[choices.below(kOpen.size())];
  return "set root ruleset " + anyOf(choices, ruleSets) + " and " + layer2 + ";";
}

}  // namespace

std::string generatedPolicyText(Choices& choices, const PolicyShape& shape) {
  std::string text;
  Names sets, ruleSets;
  for (const char* const name : {"s1", "s2", "s3"}) {
    if (choices.chance(40)) continue;
    sets.emplace_back(name);
    text +=
        std::string("create addrset ") + name + " 10.0.0." + std::to_string(choices.below(3)) + ";";
  }
  for (unsigned int i = 0; i < shape.names; ++i) {
    if (choices.chance(shape.chanceOfRuleSet)) {
      ruleSets.emplace_back(1, static_cast<char>('a' + i));
    }
  }
  for (const std::string& name : ruleSets) {
    text += ruleSetText(choices, name, sets, ruleSets, shape.chanceOfJumpRule);
  }
  for (const std::string& name : ruleSets) {
    if (!choices.chance(shape.chanceOfJump)) continue;
    text += "set jumpto of ruleset " + name + " as " + anyOf(choices, ruleSets) + ";";
  }
  if (!ruleSets.empty() && choices.chance(shape.chanceOfRoot)) {
    text += rootText(choices, ruleSets, shape.chanceOfOpenLayer);
  }
  return text;
}
