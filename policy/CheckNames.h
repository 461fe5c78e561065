#pragma once

/// The names in a policy: finds in each statement what it creates, destroys and refers to, and
/// hands that to the scope of its filter. A reader of the text calls it word by word; it needs no
/// more of a statement than its words, and of its commands the filter that they are for.

#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "CheckParse.h"
#include "CheckScope.h"
#include "Diagnostic.h"

class ShadowCheck;

/// Reads the names of all texts.
class NameCheck final : public TextListener {
 public:
  /// With `held` all statements are for the filter that holds these names; else each is for the
  /// filter that it names.
  NameCheck(const SourceTexts& sources, const HeldNames* held, ShadowCheck& shadows,
            Diagnostics& diagnostics)
      : sources_(sources), held_(held), shadows_(shadows), diagnostics_(diagnostics) {}

  /// The words come from this file from now on.
  void beginFile(std::uint32_t file) { file_ = file; }

  void word(const Token& token) override;
  void statement(TarnFirewall::CTarnFWCmdList* commands) override;

  /// After the last text: what can be said of all of it.
  void finish();

 private:
  struct Word {
    PlacedName name() const { return {text, range}; }

    int code;
    TextRange range;
    std::string_view text;  // of names without their quotes
  };
  struct RuleId {
    std::uint64_t id;
    TextRange range;
  };

  static bool saysNames(int code);
  void take(const Token& token);
  void ruleWord(const Word& word);
  void beginRule();
  std::size_t scopeOf(const TarnFirewall::CTarnFWCmdList& commands);
  void carryOut(NameScope& scope, const TarnFirewall::CTarnFWCmdList& commands);
  void carryOutCreate(NameScope& scope);
  void carryOutClear(NameScope& scope);
  void carryOutRoot(NameScope& scope);
  void carryOutJump(NameScope& scope);
  void carryOutConfig();
  void requireNames(NameScope& scope);
  void checkCut(const Word& word);
  void checkIds();

  void addNoEffect(const TextRange& range, std::string message, std::string help = {});
  int code(std::size_t place) const { return place < head_.size() ? head_[place].code : 0; }

  const SourceTexts& sources_;
  const HeldNames* held_;
  ShadowCheck& shadows_;
  Diagnostics& diagnostics_;
  std::uint32_t file_ = 0;

  // The statement that is being read.
  std::vector<Word> head_;  // its first words, outside of rules
  int before_ = 0;          // code of the word before
  bool inRule_ = false;
  int zone_ = 0;  // FROM, TO, SNAT or DNAT: what an address in the rule is
  std::uint64_t ruleId_ = 0;
  std::vector<RuleId> ids_;
  std::vector<std::uint32_t> rulePlaces_;
  std::vector<NameReference> references_;  // jumps are those of rule sets
  std::vector<PlacedName> generated_;

  std::deque<std::string> made_;  // names that stand in no text
  std::unordered_map<std::string, std::size_t> scopeNumbers_;
  std::deque<NameScope> scopes_;
  std::set<std::string_view> mentioned_;  // in statements with mistakes
  std::optional<TextRange> channel_;
};
