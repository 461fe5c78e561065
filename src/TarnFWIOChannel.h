#pragma once

/// Where a finished message goes: the kernel's device, a file, memory, a socket or functions of the
/// caller.

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// A library handle owns one channel and calls it once per flush. A channel has no lock.
class CTarnFWIOChannel {
 public:
  /// Carries one message of `size` bytes, header included. A reply, where the channel brings one,
  /// stands in the same memory afterwards. `port` may be null. Returns a status; most channels
  /// throw instead.
  virtual FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size,
                               void* context) = 0;

  /// Describes the message in the log when the level of `io` is above 1, its fields above 2. Never
  /// fails, and reads nothing after `size` bytes.
  void validateMessage(const void* message, unsigned int size) const;

  virtual ~CTarnFWIOChannel() = default;

 protected:
  CTarnFWIOChannel() = default;
  CTarnFWIOChannel(const CTarnFWIOChannel&) = delete;
  CTarnFWIOChannel& operator=(const CTarnFWIOChannel&) = delete;
};

}  // namespace TarnFirewall
