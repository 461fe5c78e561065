#pragma once

/// What the texts do with the names of one filter: what is created, destroyed and used, and what
/// that leaves to be said.

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "CheckJumps.h"
#include "Diagnostic.h"

/// What a name can be of.
enum class NameKind : unsigned char { set, container, ruleSet };
inline constexpr std::size_t kNameKinds = 3;

/// A name that a rule refers to.
struct NameReference {
  NameKind kind;
  PlacedName name;
};

/// Names that a filter holds before the texts are loaded.
struct HeldNames {
  std::set<std::string, std::less<>> names[kNameKinds];
};

/// Statements call it one after the other. The names are views of texts that outlive it.
class NameScope {
 public:
  /// `held`: what the filter is known to hold, or null. `mentioned`: names that are taken for
  /// right.
  NameScope(const HeldNames* held, const std::set<std::string_view>& mentioned,
            Diagnostics& diagnostics)
      : held_(held), mentioned_(mentioned), diagnostics_(diagnostics) {}

  void create(NameKind kind, const PlacedName& name);

  /// The set that a range of a rule becomes.
  void createGenerated(const PlacedName& name);

  /// Reports a name that is not there, as `requireThere` does.
  void destroy(NameKind kind, const PlacedName& name);

  /// Sets go together with containers. `place`: where it is said.
  void destroyAll(NameKind kind, const TextRange& place);

  /// Reports a name that is not there at this point of the texts.
  void requireThere(NameKind kind, const PlacedName& name);

  /// A name may be used before it is created.
  void use(NameKind kind, const PlacedName& name) { count(kind, name, false); }
  void useAsJump(const PlacedName& name) { count(NameKind::ruleSet, name, true); }

  /// The rules of the rule set refer to these, and to no others any more.
  void setReferences(std::string_view ruleSet, std::vector<NameReference> references);

  /// `ofOne`: the layer-2 rule set follows from this name.
  void setRoot(const PlacedName& name, bool ofOne);
  void clearRoot() { root_.reset(); }

  void addRules() { hasRules_ = true; }
  JumpCheck& jumps() { return jumps_; }

  /// After the last text: reports what can be said of all of it.
  void finish();

 private:
  /// Sets and containers share one space of names.
  static constexpr std::size_t kSpaces = 2;
  static std::size_t spaceOf(NameKind kind) { return kind == NameKind::ruleSet ? 1 : 0; }

  struct Object {
    TextRange range;      // of the last statement that created it
    TextRange destroyed;  // of the last statement that destroyed it by its name
    NameKind kind;
    bool wasCreated[kNameKinds];  // as what it ever was
    bool exists;                  // unless all have been destroyed since `time`
    bool isGenerated;
    std::size_t time;
  };
  struct Uses {
    TextRange first;
    std::size_t count = 0;
    bool jump = false;
  };
  struct Root {
    PlacedName name;
    bool ofOne;
  };
  template <typename Value>
  using ByName = std::unordered_map<std::string_view, Value>;

  void count(NameKind kind, const PlacedName& name, bool jump);
  const Object* find(NameKind kind, std::string_view name) const;
  bool isAlive(const Object& object) const;
  bool isHeld(NameKind kind, std::string_view name) const;
  bool isCreated(NameKind kind, std::string_view name) const;
  bool isThere(NameKind kind, std::string_view name) const;
  bool isUsed(NameKind kind, std::string_view name) const;
  void replace(const Object& earlier, NameKind kind, const PlacedName& name);
  void finishUses();
  void finishDestroyed();
  void finishRoot();
  void finishUnused();
  void addUnknown(Check check, NameKind kind, const PlacedName& name, std::string message);
  std::string nearestName(NameKind kind, std::string_view name);

  const HeldNames* held_;
  const std::set<std::string_view>& mentioned_;
  Diagnostics& diagnostics_;

  ByName<Object> objects_[kSpaces];
  std::size_t time_ = 0;               // counts what is created
  std::size_t allGone_[kSpaces] = {};  // when all were destroyed the last time
  bool anyGone_[kSpaces] = {};         // whether they ever were, and what the filter held with them
  TextRange allGoneAt_[kSpaces] = {};  // the statement that did it the last time
  bool setsGone_ = false;              // whether any set was ever destroyed
  ByName<Uses> uses_[kNameKinds];
  ByName<std::vector<NameReference>> references_;  // of rule sets that are there
  JumpCheck jumps_;
  std::optional<Root> root_;
  bool hasRules_ = false;
  std::size_t unknown_ = 0;  // names for which a nearer one was looked for
};
