#include "CheckNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "CheckShadow.h"
#include "ShownText.h"
#include "TarnFWCmdList.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kTagLength = 31;
constexpr std::size_t kAgentLength = 31;

/// Words of a statement that are kept: more say nothing about it.
constexpr std::size_t kHeadLength = 16;

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
    checkCut(word);
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

/// Reports a text of which the library keeps the beginning only.
void NameCheck::checkCut(const Word& word) {
  const bool tag = before_ == TK_TAG;
  if (!tag && before_ != TK_AGENT) return;
  const std::size_t kept = tag ? kTagLength : kAgentLength;
  if (word.text.size() <= kept) return;
  diagnostics_.add({.check = Check::cutText,
                    .range = word.range,
                    .message = std::string(tag ? "the tag" : "the agent's name") + " has " +
                               std::to_string(word.text.size()) + " bytes, of which " +
                               std::to_string(kept) +
                               " are kept: " + quotedWord(word.text.substr(0, kept))});
}

void NameCheck::beginRule() {
  inRule_ = true;
  zone_ = 0;
  ruleId_ = 0;
}

void NameCheck::ruleWord(const Word& word) {
  const auto refer = [&](NameKind kind) { references_.push_back({kind, word.name()}); };
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
      refer(NameKind::set);
      return;
    case TK_EXTSRCPROFILE:
    case TK_ATTRPROFILE:
      refer(NameKind::container);
      return;
    case TK_JUMPTO:
      refer(NameKind::ruleSet);
      return;
    default:
      return;
  }
}

