#include "TarnFWAddressIPList.h"

namespace TarnFirewall {

CTarnFWAddressIPList::CTarnFWAddressIPList(const FWAddrSetID_t& id, const FWAddress_* records,
                                           unsigned int count)
    : CTarnFWAddressList(id, records, count, [](int type) {
        return type >= FW_ADDRESS_ANY && type <= FW_ADDRESS_IPV6_CIDR;
      }) {}

int CTarnFWAddressIPList::getType() const { return FW_ADDRESS_IP_LIST; }

std::string CTarnFWAddressIPList::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

void CTarnFWAddressIPList::appendTo(CTarnFWText& text) const {
  text += negated_ ? "not ip " : "ip ";
  CTarnFWAddressList::appendTo(text);
}

}  // namespace TarnFirewall
