// The 251-byte record of a flow, with its two shapes from offset 145 on.
#ifndef TARNLAB_FLOW_RECORD_H
#define TARNLAB_FLOW_RECORD_H

#include "LabField.h"

namespace TarnLab {

namespace FlowRecord {
inline constexpr std::size_t size = 251;

inline constexpr U16 length{0, "length"};  // with the attributes
inline constexpr U8 attributeCount{2, "attributes"};
inline constexpr Net64 id{3, "flow"};
inline constexpr U32 start{79, "start"}, end{83, "end"};
inline constexpr U8 kind{87, "kind"}, protocol{89, "protocol"}, family{90, "family"};
inline constexpr Net16 ethertype{91, "ethertype"};
inline constexpr Blob sourceMac{93, 6, "source mac", As::mac},
    destinationMac{99, 6, "destination mac", As::mac};
inline constexpr U64 packetsIn{105, "packets in"}, packetsOut{113, "packets out"},
    bytesIn{121, "bytes in"}, bytesOut{129, "bytes out"};
inline constexpr U32 rule{137, "rule"};
inline constexpr U8 direction{141, "direction"}, firstState{142, "first state"},
    secondState{143, "second state"}, flags{144, "flags"};

inline constexpr unsigned active = 1, inactive = 2, drop = 3, layer2Pass = 4, layer2Drop = 5;
inline constexpr unsigned ipv4 = 2, ipv6 = 28;
inline constexpr unsigned in = 1, out = 2;
inline constexpr unsigned flagBlocked = 1, flagS = 2, flagEstablished = 4;
inline constexpr unsigned icmp = 1, tcp = 6, udp = 17, icmp6 = 58;

/// What follows the common fields. The ICMP type and code stand in the first bytes of the control
/// flow's id.
struct Shape {
  Blob source, destination, translated;
  U8 icmpType, icmpCode;
  Net64 controlId;
  U8 algType, algFlowType;
  Net16 algPort, sourcePort, destinationPort, translatedPort;
  U16 segment, sourceState, destinationState;
  U32 roundTrip, firstRetries, secondRetries;
};

/// Addresses of so many bytes from 145 on; what follows them begins at `rest`, after a gap with
/// IPv6.
constexpr Shape makeShape(std::uint32_t address, std::uint32_t rest) {
  return {{145, address, "source"},
          {145 + address, address, "destination"},
          {145 + 2 * address, address, "translated"},
          {rest, "type"},
          {rest + 1, "code"},
          {rest, "control flow"},
          {rest + 8, "alg"},
          {rest + 9, "alg flow"},
          {rest + 10, "alg port"},
          {rest + 16, "source port"},
          {rest + 18, "destination port"},
          {rest + 20, "translated port"},
          {rest + 22, "segment"},
          {rest + 24, "source state"},
          {rest + 26, "destination state"},
          {rest + 30, "round trip"},
          {rest + 34, "first retries"},
          {rest + 38, "second retries"}};
}

inline constexpr Shape shape4 = makeShape(4, 157);
inline constexpr Shape shape6 = makeShape(16, 209);

/// The shape by the family; of any other than IPv4 it is that of IPv6.
inline const Shape& shapeOf(ConstBytes record) {
  return family.get(record) == ipv4 ? shape4 : shape6;
}

inline bool isIp(ConstBytes record) {
  return family.get(record) == ipv4 || family.get(record) == ipv6;
}

/// An address of 4 or 16 bytes.
std::string addressText(ConstBytes address);

/// One line for the log.
std::string text(ConstBytes record);

/// A line for each record of a reply with flows, which stand one after the other with their
/// attributes, after bytes that are no record.
std::vector<std::string> texts(ConstBytes buffer);
inline constexpr std::size_t beforeRecords = 32;
}  // namespace FlowRecord

/// The attributes that the kernel learned about a flow. They are made from the number of the flow,
/// so that they are the same at every reading.
namespace FlowAttributes {
struct Size {
  unsigned count = 0;
  std::size_t bytes = 0;
};

/// Appends the attributes of a flow to a buffer.
Size append(ByteVector& buffer, ConstBytes flow);
}  // namespace FlowAttributes

/// Flows are numbered as they began; the ids rise with the numbers and are not next to each other.
namespace FlowNumber {
std::uint64_t toId(std::size_t filter, std::uint32_t number);
std::uint32_t ofId(std::uint64_t id);
}  // namespace FlowNumber

}  // namespace TarnLab

#endif
