#include "TarnFWAddressMACList.h"

namespace TarnFirewall {

CTarnFWAddressMACList::CTarnFWAddressMACList(const FWAddrSetID_t& id, const FWAddress_* records,
                                             unsigned int count)
    : CTarnFWAddressList(id, records, count, [](int type) { return type == FW_ADDRESS_ETHER; }) {}

int CTarnFWAddressMACList::getType() const { return FW_ADDRESS_MAC_LIST; }

std::string CTarnFWAddressMACList::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

void CTarnFWAddressMACList::appendTo(CTarnFWText& text) const {
  text += negated_ ? "not mac " : "mac ";
  CTarnFWAddressList::appendTo(text);
}

}  // namespace TarnFirewall
