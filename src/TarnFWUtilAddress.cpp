#include "TarnFWUtilAddress.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "TarnFWAddressConvert.h"
#include "TarnFWUtilNumber.h"
#include "TarnFWUtilText.h"
#include "TarnFWWire.h"

namespace {

using namespace TarnFirewall;

/// White space as `isspace` has it, without a look at the locale.
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::uint64_t host64At(const in6_addr& address, std::size_t offset) {
  return loadRecord<net64>(address.s6_addr + offset);
}

/// Six pairs of digits with this separator between them; what follows them, null for anything else.
const char* readMac(const char* text, char separator, std::uint8_t* mac) {
  for (std::size_t i = 0; i < 6; ++i) {
    if (i != 0 && *text++ != separator) return nullptr;
    const int value = hexPair(text);
    if (value < 0) return nullptr;
    mac[i] = static_cast<std::uint8_t>(value);
    text += 2;
  }
  return text;
}

/// An address as it is printed, with or without a mask. A scan takes more (fewer and more digits,
/// further blanks), but reads such a text alike, and takes ten times as long.
bool readExactMac(const char* text, std::uint8_t* address, std::uint8_t* mask) {
  const char separator = text[0] != '\0' && text[1] != '\0' ? text[2] : '\0';
  if (separator != ':' && separator != '-') return false;
  const char* const rest = readMac(text, separator, address);
  if (rest == nullptr) return false;
  if (*rest == '\0') {
    std::memset(mask, 0xff, 6);
    return true;
  }
  const char* const end = *rest == '/' ? readMac(rest + 1, separator, mask) : nullptr;
  return end != nullptr && *end == '\0';
}

bool scanMac(const char* text, std::uint8_t* a, std::uint8_t* m) {
  if (std::strchr(text, '/') != nullptr) {
    return std::sscanf(text, "%hhx:%hhx:%hhx:%hhx:%hhx:%hhx/%hhx:%hhx:%hhx:%hhx:%hhx:%hhx", &a[0],
                       &a[1], &a[2], &a[3], &a[4], &a[5], &m[0], &m[1], &m[2], &m[3], &m[4],
                       &m[5]) == 12 ||
           std::sscanf(text, "%hhx-%hhx-%hhx-%hhx-%hhx-%hhx/%hhx-%hhx-%hhx-%hhx-%hhx-%hhx", &a[0],
                       &a[1], &a[2], &a[3], &a[4], &a[5], &m[0], &m[1], &m[2], &m[3], &m[4],
                       &m[5]) == 12;
  }
  std::memset(m, 0xff, 6);
  return std::sscanf(text, "%hhx:%hhx:%hhx:%hhx:%hhx:%hhx", &a[0], &a[1], &a[2], &a[3], &a[4],
                     &a[5]) == 6 ||
         std::sscanf(text, "%hhx-%hhx-%hhx-%hhx-%hhx-%hhx", &a[0], &a[1], &a[2], &a[3], &a[4],
                     &a[5]) == 6;
}

/// What the two families do differently in `parseIP`.
struct IPv4 {
  using Address = in_addr;
  static constexpr int family = AF_INET;

  static bool str2Mask(const char* text, Address* mask) {
    long prefix = 0;
    return Str2CIDR4(text, &prefix) && cidr2ipv4mask(static_cast<unsigned int>(prefix), mask);
  }
  static bool rises(const Address& first, const Address& last) {
    return ntohl(first.s_addr) < ntohl(last.s_addr);
  }
};

struct IPv6 {
  using Address = in6_addr;
  static constexpr int family = AF_INET6;

