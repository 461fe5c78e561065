#pragma once

#include "TarnFWProtocolSpecSession.h"

namespace TarnFirewall {

/// TCP connections of the rule are tracked sloppily: without their sequence numbers.
class CTarnFWProtocolSpecSloppy final : public CTarnFWProtocolSpecSession {
 public:
  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_SLOPPY; }
  void appendTo(CTarnFWText& text) const override { text += "sloppy"; }

 private:
  std::uint16_t flagBits() const override { return kSessionSloppy; }
};

}  // namespace TarnFirewall
