#pragma once

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// The nine flags of a TCP segment.
class CTarnFWProtocolSpecTCPFlags final : public CTarnFWProtocolSpec {
 public:
  struct Body {
    std::uint8_t low;          // +0  flag bits 0 to 7
    std::uint8_t high;         // +1  bit 0: flag bit 8
    std::uint8_t reserved[4];  // +2  zero
  };
  static_assert(sizeof(Body) == 6 && alignof(Body) == 1);
  static_assert(offsetof(Body, high) == 1 && offsetof(Body, reserved) == 2);

  /// Throws CInvalidTCPFlagsException for flags of 512 and more.
  CTarnFWProtocolSpecTCPFlags(unsigned char dir, unsigned short flags, bool negated);
  CTarnFWProtocolSpecTCPFlags(unsigned char dir, const Body& body, bool negated);

  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_TCP_FLAGS; }
  unsigned int getMsgSize() const override { return sizeof(Body); }
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

 private:
  std::uint16_t flags_;
};

}  // namespace TarnFirewall
