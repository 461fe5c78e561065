#include "TarnFWAddressSIDList.h"

namespace TarnFirewall {

CTarnFWAddressSIDList::CTarnFWAddressSIDList(const FWAddrSetID_t& id, const FWAddress_* records,
                                             unsigned int count)
    : CTarnFWAddressList(id, records, count, [](int type) { return type == FW_ADDRESS_ATTR_SID; }) {
}

int CTarnFWAddressSIDList::getType() const { return FW_ADDRESS_SID_LIST; }

std::string CTarnFWAddressSIDList::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

void CTarnFWAddressSIDList::appendTo(CTarnFWText& text) const {
  text += negated_ ? "not sid " : "sid ";
  CTarnFWAddressList::appendTo(text);
}

}  // namespace TarnFirewall
