#pragma once

/// Records of flows, which connections are too. Integers in host order unless their type says
/// network order.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// A block that chooses connections. It goes to the kernel as the caller gave it.
struct FWConnFilter_ {
  std::uint8_t bytes[80];  //  +0
};
static_assert(sizeof(FWConnFilter_) == 80 && alignof(FWConnFilter_) == 1);
static_assert(offsetof(FWConnFilter_, bytes) == 0);

/// What an application layer gateway keeps of a flow.
struct tarnFlowAlgData {
  net64 controlFlowId;    //  +0  flow id of the control connection
  std::uint8_t type;      //  +8  1 FTP, 2 ORACLE, 3 SUNRPC, 4 DCERPC, 5 TFTP
  std::uint8_t flowType;  //  +9  0 none, 1 control, 2 data
  net16 port;             // +10
};
static_assert(sizeof(tarnFlowAlgData) == 12 && alignof(tarnFlowAlgData) == 1);
static_assert(offsetof(tarnFlowAlgData, controlFlowId) == 0 &&
              offsetof(tarnFlowAlgData, type) == 8 && offsetof(tarnFlowAlgData, flowType) == 9 &&
              offsetof(tarnFlowAlgData, port) == 10);

/// What both families keep of a flow besides its addresses.
struct FWFlowTransport_ {
  tarnFlowAlgData alg;           //  +0  ICMP: type and code in the first two bytes
  std::uint8_t reserved1[4];     // +12  not read
  net16 sourcePort;              // +16
  net16 destinationPort;         // +18
  net16 translatedPort;          // +20
  host16 tcpNumber;              // +22  printed after the ports
  host16 sourceTcpState;         // +24
  host16 destinationTcpState;    // +26
  std::uint8_t reserved2[2];     // +28  not read
  host32 roundTripTime;          // +30
  host32 firstRetransmissions;   // +34
  host32 secondRetransmissions;  // +38
};
static_assert(sizeof(FWFlowTransport_) == 42 && alignof(FWFlowTransport_) == 1);
static_assert(offsetof(FWFlowTransport_, alg) == 0 && offsetof(FWFlowTransport_, reserved1) == 12 &&
              offsetof(FWFlowTransport_, sourcePort) == 16 &&
              offsetof(FWFlowTransport_, destinationPort) == 18 &&
              offsetof(FWFlowTransport_, translatedPort) == 20 &&
              offsetof(FWFlowTransport_, tcpNumber) == 22 &&
              offsetof(FWFlowTransport_, sourceTcpState) == 24 &&
              offsetof(FWFlowTransport_, destinationTcpState) == 26 &&
              offsetof(FWFlowTransport_, reserved2) == 28 &&
              offsetof(FWFlowTransport_, roundTripTime) == 30 &&
              offsetof(FWFlowTransport_, firstRetransmissions) == 34 &&
              offsetof(FWFlowTransport_, secondRetransmissions) == 38);

/// Addresses and what belongs to them, of an IPv4 flow.
struct FWFlowIPv4_ {
  std::uint8_t source[4];       //  +0
  std::uint8_t destination[4];  //  +4
  std::uint8_t translated[4];   //  +8  zero when there is none
  FWFlowTransport_ transport;   // +12
  std::uint8_t reserved[52];    // +54  not read
};
static_assert(sizeof(FWFlowIPv4_) == 106 && alignof(FWFlowIPv4_) == 1);
static_assert(offsetof(FWFlowIPv4_, source) == 0 && offsetof(FWFlowIPv4_, destination) == 4 &&
              offsetof(FWFlowIPv4_, translated) == 8 && offsetof(FWFlowIPv4_, transport) == 12 &&
              offsetof(FWFlowIPv4_, reserved) == 54);

/// The same of an IPv6 flow.
struct FWFlowIPv6_ {
  std::uint8_t source[16];       //  +0
  std::uint8_t destination[16];  // +16
  std::uint8_t translated[16];   // +32  zero when there is none
  std::uint8_t reserved[16];     // +48  not read
  FWFlowTransport_ transport;    // +64
};
static_assert(sizeof(FWFlowIPv6_) == 106 && alignof(FWFlowIPv6_) == 1);
static_assert(offsetof(FWFlowIPv6_, source) == 0 && offsetof(FWFlowIPv6_, destination) == 16 &&
              offsetof(FWFlowIPv6_, translated) == 32 && offsetof(FWFlowIPv6_, reserved) == 48 &&
              offsetof(FWFlowIPv6_, transport) == 64);

