// The commands that make, empty and remove address sets and containers.
#include "LabAddrSetCommands.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

using AddrSets::name;
using AddrSets::sets;
using Context = const CommandContext&;

// The head of both creations, 86 bytes; the entries follow it.
constexpr const char* what = "address set";
constexpr U64 sequence{38, "sequence"};
constexpr U32 count{46, "entries"}, type{50, "type"}, entryBytes{54, "bytes"};
constexpr U8 flags{58, "flags"};
constexpr Blob transaction{62, 16, "transaction", As::id};
constexpr std::size_t entriesAt = 86;
constexpr unsigned flagsCommitted = 3, flagIPv6 = 8;
constexpr FieldList creation{name,
                             sequence,
                             Reserved{38, 8, what},
                             count,
                             type,
                             entryBytes,
                             flags,
                             Reserved{58, 1, what, 0xff & ~(flagsCommitted | flagIPv6)},
                             Reserved{59, 3, what},
                             Reserved{78, 8, what}};

/// Checks the head of a creation; 0 or a status.
std::uint32_t checkCreation(Context context, const Body& body) {
  const std::size_t room = body.size() - entriesAt;
  if (name.get(body).empty()) {
    return context.refuse(Status::noAddrSet, "address set without a name");
  }
  if ((flags.get(body) & flagsCommitted) != flagsCommitted) {
    return context.refuse(Status::badTransaction, "address set as a part of a transaction");
  }
  if (entryBytes.get(body) != room) {
    return context.refuse(Status::badMessage, format("address set of %u bytes, %zu are there",
                                                     entryBytes.get(body), room));
  }
  if (room > context.host.memory()) {
    return context.refuse(Status::noMemory, "address set beyond the host's memory");
  }
  return Status::ok;
}

/// Stores a set under its name, with the next generation when there was one before.
std::uint32_t store(Context context, std::string_view called, SetHead head, ConstBytes entries) {
  if (const auto before = sets.open(context, called)) {
    head.generation = before->head().generation;
    head.statistics = before->head().statistics;
  }
  head.what = SetHead::addrSet;
  head.entryBytes = entries.size();
  head.touch();
  sets.save(context, called, head, entries);
  return Status::ok;
}

/// The kind of a set that an address may be in: 1 IP, 2 Ethernet, 4 attributes.
unsigned groupOf(unsigned addressType) {
  if (AddressRecord::isIp(addressType) || addressType == AddressRecord::any) return 1;
  return AddressRecord::isMac(addressType) ? 2 : 4;
}

/// Checks the addresses of a set and finds its kind; a status.
std::uint32_t checkAddresses(Context context, ConstBytes entries, SetHead& head, bool& ipv6) {
  for (std::size_t i = 0; i < head.counts[0]; ++i) {
    const ConstBytes address = part(entries, i * AddressRecord::size, AddressRecord::size);
    const unsigned kind = get16(address, AddressRecord::type);
    std::string fault = AddressRecord::fault(address);
    if (kind == AddressRecord::setName) fault = "address set inside an address set";
    if (!fault.empty()) {
      return context.refuse(Status::invalidAddress, format("address %zu: %s", i, fault.c_str()));
    }
    if (i > 0 && groupOf(kind) != head.addressType) {
      return context.refuse(Status::invalidAddrSetType, format("address %zu of another kind", i));
    }
    head.addressType = groupOf(kind);
    ipv6 = ipv6 || kind == AddressRecord::ipv6 || kind == AddressRecord::ipv6Range ||
           kind == AddressRecord::ipv6Cidr;
  }
  return Status::ok;
}

std::uint32_t createAddrSet(Context context, Body& body) {
  if (const std::uint32_t status = checkCreation(context, body); status != 0) return status;
  const ConstBytes entries = body.bytes().subspan(entriesAt);
  if (type.get(body) != 1) {
    return context.refuse(Status::invalidAddrSetType,
                          format("address set of type %u", type.get(body)));
  }
  if (std::uint64_t{count.get(body)} * AddressRecord::size != entries.size()) {
    return context.refuse(Status::badMessage,
                          format("%u addresses in %zu bytes", count.get(body), entries.size()));
  }
  SetHead head;
  head.type = 1;
  head.addressType = 1;
  head.counts[0] = count.get(body);
  bool ipv6 = false;
  const std::uint32_t status = checkAddresses(context, entries, head, ipv6);
  if (status != Status::ok) return status;
  if (ipv6 != ((flags.get(body) & flagIPv6) != 0)) {
    return context.refuse(Status::badMessage, "IPv6 flag does not agree with the addresses");
  }
  return store(context, name.get(body), head, entries);
}

std::uint32_t createContainer(Context context, Body& body) {
  if (const std::uint32_t status = checkCreation(context, body); status != 0) return status;
  const ConstBytes chain = body.bytes().subspan(entriesAt);
  std::string fault = Chain::fault(chain);
  if (fault.empty() && (get32(chain, Chain::type) != type.get(body) ||
                        get32(chain, Chain::count) != count.get(body))) {
    fault = "chain that does not agree with its container";
  }
  if (!fault.empty()) return context.refuse(Status::invalidAttribute, fault);
  SetHead head;
  head.type = type.get(body);
  head.addressType = 4;
  head.counts[0] = count.get(body);
  return store(context, name.get(body), head, chain);
}

std::uint32_t destroy(Context context, Body& body) {
  const std::string_view called = name.get(body);
  const bool removed = context.store.remove(sets.fileOf(context, called));
  return removed ? Status::ok : sets.refuse(context, called);
}

std::uint32_t clear(Context context, Body& body) {
  const std::string_view called = name.get(body);
  return withSet(context, sets, called, [&](const SetFile& set) {
    SetHead head = set.head();
    head.counts[0] = 0;
    ByteVector entries;
    if (head.type != 1) {
      entries.resize(Chain::headSize);
      put32(entries, Chain::type, head.type);
    }
    head.entryBytes = entries.size();
    head.touch();
    sets.save(context, called, head, entries);
    return Status::ok;
  });
}

std::uint32_t destroyAll(Context context, Body&) {
  context.store.removeTree(sets.folderOf(context));
  return Status::ok;
}

constexpr List sentAddresses{
    .record = &AddrSets::addresses, .inRequest = true, .count = count, .at = entriesAt};
constexpr List sentElements{
    .record = &AddrSets::elements, .inRequest = true, .count = count, .at = entriesAt};

constexpr CommandKind commands[] = {
    {.number = 13,
     .scope = CommandScope::sets,
     .least = 86,
     .answer = createAddrSet,
     .request = creation,
     .reply = {transaction},
     .list = sentAddresses},
    {.number = 14,
     .scope = CommandScope::sets,
     .least = 38,
     .answer = destroy,
     .request = {name, Reserved{38, 4}}},
    {.number = 64,
     .scope = CommandScope::sets,
     .least = 38,
     .answer = clear,
     .request = {name, Reserved{38, 8}}},
    {.number = 65,
     .scope = CommandScope::sets,
     .least = 1,
     .answer = destroyAll,
     .request = {Reserved{0, 4}}},
    {.number = 75,
     .scope = CommandScope::sets,
     .least = 86,
     .answer = createContainer,
     .request = creation,
     .reply = {transaction},
     .list = sentElements},
};

}  // namespace

constinit const Family addrSetFamily{.commands = commands};

}  // namespace TarnLab
