// Commands 69 to 72 and 76: the addresses of domain names that a filter knows, and the identifiers
// of the names that an address has.
#include "LabNames.h"

#include "LabAddressRecord.h"
#include "LabChain.h"
#include "LabFamily.h"
#include "LabSetFile.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

constexpr unsigned familyIpv4 = 2, familyIpv6 = 28;

/// An entry: an address, and after it an item for each identifier. It is stored as it is answered.
namespace Entry {
constexpr std::size_t size = 170;
constexpr U16 type{AddressRecord::type, "type"};
constexpr Blob address{0, AddressRecord::size, "address"}, value{AddressRecord::value, 16, "key"};
constexpr U8 family{144, "family"}, infinite{165, "infinite"};
constexpr U64 start{145, "start"};
constexpr U32 timeToLive{161, "time to live"}, identifiers{166, "identifiers"};
}  // namespace Entry

/// An item: the identifier as text, and the name that it stands for.
namespace Item {
constexpr std::size_t size = 1090;
constexpr Text identifier{0, 40, "identifier"}, name{64, 1026, "name"};
}  // namespace Item

ConstBytes itemOf(ConstBytes entry, std::size_t place) {
  return part(entry, Entry::size + place * Item::size, Item::size);
}

std::string entryText(ConstBytes entry) {
  const bool ipv4 = Entry::family.get(entry) == familyIpv4;
  std::string text = "ip " + AddressRecord::ipText(Entry::value.get(entry).first(ipv4 ? 4 : 16));
  text += format(" since %llu, ", static_cast<unsigned long long>(Entry::start.get(entry)));
  text += Entry::infinite.get(entry) != 0 ? "stays"
                                          : format("for %u seconds", Entry::timeToLive.get(entry));
  for (std::uint32_t i = 0; i < Entry::identifiers.get(entry); ++i) {
    const ConstBytes item = itemOf(entry, i);
    text += "\n  " + printable(Item::identifier.get(item)) + " " + printable(Item::name.get(item));
  }
  return text;
}

constexpr Table names{"names", Entry::size, entryText};

/// Entries are ordered by their families, IPv4 first, and then by the bytes of their addresses.
bool isBefore(unsigned leftFamily, ConstBytes left, unsigned rightFamily, ConstBytes right) {
  if (leftFamily != rightFamily) return leftFamily < rightFamily;
  return std::memcmp(left.data(), right.data(), 16) < 0;
}

// Command 69
constexpr U32 result{0, "result"};

std::uint32_t forgetNames(Context context, Body& body) {
  names.save(context.store, context.target.folder, {});
  result.put(body, 0);
  return Status::ok;
}

// Command 70
constexpr U32 entryCount{0, "entries"}, identifierCount{4, "identifiers"};

std::uint32_t countNames(Context context, Body& body) {
  const Table::Records entries = names.load(context.store, context.target.folder);
  std::uint32_t identifiers = 0;
  for (const ByteVector& entry : entries) identifiers += Entry::identifiers.get(entry);
  entryCount.put(body, static_cast<std::uint32_t>(entries.size()));
  identifierCount.put(body, identifiers);
  return Status::ok;
}

/// Command 71: the entry after the one of the request, which need not be there any more.
std::uint32_t nextName(Context context, Body& body) {
  const unsigned family = Entry::family.get(body);
  if (family != 0 && family != familyIpv4 && family != familyIpv6) {
    return context.refuse(Status::invalidAddress, format("family %u", family));
  }
  for (const ByteVector& entry : names.load(context.store, context.target.folder)) {
    if (!isBefore(family, Entry::value.get(body), Entry::family.get(entry),
                  Entry::value.get(entry))) {
      continue;
    }
    copyRecord(body.reply(0, Entry::size), ConstBytes(entry).first(Entry::size));
    return Status::ok;
  }
  return context.refuse(Status::noAddress, "there is no entry after that");
}

