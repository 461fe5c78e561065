#include "TarnFWProtocolSpecDSCP.h"

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

CTarnFWProtocolSpecDSCP::CTarnFWProtocolSpecDSCP(unsigned char value) : value_(value) {
  if (value >= 64) throw CUnsupportedException(FW_STATUS_BAD_DSCP_MARKINGS, "bad dscp markings");
}

void CTarnFWProtocolSpecDSCP::appendTo(CTarnFWText& text) const {
  text += "dscp ";
  appendDecimal(text, value_);
}

std::uint16_t CTarnFWProtocolSpecDSCP::flagBits() const {
  return static_cast<std::uint16_t>(value_ << kSessionDSCPShift);
}

}  // namespace TarnFirewall