/// One flow or connection. Where attributes follow, `length` counts them and leads to the next
/// record. The counters are named by the order in which they print.
struct FWFlowRecord_ {
  host16 length;                   //   +0  bytes of this record and its attributes
  std::uint8_t attributeCount;     //   +2
  net64 flowId;                    //   +3
  std::uint8_t reserved1[68];      //  +11  not read
  host32 startTime;                //  +79  seconds since 1970
  host32 endTime;                  //  +83  seconds since 1970
  std::uint8_t kind;               //  +87  FWFlowKind
  std::uint8_t reserved2;          //  +88  not read
  std::uint8_t protocol;           //  +89  IP protocol number
  std::uint8_t family;             //  +90  2 IPv4, 28 IPv6
  net16 ethertype;                 //  +91
  std::uint8_t sourceMac[6];       //  +93
  std::uint8_t destinationMac[6];  //  +99
  host64 thirdCounter;             // +105
  host64 fourthCounter;            // +113
  host64 firstCounter;             // +121
  host64 secondCounter;            // +129
  host32 ruleId;                   // +137
  std::uint8_t direction;          // +141  1 in, 2 out
  std::uint8_t firstState;         // +142
  std::uint8_t secondState;        // +143
  std::uint8_t flags;              // +144  FWFlowFlags
  std::uint8_t addresses[106];     // +145  FWFlowIPv4_ or FWFlowIPv6_, by the family
};
static_assert(sizeof(FWFlowRecord_) == 251 && alignof(FWFlowRecord_) == 1);
static_assert(
    offsetof(FWFlowRecord_, length) == 0 && offsetof(FWFlowRecord_, attributeCount) == 2 &&
    offsetof(FWFlowRecord_, flowId) == 3 && offsetof(FWFlowRecord_, reserved1) == 11 &&
    offsetof(FWFlowRecord_, startTime) == 79 && offsetof(FWFlowRecord_, endTime) == 83 &&
    offsetof(FWFlowRecord_, kind) == 87 && offsetof(FWFlowRecord_, reserved2) == 88 &&
    offsetof(FWFlowRecord_, protocol) == 89 && offsetof(FWFlowRecord_, family) == 90 &&
    offsetof(FWFlowRecord_, ethertype) == 91 && offsetof(FWFlowRecord_, sourceMac) == 93 &&
    offsetof(FWFlowRecord_, destinationMac) == 99 && offsetof(FWFlowRecord_, thirdCounter) == 105 &&
    offsetof(FWFlowRecord_, fourthCounter) == 113 && offsetof(FWFlowRecord_, firstCounter) == 121 &&
    offsetof(FWFlowRecord_, secondCounter) == 129 && offsetof(FWFlowRecord_, ruleId) == 137 &&
    offsetof(FWFlowRecord_, direction) == 141 && offsetof(FWFlowRecord_, firstState) == 142 &&
    offsetof(FWFlowRecord_, secondState) == 143 && offsetof(FWFlowRecord_, flags) == 144 &&
    offsetof(FWFlowRecord_, addresses) == 145);

/// Values of `FWFlowRecord_::kind`.
enum FWFlowKind : std::uint8_t {
  FW_FLOW_ACTIVE = 1,
  FW_FLOW_INACTIVE = 2,
  FW_FLOW_DROP = 3,
  FW_FLOW_L2_PASS = 4,
  FW_FLOW_L2_DROP = 5,
};

/// Values of `FWFlowRecord_::family`. The second is what the host calls IPv6: only the printed
/// reply of command 24 knows it.
enum FWFlowFamily : std::uint8_t {
  FW_FLOW_IPV4 = 2,
  FW_FLOW_IPV6_HOST = 10,
  FW_FLOW_IPV6 = 28,
};

/// Bits of `FWFlowRecord_::flags`.
enum FWFlowFlags : std::uint8_t {
  FW_FLOW_BLOCKED = 1 << 0,
  FW_FLOW_S = 1 << 1,  // printed as it is called
  FW_FLOW_ESTABLISHED = 1 << 2,
};

}  // namespace TarnFirewall
