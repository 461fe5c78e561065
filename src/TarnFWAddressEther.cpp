#include "TarnFWAddressEther.h"

#include <netinet/ether.h>

#include <cstring>

#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

/// Whether the text ends after its sixth octet, or goes on with white space. `ether_aton_r` does
/// not look there when the octet has two digits, and would take the first address of a range.
bool endsAfterLastOctet(const char* text) {
  for (int colons = 0; colons < 5; ++text) colons += *text == ':' ? 1 : 0;
  const std::size_t digits = std::strspn(text, "0123456789abcdefABCDEF");
  return digits <= 2 &&
         (text[digits] == '\0' || std::strchr(" \t\n\v\f\r", text[digits]) != nullptr);
}

}  // namespace

CTarnFWAddressEther::CTarnFWAddressEther(const char* text, bool negated)
    : CTarnFWAddressMAC(negated) {
  if (text == nullptr) text = "";
  ether_addr address;
  if (ether_aton_r(text, &address) == nullptr || !endsAfterLastOctet(text))
    throw CInvalidAddressException(text);
  std::memcpy(&address_, &address, sizeof address_);
}

CTarnFWAddressEther::CTarnFWAddressEther(const fw_ether_& address, bool negated)
    : CTarnFWAddressMAC(negated), address_(address) {}

CTarnFWAddressEther::CTarnFWAddressEther(const FWAddress_* record)
    : CTarnFWAddressMAC(*record), address_(loadRecord<fw_ether_>(record->value)) {}

int CTarnFWAddressEther::getType() const { return FW_ADDRESS_ETHER; }

bool CTarnFWAddressEther::getAddress(fw_ether_* address) const {
  *address = address_;
  return negated_;
}

void CTarnFWAddressEther::appendValue(CTarnFWText& text) const {
  text += "mac ";
  appendOctets(text, address_);
}

void CTarnFWAddressEther::storeValue(ValueArea value) const { storeRecord(value.data(), address_); }

bool CTarnFWAddressEther::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressEther&>(other);
  return std::memcmp(&right.address_, &address_, sizeof address_) < 0;
}

}  // namespace TarnFirewall
