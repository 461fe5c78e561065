#include "Diagnostic.h"

#include <algorithm>
#include <tuple>

namespace {

using enum Severity;

constexpr CheckRow kRows[] = {
    {Check::syntax, "syntax", error, "a word that has no place where it stands"},
    {Check::value, "value", error, "a value that is refused"},
    {Check::strayCharacter, "stray-character", warning, "characters that belong to nothing"},
    {Check::ignoredText, "ignored-text", warning, "text that is not read"},
    {Check::unknownSet, "unknown-set", warning, "a set that is not there"},
    {Check::unknownContainer, "unknown-container", warning, "a container that is not there"},
    {Check::unknownRuleSet, "unknown-ruleset", warning, "a rule set that nothing creates"},
    {Check::unknownJump, "unknown-jump", warning, "a jump to a rule set that nothing creates"},
    {Check::jumpCircle, "jump-circle", warning, "jumps that lead back to where they began"},
    {Check::duplicateId, "duplicate-id", warning, "two rules of a rule set with one id"},
    {Check::duplicateName, "duplicate-name", warning, "a name that is created twice"},
    {Check::generatedSet, "generated-set", warning, "a name that the set of a range takes over"},
    {Check::cutText, "cut-text", warning, "a text of which only the beginning is kept"},
    {Check::unusedSet, "unused-set", warning, "a set that nothing uses"},
    {Check::noEffect, "no-effect", warning, "a statement without effect"},
    {Check::missingLayer2, "missing-layer2", warning, "a root without its layer-2 rule set"},
    {Check::shadowedRule, "shadowed-rule", warning, "a rule after one that matches all of it"},
};

}  // namespace

std::span<const CheckRow> checkRows() { return kRows; }

const CheckRow& rowOf(Check check) { return kRows[static_cast<std::size_t>(check)]; }

void Diagnostics::add(Diagnostic diagnostic) {
  if (diagnostic.severity == error) ++errors_;
  all_.push_back(std::move(diagnostic));
}

void Diagnostics::sort() {
  std::stable_sort(all_.begin(), all_.end(), [](const Diagnostic& a, const Diagnostic& b) {
    return std::tie(a.range.file, a.range.begin) < std::tie(b.range.file, b.range.begin);
  });
}
