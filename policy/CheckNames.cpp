#include "CheckNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "CheckShadow.h"
#include "CheckWords.h"
#include "TarnFWCmdList.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kTagLength = 31;
constexpr std::size_t kAgentLength = 31;

/// Words of a statement that are kept: more say nothing about it.
constexpr std::size_t kHeadLength = 16;

const char* kindWord(NameKind kind) {
  switch (kind) {
    case NameKind::set:
      return "set";
    case NameKind::container:
      return "container";
    default:
      return "rule set";
  }
}

Check unknownCheck(NameKind kind) {
  switch (kind) {
    case NameKind::set:
      return Check::unknownSet;
    case NameKind::container:
      return Check::unknownContainer;
    default:
      return Check::unknownRuleSet;
  }
}

std::size_t indexOf(NameKind kind) { return static_cast<std::size_t>(kind); }

/// The words of a rule that say something about names, by their codes; most say nothing.
constexpr auto kSaysNames = [] {
  std::array<bool, TK_NUMBER_RANGE + 1> says{};
  for (const int code : {TK_RULE, TK_FROM, TK_TO, TK_SNAT, TK_DNAT, TK_NUMBER, TK_IPV4_RANGE,
                         TK_IPV6_RANGE, TK_STRING}) {
    says[static_cast<std::size_t>(code)] = true;
  }
  return says;
}();

/// A name as the library keeps it: without quotes, and up to a NUL inside them.
std::string_view nameOf(std::string_view text) {
  if (text.size() >= 2 && (text[0] == '"' || text[0] == '\'')) {
    text = text.substr(1, text.size() - 2);
    text = text.substr(0, text.find('\0'));
  }
  return text;
}

}  // namespace

inline bool NameCheck::saysNames(int code) {
  const auto place = static_cast<std::size_t>(code);
  return place >= kSaysNames.size() || kSaysNames[place];
}

void NameCheck::word(const Token& token) {
  if (inRule_ && !saysNames(token.code)) {
    before_ = token.code;
  } else {
    take(token);
  }
}

void NameCheck::take(const Token& token) {
  Word word{token.code, {file_, token.begin, token.end}, {}};
  if (token.code == TK_STRING) {
    word.text = nameOf(sources_[file_].text(token.begin, token.end));
    const bool tag = before_ == TK_TAG;
    if ((tag && word.text.size() > kTagLength) ||
        (before_ == TK_AGENT && word.text.size() > kAgentLength)) {
      const std::size_t kept = tag ? kTagLength : kAgentLength;
      add(Check::cutText, word.range,
          std::string(tag ? "the tag" : "the agent's name") + " has " +
              std::to_string(word.text.size()) + " bytes, of which " + std::to_string(kept) +
              " are kept: " + quotedWord(word.text.substr(0, kept)));
    }
  }
  if (token.code == TK_RULE && code(0) == TK_CREATE && code(1) == TK_RULESET) {
    beginRule();
    rulePlaces_.push_back(token.begin);
  } else if (inRule_) {
    ruleWord(word);
  } else if (head_.size() < kHeadLength) {
    head_.push_back(word);
  }
  before_ = token.code;
}

void NameCheck::beginRule() {
  inRule_ = true;
  zone_ = 0;
  ruleId_ = 0;
}

void NameCheck::ruleWord(const Word& word) {
  const auto refer = [&](NameKind kind, bool jump) {
    references_.push_back({kind, jump, word.text, word.range});
  };
  switch (word.code) {
    case TK_FROM:
    case TK_TO:
    case TK_SNAT:
    case TK_DNAT:
      zone_ = word.code;
      return;
    case TK_NUMBER: {
      if (before_ != TK_RULE) return;
      const std::string_view text = sources_[file_].text(word.range.begin, word.range.end);
      const bool hexadecimal = text.starts_with("0x");
      std::from_chars(text.data() + (hexadecimal ? 2 : 0), text.data() + text.size(), ruleId_,
                      hexadecimal ? 16 : 10);
      ids_.push_back({ruleId_, word.range});
      return;
    }
    case TK_IPV4_RANGE:
    case TK_IPV6_RANGE: {
      if (zone_ == 0) return;
      const char* const beginning = zone_ == TK_FROM ? "src" : zone_ == TK_TO ? "dst" : "target";
      made_.push_back(beginning + std::to_string(static_cast<std::int32_t>(
                                      static_cast<std::uint32_t>(ruleId_))));
      generated_.push_back({made_.back(), word.range});
      return;
    }
    case TK_STRING:
      break;
    default:
      return;
  }
  switch (before_) {
    case TK_FROM:
    case TK_TO:
    case TK_ADDRSET:
    case TK_NOT:
      refer(NameKind::set, false);
      return;
    case TK_EXTSRCPROFILE:
    case TK_ATTRPROFILE:
      refer(NameKind::container, false);
      return;
    case TK_JUMPTO:
      refer(NameKind::ruleSet, true);
      return;
    default:
      return;
  }
}

