// Requests of the filter table device: for which virtual NICs an agent gets filters.
#include <cerrno>

#include "LabFamily.h"

namespace TarnLab {

namespace {

// The frames, 44 and 52 bytes.
constexpr std::size_t sizeFrame = 44, entryFrame = 52;
constexpr std::size_t agentSize = 40;
constexpr Name agent{0, agentSize, "agent", "agent"};
constexpr U32 size{40, "size"}, room{48, "room"}, filled{48, "bytes"};
constexpr U64 entries{40, "entries"};

// Entries: a byte of type, two of the value's length, and the value.
constexpr std::size_t headSize = 3;
constexpr unsigned nicType = 4, hostType = 6;
constexpr std::size_t nicSize = 29, hostSize = 12;
constexpr std::uint32_t slot = 2;

/// The agent of the distributed firewall; the other agents of the host have empty tables.
constexpr std::string_view firewallAgent = "kelpco-sfw";

Bytes append(ByteVector& table, unsigned type, std::size_t length) {
  const std::size_t at = table.size();
  table.resize(at + headSize + length);
  put8(table, at, static_cast<std::uint8_t>(type));
  put16(table, at + 1, static_cast<std::uint16_t>(length));
  return part(Bytes(table), at + headSize, length);
}

/// The 16 bytes that a machine's uuid has as text: "50 2e 1f ... 2a-4a e1 ... 26".
void putUuid(Bytes value, std::string_view text) {
  for (std::size_t i = 0; i < 16 && 3 * i + 2 <= text.size(); ++i) {
    const std::string digits(text.substr(3 * i, 2));
    put8(value, i, static_cast<std::uint8_t>(std::strtoul(digits.c_str(), nullptr, 16)));
  }
}

/// One NIC by name, and after it, while the firewall is on, every NIC of the host.
ByteVector includeTable(const Host& host, std::string_view owner) {
  ByteVector table;
  if (owner != firewallAgent) return table;
  for (std::size_t i = 0; i < host.filterCount() && table.empty(); ++i) {
    if (host.agent(i) != owner) continue;
    const ConstBytes record = host.record(i);
    const Bytes nic = append(table, nicType, nicSize);
    putUuid(nic, getText(record, FilterRecord::vmUuid, FilterRecord::vmUuidSize));
    put8(nic, 16, static_cast<std::uint8_t>(get32(record, FilterRecord::vnicIndex)));
    put32(nic, 17, slot);
  }
  if (!host.firewallOff()) put32(append(table, hostType, hostSize), 0, slot);
  return table;
}

/// Refuses an agent that has no filters here.
int checkAgent(const Request& request, const Body& body) {
  const std::string_view owner = agent.get(body);
  for (std::size_t i = 0; i < request.host.filterCount(); ++i) {
    if (request.host.agent(i).substr(0, agentSize - 1) == owner) return 0;
  }
  return request.refuse(ENOENT, "no agent " + printable(owner));
}

int includeSize(Request& request, Body& body) {
  if (const int error = checkAgent(request, body)) return error;
  size.put(body, static_cast<std::uint32_t>(includeTable(request.host, agent.get(body)).size()));
  return 0;
}

int readInclude(Request& request, Body& body) {
  if (const int error = checkAgent(request, body)) return error;
  const ByteVector table = includeTable(request.host, agent.get(body));
  if (room.get(body) < table.size()) {
    return request.refuse(EINVAL, format("room of %u bytes for %zu", room.get(body), table.size()));
  }
  if (const int error = request.writeBuffer(entries.get(body), table)) return error;
  filled.put(body, static_cast<std::uint32_t>(table.size()));
  return 0;
}

constexpr DirectKind requests[] = {
    {.device = Device::filterTables,
     .number = 8,
     .title = "size of the include table",
     .size = sizeFrame,
     .answer = includeSize,
     .request = {agent},
     .reply = {size}},
    {.device = Device::filterTables,
     .number = 9,
     .title = "include table",
     .size = entryFrame,
     .answer = readInclude,
     .request = {agent, room},
     .reply = {filled}},
};

}  // namespace

constinit const Family filterTableFamily{.requests = requests};

}  // namespace TarnLab
