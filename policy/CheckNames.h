#pragma once

/// The names in a policy: what creates them, what refers to them, and what that leaves to be said.
/// A reader of the text calls it word by word; it needs no more of a statement than its words, and
/// of its commands the filter that they are for.

#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "CheckParse.h"
#include "Diagnostic.h"

class ShadowCheck;

/// What a name can be of.
enum class NameKind : unsigned char { set, container, ruleSet };
inline constexpr std::size_t kNameKinds = 3;

/// Names that a filter holds before the texts are loaded.
struct HeldNames {
  std::set<std::string, std::less<>> names[kNameKinds];
};

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
    int code;
    TextRange range;
    std::string_view text;  // of names without their quotes
  };
  struct Reference {
    NameKind kind;
    bool jump;
    std::string_view name;
    TextRange range;
  };
  struct Object {
    TextRange created;
    bool alive = false;
    bool generated = false;
  };
  struct Uses {
    TextRange first;
    std::size_t count = 0;
    bool jump = false;
  };
  struct Jump {
    std::string_view to;
    TextRange range;
  };
  template <typename Value>
  using ByName = std::unordered_map<std::string_view, Value>;

  /// What the texts say of one filter.
  struct Scope {
    ByName<Object> objects[kNameKinds];
    ByName<Uses> uses[kNameKinds];
    ByName<std::vector<Jump>> jumps;
    std::vector<std::pair<std::string_view, TextRange>> rootsOfOne;
    std::optional<TextRange> root;
    bool hasRules = false;
    bool allSetsGone = false, allRuleSetsGone = false;  // of those that the filter held
  };
  struct RuleId {
    std::uint64_t id;
    TextRange range;
  };
  struct Generated {
    std::string_view name;
    TextRange range;
  };

  static bool saysNames(int code);
  void take(const Token& token);
  void ruleWord(const Word& word);
  void beginRule();
  std::size_t scopeOf(const TarnFirewall::CTarnFWCmdList& commands);
  void carryOut(Scope& scope, const TarnFirewall::CTarnFWCmdList& commands);
  void carryOutCreate(Scope& scope);
  void carryOutRoot(Scope& scope);
  void carryOutConfig();
  void create(Scope& scope, NameKind kind, const Word& name);
  void createGenerated(Scope& scope);
  void destroy(Scope& scope, NameKind kind, const Word& name);
  void destroyAll(Scope& scope, NameKind kind);
  void requireThere(Scope& scope, NameKind kind, const Word& name);
  void checkIds();
  void use(Scope& scope, const Reference& reference);

  bool isHeld(const Scope& scope, NameKind kind, std::string_view name) const;
  bool isCreated(const Scope& scope, NameKind kind, std::string_view name) const;
  void finishUses(const Scope& scope);
  void finishRoots(const Scope& scope);
  void finishUnused(const Scope& scope);
  void finishCircles(const Scope& scope);

  void add(Check check, const TextRange& range, std::string message, std::string help = {},
           const TextRange* related = nullptr, const char* relatedMessage = "");
  void addUnknown(const Scope& scope, const Reference& reference, std::string message);
  std::string nearestName(const Scope& scope, const Reference& reference);
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
  std::vector<Reference> references_;
  std::vector<Generated> generated_;

  std::deque<std::string> made_;  // names that stand in no text
  std::unordered_map<std::string, std::size_t> scopeNumbers_;
  std::deque<Scope> scopes_;
  std::set<std::string_view> mentioned_;  // in statements with mistakes
  std::size_t unknown_ = 0;               // names for which a nearer one was looked for
  std::optional<TextRange> channel_;
};
