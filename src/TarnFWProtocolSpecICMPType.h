#pragma once

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// An ICMP or ICMPv6 type, with a code or without one.
class CTarnFWProtocolSpecICMPType final : public CTarnFWProtocolSpec {
 public:
  struct Body {
    std::uint8_t flags;        // +0  bit 0: has type, always written; bit 1: has code
    std::uint8_t reserved[3];  // +1  zero
    std::uint8_t type;         // +4
    std::uint8_t code;         // +5  zero without one
  };
  static_assert(sizeof(Body) == 6 && alignof(Body) == 1);
  static_assert(offsetof(Body, reserved) == 1 && offsetof(Body, type) == 4 &&
                offsetof(Body, code) == 5);

  CTarnFWProtocolSpecICMPType(unsigned char dir, unsigned char type, bool negated)
      : CTarnFWProtocolSpec(dir, negated), type_(type) {}
  CTarnFWProtocolSpecICMPType(unsigned char dir, unsigned char type, unsigned char code,
                              bool negated)
      : CTarnFWProtocolSpec(dir, negated), type_(type), hasCode_(true), code_(code) {}
  CTarnFWProtocolSpecICMPType(unsigned char dir, const Body& body, bool negated);

  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_ICMP_TYPE; }
  unsigned int getMsgSize() const override { return sizeof(Body); }
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

 private:
  std::uint8_t type_;
  bool hasCode_ = false;
  std::uint8_t code_ = 0;
};

}  // namespace TarnFirewall
