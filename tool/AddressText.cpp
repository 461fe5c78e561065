#include "AddressText.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kWords = 8;

void appendOctets(std::string& text, const std::uint8_t* octets) {
  for (std::size_t i = 0; i < 4; ++i) {
    if (i != 0) text += '.';
    appendDecimal(text, octets[i]);
  }
}

/// Zero words that "::" stands for.
struct Run {
  std::size_t begin = kWords;
  std::size_t length = 0;
};

/// The first of the longest runs of two zero words or more.
Run longestRun(const std::array<std::uint16_t, kWords>& words) {
  Run longest;
  for (std::size_t i = 0; i < kWords;) {
    const auto end = std::find_if(words.begin() + static_cast<std::ptrdiff_t>(i), words.end(),
                                  [](std::uint16_t word) { return word != 0; });
    const auto length = static_cast<std::size_t>(end - words.begin()) - i;
    if (length >= 2 && length > longest.length) longest = {i, length};
    i += length + 1;
  }
  return longest;
}

/// True for an address that ends with an IPv4 address: nothing but zeros, or ffff, are before it.
bool embedsIPv4(const std::array<std::uint16_t, kWords>& words, const Run& zeros) {
  return zeros.begin == 0 && (zeros.length == 6 || (zeros.length == 5 && words[5] == 0xffff));
}

}  // namespace

void appendAddress(std::string& text, const std::uint8_t (&ipv4)[4]) { appendOctets(text, ipv4); }

void appendAddress(std::string& text, const std::uint8_t (&ipv6)[16]) {
  std::array<std::uint16_t, kWords> words;
  for (std::size_t i = 0; i < kWords; ++i)
    words[i] = static_cast<std::uint16_t>(ipv6[2 * i] << 8 | ipv6[2 * i + 1]);
  const Run zeros = longestRun(words);
  const bool mixed = embedsIPv4(words, zeros);
  const std::size_t end = mixed ? 6 : kWords;
  for (std::size_t i = 0; i < end;) {
    if (i == zeros.begin) {
      text += "::";
      i += zeros.length;
      continue;
    }
    if (i != 0 && i != zeros.begin + zeros.length) text += ':';
    appendHex(text, words[i++]);
  }
  if (!mixed) return;
  if (zeros.length == 5) text += ':';
  appendOctets(text, ipv6 + 12);
}

void appendMac(std::string& text, const std::uint8_t (&mac)[6]) {
  for (std::size_t i = 0; i < sizeof mac; ++i) {
    if (i != 0) text += ':';
    appendHex(text, mac[i], 2);
  }
}
