#include "TarnFWAddressIPFamily.h"

#include <arpa/inet.h>

#include <cerrno>
#include <cstring>

#include "TarnFWAddressConvert.h"
#include "TarnFWUtil.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

namespace {

std::array<net32, 4> words(const in6_addr& address) {
  return loadRecord<std::array<net32, 4>>(&address);
}

/// An octet in decimal, without a NUL.
struct OctetText {
  char digits[3];
  std::uint8_t length;
};

constexpr OctetText octetText(unsigned int octet) {
  OctetText text{};
  for (unsigned int unit = 100; unit != 0; unit /= 10) {
    if (octet >= unit || unit == 1)
      text.digits[text.length++] = static_cast<char>('0' + octet / unit % 10);
  }
  return text;
}

constexpr auto kOctets = [] {
  std::array<OctetText, 256> texts{};
  for (unsigned int octet = 0; octet < texts.size(); ++octet) texts[octet] = octetText(octet);
  return texts;
}();

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// A prefix length by the parser of the family. One or two digits, which is what most are, are read
/// here: it would read them alike.
bool readPrefix(std::string_view text, long most, bool (*parse)(const char*, long*),
                unsigned char* prefix) {
  long number = 0;
  const bool plain =
      !text.empty() && text.size() <= 2 && isDigit(text.front()) && isDigit(text.back());
  if (plain) {
    for (const char digit : text) number = 10 * number + (digit - '0');
    errno = 0;  // as the parser leaves it, since the scanner looks at it
    if (number > most) return false;
  } else if (!parse(std::string(text).c_str(), &number)) {
    return false;
  }
  *prefix = static_cast<unsigned char>(number);
  return true;
}

}  // namespace

char* IPv4Family::writeAddress(char* to, const Address& address) {
  // By hand, since inet_ntop costs more than all the rest of a rule's text.
  for (const std::uint8_t byte : loadRecord<std::array<std::uint8_t, 4>>(&address)) {
    const OctetText& octet = kOctets[byte];
    std::memcpy(to, &octet, sizeof octet);  // whole, so that it is one store
    to += octet.length;
    *to++ = '.';
  }
  return to - 1;
}

bool IPv4Family::mask2prefix(const Address& mask, unsigned char* prefix) {
  return ipv4mask2cidr(mask, prefix);
}

bool IPv4Family::str2prefix(std::string_view text, unsigned char* prefix) {
  return readPrefix(text, maxPrefix, Str2CIDR4, prefix);
}

bool IPv4Family::isTextRange(const Address& first, const Address& last) {
  return isRange(first, last);
}

bool IPv4Family::isRange(const Address& first, const Address& last) {
  return ntohl(first.s_addr) < ntohl(last.s_addr);
}

char* IPv6Family::writeAddress(char* to, const Address& address) {
  if (inet_ntop(family, &address, to, maxText) == nullptr) {
    throw CInvalidAddressException("invalid ip6 address");
  }
  return to + std::strlen(to);
}

bool IPv6Family::mask2prefix(const Address& mask, unsigned char* prefix) {
  return ipv6mask2cidr(mask, prefix);
}

bool IPv6Family::str2prefix(std::string_view text, unsigned char* prefix) {
  return readPrefix(text, maxPrefix, Str2CIDR6, prefix);
}

bool IPv6Family::isTextRange(const Address& first, const Address& last) {
  return std::memcmp(&first, &last, sizeof first) <= 0;
}

bool IPv6Family::isRange(const Address& first, const Address& last) {
  const auto low = words(first);
  const auto high = words(last);
  for (std::size_t i = low.size(); i-- > 0;) {
    if (low[i] > high[i]) return false;
  }
  return true;
}

std::uint32_t unswapped(const in_addr& address) { return address.s_addr; }

std::array<std::uint32_t, 4> unswapped(const in6_addr& address) {
  std::array<std::uint32_t, 4> words;
  std::memcpy(words.data(), &address, sizeof words);
  return words;
}

bool anyWordLess(const in6_addr& left, const in6_addr& right) {
  const auto l = unswapped(left);
  const auto r = unswapped(right);
  for (std::size_t i = 0; i < l.size(); ++i) {
    if (l[i] < r[i]) return true;
  }
  return false;
}

}  // namespace TarnFirewall
