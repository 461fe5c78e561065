#pragma once

/// Makes IO channels, by type or from the key and value pairs of `FW_Initialize`.

#include <memory>

#include "TarnFWIOChannel.h"

namespace TarnFirewall {

class CTarnFWIOChannelFactory {
 public:
  /// Makes a channel of `type` from its values, in this order:
  ///
  ///     1         none: the descriptor is the firewall device's, which stays open
  ///     2, 3      const char* address, const char* port; 3 is always refused
  ///     4         const char* name
  ///     5         void* memory, unsigned int length
  ///     6         const FWLibGenericIO_* table, void* initArgument, void** context
  ///
  /// Throws `CUnknownIOTypeException` for another type, and what the channel's constructor throws.
  static std::unique_ptr<CTarnFWIOChannel> newIOChannel(int type, ...);
};

/// Makes a channel from `count` entries key, value, key, value (see `FW_Initialize`). Throws
/// `CCannotInitializeIOException` with the type unless type, count and every key fit.
std::unique_ptr<CTarnFWIOChannel> create_io_channel(FWIOType_t type, unsigned int count,
                                                    const char** items);

}  // namespace TarnFirewall