void NameCheck::statement(CTarnFWCmdList* commands) {
  if (commands == nullptr) {
    for (const Word& word : head_) mentioned_.insert(word.text);
    for (const Reference& reference : references_) mentioned_.insert(reference.name);
  } else if (!head_.empty()) {
    const std::size_t number = scopeOf(*commands);
    Scope& scope = scopes_[number];
    carryOut(scope, *commands);
    checkIds();
    for (const Reference& reference : references_) use(scope, reference);
    if (code(0) == TK_CREATE && code(1) == TK_RULESET) {
      for (const Reference& reference : references_) {
        if (reference.jump) {
          scope.jumps[head_[2].text].push_back({reference.name, reference.range});
        }
      }
      if (!ids_.empty()) scope.hasRules = true;
    }
    shadows_.statement(number, file_, *commands, rulePlaces_);
  }
  head_.clear();
  before_ = 0;
  inRule_ = false;
  ids_.clear();
  rulePlaces_.clear();
  references_.clear();
  generated_.clear();
}

/// The number of the filter that a statement is for. One without a command is for none: it gets the
/// filter of the statements that name none.
std::size_t NameCheck::scopeOf(const CTarnFWCmdList& commands) {
  std::string key;
  if (held_ == nullptr && commands.size() > 0) {
    const dvs_port_& port = commands.at(commands.size() - 1).currentPort();
    key.assign(reinterpret_cast<const char*>(&port), sizeof port);
    if (key.find_first_not_of('\0') == key.npos) key.clear();
  }
  const auto [place, added] = scopeNumbers_.emplace(std::move(key), scopes_.size());
  if (added) scopes_.emplace_back();
  return place->second;
}

void NameCheck::carryOut(Scope& scope, const CTarnFWCmdList& commands) {
  const Word& last = head_.back();
  const auto after = [&](int word) -> const Word* {
    for (std::size_t i = 0; i + 1 < head_.size(); ++i) {
      if (head_[i].code == word && head_[i + 1].code == TK_STRING) return &head_[i + 1];
    }
    return nullptr;
  };
  switch (code(0)) {
    case TK_CREATE:
      carryOutCreate(scope);
      return;
    case TK_DESTROY:
      if (code(1) == TK_ALL) {
        destroyAll(scope, code(2) == TK_RULESET ? NameKind::ruleSet : NameKind::set);
      } else if (head_.size() > 2) {
        destroy(scope, code(1) == TK_RULESET ? NameKind::ruleSet : NameKind::set, head_[2]);
      }
      return;
    case TK_DELETE:
      if (code(1) == TK_ATTRPROFILE) destroy(scope, NameKind::container, head_[2]);
      break;
    case TK_SET:
      if (code(1) == TK_ROOT) carryOutRoot(scope);
      if (code(1) == TK_JUMPTO && head_.size() > 6) {
        const Word& target = head_[6];
        scope.jumps[head_[4].text].push_back({target.text, target.range});
        use(scope, {NameKind::ruleSet, true, target.text, target.range});
      }
      break;
    case TK_CONFIG:
      carryOutConfig();
      return;
    case TK_DEBUG:
      if (commands.size() == 0) {
        add(Check::noEffect, head_[1].range,
            "the kernel has no half " + quotedWord(head_[1].text) + ", so nothing is set",
            "the halves are \"dp\" and \"cp\"");
      }
      return;
    case TK_DESCRIBE:
      if (code(2) == TK_STRICT) {
        add(Check::noEffect, head_[1].range, "the answer to this question is not printed");
      }
      if (last.code == TK_SEMICOLON && code(3) == TK_LB) {
        add(Check::noEffect, head_[3].range, "the answer to this question is not printed");
      }
      break;
    default:
      break;
  }
  // What else is done with a rule set or a set needs it to be there.
  if (code(0) == TK_SET && code(1) == TK_ROOT) return;
  if (const Word* name = after(TK_RULESET)) requireThere(scope, NameKind::ruleSet, *name);
  if (const Word* name = after(TK_ADDRSET)) requireThere(scope, NameKind::set, *name);
}

