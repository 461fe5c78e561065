#pragma once

#include <memory>

#include "TarnFWLoadMemory.h"
#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// Makes protocol specs from the blocks of a rule record and ports from text.
class CTarnFWProtocolSpecFactory {
 public:
  /// Reads a header and the body after it. Null when there is no spec in this place or the buffer
  /// has less than a header. Throws CInsufficientMsgBufException when the body is cut off,
  /// CUnknownProtocolSpecTypeException for a kind that has no body, and what the protocol spec's
  /// class throws for a bad value. A null `memory` makes an object of its own.
  static std::unique_ptr<CTarnFWProtocolSpec> newFromMsgBuf(const void* buffer, unsigned int size,
                                                            CTarnFWLoadMemory* memory = nullptr);

  /// A range when the text has "-" or ":", else a set when it has ",", else a port. Throws what
  /// their classes throw.
  static std::unique_ptr<CTarnFWProtocolSpec> newL4PortSpecFromString(unsigned char dir,
                                                                      const char* text);
};

}  // namespace TarnFirewall
