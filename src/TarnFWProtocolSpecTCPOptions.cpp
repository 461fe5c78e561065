#include "TarnFWProtocolSpecTCPOptions.h"

#include <cstring>

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

CTarnFWProtocolSpecTCPOptions::CTarnFWProtocolSpecTCPOptions(unsigned char dir, const void* options,
                                                             unsigned int length, bool negated)
    : CTarnFWProtocolSpec(dir, negated), length_(static_cast<std::uint8_t>(length)) {
  if (length > kMaxLength) throw CTCPOptionsTooLongException(static_cast<int>(length));
  if (length != 0) std::memcpy(options_.data(), options, length);
}

void CTarnFWProtocolSpecTCPOptions::appendTo(CTarnFWText& text) const {
  appendNegation(text);
  text += "tcpoptions 0x";
  for (unsigned int i = 0; i < length_; ++i) appendHex(text, options_[i], 2);
}

bool CTarnFWProtocolSpecTCPOptions::toMessage(void* buffer, unsigned int size,
                                              unsigned int* written) {
  Body body{};
  body.length = length_;
  std::memcpy(body.options, options_.data(), length_);
  return writeBody(body, buffer, size, written);
}

}  // namespace TarnFirewall
