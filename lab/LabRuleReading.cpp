// The commands that read rules, their counters and their balancers, one by one or by their ids.
#include <unordered_map>

#include "LabAddressRecord.h"
#include "LabFamily.h"
#include "LabRuleCommands.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;
using RuleSets::name;

// The request, alike for the three of them.
constexpr U32 max{64, "max"}, from{68, "from"};
constexpr U8 flags{72, "flags"};
constexpr Bits kindWanted{74, 3, "kind"};
constexpr U32 returned{76, "returned"};
constexpr unsigned byIndex = 1;
constexpr FieldList request{name, max, from, flags, kindWanted, Reserved{75, 1}};

// The ids that a request asks for stand before the records of its reply.
constexpr List ruleList{.record = &RuleSets::rules, .count = returned, .at = 96, .ids = max};
constexpr U64 realized{80, "realized"}, generation{88, "generation"};

namespace Counters {
constexpr U32 id{0, "rule"};
constexpr U64 evals{8, "evals"}, hits{16, "hits"}, sessions{24, "sessions"},
    packetsIn{32, "packets in"}, packetsOut{40, "packets out"}, bytesIn{48, "bytes in"},
    bytesOut{56, "bytes out"};

std::string text(ConstBytes record) {
  const auto of = [record](const U64& field) {
    return static_cast<unsigned long long>(field.get(record));
  };
  return format(
      "rule %u: evals %llu, hits %llu, sessions %llu, packets in %llu out %llu, bytes in %llu "
      "out %llu",
      id.get(record), of(evals), of(hits), of(sessions), of(packetsIn), of(packetsOut), of(bytesIn),
      of(bytesOut));
}

/// Counters as they would be after some traffic: made from the id, so that they are the same
/// whenever they are read and no two of them are alike.
void put(Bytes record, std::uint32_t rule) {
  const std::uint64_t load = rule % 1000 + 1;
  id.put(record, rule);
  evals.put(record, load * 40);
  hits.put(record, load * 12);
  sessions.put(record, load * 5);
  packetsIn.put(record, load * 31);
  packetsOut.put(record, load * 27);
  bytesIn.put(record, load * 31 * 640);
  bytesOut.put(record, load * 27 * 410);
}

constexpr RecordKind kind{64, text};
constexpr List list{.record = &kind, .count = returned, .at = 80, .ids = max};
}  // namespace Counters

namespace Balancers {
constexpr U32 flows{0, "flows"}, now{4, "now"}, lastUse{8, "last use"}, timeout{12, "timeout"};
constexpr Blob address{16, AddressRecord::size, "address"};

/// The state of a balancer after some traffic, made from the rule's id: it is the same whenever it
/// is read, and no two of its numbers are alike. When the id is divisible by 4, there are no flows
/// left, and the time-out runs.
void put(Bytes record, std::uint32_t rule) {
  const std::uint32_t load = rule % 250 + 1;
  std::memset(record.data(), 0, record.size());
  flows.put(record, rule % 4 == 0 ? 0 : load * 3);
  now.put(record, load * 1029);       // seconds
  lastUse.put(record, load * 1000);   // seconds
  timeout.put(record, load / 2 + 7);  // minutes
  const Bytes persisted = placeOf(record, address);
  put16(persisted, AddressRecord::type, AddressRecord::ipv4);
  put32(persisted, AddressRecord::value, 203 | 0 << 8 | 113 << 16 | load << 24);  // 203.0.113.load
}

constexpr RecordKind state{160};
constexpr List states{.record = &state, .count = returned, .at = 80, .ids = max};

// The log prints the ids only, which stand before the states.
constexpr RecordKind id{4, nullptr, {U32{0, "rule"}}};
constexpr List ids{.record = &id, .count = returned, .at = states.at};
}  // namespace Balancers

/// The rules that a request asks for, as places in the set's rules of the kind.
struct Choice {
  std::uint32_t status = Status::ok;
  std::optional<SetFile> set;
  ConstBytes rules;  // of the kind that was asked for
  std::vector<std::uint32_t> places;

  ConstBytes rule(std::uint32_t place) const {
    return part(rules, place * RuleRecord::size, RuleRecord::size);
  }
};

/// Finds the rules of the page that a request asks for by index; a status.
std::uint32_t chooseByIndex(Context context, ConstBytes body, std::uint32_t count, Choice& choice) {
  const std::uint64_t first = from.get(body);
  if (first > count) {
    return context.refuse(Status::noRule,
                          format("rule %llu of %u", static_cast<unsigned long long>(first), count));
  }
  for (std::uint64_t i = first; i < count && i - first < max.get(body); ++i) {
    choice.places.push_back(static_cast<std::uint32_t>(i));
  }
  return Status::ok;
}