  static bool str2Mask(const char* text, Address* mask) {
    long prefix = 0;
    return Str2CIDR6(text, &prefix) && cidr2ipv6mask(static_cast<unsigned int>(prefix), mask);
  }
  static bool rises(const Address& first, const Address& last) {
    return std::memcmp(&first, &last, 8) == 0 && host64At(first, 8) < host64At(last, 8);
  }
};

template <typename Family>
bool parseIP(const char* text, typename Family::Address* address,
             typename Family::Address* maskOrEnd, int* isRange) {
  if (text == nullptr || address == nullptr || maskOrEnd == nullptr || isRange == nullptr) {
    return false;
  }
  const char* separator = std::strchr(text, '-');
  *isRange = separator != nullptr ? 1 : 0;
  if (separator == nullptr) separator = std::strchr(text, '/');

  const std::string_view left =
      separator != nullptr ? std::string_view(text, separator) : std::string_view(text);
  if (inetPton(Family::family, left, address) != 1) return false;

  if (separator == nullptr) {
    std::memset(maskOrEnd, 0xff, sizeof *maskOrEnd);
    return true;
  }
  const char* const right = separator + 1;
  const bool isAddress = tarn_inet_pton(Family::family, right, maskOrEnd) == 1;
  if (*isRange != 0) return isAddress && Family::rises(*address, *maskOrEnd);
  if (!isAddress && !Family::str2Mask(right, maskOrEnd)) return false;

  auto* const bytes = reinterpret_cast<std::uint8_t*>(address);
  const auto* const mask = reinterpret_cast<const std::uint8_t*>(maskOrEnd);
  for (std::size_t i = 0; i < sizeof *address; ++i) bytes[i] &= mask[i];
  return true;
}

/// Value of a decimal digit, more than 9 for another character.
constexpr unsigned int digitOf(char c) { return static_cast<unsigned char>(c) - unsigned{'0'}; }

/// A number of a dotted quad, with `at` after it; more than 255 when there is none. A fourth digit
/// stays, and is no end of a number.
unsigned int readOctet(const char*& at, const char* end) {
  constexpr unsigned int kNone = 256;
  if (at == end || digitOf(*at) > 9) return kNone;
  unsigned int value = digitOf(*at++);
  if (at == end || digitOf(*at) > 9) return value;
  if (value == 0) return kNone;
  value = value * 10 + digitOf(*at++);
  if (at == end || digitOf(*at) > 9) return value;
  return value * 10 + digitOf(*at++);
}

/// Reads a dotted quad up to white space or the end: 1 when it is one, else 0 with nothing written.
/// It takes what the C library's `inet_pton` takes, which a test compares; addresses of large
/// configurations are read here.
int readQuad(const char* at, const char* end, std::uint8_t* address) {
  std::uint8_t octets[4];
  for (std::uint8_t& octet : octets) {
    if (&octet != octets && (at == end || *at++ != '.')) return 0;
    const unsigned int value = readOctet(at, end);
    if (value > 255) return 0;
    octet = static_cast<std::uint8_t>(value);
  }
  if (at != end && !isSpace(*at)) return 0;
  std::memcpy(address, octets, sizeof octets);
  return 1;
}

/// Reads up to four hexadecimal digits, with `at` after them. The result is how many there are.
std::ptrdiff_t readGroup(const char*& at, const char* end, net16& group) {
  const char* const begin = at;
  unsigned int value = 0;
  for (; at != end && at - begin < 4; ++at) {
    const int digit = kHexDigits[static_cast<unsigned char>(*at)];
    if (digit < 0) break;
    value = value << 4 | static_cast<unsigned int>(digit);
  }
  group = static_cast<std::uint16_t>(value);
  return at - begin;
}

/// The groups of an address in IPv6, and where "::" stands among them.
struct Groups {
  static constexpr std::size_t kAll = 8;
  static constexpr std::size_t kNone = kAll + 1;

  net16 group[kAll] = {};
  std::size_t count = 0;
  std::size_t gap = kNone;

  bool readQuadAt(const char* at, const char* end) {
    if (count > kAll - 2) return false;
    auto* const bytes = reinterpret_cast<std::uint8_t*>(group + count);
    count += 2;
    return readQuad(at, end, bytes) == 1;
  }

