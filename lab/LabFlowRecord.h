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

inline constexpr Shape shape4{{145, 4, "source"},
                              {149, 4, "destination"},
                              {153, 4, "translated"},
                              {157, "type"},
                              {158, "code"},
                              {157, "control flow"},
                              {165, "alg"},
                              {166, "alg flow"},
                              {167, "alg port"},
                              {173, "source port"},
                              {175, "destination port"},
                              {177, "translated port"},
                              {179, "segment"},
                              {181, "source state"},
                              {183, "destination state"},
                              {187, "round trip"},
                              {191, "first retries"},
                              {195, "second retries"}};
inline constexpr Shape shape6{{145, 16, "source"},
                              {161, 16, "destination"},
                              {177, 16, "translated"},
                              {209, "type"},
                              {210, "code"},
                              {209, "control flow"},
                              {217, "alg"},
                              {218, "alg flow"},
                              {219, "alg port"},
                              {225, "source port"},
                              {227, "destination port"},
                              {229, "translated port"},
                              {231, "segment"},
                              {233, "source state"},
                              {235, "destination state"},
                              {239, "round trip"},
                              {243, "first retries"},
                              {247, "second retries"}};

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
