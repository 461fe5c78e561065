#pragma once

/// Actions of addresses, address lists and address sets.

#include <netinet/in.h>

#include "TarnFWAddress.h"
#include "TarnFWAddressList.h"
#include "TarnFWAttrStaticMaps.h"
#include "TarnFWCmd.h"
#include "TarnFWParserActions.h"

namespace TarnFirewall {

/// Key of the attribute set that is being read. Process-wide, so that two parses at once would mix
/// their sets: the language supports one parse at a time.
extern FWAttrIDType attribute_type;

/// Addresses from tokens. Each gives its text back to the arena.
std::unique_ptr<CTarnFWAddress> ipv4Address(const FWParse& parse, const FWParserText& text);
std::unique_ptr<CTarnFWAddress> ipv6Address(const FWParse& parse, const FWParserText& text);
std::unique_ptr<CTarnFWAddress> ipv4Block(const FWParse& parse, const FWParserText& text);
std::unique_ptr<CTarnFWAddress> ipv6Block(const FWParse& parse, const FWParserText& text);
std::unique_ptr<CTarnFWAddress> ipv4Range(const FWParse& parse, const FWIPv4Range& range);
std::unique_ptr<CTarnFWAddress> ipv6Range(const FWParse& parse, const FWIPv6Range& range);
std::unique_ptr<CTarnFWAddress> etherAddress(const FWParse& parse, const fw_ether_& ether);
std::unique_ptr<CTarnFWAddress> etherRange(const FWParse& parse, const FWEtherPair& pair);
std::unique_ptr<CTarnFWAddress> etherMask(const FWParse& parse, const FWEtherPair& pair);
std::unique_ptr<CTarnFWAddress> addressSet(const FWParse& parse, const FWParserText& name);

/// The address with its negation mark set.
CTarnFWAddress* negated(CTarnFWAddress* address);

/// The address of an "A:P" token, or all zero: what is wrong with it shows when it is used.
FWIPPort ipPort(const FWParserText& text);

/// The port of an "any:P" token, with the address all ones. Throws `CParseFailure` with status 38.
FWIPPort anyPort(const FWParserText& text);

/// Adds an address at the end of the list, a range as the blocks that cover it. False, with the
/// list as the blocks so far left it, for a range that can't be covered.
bool AddAddress(CTarnFWAddressList* list, std::unique_ptr<CTarnFWAddress>& address);

/// `AddAddress`, or a `CParseFailure` that names the range. A list that is null is begun.
std::unique_ptr<CTarnFWAddressList> appended(const FWParse& parse,
                                             std::unique_ptr<CTarnFWAddressList> list,
                                             std::unique_ptr<CTarnFWAddress> address);

/// The address at the end of the list as it is, a range too. A list that is null is begun.
std::unique_ptr<CTarnFWAddressList> appendedPlain(const FWParse& parse,
                                                  std::unique_ptr<CTarnFWAddressList> list,
                                                  std::unique_ptr<CTarnFWAddress> address);

std::unique_ptr<CTarnFWAddressList> emptyList(const FWParse& parse);

/// An attribute address of this kind of value. Only the kinds 0, 1, 2 and 5 have one: any other
/// ends the parse silently.
std::unique_ptr<CTarnFWAddress> attributeOfKind(FWAttrIDType key, FWAttrIDValType kind,
                                                const FWParserText& text);

/// An attribute address with the key that is being read; an unknown key ends the parse silently.
std::unique_ptr<CTarnFWAddress> attribute(const FWParserText& text);

/// The name in its field. Throws `CParseFailure` with status 32 for more than 37 characters.
FWAddrSetID_t addrSetName(const FWParserText& text);

/// The commands of address sets that take more than a name.
std::unique_ptr<CTarnFWCmd> createAddrSet(const dvs_port_* port, const FWParserText& name,
                                          FWAddrSetType_t type,
                                          std::unique_ptr<CTarnFWAddressList> list);
std::unique_ptr<CTarnFWCmd> getAddresses(const dvs_port_* port, const FWParserText& name,
                                         std::int64_t from);
std::unique_ptr<CTarnFWCmd> getAddrSetStats(const dvs_port_* port);
std::unique_ptr<CTarnFWCmd> getAddrSetList(const dvs_port_* port, std::int64_t from);

/// Callbacks of `ipv4range2cidr` and `ipv6range2cidr`: add a block, or the single address that a
/// block of full prefix length is, to the `CTarnFWAddressList` at `list`. Always true: an address
/// that the list refuses is left out, with the list's warning, and the walk goes on.
bool IPv4Range2CIDR_Callback(void* list, in_addr address, unsigned int prefix);
bool IPv6Range2CIDR_Callback(void* list, in6_addr address, unsigned int prefix);

/// Gives the range's blocks to the list, as `AddAddress` does. False for an address that is no
/// range, and for a range that can't be covered.
bool addBlocksOfRange(CTarnFWAddressList& list, const CTarnFWAddress& range);

}  // namespace TarnFirewall
