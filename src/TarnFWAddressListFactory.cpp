#include "TarnFWAddressListFactory.h"

#include "TarnFWAddressFactory.h"
#include "TarnFWAddressIPList.h"
#include "TarnFWAddressMACList.h"
#include "TarnFWAddressSIDList.h"
#include "TarnFWException.h"

namespace TarnFirewall {

std::unique_ptr<CTarnFWAddressList> CTarnFWAddressListFactory::newFromArray(
    int type, const FWAddrSetID_t& id, const FWAddress_* records, unsigned int count) {
  switch (type) {
    case FW_ADDRSET_IP:
      return std::make_unique<CTarnFWAddressIPList>(id, records, count);
    case FW_ADDRSET_MAC:
      return std::make_unique<CTarnFWAddressMACList>(id, records, count);
    case FW_ADDRESS_ATTR_SID:
      return std::make_unique<CTarnFWAddressSIDList>(id, records, count);
    default:
      throw CInvalidAddressException("unknown address type", static_cast<unsigned int>(type));
  }
}

void CTarnFWAddressListFactory::append(CTarnFWAddressList& list, const FWAddress_* records,
                                       unsigned int count) {
  for (unsigned int i = 0; i < count; ++i) {
    list.addAddress(CTarnFWAddressFactory::newFromMsgBuf(records + i));
  }
}

}  // namespace TarnFirewall