// Command 72: records of 1239 bytes, of which the first one is the request as well.
namespace Identifier {
constexpr std::size_t size = 1239;
constexpr Blob item{145, Item::size, "item"};
constexpr U32 count{1235, "identifiers"};
}  // namespace Identifier

/// The entry of an address; its family follows from the address record's type.
const ByteVector* findEntry(const Table::Records& entries, ConstBytes address) {
  for (const ByteVector& entry : entries) {
    if (Entry::type.get(entry) == Entry::type.get(address) &&
        std::memcmp(&entry[AddressRecord::value], &address[AddressRecord::value], 16) == 0) {
      return &entry;
    }
  }
  return nullptr;
}

std::uint32_t identifiersOf(Context context, Body& body) {
  const std::uint32_t room = Identifier::count.get(body);
  if (room == 0 || room > body.size() / Identifier::size) {
    return context.refuse(Status::badMessage,
                          format("room for %u identifiers in %zu bytes", room, body.size()));
  }
  const Table::Records entries = names.load(context.store, context.target.folder);
  const ByteVector* entry = findEntry(entries, Entry::address.get(body));
  if (entry == nullptr) return context.refuse(Status::noAddress, "there is no such entry");
  const std::uint32_t count = std::min(room, Entry::identifiers.get(*entry));
  Identifier::count.put(body, count);
  for (std::size_t i = 0; i < count; ++i) {
    const Bytes record = body.reply(i * Identifier::size, Identifier::size);
    Entry::address.put(record, Entry::address.get(*entry));
    Entry::family.put(record, Entry::family.get(*entry));
    Identifier::item.put(record, itemOf(*entry, i));
    Identifier::count.put(record, count);
  }
  return Status::ok;
}

// Command 76: the domain as an element of a chain, and then addresses.
constexpr std::size_t domainAt = 8;
constexpr U32 addressCount{0, "addresses"}, size{4, "bytes"};

namespace Domain {
constexpr unsigned domainKey = 7;
constexpr U32 length{4, "length"};
constexpr U16 key{8, "key"}, nameLength{34, "name length"};
constexpr std::size_t uuid = 18, name = 36;
}  // namespace Domain

/// The chain of one element that the domain would be; for the checks and the texts of chains.
ByteVector chainOf(ConstBytes element) {
  ByteVector chain(Chain::headSize);
  put32(chain, Chain::type, 2);
  put32(chain, Chain::count, 1);
  put32(chain, Chain::bytes, static_cast<std::uint32_t>(element.size()));
  chain.insert(chain.end(), element.begin(), element.end());
  return chain;
}

/// The domain of a body; empty when the body is too short for what it says.
ConstBytes domainOf(ConstBytes body) {
  const ConstBytes rest = body.subspan(domainAt);
  if (rest.size() < Chain::elementHeadSize) return {};
  const std::size_t length = Domain::length.get(rest);
  if (length > rest.size() - Chain::elementHeadSize) return {};
  return rest.first(Chain::elementHeadSize + length);
}

std::string domainFault(ConstBytes domain) {
  if (domain.empty()) return "domain is cut off";
  if (std::string fault = Chain::fault(chainOf(domain)); !fault.empty()) return fault;
  if (Domain::key.get(domain) != Domain::domainKey) {
    return format("attribute key %u in the place of a domain", Domain::key.get(domain));
  }
  const unsigned length = Domain::nameLength.get(domain);
  return length > 1 && length <= Item::name.size ? "" : "domain without a proper name";
}

ByteVector itemOfDomain(ConstBytes domain) {
  std::string uuid;
  for (std::size_t i = 0; i < 16; ++i) {
    const bool dash = i == 4 || i == 6 || i == 8 || i == 10;
    uuid += format(dash ? "-%02x" : "%02x", get8(domain, Domain::uuid + i));
  }
  ByteVector item(Item::size);
  Item::identifier.put(Bytes(item), uuid);
  Item::name.put(Bytes(item), getText(domain, Domain::name, Domain::nameLength.get(domain)));
  return item;
}

