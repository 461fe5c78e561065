// Addresses as text, beside those of the C library.

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "AddressText.h"

namespace {

using IPv4 = std::uint8_t[4];
using IPv6 = std::uint8_t[16];

template <typename Address>
std::string textOf(const Address& address) {
  std::string text = "before ";
  appendAddress(text, address);
  EXPECT_EQ(text.substr(0, 7), "before ");
  return text.substr(7);
}

template <typename Address>
std::string libraryTextOf(const Address& address) {
  char text[INET6_ADDRSTRLEN];
  return inet_ntop(sizeof address == 4 ? AF_INET : AF_INET6, address, text, sizeof text);
}

}  // namespace

TEST(AddressText, IPv4HasFourDecimals) {
  const IPv4 addresses[] = {{0, 0, 0, 0}, {10, 200, 3, 99}, {255, 255, 255, 255}};
  for (const IPv4& address : addresses) EXPECT_EQ(textOf(address), libraryTextOf(address));
}

TEST(AddressText, IPv6IsThatOfTheLibraryForEveryPatternOfZeros) {
  for (const unsigned int value : {0x1u, 0xfu, 0x10u, 0xabu, 0x100u, 0xabcu, 0x1000u, 0xffffu}) {
    for (unsigned int pattern = 0; pattern < 256; ++pattern) {
      IPv6 address{};
      for (std::size_t word = 0; word < 8; ++word) {
        if ((pattern >> word & 1) == 0) continue;
        address[2 * word] = static_cast<std::uint8_t>(value >> 8);
        address[2 * word + 1] = static_cast<std::uint8_t>(value);
      }
      EXPECT_EQ(textOf(address), libraryTextOf(address)) << pattern;
    }
  }
}

TEST(AddressText, IPv6IsThatOfTheLibraryForAnyValue) {
  std::mt19937 random(20231114);
  for (int i = 0; i < 20000; ++i) {
    IPv6 address{};
    for (std::size_t word = 0; word < 8; ++word) {
      if (random() % 2 == 0) continue;
      const auto value = static_cast<std::uint16_t>(random() >> random() % 16);
      address[2 * word] = static_cast<std::uint8_t>(value >> 8);
      address[2 * word + 1] = static_cast<std::uint8_t>(value);
    }
    ASSERT_EQ(textOf(address), libraryTextOf(address));
  }
}

TEST(AddressText, AMacAddressHasTwoDigitsForEachByte) {
  const std::uint8_t mac[6] = {0, 1, 0x0a, 0x7f, 0x80, 0xff};
  std::string text;
  appendMac(text, mac);
  EXPECT_EQ(text, "00:01:0a:7f:80:ff");
}
