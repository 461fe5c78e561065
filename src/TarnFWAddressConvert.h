#pragma once

/// Conversions between prefix lengths, masks and address ranges. Addresses and masks are in network
/// byte order. Nothing here throws or allocates.

#include <netinet/in.h>

#include "TarnFWTypes.h"

/// Stores the mask of `prefix` leading ones. False, with `mask` unchanged, when `mask` is null or
/// the prefix above 32.
inline bool cidr2ipv4mask(unsigned int prefix, in_addr* mask) {
  if (mask == nullptr || prefix > 32) return false;
  mask->s_addr = htonl(static_cast<in_addr_t>(0xffffffff00000000u >> prefix));
  return true;
}

/// The same for IPv6, with prefixes up to 128.
bool cidr2ipv6mask(unsigned int prefix, in6_addr* mask);

/// Stores the number of leading ones. False when a set bit follows the first zero: the count is
/// stored then too.
bool ipv4mask2cidr(in_addr mask, unsigned char* prefix);
bool ipv6mask2cidr(const in6_addr& mask, unsigned char* prefix);

namespace TarnFirewall {

/// Receives one block of a range: its first address and its prefix length. False ends the walk.
using IPv4BlockCallback_t = bool (*)(void* context, in_addr block, unsigned int prefix);
using IPv6BlockCallback_t = bool (*)(void* context, in6_addr block, unsigned int prefix);

/// Covers the range by the fewest blocks, in ascending order. True with no call when `first` is
/// above `last`; false as soon as the callback says so. A null callback only walks.
bool ipv4range2cidr(in_addr first, in_addr last, void* context, IPv4BlockCallback_t callback);

/// The same in the low 64 bits. False with no call when the two addresses differ in their high 64
/// bits, however small the range is.
bool ipv6range2cidr(const in6_addr& first, const in6_addr& last, void* context,
                    IPv6BlockCallback_t callback);

/// Kind of address set that holds addresses of this type: IP for the six IP types, MAC for a single
/// Ethernet address, 0 for every other type.
FWAddrSetType_t addr_type_to_addrset_type(unsigned int type);

}  // namespace TarnFirewall
