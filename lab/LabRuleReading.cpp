// The commands that read rules, their counters and their balancers.
#include <unordered_map>

#include "LabRuleCommands.h"
#include "LabRuleRecord.h"
#include "LabSetFile.h"
#include "LabText.h"

namespace TarnLab::RuleSets {

namespace {

// The request, alike for the three of them.
constexpr std::size_t atMax = 64, atFrom = 68, atFlags = 72, atKind = 74, atReturned = 76;
constexpr unsigned byIndex = 1;

struct Layout {
  std::size_t idsAt;       // where the ids stand
  std::size_t recordSize;  // of the reply's records, which stand behind the ids
};

/// The rules that a request asks for, as places in the set's rules of the kind.
struct Choice {
  std::uint32_t status = Status::ok;
  std::optional<SetFile> set;
  ConstBytes rules;  // of the kind that was asked for
  std::vector<std::uint32_t> places;
  std::size_t recordsAt = 0;

  ConstBytes rule(std::uint32_t place) const {
    return part(rules, place * RuleRecord::size, RuleRecord::size);
  }
};

Choice choose(const CommandContext& context, const CommandBody& body, const Layout& layout) {
  Choice choice;
  const ConstBytes bytes = body.bytes();
  if (badName(context, bytes, 0, choice.status)) return choice;
  const std::string_view name = getText(bytes, 0, nameSize);
  const std::uint64_t max = get32(bytes, atMax);
  const unsigned kind = get8(bytes, atKind) & 3u;
  if (max > (bytes.size() - layout.idsAt) / (layout.recordSize + 4)) {
    choice.status = context.refuse(Status::badMessage, "rules without the room that they ask for");
    return choice;
  }
  choice.set = SetFile::open(context.store, fileOf(context, name));
  if (!choice.set) {
    choice.status = context.refuse(Status::noRuleSet, "there is no rule set " + printable(name));
    return choice;
  }
  if (kind > 2) {
    choice.status = context.refuse(Status::invalidArgument, "rules of kind 3");
    return choice;
  }
  const SetHead& head = choice.set->head();
  std::size_t before = 0;
  for (unsigned i = 0; i < kind; ++i) before += head.counts[i];
  const std::uint32_t count = head.counts[kind];
  choice.rules = part(choice.set->entries(), before * RuleRecord::size, count * RuleRecord::size);
  choice.recordsAt = layout.idsAt + 4 * static_cast<std::size_t>(max);

  if ((get8(bytes, atFlags) & byIndex) != 0) {
    const std::uint64_t from = get32(bytes, atFrom);
    if (from > count) {
      choice.status = context.refuse(
          Status::noRule, format("rule %llu of %u", static_cast<unsigned long long>(from), count));
      return choice;
    }
    for (std::uint64_t i = from; i < count && i - from < max; ++i) {
      choice.places.push_back(static_cast<std::uint32_t>(i));
    }
    return choice;
  }
  std::unordered_multimap<std::uint32_t, std::uint32_t> placeOfId;
  for (std::uint32_t i = 0; i < count; ++i) {
    placeOfId.emplace(get32(choice.rule(i), RuleRecord::id), i);
  }
  for (std::size_t i = 0; i < max; ++i) {
    const std::uint32_t id = get32(bytes, layout.idsAt + 4 * i);
    const auto found = placeOfId.find(id);
    if (found == placeOfId.end()) {
      choice.status = context.refuse(Status::noRule, format("there is no rule %u", id));
      return choice;
    }
    choice.places.push_back(found->second);
  }
  return choice;
}

/// Counters as they would be after some traffic: made from the id, so that they are the same
/// whenever they are read and no two of them are alike.
void putCounters(Bytes record, std::uint32_t id) {
  const std::uint64_t load = id % 1000 + 1;
  const std::uint64_t counters[] = {load * 40, load * 12,       load * 5,       load * 31,
                                    load * 27, load * 31 * 640, load * 27 * 410};
  put32(record, 0, id);
  for (std::size_t i = 0; i < 7; ++i) put64(record, 8 + 8 * i, counters[i]);
}

}  // namespace

std::uint32_t getRules(const CommandContext& context, CommandBody& body) {
  constexpr std::size_t atRealized = 80, atGeneration = 88;
  const Choice choice = choose(context, body, {96, RuleRecord::size});
  if (choice.status != Status::ok) return choice.status;
  body.put32(atReturned, static_cast<std::uint32_t>(choice.places.size()));
  body.put64(atRealized, choice.set->head().realized);
  body.put64(atGeneration, choice.set->head().generation);
  std::size_t at = choice.recordsAt;
  for (const std::uint32_t place : choice.places) {
    std::memcpy(body.reply(at, RuleRecord::size).data(), choice.rule(place).data(),
                RuleRecord::size);
    at += RuleRecord::size;
  }
  return Status::ok;
}

std::uint32_t getStatistics(const CommandContext& context, CommandBody& body) {
  constexpr std::size_t recordSize = 64;
  const Choice choice = choose(context, body, {80, recordSize});
  if (choice.status != Status::ok) return choice.status;
  body.put32(atReturned, static_cast<std::uint32_t>(choice.places.size()));
  std::size_t at = choice.recordsAt;
  for (const std::uint32_t place : choice.places) {
    putCounters(body.reply(at, recordSize), get32(choice.rule(place), RuleRecord::id));
    at += recordSize;
  }
  return Status::ok;
}

/// Only the ids are told; they stand one behind the other where the request had its ids.
std::uint32_t getBalancers(const CommandContext& context, CommandBody& body) {
  constexpr std::size_t idsAt = 80, recordSize = 160;
  const Choice choice = choose(context, body, {idsAt, recordSize});
  if (choice.status != Status::ok) return choice.status;
  body.put32(atReturned, static_cast<std::uint32_t>(choice.places.size()));
  for (std::size_t i = 0; i < choice.places.size(); ++i) {
    body.put32(idsAt + 4 * i, get32(choice.rule(choice.places[i]), RuleRecord::id));
  }
  return Status::ok;
}

}  // namespace TarnLab::RuleSets
