#pragma once

/// Makes message buffer objects by type.

#include <cstdint>
#include <memory>

#include "TarnFWMsgBuf.h"

namespace TarnFirewall {

enum FWMsgBufType_t : std::uint32_t { FW_MSGBUF_SIMPLE = 0 };

class CTarnFWMsgBufFactory {
 public:
  /// Throws `CUnknownMsgBufTypeException` for another type than 0.
  static std::unique_ptr<CTarnFWMsgBuf> newMsgBuf(FWMsgBufType_t type);
};

}  // namespace TarnFirewall
