#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

using Octets = std::array<std::uint8_t, 6>;
using IPv6 = std::array<std::uint8_t, 16>;

IPv6 bytesOf(const in6_addr& address) {
  IPv6 bytes;
  std::memcpy(bytes.data(), &address, bytes.size());
  return bytes;
}

in6_addr ipv6(const char* text) {
  in6_addr address;
  EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  return address;
}

}  // namespace

TEST(TarnFWUtilAddresses, AMacAddressWithoutAMaskCountsWhole) {
  for (const char* text : {"00:11:22:aa:Bb:ff", "00-11-22-aa-Bb-ff", "0:11:22:aa:bb:ff and more"}) {
    Octets address{};
    Octets mask{};
    EXPECT_TRUE(ParseMACString(text, address.data(), mask.data())) << text;
    EXPECT_EQ(address, (Octets{0x00, 0x11, 0x22, 0xaa, 0xbb, 0xff})) << text;
    EXPECT_EQ(mask, (Octets{0xff, 0xff, 0xff, 0xff, 0xff, 0xff})) << text;
  }
}

TEST(TarnFWUtilAddresses, AMacAddressIsMasked) {
  for (const char* text :
       {"00:11:22:33:44:55/ff:ff:0f:00:00:00", "00-11-22-33-44-55/ff-ff-0f-00-00-00"}) {
    Octets address{};
    Octets mask{};
    EXPECT_TRUE(ParseMACString(text, address.data(), mask.data())) << text;
    EXPECT_EQ(address, (Octets{0x00, 0x11, 0x02, 0x00, 0x00, 0x00})) << text;
    EXPECT_EQ(mask, (Octets{0xff, 0xff, 0x0f, 0x00, 0x00, 0x00})) << text;
  }
}

TEST(TarnFWUtilAddresses, OnlyTheLowBitsOfALongOctetCount) {
  // The scan cuts a number to its byte, so that no octet is out of range here.
  Octets address{};
  Octets mask{};
  EXPECT_TRUE(ParseMACString("100:1ff:2:3:4:5", address.data(), mask.data()));
  EXPECT_EQ(address, (Octets{0x00, 0xff, 0x02, 0x03, 0x04, 0x05}));
}

TEST(TarnFWUtilAddresses, ReadsAMacAddressAsAScanDoes) {
  // Texts that are written as they are printed are read without a scan; each of these is one with a
  // character that is changed, left out or doubled.
#define SCANNED(form)                                                                             \
  (m.fill(0xff), std::sscanf(text.c_str(), form, &a[0], &a[1], &a[2], &a[3], &a[4], &a[5], &m[0], \
                             &m[1], &m[2], &m[3], &m[4], &m[5]))
  const auto scan = [](const std::string& text, Octets& a, Octets& m) {
    const int wanted = text.find('/') != std::string::npos ? 12 : 6;
    if (SCANNED("%hhx:%hhx:%hhx:%hhx:%hhx:%hhx/%hhx:%hhx:%hhx:%hhx:%hhx:%hhx") < wanted &&
        SCANNED("%hhx-%hhx-%hhx-%hhx-%hhx-%hhx/%hhx-%hhx-%hhx-%hhx-%hhx-%hhx") < wanted)
      return false;
    for (std::size_t i = 0; i < a.size(); ++i) a[i] &= m[i];
    return true;
  };
#undef SCANNED
  for (const std::string& good :
       {std::string("00:1a:2B:33:c4:55"), std::string("00-1a-2B-33-c4-55"),
        std::string("00:1a:2B:33:c4:55/ff:fF:0f:f0:00:81"),
        std::string("00-1a-2B-33-c4-55/ff-fF-0f-f0-00-81")}) {
    for (std::size_t place = 0; place <= good.size(); ++place) {
      for (const char* const with : {"", "0", "f", "g", "x", ":", "-", "/", " ", "+", "12"}) {
        for (const std::size_t taken : {std::size_t{0}, std::size_t{1}}) {
          std::string text = good;
          text.replace(place, std::min(taken, text.size() - place), with);
          Octets address{}, mask{}, scanned{}, scannedMask{};
          const bool right = scan(text, scanned, scannedMask);
          ASSERT_EQ(ParseMACString(text.c_str(), address.data(), mask.data()), right) << text;
          if (!right) continue;
          EXPECT_EQ(address, scanned) << text;
          EXPECT_EQ(mask, scannedMask) << text;
        }
      }
    }
  }
}

