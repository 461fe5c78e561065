#include "TarnFWProtocolSpec.h"

#include "TarnFWException.h"

namespace TarnFirewall {

unsigned char CTarnFWProtocolSpec::refuseDir(unsigned char dir) {
  throw CInvalidProtocolSpecDirException(dir);
}

std::string CTarnFWProtocolSpec::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

void CTarnFWProtocolSpec::setDir(unsigned char dir) {
  dir_ = dir <= FW_SPEC_DIR_DESTINATION ? dir : refuseDir(dir);
}

FWSpecHeader_ CTarnFWProtocolSpec::header() const {
  const unsigned int kind = getSpecType();
  return {static_cast<std::uint16_t>(dir_ | (negated_ ? 0x4u : 0u) | (kind << 3))};
}

}  // namespace TarnFirewall
