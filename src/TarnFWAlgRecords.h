#pragma once

/// Records of the application-level gateways, as the kernel lays them out. Ports and flow ids in
/// network order.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// A gateway that waits for control flows.
struct FWAlg_ {
  std::uint8_t type;       // +0  1 FTP, 2 ORACLE, 3 SUNRPC, 4 DCERPC, 5 TFTP
  std::uint8_t family;     // +1  2 is IPv4
  net16 port;              // +2
  std::uint8_t direction;  // +4  1 is in
  std::uint8_t protocol;   // +5  1 UDP, 2 TCP, any other both
};
static_assert(sizeof(FWAlg_) == 6 && alignof(FWAlg_) == 1);
static_assert(offsetof(FWAlg_, type) == 0 && offsetof(FWAlg_, family) == 1 &&
              offsetof(FWAlg_, port) == 2 && offsetof(FWAlg_, direction) == 4 &&
              offsetof(FWAlg_, protocol) == 5);

/// A port that a gateway has opened for data, and the control flow that it did so for.
struct FWAlgPort_ {
  std::uint8_t reserved[16];    //  +0
  net16 destinationPort;        // +16
  net16 port;                   // +18
  std::uint8_t flags;           // +20  8 to 11: IPv4; bit 1: active
  std::uint8_t protocol;        // +21  IP protocol number
  std::uint8_t direction;       // +22  1 is in
  std::uint8_t type;            // +23  as in `FWAlg_`
  host32 references;            // +24
  std::uint8_t reservedToo[4];  // +28
  net64 controlFlowId;          // +32
};
static_assert(sizeof(FWAlgPort_) == 40 && alignof(FWAlgPort_) == 1);
static_assert(offsetof(FWAlgPort_, reserved) == 0 && offsetof(FWAlgPort_, destinationPort) == 16 &&
              offsetof(FWAlgPort_, port) == 18 && offsetof(FWAlgPort_, flags) == 20 &&
              offsetof(FWAlgPort_, protocol) == 21 && offsetof(FWAlgPort_, direction) == 22 &&
              offsetof(FWAlgPort_, type) == 23 && offsetof(FWAlgPort_, references) == 24 &&
              offsetof(FWAlgPort_, reservedToo) == 28 && offsetof(FWAlgPort_, controlFlowId) == 32);

}  // namespace TarnFirewall
