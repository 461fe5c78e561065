#pragma once

#include "TarnFWProtocolSpecSession.h"

namespace TarnFirewall {

/// The rule's connections are not tracked.
class CTarnFWProtocolSpecStateless final : public CTarnFWProtocolSpecSession {
 public:
  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_STATELESS; }
  void appendTo(CTarnFWText& text) const override { text += "stateless"; }

 private:
  std::uint16_t flagBits() const override { return kSessionStateless; }
};

}  // namespace TarnFirewall
