// The commands that make, change and remove rule sets, and those that tell about them.
#include "LabCommand.h"
#include "LabRuleCommands.h"
#include "LabRuleRecord.h"
#include "LabSelector.h"
#include "LabSetFile.h"
#include "LabText.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;
using RuleSets::badName;

constexpr std::size_t nameSize = RuleSets::nameSize;

std::uint32_t noRuleSet(Context context, std::string_view name) {
  return context.refuse(Status::noRuleSet, "there is no rule set " + printable(name));
}

/// Names that the jump rules of the root lead to, for layer 3 and layer 2.
struct Root {
  std::string layer3;
  std::string layer2;
};

Root readRoot(Context context) {
  Root root;
  const auto set = SetFile::open(context.store, RuleSets::fileOf(context, ""));
  if (!set) return root;
  for (ConstBytes rest = set->entries(); rest.size() >= RuleRecord::size;
       rest = rest.subspan(RuleRecord::size)) {
    if (RuleRecord::actionCode(rest) != ActionRecord::jumpto) continue;
    const bool layer3 = (get8(rest, RuleRecord::flags) & RuleRecord::layer3) != 0;
    std::string& name = layer3 ? root.layer3 : root.layer2;
    if (name.empty()) name = RuleRecord::jumpTarget(rest);
  }
  return root;
}

/// Whether the root or another set's jump leads to the set, which must stay then.
bool isInUse(Context context, std::string_view name) {
  const Root root = readRoot(context);
  if (root.layer3 == name || root.layer2 == name) return true;
  for (const std::string& other : RuleSets::names(context)) {
    const auto set = SetFile::open(context.store, RuleSets::fileOf(context, other));
    if (set && set->head().jump == name) return true;
  }
  return false;
}

std::uint32_t create(Context context, CommandBody& body) {
  constexpr std::size_t atName = 64, atSequence = 128, atCount = 136, atFlags = 140, atRules = 168;
  const ConstBytes bytes = body.bytes();
  if (bytes.size() < atRules) {
    return context.refuse(Status::badMessage, format("rule set of %zu bytes", bytes.size()));
  }
  std::uint32_t status = 0;
  if (badName(context, bytes, atName, status)) return status;
  if (!isZero(part(bytes, 0, 64)) || get64(bytes, atSequence) != 0 ||
      (get8(bytes, atFlags) & ~3u) != 0 || !isZero(part(bytes, atFlags + 1, 3)) ||
      !isZero(part(bytes, 160, 8))) {
    return context.refuse(Status::badMessage, "rule set with reserved bytes set");
  }
  if ((get8(bytes, atFlags) & 3) != 3) {
    return context.refuse(Status::badTransaction, "rule set as a part of a transaction");
  }
  const std::uint64_t count = get32(bytes, atCount);
  if (count * RuleRecord::size != bytes.size() - atRules) {
    return context.refuse(Status::badMessage,
                          format("rule set with %llu rules in %zu bytes",
                                 static_cast<unsigned long long>(count), bytes.size() - atRules));
  }
  if (bytes.size() - atRules > context.host.memory()) {
    return context.refuse(Status::noMemory, "rule set beyond the host's memory");
  }
  return RuleSets::replace(context, getText(bytes, atName, nameSize), bytes.subspan(atRules));
}

std::uint32_t getRoot(Context context, CommandBody& body) {
  const Root root = readRoot(context);
  putText(body.reply(0, 2 * nameSize), 0, nameSize, root.layer3);
  putText(body.reply(nameSize, nameSize), 0, nameSize, root.layer2);
  return Status::ok;
}

std::uint32_t clearRoot(Context context, CommandBody&) {
  context.store.remove(RuleSets::fileOf(context, ""));
  return Status::ok;
}

std::uint32_t clear(Context context, CommandBody& body) {
  std::uint32_t status = 0;
  if (badName(context, body.bytes(), 0, status)) return status;
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  const std::string file = RuleSets::fileOf(context, name);
  const auto set = SetFile::open(context.store, file);
  if (!set) return noRuleSet(context, name);
  SetHead head = set->head();
  for (std::uint32_t& count : head.counts) count = 0;
  head.entryBytes = 0;
  head.touch();
  SetFile::save(context.store, file, head, {});
  return Status::ok;
}