std::string addressFault(ConstBytes address) {
  const unsigned type = get16(address, AddressRecord::type);
  if (type != AddressRecord::ipv4 && type != AddressRecord::ipv6) {
    return format("address of type %u for a domain", type);
  }
  if (get8(address, AddressRecord::flags) != 0) return "negated address for a domain";
  return AddressRecord::fault(address);
}

ByteVector newEntry(ConstBytes address) {
  ByteVector entry(Entry::size);
  const bool ipv4 = get16(address, AddressRecord::type) == AddressRecord::ipv4;
  Entry::address.put(Bytes(entry), address);
  Entry::family.put(Bytes(entry), static_cast<std::uint8_t>(ipv4 ? familyIpv4 : familyIpv6));
  Entry::start.put(Bytes(entry), bootSeconds());
  Entry::infinite.put(Bytes(entry), 1);
  return entry;
}

/// The entry of an address in its place; made when there is none. What is given stays.
ByteVector& entryOf(Table::Records& entries, ConstBytes address) {
  const ByteVector wanted = newEntry(address);
  const auto isBeforeIt = [](const ByteVector& left, const ByteVector& right) {
    return isBefore(Entry::family.get(left), Entry::value.get(left), Entry::family.get(right),
                    Entry::value.get(right));
  };
  const auto place = std::lower_bound(entries.begin(), entries.end(), wanted, isBeforeIt);
  if (place != entries.end() && !isBeforeIt(wanted, *place)) return *place;
  return *entries.insert(place, wanted);
}

/// Adds an item, or puts it in the place of the one with its identifier.
void addItem(ByteVector& entry, const ByteVector& item) {
  const std::uint32_t count = Entry::identifiers.get(entry);
  for (std::size_t i = 0; i < count; ++i) {
    if (Item::identifier.get(itemOf(entry, i)) != Item::identifier.get(item)) continue;
    copyRecord(part(Bytes(entry), Entry::size + i * Item::size, Item::size), item);
    return;
  }
  entry.insert(entry.end(), item.begin(), item.end());
  Entry::identifiers.put(Bytes(entry), count + 1);
}

std::uint32_t addAddresses(Context context, Body& body) {
  if (size.get(body) != body.size() - domainAt) {
    return context.refuse(Status::badMessage, format("domain and addresses of %u bytes, %zu there",
                                                     size.get(body), body.size() - domainAt));
  }
  const ConstBytes domain = domainOf(body);
  if (const std::string fault = domainFault(domain); !fault.empty()) {
    return context.refuse(Status::invalidAttribute, fault);
  }
  ConstBytes addresses = body.bytes().subspan(domainAt + domain.size());
  if (std::uint64_t{addressCount.get(body)} * AddressRecord::size != addresses.size()) {
    return context.refuse(Status::badMessage, format("%u addresses in %zu bytes",
                                                     addressCount.get(body), addresses.size()));
  }
  Table::Records entries = names.load(context.store, context.target.folder);
  const ByteVector item = itemOfDomain(domain);
  for (; !addresses.empty(); addresses = addresses.subspan(AddressRecord::size)) {
    const ConstBytes address = addresses.first(AddressRecord::size);
    if (const std::string fault = addressFault(address); !fault.empty()) {
      return context.refuse(Status::invalidAddress, fault);
    }
    addItem(entryOf(entries, address), item);
  }
  names.save(context.store, context.target.folder, entries);
  return Status::ok;
}

// The entries of the usual host: both families, both kinds of a time to live, none to three names.
struct Sample {
  bool ipv4;
  std::array<std::uint8_t, 16> address;
  std::uint32_t start;
  std::uint32_t timeToLive;  // 0 for one that stays
  unsigned identifiers;
};

constexpr Sample samples[] = {
    {true, {10, 20, 5, 10}, 120, 300, 1},
    {true, {10, 20, 5, 11}, 260, 0, 2},
    {true, {10, 20, 5, 12}, 380, 60, 0},
    {false, {0xfd, 0, 0, 0x20, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x10}, 540, 86400, 1},
    {false, {0xfd, 0, 0, 0x20, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x11}, 660, 0, 3},
};

