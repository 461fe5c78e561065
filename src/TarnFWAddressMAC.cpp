#include "TarnFWAddressMAC.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "TarnFWException.h"

namespace TarnFirewall {

bool CTarnFWAddressMAC::isMACAddress() const { return true; }

void CTarnFWAddressMAC::appendOctets(CTarnFWText& text, const fw_ether_& address) {
  static constexpr char digits[] = "0123456789abcdef";
  char form[3 * sizeof address.octet];
  char* end = form;
  for (const std::uint8_t octet : address.octet) {
    *end++ = digits[octet >> 4];
    *end++ = digits[octet & 0x0f];
    *end++ = ':';
  }
  text += std::string_view(form, sizeof form - 1);
}

CTarnFWAddressMACPair::CTarnFWAddressMACPair(const char* text, char separator)
    : CTarnFWAddressMAC(false) {
  if (text == nullptr) text = "";
  std::array<unsigned int, 12> v{};
  const int scanned =
      separator == '/'
          ? std::sscanf(text, "%x:%x:%x:%x:%x:%x/%x:%x:%x:%x:%x:%x", &v[0], &v[1], &v[2], &v[3],
                        &v[4], &v[5], &v[6], &v[7], &v[8], &v[9], &v[10], &v[11])
          : std::sscanf(text, "%x:%x:%x:%x:%x:%x-%x:%x:%x:%x:%x:%x", &v[0], &v[1], &v[2], &v[3],
                        &v[4], &v[5], &v[6], &v[7], &v[8], &v[9], &v[10], &v[11]);
  if (scanned != static_cast<int>(v.size())) throw CInvalidAddressException(text);
  for (std::size_t i = 0; i < v.size(); ++i) {
    if (v[i] > 0xff) throw CInvalidAddressException(text);
    (i < 6 ? first_.octet[i] : second_.octet[i - 6]) = static_cast<std::uint8_t>(v[i]);
  }
}

CTarnFWAddressMACPair::CTarnFWAddressMACPair(const fw_ether_& first, const fw_ether_& second,
                                             bool negated)
    : CTarnFWAddressMAC(negated), first_(first), second_(second) {}

CTarnFWAddressMACPair::CTarnFWAddressMACPair(const FWAddress_& record)
    : CTarnFWAddressMAC(record),
      first_(loadRecord<fw_ether_>(record.value)),
      second_(loadRecord<fw_ether_>(record.value + sizeof(fw_ether_))) {}

bool CTarnFWAddressMACPair::getAddress(fw_ether_* first, fw_ether_* second) const {
  *first = first_;
  *second = second_;
  return negated_;
}

void CTarnFWAddressMACPair::appendValue(CTarnFWText& text) const {
  text += "mac ";
  appendOctets(text, first_);
  text += separator();
  appendOctets(text, second_);
}

void CTarnFWAddressMACPair::storeValue(ValueArea value) const {
  storeRecord(value.data(), first_);
  storeRecord(value.data() + sizeof first_, second_);
}

bool CTarnFWAddressMACPair::valueLess(const CTarnFWAddress& other) const {
  const auto& right = static_cast<const CTarnFWAddressMACPair&>(other);
  const int order = std::memcmp(&first_, &right.first_, sizeof first_);
  if (order != 0) return order < 0;
  return std::memcmp(&second_, &right.second_, sizeof second_) < 0;
}

}  // namespace TarnFirewall
