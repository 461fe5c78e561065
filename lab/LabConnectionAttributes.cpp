// Commands 73, 74 and 77: attributes that connections were given, and what inspection has found
// out about them.
#include "LabConnectionAttributes.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "LabChain.h"
#include "LabFamily.h"
#include "LabFlowFile.h"
#include "LabUsers.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

/// A connection, by its addresses or its id, and after it the chain of its attributes.
namespace Attributed {
constexpr std::size_t keySize = 48;
constexpr Blob connection{0, 40, "connection"};
constexpr Net64 id{40, "id"};
}  // namespace Attributed

ConstBytes chainOf(ConstBytes record) { return record.subspan(Attributed::keySize); }

std::string attributedText(ConstBytes record) {
  std::string text = fieldsText({Attributed::connection}, record);
  if (isZero(Attributed::connection.get(record))) {
    text = format("id %llx", static_cast<unsigned long long>(Attributed::id.get(record)));
  }
  for (const std::string& line : Chain::lines(chainOf(record))) text += "\n  " + line;
  return text;
}

constexpr Table attributed{"attributes", Attributed::keySize + Chain::headSize, attributedText};

/// A connection that was inspected.
namespace Inspected {
constexpr std::size_t size = 10;
constexpr Net64 id{0, "id"};
constexpr U8 found{8, "found"}, state{9, "state"};
}  // namespace Inspected

std::string inspectedText(ConstBytes record) {
  return format("id %llx, state %u", static_cast<unsigned long long>(Inspected::id.get(record)),
                Inspected::state.get(record));
}

constexpr Table inspected{"inspections", Inspected::size, inspectedText};

/// The place of a connection; the count of all when it has no attributes.
std::size_t placeOfKey(const Table::Records& all, ConstBytes key) {
  std::size_t place = 0;
  while (place < all.size() &&
         std::memcmp(all[place].data(), key.data(), Attributed::keySize) != 0) {
    ++place;
  }
  return place;
}

/// The key of a connection that a request selects. Of its addresses and its id, the one that does
/// not select has to be zero.
std::uint32_t makeKey(Context context, bool byConnection, ConstBytes connection, std::uint64_t id,
                      ByteVector& key) {
  if (byConnection ? id != 0 : !isZero(connection)) {
    return context.refuse(Status::badMessage, "connection by its addresses and by its id");
  }
  if (byConnection ? isZero(connection) : id == 0) {
    return context.refuse(Status::invalidArgument, "no connection");
  }
  key.assign(Attributed::keySize, std::byte{0});
  Attributed::connection.put(Bytes(key), connection);
  Attributed::id.put(Bytes(key), id);
  return Status::ok;
}

/// Calls the visitor with each element of a chain without a fault, head included.
template <typename Visitor>
void forEachElement(ConstBytes chain, Visitor visit) {
  ConstBytes rest = chain.subspan(Chain::headSize);
  while (!rest.empty()) {
    const std::size_t size = Chain::elementHeadSize + get32(rest, 4);
    visit(part(rest, 0, size));
    rest = rest.subspan(size);
  }
}

bool hasElement(ConstBytes chain, ConstBytes wanted) {
  bool found = false;
  forEachElement(chain, [&](ConstBytes element) {
    found = found || (element.size() == wanted.size() &&
                      std::memcmp(element.data(), wanted.data(), wanted.size()) == 0);
  });
  return found;
}

/// Whether a key, an id or a description, is that of a flow.
bool isOf(ConstBytes key, ConstBytes flow) {
  const std::uint64_t id = Attributed::id.get(key);
  return id != 0 ? FlowRecord::id.get(flow) == id
                 : describes(Attributed::connection.get(key), flow);
}

