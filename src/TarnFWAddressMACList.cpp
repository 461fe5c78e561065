#include "TarnFWAddressMACList.h"

namespace TarnFirewall {

CTarnFWAddressMACList::CTarnFWAddressMACList(const FWAddrSetID_t& id, const FWAddress_* records,
                                             unsigned int count)
    : CTarnFWAddressList(id, records, count, [](int type) { return type == FW_ADDRESS_ETHER; }) {}

int CTarnFWAddressMACList::getType() const { return FW_ADDRESS_MAC_LIST; }

std::string CTarnFWAddressMACList::toString() const {
  std::string text;
  appendTo(text);
  return text;
}

void CTarnFWAddressMACList::appendTo(std::string& text) const {
  text += negated_ ? "not mac " : "mac ";
  CTarnFWAddressList::appendTo(text);
}

}  // namespace TarnFirewall
