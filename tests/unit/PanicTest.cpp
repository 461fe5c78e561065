#include <gtest/gtest.h>

#include "Panic.h"

TEST(PanicDeathTest, PrintsItsTextToStandardErrorAndAborts) {
  EXPECT_EXIT(Panic("broken %s %d\n", "table", 7), testing::KilledBySignal(SIGABRT),
              "^broken table 7\n$");
}