void fill(Context context) {
  if (!context.host.isShowpiece(context.target.index)) return;
  Table::Records entries;
  unsigned number = 0;
  for (const Sample& sample : samples) {
    ByteVector address(AddressRecord::size);
    put16(address, AddressRecord::type,
          static_cast<std::uint16_t>(sample.ipv4 ? AddressRecord::ipv4 : AddressRecord::ipv6));
    Entry::value.put(Bytes(address), std::as_bytes(std::span(sample.address)));
    ByteVector& entry = entryOf(entries, address);
    Entry::start.put(Bytes(entry), sample.start);
    Entry::timeToLive.put(Bytes(entry), sample.timeToLive);
    Entry::infinite.put(Bytes(entry), sample.timeToLive == 0 ? 1 : 0);
    for (unsigned i = 0; i < sample.identifiers; ++i) {
      ++number;
      ByteVector item(Item::size);
      Item::identifier.put(Bytes(item), format("6f1c2b90-4d3e-4a57-8c61-0000000000%02x", number));
      Item::name.put(Bytes(item), format("shop%u.kelpco.example", number));
      addItem(entry, item);
    }
  }
  names.save(context.store, context.target.folder, entries);
}

std::string identifierText(ConstBytes record) {
  const ConstBytes item = Identifier::item.get(record);
  return std::string(Item::identifier.get(item)) + " " + std::string(Item::name.get(item));
}

/// The domain and the addresses of command 76.
std::vector<std::string> domainLines(ConstBytes records) {
  ByteVector body(domainAt);
  body.insert(body.end(), records.begin(), records.end());
  const ConstBytes domain = domainOf(body);
  std::vector<std::string> lines = Chain::lines(chainOf(domain));
  for (ConstBytes rest = records.subspan(domain.size()); rest.size() >= AddressRecord::size;
       rest = rest.subspan(AddressRecord::size)) {
    lines.push_back(AddressRecord::text(rest.first(AddressRecord::size)));
  }
  return lines;
}

constexpr RecordKind identifierRecords{Identifier::size, identifierText};
constexpr RecordKind domainRecords{0, nullptr, {}, domainLines};

constexpr CommandKind commands[] = {
    {.number = 69,
     .least = 4,
     .answer = forgetNames,
     .request = {Reserved{0, 4}},
     .reply = {result}},
    {.number = 70,
     .least = 8,
     .answer = countNames,
     .request = {Reserved{0, 8}},
     .reply = {entryCount, identifierCount}},
    {.number = 71,
     .least = Entry::size,
     .answer = nextName,
     .request = {Reserved{0, 4}, Entry::value, Reserved{20, 124}, Entry::family, Reserved{145, 25}},
     .reply = {Entry::type, Entry::value, Entry::family, Entry::start, Entry::timeToLive,
               Entry::infinite, Entry::identifiers}},
    {.number = 72,
     .least = Identifier::size,
     .answer = identifiersOf,
     .request = {Entry::type, Entry::value, Identifier::count},
     .reply = {Identifier::count},
     .list = {.record = &identifierRecords, .count = Identifier::count}},
    {.number = 76,
     .least = domainAt,
     .answer = addAddresses,
     .request = {addressCount, size},
     .list = {.record = &domainRecords, .inRequest = true, .count = addressCount, .at = domainAt}},
};

constexpr Table tables[] = {names};

}  // namespace

constinit const Family nameFamily{.commands = commands, .fill = fill, .tables = tables};

std::vector<DomainName> domainNames(const Store& store, const std::string& folder) {
  std::vector<DomainName> found;
  for (const ByteVector& entry : names.load(store, folder)) {
    for (std::uint32_t i = 0; i < Entry::identifiers.get(entry); ++i) {
      const ConstBytes item = itemOf(entry, i);
      found.push_back({std::string(Item::identifier.get(item)), std::string(Item::name.get(item))});
    }
  }
  return found;
}

}  // namespace TarnLab