void NameCheck::carryOutCreate(Scope& scope) {
  const auto isNamed = [&](std::size_t place) { return code(place) == TK_STRING; };
  if (code(1) == TK_SPOOFGUARD) {
    for (std::size_t i = 2; i + 1 < head_.size(); ++i) {
      if (head_[i].code == TK_ADDRSET) {
        use(scope, {NameKind::set, false, head_[i + 1].text, head_[i + 1].range});
      }
    }
    return;
  }
  createGenerated(scope);
  if (code(1) == TK_RULESET && isNamed(2)) create(scope, NameKind::ruleSet, head_[2]);
  if (code(1) == TK_ADDRSET && isNamed(2)) create(scope, NameKind::set, head_[2]);
  if (code(1) == TK_ATTRPROFILE && isNamed(2)) create(scope, NameKind::container, head_[2]);
  if (code(2) == TK_ATTRSET && isNamed(3)) create(scope, NameKind::set, head_[3]);
  if (code(1) != TK_RULESET) return;
  for (std::size_t i = 3; i + 1 < head_.size(); ++i) {
    if (head_[i].code != TK_JUMPTO) continue;
    add(Check::noEffect, head_[i + 1].range,
        "the jump target of `create ruleset` is not set in the kernel",
        "set it with a statement of its own: set jumpto of ruleset \"" +
            printableText(head_[2].text) + "\" as \"" + printableText(head_[i + 1].text) + "\";");
  }
}

void NameCheck::carryOutRoot(Scope& scope) {
  if (head_.size() < 4) return;
  const Word& name = head_[3];
  if (scope.root) {
    add(Check::noEffect, *scope.root, "another root takes the place of this one", "", &name.range,
        "here");
  }
  scope.root = name.range;
  const bool both = code(4) == TK_AND && code(5) == TK_STRING;
  const auto require = [&](const Word& root) {
    if (!root.text.empty()) requireThere(scope, NameKind::ruleSet, root);
  };
  require(name);
  if (both) {
    require(head_[5]);
  } else {
    scope.rootsOfOne.emplace_back(name.text, name.range);
  }
}

void NameCheck::carryOutConfig() {
  if (code(1) == TK_DEFAULT) return;
  for (std::size_t i = 2; i + 2 < head_.size(); ++i) {
    if (head_[i].code == TK_SAVE && head_[i + 2].code == TK_STRING) {
      add(Check::noEffect, head_[i + 2].range, "the name after `save to` is not used");
    }
  }
  if (channel_) {
    add(Check::noEffect, *channel_, "another channel takes the place of this one", "",
        &head_[1].range, "here");
  }
  channel_ = head_[1].range;
}

void NameCheck::create(Scope& scope, NameKind kind, const Word& name) {
  Object& object = scope.objects[indexOf(kind)][name.text];
  const TextRange earlier = object.created;
  if (object.alive && object.generated) {
    add(Check::generatedSet, name.range,
        "the set " + quotedWord(name.text) + " has the name of one that is made for a range",
        "the later of the two takes the place of the other", &earlier, "the range");
  } else if (object.alive) {
    add(Check::duplicateName, name.range,
        std::string("the ") + kindWord(kind) + " " + quotedWord(name.text) +
            " is created a second time",
        "the second takes the place of the first", &earlier, "created here first");
  }
  object = {name.range, true, false};
}

void NameCheck::createGenerated(Scope& scope) {
  for (const Generated& set : generated_) {
    Object& object = scope.objects[indexOf(NameKind::set)][set.name];
    const TextRange earlier = object.created;
    if (object.alive) {
      add(Check::generatedSet, set.range,
          "the set " + quotedWord(set.name) + " that is made for this range takes the place of " +
              (object.generated ? "that of another rule with this id"
                                : "a set that the text creates"),
          "give rules with ranges ids of their own, and sets other names", &earlier,
          object.generated ? "the other range" : "created here");
    }
    object = {set.range, true, true};
  }
}

