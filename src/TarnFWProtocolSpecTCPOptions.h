#pragma once

#include <array>

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// Bytes that a TCP segment carries as its options, at most 40.
class CTarnFWProtocolSpecTCPOptions final : public CTarnFWProtocolSpec {
 public:
  static constexpr unsigned int kMaxLength = 40;

  struct Body {
    host16 length;             // +0
    std::uint8_t options[40];  // +2
  };
  static_assert(sizeof(Body) == 42 && alignof(Body) == 1);
  static_assert(offsetof(Body, options) == 2);

  /// Throws CTCPOptionsTooLongException for more than 40 bytes.
  CTarnFWProtocolSpecTCPOptions(unsigned char dir, const void* options, unsigned int length,
                                bool negated);
  CTarnFWProtocolSpecTCPOptions(unsigned char dir, const Body& body, bool negated)
      : CTarnFWProtocolSpecTCPOptions(dir, body.options, body.length, negated) {}

  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_TCP_OPTIONS; }
  unsigned int getMsgSize() const override { return sizeof(Body); }
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

 private:
  std::array<std::uint8_t, kMaxLength> options_{};
  std::uint8_t length_;
};

}  // namespace TarnFirewall