/// All attributes of the connection with that key, in the bytes that they have as those of a flow;
/// nothing when the filter has no such connection.
std::optional<FlowAttributes::Size> attributesOf(Context context, ConstBytes key) {
  const auto file = FlowFile::open(context.store, context.target.folder);
  if (!file) return std::nullopt;
  for (std::size_t i = file->placeOfId(Attributed::id.get(key)); i < file->count(activeGroup);
       ++i) {
    const ConstBytes flow = file->record(activeGroup, i);
    if (isOf(key, flow)) {
      ByteVector buffer(flow.begin(), flow.end());
      return ConnectionAttributes(context.store, context.target.folder).append(buffer, flow);
    }
    if (Attributed::id.get(key) != 0) break;  // they are in the order of their ids
  }
  return std::nullopt;
}

ByteVector emptyChain() {
  ByteVector chain(Chain::headSize);
  put32(chain, Chain::type, 2);
  return chain;
}

/// Appends those elements of a chain that the other one has not.
void appendMissing(ByteVector& to, ConstBytes from, ConstBytes other) {
  forEachElement(from, [&](ConstBytes element) {
    if (hasElement(other, element)) return;
    to.insert(to.end(), element.begin(), element.end());
    put32(to, Chain::count, get32(to, Chain::count) + 1);
    put32(to, Chain::bytes, static_cast<std::uint32_t>(to.size() - Chain::headSize));
  });
}

// Command 73
constexpr std::size_t chainAt = 68;
constexpr U32 result{0, "result"}, operation{4, "operation"}, selector{48, "selector"},
    attributeCount{60, "attributes"}, attributeBytes{64, "bytes"};
constexpr Blob connection{8, 40, "connection"};
constexpr Net64 id{52, "id"};
constexpr std::uint32_t deleteAttributes = 1, byId = 0, byConnection = 1;
constexpr unsigned keyUserSid = 9;

/// Whether each user that an attribute names is known.
bool knowsUsers(Context context, ConstBytes chain) {
  bool known = true;
  forEachElement(chain, [&](ConstBytes element) {
    constexpr std::size_t atKey = Chain::elementHeadSize, atSid = atKey + 10, sidSize = 72;
    if (get16(element, atKey) != keyUserSid) return;
    known = known && hasUser(context, part(element, atSid, sidSize));
  });
  return known;
}

std::uint32_t checkAttributes(Context context, const Body& body) {
  if (operation.get(body) > deleteAttributes || selector.get(body) > byConnection) {
    return context.refuse(Status::invalidArgument, format("operation %u, selector %u",
                                                          operation.get(body), selector.get(body)));
  }
  const ConstBytes chain = body.bytes().subspan(chainAt);
  if (attributeBytes.get(body) != chain.size()) {
    return context.refuse(Status::badMessage, format("attributes of %u bytes, %zu are there",
                                                     attributeBytes.get(body), chain.size()));
  }
  std::string fault = Chain::fault(chain);
  if (fault.empty() && get32(chain, Chain::count) != attributeCount.get(body)) {
    fault = "chain with another count";
  }
  return fault.empty() ? Status::ok : context.refuse(Status::invalidAttribute, fault);
}

/// What a connection has after the operation: without attributes, a deletion takes all of them.
ByteVector changedChain(ConstBytes before, ConstBytes given, bool deleting) {
  ByteVector chain = deleting ? emptyChain() : ByteVector(before.begin(), before.end());
  if (!deleting) appendMissing(chain, given, before);
  if (deleting && get32(given, Chain::count) != 0) appendMissing(chain, before, given);
  return chain;
}

std::uint32_t changeAttributes(Context context, Body& body) {
  if (const std::uint32_t status = checkAttributes(context, body); status != 0) return status;
  ByteVector key;
  const std::uint32_t status =
      makeKey(context, selector.get(body) == byConnection, connection.get(body), id.get(body), key);
  if (status != Status::ok) return status;
  const ConstBytes given = body.bytes().subspan(chainAt);
  if (!knowsUsers(context, given)) {
    context.entry.note = "an attribute names a user without a mapping";
    result.put(body, Status::noUser);
    return Status::ok;
  }
  Table::Records all = attributed.load(context.store, context.target.folder);
  const std::size_t place = placeOfKey(all, key);
  const ByteVector chain =
      changedChain(place < all.size() ? chainOf(all[place]) : ConstBytes(emptyChain()), given,
                   operation.get(body) == deleteAttributes);
  if (place < all.size()) all.erase(all.begin() + static_cast<std::ptrdiff_t>(place));
  key.insert(key.end(), chain.begin(), chain.end());
  if (get32(chain, Chain::count) != 0) {
    all.insert(all.begin() + static_cast<std::ptrdiff_t>(place), key);
  }
  attributed.save(context.store, context.target.folder, all);
  result.put(body, 0);
  return Status::ok;
}

