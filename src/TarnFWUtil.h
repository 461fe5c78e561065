#pragma once

/// Text forms of identifiers, and the parsers of values that come from options and from the
/// configuration language. Their limits are the limits that users meet.
///
/// A parser returns true for success. A null pointer in any argument is a failure. None prints. A
/// failure may leave outputs partly written: callers refuse the whole input.
///
/// An identifier is 16 bytes in the order in which they are written; no group is swapped.

#include <netinet/in.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "TarnFWTypes.h"

// --- Identifiers

/// Bytes of an identifier.
inline constexpr std::size_t kUuidSize = 16;

/// gfy form, as the host's VM configuration files have it:
/// "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f". False when the text is longer than `size`; a
/// text of exactly `size` characters is cut by one and still a success, which callers rely on.
bool uuid2gfystr(const std::uint8_t* uuid, char* buffer, std::size_t size);

/// Normal form, "00010203-0405-0607-0809-0a0b0c0d0e0f". `size` as above.
bool uuid2normalstr(const std::uint8_t* uuid, char* buffer, std::size_t size);

/// vnic form: the normal form, a dot and the index in three digits. `size` as above.
bool uuid2vnicstr(const std::uint8_t* uuid, int index, char* buffer, std::size_t size);

/// All 16 fields must be there; what follows the last is not looked at.
bool gfystr2uuid(std::uint8_t* uuid, const char* text);
bool normalstr2uuid(std::uint8_t* uuid, const char* text);

/// The vnic form, the gfy form with ":" and the index, or the gfy form with "." and the index.
bool vnicstr2uuid(std::uint8_t* uuid, int* index, const char* text);

bool gfystr2vnicstr(const char* gfyText, int index, char* buffer, std::size_t size);

/// Network order of 64-bit numbers.
constexpr std::uint64_t ntohll(std::uint64_t value) {
  return TarnFirewall::wire::networkToHost(value);
}
constexpr std::uint64_t htonll(std::uint64_t value) { return ntohll(value); }

// --- Numbers

/// Stores the value in any case. False for an overflow, an empty number or a trailing character.
bool Str2Long(const char* text, int base, long* value);
bool Str2ULong(const char* text, int base, unsigned long* value);

/// Stores on success only, and then the low 32 bits of a long.
bool Str2Uint(const char* text, int base, unsigned int* value);

/// Decimal, 0 to 65535.
bool Str2Port(const char* text, long* value);

/// Prefix lengths, decimal, 0 to 32 and 0 to 128.
bool Str2CIDR4(const char* text, long* value);
bool Str2CIDR6(const char* text, long* value);

/// `strncpy` that always ends the text: the last byte of the destination is cleared. True, unless
/// there is no byte to clear.
bool Strncpy(char* destination, const char* source, std::size_t size);

// --- Ports

/// Two ports with "-" or else ":" between them, the low one not above the high one.
bool Str2PortOrRange(const char* text, long* low, long* high);

/// The same with low strictly below high.
bool Str2PortRange(const char* text, long* low, long* high);

/// A port, which sets `low` only, or a range of at least two. Network order; both cleared first.
bool ParsePortString(const char* text, std::uint16_t* low, std::uint16_t* high);

// --- Lists and names

/// A number below 64 or 255, "all" for 255, or a name of the list, ignoring case. A number need not
/// be below `count`.
bool ParseCompString(const char* text, unsigned int* component, const char* const* names,
                     unsigned int count);

/// Up to `maximum` ethertypes in network order; further ones are ignored. Separated by ",", blank
/// or tab.
bool ParseEtherTypeString(const char* text, std::uint16_t* types, unsigned int maximum,
                          unsigned int* count);

/// Up to `maximum` IP protocols, by the host's names or by number.
bool ParseProtocolString(const char* text, std::uint8_t* protocols, unsigned int maximum,
                         unsigned int* count);

/// The kernel's timeouts, by number.
inline constexpr unsigned int kTimeouts = 22;
extern const char* const g_tarnfw_timeout_name[kTimeouts];

/// What `TimeoutName2ID` gives for an unknown name. One more than the count: callers compare so.
inline constexpr unsigned int kTimeoutNotFound = 23;
unsigned int TimeoutName2ID(const char* name);

/// Exactly `count` numbers, separated by blank, tab, "," or ":". Logs what is wrong.
bool ParseTimeoutList(const char* text, std::uint32_t* values, unsigned int count);

// --- Addresses

/// Six bytes each. Without a mask in the text all of the address counts; the address is masked.
bool ParseMACString(const char* text, std::uint8_t* address, std::uint8_t* mask);

/// An identifier in vnic form, which sets `index` and `isVnic`, else in gfy or normal form.
bool ParseUUIDString(const char* text, std::uint8_t* uuid, int* index, int* isVnic);

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

/// "id:index" of a selector; the quotation marks are part of the output. `size` as with
/// `uuid2gfystr`.
bool fw_dvsport2str(const dvs_port_* port, char* buffer, std::size_t size);

/// vnic form of a selector whose name is a gfy form; throws `CUnsupportedException` when it is not.
bool fw_vnic2str(const dvs_port_* port, char* buffer, std::size_t size);

/// "address:port" in IPv4; the port comes out in host order.
bool fw_str2ipport(const char* text, in_addr* address, std::uint16_t* port);

/// The kernel's name of a container, in at most 38 bytes: a name of up to 37 characters as it is, a
/// longer one must be a vnic form, with "ip-" or "mac-" in front of it or not, and an index below
/// 10. The buffer stays as it was when it is not.
bool normalizeContainerName(const std::string& name, char* buffer);

}  // namespace TarnFirewall
