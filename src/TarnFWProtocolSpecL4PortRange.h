#pragma once

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// A range of TCP or UDP ports, from low to high with both ends; low is below high.
class CTarnFWProtocolSpecL4PortRange final : public CTarnFWProtocolSpec {
 public:
  struct Body {
    net16 low;                 // +0
    net16 high;                // +2
    std::uint8_t reserved[2];  // +4  zero
  };
  static_assert(sizeof(Body) == 6 && alignof(Body) == 1);
  static_assert(offsetof(Body, high) == 2 && offsetof(Body, reserved) == 4);

  /// Throws CInvalidL4PortRangeException unless low is below high.
  CTarnFWProtocolSpecL4PortRange(unsigned char dir, unsigned short low, unsigned short high,
                                 bool negated);
  /// Two ports with "-" or ":" between them; anything else throws CInvalidL4PortRangeException.
  CTarnFWProtocolSpecL4PortRange(unsigned char dir, const char* text);
  CTarnFWProtocolSpecL4PortRange(unsigned char dir, const Body& body, bool negated)
      : CTarnFWProtocolSpecL4PortRange(dir, body.low, body.high, negated) {}

  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_L4_PORT_RANGE; }
  unsigned int getMsgSize() const override { return sizeof(Body); }
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

 private:
  std::uint16_t low_;
  std::uint16_t high_;
};

}  // namespace TarnFirewall