bool NameCheck::isHeld(const Scope& scope, NameKind kind, std::string_view name) const {
  if (held_ == nullptr) return false;
  if (kind == NameKind::ruleSet ? scope.allRuleSetsGone : scope.allSetsGone) return false;
  return held_->names[indexOf(kind)].contains(name);
}

bool NameCheck::isCreated(const Scope& scope, NameKind kind, std::string_view name) const {
  if (scope.objects[indexOf(kind)].contains(name) || mentioned_.contains(name)) return true;
  // The kernel keeps containers among the sets.
  return kind == NameKind::container && scope.objects[indexOf(NameKind::set)].contains(name);
}

void NameCheck::requireThere(Scope& scope, NameKind kind, const Word& name) {
  const ByName<Object>& objects = scope.objects[indexOf(kind)];
  const auto place = objects.find(name.text);
  if (place != objects.end() && place->second.alive) return;
  if (place == objects.end() && (isHeld(scope, kind, name.text) || mentioned_.contains(name.text)))
    return;
  addUnknown(scope, {kind, false, name.text, name.range},
             std::string("the ") + kindWord(kind) + " " + quotedWord(name.text) +
                 " is not there when this statement is carried out");
}

void NameCheck::destroy(Scope& scope, NameKind kind, const Word& name) {
  requireThere(scope, kind, name);
  scope.objects[indexOf(kind)][name.text].alive = false;
}

void NameCheck::destroyAll(Scope& scope, NameKind kind) {
  for (auto& [name, object] : scope.objects[indexOf(kind)]) object.alive = false;
  if (kind == NameKind::ruleSet) {
    scope.allRuleSetsGone = true;
    scope.jumps.clear();
    return;
  }
  for (auto& [name, object] : scope.objects[indexOf(NameKind::container)]) object.alive = false;
  scope.allSetsGone = true;
}

void NameCheck::use(Scope& scope, const Reference& reference) {
  Uses& uses = scope.uses[indexOf(reference.kind)][reference.name];
  if (uses.count++ == 0) uses.first = reference.range;
  uses.jump = reference.jump;
}

void NameCheck::checkIds() {
  const auto byId = [](const RuleId& a, const RuleId& b) { return a.id < b.id; };
  if (!std::is_sorted(ids_.begin(), ids_.end(), byId)) {
    std::stable_sort(ids_.begin(), ids_.end(), byId);
  }
  for (std::size_t i = 1; i < ids_.size(); ++i) {
    if (ids_[i].id != ids_[i - 1].id) continue;
    add(Check::duplicateId, ids_[i].range,
        "the id " + std::to_string(ids_[i].id) + " is used twice in this rule set", "",
        &ids_[i - 1].range, "used here first");
  }
}

void NameCheck::finish() {
  for (const Scope& scope : scopes_) {
    finishUses(scope);
    finishRoots(scope);
    finishUnused(scope);
    finishCircles(scope);
  }
}

void NameCheck::finishUses(const Scope& scope) {
  for (const NameKind kind : {NameKind::set, NameKind::container, NameKind::ruleSet}) {
    for (const auto& [name, uses] : scope.uses[indexOf(kind)]) {
      if (isCreated(scope, kind, name) || isHeld(scope, kind, name)) continue;
      std::string message =
          uses.jump
              ? "the jump leads to the rule set " + quotedWord(name) + ", which nothing creates"
              : std::string("nothing creates the ") + kindWord(kind) + " " + quotedWord(name);
      if (uses.count > 1) message += " (used in " + std::to_string(uses.count) + " places)";
      addUnknown(scope, {kind, uses.jump, name, uses.first}, std::move(message));
    }
  }
}

void NameCheck::finishRoots(const Scope& scope) {
  for (const auto& [name, range] : scope.rootsOfOne) {
    const std::string companion = std::string(name) + "_L2";
    if (isCreated(scope, NameKind::ruleSet, companion) ||
        isHeld(scope, NameKind::ruleSet, companion)) {
      continue;
    }
    add(Check::missingLayer2, range,
        "the root's layer-2 rule set " + quotedWord(companion) + " is not there",
        "create it, or name both: set root ruleset \"" + printableText(name) + "\" and \"\";");
  }
}

