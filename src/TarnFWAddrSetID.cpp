#include "TarnFWAddrSetID.h"

#include <cstring>
#include <string_view>

#include "TarnFWException.h"

namespace TarnFirewall {

CTarnFWAddrSetID::CTarnFWAddrSetID(const char* name, bool negated)
    : CTarnFWAddressRecord(negated), name_{} {
  const std::string_view text = name == nullptr ? "" : name;
  if (text.size() + 1 > sizeof name_.text) throw CIDTooLongException(text);
  text.copy(name_.text, text.size());
}

CTarnFWAddrSetID::CTarnFWAddrSetID(const FWAddrSetID_t& name, bool negated)
    : CTarnFWAddressRecord(negated), name_(name) {}

CTarnFWAddrSetID::CTarnFWAddrSetID(const FWAddress_* record) : CTarnFWAddressRecord(*record) {
  if (record->type != FW_ADDRESS_ADDRSET) {
    throw CInvalidAddressException("invalid address type", record->type);
  }
  std::memcpy(name_.text, record->value, sizeof name_.text);
}

int CTarnFWAddrSetID::getType() const { return FW_ADDRESS_ADDRSET; }

bool CTarnFWAddrSetID::isContainer() const { return true; }

std::string CTarnFWAddrSetID::getName() const {
  return {name_.text, fieldLength(name_.text, sizeof name_.text)};
}

bool CTarnFWAddrSetID::getAddress(FWAddrSetID_t* name) const {
  *name = name_;
  return negated_;
}

void CTarnFWAddrSetID::appendValue(CTarnFWText& text) const {
  text += "addrset ";
  text += std::string_view(name_.text, fieldLength(name_.text, sizeof name_.text));
}

void CTarnFWAddrSetID::storeValue(ValueArea value) const {
  std::memcpy(value.data(), name_.text, sizeof name_.text);
}

bool CTarnFWAddrSetID::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddrSetID&>(other);
  return std::memcmp(name_.text, right.name_.text, sizeof name_.text) < 0;
}

}  // namespace TarnFirewall
