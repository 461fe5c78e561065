#include <gtest/gtest.h>

#include <cstring>

#include "Expect.h"
#include "TarnFWSelector.h"

using namespace TarnFirewall;

namespace {

dvs_port_ selector(std::uint8_t type, const std::string& identifier, std::uint32_t index = 0) {
  dvs_port_ port{};
  identifier.copy(port.identifier, sizeof port.identifier);
  port.index[0] = static_cast<std::uint8_t>(index);
  port.index[1] = static_cast<std::uint8_t>(index >> 8);
  port.index[2] = static_cast<std::uint8_t>(index >> 16);
  port.type = type;
  return port;
}

const char* const kVnic = "50 2d a9 0c 1f 00 00 01-80 90 a0 b0 c0 d0 e0 ff";

}  // namespace

TEST(TarnFWSelector, TypeZeroIsEmptyWhateverThePrefix) {
  EXPECT_EQ(dvsportToString(selector(0, "x", 3), "for"), "");
  EXPECT_EQ(dvsportToString(selector(0, "x", 3), nullptr), "");
  EXPECT_EQ(dvsportToString(selector(0xf0, "x", 3), "of"), "") << "the high nibble is no type";
}

TEST(TarnFWSelector, AVnicPrintsItsIdentifierAndItsIndex) {
  EXPECT_EQ(dvsportToString(selector(1, kVnic, 2), "for"),
            " for vnic 502da90c-1f00-0001-8090-a0b0c0d0e0ff.002");
  EXPECT_EQ(dvsportToString(selector(1, kVnic, 0xffffff), nullptr),
            " vnic 502da90c-1f00-0001-8090-a0b0c0d0e0ff.16777215");
}

TEST(TarnFWSelector, AVnicOfAnotherFormIsRefused) {
  EXPECT_THROW_WITH(dvsportToString(selector(1, "nic-1"), "for"), CUnsupportedException, 7,
                    "dvs switch id format is wrong");
}

TEST(TarnFWSelector, ASwitchPortPrintsInQuotationMarks) {
  EXPECT_EQ(dvsportToString(selector(2, kVnic, 0x010203), "of"),
            " of dvsport \"" + std::string(kVnic) + ":66051\"");
}

TEST(TarnFWSelector, FiltersAndVifsPrintTheirNames) {
  EXPECT_EQ(dvsportToString(selector(7, "nic-1002672-eth0-kelpco-sfw.2"), "to"),
            " to filter nic-1002672-eth0-kelpco-sfw.2");
  EXPECT_EQ(dvsportToString(selector(8, "5a43ddda-c21a-632a-4ae1-00505699723f"), nullptr),
            " vif 5a43ddda-c21a-632a-4ae1-00505699723f");
}

TEST(TarnFWSelector, ANameMayFillItsField) {
  const std::string name(64, 'n');
  dvs_port_ port = selector(7, name);
  std::memset(port.agent, 'a', sizeof port.agent);
  EXPECT_EQ(dvsportToString(port, nullptr), " filter " + name);
  port.type = 2;
  EXPECT_EQ(dvsportToString(port, nullptr), " dvsport \"" + name + ":0\"");
  std::memset(port.index, 0xff, sizeof port.index);
  EXPECT_EQ(dvsportToString(port, nullptr), " dvsport \"" + name + ":16777215\"");
}

TEST(TarnFWSelector, OtherTypesAreRefusedByNumber) {
  for (const int type : {3, 4, 5, 6, 9, 10, 11, 12, 13, 14, 15}) {
    EXPECT_THROW_WITH(dvsportToString(selector(static_cast<std::uint8_t>(type), "x"), "for"),
                      CUnsupportedException, 7, "unsupported dvsport type " + std::to_string(type));
  }
}
