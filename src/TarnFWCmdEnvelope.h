#pragma once

#include <cstddef>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// What stands in front of each command's body in a message. Integers in host order.
struct FWCmdEnvelope_ {
  host32 bodyLength;         // +0  bytes of the body, without these 12
  host16 command;            // +4  the kernel's number of the command
  std::uint8_t reserved[2];  // +6  0
  host32 status;             // +8  0 in a request, the kernel's status in a reply
};
static_assert(sizeof(FWCmdEnvelope_) == 12 && alignof(FWCmdEnvelope_) == 1);
static_assert(offsetof(FWCmdEnvelope_, command) == 4 && offsetof(FWCmdEnvelope_, reserved) == 6 &&
              offsetof(FWCmdEnvelope_, status) == 8);

inline constexpr unsigned int kEnvelopeSize = sizeof(FWCmdEnvelope_);

}  // namespace TarnFirewall
