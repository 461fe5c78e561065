#include <gtest/gtest.h>

#include <cerrno>

#include "LabBench.h"

namespace TarnLab {
namespace {

class LabThresholds : public LabBench {
 protected:
  /// What request 29 answers.
  ByteVector thresholds() {
    ByteVector body(8);
    EXPECT_EQ(direct(29, body), 0);
    return body;
  }
  int set(ByteVector body) { return direct(28, body); }
};

TEST_F(LabThresholds, TheUsualOnesAreThere) {
  EXPECT_EQ(thresholds(), ByteVector(Record().u8(0).u8(80).u8(25).u8(0).u32(5000)));
}

TEST_F(LabThresholds, WhatIsGivenIsKept) {
  ASSERT_EQ(set(Record().u8(1).u8(0).u16(0).u32(7)), 0);
  EXPECT_EQ(thresholds(), ByteVector(Record().u8(0).u8(0).u8(25).u8(0).u32(5000)));
  ASSERT_EQ(set(Record().u8(2).u8(9).u16(0).u32(0xffffffff)), 0);
  EXPECT_EQ(thresholds(), ByteVector(Record().u8(0).u8(0).u8(25).u8(0).u32(0xffffffff)));
  ASSERT_EQ(set(Record().u8(3).u8(100).u16(0).u32(1)), 0);
  EXPECT_EQ(thresholds(), ByteVector(Record().u8(0).u8(100).u8(25).u8(0).u32(1)));
}

TEST_F(LabThresholds, WhatIsWrongIsRefused) {
  EXPECT_EQ(set(Record().u8(1).u8(101).u16(0).u32(0)), EINVAL);
  EXPECT_EQ(note(), "101 percent");
  EXPECT_EQ(set(Record().u8(4).u8(0).u16(0).u32(0)), EINVAL);
  EXPECT_EQ(set(Record().u8(1).u8(0).u16(1).u32(0)), EINVAL);
  EXPECT_EQ(set(Record().u8(1).u8(0).u16(0x100).u32(0)), EINVAL);
  EXPECT_EQ(set(Record().zero(7)), EINVAL);
  EXPECT_EQ(thresholds(), ByteVector(Record().u8(0).u8(80).u8(25).u8(0).u32(5000)));
}

}  // namespace
}  // namespace TarnLab
