#define TARNFW_SOURCE "tarnfw_parser.y"

#include "TarnFWParserActionsAddress.h"

#include "TarnFWAddrSetID.h"
#include "TarnFWAddressAttr.h"
#include "TarnFWAddressBlocks.h"
#include "TarnFWAddressConvert.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressEtherMask.h"
#include "TarnFWAddressEtherRange.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv4Range.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWAddressIPv6Range.h"
#include "TarnFWCmdCreateAddrSet.h"
#include "TarnFWCmdGetAddrSetList.h"
#include "TarnFWCmdGetAddrSetStatList.h"
#include "TarnFWCmdGetAddressOfAddrSet.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

FWAttrIDType attribute_type = FW_ATTR_ID_NONE;

namespace {

/// Addresses and set names that one message asks for.
constexpr unsigned int kAddressesPerMessage = 50000;
constexpr unsigned int kSetsPerMessage = 20000;

template <typename Address>
std::unique_ptr<CTarnFWAddress> addressOfText(const FWParse& parse, const FWParserText& text) {
  auto address = parse.make<Address>(std::string_view(text.data, text.length), false);
  parse.arena().releaseLast(text);
  return address;
}

}  // namespace

std::unique_ptr<CTarnFWAddress> ipv4Address(const FWParse& parse, const FWParserText& text) {
  return addressOfText<CTarnFWAddressIPv4>(parse, text);
}

std::unique_ptr<CTarnFWAddress> ipv6Address(const FWParse& parse, const FWParserText& text) {
  return addressOfText<CTarnFWAddressIPv6>(parse, text);
}

std::unique_ptr<CTarnFWAddress> ipv4Block(const FWParse& parse, const FWParserText& text) {
  return addressOfText<CTarnFWAddressIPv4CIDR>(parse, text);
}

std::unique_ptr<CTarnFWAddress> ipv6Block(const FWParse& parse, const FWParserText& text) {
  return addressOfText<CTarnFWAddressIPv6CIDR>(parse, text);
}

std::unique_ptr<CTarnFWAddress> ipv4Range(const FWParse& parse, const FWIPv4Range& range) {
  return parse.make<CTarnFWAddressIPv4Range>(range.first, range.last, false);
}

std::unique_ptr<CTarnFWAddress> ipv6Range(const FWParse& parse, const FWIPv6Range& range) {
  return parse.make<CTarnFWAddressIPv6Range>(range.first, range.last, false);
}

std::unique_ptr<CTarnFWAddress> etherAddress(const FWParse& parse, const fw_ether_& ether) {
  return parse.make<CTarnFWAddressEther>(ether, false);
}

std::unique_ptr<CTarnFWAddress> etherRange(const FWParse& parse, const FWEtherPair& pair) {
  return parse.make<CTarnFWAddressEtherRange>(pair.first, pair.second, false);
}

std::unique_ptr<CTarnFWAddress> etherMask(const FWParse& parse, const FWEtherPair& pair) {
  return parse.make<CTarnFWAddressEtherMask>(pair.first, pair.second, false);
}

std::unique_ptr<CTarnFWAddress> addressSet(const FWParse& parse, const FWParserText& name) {
  return parse.make<CTarnFWAddrSetID>(name.data, false);
}

CTarnFWAddress* negated(CTarnFWAddress* address) {
  address->setNegated(true);
  return address;
}

FWIPPort ipPort(const FWParserText& text) {
  FWIPPort result = {};
  fw_str2ipport(text.data, &result.address, &result.port);
  return result;
}

FWIPPort anyPort(const FWParserText& text) {
  const char* digits = std::strchr(text.data, ':') + 1;
  long port = 0;
  if (!Str2Port(digits, &port)) {
    throw CParseFailure(formatText("port number (%s) is invalid", digits),
                        FW_STATUS_INVALID_L4_PORT);
  }
  return {{INADDR_NONE}, static_cast<std::uint16_t>(port)};
}

bool IPv4Range2CIDR_Callback(void* list, in_addr address, unsigned int prefix) {
  auto& addresses = *static_cast<CTarnFWAddressList*>(list);
  if (addresses.isFull()) {
    addresses.count();
  } else if (prefix == 32) {
    addresses.addAddress(addresses.make<CTarnFWAddressIPv4>(address, false));
  } else {
    const auto length = static_cast<unsigned char>(prefix);
    addresses.addAddress(addresses.make<CTarnFWAddressIPv4CIDR>(address, length, false));
  }
  return true;
}

bool IPv6Range2CIDR_Callback(void* list, in6_addr address, unsigned int prefix) {
  auto& addresses = *static_cast<CTarnFWAddressList*>(list);
  if (addresses.isFull()) {
    addresses.count();
  } else if (prefix == 128) {
    addresses.addAddress(addresses.make<CTarnFWAddressIPv6>(address, false));
  } else {
    const auto length = static_cast<unsigned char>(prefix);
    addresses.addAddress(addresses.make<CTarnFWAddressIPv6CIDR>(address, length, false));
  }
  return true;
}

bool addBlocksOfRange(CTarnFWAddressList& list, const CTarnFWAddress& range) {
  unsigned int count = 0;
  if (range.getType() == FW_ADDRESS_IPV4_RANGE) {
    in_addr first, last;
    static_cast<const CTarnFWAddressIPv4Range&>(range).getAddress(&first, &last);
    CTarnFWAddressIPv4Blocks::countOf(first, last, &count);
    if (count < 2) return ipv4range2cidr(first, last, &list, IPv4Range2CIDR_Callback);
    list.addBlocks(list.make<CTarnFWAddressIPv4Blocks>(first, last, count));
    return true;
  }
  if (range.getType() == FW_ADDRESS_IPV6_RANGE) {
    in6_addr first, last;
    static_cast<const CTarnFWAddressIPv6Range&>(range).getAddress(&first, &last);
    CTarnFWAddressIPv6Blocks::countOf(first, last, &count);
    if (count < 2) return ipv6range2cidr(first, last, &list, IPv6Range2CIDR_Callback);
    list.addBlocks(list.make<CTarnFWAddressIPv6Blocks>(first, last, count));
    return true;
  }
  return false;
}

