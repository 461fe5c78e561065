#pragma once

#include <memory>

#include "TarnFWAddress.h"
#include "TarnFWLoadMemory.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Builds an address of the right class from a record or from text.
class CTarnFWAddressFactory {
 public:
  CTarnFWAddressFactory() = delete;

  /// Throws `CInvalidAddressException` for a type that has no class on the wire: a MAC range can be
  /// written, but the kernel never reports one. A null `memory` makes an object of its own.
  static std::unique_ptr<CTarnFWAddress> newFromMsgBuf(const FWAddress_* record,
                                                       CTarnFWLoadMemory* memory = nullptr);

  /// Reads one record when `size` holds one: `*used` is then 144, else 0 with a null result.
  static std::unique_ptr<CTarnFWAddress> newFromMsgBuf(const void* buffer, unsigned int size,
                                                       unsigned int* used);

  /// Never negated. The class is chosen by the set's kind and the punctuation of the text; throws
  /// what the class throws, and `CUnsupportedException` for a kind that is not IP, MAC or SID.
  static std::unique_ptr<CTarnFWAddress> newFromString(FWAddrSetType_t setType, const char* text);
};

}  // namespace TarnFirewall
