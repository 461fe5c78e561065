#pragma once

/// The description of one connection, as commands name it to the kernel.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// A connection by its addresses, ports and protocol. Clear a record before you fill it.
struct FWConnection_ {
  std::uint8_t sourceAddress[16];       //  +0  an IPv4 address takes the first 4 bytes
  std::uint8_t destinationAddress[16];  // +16  the same
  net16 sourcePort;                     // +32
  net16 destinationPort;                // +34
  std::uint8_t flags;                   // +36  bit 0 IPv6; bits 1 and 2: 1 in, 2 out, 0 none
  std::uint8_t reserved[2];             // +37  zero
  std::uint8_t protocol;                // +39  IP protocol number
};
static_assert(sizeof(FWConnection_) == 40 && alignof(FWConnection_) == 1);
static_assert(offsetof(FWConnection_, sourceAddress) == 0 &&
              offsetof(FWConnection_, destinationAddress) == 16 &&
              offsetof(FWConnection_, sourcePort) == 32 &&
              offsetof(FWConnection_, destinationPort) == 34 &&
              offsetof(FWConnection_, flags) == 36 && offsetof(FWConnection_, reserved) == 37 &&
              offsetof(FWConnection_, protocol) == 39);

/// Values of `FWConnection_::flags`.
inline constexpr std::uint8_t kConnectionIPv6 = 0x01;
inline constexpr std::uint8_t kConnectionIn = 0x02;
inline constexpr std::uint8_t kConnectionOut = 0x04;

}  // namespace TarnFirewall
