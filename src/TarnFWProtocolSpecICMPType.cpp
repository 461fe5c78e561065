#include "TarnFWProtocolSpecICMPType.h"

#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

constexpr std::uint8_t kHasType = 0x1;
constexpr std::uint8_t kHasCode = 0x2;

}  // namespace

CTarnFWProtocolSpecICMPType::CTarnFWProtocolSpecICMPType(unsigned char dir, const Body& body,
                                                         bool negated)
    : CTarnFWProtocolSpec(dir, negated),
      type_(body.type),
      hasCode_((body.flags & kHasCode) != 0),
      code_(hasCode_ ? body.code : std::uint8_t{0}) {}

void CTarnFWProtocolSpecICMPType::appendTo(CTarnFWText& text) const {
  appendNegation(text);
  text += hasCode_ ? "typecode " : "icmptype ";
  appendDecimal(text, type_);
  if (hasCode_) {
    text += ':';
    appendDecimal(text, code_);
  }
}

bool CTarnFWProtocolSpecICMPType::toMessage(void* buffer, unsigned int size,
                                            unsigned int* written) {
  const Body body{
      static_cast<std::uint8_t>(hasCode_ ? kHasType | kHasCode : kHasType), {}, type_, code_};
  return writeBody(body, buffer, size, written);
}

}  // namespace TarnFirewall