bool AddAddress(CTarnFWAddressList* list, std::unique_ptr<CTarnFWAddress>& address) {
  const int type = address->getType();
  if (type != FW_ADDRESS_IPV4_RANGE && type != FW_ADDRESS_IPV6_RANGE) {
    list->addAddress(std::move(address));
    return true;
  }
  if (!addBlocksOfRange(*list, *address)) return false;
  if (type == FW_ADDRESS_IPV4_RANGE) {
    TARNFW_INFO("replaced ip range %s to cidr list\n", address->toString().c_str());
  } else {
    TARNFW_INFO("replaced ipv6 range %s to cidr list\n", address->toString().c_str());
  }
  address.reset();
  return true;
}

std::unique_ptr<CTarnFWAddressList> appended(const FWParse& parse,
                                             std::unique_ptr<CTarnFWAddressList> list,
                                             std::unique_ptr<CTarnFWAddress> address) {
  if (list == nullptr) list = emptyList(parse);
  if (!AddAddress(list.get(), address)) {
    throw CParseFailure(
        formatText("failed to replace ip range %s to cidr list", address->toString().c_str()));
  }
  return list;
}

std::unique_ptr<CTarnFWAddressList> appendedPlain(const FWParse& parse,
                                                  std::unique_ptr<CTarnFWAddressList> list,
                                                  std::unique_ptr<CTarnFWAddress> address) {
  if (list == nullptr) list = emptyList(parse);
  list->addAddress(std::move(address));
  return list;
}

std::unique_ptr<CTarnFWAddress> attributeOfKind(FWAttrIDType key, FWAttrIDValType kind,
                                                const FWParserText& text) {
  switch (kind) {
    case FW_ATTR_ID_VALUE_INT:
      return std::make_unique<CTarnFWAttr<FW_ATTR_ID_VALUE_INT>>(key, text.data, false);
    case FW_ATTR_ID_VALUE_UINT:
      return std::make_unique<CTarnFWAttr<FW_ATTR_ID_VALUE_UINT>>(key, text.data, false);
    case FW_ATTR_ID_VALUE_STRING:
      return std::make_unique<CTarnFWAttr<FW_ATTR_ID_VALUE_STRING>>(key, text.data, false);
    case FW_ATTR_ID_VALUE_SID:
      return std::make_unique<CTarnFWAttr<FW_ATTR_ID_VALUE_SID>>(key, text.data, false);
    default:
      // The kinds that the key table holds end here: the kernel takes their values in containers.
      throw SilentParseFailure();
  }
}

std::unique_ptr<CTarnFWAddress> attribute(const FWParserText& text) {
  const FWAttrIDType key = attribute_type;
  if (key >= FW_ATTR_ID_NONE) {
    TARNFW_TRACE(FW_COMPONENT_PARSER, 0, "    invalid attribute %d\n", static_cast<int>(key));
    throw SilentParseFailure();
  }
  const FWAttrIDValType* kind = FWAttribute_key2type_map.find(key);
  if (kind == nullptr) {
    TARNFW_WARNING("attribute key %d not found\n", static_cast<int>(key));
    throw SilentParseFailure();
  }
  return attributeOfKind(key, *kind, text);
}

std::unique_ptr<CTarnFWAddressList> emptyList(const FWParse& parse) {
  return std::make_unique<CTarnFWAddressList>(*parse.extra().memory);
}

FWAddrSetID_t addrSetName(const FWParserText& text) {
  if (text.length >= sizeof(FWAddrSetID_t)) {
    throw CParseFailure(formatText("addrset name (%s) is too long", text.data),
                        FW_STATUS_ID_TOO_LONG);
  }
  return nameField<FWAddrSetID_t>(text);
}

std::unique_ptr<CTarnFWCmd> createAddrSet(const dvs_port_* port, const FWParserText& name,
                                          FWAddrSetType_t type,
                                          std::unique_ptr<CTarnFWAddressList> list) {
  const FWAddrSetID_t id = addrSetName(name);
  if (list == nullptr) return std::make_unique<CTarnFWCmdCreateAddrSet>(port, id, type);
  return std::make_unique<CTarnFWCmdCreateAddrSet>(port, id, type, std::move(list));
}

std::unique_ptr<CTarnFWCmd> getAddresses(const dvs_port_* port, const FWParserText& name,
                                         std::int64_t from) {
  const FWAddrSetID_t id = addrSetName(name);
  const std::uint32_t first = number32(from, "addrset index value overflows");
  return std::make_unique<CTarnFWCmdGetAddressOfAddrSet>(port, id, kAddressesPerMessage, first);
}

std::unique_ptr<CTarnFWCmd> getAddrSetStats(const dvs_port_* port) {
  return std::make_unique<CTarnFWCmdGetAddrSetStatList>(port, FW_ADDRSET_ANY, kSetsPerMessage, 0);
}

std::unique_ptr<CTarnFWCmd> getAddrSetList(const dvs_port_* port, std::int64_t from) {
  const std::uint32_t first = number32(from, "addrset list index value overflows");
  return std::make_unique<CTarnFWCmdGetAddrSetList>(port, FW_ADDRSET_ANY, kSetsPerMessage, first);
}

}  // namespace TarnFirewall
