#pragma once

/// Parsers of MAC and IP addresses.

#include <netinet/in.h>

#include <cstdint>
#include <string_view>

/// Six bytes each. Without a mask in the text all of the address counts; the address is masked.
bool ParseMACString(const char* text, std::uint8_t* address, std::uint8_t* mask);

/// `inet_pton` of the first word of the text; 0 for an empty text and for a word of 46 characters
/// or more.
int tarn_inet_pton(int family, const char* text, void* buffer);

/// An address, a range that rises, or an address with a prefix length or a mask. The address comes
/// out masked; `maskOrEnd` is the mask, or the end of the range. Network order.
bool ParseIPv4String(const char* text, in_addr* address, in_addr* maskOrEnd, int* isRange);

/// The same. Both ends of a range must lie in one /64.
bool ParseIPv6String(const char* text, in6_addr* address, in6_addr* maskOrEnd, int* isRange);

/// A text with ":" fills the two values of `ipv6`, every other those of `ipv4`.
bool ParseIPString(const char* text, in_addr* ipv4, in6_addr* ipv6, int* isRange, int* isV6);

namespace TarnFirewall {

/// `tarn_inet_pton` of a part of a text.
int inetPton(int family, std::string_view text, void* buffer);

/// "address:port" in IPv4; the port comes out in host order.
bool fw_str2ipport(const char* text, in_addr* address, std::uint16_t* port);

}  // namespace TarnFirewall
