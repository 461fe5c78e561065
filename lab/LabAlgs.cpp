// Commands 47 and 48: application-level gateways and the ports that they opened. Both are made of
// the connections: a gateway of the control flows, an opened port of the data flows.
#include <algorithm>

#include "LabFamily.h"
#include "LabFlowFile.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

constexpr unsigned controlFlow = 1, dataFlow = 2, knownTypes = 6;

/// The connections of the filter whose part in a gateway is that one.
std::vector<ByteVector> flowsOf(Context context, unsigned flowType) {
  std::vector<ByteVector> found;
  const auto file = FlowFile::open(context.store, context.target.folder);
  for (std::size_t i = 0; file && i < file->count(activeGroup); ++i) {
    const ConstBytes flow = file->record(activeGroup, i);
    const unsigned protocol = FlowRecord::protocol.get(flow);
    if (!FlowRecord::isIp(flow) || (protocol != FlowRecord::tcp && protocol != FlowRecord::udp)) {
      continue;
    }
    if (FlowRecord::shapeOf(flow).algFlowType.get(flow) == flowType) {
      found.emplace_back(flow.begin(), flow.end());
    }
  }
  return found;
}

/// A flow without a direction goes out.
std::uint8_t directionOf(ConstBytes flow) {
  return FlowRecord::direction.get(flow) == FlowRecord::in ? 1 : 2;
}

/// A line for each record that came; a reply with numbers only has none.
std::vector<std::string> linesOf(const FieldList& fields, std::size_t size, ConstBytes records) {
  std::vector<std::string> lines;
  for (; records.size() >= size && !isZero(records.first(size)); records = records.subspan(size)) {
    lines.push_back(fieldsText(fields, records));
  }
  return lines;
}

// A gateway, 6 bytes.
namespace Alg {
constexpr std::size_t size = 6;
constexpr U8 type{0, "type"}, family{1, "family"};
constexpr Net16 port{2, "port"};
constexpr U8 direction{4, "direction"}, protocol{5, "protocol"};
constexpr std::uint8_t udp = 1, tcp = 2, both = 3;

ByteVector make(ConstBytes flow) {
  const FlowRecord::Shape& shape = FlowRecord::shapeOf(flow);
  ByteVector record(size);
  type.put(Bytes(record), shape.algType.get(flow));
  family.put(Bytes(record), FlowRecord::family.get(flow));
  port.put(Bytes(record), shape.destinationPort.get(flow));
  direction.put(Bytes(record), directionOf(flow));
  // A gateway of a type that this host does not know is there for both protocols.
  const bool isUdp = FlowRecord::protocol.get(flow) == FlowRecord::udp;
  protocol.put(Bytes(record), shape.algType.get(flow) >= knownTypes ? both : isUdp ? udp : tcp);
  return record;
}

/// Each gateway once, in the order in which its flows began.
std::vector<ByteVector> all(Context context) {
  std::vector<ByteVector> records;
  for (const ByteVector& flow : flowsOf(context, controlFlow)) {
    ByteVector record = make(flow);
    if (std::find(records.begin(), records.end(), record) == records.end()) {
      records.push_back(std::move(record));
    }
  }
  return records;
}

std::vector<std::string> lines(ConstBytes records) {
  return linesOf({type, family, port, direction, protocol}, size, records);
}

constexpr RecordKind kind{.lines = lines};
}  // namespace Alg

// An opened port, 40 bytes.
namespace AlgPort {
constexpr std::size_t size = 40;
constexpr Net16 destination{16, "destination"}, port{18, "port"};
constexpr U8 flags{20, "flags"}, protocol{21, "protocol"}, direction{22, "direction"},
    type{23, "type"};
constexpr U32 references{24, "references"};
constexpr Net64 control{32, "control flow"};
constexpr unsigned ofIpv4 = 8, ofIpv6 = 12, active = 2;

ByteVector make(ConstBytes flow) {
  const FlowRecord::Shape& shape = FlowRecord::shapeOf(flow);
  const bool isOpen = (FlowRecord::flags.get(flow) & FlowRecord::flagEstablished) != 0;
  const unsigned family = FlowRecord::family.get(flow) == FlowRecord::ipv4 ? ofIpv4 : ofIpv6;
  ByteVector record(size);
  destination.put(Bytes(record), shape.destinationPort.get(flow));
  port.put(Bytes(record), shape.algPort.get(flow));
  flags.put(Bytes(record), static_cast<std::uint8_t>(family | (isOpen ? active : 0)));
  protocol.put(Bytes(record), FlowRecord::protocol.get(flow));
  direction.put(Bytes(record), directionOf(flow));
  type.put(Bytes(record), shape.algType.get(flow));
  references.put(Bytes(record), 1 + FlowNumber::ofId(FlowRecord::id.get(flow)) % 7);
  control.put(Bytes(record), shape.controlId.get(flow));
  return record;
}

std::vector<ByteVector> all(Context context) {
  std::vector<ByteVector> records;
  for (const ByteVector& flow : flowsOf(context, dataFlow)) records.push_back(make(flow));
  return records;
}

std::vector<std::string> lines(ConstBytes records) {
  return linesOf({destination, port, flags, protocol, direction, type, references, control}, size,
                 records);
}

constexpr RecordKind kind{.lines = lines};
}  // namespace AlgPort

// Both commands: a body of 8 bytes asks for the numbers, a larger one for the records.
constexpr std::size_t recordsAt = 8;
constexpr U32 bytes{0, "bytes"}, count{4, "count"};

std::uint32_t readRecords(Context context, Body& body, std::size_t size,
                          const std::vector<ByteVector>& records) {
  const std::uint32_t room = bytes.get(body);
  const std::uint32_t wanted = count.get(body);
  if (room != body.size() - recordsAt) {
    return context.refuse(Status::badMessage, format("%u bytes of records, %zu are there", room,
                                                     body.size() - recordsAt));
  }
  if (room == 0) {
    if (wanted != 0) return context.refuse(Status::badMessage, "records without room");
    bytes.put(body, static_cast<std::uint32_t>(size));
    count.put(body, static_cast<std::uint32_t>(records.size()));
    return Status::ok;
  }
  if (wanted > room / size) {
    return context.refuse(Status::badMessage,
                          format("%u records in %u bytes of room", wanted, room));
  }
  const std::size_t returned = std::min<std::size_t>(wanted, records.size());
  for (std::size_t i = 0; i < returned; ++i) {
    copyRecord(body.reply(recordsAt + i * size, size), records[i]);
  }
  count.put(body, static_cast<std::uint32_t>(returned));
  return Status::ok;
}

std::uint32_t readAlgs(Context context, Body& body) {
  return readRecords(context, body, Alg::size, Alg::all(context));
}

std::uint32_t readPorts(Context context, Body& body) {
  return readRecords(context, body, AlgPort::size, AlgPort::all(context));
}

constexpr CommandKind commands[] = {
    {.number = 47,
     .least = recordsAt,
     .answer = readAlgs,
     .request = {bytes, count},
     .reply = {count},
     .list = {.record = &Alg::kind, .at = recordsAt}},
    {.number = 48,
     .least = recordsAt,
     .answer = readPorts,
     .request = {bytes, count},
     .reply = {count},
     .list = {.record = &AlgPort::kind, .at = recordsAt}},
};

}  // namespace

constinit const Family algFamily{.commands = commands};

}  // namespace TarnLab
