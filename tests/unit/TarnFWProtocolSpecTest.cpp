#include <gtest/gtest.h>

#include "Expect.h"
#include "TarnFWProtocolSpec.h"
#include "TarnFWProtocolSpecL4Port.h"

using namespace TarnFirewall;

namespace {

/// A spec that adds nothing to the base.
class PlainSpec final : public CTarnFWProtocolSpec {
 public:
  using CTarnFWProtocolSpec::CTarnFWProtocolSpec;
  unsigned int getMsgSize() const override { return 0; }
  void appendTo(CTarnFWText&) const override {}
  bool toMessage(void*, unsigned int, unsigned int*) override { return true; }
};

}  // namespace

TEST(TarnFWProtocolSpec, BaseHasKindZero) {
  EXPECT_EQ(PlainSpec(0, false).getSpecType(), FW_SPEC_NONE);
  EXPECT_EQ(PlainSpec(0, false).toString(), "");
}

TEST(TarnFWProtocolSpec, DirAboveTwoIsRefused) {
  for (unsigned char dir = 0; dir < 3; ++dir) EXPECT_EQ(PlainSpec(dir, false).getDir(), dir);
  EXPECT_THROW_WITH(PlainSpec(3, false), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 3");
  EXPECT_THROW_WITH(PlainSpec(255, true), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 255");
}

TEST(TarnFWProtocolSpec, SetDirRefusesTheSameAndKeepsTheOldOne) {
  PlainSpec spec(1, false);
  EXPECT_THROW_WITH(spec.setDir(3), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 3");
  EXPECT_EQ(spec.getDir(), 1);
  spec.setDir(2);
  EXPECT_EQ(spec.getDir(), 2);
}

TEST(TarnFWProtocolSpec, HeaderHoldsDirNegationAndKind) {
  const auto header = [](unsigned char dir, bool negated) {
    return static_cast<std::uint16_t>(CTarnFWProtocolSpecL4Port(dir, 80, negated).header().word);
  };
  EXPECT_EQ(header(0, false), 0x08);
  EXPECT_EQ(header(1, false), 0x09);
  EXPECT_EQ(header(2, false), 0x0a);
  EXPECT_EQ(header(2, true), 0x0e);
}