void NameCheck::statement(CTarnFWCmdList* commands) {
  if (commands == nullptr) {
    for (const Word& word : head_) mentioned_.insert(word.text);
    for (const NameReference& reference : references_) mentioned_.insert(reference.name.text);
  } else if (!head_.empty()) {
    const std::size_t number = scopeOf(*commands);
    carryOut(scopes_[number], *commands);
    checkIds();
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
  if (added) scopes_.emplace_back(held_, mentioned_, diagnostics_);
  return place->second;
}

void NameCheck::carryOut(NameScope& scope, const CTarnFWCmdList& commands) {
  switch (code(0)) {
    case TK_CREATE:
      carryOutCreate(scope);
      return;
    case TK_DESTROY:
      if (code(1) == TK_ALL) {
        scope.destroyAll(code(2) == TK_RULESET ? NameKind::ruleSet : NameKind::set, head_[1].range);
      } else if (head_.size() > 2) {
        scope.destroy(code(1) == TK_RULESET ? NameKind::ruleSet : NameKind::set, head_[2].name());
      }
      return;
    case TK_DELETE:
      if (code(1) == TK_ATTRPROFILE) scope.destroy(NameKind::container, head_[2].name());
      break;
    case TK_CLEAR:
      carryOutClear(scope);
      break;
    case TK_SET:
      if (code(1) == TK_ROOT) return carryOutRoot(scope);
      if (code(1) == TK_JUMPTO) carryOutJump(scope);
      break;
    case TK_CONFIG:
      carryOutConfig();
      return;
    case TK_DEBUG:
      if (commands.size() != 0) return;
      addNoEffect(head_[1].range,
                  "the kernel has no half " + quotedWord(head_[1].text) + ", so nothing is set",
                  "the halves are \"dp\" and \"cp\"");
      return;
    case TK_DESCRIBE:
      if (code(2) == TK_STRICT) {
        addNoEffect(head_[1].range, "the answer to this question is not printed");
      }
      break;
    default:
      break;
  }
  requireNames(scope);
}

/// What is done with a rule set or a set needs it to be there.
void NameCheck::requireNames(NameScope& scope) {
  const auto require = [&](int word, NameKind kind) {
    for (std::size_t i = 0; i + 1 < head_.size(); ++i) {
      if (head_[i].code != word || head_[i + 1].code != TK_STRING) continue;
      scope.requireThere(kind, head_[i + 1].name());
      return;
    }
  };
  require(TK_RULESET, NameKind::ruleSet);
  require(TK_ADDRSET, NameKind::set);
}

void NameCheck::carryOutCreate(NameScope& scope) {
  if (code(1) == TK_SPOOFGUARD) {
    for (std::size_t i = 2; i + 1 < head_.size(); ++i) {
      if (head_[i].code == TK_ADDRSET) scope.use(NameKind::set, head_[i + 1].name());
    }
    return;
  }
  for (const PlacedName& name : generated_) scope.createGenerated(name);
  const auto create = [&](std::size_t place, NameKind kind) {
    if (code(place) == TK_STRING) scope.create(kind, head_[place].name());
  };
  if (code(1) == TK_ADDRSET) create(2, NameKind::set);
  if (code(1) == TK_ATTRPROFILE) create(2, NameKind::container);
  if (code(2) == TK_ATTRSET) create(3, NameKind::set);
  if (code(1) != TK_RULESET) return;
  create(2, NameKind::ruleSet);
  if (!ids_.empty()) scope.addRules();
  std::vector<PlacedName> jumps;
  for (const NameReference& reference : references_) {
    if (reference.kind != NameKind::ruleSet) {
      scope.use(reference.kind, reference.name);
      continue;
    }
    scope.useAsJump(reference.name);
    jumps.push_back(reference.name);
  }
  scope.jumps().setOfRules(head_[2].text, std::move(jumps));
  for (const PlacedName& name : generated_) references_.push_back({NameKind::set, name});
  scope.setReferences(head_[2].text, std::exchange(references_, {}));
  for (std::size_t i = 3; i + 1 < head_.size(); ++i) {
    if (head_[i].code != TK_JUMPTO) continue;
    addNoEffect(head_[i + 1].range, "the jump target of `create ruleset` is not set in the kernel",
                "set it with a statement of its own: set jumpto of ruleset \"" +
                    printableText(head_[2].text) + "\" as \"" + printableText(head_[i + 1].text) +
                    "\";");
  }
}

void NameCheck::carryOutClear(NameScope& scope) {
  if (code(1) == TK_ROOT) scope.clearRoot();
  if (code(3) != TK_RULESET || code(4) != TK_STRING) return;
  if (code(1) == TK_JUMPTO) scope.jumps().clear(head_[4].text);
  if (code(1) != TK_RULE) return;
  scope.jumps().setOfRules(head_[4].text, {});
  scope.setReferences(head_[4].text, {});
}

void NameCheck::carryOutRoot(NameScope& scope) {
  if (head_.size() < 4) return;
  const bool both = code(4) == TK_AND && code(5) == TK_STRING;
  scope.setRoot(head_[3].name(), !both);
  const auto require = [&](const Word& root) {
    if (!root.text.empty()) scope.requireThere(NameKind::ruleSet, root.name());
  };
  require(head_[3]);
  if (both) require(head_[5]);
}

void NameCheck::carryOutJump(NameScope& scope) {
  if (head_.size() < 7) return;
  scope.jumps().set(head_[4].text, head_[6].name());
  scope.useAsJump(head_[6].name());
}

void NameCheck::carryOutConfig() {
  if (code(1) == TK_DEFAULT) return;
  for (std::size_t i = 2; i + 2 < head_.size(); ++i) {
    if (head_[i].code == TK_SAVE && head_[i + 2].code == TK_STRING) {
      addNoEffect(head_[i + 2].range, "the name after `save to` is not used");
    }
  }
  if (channel_) {
    diagnostics_.add({.check = Check::noEffect,
                      .range = *channel_,
                      .message = "another channel takes the place of this one",
                      .relatedMessage = "here",
                      .related = head_[1].range});
  }
  channel_ = head_[1].range;
}

void NameCheck::checkIds() {
  const auto byId = [](const RuleId& a, const RuleId& b) { return a.id < b.id; };
  if (!std::is_sorted(ids_.begin(), ids_.end(), byId)) {
    std::stable_sort(ids_.begin(), ids_.end(), byId);
  }
  for (std::size_t i = 1; i < ids_.size(); ++i) {
    if (ids_[i].id != ids_[i - 1].id) continue;
    diagnostics_.add(
        {.check = Check::duplicateId,
         .range = ids_[i].range,
         .message = "the id " + std::to_string(ids_[i].id) + " is used twice in this rule set",
         .relatedMessage = "used here first",
         .related = ids_[i - 1].range});
  }
}

void NameCheck::finish() {
  for (NameScope& scope : scopes_) scope.finish();
}

void NameCheck::addNoEffect(const TextRange& range, std::string message, std::string help) {
  diagnostics_.add({.check = Check::noEffect,
                    .range = range,
                    .message = std::move(message),
                    .help = std::move(help)});
}
