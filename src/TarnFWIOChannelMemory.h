#pragma once

/// A channel that copies the last message into memory of the caller.

#include "TarnFWIOChannel.h"

namespace TarnFirewall {

/// The memory stays the caller's and must outlive the channel. No reply arrives.
class CTarnFWIOChannelMemory final : public CTarnFWIOChannel {
 public:
  CTarnFWIOChannelMemory(void* memory, unsigned int length) : memory_(memory), length_(length) {}

  /// Writes the selector's 100 bytes, if there is one, and the message to the start of the memory.
  /// Throws `COutOfMemoryException` with the space needed, the memory untouched, when it is short.
  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override;

 private:
  void* memory_;
  unsigned int length_;
};

}  // namespace TarnFirewall
