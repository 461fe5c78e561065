#include "TarnFWAddressAny.h"

namespace TarnFirewall {

CTarnFWAddressAny::CTarnFWAddressAny(const FWAddress_* /*record*/) {}

int CTarnFWAddressAny::getType() const { return FW_ADDRESS_ANY; }

std::string CTarnFWAddressAny::toString() const { return "any"; }

void CTarnFWAddressAny::appendTo(CTarnFWText& text) const { text += "any"; }

bool CTarnFWAddressAny::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (getMsgSize() > size) return false;
  storeRecord(buffer, host16(FW_ADDRESS_ANY));
  if (written != nullptr) *written = getMsgSize();
  return true;
}

bool CTarnFWAddressAny::operator<(const CTarnFWAddress& other) const {
  return getType() < other.getType();
}

}  // namespace TarnFirewall
