// The commands that read address sets and containers.
#include "LabAddrSetCommands.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

using AddrSets::name;
using AddrSets::nameSize;
using AddrSets::sets;
using Context = const CommandContext&;

/// Answers with the set that the request names.
template <typename Use>
std::uint32_t withNamed(Context context, Body& body, Use use) {
  return withSet(context, sets, name.get(body), use);
}

constexpr U32 sizeOfSet{46, "bytes"}, typeOfSet{42, "type"}, countOfSet{38, "entries"};

std::uint32_t getTypeAndSize(Context context, Body& body) {
  return withNamed(context, body, [&](const SetFile& set) {
    countOfSet.put(body, set.head().counts[0]);
    typeOfSet.put(body, set.head().type);
    sizeOfSet.put(body, static_cast<std::uint32_t>(set.head().entryBytes));
    return Status::ok;
  });
}

namespace Info {
constexpr U64 realized{42, "realized"}, generation{50, "generation"};
}

std::uint32_t getInfo(Context context, Body& body) {
  return withNamed(context, body, [&](const SetFile& set) {
    countOfSet.put(body, set.head().counts[0]);
    Info::realized.put(body, set.head().realized);
    Info::generation.put(body, set.head().generation);
    return Status::ok;
  });
}

// A request for a part of a set's entries.
constexpr U32 asked{38, "type"}, max{42, "max"}, from{46, "from"};

/// A page of the entries of one address set.
template <typename Writer>
std::uint32_t fillEntries(Context context, Body& body, const List& list, const SetFile& set,
                          Writer write) {
  const std::uint32_t count = set.head().counts[0];
  if (set.head().type != 1) {
    return context.refuse(Status::invalidAddrSetType, "a container has no addresses");
  }
  if (from.get(body) > count) {
    return context.refuse(Status::noAddress, format("address %u of %u", from.get(body), count));
  }
  return fillList(context, body, list, count, write);
}

ConstBytes addressOf(const SetFile& set, std::size_t place) {
  return part(set.entries(), place * AddressRecord::size, AddressRecord::size);
}

namespace Addresses {
constexpr U32 returned{50, "returned"};
constexpr U64 realized{54, "realized"}, generation{62, "generation"};
constexpr List list{
    .record = &AddrSets::addresses, .count = returned, .at = 70, .max = max, .from = from};
}  // namespace Addresses

std::uint32_t getAddresses(Context context, Body& body) {
  return withNamed(context, body, [&](const SetFile& set) {
    Addresses::realized.put(body, set.head().realized);
    Addresses::generation.put(body, set.head().generation);
    return fillEntries(context, body, Addresses::list, set, [&](std::size_t place, Bytes record) {
      copyRecord(record, addressOf(set, place));
    });
  });
}

namespace Marks {
constexpr U8 mark{AddressRecord::size, "mark"};

std::string text(ConstBytes record) {
  return AddressRecord::text(record.first(AddressRecord::size)) +
         format(" mark %u", mark.get(record));
}

constexpr RecordKind record{AddressRecord::size + 1, text};
constexpr U32 returned{50, "returned"};
constexpr List list{.record = &record, .count = returned, .at = 54, .max = max, .from = from};
}  // namespace Marks

std::uint32_t getMarks(Context context, Body& body) {
  return withNamed(context, body, [&](const SetFile& set) {
    return fillEntries(context, body, Marks::list, set, [&](std::size_t place, Bytes record) {
      copyRecord(record, addressOf(set, place));
      Marks::mark.put(record, get8(set.marks(), place));
    });
  });
}

/// Eight counters: packets, then bytes, in the order of the record. The program's displays read
/// them under different names, so they have none here.
std::string countersText(ConstBytes record, std::size_t offset) {
  std::string text = "packets";
  for (std::size_t i = 0; i < 8; ++i) {
    if (i == 4) text += ", bytes";
    text += format(" %llu", static_cast<unsigned long long>(get64(record, offset + 8 * i)));
  }
  return text;
}