std::uint32_t destroy(Context context, CommandBody& body) {
  std::uint32_t status = 0;
  if (badName(context, body.bytes(), 0, status)) return status;
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  const std::string file = RuleSets::fileOf(context, name);
  if (name.empty() || !SetFile::open(context.store, file)) return noRuleSet(context, name);
  if (isInUse(context, name)) {
    return context.refuse(Status::badState, "rule set " + printable(name) + " is in use");
  }
  context.store.remove(file);
  return Status::ok;
}

std::uint32_t destroyAll(Context context, CommandBody&) {
  context.store.removeTree(RuleSets::folderOf(context));
  return Status::ok;
}

std::uint32_t getSetCount(Context context, CommandBody& body) {
  body.put32(0, static_cast<std::uint32_t>(RuleSets::names(context).size()));
  return Status::ok;
}

std::uint32_t getSetList(Context context, CommandBody& body) {
  constexpr std::size_t atMax = 0, atFrom = 4, atReturned = 8, atNames = 12;
  const std::vector<std::string> names = RuleSets::names(context);
  const std::size_t from = get32(body.bytes(), atFrom);
  const std::size_t room = (body.size() - atNames) / nameSize;
  const std::size_t wanted = std::min<std::size_t>(get32(body.bytes(), atMax), room);
  if (get32(body.bytes(), atMax) > room) {
    return context.refuse(Status::badMessage, "list without the room that it asks for");
  }
  std::size_t returned = 0;
  for (; returned < wanted && from + returned < names.size(); ++returned) {
    putText(body.reply(atNames + returned * nameSize, nameSize), 0, nameSize,
            names[from + returned]);
  }
  body.put32(atReturned, static_cast<std::uint32_t>(returned));
  return Status::ok;
}

std::uint32_t getRuleCount(Context context, CommandBody& body) {
  constexpr std::size_t atKind = 64, atCount = 68;
  std::uint32_t status = 0;
  if (badName(context, body.bytes(), 0, status)) return status;
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  const auto set = SetFile::open(context.store, RuleSets::fileOf(context, name));
  if (!set) return noRuleSet(context, name);
  const unsigned kind = get8(body.bytes(), atKind) & 3u;
  body.put32(atCount, kind < 3 ? set->head().counts[kind] : 0);
  return Status::ok;
}

std::uint32_t getInfo(Context context, CommandBody& body) {
  constexpr std::size_t atCount = 64, atRealized = 68, atGeneration = 76;
  std::uint32_t status = 0;
  if (badName(context, body.bytes(), 0, status)) return status;
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  const auto set = SetFile::open(context.store, RuleSets::fileOf(context, name));
  if (!set) return noRuleSet(context, name);
  body.put32(atCount, set->head().total());
  body.put64(atRealized, set->head().realized);
  body.put64(atGeneration, set->head().generation);
  return Status::ok;
}

/// Gives the set another jump target; an empty one takes it away.
std::uint32_t changeJump(Context context, std::string_view name, std::string_view target) {
  const std::string file = RuleSets::fileOf(context, name);
  const auto set = SetFile::open(context.store, file);
  if (name.empty() || !set) return noRuleSet(context, name);
  SetHead head = set->head();
  head.jump = target;
  SetFile::save(context.store, file, head, set->entries());
  return Status::ok;
}

std::uint32_t setJump(Context context, CommandBody& body) {
  std::uint32_t status = 0;
  if (badName(context, body.bytes(), 0, status)) return status;
  if (badName(context, body.bytes(), nameSize, status)) return status;
  const std::string_view target = getText(body.bytes(), nameSize, nameSize);
  if (target.empty() || !SetFile::open(context.store, RuleSets::fileOf(context, target))) {
    return noRuleSet(context, target);
  }
  return changeJump(context, getText(body.bytes(), 0, nameSize), target);
}

std::uint32_t getJump(Context context, CommandBody& body) {
  std::uint32_t status = 0;
  if (badName(context, body.bytes(), 0, status)) return status;
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  const auto set = SetFile::open(context.store, RuleSets::fileOf(context, name));
  if (name.empty() || !set) return noRuleSet(context, name);
  putText(body.reply(nameSize, nameSize), 0, nameSize, set->head().jump);
  return Status::ok;
}

std::uint32_t clearJump(Context context, CommandBody& body) {
  std::uint32_t status = 0;
  if (badName(context, body.bytes(), 0, status)) return status;
  return changeJump(context, getText(body.bytes(), 0, nameSize), "");
}

}  // namespace

