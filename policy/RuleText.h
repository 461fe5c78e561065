#pragma once

/// Rules as the configuration language writes them, for text that is loaded again. Unlike the texts
/// that `tarnioctl` prints, every name is quoted and nothing is left out; what the language has no
/// words for is refused with the reason.

#include <cstddef>
#include <string>

#include "LanguageText.h"
#include "TarnFWRuleRecord.h"

/// The parts of a rule, by which rules are compared and written. The order is that of the text.
enum class RulePart {
  direction,
  family,
  protocol,
  specs,
  source,
  sourcePorts,
  destination,
  destinationPorts,
  extendedSource,
  attributeProfile,
  action,
  flags,
  application,
  tag,
};
inline constexpr std::size_t kRuleParts = 14;

/// What a part is called in messages: "source ports".
const char* rulePartName(RulePart part);

/// A part of a rule's text, empty where the rule has none. Throws `Unsayable`.
std::string rulePartText(const TarnFirewall::FWRule_& rule, RulePart part);

/// "rule ID at POSITION ... ;" without the semicolon. Throws `Unsayable` with the reason of the
/// first part that can't be said, and for rules that only a kernel makes.
std::string ruleText(const TarnFirewall::FWRule_& rule);

/// A part in words for people: its text, or what stands in the record where there is none.
std::string shownRulePart(const TarnFirewall::FWRule_& rule, RulePart part);

/// The rule on one line for people: its text, or the parts of it that can be said and the reasons
/// for the others.
std::string shownRule(const TarnFirewall::FWRule_& rule);