TEST(TarnFWUtilAddresses, RefusesWhatIsNoMacAddress) {
  Octets address{};
  Octets mask{};
  for (const char* text :
       {"", "00:11:22:33:44", "00:11:22:33:44:zz", "00:11-22:33:44:55", "00:11:22:33:44:55/",
        "00:11:22:33:44:55/ff:ff:ff:ff:ff", "00:11:22:33:44:55/ff-ff-ff-ff-ff-ff", "/"}) {
    EXPECT_FALSE(ParseMACString(text, address.data(), mask.data())) << text;
  }
  EXPECT_FALSE(ParseMACString(nullptr, address.data(), mask.data()));
  EXPECT_FALSE(ParseMACString("0:0:0:0:0:0", nullptr, mask.data()));
  EXPECT_FALSE(ParseMACString("0:0:0:0:0:0", address.data(), nullptr));
}

TEST(TarnFWUtilAddresses, InetPtonTakesTheFirstWord) {
  in_addr address{};
  EXPECT_EQ(tarn_inet_pton(AF_INET, " \t\n\v\f\r10.0.0.1 junk", &address), 1);
  EXPECT_EQ(address.s_addr, htonl(0x0a000001));
  EXPECT_EQ(tarn_inet_pton(AF_INET, "10.0.0.2\n", &address), 1);
  EXPECT_EQ(address.s_addr, htonl(0x0a000002));
  EXPECT_EQ(tarn_inet_pton(AF_INET, "", &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, "  ", &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, "10.0.0", &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, nullptr, &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_INET, "10.0.0.1", nullptr), 0);
  EXPECT_EQ(tarn_inet_pton(AF_UNIX, "10.0.0.1", &address), -1);
}

TEST(TarnFWUtilAddresses, AWordOf46CharactersIsNotParsed) {
  in6_addr address;
  const std::string longest = "0000:0000:0000:0000:0000:ffff:255.255.255.255";
  ASSERT_EQ(longest.size(), 45u);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, longest.c_str(), &address), 1);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, ("  " + longest + " " + longest).c_str(), &address), 1);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, std::string(46, '1').c_str(), &address), 0);
  // Even a family that inet_pton would refuse by -1 is not looked at.
  EXPECT_EQ(tarn_inet_pton(AF_UNIX, std::string(46, '1').c_str(), &address), 0);
  EXPECT_EQ(tarn_inet_pton(AF_UNIX, std::string(45, '1').c_str(), &address), -1);
  EXPECT_EQ(tarn_inet_pton(AF_INET6, std::string(1000000, ':').c_str(), &address), 0);
}

TEST(TarnFWUtilAddresses, ParseIPv4StringMasksTheAddress) {
  struct Case {
    const char* text;
    std::uint32_t address;
    std::uint32_t mask;
  };
  for (const Case& c :
       {Case{"192.168.1.5", 0xc0a80105, 0xffffffff}, Case{"192.168.1.5/24", 0xc0a80100, 0xffffff00},
        Case{"192.168.1.0/255.255.255.0", 0xc0a80100, 0xffffff00}, Case{"192.168.1.5/0", 0, 0},
        Case{"192.168.1.5/32", 0xc0a80105, 0xffffffff},
        Case{"192.168.1.5/255.0.255.0", 0xc0000100, 0xff00ff00}}) {
    in_addr address{};
    in_addr mask{};
    int isRange = 9;
    EXPECT_TRUE(ParseIPv4String(c.text, &address, &mask, &isRange)) << c.text;
    EXPECT_EQ(ntohl(address.s_addr), c.address) << c.text;
    EXPECT_EQ(ntohl(mask.s_addr), c.mask) << c.text;
    EXPECT_EQ(isRange, 0) << c.text;
  }
}

TEST(TarnFWUtilAddresses, AnIPv4RangeRises) {
  in_addr first{};
  in_addr last{};
  int isRange = 0;
  EXPECT_TRUE(ParseIPv4String("10.0.0.9-10.0.0.10", &first, &last, &isRange));
  EXPECT_EQ(ntohl(first.s_addr), 0x0a000009u);
  EXPECT_EQ(ntohl(last.s_addr), 0x0a00000au);
  EXPECT_EQ(isRange, 1);
  EXPECT_FALSE(ParseIPv4String("10.0.0.9-10.0.0.9", &first, &last, &isRange));
  EXPECT_FALSE(ParseIPv4String("10.0.0.9-10.0.0.8", &first, &last, &isRange));
}

