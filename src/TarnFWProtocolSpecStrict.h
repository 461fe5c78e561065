#pragma once

#include "TarnFWProtocolSpecSession.h"

namespace TarnFirewall {

/// TCP connections of the rule are tracked strictly: from the handshake on.
class CTarnFWProtocolSpecStrict final : public CTarnFWProtocolSpecSession {
 public:
  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_STRICT; }
  void appendTo(CTarnFWText& text) const override { text += "strict"; }

 private:
  std::uint16_t flagBits() const override { return kSessionStrict; }
};

}  // namespace TarnFirewall
