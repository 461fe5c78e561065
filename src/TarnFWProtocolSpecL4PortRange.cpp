#include "TarnFWProtocolSpecL4PortRange.h"

#include "TarnFWException.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

CTarnFWProtocolSpecL4PortRange::CTarnFWProtocolSpecL4PortRange(unsigned char dir,
                                                               unsigned short low,
                                                               unsigned short high, bool negated)
    : CTarnFWProtocolSpec(dir, negated), low_(low), high_(high) {
  if (low >= high) throw CInvalidL4PortRangeException(low, high);
}

CTarnFWProtocolSpecL4PortRange::CTarnFWProtocolSpecL4PortRange(unsigned char dir, const char* text)
    : CTarnFWProtocolSpec(dir, false) {
  long low = 0;
  long high = 0;
  if (!Str2PortRange(text, &low, &high))
    throw CInvalidL4PortRangeException(text != nullptr ? text : "");
  low_ = static_cast<std::uint16_t>(low);
  high_ = static_cast<std::uint16_t>(high);
}

void CTarnFWProtocolSpecL4PortRange::appendTo(CTarnFWText& text) const {
  appendNegation(text);
  text += "port ";
  appendDecimal(text, low_);
  text += '-';
  appendDecimal(text, high_);
}

bool CTarnFWProtocolSpecL4PortRange::toMessage(void* buffer, unsigned int size,
                                               unsigned int* written) {
  return writeBody(Body{low_, high_, {}}, buffer, size, written);
}

}  // namespace TarnFirewall