/// Counters as they would be after some traffic: the same whenever they are read, and no two of
/// one record alike.
void putCounters(Bytes record, std::size_t offset, std::uint64_t load) {
  for (std::size_t i = 0; i < 8; ++i) put64(record, offset + 8 * i, load * (2 * i + 3));
}

std::uint64_t uptimeOf(const SetFile& set) {
  const std::uint64_t now = bootSeconds();
  return now - std::min(now, set.head().realized);
}

namespace EntryStatistics {
constexpr U32 connections{64, "connections"}, highWater{68, "at most"};
constexpr U64 uptime{72, "uptime"};
constexpr FieldList others{connections, highWater, uptime};

std::string text(ConstBytes record) {
  return countersText(record, 0) + ", " + fieldsText(others, record);
}

constexpr RecordKind record{80, text};
constexpr U32 clear{50, "clear"}, returned{54, "returned"};
constexpr List list{.record = &record, .count = returned, .at = 58, .max = max, .from = from};
}  // namespace EntryStatistics

std::uint32_t getEntryStatistics(Context context, Body& body) {
  return withNamed(context, body, [&](const SetFile& set) {
    const SetHead& head = set.head();
    const std::uint64_t uptime = uptimeOf(set);
    const bool clear = EntryStatistics::clear.get(body) != 0;
    const std::uint32_t status = fillEntries(
        context, body, EntryStatistics::list, set, [&](std::size_t place, Bytes record) {
          const std::uint64_t load = head.cleared != 0 ? 0 : place % 1000 + 1;
          putCounters(record, 0, load);
          EntryStatistics::connections.put(record, static_cast<std::uint32_t>(load % 7));
          EntryStatistics::highWater.put(record, static_cast<std::uint32_t>(load % 7 + load));
          EntryStatistics::uptime.put(record, uptime);
        });
    if (status == Status::ok && clear && head.cleared == 0) {
      SetHead cleared = head;
      cleared.cleared = 1;
      sets.save(context, name.get(body), cleared, set.entries(), set.marks());
    }
    return status;
  });
}

constexpr Bits typeWanted{0, 15, "type"};

/// The sets whose kind the request asks for; 0 asks for every kind.
std::vector<std::string> namesOfType(Context context, const Body& body) {
  const unsigned type = typeWanted.get(body);
  std::vector<std::string> found = sets.names(context);
  if (type == 0) return found;
  std::erase_if(found, [&](const std::string& called) {
    const auto set = sets.open(context, called);
    return !set || set->head().addressType != type;
  });
  return found;
}

constexpr U32 setCount{4, "count"};

std::uint32_t getCount(Context context, Body& body) {
  setCount.put(body, static_cast<std::uint32_t>(namesOfType(context, body).size()));
  return Status::ok;
}

std::string nameText(ConstBytes record) { return std::string(getText(record, 0, nameSize)); }

constexpr U32 listMax{4, "max"}, listFrom{8, "from"}, listReturned{12, "returned"};
constexpr Text listFirst{16, nameSize, "first"};
constexpr RecordKind setName{nameSize, nameText};
constexpr List nameList{
    .record = &setName, .count = listReturned, .at = 16, .max = listMax, .from = listFrom};

std::uint32_t getList(Context context, Body& body) {
  const std::vector<std::string> found = namesOfType(context, body);
  return fillList(context, body, nameList, found.size(), [&](std::size_t place, Bytes record) {
    putText(record, 0, nameSize, found[place]);
  });
}

namespace SetStatistics {
constexpr U64 match{102, "match"}, noMatch{110, "no match"}, uptime{118, "uptime"};
constexpr U32 references{126, "references"};
constexpr FieldList others{match, noMatch, uptime, references};

std::string text(ConstBytes record) {
  return nameText(record) + ": " + countersText(record, nameSize) + ", " +
         fieldsText(others, record);
}

constexpr RecordKind record{130, text};
constexpr List list{
    .record = &record, .count = listReturned, .at = 16, .max = listMax, .from = listFrom};
}  // namespace SetStatistics