// Command 74
namespace Asked {
constexpr U32 selector{0, "selector"}, count{52, "attributes"}, bytes{56, "bytes"};
constexpr Blob connection{4, 40, "connection"};
constexpr Net64 id{44, "id"};
constexpr std::uint32_t byConnection = 2;
}  // namespace Asked

std::uint32_t countAttributes(Context context, Body& body) {
  const std::uint32_t kind = Asked::selector.get(body);
  if (kind != byId && kind != Asked::byConnection) {
    return context.refuse(Status::invalidArgument, format("selector %u", kind));
  }
  ByteVector key;
  const std::uint32_t status = makeKey(context, kind == Asked::byConnection,
                                       Asked::connection.get(body), Asked::id.get(body), key);
  if (status != Status::ok) return status;
  if (const auto size = attributesOf(context, key)) {
    Asked::count.put(body, size->count);
    Asked::bytes.put(body, static_cast<std::uint32_t>(Chain::headSize + size->bytes +
                                                      size->count * Chain::elementHeadSize));
    return Status::ok;
  }
  const Table::Records all = attributed.load(context.store, context.target.folder);
  const std::size_t place = placeOfKey(all, key);
  const ByteVector chain = emptyChain();
  const ConstBytes found = place < all.size() ? chainOf(all[place]) : ConstBytes(chain);
  Asked::count.put(body, get32(found, Chain::count));
  Asked::bytes.put(body, static_cast<std::uint32_t>(found.size()));
  return Status::ok;
}

// Command 77
constexpr std::size_t entriesAt = 8, entrySize = 16;
constexpr U32 entryCount{0, "entries"};
constexpr Reserved restOfEntry{8, 8};

/// The state of one connection. One that is a flow of the filter has come as far as it has
/// attributes, up to the last state that has a name.
std::optional<unsigned> stateOf(Context context, const Table::Records& all, std::uint64_t number) {
  constexpr unsigned lastState = 3;
  for (const ByteVector& each : all) {
    if (Inspected::id.get(each) == number) return Inspected::state.get(each);
  }
  if (number == 0) return std::nullopt;
  ByteVector key(Attributed::keySize);
  Attributed::id.put(Bytes(key), number);
  const auto size = attributesOf(context, key);
  return size ? std::optional(std::min(size->count, lastState)) : std::nullopt;
}

/// The answer to one entry: the state of the connection, when it was inspected.
void putInspection(Context context, const Table::Records& all, Bytes entry) {
  const auto found = stateOf(context, all, Inspected::id.get(entry));
  if (!found) return;
  Inspected::found.put(entry, 1);
  Inspected::state.put(entry, static_cast<std::uint8_t>(*found));
}

std::uint32_t readInspections(Context context, Body& body) {
  const std::uint32_t count = entryCount.get(body);
  if (count != (body.size() - entriesAt) / entrySize ||
      (body.size() - entriesAt) % entrySize != 0) {
    return context.refuse(Status::badMessage,
                          format("%u entries in %zu bytes", count, body.size() - entriesAt));
  }
  const Table::Records all = inspected.load(context.store, context.target.folder);
  for (std::size_t i = 0; i < count; ++i) {
    const Bytes entry = body.reply(entriesAt + i * entrySize, entrySize);
    if (!isZero(placeOf(entry, restOfEntry))) {
      return context.refuse(Status::badMessage, format("entry %zu with reserved bytes set", i));
    }
    putInspection(context, all, entry);
  }
  entryCount.put(body, count);
  return Status::ok;
}