namespace RuleSets {

std::string folderOf(const CommandContext& context) { return context.target.folder + "/rulesets"; }

std::string fileOf(const CommandContext& context, std::string_view name) {
  return folderOf(context) + "/" + Selector::fileName(name);
}

std::vector<std::string> names(const CommandContext& context) {
  std::vector<std::string> found;
  for (const std::string& file : context.store.list(folderOf(context))) {
    if (std::string name = Selector::nameOfFile(file); !name.empty()) {
      found.push_back(std::move(name));
    }
  }
  return found;
}

bool badName(const CommandContext& context, ConstBytes body, std::size_t offset,
             std::uint32_t& status) {
  const ConstBytes field = part(body, offset, nameSize);
  const std::string_view name = getText(body, offset, nameSize);
  if (name.size() < nameSize && isZero(field.subspan(name.size()))) return false;
  status = context.refuse(Status::badMessage, "rule set name is not padded with zeros");
  return true;
}

std::uint32_t replace(const CommandContext& context, std::string_view name, ConstBytes rules) {
  const std::size_t count = rules.size() / RuleRecord::size;
  std::vector<std::pair<std::int32_t, std::uint32_t>> order[3];  // position, place in the message
  bool leadsSomewhere = false;
  for (std::size_t i = 0; i < count; ++i) {
    const ConstBytes rule = rules.subspan(i * RuleRecord::size, RuleRecord::size);
    if (const std::string fault = RuleRecord::fault(rule); !fault.empty()) {
      return context.refuse(Status::invalidRule,
                            format("rule %u: %s", get32(rule, RuleRecord::id), fault.c_str()));
    }
    order[RuleRecord::kind(rule)].emplace_back(
        static_cast<std::int32_t>(get32(rule, RuleRecord::position)),
        static_cast<std::uint32_t>(i));
    if (name.empty() && !leadsSomewhere && RuleRecord::actionCode(rule) == ActionRecord::jumpto) {
      leadsSomewhere = context.store.exists(fileOf(context, RuleRecord::jumpTarget(rule)));
    }
  }
  if (name.empty() && count > 0 && !leadsSomewhere) {
    return context.refuse(Status::noRuleSet, "root that leads to no rule set");
  }

  const std::string file = fileOf(context, name);
  SetHead head;
  if (const auto before = SetFile::open(context.store, file)) {
    head.generation = before->head().generation;
    head.jump = before->head().jump;
  }
  ByteVector sorted;
  sorted.reserve(rules.size());
  for (std::size_t kind = 0; kind < 3; ++kind) {
    const auto byPosition = [](const auto& a, const auto& b) { return a.first < b.first; };
    std::stable_sort(order[kind].begin(), order[kind].end(), byPosition);
    head.counts[kind] = static_cast<std::uint32_t>(order[kind].size());
    for (const auto& [position, place] : order[kind]) {
      const ConstBytes rule = rules.subspan(place * RuleRecord::size, RuleRecord::size);
      sorted.insert(sorted.end(), rule.begin(), rule.end());
    }
  }
  head.entryBytes = sorted.size();
  head.touch();
  SetFile::save(context.store, file, head, sorted);
  return Status::ok;
}

}  // namespace RuleSets

std::span<const CommandKind> ruleSetCommands() {
  static constexpr CommandKind commands[] = {
      {1, 4, CommandScope::filter, getSetCount},
      {2, 12, CommandScope::filter, getSetList},
      {3, 168, CommandScope::filter, create},
      {4, 128, CommandScope::filter, getRoot, {128, 4}},
      {6, 64, CommandScope::filter, clear, {64, 8}},
      {7, 64, CommandScope::filter, destroy},
      {8, 72, CommandScope::filter, getRuleCount},
      {9, 84, CommandScope::filter, getInfo},
      {10, 96, CommandScope::filter, RuleSets::getRules, {75, 1}},
      {11, 80, CommandScope::filter, RuleSets::getStatistics, {75, 1}},
      {12, 80, CommandScope::filter, RuleSets::getBalancers, {75, 1}},
      {36, 1, CommandScope::filter, clearRoot, {0, 4}},
      {60, 1, CommandScope::filter, destroyAll, {0, 4}},
      {61, 128, CommandScope::filter, setJump},
      {62, 128, CommandScope::filter, getJump},
      {63, 64, CommandScope::filter, clearJump},
  };
  return commands;
}

}  // namespace TarnLab
