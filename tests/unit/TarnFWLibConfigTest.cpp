#include <gtest/gtest.h>

#include <cstdlib>

#include "LogCapture.h"
#include "TarnFWLibConfig.h"

using namespace TarnFirewall;

namespace {

class TarnFWLibConfig : public testing::Test {
 protected:
  void SetUp() override { unsetenv(kName); }
  void TearDown() override { unsetenv(kName); }

  /// The result and the value afterwards, which starts as `start`.
  static std::pair<int, bool> read(const char* text, bool start) {
    setenv(kName, text, 1);
    bool value = start;
    const int result = CTarnFWLibConfig::GetInstance()->readConfig(0, &value);
    return {result, value};
  }

  static constexpr const char* kName = "tarnfwlib_exec_batch_cmd";
};

}  // namespace

TEST_F(TarnFWLibConfig, TrueAndFalseAreReadIgnoringCase) {
  EXPECT_EQ(read("true", false), std::make_pair(1, true));
  EXPECT_EQ(read("TRUE", false), std::make_pair(1, true));
  EXPECT_EQ(read("fAlSe", true), std::make_pair(1, false));
}

TEST_F(TarnFWLibConfig, AnythingElseLeavesTheValueAlone) {
  for (const char* text : {"yes", "", "1", "true ", "truely"}) {
    EXPECT_EQ(read(text, false), std::make_pair(0, false)) << text;
    EXPECT_EQ(read(text, true), std::make_pair(0, true)) << text;
  }
}

TEST_F(TarnFWLibConfig, WhatWasReadIsLogged) {
  LogCapture log;
  read("yes", false);
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{"6|tarnfw: TarnFWLibConfig:readConfig():N Read config "
                                     "tarnfwlib_exec_batch_cmd: yes\n\n"});
}

TEST_F(TarnFWLibConfig, AnUnsetVariableAndAnUnknownKeyGiveNothing) {
  LogCapture log;
  bool value = true;
  EXPECT_EQ(CTarnFWLibConfig::GetInstance()->readConfig(0, &value), 0);
  setenv(kName, "false", 1);
  EXPECT_EQ(CTarnFWLibConfig::GetInstance()->readConfig(1, &value), 0);
  EXPECT_EQ(CTarnFWLibConfig::GetInstance()->readConfig(-1, &value), 0);
  EXPECT_TRUE(value);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarnFWLibConfig, ThereIsOne) {
  EXPECT_EQ(CTarnFWLibConfig::GetInstance(), CTarnFWLibConfig::GetInstance());
}