TEST(TarnFWUtilAddresses, RefusesWhatIsNoIPv4Address) {
  in_addr address{};
  in_addr mask{};
  int isRange = 0;
  for (const char* text :
       {"", "1.2.3", "1.2.3.4/33", "1.2.3.4/-1", "1.2.3.4/", "1.2.3.4/24x", "1.2.3.4-24",
        "1.2.3.4-", "-1.2.3.4", "1.2.3.4-1.2.3.9/24", "/24", "2001:db8::1"}) {
    EXPECT_FALSE(ParseIPv4String(text, &address, &mask, &isRange)) << text;
  }
  EXPECT_FALSE(ParseIPv4String(nullptr, &address, &mask, &isRange));
  EXPECT_FALSE(ParseIPv4String("1.2.3.4", nullptr, &mask, &isRange));
  EXPECT_FALSE(ParseIPv4String("1.2.3.4", &address, nullptr, &isRange));
  EXPECT_FALSE(ParseIPv4String("1.2.3.4", &address, &mask, nullptr));
}

TEST(TarnFWUtilAddresses, ParseIPv6StringMasksTheAddress) {
  struct Case {
    const char* text;
    const char* address;
    const char* mask;
  };
  for (const Case& c :
       {Case{"2001:db8::5", "2001:db8::5", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"},
        Case{"2001:db8::5/32", "2001:db8::", "ffff:ffff::"},
        Case{"2001:db8::5/ffff::ffff", "2001::5", "ffff::ffff"}, Case{"2001:db8::5/0", "::", "::"},
        Case{"2001:db8::5/128", "2001:db8::5", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}}) {
    in6_addr address{};
    in6_addr mask{};
    int isRange = 9;
    EXPECT_TRUE(ParseIPv6String(c.text, &address, &mask, &isRange)) << c.text;
    EXPECT_EQ(bytesOf(address), bytesOf(ipv6(c.address))) << c.text;
    EXPECT_EQ(bytesOf(mask), bytesOf(ipv6(c.mask))) << c.text;
    EXPECT_EQ(isRange, 0) << c.text;
  }
}

TEST(TarnFWUtilAddresses, AnIPv6RangeRisesInOneNetworkOf64Bits) {
  in6_addr first{};
  in6_addr last{};
  int isRange = 0;
  EXPECT_TRUE(ParseIPv6String("2001:db8::1:ffff-2001:db8::2:0", &first, &last, &isRange));
  EXPECT_EQ(isRange, 1);
  EXPECT_EQ(bytesOf(last), bytesOf(ipv6("2001:db8::2:0")));
  EXPECT_TRUE(ParseIPv6String("::-::ffff:ffff:ffff:ffff", &first, &last, &isRange));
  for (const char* text :
       {"2001:db8::1-2001:db8::1", "2001:db8::2-2001:db8::1", "2001:db8:0:1::1-2001:db8:0:2::2",
        "2001:db8::1-2001:db9::2", "2001:db8::1-64", "2001:db8::1-"}) {
    EXPECT_FALSE(ParseIPv6String(text, &first, &last, &isRange)) << text;
  }
}

TEST(TarnFWUtilAddresses, RefusesWhatIsNoIPv6Address) {
  in6_addr address{};
  in6_addr mask{};
  int isRange = 0;
  for (const char* text : {"", "1.2.3.4", "2001:db8::1/129", "2001:db8::1/-1", "2001:db8::1/",
                           "2001:db8::1/64x", "/64", "2001:db8:::1"}) {
    EXPECT_FALSE(ParseIPv6String(text, &address, &mask, &isRange)) << text;
  }
  EXPECT_FALSE(ParseIPv6String(nullptr, &address, &mask, &isRange));
  EXPECT_FALSE(ParseIPv6String("::", nullptr, &mask, &isRange));
  EXPECT_FALSE(ParseIPv6String("::", &address, nullptr, &isRange));
  EXPECT_FALSE(ParseIPv6String("::", &address, &mask, nullptr));
}

TEST(TarnFWUtilAddresses, AColonTellsTheFamily) {
  in_addr ipv4[2] = {};
  in6_addr v6[2] = {};
  int isRange = 0;
  int isV6 = 9;
  EXPECT_TRUE(ParseIPString("10.0.0.5/24", ipv4, v6, &isRange, &isV6));
  EXPECT_EQ(isV6, 0);
  EXPECT_EQ(ntohl(ipv4[0].s_addr), 0x0a000000u);
  EXPECT_EQ(ntohl(ipv4[1].s_addr), 0xffffff00u);
  EXPECT_TRUE(ParseIPString("2001:db8::1-2001:db8::2", ipv4, v6, &isRange, &isV6));
  EXPECT_EQ(isV6, 1);
  EXPECT_EQ(isRange, 1);
  EXPECT_EQ(bytesOf(v6[1]), bytesOf(ipv6("2001:db8::2")));
  EXPECT_FALSE(ParseIPString("10.0.0.5:80", ipv4, v6, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString(nullptr, ipv4, v6, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString("::", nullptr, v6, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString("::", ipv4, nullptr, &isRange, &isV6));
  EXPECT_FALSE(ParseIPString("::", ipv4, v6, nullptr, &isV6));
  EXPECT_FALSE(ParseIPString("::", ipv4, v6, &isRange, nullptr));
}

TEST(TarnInetPton, ReadsAQuadAsTheCLibraryDoes) {
  // Texts of random characters, and quads that may have one of them changed.
  std::uint64_t state = 1;
  const auto next = [&state] {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<unsigned int>(state >> 33);
  };
  const std::string characters = "0125.9 3.6x";
  unsigned int good = 0;
  for (int i = 0; i < 400000; ++i) {
    std::string text;
    if (i % 2 == 0) {
      for (unsigned int n = next() % 16; n > 0; --n) text += characters[next() % characters.size()];
    } else {
      for (int octet = 0; octet < 4; ++octet) {
        text += (octet == 0 ? "" : ".") + std::to_string(next() % 300);
      }
      if (next() % 4 == 0) text[next() % text.size()] = characters[next() % characters.size()];
    }
    const std::size_t start = text.find_first_not_of(' ');
    const std::string word =
        start == std::string::npos ? "" : text.substr(start, text.find(' ', start) - start);
    in_addr ours{};
    in_addr theirs{};
    const int expected = inet_pton(AF_INET, word.c_str(), &theirs);
    ASSERT_EQ(tarn_inet_pton(AF_INET, text.c_str(), &ours), expected) << "'" << text << "'";
    if (expected == 1) {
      ASSERT_EQ(ours.s_addr, theirs.s_addr) << text;
      ++good;
    }
  }
  EXPECT_GT(good, 50000u);
}

TEST(TarnInetPton, ReadsIPv6AsTheCLibraryDoes) {
  // Each of these, with a few of its characters changed, left out or doubled.
  const char* const kGood[] = {"::",
                               "::1",
                               "1::",
                               "2001:db8:0:1::1f",
                               "2001:DB8:0:1:0:ff:9:a",
                               "1:2:3:4:5:6:7::",
                               "::2:3:4:5:6:7:8",
                               "::ffff:10.0.0.255",
                               "1:2:3:4:5:6:1.2.3.4",
                               "0000:0000:0000:0000:0000:ffff:255.255.255.255"};
  std::uint64_t state = 1;
  const auto next = [&state](std::size_t below) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::size_t>(state >> 33) % below;
  };
  const std::string characters = "01fF:::..g %";
  unsigned int good = 0;
  for (int i = 0; i < 400000; ++i) {
    std::string text = kGood[next(std::size(kGood))];
    for (std::size_t changes = next(4); changes > 0; --changes) {
      const std::size_t place = next(text.size() + 1);
      const std::size_t taken = std::min(next(3), text.size() - place);
      text.replace(place, taken, next(3), characters[next(characters.size())]);
    }
    const std::size_t start = text.find_first_not_of(' ');
    const std::string word =
        start == std::string::npos ? "" : text.substr(start, text.find(' ', start) - start);
    in6_addr ours{};
    in6_addr theirs{};
    const int expected = inet_pton(AF_INET6, word.c_str(), &theirs);
    ASSERT_EQ(tarn_inet_pton(AF_INET6, text.c_str(), &ours), expected) << "'" << text << "'";
    ASSERT_EQ(bytesOf(ours), bytesOf(theirs)) << text;
    good += expected == 1 ? 1 : 0;
  }
  EXPECT_GT(good, 50000u);
}
