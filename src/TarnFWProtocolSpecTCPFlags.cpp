#include "TarnFWProtocolSpecTCPFlags.h"

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

CTarnFWProtocolSpecTCPFlags::CTarnFWProtocolSpecTCPFlags(unsigned char dir, unsigned short flags,
                                                         bool negated)
    : CTarnFWProtocolSpec(dir, negated), flags_(flags) {
  if (flags >= 512) throw CInvalidTCPFlagsException(flags);
}

CTarnFWProtocolSpecTCPFlags::CTarnFWProtocolSpecTCPFlags(unsigned char dir, const Body& body,
                                                         bool negated)
    : CTarnFWProtocolSpec(dir, negated),
      flags_(static_cast<std::uint16_t>(body.low | ((body.high & 1) << 8))) {}

void CTarnFWProtocolSpecTCPFlags::appendTo(CTarnFWText& text) const {
  appendNegation(text);
  text += "flag 0x";
  appendHex(text, flags_, 4);
}

bool CTarnFWProtocolSpecTCPFlags::toMessage(void* buffer, unsigned int size,
                                            unsigned int* written) {
  const Body body{
      static_cast<std::uint8_t>(flags_ & 0xff), static_cast<std::uint8_t>(flags_ >> 8), {}};
  return writeBody(body, buffer, size, written);
}

}  // namespace TarnFirewall
