#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "Expect.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

using Uuid = std::array<std::uint8_t, 16>;

constexpr Uuid kCounting = {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07,
                            0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f};
constexpr const char* kGfy = "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f";
constexpr const char* kNormal = "00010203-0405-0607-0809-0a0b0c0d0e0f";

dvs_port_ selector(const std::string& name, std::uint32_t index) {
  dvs_port_ port{};
  std::memcpy(port.identifier, name.data(), std::min(name.size(), sizeof port.identifier));
  port.index[0] = static_cast<std::uint8_t>(index);
  port.index[1] = static_cast<std::uint8_t>(index >> 8);
  port.index[2] = static_cast<std::uint8_t>(index >> 16);
  return port;
}

}  // namespace

TEST(TarnFWUtilIdentifier, WritesTheThreeForms) {
  char buffer[64];
  ASSERT_TRUE(uuid2gfystr(kCounting.data(), buffer, sizeof buffer));
  EXPECT_STREQ(buffer, kGfy);
  ASSERT_TRUE(uuid2normalstr(kCounting.data(), buffer, sizeof buffer));
  EXPECT_STREQ(buffer, kNormal);
  ASSERT_TRUE(uuid2vnicstr(kCounting.data(), 7, buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "00010203-0405-0607-0809-0a0b0c0d0e0f.007");
  ASSERT_TRUE(uuid2vnicstr(kCounting.data(), 1234, buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "00010203-0405-0607-0809-0a0b0c0d0e0f.1234");
}

TEST(TarnFWUtilIdentifier, WritesHighBytesInLowerCase) {
  Uuid uuid;
  uuid.fill(0xfa);
  char buffer[64];
  ASSERT_TRUE(uuid2normalstr(uuid.data(), buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "fafafafa-fafa-fafa-fafa-fafafafafafa");
}

TEST(TarnFWUtilIdentifier, ASizeOfTheTextsLengthCutsOneCharacterAndSucceeds) {
  char buffer[64];
  std::memset(buffer, 'x', sizeof buffer);
  ASSERT_TRUE(uuid2normalstr(kCounting.data(), buffer, 36));
  EXPECT_EQ(std::strlen(buffer), 35u);
  EXPECT_STREQ(buffer, "00010203-0405-0607-0809-0a0b0c0d0e0");
  EXPECT_EQ(buffer[36], 'x');

  std::memset(buffer, 'x', sizeof buffer);
  ASSERT_TRUE(uuid2gfystr(kCounting.data(), buffer, 47));
  EXPECT_EQ(std::strlen(buffer), 46u);
  ASSERT_TRUE(uuid2vnicstr(kCounting.data(), 1, buffer, 40));
  EXPECT_EQ(std::strlen(buffer), 39u);
}

TEST(TarnFWUtilIdentifier, ASmallerBufferFailsAndIsNotOverrun) {
  for (std::size_t size = 0; size < 36; ++size) {
    std::string buffer(64, 'x');
    EXPECT_FALSE(uuid2normalstr(kCounting.data(), buffer.data(), size)) << size;
    EXPECT_EQ(buffer.substr(size), std::string(64 - size, 'x')) << size;
  }
  char buffer[64];
  EXPECT_FALSE(uuid2gfystr(kCounting.data(), buffer, 46));
  EXPECT_FALSE(uuid2vnicstr(kCounting.data(), 1, buffer, 39));
}

TEST(TarnFWUtilIdentifier, ANullArgumentFails) {
  char buffer[64];
  Uuid uuid;
  int index = 0;
  EXPECT_FALSE(uuid2gfystr(nullptr, buffer, sizeof buffer));
  EXPECT_FALSE(uuid2gfystr(kCounting.data(), nullptr, 64));
  EXPECT_FALSE(uuid2normalstr(nullptr, buffer, sizeof buffer));
  EXPECT_FALSE(uuid2normalstr(kCounting.data(), nullptr, 64));
  EXPECT_FALSE(uuid2vnicstr(nullptr, 0, buffer, sizeof buffer));
  EXPECT_FALSE(uuid2vnicstr(kCounting.data(), 0, nullptr, 64));
  EXPECT_FALSE(gfystr2uuid(nullptr, kGfy));
  EXPECT_FALSE(gfystr2uuid(uuid.data(), nullptr));
  EXPECT_FALSE(normalstr2uuid(nullptr, kNormal));
  EXPECT_FALSE(normalstr2uuid(uuid.data(), nullptr));
  EXPECT_FALSE(vnicstr2uuid(nullptr, &index, "x"));
  EXPECT_FALSE(vnicstr2uuid(uuid.data(), nullptr, "x"));
  EXPECT_FALSE(vnicstr2uuid(uuid.data(), &index, nullptr));
  EXPECT_FALSE(gfystr2vnicstr(nullptr, 1, buffer, sizeof buffer));
  EXPECT_FALSE(gfystr2vnicstr(kGfy, 1, nullptr, 64));
  EXPECT_FALSE(fw_dvsport2str(nullptr, buffer, sizeof buffer));
  EXPECT_FALSE(fw_vnic2str(nullptr, buffer, sizeof buffer));
  const dvs_port_ port = selector(kGfy, 1);
  EXPECT_FALSE(fw_dvsport2str(&port, nullptr, 64));
  EXPECT_FALSE(fw_vnic2str(&port, nullptr, 64));
  EXPECT_FALSE(normalizeContainerName("name", nullptr));
}

TEST(TarnFWUtilIdentifier, ReadsTheGfyForm) {
  Uuid uuid{};
  ASSERT_TRUE(gfystr2uuid(uuid.data(), kGfy));
  EXPECT_EQ(uuid, kCounting);
  EXPECT_FALSE(gfystr2uuid(uuid.data(), kNormal));
  EXPECT_FALSE(gfystr2uuid(uuid.data(), "00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f"));
  EXPECT_FALSE(gfystr2uuid(uuid.data(), "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e"));
  EXPECT_FALSE(gfystr2uuid(uuid.data(), "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e xx"));
  EXPECT_FALSE(gfystr2uuid(uuid.data(), ""));
}

TEST(TarnFWUtilIdentifier, ReadsTheNormalForm) {
  Uuid uuid{};
  ASSERT_TRUE(normalstr2uuid(uuid.data(), kNormal));
  EXPECT_EQ(uuid, kCounting);
  ASSERT_TRUE(normalstr2uuid(uuid.data(), "FAFAFAFA-FAFA-FAFA-FAFA-FAFAFAFAFAFA"));
  EXPECT_EQ(uuid[15], 0xfa);
  EXPECT_FALSE(normalstr2uuid(uuid.data(), kGfy));
  EXPECT_FALSE(normalstr2uuid(uuid.data(), "00010203-0405-0607-0809-0a0b0c0d0e"));
  EXPECT_FALSE(normalstr2uuid(uuid.data(), "000102030405060708090a0b0c0d0e0f"));
  EXPECT_FALSE(normalstr2uuid(uuid.data(), ""));
}

TEST(TarnFWUtilIdentifier, AcceptsWhatFollowsTheLastField) {
  Uuid uuid{};
  int index = 0;
  EXPECT_TRUE(gfystr2uuid(uuid.data(), (std::string(kGfy) + " and more").c_str()));
  EXPECT_TRUE(normalstr2uuid(uuid.data(), (std::string(kNormal) + ".000").c_str()));
  EXPECT_TRUE(vnicstr2uuid(uuid.data(), &index, (std::string(kNormal) + ".001x").c_str()));
  EXPECT_EQ(uuid, kCounting);
}

TEST(TarnFWUtilIdentifier, ReadsAVnicInThreeForms) {
  for (const std::string& text :
       {std::string(kNormal) + ".012", std::string(kGfy) + ":012", std::string(kGfy) + ".012"}) {
    Uuid uuid{};
    int index = -1;
    ASSERT_TRUE(vnicstr2uuid(uuid.data(), &index, text.c_str())) << text;
    EXPECT_EQ(uuid, kCounting);
    EXPECT_EQ(index, 12);
  }
}

TEST(TarnFWUtilIdentifier, AVnicNeedsAnIndexAfterTheRightSeparator) {
  Uuid uuid{};
  int index = 0;
  EXPECT_FALSE(vnicstr2uuid(uuid.data(), &index, kNormal));
  EXPECT_FALSE(vnicstr2uuid(uuid.data(), &index, kGfy));
  EXPECT_FALSE(vnicstr2uuid(uuid.data(), &index, (std::string(kNormal) + ":012").c_str()));
  EXPECT_FALSE(vnicstr2uuid(uuid.data(), &index, (std::string(kNormal) + ".").c_str()));
  EXPECT_FALSE(vnicstr2uuid(uuid.data(), &index, (std::string(kNormal) + ".x").c_str()));
}

TEST(TarnFWUtilIdentifier, ReadsEveryFormAsAScanDoes) {
  // Texts that are written as they are printed are read without a scan; each of these is one with a
  // character that is changed, left out or doubled.
#define NORMAL_SCAN                            \
  "%2hhx%2hhx%2hhx%2hhx-%2hhx%2hhx-%2hhx%2hhx" \
  "-%2hhx%2hhx-%2hhx%2hhx%2hhx%2hhx%2hhx%2hhx"
#define GFY_SCAN                                    \
  "%2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx" \
  "-%2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx %2hhx"
#define SCANNED(text, form, u, ...)                                                                \
  std::sscanf((text).c_str(), form, &(u)[0], &(u)[1], &(u)[2], &(u)[3], &(u)[4], &(u)[5], &(u)[6], \
              &(u)[7], &(u)[8], &(u)[9], &(u)[10], &(u)[11], &(u)[12], &(u)[13], &(u)[14],         \
              &(u)[15] __VA_OPT__(, ) __VA_ARGS__)
  const auto scanVnic = [](const std::string& text, Uuid& u, int* index) {
    return SCANNED(text, NORMAL_SCAN ".%3d", u, index) == 17 ||
           SCANNED(text, GFY_SCAN ":%3d", u, index) == 17 ||
           SCANNED(text, GFY_SCAN ".%3d", u, index) == 17;
  };
  for (const std::string& good :
       {std::string(kNormal), std::string(kGfy), std::string(kNormal) + ".012",
        std::string(kGfy) + ":012", std::string(kGfy) + ".7"}) {
    for (std::size_t place = 0; place <= good.size(); ++place) {
      for (const char* const with : {"", "0", "A", "g", "x", "-", " ", ":", ".", "+", "12"}) {
        for (const std::size_t taken : {std::size_t{0}, std::size_t{1}}) {
          std::string text = good;
          text.replace(place, std::min(taken, text.size() - place), with);
          Uuid read{}, scanned{};
          int index = 0, scannedIndex = 0;
          bool right = scanVnic(text, scanned, &scannedIndex);
          ASSERT_EQ(vnicstr2uuid(read.data(), &index, text.c_str()), right) << text;
          if (right) {
            EXPECT_EQ(read, scanned) << text;
            EXPECT_EQ(index, scannedIndex) << text;
          }
          right = SCANNED(text, GFY_SCAN, scanned) == 16;
          ASSERT_EQ(gfystr2uuid(read.data(), text.c_str()), right) << text;
          if (right) {
            EXPECT_EQ(read, scanned) << text;
          }
          right = SCANNED(text, NORMAL_SCAN, scanned) == 16;
          ASSERT_EQ(normalstr2uuid(read.data(), text.c_str()), right) << text;
          if (right) {
            EXPECT_EQ(read, scanned) << text;
          }
        }
      }
    }
  }
}

#undef NORMAL_SCAN
#undef GFY_SCAN
#undef SCANNED

TEST(TarnFWUtilIdentifier, OnlyThreeDigitsOfAVnicIndexCount) {
  Uuid uuid{};
  int index = 0;
  ASSERT_TRUE(vnicstr2uuid(uuid.data(), &index, (std::string(kNormal) + ".123").c_str()));
  EXPECT_EQ(index, 123);
  ASSERT_TRUE(vnicstr2uuid(uuid.data(), &index, (std::string(kNormal) + ".1234").c_str()));
  EXPECT_EQ(index, 123);
}

TEST(TarnFWUtilIdentifier, TurnsTheGfyFormIntoTheVnicForm) {
  char buffer[64];
  ASSERT_TRUE(gfystr2vnicstr(kGfy, 3, buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "00010203-0405-0607-0809-0a0b0c0d0e0f.003");
  EXPECT_FALSE(gfystr2vnicstr(kNormal, 3, buffer, sizeof buffer));
  EXPECT_FALSE(gfystr2vnicstr(kGfy, 3, buffer, 39));
}

TEST(TarnFWUtilIdentifier, PrintsASwitchPortInQuotationMarks) {
  char buffer[96];
  const dvs_port_ port = selector("50 20 aa", 0x030201);
  ASSERT_TRUE(fw_dvsport2str(&port, buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "\"50 20 aa:197121\"");
  EXPECT_TRUE(fw_dvsport2str(&port, buffer, 17));
  EXPECT_FALSE(fw_dvsport2str(&port, buffer, 16));
}

TEST(TarnFWUtilIdentifier, ReadsASelectorsNameOnlyToTheEndOfItsField) {
  const dvs_port_ port = selector(std::string(64, 'n'), 0xffffff);
  char buffer[96];
  ASSERT_TRUE(fw_dvsport2str(&port, buffer, sizeof buffer));
  EXPECT_EQ(std::string(buffer), "\"" + std::string(64, 'n') + ":16777215\"");
}

TEST(TarnFWUtilIdentifier, PrintsAVnicSelectorInVnicForm) {
  char buffer[64];
  const dvs_port_ port = selector(kGfy, 2);
  ASSERT_TRUE(fw_vnic2str(&port, buffer, sizeof buffer));
  EXPECT_STREQ(buffer, "00010203-0405-0607-0809-0a0b0c0d0e0f.002");
}

TEST(TarnFWUtilIdentifier, RefusesAVnicSelectorWhoseNameIsNoGfyForm) {
  char buffer[64];
  const dvs_port_ port = selector(kNormal, 2);
  EXPECT_THROW_WITH(fw_vnic2str(&port, buffer, sizeof buffer), CUnsupportedException, 7,
                    "dvs switch id format is wrong");
}

TEST(TarnFWUtilIdentifier, ReadsAnAddressWithAPort) {
  in_addr address{};
  std::uint16_t port = 0;
  ASSERT_TRUE(fw_str2ipport("10.1.2.3:65535", &address, &port));
  EXPECT_EQ(address.s_addr, htonl(0x0a010203));
  EXPECT_EQ(port, 65535);
  ASSERT_TRUE(fw_str2ipport("10.1.2.3:0", &address, &port));
  EXPECT_EQ(port, 0);
}

TEST(TarnFWUtilIdentifier, RefusesAnAddressWithABadPort) {
  in_addr address{};
  std::uint16_t port = 0;
  for (const char* text : {"10.1.2.3", "10.1.2.3:", "10.1.2.3:65536", "10.1.2.3:-1",
                           "10.1.2.3:80:", ":80", "10.1.2:80", "", ":", "2001:db8::1"}) {
    EXPECT_FALSE(fw_str2ipport(text, &address, &port)) << text;
  }
  EXPECT_FALSE(fw_str2ipport(nullptr, &address, &port));
  EXPECT_FALSE(fw_str2ipport("10.1.2.3:80", nullptr, &port));
  EXPECT_FALSE(fw_str2ipport("10.1.2.3:80", &address, nullptr));
}

TEST(TarnFWUtilIdentifier, A37CharacterContainerNameStaysAsItIs) {
  char buffer[39];
  std::memset(buffer, 'x', sizeof buffer);
  const std::string name(37, 'n');
  ASSERT_TRUE(normalizeContainerName(name, buffer));
  EXPECT_EQ(std::string(buffer), name);
  EXPECT_EQ(buffer[38], 'x');
  ASSERT_TRUE(normalizeContainerName("", buffer));
  EXPECT_STREQ(buffer, "");
}

TEST(TarnFWUtilIdentifier, ALongerContainerNameMustBeAVnicForm) {
  char buffer[39] = "as it was";
  EXPECT_FALSE(normalizeContainerName(std::string(38, 'n'), buffer));
  EXPECT_FALSE(normalizeContainerName(std::string(40, 'n'), buffer));
  EXPECT_FALSE(normalizeContainerName(std::string(100000, 'a'), buffer));
  EXPECT_FALSE(normalizeContainerName("ip-" + std::string(40, 'n'), buffer));
  EXPECT_STREQ(buffer, "as it was");
}

TEST(TarnFWUtilIdentifier, AVnicNameBecomesTheKernelsNameOfItsContainer) {
  const std::string vnic = std::string(kNormal) + ".009";
  char buffer[39];
  std::memset(buffer, 'x', sizeof buffer);
  ASSERT_TRUE(normalizeContainerName(vnic, buffer));
  EXPECT_STREQ(buffer, "000102030405060708090a0b0c0d0e0ft09");
  EXPECT_EQ(buffer[38], 'x');
  ASSERT_TRUE(normalizeContainerName("ip-" + vnic, buffer));
  EXPECT_STREQ(buffer, "000102030405060708090a0b0c0d0e0fi09");
  ASSERT_TRUE(normalizeContainerName("MAC-" + vnic, buffer));
  EXPECT_STREQ(buffer, "000102030405060708090a0b0c0d0e0fm09");
  ASSERT_TRUE(normalizeContainerName("Ip-" + std::string(kGfy) + ":1", buffer));
  EXPECT_STREQ(buffer, "000102030405060708090a0b0c0d0e0fi01");
}

TEST(TarnFWUtilIdentifier, A38CharacterContainerNameIsAVnicFormWithOneDigit) {
  const std::string vnic = std::string(kNormal) + ".9";
  ASSERT_EQ(vnic.size(), 38u);
  char buffer[39];
  ASSERT_TRUE(normalizeContainerName(vnic, buffer));
  EXPECT_STREQ(buffer, "000102030405060708090a0b0c0d0e0ft09");
  // One character less and the name stays what it is, a vnic form or not.
  ASSERT_TRUE(normalizeContainerName(vnic.substr(0, 37), buffer));
  EXPECT_EQ(std::string(buffer), std::string(kNormal) + ".");
}

TEST(TarnFWUtilIdentifier, AContainersVnicIndexIsBelowTen) {
  char buffer[39] = "as it was";
  EXPECT_FALSE(normalizeContainerName(std::string(kNormal) + ".010", buffer));
  EXPECT_STREQ(buffer, "as it was");
}

TEST(TarnFWUtilIdentifier, NetworkOrderOf64BitNumbersSwapsAllBytes) {
  const std::uint64_t network = htonll(0x0102030405060708ULL);
  const std::uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
  EXPECT_EQ(std::memcmp(&network, bytes, sizeof bytes), 0);
  EXPECT_EQ(ntohll(network), 0x0102030405060708ULL);
}

TEST(TarnFWUtilIdentifier, AnIdentifierIsAVnicOrAVm) {
  const std::string normal = "00010203-0405-0607-0809-0a0b0c0d0e0f";
  const std::string gfy = "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f";
  struct Case {
    std::string text;
    int index;
    int isVnic;
  };
  for (const Case& c : {Case{normal + ".004", 4, 1}, Case{gfy + ":005", 5, 1}, Case{gfy, 0, 0},
                        Case{normal, 0, 0}, Case{normal + ":004", 0, 0}}) {
    std::array<std::uint8_t, 16> uuid{};
    int index = 9;
    int isVnic = 9;
    EXPECT_TRUE(ParseUUIDString(c.text.c_str(), uuid.data(), &index, &isVnic)) << c.text;
    EXPECT_EQ(index, c.index) << c.text;
    EXPECT_EQ(isVnic, c.isVnic) << c.text;
    EXPECT_EQ(uuid[15], 0x0f) << c.text;
  }
}

TEST(TarnFWUtilIdentifier, RefusesWhatIsNoIdentifier) {
  std::array<std::uint8_t, 16> uuid{};
  int index = 9;
  int isVnic = 9;
  EXPECT_FALSE(ParseUUIDString("no identifier", uuid.data(), &index, &isVnic));
  EXPECT_EQ(index, 0);
  EXPECT_EQ(isVnic, 0);
  EXPECT_FALSE(ParseUUIDString(nullptr, uuid.data(), &index, &isVnic));
  EXPECT_FALSE(ParseUUIDString("x", nullptr, &index, &isVnic));
  EXPECT_FALSE(ParseUUIDString("x", uuid.data(), nullptr, &isVnic));
  EXPECT_FALSE(ParseUUIDString("x", uuid.data(), &index, nullptr));
}