/// Finds the rules by the ids of a request; a status.
std::uint32_t chooseByIds(Context context, ConstBytes body, std::size_t idsAt, std::uint32_t count,
                          Choice& choice) {
  std::unordered_multimap<std::uint32_t, std::uint32_t> placeOfId;
  for (std::uint32_t i = 0; i < count; ++i) {
    placeOfId.emplace(get32(choice.rule(i), RuleRecord::id), i);
  }
  for (std::size_t i = 0; i < max.get(body); ++i) {
    const std::uint32_t id = get32(body, idsAt + 4 * i);
    const auto found = placeOfId.find(id);
    if (found == placeOfId.end()) {
      return context.refuse(Status::noRule, format("there is no rule %u", id));
    }
    choice.places.push_back(found->second);
  }
  return Status::ok;
}

Choice choose(Context context, const Body& body, const List& list) {
  Choice choice;
  if (max.get(body) > (body.size() - list.at) / (list.record->size + 4)) {
    choice.status = context.refuse(Status::badMessage, "rules without the room that they ask for");
    return choice;
  }
  choice.set = RuleSets::sets.open(context, name.get(body));
  if (!choice.set) {
    choice.status = RuleSets::sets.refuse(context, name.get(body));
    return choice;
  }
  const unsigned kind = kindWanted.get(body);
  if (kind > 2) {
    choice.status = context.refuse(Status::invalidArgument, "rules of kind 3");
    return choice;
  }
  const SetHead& head = choice.set->head();
  std::size_t before = 0;
  for (unsigned i = 0; i < kind; ++i) before += head.counts[i];
  const std::uint32_t count = head.counts[kind];
  choice.rules = part(choice.set->entries(), before * RuleRecord::size, count * RuleRecord::size);
  choice.status = (flags.get(body) & byIndex) != 0
                      ? chooseByIndex(context, body, count, choice)
                      : chooseByIds(context, body, list.at, count, choice);
  return choice;
}

/// Writes the records of the chosen rules: hands each rule to the writer, with the record's bytes.
template <typename Writer>
void fillRecords(const Choice& choice, Body& body, const List& list, Writer write) {
  std::size_t at = list.at + static_cast<std::size_t>(list.idBytes(body));
  for (const std::uint32_t place : choice.places) {
    write(choice.rule(place), body.reply(at, list.record->size));
    at += list.record->size;
  }
  returned.put(body, static_cast<std::uint32_t>(choice.places.size()));
}

std::uint32_t getRules(Context context, Body& body) {
  const Choice choice = choose(context, body, ruleList);
  if (choice.status != Status::ok) return choice.status;
  realized.put(body, choice.set->head().realized);
  generation.put(body, choice.set->head().generation);
  fillRecords(choice, body, ruleList,
              [](ConstBytes rule, Bytes record) { copyRecord(record, rule); });
  return Status::ok;
}

std::uint32_t getStatistics(Context context, Body& body) {
  const Choice choice = choose(context, body, Counters::list);
  if (choice.status != Status::ok) return choice.status;
  fillRecords(choice, body, Counters::list, [](ConstBytes rule, Bytes record) {
    Counters::put(record, get32(rule, RuleRecord::id));
  });
  return Status::ok;
}

/// The ids of the rules stand where the request had its ids, and the states follow them.
std::uint32_t getBalancers(Context context, Body& body) {
  const Choice choice = choose(context, body, Balancers::states);
  if (choice.status != Status::ok) return choice.status;
  for (std::size_t i = 0; i < choice.places.size(); ++i) {
    putHost(body.reply(Balancers::ids.at + 4 * i, 4), 0,
            get32(choice.rule(choice.places[i]), RuleRecord::id));
  }
  fillRecords(choice, body, Balancers::states, [](ConstBytes rule, Bytes record) {
    Balancers::put(record, get32(rule, RuleRecord::id));
  });
  return Status::ok;
}

constexpr CommandKind commands[] = {
    {.number = 10,
     .least = 96,
     .answer = getRules,
     .request = request,
     .reply = {returned, realized, generation},
     .list = ruleList},
    {.number = 11,
     .least = 80,
     .answer = getStatistics,
     .request = request,
     .reply = {returned},
     .list = Counters::list},
    {.number = 12,
     .least = 80,
     .answer = getBalancers,
     .request = request,
     .reply = {returned},
     .list = Balancers::ids},
};

}  // namespace

constinit const Family ruleReadingFamily{.commands = commands};

}  // namespace TarnLab
