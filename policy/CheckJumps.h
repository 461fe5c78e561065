#pragma once

/// The jumps between the rule sets of one filter, and the circles in which they lead.

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Diagnostic.h"

/// A name where it stands in a text.
struct PlacedName {
  std::string_view text;
  TextRange range;
};

/// Statements change it one after the other; a circle is what is left of one after the last.
class JumpCheck {
 public:
  /// The rules of the rule set jump to these, and to no others any more.
  void setOfRules(std::string_view from, std::vector<PlacedName> targets);

  /// The jump of the rule set itself.
  void set(std::string_view from, const PlacedName& target);
  void clear(std::string_view from);

  /// The rule set is gone, or all of them are.
  void destroy(std::string_view from);
  void destroyAll();

  /// Adds a find for each jump that closes a circle.
  void finish(Diagnostics& diagnostics) const;

 private:
  struct Jumps {
    const PlacedName* at(std::size_t number) const;

    std::vector<PlacedName> ofRules;
    std::optional<PlacedName> own;
  };
  /// A rule set on the way from jump to jump.
  struct Step {
    std::string_view name;
    std::size_t next = 0;  // the jump that is to be followed
  };

  static std::string circleText(const std::vector<Step>& way, std::size_t begin);

  std::unordered_map<std::string_view, Jumps> jumps_;
};
