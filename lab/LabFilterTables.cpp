// Requests 0 to 9 of the filter table device: the tables that say on which virtual NICs an agent
// has filters. Revalidation of a machine applies them.
#include <cerrno>

#include "LabFamily.h"
#include "LabTableEntry.h"

namespace TarnLab {

namespace {

// The frames, 44 and 52 bytes.
constexpr std::size_t sizeFrame = 44, entryFrame = 52;
constexpr std::size_t agentSize = 40;
constexpr Name agent{0, agentSize, "agent", "agent"};
constexpr U32 size{40, "size"}, room{48, "room"}, given{48, "bytes"}, filled{48, "bytes"};
constexpr U64 entries{40, "entries"};

/// The largest table.
constexpr std::size_t tableLimit = std::size_t{1} << 16;

using TableOf = ByteVector Agent::*;

/// The place of the frame's agent, or an errno.
int findAgent(const Request& request, const Body& body, std::size_t& place) {
  const std::string_view owner = agent.get(body);
  const auto found = request.host.findAgent(owner, agentSize - 1);
  if (!found) return request.refuse(ENOENT, "no agent " + std::string(owner));
  place = *found;
  return 0;
}

template <TableOf table>
int readSize(Request& request, Body& body) {
  std::size_t place = 0;
  if (const int error = findAgent(request, body, place)) return error;
  size.put(body, static_cast<std::uint32_t>((request.host.agents()[place].*table).size()));
  return 0;
}

template <TableOf table>
int readTable(Request& request, Body& body) {
  std::size_t place = 0;
  if (const int error = findAgent(request, body, place)) return error;
  const ByteVector& bytes = request.host.agents()[place].*table;
  if (room.get(body) < bytes.size()) {
    return request.refuse(EINVAL, format("room of %u bytes for %zu", room.get(body), bytes.size()));
  }
  if (const int error = request.writeBuffer(entries.get(body), bytes)) return error;
  filled.put(body, static_cast<std::uint32_t>(bytes.size()));
  return 0;
}

/// Reads the entries of a request and checks them.
int readEntries(Request& request, const Body& body, bool include, ByteVector& bytes) {
  if (given.get(body) == 0) return request.refuse(EINVAL, "no entry");
  if (const int error = request.readBuffer(entries.get(body), given.get(body), tableLimit, bytes)) {
    return error;
  }
  const std::string fault = entriesFault(bytes, include);
  return fault.empty() ? 0 : request.refuse(EINVAL, fault);
}

/// The table without what the entry is about; shorter when it was there.
ByteVector without(ConstBytes table, const TableEntry& entry) {
  ByteVector rest;
  for (const TableEntry& each : entriesOf(table)) {
    if (!each.isAbout(entry)) rest.insert(rest.end(), each.bytes.begin(), each.bytes.end());
  }
  return rest;
}

/// An entry takes the place of one that is about the same NICs.
template <TableOf table>
int addEntry(Request& request, Body& body) {
  std::size_t place = 0;
  ByteVector bytes;
  if (const int error = findAgent(request, body, place)) return error;
  if (const int error = readEntries(request, body, table == &Agent::include, bytes)) return error;
  const std::vector<TableEntry> added = entriesOf(bytes);
  if (added.size() != 1) return request.refuse(EINVAL, format("%zu entries", added.size()));

  Host host = request.host;
  ByteVector changed = without(host.agents()[place].*table, added.front());
  changed.insert(changed.end(), bytes.begin(), bytes.end());
  if (changed.size() > tableLimit) {
    return request.refuse(ENOSPC, format("table of %zu bytes", changed.size()));
  }
  host.agents()[place].*table = std::move(changed);
  host.save(request.store);
  return 0;
}

/// Takes all of the entries away, or none.
template <TableOf table>
int deleteEntries(Request& request, Body& body) {
  std::size_t place = 0;
  ByteVector bytes;
  if (const int error = findAgent(request, body, place)) return error;
  if (const int error = readEntries(request, body, table == &Agent::include, bytes)) return error;
  Host host = request.host;
  ByteVector& changed = host.agents()[place].*table;
  for (const TableEntry& entry : entriesOf(bytes)) {
    ByteVector rest = without(changed, entry);
    if (rest.size() == changed.size()) return request.refuse(ENOENT, "no entry " + entry.text());
    changed = std::move(rest);
  }
  host.save(request.store);
  return 0;
}

template <TableOf table>
int clearTable(Request& request, Body& body) {
  std::size_t place = 0;
  if (const int error = findAgent(request, body, place)) return error;
  if (given.get(body) != 0) {
    return request.refuse(EINVAL, format("buffer of %u bytes", given.get(body)));
  }
  Host host = request.host;
  (host.agents()[place].*table).clear();
  host.save(request.store);
  return 0;
}

constexpr RecordKind tableEntries{.lines = entryLines};
constexpr List sentEntries{
    .record = &tableEntries, .inRequest = true, .count = given, .at = entryFrame};
constexpr List readBack{.record = &tableEntries, .count = filled, .at = entryFrame};

constexpr DirectKind requests[] = {
    {.device = Device::filterTables,
     .number = 0,
     .title = "add to the exclude table",
     .size = entryFrame,
     .answer = addEntry<&Agent::exclude>,
     .request = {agent, given},
     .list = sentEntries},
    {.device = Device::filterTables,
     .number = 1,
     .title = "clear the exclude table",
     .size = entryFrame,
     .answer = clearTable<&Agent::exclude>,
     .request = {agent}},
    {.device = Device::filterTables,
     .number = 2,
     .title = "delete from the exclude table",
     .size = entryFrame,
     .answer = deleteEntries<&Agent::exclude>,
     .request = {agent, given},
     .list = sentEntries},
    {.device = Device::filterTables,
     .number = 3,
     .title = "size of the exclude table",
     .size = sizeFrame,
     .answer = readSize<&Agent::exclude>,
     .request = {agent},
     .reply = {size}},
    {.device = Device::filterTables,
     .number = 4,
     .title = "exclude table",
     .size = entryFrame,
     .answer = readTable<&Agent::exclude>,
     .request = {agent, room},
     .reply = {filled},
     .list = readBack},
    {.device = Device::filterTables,
     .number = 5,
     .title = "add to the include table",
     .size = entryFrame,
     .answer = addEntry<&Agent::include>,
     .request = {agent, given},
     .list = sentEntries},
    {.device = Device::filterTables,
     .number = 6,
     .title = "clear the include table",
     .size = entryFrame,
     .answer = clearTable<&Agent::include>,
     .request = {agent}},
    {.device = Device::filterTables,
     .number = 7,
     .title = "delete from the include table",
     .size = entryFrame,
     .answer = deleteEntries<&Agent::include>,
     .request = {agent, given},
     .list = sentEntries},
    {.device = Device::filterTables,
     .number = 8,
     .title = "size of the include table",
     .size = sizeFrame,
     .answer = readSize<&Agent::include>,
     .request = {agent},
     .reply = {size}},
    {.device = Device::filterTables,
     .number = 9,
     .title = "include table",
     .size = entryFrame,
     .answer = readTable<&Agent::include>,
     .request = {agent, room},
     .reply = {filled},
     .list = readBack},
};

}  // namespace

constinit const Family filterTableFamily{.requests = requests};

}  // namespace TarnLab
