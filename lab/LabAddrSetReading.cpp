// The commands that read address sets and containers.
#include "LabAddrSetCommands.h"
#include "LabAddressRecord.h"
#include "LabText.h"

namespace TarnLab::AddrSets {

namespace {

/// The set that the request names, or a status.
struct Named {
  std::uint32_t status = Status::ok;
  std::optional<SetFile> set;
};

Named openNamed(const CommandContext& context, const CommandBody& body) {
  Named named;
  named.status = checkName(context, body.bytes(), 0);
  if (named.status != Status::ok) return named;
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  named.set = SetFile::open(context.store, fileOf(context, name));
  if (!named.set) named.status = noAddrSet(context, name);
  return named;
}

/// Where a request for a part of a list has its numbers.
struct Page {
  std::size_t atMax;
  std::size_t atFrom;
  std::size_t atReturned;
  std::size_t atRecords;
  std::size_t recordSize;
};

/// Hands every place of the page to the writer, with room for its record, and tells the number.
template <typename Writer>
std::uint32_t fillPage(const CommandContext& context, CommandBody& body, const Page& page,
                       std::uint64_t count, Writer write) {
  const std::uint64_t max = get32(body.bytes(), page.atMax);
  const std::uint64_t from = get32(body.bytes(), page.atFrom);
  if (max > (body.size() - page.atRecords) / page.recordSize) {
    return context.refuse(Status::badMessage, "list without the room that it asks for");
  }
  std::uint32_t returned = 0;
  for (; returned < max && from + returned < count; ++returned) {
    write(static_cast<std::size_t>(from) + returned,
          body.reply(page.atRecords + returned * page.recordSize, page.recordSize));
  }
  body.put32(page.atReturned, returned);
  return Status::ok;
}

/// A page of the entries of one address set.
template <typename Writer>
std::uint32_t fillEntries(const CommandContext& context, CommandBody& body, const Page& page,
                          const SetFile& set, Writer write) {
  const std::uint32_t count = set.head().counts[0];
  const std::uint32_t from = get32(body.bytes(), page.atFrom);
  if (set.head().type != 1) {
    return context.refuse(Status::invalidAddrSetType, "a container has no addresses");
  }
  if (from > count) {
    return context.refuse(Status::noAddress, format("address %u of %u", from, count));
  }
  return fillPage(context, body, page, count, write);
}

ConstBytes addressOf(const SetFile& set, std::size_t place) {
  return part(set.entries(), place * AddressRecord::size, AddressRecord::size);
}

/// The sets whose kind the request asks for; 0 asks for every kind.
std::vector<std::string> namesOfType(const CommandContext& context, const CommandBody& body) {
  const unsigned type = get8(body.bytes(), 0) & 15u;
  std::vector<std::string> found = names(context);
  if (type == 0) return found;
  std::erase_if(found, [&](const std::string& name) {
    const auto set = SetFile::open(context.store, fileOf(context, name));
    return !set || set->head().addressType != type;
  });
  return found;
}

/// Counters as they would be after some traffic: the same whenever they are read, and no two of
/// one record alike.
void putCounters(Bytes record, std::size_t offset, std::size_t count, std::uint64_t load) {
  for (std::size_t i = 0; i < count; ++i) put64(record, offset + 8 * i, load * (2 * i + 3));
}

}  // namespace

std::uint32_t getTypeAndSize(const CommandContext& context, CommandBody& body) {
  const Named named = openNamed(context, body);
  if (named.status != Status::ok) return named.status;
  body.put32(38, named.set->head().counts[0]);
  body.put32(42, named.set->head().type);
  body.put32(46, static_cast<std::uint32_t>(named.set->head().entryBytes));
  return Status::ok;
}

std::uint32_t getInfo(const CommandContext& context, CommandBody& body) {
  const Named named = openNamed(context, body);
  if (named.status != Status::ok) return named.status;
  body.put32(38, named.set->head().counts[0]);
  body.put64(42, named.set->head().realized);
  body.put64(50, named.set->head().generation);
  return Status::ok;
}

std::uint32_t getAddresses(const CommandContext& context, CommandBody& body) {
  const Named named = openNamed(context, body);
  if (named.status != Status::ok) return named.status;
  body.put64(54, named.set->head().realized);
  body.put64(62, named.set->head().generation);
  return fillEntries(context, body, {42, 46, 50, 70, AddressRecord::size}, *named.set,
                     [&](std::size_t place, Bytes record) {
                       std::memcpy(record.data(), addressOf(*named.set, place).data(),
                                   record.size());
                     });
}

std::uint32_t getMarks(const CommandContext& context, CommandBody& body) {
  const Named named = openNamed(context, body);
  if (named.status != Status::ok) return named.status;
  return fillEntries(context, body, {42, 46, 50, 54, AddressRecord::size + 1}, *named.set,
                     [&](std::size_t place, Bytes record) {
                       std::memcpy(record.data(), addressOf(*named.set, place).data(),
                                   AddressRecord::size);
                       put8(record, AddressRecord::size, get8(named.set->marks(), place));
                     });
}

std::uint32_t getEntryStatistics(const CommandContext& context, CommandBody& body) {
  constexpr std::size_t atClear = 50, recordSize = 80;
  constexpr std::size_t atConnections = 64, atHighWater = 68, atUptime = 72;
  const Named named = openNamed(context, body);
  if (named.status != Status::ok) return named.status;
  const SetHead& head = named.set->head();
  const std::uint64_t uptime = bootSeconds() - std::min(bootSeconds(), head.realized);
  const bool clear = get32(body.bytes(), atClear) != 0;
  const std::uint32_t status =
      fillEntries(context, body, {42, 46, 54, 58, recordSize}, *named.set,
                  [&](std::size_t place, Bytes record) {
                    const std::uint64_t load = head.cleared != 0 ? 0 : place % 1000 + 1;
                    putCounters(record, 0, 8, load);
                    put32(record, atConnections, static_cast<std::uint32_t>(load % 7));
                    put32(record, atHighWater, static_cast<std::uint32_t>(load % 7 + load));
                    put64(record, atUptime, uptime);
                  });
  if (status == Status::ok && clear && head.cleared == 0) {
    SetHead cleared = head;
    cleared.cleared = 1;
    const std::string file = fileOf(context, getText(body.bytes(), 0, nameSize));
    SetFile::save(context.store, file, cleared, named.set->entries(), named.set->marks());
  }
  return status;
}

std::uint32_t getCount(const CommandContext& context, CommandBody& body) {
  body.put32(4, static_cast<std::uint32_t>(namesOfType(context, body).size()));
  return Status::ok;
}

std::uint32_t getList(const CommandContext& context, CommandBody& body) {
  const std::vector<std::string> found = namesOfType(context, body);
  return fillPage(
      context, body, {4, 8, 12, 16, nameSize}, found.size(),
      [&](std::size_t place, Bytes record) { putText(record, 0, nameSize, found[place]); });
}

std::uint32_t getStatisticsList(const CommandContext& context, CommandBody& body) {
  constexpr std::size_t recordSize = 130, atMatch = 102, atNoMatch = 110, atUptime = 118;
  const std::vector<std::string> found = namesOfType(context, body);
  return fillPage(context, body, {4, 8, 12, 16, recordSize}, found.size(),
                  [&](std::size_t place, Bytes record) {
                    std::memset(record.data(), 0, record.size());
                    putText(record, 0, nameSize, found[place]);
                    const auto set = SetFile::open(context.store, fileOf(context, found[place]));
                    if (!set) return;
                    const std::uint64_t load = set->head().counts[0] + 1;
                    putCounters(record, nameSize, 8, load);
                    put64(record, atMatch, load * 101);
                    put64(record, atNoMatch, load * 53);
                    put64(record, atUptime,
                          bootSeconds() - std::min(bootSeconds(), set->head().realized));
                  });
}

std::uint32_t getElements(const CommandContext& context, CommandBody& body) {
  constexpr std::size_t atReturned = 50, atRealized = 54, atGeneration = 62, atChain = 70;
  const Named named = openNamed(context, body);
  if (named.status != Status::ok) return named.status;
  if (named.set->head().type == 1) {
    return context.refuse(Status::invalidAddrSetType, "an address set has no elements");
  }
  const ConstBytes chain = named.set->entries();
  if (body.size() - atChain < chain.size()) {
    return context.refuse(Status::bufferTooSmall, format("room of %zu bytes for a chain of %zu",
                                                         body.size() - atChain, chain.size()));
  }
  body.put32(atReturned, named.set->head().counts[0]);
  body.put64(atRealized, named.set->head().realized);
  body.put64(atGeneration, named.set->head().generation);
  std::memcpy(body.reply(atChain, chain.size()).data(), chain.data(), chain.size());
  return Status::ok;
}

}  // namespace TarnLab::AddrSets
