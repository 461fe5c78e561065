#pragma once

#include "TarnFWProtocolSpecSession.h"

namespace TarnFirewall {

/// DSCP marking, a value of 6 bits.
class CTarnFWProtocolSpecDSCP final : public CTarnFWProtocolSpecSession {
 public:
  /// Throws CUnsupportedException with status 60 for a value of 64 and more.
  explicit CTarnFWProtocolSpecDSCP(unsigned char value);

  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_DSCP; }
  void appendTo(CTarnFWText& text) const override;

 private:
  std::uint16_t flagBits() const override;

  std::uint8_t value_;
};

}  // namespace TarnFirewall
