#include "TarnFWAddressEtherRange.h"

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

std::uint64_t weight(const fw_ether_& address) {
  std::uint64_t number = 0;
  for (std::size_t i = sizeof address.octet; i-- > 0;) number = (number << 8) | address.octet[i];
  return number;
}

}  // namespace

CTarnFWAddressEtherRange::CTarnFWAddressEtherRange(const char* text, bool /*negated*/)
    : CTarnFWAddressMACPair(text, '-') {
  validateRange(&first_, &second_);
}

CTarnFWAddressEtherRange::CTarnFWAddressEtherRange(const fw_ether_& first, const fw_ether_& last,
                                                   bool negated)
    : CTarnFWAddressMACPair(first, last, negated) {
  validateRange(&first_, &second_);
}

CTarnFWAddressEtherRange::CTarnFWAddressEtherRange(const FWAddress_* record)
    : CTarnFWAddressMACPair(*record) {
  validateRange(&first_, &second_);
}

int CTarnFWAddressEtherRange::getType() const { return FW_ADDRESS_ETHER_RANGE; }

char CTarnFWAddressEtherRange::separator() const { return '-'; }

void CTarnFWAddressEtherRange::validateRange(const fw_ether_* first, const fw_ether_* last) {
  if (weight(*first) < weight(*last)) return;
  const std::uint8_t* const f = first->octet;
  const std::uint8_t* const l = last->octet;
  throw CInvalidEtherRangeException(formatText(
      "invalid ethernet range: %02x:%02x:%02x:%02x:%02x:%02x-%02x:%02x:%02x:%02x:%02x:%02x", f[0],
      f[1], f[2], f[3], f[4], f[5], l[0], l[1], l[2], l[3], l[4], l[5]));
}

}  // namespace TarnFirewall
