#include "TarnFWProtocolSpec.h"

#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

unsigned char checkedDir(unsigned char dir) {
  if (dir > FW_SPEC_DIR_DESTINATION) throw CInvalidProtocolSpecDirException(dir);
  return dir;
}

}  // namespace

CTarnFWProtocolSpec::CTarnFWProtocolSpec(unsigned char dir, bool negated)
    : dir_(checkedDir(dir)), negated_(negated) {}

std::string CTarnFWProtocolSpec::toString() const {
  std::string text;
  appendTo(text);
  return text;
}

void CTarnFWProtocolSpec::setDir(unsigned char dir) { dir_ = checkedDir(dir); }

FWSpecHeader_ CTarnFWProtocolSpec::header() const {
  const unsigned int kind = getSpecType();
  return {static_cast<std::uint16_t>(dir_ | (negated_ ? 0x4u : 0u) | (kind << 3))};
}

}  // namespace TarnFirewall
