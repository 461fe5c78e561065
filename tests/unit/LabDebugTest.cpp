#include <gtest/gtest.h>

#include "LabBench.h"
#include "LabSettings.h"

namespace TarnLab {
namespace {

class LabDebug : public LabBench {
 protected:
  static Record levelOf(unsigned component, unsigned level) {
    return Record().u16(component).u8(0).u8(level);
  }
  static Record asked() { return Record().zero(21).u8(21).u8(0); }
};

TEST_F(LabDebug, KeepsTheLevelOfEachComponent) {
  ASSERT_EQ(command(33, levelOf(0, 3)), 0u);
  ASSERT_EQ(command(33, levelOf(20, 15)), 0u);
  ASSERT_EQ(command(34, asked()), 0u);
  EXPECT_EQ(get8(reply, 0), 3u);
  EXPECT_EQ(get8(reply, 1), 0u);
  EXPECT_EQ(get8(reply, 20), 15u);
  ASSERT_EQ(command(33, levelOf(255, 2)), 0u);
  ASSERT_EQ(command(34, asked()), 0u);
  for (std::size_t i = 0; i < 21; ++i) EXPECT_EQ(get8(reply, i), 2u) << i;
  ASSERT_EQ(command(34, asked(), filterSelector(other)), 0u);
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 0, 21)));
}

TEST_F(LabDebug, ShowsTheLevelsOfBothPaths) {
  ASSERT_EQ(command(32, levelOf(1, 3)), 0u);
  ASSERT_EQ(command(32, levelOf(2, 1)), 0u);
  EXPECT_EQ(Settings::load(store, "filters/0").lines(),
            (std::vector<std::string>{"verbose.dp: 3", "verbose.cp: 1"}));
}

TEST_F(LabDebug, RefusesWhatIsWrong) {
  EXPECT_EQ(command(32, levelOf(0, 1)), 3u);
  EXPECT_EQ(command(32, levelOf(3, 1)), 3u);
  EXPECT_EQ(note(), "component 3");
  EXPECT_EQ(command(33, levelOf(21, 1)), 3u);
  EXPECT_EQ(command(33, levelOf(254, 1)), 3u);
  EXPECT_EQ(command(32, levelOf(1, 0x10)), 25u);
  EXPECT_EQ(command(32, levelOf(1, 1).set(2, 1)), 25u);
  EXPECT_EQ(command(34, asked().set(21, 20)), 25u);
  EXPECT_EQ(note(), "20 components");
  EXPECT_EQ(command(34, asked().set(0, 1)), 25u);
}

}  // namespace
}  // namespace TarnLab