  /// Moves what follows "::" to the end. False when the groups are too few or leave no gap.
  bool fillGap() {
    if (gap == kNone) return count == kAll;
    if (count == kAll) return false;
    std::copy_backward(group + gap, group + count, group + kAll);
    std::fill(group + gap, group + gap + (kAll - count), net16());
    return true;
  }
};

/// Reads the whole text as an address in IPv6: 1 when it is one, else 0 with nothing written. As
/// with a dotted quad, it takes what `inet_pton` takes.
int readIPv6(const char* at, const char* end, std::uint8_t* address) {
  Groups groups;
  if (at != end && *at == ':' && (++at == end || *at != ':')) return 0;
  while (at != end) {
    if (*at == ':') {
      if (groups.gap != Groups::kNone) return 0;
      groups.gap = groups.count;
      ++at;
      continue;
    }
    const char* const begin = at;
    net16 group;
    const std::ptrdiff_t digits = readGroup(at, end, group);
    if (at != end && *at == '.') {
      if (!groups.readQuadAt(begin, end)) return 0;
      break;
    }
    if (digits == 0 || groups.count == Groups::kAll) return 0;
    groups.group[groups.count++] = group;
    if (at == end) break;
    if (*at != ':' || ++at == end) return 0;
  }
  if (!groups.fillGap()) return 0;
  std::memcpy(address, groups.group, sizeof groups.group);
  return 1;
}

}  // namespace

bool ParseMACString(const char* text, std::uint8_t* address, std::uint8_t* mask) {
  if (text == nullptr || address == nullptr || mask == nullptr) return false;
  if (!readExactMac(text, address, mask) && !scanMac(text, address, mask)) return false;
  for (std::size_t i = 0; i < 6; ++i) address[i] &= mask[i];
  return true;
}

int tarn_inet_pton(int family, const char* text, void* buffer) {
  if (text == nullptr) return 0;
  return inetPton(family, text, buffer);
}

namespace TarnFirewall {

int inetPton(int family, std::string_view text, void* buffer) {
  if (buffer == nullptr) return 0;
  const char* begin = text.data();
  const char* const end = begin + text.size();
  while (begin != end && isSpace(*begin)) ++begin;
  if (family == AF_INET) return readQuad(begin, end, static_cast<std::uint8_t*>(buffer));
  const char* wordEnd = begin;
  while (wordEnd != end && !isSpace(*wordEnd)) ++wordEnd;
  if (family == AF_INET6) return readIPv6(begin, wordEnd, static_cast<std::uint8_t*>(buffer));

  char word[INET6_ADDRSTRLEN];
  const auto length = static_cast<std::size_t>(wordEnd - begin);
  if (length == 0 || length >= sizeof word) return 0;
  std::memcpy(word, begin, length);
  word[length] = '\0';
  return inet_pton(family, word, buffer);
}

}  // namespace TarnFirewall

bool ParseIPv4String(const char* text, in_addr* address, in_addr* maskOrEnd, int* isRange) {
  return parseIP<IPv4>(text, address, maskOrEnd, isRange);
}

bool ParseIPv6String(const char* text, in6_addr* address, in6_addr* maskOrEnd, int* isRange) {
  return parseIP<IPv6>(text, address, maskOrEnd, isRange);
}

bool ParseIPString(const char* text, in_addr* ipv4, in6_addr* ipv6, int* isRange, int* isV6) {
  if (text == nullptr || ipv4 == nullptr || ipv6 == nullptr || isV6 == nullptr) return false;
  *isV6 = std::strchr(text, ':') != nullptr ? 1 : 0;
  return *isV6 != 0 ? ParseIPv6String(text, &ipv6[0], &ipv6[1], isRange)
                    : ParseIPv4String(text, &ipv4[0], &ipv4[1], isRange);
}

namespace TarnFirewall {

bool fw_str2ipport(const char* text, in_addr* address, std::uint16_t* port) {
  if (text == nullptr || address == nullptr || port == nullptr) return false;
  const char* const colon = std::strchr(text, ':');
  if (colon == nullptr) return false;
  long number = 0;
  if (inetPton(AF_INET, {text, colon}, address) != 1 || !Str2Port(colon + 1, &number)) return false;
  *port = static_cast<std::uint16_t>(number);
  return true;
}

}  // namespace TarnFirewall
