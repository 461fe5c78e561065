// The commands that make, change and remove rule sets, and those that list them.
#include "LabFamily.h"
#include "LabRuleCommands.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;
using RuleSets::name;
using RuleSets::nameSize;
using RuleSets::sets;

constexpr Reserved fourZeros{0, 4};
constexpr Name target{nameSize, nameSize, "target", "rule set"};

// The head of a creation, 168 bytes; the rules follow it.
namespace Creation {
constexpr Name called{64, nameSize, "name", "rule set"};
constexpr U64 sequence{128, "sequence"};
constexpr U32 count{136, "rules"};
constexpr Bits flags{140, 3, "flags"};
constexpr Blob transaction{144, 16, "transaction", As::id};
constexpr List list{.record = &RuleSets::rules, .inRequest = true, .count = count, .at = 168};
constexpr unsigned committed = 3;
constexpr const char* what = "rule set";
}  // namespace Creation

/// Names that the jump rules of the root lead to, for layer 3 and layer 2.
struct Root {
  std::string layer3;
  std::string layer2;
};

Root readRoot(Context context) {
  Root root;
  const auto set = sets.open(context, "");
  if (!set) return root;
  for (ConstBytes rest = set->entries(); rest.size() >= RuleRecord::size;
       rest = rest.subspan(RuleRecord::size)) {
    if (RuleRecord::actionCode(rest) != ActionRecord::jumpto) continue;
    const bool layer3 = (get8(rest, RuleRecord::flags) & RuleRecord::layer3) != 0;
    std::string& called = layer3 ? root.layer3 : root.layer2;
    if (called.empty()) called = RuleRecord::jumpTarget(rest);
  }
  return root;
}

/// Whether the root or another set's jump leads to the set, which must stay then.
bool isInUse(Context context, std::string_view called) {
  const Root root = readRoot(context);
  if (root.layer3 == called || root.layer2 == called) return true;
  for (const std::string& other : sets.names(context)) {
    const auto set = sets.open(context, other);
    if (set && set->head().jump == called) return true;
  }
  return false;
}

/// The places of the rules in a message by their kinds, in the order of a message.
using Order = std::vector<std::pair<std::int32_t, std::uint32_t>>[3];  // position, place

ConstBytes ruleAt(ConstBytes rules, std::size_t place) {
  return part(rules, place * RuleRecord::size, RuleRecord::size);
}

/// Checks the rules of a set and finds their order: a status.
std::uint32_t orderRules(Context context, std::string_view called, ConstBytes rules, Order& order) {
  const std::size_t count = rules.size() / RuleRecord::size;
  bool leadsSomewhere = false;
  for (std::size_t i = 0; i < count; ++i) {
    const ConstBytes rule = ruleAt(rules, i);
    if (const std::string fault = RuleRecord::fault(rule); !fault.empty()) {
      return context.refuse(Status::invalidRule,
                            format("rule %u: %s", get32(rule, RuleRecord::id), fault.c_str()));
    }
    order[RuleRecord::kind(rule)].emplace_back(
        static_cast<std::int32_t>(get32(rule, RuleRecord::position)),
        static_cast<std::uint32_t>(i));
    if (called.empty() && !leadsSomewhere && RuleRecord::actionCode(rule) == ActionRecord::jumpto) {
      leadsSomewhere = context.store.exists(sets.fileOf(context, RuleRecord::jumpTarget(rule)));
    }
  }
  if (called.empty() && count > 0 && !leadsSomewhere) {
    return context.refuse(Status::noRuleSet, "root that leads to no rule set");
  }
  return Status::ok;
}

/// Puts these rules in place of what the set held: kept by kind, and by position in each kind.
/// Returns a status; with any but 0 the set is as it was.
std::uint32_t replace(Context context, std::string_view called, ConstBytes rules) {
  Order order;
  if (const std::uint32_t status = orderRules(context, called, rules, order);
      status != Status::ok) {
    return status;
  }
  SetHead head;
  if (const auto before = sets.open(context, called)) {
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
      const ConstBytes rule = ruleAt(rules, place);
      sorted.insert(sorted.end(), rule.begin(), rule.end());
    }
  }
  head.entryBytes = sorted.size();
  head.touch();
  sets.save(context, called, head, sorted);
  return Status::ok;
}

std::uint32_t create(Context context, Body& body) {
  const ConstBytes rules = body.bytes().subspan(Creation::list.at);
  if (Creation::flags.get(body) != Creation::committed) {
    return context.refuse(Status::badTransaction, "rule set as a part of a transaction");
  }
  const std::uint32_t count = Creation::count.get(body);
  if (std::uint64_t{count} * RuleRecord::size != rules.size()) {
    return context.refuse(Status::badMessage,
                          format("rule set with %u rules in %zu bytes", count, rules.size()));
  }
  if (rules.size() > context.host.memory()) {
    return context.refuse(Status::noMemory, "rule set beyond the host's memory");
  }
  return replace(context, Creation::called.get(body), rules);
}

constexpr Text layer3{0, nameSize, "layer3"}, layer2{nameSize, nameSize, "layer2"};

std::uint32_t getRoot(Context context, Body& body) {
  const Root root = readRoot(context);
  layer3.put(body, root.layer3);
  layer2.put(body, root.layer2);
  return Status::ok;
}

std::uint32_t clearRoot(Context context, Body&) {
  context.store.remove(sets.fileOf(context, ""));
  return Status::ok;
}

