#include "CheckScope.h"

#include <tuple>

#include "CheckWords.h"
#include "ShownText.h"

namespace {

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

std::string kindAndName(NameKind kind, std::string_view name) {
  return std::string(kindWord(kind)) + " " + quotedWord(name);
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

bool isBefore(const TextRange& a, const TextRange& b) {
  return std::tie(a.file, a.begin) < std::tie(b.file, b.begin);
}

std::size_t indexOf(NameKind kind) { return static_cast<std::size_t>(kind); }

}  // namespace

void NameScope::create(NameKind kind, const PlacedName& name) {
  const auto [place, isNew] = objects_[spaceOf(kind)].try_emplace(name.text);
  Object& object = place->second;
  if (!isNew && isAlive(object)) replace(object, kind, name);
  object.range = name.range;
  object.kind = kind;
  object.wasCreated[indexOf(kind)] = true;
  object.exists = true;
  object.isGenerated = false;
  object.time = ++time_;
}

/// Something takes the place of what has its name.
void NameScope::replace(const Object& earlier, NameKind kind, const PlacedName& name) {
  if (earlier.isGenerated) {
    diagnostics_.add({.check = Check::generatedSet,
                      .range = name.range,
                      .message = "the " + kindAndName(kind, name.text) +
                                 " has the name of one that is made for a range",
                      .help = "the later of the two takes the place of the other",
                      .relatedMessage = "the range",
                      .related = earlier.range});
    return;
  }
  const bool alike = earlier.kind == kind;
  diagnostics_.add(
      {.check = Check::duplicateName,
       .range = name.range,
       .message = "the " + kindAndName(kind, name.text) +
                  (alike ? std::string(" is created a second time")
                         : std::string(" has the name of a ") + kindWord(earlier.kind)),
       .help = alike ? "the second takes the place of the first"
                     : "sets and containers share their names: the second takes the place of the "
                       "first",
       .relatedMessage = "created here first",
       .related = earlier.range});
}

void NameScope::createGenerated(const PlacedName& name) {
  const auto [place, isNew] = objects_[spaceOf(NameKind::set)].try_emplace(name.text);
  Object& object = place->second;
  if (!isNew && isAlive(object)) {
    diagnostics_.add(
        {.check = Check::generatedSet,
         .range = name.range,
         .message = "the set " + quotedWord(name.text) +
                    " that is made for this range takes the place of " +
                    (object.isGenerated
                         ? std::string("that of another rule with this id")
                         : std::string("a ") + kindWord(object.kind) + " that the text creates"),
         .help = "give rules with ranges ids of their own, and sets other names",
         .relatedMessage = object.isGenerated ? "the other range" : "created here",
         .related = object.range});
  }
  object.range = name.range;
  object.kind = NameKind::set;
  object.wasCreated[indexOf(NameKind::set)] = true;
  object.exists = object.isGenerated = true;
  object.time = ++time_;
}

void NameScope::destroy(NameKind kind, const PlacedName& name) {
  requireThere(kind, name);
  Object& object = objects_[spaceOf(kind)][name.text];
  object.exists = false;
  object.destroyed = name.range;
  if (kind == NameKind::ruleSet) {
    jumps_.destroy(name.text);
    references_.erase(name.text);
  } else {
    setsGone_ = true;
  }
}

void NameScope::destroyAll(NameKind kind, const TextRange& place) {
  const std::size_t space = spaceOf(kind);
  allGone_[space] = time_;
  anyGone_[space] = true;
  allGoneAt_[space] = place;
  if (kind == NameKind::ruleSet) {
    jumps_.destroyAll();
    if (!references_.empty()) references_ = {};
    clearRoot();
  } else {
    setsGone_ = true;
  }
}

void NameScope::setReferences(std::string_view ruleSet, std::vector<NameReference> references) {
  const auto place = references_.find(ruleSet);
  if (place != references_.end()) {
    place->second = std::move(references);
  } else if (!references.empty()) {
    references_.emplace(ruleSet, std::move(references));
  }
}

void NameScope::requireThere(NameKind kind, const PlacedName& name) {
  if (isThere(kind, name.text)) return;
  addUnknown(
      unknownCheck(kind), kind, name,
      "the " + kindAndName(kind, name.text) + " is not there when this statement is carried out");
}

void NameScope::count(NameKind kind, const PlacedName& name, bool jump) {
  Uses& uses = uses_[indexOf(kind)][name.text];
  if (uses.count++ == 0) uses.first = name.range;
  uses.jump = jump;
}

void NameScope::setRoot(const PlacedName& name, bool ofOne) {
  if (root_) {
    diagnostics_.add({.check = Check::noEffect,
                      .range = root_->name.range,
                      .message = "another root takes the place of this one",
                      .relatedMessage = "here",
                      .related = name.range});
  }
  root_ = {name, ofOne};
}

const NameScope::Object* NameScope::find(NameKind kind, std::string_view name) const {
  const ByName<Object>& objects = objects_[spaceOf(kind)];
  const auto place = objects.find(name);
  return place == objects.end() ? nullptr : &place->second;
}

bool NameScope::isAlive(const Object& object) const {
  return object.exists && object.time > allGone_[spaceOf(object.kind)];
}

/// Whether the filter holds it, and no statement has destroyed it.
bool NameScope::isHeld(NameKind kind, std::string_view name) const {
  return held_ != nullptr && !anyGone_[spaceOf(kind)] && find(kind, name) == nullptr &&
         held_->names[indexOf(kind)].contains(name);
}

/// Whether the texts create it somewhere. A container may be called a set.
bool NameScope::isCreated(NameKind kind, std::string_view name) const {
  if (mentioned_.contains(name)) return true;
  const Object* const object = find(kind, name);
  if (object == nullptr) return false;
  return object->wasCreated[indexOf(kind)] ||
         (kind == NameKind::container && object->wasCreated[indexOf(NameKind::set)]);
}

bool NameScope::isThere(NameKind kind, std::string_view name) const {
  const Object* const object = find(kind, name);
  if (object != nullptr) return isAlive(*object);
  return isHeld(kind, name) || mentioned_.contains(name);
}

bool NameScope::isUsed(NameKind kind, std::string_view name) const {
  return uses_[indexOf(kind)].contains(name) || mentioned_.contains(name) ||
         (kind == NameKind::set && uses_[indexOf(NameKind::container)].contains(name));
}

void NameScope::finish() {
  finishUses();
  finishDestroyed();
  finishRoot();
  finishUnused();
  jumps_.finish(diagnostics_);
}

void NameScope::finishUses() {
  for (const NameKind kind : {NameKind::set, NameKind::container, NameKind::ruleSet}) {
    for (const auto& [name, uses] : uses_[indexOf(kind)]) {
      if (isCreated(kind, name) || isHeld(kind, name)) continue;
      std::string message = uses.jump ? "the jump leads to the rule set " + quotedWord(name) +
                                            ", which nothing creates"
                                      : "nothing creates the " + kindAndName(kind, name);
      if (uses.count > 1) message += " (used in " + std::to_string(uses.count) + " places)";
      addUnknown(uses.jump ? Check::unknownJump : unknownCheck(kind), kind, {name, uses.first},
                 std::move(message));
    }
  }
}

/// Sets that a text creates and destroys, while rules that are there at its end refer to them.
void NameScope::finishDestroyed() {
  if (!setsGone_) return;
  ByName<Uses> left[kNameKinds];
  for (const auto& [ruleSet, references] : references_) {
    if (mentioned_.contains(ruleSet)) continue;  // nobody knows what is left of it
    for (const auto& [kind, name] : references) {
      if (kind == NameKind::ruleSet || !isCreated(kind, name.text) || isThere(kind, name.text) ||
          mentioned_.contains(name.text)) {
        continue;
      }
      Uses& uses = left[indexOf(kind)][name.text];
      if (uses.count++ == 0 || isBefore(name.range, uses.first)) uses.first = name.range;
    }
  }
  for (const NameKind kind : {NameKind::set, NameKind::container}) {
    for (const auto& [name, uses] : left[indexOf(kind)]) {
      const Object& object = *find(kind, name);
      std::string message =
          "the " + kindAndName(kind, name) + " is destroyed, but this rule still uses it";
      if (uses.count > 1) message += " (used in " + std::to_string(uses.count) + " places)";
      diagnostics_.add(
          {.check = unknownCheck(kind),
           .range = uses.first,
           .message = std::move(message),
           .help = "destroy what uses it first, or keep it",
           .relatedMessage = "destroyed here",
           .related = object.exists ? allGoneAt_[spaceOf(kind)] : object.destroyed,
           .severity = held_ != nullptr ? Severity::error : rowOf(unknownCheck(kind)).severity});
    }
  }
}

void NameScope::finishRoot() {
  if (!root_ || !root_->ofOne) return;
  const auto& [name, range] = root_->name;
  const std::string companion = std::string(name) + "_L2";
  if (isThere(NameKind::ruleSet, companion)) return;
  diagnostics_.add(
      {.check = Check::missingLayer2,
       .range = range,
       .message = "the root's layer-2 rule set " + quotedWord(companion) + " is not there",
       .help =
           "create it, or name both: set root ruleset \"" + printableText(name) + "\" and \"\";"});
}

void NameScope::finishUnused() {
  // A text of sets alone is for rules that stand elsewhere.
  if (!hasRules_) return;
  for (const auto& [name, object] : objects_[spaceOf(NameKind::set)]) {
    if (!isAlive(object) || object.isGenerated || isUsed(object.kind, name)) continue;
    diagnostics_.add({.check = Check::unusedSet,
                      .range = object.range,
                      .message = "nothing uses the " + kindAndName(object.kind, name)});
  }
}

/// What is not in the texts may be in the filter. Where that has been asked, it is an error.
void NameScope::addUnknown(Check check, NameKind kind, const PlacedName& name,
                           std::string message) {
  if (held_ != nullptr) message += ", and the filter does not hold it";
  Diagnostic diagnostic{.check = check, .range = name.range, .message = std::move(message)};
  if (held_ != nullptr) diagnostic.severity = Severity::error;
  if (const std::string nearest = nearestName(kind, name.text); !nearest.empty()) {
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
std::string NameScope::nearestName(NameKind kind, std::string_view name) {
  constexpr std::size_t kMostUnknown = 100;
  constexpr std::size_t kMostCompared = 1000;
  if (++unknown_ > kMostUnknown) return {};
  Nearest nearest(name);
  std::size_t compared = 0;
  for (const auto& [other, object] : objects_[spaceOf(kind)]) {
    if (++compared > kMostCompared) break;
    // What is there under this very name comes too late, or is gone.
    if (!object.isGenerated && object.wasCreated[indexOf(kind)] && other != name) {
      nearest.compare(other);
    }
  }
  if (held_ != nullptr) {
    for (const std::string& other : held_->names[indexOf(kind)]) {
      if (++compared > kMostCompared) break;
      if (other != name) nearest.compare(other);
    }
  }
  return std::string(nearest.text());
}
