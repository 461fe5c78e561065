#include "TarnFWAddressEtherMask.h"

namespace TarnFirewall {

CTarnFWAddressEtherMask::CTarnFWAddressEtherMask(const char* text, bool /*negated*/)
    : CTarnFWAddressMACPair(text, '/') {}

CTarnFWAddressEtherMask::CTarnFWAddressEtherMask(const fw_ether_& address, const fw_ether_& mask,
                                                 bool negated)
    : CTarnFWAddressMACPair(address, mask, negated) {}

CTarnFWAddressEtherMask::CTarnFWAddressEtherMask(const FWAddress_* record)
    : CTarnFWAddressMACPair(*record) {}

int CTarnFWAddressEtherMask::getType() const { return FW_ADDRESS_ETHER_MASK; }

char CTarnFWAddressEtherMask::separator() const { return '/'; }

}  // namespace TarnFirewall
