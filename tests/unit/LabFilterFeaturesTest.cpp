#include <gtest/gtest.h>

#include "LabBench.h"

namespace TarnLab {
namespace {

using LabFilterFeatures = LabBench;

TEST_F(LabFilterFeatures, AFilterKeepsItsOwnExportVersion) {
  ASSERT_EQ(command(55, Record().u32(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 1000u);
  ASSERT_EQ(command(54, Record().u32(0xfffffffe)), 0u);
  ASSERT_EQ(command(55, Record().u32(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 0xfffffffeu);
  ASSERT_EQ(command(55, Record().u32(0), filterSelector(other)), 0u);
  EXPECT_EQ(get32(reply, 0), 1000u);
  EXPECT_EQ(command(54, Record().u16(0)), 25u);
}

TEST_F(LabFilterFeatures, AFilterKeepsItsProfileOfNames) {
  ASSERT_EQ(command(84, Record().zero(13)), 0u);
  EXPECT_EQ(get8(reply, 4), 2u) << "names live as long as the answers say until it is set";
  const ByteVector two = Record()
                             .u32(0)
                             .u8(0)
                             .u32(300)
                             .u32(2)
                             .bytes(ipv4("10.0.0.53"))
                             .bytes(ipv4Block("10.1.0.0", 16));
  ASSERT_EQ(command(83, two), 0u);
  ASSERT_EQ(command(84, Record().zero(13)), 0u);
  EXPECT_EQ(get8(reply, 4), 0u);
  EXPECT_EQ(get32(reply, 5), 300u);
  EXPECT_EQ(get32(reply, 9), 2u);
  ASSERT_EQ(command(83, Record().u32(0).u8(1).u32(0).u32(0)), 0u);
  ASSERT_EQ(command(84, Record().zero(13)), 0u);
  EXPECT_EQ(get8(reply, 4), 1u);
  EXPECT_EQ(get32(reply, 9), 0u);
}

TEST_F(LabFilterFeatures, AProfileThatIsWrongIsRefused) {
  const ByteVector address = ipv4("10.0.0.53");
  EXPECT_EQ(command(83, Record().zero(12)), 25u);
  EXPECT_EQ(command(83, Record().u8(1).zero(12)), 25u);
  EXPECT_EQ(command(83, Record().u32(0).u8(1).u32(0).u32(1)), 25u);
  EXPECT_EQ(note(), "1 addresses in 0 bytes");
  EXPECT_EQ(command(83, Record().u32(0).u8(1).u32(0).u32(0).bytes(address)), 25u);
  EXPECT_EQ(command(83, Record().u32(0).u8(1).u32(0).u32(1).bytes(address).u8(0)), 25u);
  EXPECT_EQ(command(83, Record().u32(0).u8(1).u32(0).u32(~0u).bytes(address)), 25u);
  const ByteVector mac = Record().u16(7).u16(0).u32(1).to(144);
  EXPECT_EQ(command(83, Record().u32(0).u8(1).u32(0).u32(1).bytes(mac)), 33u);
  ASSERT_EQ(command(84, Record().zero(13)), 0u);
  EXPECT_EQ(get8(reply, 4), 2u) << "the one before stays";
}

TEST_F(LabFilterFeatures, SwitchesAreShown) {
  ASSERT_EQ(command(49, Record().u32(2)), 0u);
  ASSERT_EQ(command(85, Record().u8(1).zero(3)), 0u);
  EXPECT_EQ(command(85, Record().u8(3).zero(3)), 25u);
  EXPECT_EQ(command(85, Record().u8(1).u8(1).u16(0)), 25u);
  const auto kept = store.read("filters/0/settings", 1 << 20);
  ASSERT_TRUE(kept.has_value());
  const std::string text(reinterpret_cast<const char*>(kept->data()), kept->size());
  EXPECT_EQ(text, "icmp.errors-dropped on\nl7.copied on\n");
  ASSERT_EQ(command(49, Record().u32(0)), 0u);
  ASSERT_EQ(command(85, Record().u32(0)), 0u);
}

}  // namespace
}  // namespace TarnLab
