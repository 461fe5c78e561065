#pragma once

/// What the IPv4 and IPv6 addresses do differently: the values and rules that the classes of
/// `TarnFWAddressIP.h` are made with. All addresses are in network order.

#include <netinet/in.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "TarnFWAddressConvert.h"
#include "TarnFWException.h"

namespace TarnFirewall {

struct IPv4Family {
  using Address = in_addr;
  using RangeException = CInvalidIPv4RangeException;

  static constexpr int family = AF_INET;
  static constexpr unsigned char maxPrefix = 32;
  static constexpr char maskMark = '.';  // after the slash of a text, the mark of a mask
  static constexpr const char* invalidPrefix = "invalid ipv4 cidr";

  static constexpr std::size_t maxText = INET_ADDRSTRLEN;

  /// Writes the text of an address as `inet_ntop` has it. The result is the place after it; all
  /// `maxText` bytes may be written.
  static char* writeAddress(char* to, const Address& address);

  static bool prefix2mask(unsigned int prefix, Address* mask) {
    return cidr2ipv4mask(prefix, mask);
  }
  static bool mask2prefix(const Address& mask, unsigned char* prefix);
  static bool str2prefix(std::string_view text, unsigned char* prefix);

  /// The rule for a range in a text: first strictly below last.
  static bool isTextRange(const Address& first, const Address& last);

  /// The rule for a range from a record or from two values: the same.
  static bool isRange(const Address& first, const Address& last);
};

struct IPv6Family {
  using Address = in6_addr;
  using RangeException = CInvalidIPv6RangeException;

  static constexpr int family = AF_INET6;
  static constexpr unsigned char maxPrefix = 128;
  static constexpr char maskMark = ':';
  static constexpr const char* invalidPrefix = "invalid ipv6 cidr";

  static constexpr std::size_t maxText = INET6_ADDRSTRLEN;

  /// As of IPv4. Throws `CInvalidAddressException` when `inet_ntop` fails.
  static char* writeAddress(char* to, const Address& address);

  static bool prefix2mask(unsigned int prefix, Address* mask) {
    return cidr2ipv6mask(prefix, mask);
  }
  static bool mask2prefix(const Address& mask, unsigned char* prefix);
  static bool str2prefix(std::string_view text, unsigned char* prefix);

  /// The rule for a range in a text: first not above last, byte by byte, so that a range of one
  /// address is one.
  static bool isTextRange(const Address& first, const Address& last);

  /// The rule for a range from a record or from two values: no 32-bit word of first above the same
  /// word of last, whatever the higher words say. The kernel has this rule; stored
  /// configurations rely on the one for texts.
  static bool isRange(const Address& first, const Address& last);
};

/// The number that an address's bytes make as they stand in memory, without a swap: what the order
/// of IPv4 addresses goes by. On a little-endian host the last octet weighs most.
std::uint32_t unswapped(const in_addr& address);

/// The four words of an address as they stand in memory, without a swap.
std::array<std::uint32_t, 4> unswapped(const in6_addr& address);

/// True when any word of left is below the same word of right; a greater word does not end the
/// search. Not a strict weak order. The kernel sorts sets this way, so that a set sorted otherwise
/// would be rejected.
bool anyWordLess(const in6_addr& left, const in6_addr& right);

}  // namespace TarnFirewall
