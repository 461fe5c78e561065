#include "DiffText.h"

#include "JsonText.h"
#include "LanguageText.h"

namespace {

const char* changeName(Change change) {
  switch (change) {
    case Change::added:
      return "added";
    case Change::removed:
      return "removed";
    case Change::changed:
      return "changed";
    default:
      return "moved";
  }
}

char changeSign(Change change) {
  return change == Change::added ? '+' : change == Change::removed ? '-' : '~';
}

const char* kindName(StateRules kind) {
  switch (kind) {
    case StateRules::snat:
      return "snat";
    case StateRules::dnat:
      return "dnat";
    default:
      return "filter";
  }
}

/// A name that stands for nothing when it is empty.
std::string nameOrNone(const std::string& name) { return name.empty() ? "none" : shownName(name); }

std::string textOrNone(const std::string& text) { return text.empty() ? "none" : text; }

std::string titleOf(const SetChange& set) {
  return (set.isContainer ? "container " : "addrset ") + shownName(set.name);
}

std::string titleOf(const RuleSetChange& set) { return "ruleset " + shownName(set.name); }

/// ` added:` after the title of what is new or gone.
template <typename Object>
std::string headOf(const Object& object) {
  std::string head = titleOf(object);
  if (object.change != Change::changed) head += std::string(" ") + changeName(object.change);
  return head + ":\n";
}

void add(std::string& text, const SetChange& set) {
  text += headOf(set);
  if (set.typeChanged) text += "  ~ it is of another type\n";
  for (const std::string& member : set.removed) text += "  - " + member + "\n";
  for (const std::string& member : set.added) text += "  + " + member + "\n";
}

void add(std::string& text, const RuleChange& rule) {
  text += std::string("  ") + changeSign(rule.change) + " ";
  if (rule.change == Change::added || rule.change == Change::removed) {
    text += rule.text + "\n";
    return;
  }
  text += "rule " + std::to_string(rule.id);
  if (!rule.place.empty()) text += ": moved, now " + rule.place;
  text += '\n';
  for (const PartChange& part : rule.parts) {
    text += "      " + part.part + ": " + textOrNone(part.before) + " -> " +
            textOrNone(part.after) + "\n";
  }
}

void add(std::string& text, const RuleSetChange& set) {
  text += headOf(set);
  if (set.jumpChanged) {
    text += "  ~ jump: " + nameOrNone(set.jumpBefore) + " -> " + nameOrNone(set.jumpAfter) + "\n";
  }
  for (const RuleChange& rule : set.rules) add(text, rule);
}

void add(std::string& text, const RootChange& root) {
  text += "root:\n";
  const auto layer = [&](const char* name, const std::string& before, const std::string& after) {
    if (before == after) return;
    text +=
        std::string("  ~ ") + name + ": " + nameOrNone(before) + " -> " + nameOrNone(after) + "\n";
  };
  layer("layer 3", root.layer3Before, root.layer3After);
  layer("layer 2", root.layer2Before, root.layer2After);
}

// ---- numbers

/// "1 rule added", joined by commas.
class Counts {
 public:
  void add(std::size_t count, const char* what, const char* change) {
    if (count == 0) return;
    if (!text_.empty()) text_ += ", ";
    text_ += countedText(count, what) + " " + change;
  }
  void add(const std::string& words) {
    if (!text_.empty()) text_ += ", ";
    text_ += words;
  }
  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

std::string statisticsOf(const SetChange& set) {
  Counts counts;
  if (set.change != Change::changed) counts.add(changeName(set.change));
  if (set.typeChanged) counts.add("type changed");
  counts.add(set.added.size(), "member", "added");
  counts.add(set.removed.size(), "member", "removed");
  return titleOf(set) + ": " + counts.take() + "\n";
}

std::string statisticsOf(const RuleSetChange& set) {
  Counts counts;
  if (set.change != Change::changed) counts.add(changeName(set.change));
  for (const Change change : {Change::added, Change::removed, Change::changed, Change::moved}) {
    counts.add(set.countOf(change), "rule", changeName(change));
  }
  if (set.jumpChanged) counts.add("jump changed");
  return titleOf(set) + ": " + counts.take() + "\n";
}

// ---- JSON

void write(JsonText& json, const char* key, const std::string& before, const std::string& after) {
  json.key(key).beginObject();
  json.member("before", before);
  json.member("after", after);
  json.endObject();
}

void write(JsonText& json, const char* key, const std::vector<std::string>& texts) {
  json.key(key).beginArray();
  for (const std::string& text : texts) json.value(text);
  json.endArray();
}

void write(JsonText& json, const SetChange& set) {
  json.beginObject();
  json.member("name", set.name);
  json.member("change", changeName(set.change));
  json.member("container", set.isContainer);
  json.member("typeChanged", set.typeChanged);
  write(json, "added", set.added);
  write(json, "removed", set.removed);
  json.endObject();
}

void write(JsonText& json, const PartChange& part) {
  json.beginObject();
  json.member("part", part.part);
  json.member("before", part.before);
  json.member("after", part.after);
  json.endObject();
}

void write(JsonText& json, const RuleChange& rule) {
  json.beginObject();
  json.member("id", rule.id);
  json.member("kind", kindName(rule.kind));
  json.member("change", changeName(rule.change));
  json.member("text", rule.text);
  json.member("place", rule.place);
  json.key("parts").beginArray();
  for (const PartChange& part : rule.parts) write(json, part);
  json.endArray();
  json.endObject();
}

void write(JsonText& json, const RuleSetChange& set) {
  json.beginObject();
  json.member("name", set.name);
  json.member("change", changeName(set.change));
  write(json, "jump", set.jumpBefore, set.jumpAfter);
  json.key("rules").beginArray();
  for (const RuleChange& rule : set.rules) write(json, rule);
  json.endArray();
  json.endObject();
}

}  // namespace

std::string diffText(const StateDiff& diff) {
  std::string text;
  for (const SetChange& set : diff.sets) add(text, set);
  for (const RuleSetChange& set : diff.ruleSets) add(text, set);
  if (diff.root.changed()) add(text, diff.root);
  return text;
}

std::string diffStatistics(const StateDiff& diff) {
  std::string text;
  std::size_t rules = 0, members = 0;
  for (const SetChange& set : diff.sets) {
    text += statisticsOf(set);
    members += set.added.size() + set.removed.size();
  }
  for (const RuleSetChange& set : diff.ruleSets) {
    text += statisticsOf(set);
    rules += set.rules.size();
  }
  if (diff.root.changed()) text += "root: changed\n";
  return text + "in all: " + countedText(diff.sets.size(), "set") + " with " +
         countedText(members, "member") + ", " + countedText(diff.ruleSets.size(), "rule set") +
         " with " + countedText(rules, "rule") + "\n";
}

void writeDiffJson(const StateDiff& diff, std::FILE* stream) {
  JsonText json(stream);
  json.beginObject();
  json.member("equal", diff.isEmpty());
  json.key("sets").beginArray();
  for (const SetChange& set : diff.sets) write(json, set);
  json.endArray();
  json.key("ruleSets").beginArray();
  for (const RuleSetChange& set : diff.ruleSets) write(json, set);
  json.endArray();
  json.key("root").beginObject();
  write(json, "layer3", diff.root.layer3Before, diff.root.layer3After);
  write(json, "layer2", diff.root.layer2Before, diff.root.layer2After);
  json.endObject();
  json.endObject();
  json.finish();
}