std::uint32_t clear(Context context, Body& body) {
  const std::string_view called = name.get(body);
  return withSet(context, sets, called, [&](const SetFile& set) {
    SetHead head = set.head();
    for (std::uint32_t& count : head.counts) count = 0;
    head.entryBytes = 0;
    head.touch();
    sets.save(context, called, head, {});
    return Status::ok;
  });
}

/// As withSet, but for the root, which these commands do not know.
template <typename Use>
std::uint32_t withNamedSet(Context context, std::string_view called, Use use) {
  return called.empty() ? sets.refuse(context, called) : withSet(context, sets, called, use);
}

std::uint32_t destroy(Context context, Body& body) {
  const std::string_view called = name.get(body);
  return withNamedSet(context, called, [&](const SetFile&) {
    if (isInUse(context, called)) {
      return context.refuse(Status::badState, "rule set " + printable(called) + " is in use");
    }
    context.store.remove(sets.fileOf(context, called));
    return Status::ok;
  });
}

std::uint32_t destroyAll(Context context, Body&) {
  context.store.removeTree(sets.folderOf(context));
  return Status::ok;
}

constexpr U32 setCount{0, "count"};

std::uint32_t getSetCount(Context context, Body& body) {
  setCount.put(body, static_cast<std::uint32_t>(sets.names(context).size()));
  return Status::ok;
}

std::string nameText(ConstBytes record) { return std::string(getText(record, 0, record.size())); }

constexpr RecordKind setName{nameSize, nameText};
constexpr U32 listMax{0, "max"}, listFrom{4, "from"}, listReturned{8, "returned"};
constexpr Text listFirst{12, nameSize, "first"};
constexpr List nameList{
    .record = &setName, .count = listReturned, .at = 12, .max = listMax, .from = listFrom};

std::uint32_t getSetList(Context context, Body& body) {
  const std::vector<std::string> names = sets.names(context);
  return fillList(context, body, nameList, names.size(), [&](std::size_t place, Bytes record) {
    putText(record, 0, nameSize, names[place]);
  });
}

constexpr Bits countedKind{64, 3, "kind"};
constexpr U32 countOfKind{68, "rules"};

std::uint32_t getRuleCount(Context context, Body& body) {
  return withSet(context, sets, name.get(body), [&](const SetFile& set) {
    const unsigned kind = countedKind.get(body);
    countOfKind.put(body, kind < 3 ? set.head().counts[kind] : 0);
    return Status::ok;
  });
}

constexpr U32 countOfSet{64, "rules"};
constexpr U64 realized{68, "realized"}, generation{76, "generation"};

std::uint32_t getInfo(Context context, Body& body) {
  return withSet(context, sets, name.get(body), [&](const SetFile& set) {
    countOfSet.put(body, set.head().total());
    realized.put(body, set.head().realized);
    generation.put(body, set.head().generation);
    return Status::ok;
  });
}

/// Gives the set another jump target; an empty one takes it away.
std::uint32_t changeJump(Context context, std::string_view called, std::string_view jump) {
  return withNamedSet(context, called, [&](const SetFile& set) {
    SetHead head = set.head();
    head.jump = jump;
    sets.save(context, called, head, set.entries());
    return Status::ok;
  });
}

std::uint32_t setJump(Context context, Body& body) {
  const std::string_view jump = target.get(body);
  return withNamedSet(context, jump,
                      [&](const SetFile&) { return changeJump(context, name.get(body), jump); });
}

std::uint32_t getJump(Context context, Body& body) {
  return withNamedSet(context, name.get(body), [&](const SetFile& set) {
    target.put(body, set.head().jump);
    return Status::ok;
  });
}

std::uint32_t clearJump(Context context, Body& body) {
  return changeJump(context, name.get(body), "");
}

constexpr CommandKind commands[] = {
    {.number = 1, .least = 4, .answer = getSetCount, .reply = {setCount}},
    {.number = 2,
     .least = 12,
     .answer = getSetList,
     .request = {listMax, listFrom},
     .reply = {listReturned, listFirst},
     .list = nameList},
    {.number = 3,
     .least = 168,
     .answer = create,
     .request = {Reserved{0, 64, Creation::what}, Creation::called, Creation::sequence,
                 Reserved{128, 8, Creation::what}, Creation::count, Creation::flags,
                 Reserved{140, 1, Creation::what, 0xfc}, Reserved{141, 3, Creation::what},
                 Reserved{160, 8, Creation::what}},
     .reply = {Creation::transaction},
     .list = Creation::list},
    {.number = 4,
     .least = 128,
     .answer = getRoot,
     .request = {Reserved{128, 4}},
     .reply = {layer3, layer2}},
    {.number = 6, .least = 64, .answer = clear, .request = {name, Reserved{64, 8}}},
    {.number = 7, .least = 64, .answer = destroy, .request = {name}},
    {.number = 8,
     .least = 72,
     .answer = getRuleCount,
     .request = {name, countedKind},
     .reply = {countOfKind}},
    {.number = 9,
     .least = 84,
     .answer = getInfo,
     .request = {name},
     .reply = {countOfSet, realized, generation}},
    {.number = 36, .least = 1, .answer = clearRoot, .request = {fourZeros}},
    {.number = 60, .least = 1, .answer = destroyAll, .request = {fourZeros}},
    {.number = 61, .least = 128, .answer = setJump, .request = {name, target}},
    {.number = 62, .least = 128, .answer = getJump, .request = {name}, .reply = {target}},
    {.number = 63, .least = 64, .answer = clearJump, .request = {name}},
};

}  // namespace

constinit const Family ruleSetFamily{.commands = commands};

}  // namespace TarnLab
