#include <gtest/gtest.h>

#include "LabBench.h"

namespace TarnLab {
namespace {

using LabFilterSettings = LabBench;

TEST_F(LabFilterSettings, AFilterKeepsItsOwnFailPolicy) {
  ASSERT_EQ(command(35, Record().u8(0)), 0u);
  EXPECT_EQ(get8(reply, 0), 0u) << "filters fail open until that is changed";
  ASSERT_EQ(command(31, Record().u8(1)), 0u);
  ASSERT_EQ(command(35, Record().u8(0)), 0u);
  EXPECT_EQ(get8(reply, 0), 1u);
  ASSERT_EQ(command(35, Record().u8(0), filterSelector(other)), 0u);
  EXPECT_EQ(get8(reply, 0), 0u);
  ASSERT_EQ(command(31, Record().u8(0)), 0u);
  ASSERT_EQ(command(35, Record().u8(0)), 0u);
  EXPECT_EQ(get8(reply, 0), 0u);
}

TEST_F(LabFilterSettings, AFailPolicyThatHasNoMeaningIsRefused) {
  ASSERT_EQ(command(31, Record().u8(1)), 0u);
  EXPECT_EQ(command(31, Record().u8(2)), 3u);
  EXPECT_EQ(note(), "policy 2");
  EXPECT_EQ(command(31, Record()), 25u);
  ASSERT_EQ(command(35, Record().u8(0)), 0u);
  EXPECT_EQ(get8(reply, 0), 1u) << "the one before stays";
}

}  // namespace
}  // namespace TarnLab
