// The 144-byte record of one address.
#ifndef TARNLAB_ADDRESS_RECORD_H
#define TARNLAB_ADDRESS_RECORD_H

#include <string>

#include "LabBytes.h"

namespace TarnLab {

namespace AddressRecord {
inline constexpr std::size_t size = 144;
inline constexpr std::size_t type = 0, flags = 2, reserved = 3, value = 4;
inline constexpr std::size_t nameSize = 38;  // of an address set
inline constexpr unsigned any = 0, ipv4 = 1, ipv6 = 2, ipv4Range = 3, ipv6Range = 4, ipv4Cidr = 5,
                          ipv6Cidr = 6, ether = 7, etherRange = 8, etherMask = 9, setName = 11,
                          intAttribute = 12, unsignedAttribute = 13, stringAttribute = 14,
                          sidAttribute = 15;

inline bool isIp(unsigned code) { return code >= ipv4 && code <= ipv6Cidr; }
inline bool isMac(unsigned code) { return code >= ether && code <= etherMask; }

/// What a kernel would find wrong with the record; empty when nothing. Whatever lies outside the
/// fields of its type has to be zero, so that no memory of the sender comes along.
std::string fault(ConstBytes record);

/// The address as the configuration language writes it.
std::string text(ConstBytes record);

/// An address of 4 or 16 bytes.
std::string ipText(ConstBytes address);
}  // namespace AddressRecord

}  // namespace TarnLab

#endif