void NameCheck::finishUnused(const Scope& scope) {
  // A text of sets alone is for rules that stand elsewhere.
  if (!scope.hasRules) return;
  for (const NameKind kind : {NameKind::set, NameKind::container}) {
    for (const auto& [name, object] : scope.objects[indexOf(kind)]) {
      const bool used =
          scope.uses[indexOf(kind)].contains(name) || mentioned_.contains(name) ||
          (kind == NameKind::set && scope.uses[indexOf(NameKind::container)].contains(name));
      if (used || !object.alive || object.generated) continue;
      add(Check::unusedSet, object.created,
          std::string("nothing uses the ") + kindWord(kind) + " " + quotedWord(name));
    }
  }
}

/// Follows jumps from each rule set; each is gone through once.
void NameCheck::finishCircles(const Scope& scope) {
  struct Step {
    std::string_view name;
    std::size_t next;
  };
  ByName<bool> seen;  // true while the set is on the way
  std::set<std::string_view> starts;
  for (const auto& [name, jumps] : scope.jumps) starts.insert(name);
  for (const std::string_view start : starts) {
    if (seen.contains(start)) continue;
    std::vector<Step> way = {{start, 0}};
    seen[start] = true;
    while (!way.empty()) {
      const std::string_view name = way.back().name;
      const auto jumps = scope.jumps.find(name);
      if (jumps == scope.jumps.end() || way.back().next == jumps->second.size()) {
        seen[name] = false;
        way.pop_back();
        continue;
      }
      const Jump& jump = jumps->second[way.back().next++];
      const auto place = seen.find(jump.to);
      if (place == seen.end()) {
        seen[jump.to] = true;
        way.push_back({jump.to, 0});
      } else if (place->second) {
        std::string circle;
        bool inside = false;
        for (const Step& step : way) {
          inside = inside || step.name == jump.to;
          if (inside) circle += quotedWord(step.name) + ", ";
        }
        add(Check::jumpCircle, jump.range,
            "the jumps lead in a circle: " + circle + quotedWord(jump.to));
      }
    }
  }
}

void NameCheck::add(Check check, const TextRange& range, std::string message, std::string help,
                    const TextRange* related, const char* relatedMessage) {
  Diagnostic diagnostic{
      .check = check, .range = range, .message = std::move(message), .help = std::move(help)};
  if (related != nullptr) {
    diagnostic.related = *related;
    diagnostic.relatedMessage = relatedMessage;
  }
  diagnostics_.add(std::move(diagnostic));
}

/// What is not in the texts may be in the filter. Where that has been asked, it is an error.
void NameCheck::addUnknown(const Scope& scope, const Reference& reference, std::string message) {
  if (held_ != nullptr) message += ", and the filter does not hold it";
  Diagnostic diagnostic{.check = reference.jump ? Check::unknownJump : unknownCheck(reference.kind),
                        .range = reference.range,
                        .message = std::move(message)};
  if (held_ != nullptr) diagnostic.severity = Severity::error;
  if (const std::string nearest = nearestName(scope, reference); !nearest.empty()) {
    diagnostic.help = "did you mean " + quotedWord(nearest) + "?";
  } else if (held_ == nullptr) {
    diagnostic.help = "create it, or let `-f FILTER` ask whether the filter holds it";
  } else {
    diagnostic.help = "create it";
  }
  diagnostics_.add(std::move(diagnostic));
}

/// The name of this kind that was most likely meant, or nothing. It is looked for among so many
/// names, and for so many.
std::string NameCheck::nearestName(const Scope& scope, const Reference& reference) {
  constexpr std::size_t kMostUnknown = 100;
  constexpr std::size_t kMostCompared = 1000;
  if (++unknown_ > kMostUnknown) return {};
  Nearest nearest(reference.name);
  std::size_t compared = 0;
  for (const auto& [name, object] : scope.objects[indexOf(reference.kind)]) {
    if (++compared > kMostCompared) break;
    // What is there under this very name comes too late, or is gone.
    if (!object.generated && name != reference.name) nearest.compare(name);
  }
  if (held_ != nullptr) {
    for (const std::string& name : held_->names[indexOf(reference.kind)]) {
      if (++compared > kMostCompared) break;
      if (name != reference.name) nearest.compare(name);
    }
  }
  return std::string(nearest.text());
}