/// Connections 1001 to 1005: every state, and one that is of a newer kernel.
void fill(Context context) {
  if (!context.host.isShowpiece(context.target.index)) return;
  Table::Records all;
  for (unsigned state = 0; state < 5; ++state) {
    ByteVector record(Inspected::size);
    Inspected::id.put(Bytes(record), std::uint64_t{0x1001} + state);
    Inspected::found.put(Bytes(record), 1);
    Inspected::state.put(Bytes(record), static_cast<std::uint8_t>(state));
    all.push_back(record);
  }
  inspected.save(context.store, context.target.folder, all);
}

std::string inspectionText(ConstBytes entry) {
  const auto number = static_cast<unsigned long long>(Inspected::id.get(entry));
  return Inspected::found.get(entry) != 0
             ? format("id %llx found, state %u", number, Inspected::state.get(entry))
             : format("id %llx", number);
}

constexpr RecordKind elements{0, nullptr, {}, Chain::lines};
constexpr RecordKind inspections{entrySize, inspectionText};

constexpr CommandKind commands[] = {
    {.number = 73,
     .least = chainAt,
     .answer = changeAttributes,
     .request = {Reserved{0, 4}, operation, connection, Reserved{44, 1, nullptr, 0xf8},
                 Reserved{45, 2}, selector, id, attributeCount, attributeBytes},
     .reply = {result},
     .list = {.record = &elements, .inRequest = true, .count = attributeCount, .at = chainAt}},
    {.number = 74,
     .least = 60,
     .answer = countAttributes,
     .request = {Asked::selector, Asked::connection, Reserved{40, 1, nullptr, 0xf8},
                 Reserved{41, 2}, Asked::id, Reserved{52, 8}},
     .reply = {Asked::count, Asked::bytes}},
    {.number = 77,
     .least = entriesAt,
     .answer = readInspections,
     .request = {entryCount, Reserved{4, 4}},
     .reply = {entryCount},
     .list = {.record = &inspections, .count = entryCount, .at = entriesAt}},
};

constexpr Table tables[] = {attributed, inspected};

}  // namespace

ConnectionAttributes::ConnectionAttributes(const Store& store, const std::string& folder) {
  for (ByteVector& each : attributed.load(store, folder)) {
    if (Chain::fault(chainOf(each)).empty()) given_.push_back(std::move(each));
  }
}

FlowAttributes::Size ConnectionAttributes::append(ByteVector& buffer, ConstBytes flow) const {
  constexpr std::size_t mostBytes = std::numeric_limits<std::uint16_t>::max() - FlowRecord::size;
  constexpr unsigned most = std::numeric_limits<std::uint8_t>::max();
  const std::size_t first = buffer.size();
  FlowAttributes::Size size = FlowAttributes::append(buffer, flow);
  const auto isThere = [&](ConstBytes attribute) {
    for (ConstBytes rest = ConstBytes(buffer).subspan(first); !rest.empty();
         rest = rest.subspan(get32(rest, 4))) {
      const ConstBytes there = part(rest, 0, get32(rest, 4));
      if (std::equal(there.begin(), there.end(), attribute.begin(), attribute.end())) return true;
    }
    return false;
  };
  for (const ByteVector& each : given_) {
    if (!isOf(each, flow)) continue;
    forEachElement(chainOf(each), [&](ConstBytes element) {
      const ConstBytes attribute = element.subspan(Chain::elementHeadSize);
      if (size.count == most || attribute.size() > mostBytes - size.bytes || isThere(attribute)) {
        return;
      }
      buffer.insert(buffer.end(), attribute.begin(), attribute.end());
      ++size.count;
      size.bytes += attribute.size();
    });
  }
  return size;
}

constinit const Family connectionAttributeFamily{
    .commands = commands, .fill = fill, .tables = tables};

}  // namespace TarnLab
