#include "SaveText.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "LanguageText.h"
#include "RuleText.h"
#include "StateText.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

constexpr char kHead[] =
    "# A policy as tarnpolicy saved it. A filter that holds nothing gets it by:\n"
    "#     tarnioctl tarnfwcli -Override -f FILTER -l FILE\n";

/// What a statement makes, or nothing when it does not parse.
std::optional<State> made(const std::string& statement) {
  try {
    return stateOfText(statement + ";", "").state;
  } catch (const StateError&) {
    return {};
  }
}

bool sameRecord(const FWRule_& a, const FWRule_& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

bool sameRecord(const FWAddress_& a, const FWAddress_& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

/// The one rule that a text makes; nothing when it makes none or something else too.
std::optional<FWRule_> ruleOf(const std::string& text) {
  const auto state = made("create ruleset x with { " + text + "; }");
  if (!state || !state->sets.empty() || state->ruleSets.size() != 1) return {};
  const StateRuleSet& set = state->ruleSets.begin()->second;
  if (set.count() != 1) return {};
  for (const auto& rules : set.rules) {
    if (!rules.empty()) return rules.front();
  }
  return {};
}

/// Why a rule whose text was written can't be said after all, empty where it can.
std::string lossOf(const FWRule_& rule, const std::string& text) {
  const std::optional<FWRule_> back = ruleOf(text);
  if (!back) return "its text can't be read again";
  if (sameRecord(*back, rule)) return {};
  for (std::size_t i = 0; i < kRuleParts; ++i) {
    const auto part = static_cast<RulePart>(i);
    if (shownRulePart(rule, part) != shownRulePart(*back, part)) {
      return std::string("its ") + rulePartName(part) + " would come back as `" +
             shownRulePart(*back, part) + "'";
    }
  }
  return "its record has bytes that no text makes";
}

class Saver {
 public:
  explicit Saver(const State& state) : state_(state) { saved_.text = kHead; }

  SavedText run() {
    const LibraryLines lines;  // statements are tried, not loaded
    for (const auto& [name, set] : state_.sets) saveSet(name, set);
    for (const std::string& name : ruleSetsTargetsFirst(state_)) {
      saveRuleSet(name, state_.ruleSets.find(name)->second);
    }
    const char* blank = "\n";
    for (const auto& [name, set] : state_.ruleSets) {
      if (set.jump.empty()) continue;
      saved_.text += blank;
      saveJump(name, set.jump);
      blank = "";
    }
    if (state_.hasRoot()) saveRoot();
    return std::move(saved_);
  }

 private:
  void comment(const std::string& indent, const std::string& sentence) {
    saved_.text += indent + "# missing: " + sentence + "\n";
    saved_.missing.push_back(sentence);
  }

  /// Takes what a statement makes into the state that the whole text makes.
  void take(State&& state) {
    saved_.made.sets.merge(state.sets);
    saved_.made.ruleSets.merge(state.ruleSets);
  }

  // ---- sets

  void saveSet(const std::string& name, const StateSet& set) {
    saved_.text += '\n';
    const std::string what =
        (set.isAddresses() ? "address set " : "container ") + shownName(name) + ": ";
    StateSet kept = set;
    std::erase_if(kept.addresses, [&](const FWAddress_& address) {
      const std::string reason = memberReason(address, set.addresses.size());
      if (!reason.empty()) comment("", what + shownAddress(address) + " " + reason);
      return !reason.empty();
    });
    std::string statement;
    try {
      statement = setStatement(name, kept);
    } catch (const Unsayable& e) {
      comment("", what + e.what());
      return;
    }
    auto back = made(statement);
    const auto at = back ? back->sets.find(name) : decltype(back->sets.end()){};
    if (!back || at == back->sets.end()) {
      comment("", what + "its text can't be read again");
      return;
    }
    if (!(at->second == kept)) reportSet(what, kept, at->second);
    saved_.text += statement + ";\n";
    take(std::move(*back));
  }

  /// Why an address can't be a member in a text, empty where it can.
  static std::string memberReason(const FWAddress_& address, std::size_t members) {
    if ((address.flags & kAddressNegated) != 0) return "is excluded, which no set can say";
    if (address.type == FW_ADDRESS_ADDRSET) return "is a set in a set, which no text makes";
    if (address.type == FW_ADDRESS_ANY && members > 1) return "stands alone in a text only";
    try {
      addressText(address);
      return {};
    } catch (const Unsayable&) {
      return "has no words in the language";
    }
  }

  void reportSet(const std::string& what, const StateSet& wanted, const StateSet& back) {
    bool named = false;
    for (const FWAddress_& address : wanted.addresses) {
      const auto same = [&](const FWAddress_& other) { return sameRecord(address, other); };
      if (std::any_of(back.addresses.begin(), back.addresses.end(), same)) continue;
      comment("", what + shownAddress(address) + " comes back as the blocks that cover it");
      named = true;
    }
    if (!named) comment("", what + "its members come back otherwise");
  }

  // ---- rule sets

  struct Line {
    const FWRule_* rule;
    StateRules kind;
    std::string text;    // empty when it can't be said
    std::string reason;  // why it can't
  };

  void saveRuleSet(const std::string& name, const StateRuleSet& set) {
    saved_.text += '\n';
    const std::string what = "rule set " + shownName(name);
    std::string head;
    try {
      head = "create ruleset " + quoted(name);
    } catch (const Unsayable& e) {
      comment("", what + ": " + e.what());
      return;
    }
    std::vector<Line> lines = linesOf(set);
    auto back = made(statementOf(head, lines, nullptr));
    if (!back || !holds(*back, name, lines)) {
      for (Line& line : lines) {
        if (line.text.empty()) continue;
        line.reason = lossOf(*line.rule, line.text);
        if (!line.reason.empty()) line.text.clear();
      }
      back = made(statementOf(head, lines, nullptr));
    }
    if (!back) {
      comment("", what + ": its text can't be read again");
      return;
    }
    if (!holds(*back, name, lines))
      comment("", what + ": its rules come back in another order or kind");
    saved_.text += statementOf(head, lines, &what) + ";\n";
    for (const Line& line : lines) {
      if (line.text.empty()) saved_.missing.push_back(missingRule(what, line));
    }
    take(std::move(*back));
  }

  static std::vector<Line> linesOf(const StateRuleSet& set) {
    std::vector<Line> lines;
    lines.reserve(set.count());
    for (const StateRules kind : kStateRuleOrder) {
      for (const FWRule_& rule : set.of(kind)) {
        Line line{&rule, kind, {}, {}};
        try {
          line.text = ruleText(rule);
        } catch (const Unsayable& e) {
          line.reason = e.what();
        }
        lines.push_back(std::move(line));
      }
    }
    return lines;
  }

  static std::string missingRule(const std::string& what, const Line& line) {
    return formatText("rule %u of ", std::uint32_t{line.rule->id}) + what + ": " + line.reason;
  }

  /// The statement with the rules that can be said; with comments for the others where `what` is
  /// given.
  static std::string statementOf(const std::string& head, const std::vector<Line>& lines,
                                 const std::string* what) {
    const bool any = std::any_of(lines.begin(), lines.end(),
                                 [](const Line& line) { return !line.text.empty(); });
    std::string comments;
    std::string text = head;
    if (any) text += " with {\n";
    for (const Line& line : lines) {
      if (!line.text.empty()) text += "    " + line.text + ";\n";
      if (!line.text.empty() || what == nullptr) continue;
      (any ? text : comments) += std::string(any ? "    " : "") +
                                 "# missing: " + missingRule(*what, line) + "\n" +
                                 (any ? "    #   " : "#   ") + shownRule(*line.rule) + "\n";
    }
    if (any) text += "}";
    return comments + text;
  }

  /// Whether the state is a rule set with these rules in this order, and nothing else.
  static bool holds(const State& state, const std::string& name, const std::vector<Line>& lines) {
    const auto at = state.ruleSets.find(name);
    if (at == state.ruleSets.end() || state.ruleSets.size() != 1 || !state.sets.empty()) {
      return false;
    }
    auto line = lines.begin();
    for (const StateRules kind : kStateRuleOrder) {
      for (const FWRule_& rule : at->second.of(kind)) {
        while (line != lines.end() && line->text.empty()) ++line;
        if (line == lines.end() || line->kind != kind || !sameRecord(*line->rule, rule))
          return false;
        ++line;
      }
    }
    return std::all_of(line, lines.end(), [](const Line& rest) { return rest.text.empty(); });
  }

  // ---- jumps and the root

  void saveJump(const std::string& name, const std::string& target) {
    const auto from = saved_.made.ruleSets.find(name);
    try {
      if (from == saved_.made.ruleSets.end()) throw Unsayable("the rule set is missing itself");
      const std::string statement =
          "set jumpto of ruleset " + quoted(name) + " as " + quoted(target);
      const auto back = made("create ruleset " + quoted(name) + "; " + statement);
      if (!back || back->ruleSets.size() != 1 || back->ruleSets.begin()->second.jump != target) {
        throw Unsayable("its text can't be read again");
      }
      saved_.text += statement + ";\n";
      from->second.jump = target;
    } catch (const Unsayable& e) {
      comment("",
              "jump of rule set " + shownName(name) + " to " + shownName(target) + ": " + e.what());
    }
  }

  void saveRoot() {
    saved_.text += '\n';
    try {
      const std::string statement =
          "set root ruleset " + quoted(state_.layer3) + " and " + quoted(state_.layer2);
      const auto back = made(statement);
      if (!back || back->layer3 != state_.layer3 || back->layer2 != state_.layer2) {
        throw Unsayable("its text can't be read again");
      }
      saved_.text += statement + ";\n";
      saved_.made.layer3 = state_.layer3;
      saved_.made.layer2 = state_.layer2;
    } catch (const Unsayable& e) {
      comment("", std::string("the root: ") + e.what());
    }
  }

  const State& state_;
  SavedText saved_;
};

/// Appends a line while there is room for it.
class Report {
 public:
  explicit Report(std::size_t most) : most_(most) {}
  void add(const std::string& line) {
    if (lines_.size() < most_) lines_.push_back(line);
  }
  std::vector<std::string> take() { return std::move(lines_); }

 private:
  std::size_t most_;
  std::vector<std::string> lines_;
};

/// Names of one map that the other one does not have, and those of both whose values differ.
template <typename Map, typename Differ>
void compareMaps(const Map& wanted, const Map& made, const char* what, Report& report,
                 Differ differ) {
  for (const auto& [name, value] : wanted) {
    const auto at = made.find(name);
    if (at == made.end()) {
      report.add(what + shownName(name) + " is not in the text");
    } else if (!(at->second == value)) {
      differ(name, value, at->second);
    }
  }
  for (const auto& [name, value] : made) {
    if (wanted.find(name) == wanted.end())
      report.add(what + shownName(name) + " is in the text only");
  }
}

}  // namespace

SavedText saveText(const State& state) { return Saver(state).run(); }

std::string ruleSetStatement(const std::string& name, const StateRuleSet& set) {
  std::string text = "create ruleset " + quoted(name);
  if (set.count() == 0) return text;
  text += " with {\n";
  for (const StateRules kind : kStateRuleOrder) {
    for (const FWRule_& rule : set.of(kind)) text += "    " + ruleText(rule) + ";\n";
  }
  return text + "}";
}

std::vector<std::string> recordDifferences(const State& wanted, const State& made,
                                           std::size_t most) {
  Report report(most);
  compareMaps(wanted.sets, made.sets, "set ", report,
              [&](const std::string& name, const StateSet&, const StateSet&) {
                report.add("set " + shownName(name) + " has other members");
              });
  compareMaps(wanted.ruleSets, made.ruleSets, "rule set ", report,
              [&](const std::string& name, const StateRuleSet& a, const StateRuleSet& b) {
                const std::string what = "rule set " + shownName(name);
                if (a.jump != b.jump) report.add(what + " jumps to another one");
                for (const StateRules kind : kStateRuleOrder) {
                  if (a.of(kind).size() != b.of(kind).size())
                    report.add(what + " has another number of rules");
                  const std::size_t count = std::min(a.of(kind).size(), b.of(kind).size());
                  for (std::size_t i = 0; i < count; ++i) {
                    if (sameRecord(a.of(kind)[i], b.of(kind)[i])) continue;
                    report.add(formatText("rule %u of ", std::uint32_t{a.of(kind)[i].id}) + what +
                               " has another record");
                  }
                }
              });
  if (wanted.layer3 != made.layer3 || wanted.layer2 != made.layer2) {
    report.add("the root is another one");
  }
  return report.take();
}