std::uint32_t getStatisticsList(Context context, Body& body) {
  const std::vector<std::string> found = namesOfType(context, body);
  return fillList(context, body, SetStatistics::list, found.size(),
                  [&](std::size_t place, Bytes record) {
                    std::memset(record.data(), 0, record.size());
                    putText(record, 0, nameSize, found[place]);
                    const auto set = sets.open(context, found[place]);
                    if (!set) return;
                    const std::uint64_t load = set->head().counts[0] + 1;
                    putCounters(record, nameSize, load);
                    SetStatistics::match.put(record, load * 101);
                    SetStatistics::noMatch.put(record, load * 53);
                    SetStatistics::uptime.put(record, uptimeOf(*set));
                  });
}

namespace Elements {
constexpr U32 room{42, "count"}, returned{50, "returned"};
constexpr U64 realized{54, "realized"}, generation{62, "generation"};
constexpr List list{.record = &AddrSets::elements, .count = returned, .at = 70};
}  // namespace Elements

std::uint32_t getElements(Context context, Body& body) {
  return withNamed(context, body, [&](const SetFile& set) {
    if (set.head().type == 1) {
      return context.refuse(Status::invalidAddrSetType, "an address set has no elements");
    }
    const ConstBytes chain = set.entries();
    const std::size_t room = body.size() - Elements::list.at;
    if (room < chain.size()) {
      return context.refuse(Status::bufferTooSmall,
                            format("room of %zu bytes for a chain of %zu", room, chain.size()));
    }
    Elements::returned.put(body, set.head().counts[0]);
    Elements::realized.put(body, set.head().realized);
    Elements::generation.put(body, set.head().generation);
    copyRecord(body.reply(Elements::list.at, chain.size()), chain);
    return Status::ok;
  });
}

constexpr CommandScope scope = CommandScope::sets;
constexpr CommandKind commands[] = {
    {.number = 15,
     .scope = scope,
     .least = 50,
     .answer = getTypeAndSize,
     .request = {name},
     .reply = {countOfSet, typeOfSet, sizeOfSet}},
    {.number = 16,
     .scope = scope,
     .least = 58,
     .answer = getInfo,
     .request = {name},
     .reply = {countOfSet, Info::realized, Info::generation}},
    {.number = 17,
     .scope = scope,
     .least = 70,
     .answer = getAddresses,
     .request = {name, asked, max, from},
     .reply = {Addresses::returned, Addresses::realized, Addresses::generation},
     .list = Addresses::list},
    {.number = 18,
     .scope = scope,
     .least = 54,
     .answer = getMarks,
     .request = {name, asked, max, from},
     .reply = {Marks::returned},
     .list = Marks::list},
    {.number = 19,
     .scope = scope,
     .least = 58,
     .answer = getEntryStatistics,
     .request = {name, asked, max, from, EntryStatistics::clear},
     .reply = {EntryStatistics::returned},
     .list = EntryStatistics::list},
    {.number = 20,
     .scope = scope,
     .least = 8,
     .answer = getCount,
     .request = {typeWanted},
     .reply = {setCount}},
    {.number = 21,
     .scope = scope,
     .least = 16,
     .answer = getList,
     .request = {typeWanted, listMax, listFrom},
     .reply = {listReturned, listFirst},
     .list = nameList},
    {.number = 22,
     .scope = scope,
     .least = 16,
     .answer = getStatisticsList,
     .request = {typeWanted, listMax, listFrom},
     .reply = {listReturned},
     .list = SetStatistics::list},
    {.number = 56,
     .scope = scope,
     .least = 70,
     .answer = getElements,
     .request = {name, Reserved{38, 4}, Elements::room},
     .list = Elements::list},
};

}  // namespace

constinit const Family addrSetReadingFamily{.commands = commands};

}  // namespace TarnLab
