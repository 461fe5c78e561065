#include "TarnFWAddressFactory.h"

#include <cstring>

#include "TarnFWAddrSetID.h"
#include "TarnFWAddressAny.h"
#include "TarnFWAddressAttr.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressEtherMask.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv4Range.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWAddressIPv6Range.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

const char* traceWord(unsigned int type) {
  static constexpr const char* words[] = {
      "any",
      "ipv4",
      "ipv6",
      "ipv4 range",
      "ipv6 range",
      "ipv4/cidr",
      "ipv6/cidr",
      "ether",
      "ether range",
      "ether/mask",
      "vnic",
      "addrset",
      "attribute integer",
      "attribute unsigned integer",
      "attribute string",
      "attribute sid",
  };
  return type < std::size(words) ? words[type] : "unknown";
}

template <typename Single, typename Range, typename Block>
std::unique_ptr<CTarnFWAddress> newIPAddress(const char* text) {
  // A text with both marks goes to the range, which then refuses it.
  if (std::strchr(text, '-') != nullptr) return std::make_unique<Range>(text, false);
  if (std::strchr(text, '/') != nullptr) return std::make_unique<Block>(text, false);
  return std::make_unique<Single>(text, false);
}

}  // namespace

std::unique_ptr<CTarnFWAddress> CTarnFWAddressFactory::newFromMsgBuf(const FWAddress_* record,
                                                                     CTarnFWLoadMemory* memory) {
  const unsigned int type = record->type;
  TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "%s: address type is %s\n", __func__, traceWord(type));
  switch (type) {
    case FW_ADDRESS_ANY:
      return makeIn<CTarnFWAddressAny>(memory, record);
    case FW_ADDRESS_IPV4:
      return makeIn<CTarnFWAddressIPv4>(memory, record);
    case FW_ADDRESS_IPV6:
      return makeIn<CTarnFWAddressIPv6>(memory, record);
    case FW_ADDRESS_IPV4_RANGE:
      return makeIn<CTarnFWAddressIPv4Range>(memory, record);
    case FW_ADDRESS_IPV6_RANGE:
      return makeIn<CTarnFWAddressIPv6Range>(memory, record);
    case FW_ADDRESS_IPV4_CIDR:
      return makeIn<CTarnFWAddressIPv4CIDR>(memory, record);
    case FW_ADDRESS_IPV6_CIDR:
      return makeIn<CTarnFWAddressIPv6CIDR>(memory, record);
    case FW_ADDRESS_ETHER:
      return makeIn<CTarnFWAddressEther>(memory, record);
    case FW_ADDRESS_ETHER_MASK:
      return makeIn<CTarnFWAddressEtherMask>(memory, record);
    case FW_ADDRESS_ADDRSET:
      return makeIn<CTarnFWAddrSetID>(memory, record);
    case FW_ADDRESS_ATTR_INT:
      return makeIn<CTarnFWAttr<FW_ATTR_ID_VALUE_INT>>(memory, record);
    case FW_ADDRESS_ATTR_UINT:
      return makeIn<CTarnFWAttr<FW_ATTR_ID_VALUE_UINT>>(memory, record);
    case FW_ADDRESS_ATTR_STRING:
      return makeIn<CTarnFWAttr<FW_ATTR_ID_VALUE_STRING>>(memory, record);
    case FW_ADDRESS_ATTR_SID:
    case FW_ADDRESS_SID_LIST:  // the kernel reports it as one of its members
      return makeIn<CTarnFWAttr<FW_ATTR_ID_VALUE_SID>>(memory, record);
    default:
      // A MAC range is among these although it can be written: the kernel never reports one.
      throw CInvalidAddressException("unknown address type", type);
  }
}

std::unique_ptr<CTarnFWAddress> CTarnFWAddressFactory::newFromMsgBuf(const void* buffer,
                                                                     unsigned int size,
                                                                     unsigned int* used) {
  *used = 0;
  if (size < sizeof(FWAddress_)) return nullptr;
  *used = sizeof(FWAddress_);
  const auto record = loadRecord<FWAddress_>(buffer);
  return newFromMsgBuf(&record);
}

std::unique_ptr<CTarnFWAddress> CTarnFWAddressFactory::newFromString(FWAddrSetType_t setType,
                                                                     const char* text) {
  if (text == nullptr) text = "";
  switch (setType) {
    case FW_ADDRSET_IP:
      TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "creating ip address from %s\n", text);
      return std::strchr(text, ':') != nullptr
                 ? newIPAddress<CTarnFWAddressIPv6, CTarnFWAddressIPv6Range,
                                CTarnFWAddressIPv6CIDR>(text)
                 : newIPAddress<CTarnFWAddressIPv4, CTarnFWAddressIPv4Range,
                                CTarnFWAddressIPv4CIDR>(text);
    case FW_ADDRSET_MAC:
      TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "creating mac address from %s\n", text);
      if (std::strchr(text, '/') != nullptr) {
        return std::make_unique<CTarnFWAddressEtherMask>(text, false);
      }
      return std::make_unique<CTarnFWAddressEther>(text, false);
    case FW_ADDRSET_SID:
      TARNFW_TRACE(FW_COMPONENT_ADDRESS, 0, "creating sid address from %s\n", text);
      return std::make_unique<CTarnFWAttr<FW_ATTR_ID_VALUE_SID>>(FW_ATTR_ID_WIN_SID, text, false);
    default:
      throw CUnsupportedException("unsupported address set type", static_cast<int>(setType));
  }
}

}  // namespace TarnFirewall
