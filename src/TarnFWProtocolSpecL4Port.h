#pragma once

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// One TCP or UDP port.
class CTarnFWProtocolSpecL4Port final : public CTarnFWProtocolSpec {
 public:
  struct Body {
    net16 port;  // +0
  };
  static_assert(sizeof(Body) == 2 && alignof(Body) == 1);

  CTarnFWProtocolSpecL4Port(unsigned char dir, unsigned short port, bool negated)
      : CTarnFWProtocolSpec(dir, negated), port_(port) {}
  /// Decimal text below 65536; anything else throws CInvalidL4PortException.
  CTarnFWProtocolSpecL4Port(unsigned char dir, const char* text);
  CTarnFWProtocolSpecL4Port(unsigned char dir, const Body& body, bool negated)
      : CTarnFWProtocolSpecL4Port(dir, static_cast<unsigned short>(body.port), negated) {}

  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_L4_PORT; }
  unsigned int getMsgSize() const override { return sizeof(Body); }
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

 private:
  std::uint16_t port_;
};

}  // namespace TarnFirewall
