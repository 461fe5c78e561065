#pragma once

/// What a check finds, and the list of all that it can find.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "SourceText.h"

/// A text with an error is not loaded, or would do what nobody means; a warning is loaded.
enum class Severity { error, warning };

/// What can be found. The order is that of the table behind `checkRows`.
enum class Check : unsigned char {
  syntax,
  value,
  strayCharacter,
  ignoredText,
  unknownSet,
  unknownContainer,
  unknownRuleSet,
  unknownJump,
  jumpCircle,
  duplicateId,
  duplicateName,
  generatedSet,
  cutText,
  unusedSet,
  noEffect,
  missingLayer2,
  shadowedRule,
};

/// What is the same for all finds of one kind.
struct CheckRow {
  Check check;
  const char* name;  // stable: scripts name it
  Severity severity;
  const char* summary;
};

/// All of them, in the order of `Check`, and the one of a kind.
std::span<const CheckRow> checkRows();
const CheckRow& rowOf(Check check);

/// A part of a text: bytes `begin` to `end` of one of the files.
struct TextRange {
  std::uint32_t file;
  std::uint32_t begin;
  std::uint32_t end;
};

/// One find. Texts are for people, without a full stop.
struct Diagnostic {
  Check check;
  TextRange range;
  std::string message;
  std::vector<std::string> expected = {};  // what would have done, as it is shown
  std::string help = {};                   // the remedy, where one is known
  std::string relatedMessage = {};         // what stands at `related`, where something does
  TextRange related = {};
  Severity severity = rowOf(check).severity;
};

/// Finds of all files.
class Diagnostics {
 public:
  void add(Diagnostic diagnostic);

  /// In the order of the texts.
  void sort();

  std::span<const Diagnostic> all() const { return all_; }
  std::size_t errors() const { return errors_; }
  std::size_t warnings() const { return all_.size() - errors_; }

 private:
  std::vector<Diagnostic> all_;
  std::size_t errors_ = 0;
};

using SourceTexts = std::vector<SourceText>;
