#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "LogCapture.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

std::vector<int> g_priorities;

void collect(int priority, const char*, va_list) { g_priorities.push_back(priority); }

__attribute__((format(printf, 2, 3))) int print(void* context, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  char text[128];
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  *static_cast<std::string*>(context) += text;
  return length;
}

/// Gives the rows that a test registered back, so that tests do not depend on their order.
class TarnFWLog : public testing::Test {
 protected:
  void TearDown() override {
    for (unsigned int row = FW_COMPONENT_PREDEFINED; row < kComponentRows; ++row) {
      g_tarnfw_verbose[row].predefined = 0;
      g_tarnfw_verbose[row].level = 0;
      std::memset(g_tarnfw_verbose[row].name, 0, sizeof g_tarnfw_verbose[row].name);
    }
    g_tarnfw_max_component = FW_COMPONENT_PREDEFINED;
  }
};

}  // namespace

TEST_F(TarnFWLog, BaseSixKeepsTheSystemsPriorities) {
  g_priorities.clear();
  FW_RegisterLogger(collect, 6);
  for (const int priority : {3, 4, 6, 7}) Logger(priority, "x");
  FW_UnregisterLogger();
  EXPECT_EQ(g_priorities, (std::vector<int>{3, 4, 6, 7}));
}

TEST_F(TarnFWLog, BaseZeroCountsFromInfo) {
  g_priorities.clear();
  FW_RegisterLogger(collect, 0);
  Logger(7, "x");
  Logger(6, "x");
  Logger(4, "x");
  FW_UnregisterLogger();
  EXPECT_EQ(g_priorities, (std::vector<int>{1, 0, -2}));
}

TEST_F(TarnFWLog, ABaseIsAddedWhateverItsSize) {
  g_priorities.clear();
  FW_RegisterLogger(collect, 2147483647u);
  Logger(6, "x");
  Logger(7, "x");
  FW_RegisterLogger(collect, 4294967295u);
  Logger(6, "x");
  FW_UnregisterLogger();
  EXPECT_EQ(g_priorities, (std::vector<int>{2147483647, -2147483647 - 1, -1}));
}

TEST_F(TarnFWLog, UnregisteringClearsFunctionAndBase) {
  FW_RegisterLogger(collect, 9);
  EXPECT_EQ(gTarnFWLogger.load().base, 9u);
  FW_UnregisterLogger();
  EXPECT_EQ(gTarnFWLogger.load().function, nullptr);
  EXPECT_EQ(gTarnFWLogger.load().base, 0u);
}

TEST_F(TarnFWLog, ComposesTheLineWithTheComponentsName) {
  LogCapture log;
  EXPECT_EQ(FW_Log(7, 7, "a %d", 1), 0u);
  EXPECT_EQ(FW_Log(6, 0, "b %s", "x"), 0u);
  EXPECT_EQ(FW_Log(4, 18, "c"), 0u);
  EXPECT_EQ(FW_Log(3, 5, "d"), 0u);
  ASSERT_EQ(log.lines().size(), 4u);
  EXPECT_EQ(log.lines()[0].text, "[DEBUG(cmd)] a 1\n");
  EXPECT_EQ(log.lines()[0].priority, 7);
  EXPECT_EQ(log.lines()[1].text, "[INFO(misc)] b x\n");
  EXPECT_EQ(log.lines()[1].priority, 6);
  EXPECT_EQ(log.lines()[2].text, "[WARN(cache)] c\n");
  EXPECT_EQ(log.lines()[2].priority, 4);
  EXPECT_EQ(log.lines()[3].text, "[ERROR(io)] d\n");
  EXPECT_EQ(log.lines()[3].priority, 3);
}

TEST_F(TarnFWLog, AFormatOfAnyLengthComesOutWhole) {
  unsigned int component = 0;
  ASSERT_EQ(FW_RegisterComponent("%%%%%%%%%%%%%%%", &component), 0u);
  FWStatus_t (*const unchecked)(int, unsigned int, const char*, ...) = FW_Log;
  for (const std::size_t length :
       {0u, 1u, 900u, 960u, 970u, 980u, 990u, 1000u, 1010u, 1020u, 1030u, 3000u}) {
    LogCapture log;
    const std::string format(length, 'f');
    EXPECT_EQ(unchecked(7, component, format.c_str()), 0u);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].text, "[DEBUG(%%%%%%%%%%%%%%%)] " + format + "\n");
  }
}

TEST_F(TarnFWLog, LogsWhateverTheVerbosityLevelIs) {
  LogCapture log;
  g_tarnfw_verbose[7].level = 0;
  EXPECT_EQ(FW_Log(7, 7, "x"), 0u);
  EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(TarnFWLog, RefusesALevelThatIsNotOneOfTheFour) {
  LogCapture log;
  for (const int level : {-1, 0, 1, 2, 5, 8}) {
    log.clear();
    EXPECT_EQ(FW_Log(level, 0, "x"), 3u);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.normalized()[0], "3|tarnfw: TarnFWLibMain:FW_Log():N invalid log level " +
                                       std::to_string(level) + "\n");
  }
}

TEST_F(TarnFWLog, RefusesAComponentThatIsNotInUse) {
  LogCapture log;
  EXPECT_EQ(FW_Log(6, 19, "x"), 3u);
  EXPECT_EQ(FW_Log(6, 255, "x"), 3u);
  EXPECT_EQ(FW_Log(6, 4294967295u, "x"), 3u);
  EXPECT_EQ(FW_Log(5, 99, "x"), 3u);
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{
                "3|tarnfw: TarnFWLibMain:FW_Log():N invalid log component 19\n",
                "3|tarnfw: TarnFWLibMain:FW_Log():N invalid log component 255\n",
                "3|tarnfw: TarnFWLibMain:FW_Log():N invalid log component 4294967295\n",
                "3|tarnfw: TarnFWLibMain:FW_Log():N invalid log level 5\n"}));
}

TEST_F(TarnFWLog, ANullFormatIsRefusedSilently) {
  LogCapture log;
  FWStatus_t (*const unchecked)(int, unsigned int, const char*, ...) = FW_Log;
  EXPECT_EQ(unchecked(99, 99, nullptr), 3u);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarnFWLog, APercentSignInAComponentsNameIsPlainText) {
  LogCapture log;
  unsigned int component = 0;
  ASSERT_EQ(FW_RegisterComponent("50%n%s", &component), 0u);
  EXPECT_EQ(FW_Log(6, component, "x"), 0u);
  EXPECT_EQ(log.lines()[0].text, "[INFO(50%n%s)] x\n");
}

TEST_F(TarnFWLog, ComponentsHaveTheirNamesAndNumbers) {
  const char* const names[] = {"misc",     "api",    "library",  "lexer",   "parser",
                               "io",       "msgbuf", "cmd",      "address", "rule",
                               "protocol", "util",   "protobuf", "ploy",    "ipfix",
                               "flow",     "filter", "trie",     "cache"};
  ASSERT_EQ(FW_GetComponentCount(), 19u);
  for (unsigned int row = 0; row < 19; ++row) {
    EXPECT_STREQ(FW_ComponentToString(row), names[row]);
    EXPECT_STREQ(hulld_comp_name[row], names[row]);
    EXPECT_EQ(FW_StringToComponent(names[row]), row);
    EXPECT_EQ(g_tarnfw_verbose[row].predefined, 1u);
  }
  for (unsigned int row = 19; row < 64; ++row) {
    EXPECT_EQ(g_tarnfw_verbose[row].predefined, 0u);
    EXPECT_STREQ(g_tarnfw_verbose[row].name, "");
  }
  EXPECT_STREQ(FW_ComponentToString(255), "all");
  EXPECT_STREQ(FW_ComponentToString(19), "unknown");
  EXPECT_STREQ(FW_ComponentToString(4294967295u), "unknown");
}

TEST_F(TarnFWLog, KernelComponentsStandInTheOrderOfTheWire) {
  const char* const names[] = {"fastpath", "rule",     "table",  "icmp",   "tcp",    "udp",
                               "ioctl",    "norm",     "rpc",    "ftp",    "oracle", "tftp",
                               "ospf",     "msg2pf",   "layer7", "layer4", "layer3", "layer2",
                               "skiffer",  "syncache", "lb"};
  for (unsigned int i = 0; i < kTarnComponents; ++i) EXPECT_STREQ(tarn_comp_name[i], names[i]);
}

TEST_F(TarnFWLog, FindsAComponentIgnoringCase) {
  EXPECT_EQ(FW_StringToComponent("CMD"), 7u);
  EXPECT_EQ(FW_StringToComponent("nothing"), 64u);
  EXPECT_EQ(FW_StringToComponent(""), 64u);
  EXPECT_EQ(FW_StringToComponent(nullptr), 64u);
  EXPECT_EQ(FW_StringToComponent("Mine"), 64u);
  unsigned int component = 0;
  ASSERT_EQ(FW_RegisterComponent("mine", &component), 0u);
  ASSERT_EQ(FW_RegisterComponent("MINE", &component), 0u);
  EXPECT_EQ(FW_StringToComponent("Mine"), 19u);
}

TEST_F(TarnFWLog, RegistersANameOfFifteenCharactersAndRefusesSixteen) {
  unsigned int component = 0;
  EXPECT_EQ(FW_RegisterComponent("123456789012345", &component), 0u);
  EXPECT_EQ(component, 19u);
  EXPECT_STREQ(FW_ComponentToString(19), "123456789012345");
  EXPECT_EQ(g_tarnfw_verbose[19].predefined, 0u);
  EXPECT_EQ(FW_RegisterComponent("1234567890123456", &component), 3u);
  EXPECT_EQ(FW_RegisterComponent("x", nullptr), 3u);
  EXPECT_EQ(FW_RegisterComponent(nullptr, &component), 3u);
  EXPECT_EQ(FW_GetComponentCount(), 20u);
}

TEST_F(TarnFWLog, TheFortySixthRegistrationFindsNoRow) {
  unsigned int component = 0;
  for (int i = 0; i < 45; ++i) {
    ASSERT_EQ(FW_RegisterComponent(("own" + std::to_string(i)).c_str(), &component), 0u);
  }
  EXPECT_EQ(component, 63u);
  EXPECT_EQ(FW_RegisterComponent("late", &component), 56u);
  EXPECT_EQ(FW_RegisterComponent("1234567890123456", &component), 3u);
  EXPECT_EQ(FW_RegisterComponent("late", nullptr), 3u);
  EXPECT_EQ(component, 63u);
  EXPECT_EQ(FW_GetComponentCount(), 64u);
}

TEST_F(TarnFWLog, ARowRegisteredAgainKeepsItsLevel) {
  g_tarnfw_verbose[19].level = 4;
  unsigned int component = 0;
  ASSERT_EQ(FW_RegisterComponent("again", &component), 0u);
  unsigned int level = 0;
  EXPECT_EQ(FW_GetLibVerboseLevel(component, &level), 0u);
  EXPECT_EQ(level, 4u);
}

TEST_F(TarnFWLog, UnregisteringAComponentIsNotSupported) {
  EXPECT_EQ(FW_UnregisterComponent(3), 7u);
  EXPECT_EQ(FW_GetComponentCount(), 19u);
}

TEST_F(TarnFWLog, LevelOfAllReachesRowsAddedAtRunTime) {
  LogCapture log;
  unsigned int component = 0;
  ASSERT_EQ(FW_RegisterComponent("later", &component), 0u);
  FW_SetLibVerboseLevel(255, 2);
  unsigned int level = 0;
  EXPECT_EQ(FW_GetLibVerboseLevel(component, &level), 0u);
  EXPECT_EQ(level, 2u);
  EXPECT_EQ(FW_GetLibVerboseLevel(0, &level), 0u);
  EXPECT_EQ(level, 2u);
  FW_SetLibVerboseLevel(255, 0);
  for (const FWVerbose_& row : g_tarnfw_verbose) EXPECT_EQ(row.level, 0);
}

TEST_F(TarnFWLog, AnUnknownComponentChangesNothing) {
  LogCapture log;
  unsigned int level = 77;
  EXPECT_EQ(FW_GetLibVerboseLevel(19, &level), 55u);
  EXPECT_EQ(FW_GetLibVerboseLevel(255, &level), 55u);
  EXPECT_EQ(level, 77u);
  EXPECT_EQ(FW_GetLibVerboseLevel(19, nullptr), 55u);
  EXPECT_EQ(FW_GetLibVerboseLevel(18, nullptr), 3u);
  FW_SetLibVerboseLevel(19, 3);
  FW_SetLibVerboseLevel(64, 3);
  EXPECT_EQ(
      log.normalized(),
      (std::vector<std::string>{
          "4|tarnfw: TarnFWLibMain:FW_GetLibVerboseLevel():N attempting to get verbose level of "
          "unknown component 19\n",
          "4|tarnfw: TarnFWLibMain:FW_GetLibVerboseLevel():N attempting to get verbose level of "
          "unknown component 255\n",
          "4|tarnfw: TarnFWLibMain:FW_GetLibVerboseLevel():N attempting to get verbose level of "
          "unknown component 19\n",
          "4|tarnfw: TarnFWLibMain:FW_SetLibVerboseLevel():N attempting to set verbose level of "
          "unknown component 19\n",
          "4|tarnfw: TarnFWLibMain:FW_SetLibVerboseLevel():N attempting to set verbose level of "
          "unknown component 64\n"}));
  for (const FWVerbose_& row : g_tarnfw_verbose) EXPECT_EQ(row.level, 0);
}

TEST_F(TarnFWLog, LevelChangesAreLoggedWhenTheApiLevelIsUp) {
  LogCapture log;
  FW_SetLibVerboseLevel(7, 3);
  EXPECT_TRUE(log.lines().empty());
  FW_SetLibVerboseLevel(1, 1);
  FW_SetLibVerboseLevel(7, 2);
  unsigned int level = 0;
  EXPECT_EQ(FW_GetLibVerboseLevel(7, &level), 0u);
  EXPECT_EQ(
      log.normalized(),
      (std::vector<std::string>{
          "7|tarnfw:api TarnFWLibMain:FW_SetLibVerboseLevel():N set component api log level to 1\n",
          "7|tarnfw:api TarnFWLibMain:FW_SetLibVerboseLevel():N set component cmd log level to 2\n",
          "7|tarnfw:api TarnFWLibMain:FW_GetLibVerboseLevel():N got component 7 (cmd) log level "
          "2\n"}));
}

TEST_F(TarnFWLog, ALevelForAllIsLoggedForEachRowInUse) {
  LogCapture log;
  unsigned int component = 0;
  ASSERT_EQ(FW_RegisterComponent("later", &component), 0u);
  FW_SetLibVerboseLevel(1, 1);
  log.clear();
  FW_SetLibVerboseLevel(255, 3);
  std::vector<std::string> expected;
  for (unsigned int row = 0; row < 20; ++row) {
    expected.push_back("7|tarnfw:api TarnFWLibMain:FW_SetLibVerboseLevel():N set component " +
                       std::string(FW_ComponentToString(row)) + " log level to 3\n");
  }
  EXPECT_EQ(log.normalized(), expected);
  EXPECT_EQ(g_tarnfw_verbose[20].level, 0);
}

TEST_F(TarnFWLog, ATraceBelowItsLevelEvaluatesNoArgument) {
  LogCapture log;
  int calls = 0;
  const auto costly = [&calls] { return ++calls; };
  TARNFW_TRACE(FW_COMPONENT_IO, 1, "value %d\n", costly());
  g_tarnfw_verbose[FW_COMPONENT_IO].level = 1;
  TARNFW_TRACE(FW_COMPONENT_IO, 1, "value %d\n", costly());
  EXPECT_EQ(calls, 0);
  g_tarnfw_verbose[FW_COMPONENT_IO].level = 2;
  TARNFW_TRACE(FW_COMPONENT_IO, 1, "value %d\n", costly());
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{"7|tarnfw:io TarnFWLogTest:TestBody():N value 1\n"}));
}

TEST_F(TarnFWLog, ThePrinterStaysUntilTheOutputOfACommandEnds) {
  std::string out;
  FW_SetLibPrettyPrinting(print, &out);
  std::atomic<bool> replaced = false;
  std::thread other;
  {
    const PrettyPrinting printing;
    other = std::thread([&replaced] {
      FW_SetLibPrettyPrinting(nullptr, nullptr);
      replaced = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(replaced);
    EXPECT_EQ(g_tarnfw_pretty_printing, print);
  }
  other.join();
  EXPECT_EQ(g_tarnfw_pretty_printing, nullptr);
}

TEST_F(TarnFWLog, ThePrinterGetsItsContextAndANullFunctionTurnsItOff) {
  std::string out;
  FW_SetLibPrettyPrinting(print, &out);
  {
    const PrettyPrinting printing;
    ASSERT_TRUE(static_cast<bool>(printing));
    EXPECT_EQ(printing.print(printing.context, "%d rules\n", 3), 8);
  }
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  const PrettyPrinting off;
  EXPECT_FALSE(static_cast<bool>(off));
  EXPECT_EQ(off.context, nullptr);
  EXPECT_EQ(out, "3 rules\n");
}

namespace {

constexpr unsigned int kThreads = 16;

/// Two loggers that know the base they were registered with, and the lines that came with another.
std::atomic<int> g_lines;
std::atomic<int> g_strayLines;

template <unsigned int Base>
void expectBase(int priority, const char*, va_list) {
  ++g_lines;
  const int relative = priority - static_cast<int>(Base);
  if (relative < LOG_ERR - LOG_INFO || relative > LOG_DEBUG - LOG_INFO) ++g_strayLines;
}

/// Runs `body(thread)` in all threads at once.
template <typename Body>
void inThreads(const Body& body) {
  std::atomic<unsigned int> waiting = kThreads;
  std::vector<std::thread> threads;
  for (unsigned int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&body, &waiting, thread] {
      --waiting;
      while (waiting != 0) std::this_thread::yield();
      body(thread);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

TEST_F(TarnFWLog, AThreadNeverLogsThroughOneLoggerWithTheBaseOfAnother) {
  g_lines = 0;
  g_strayLines = 0;
  FW_RegisterLogger(expectBase<1000>, 1000);
  inThreads([](unsigned int thread) {
    for (int turn = 0; turn < 2000; ++turn) {
      if (thread % 4 != 0) {
        Logger(LOG_WARNING, "line %d\n", turn);
      } else if (turn % 2 == 0) {
        FW_RegisterLogger(expectBase<2000>, 2000);
      } else {
        FW_RegisterLogger(expectBase<1000>, 1000);
      }
    }
  });
  FW_UnregisterLogger();
  EXPECT_EQ(g_lines, 12 * 2000);
  EXPECT_EQ(g_strayLines, 0);
}

TEST_F(TarnFWLog, ThreadsThatRegisterComponentsGetARowEach) {
  std::vector<std::set<unsigned int>> rows(kThreads);
  std::atomic<int> refused = 0;
  std::atomic<int> torn = 0;
  inThreads([&](unsigned int thread) {
    for (int turn = 0; turn < 4; ++turn) {
      const std::string name = "c" + std::to_string(thread) + "." + std::to_string(turn);
      unsigned int row = 0;
      if (FW_RegisterComponent(name.c_str(), &row) != FW_STATUS_OK) {
        ++refused;
      } else {
        rows[thread].insert(row);
        if (FW_ComponentToString(row) != name || FW_StringToComponent(name.c_str()) != row) ++torn;
      }
      for (unsigned int other = 0; other < FW_GetComponentCount(); ++other) {
        if (*FW_ComponentToString(other) == '\0') ++torn;
      }
    }
  });
  std::set<unsigned int> all;
  for (const auto& own : rows) all.insert(own.begin(), own.end());
  EXPECT_EQ(all.size(), kComponentRows - FW_COMPONENT_PREDEFINED);
  EXPECT_EQ(refused, static_cast<int>(4 * kThreads - all.size()));
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(FW_GetComponentCount(), kComponentRows);
}

TEST_F(TarnFWLog, LevelsMayBeSetWhileOthersLog) {
  g_lines = 0;
  FW_RegisterLogger(expectBase<0>, 0);
  inThreads([](unsigned int thread) {
    for (int turn = 0; turn < 500; ++turn) {
      const auto level = static_cast<unsigned int>(turn % 3);
      unsigned int read = 0;
      switch (thread % 4) {
        case 0:
          FW_SetLibVerboseLevel(FW_COMPONENT_ALL, level);
          break;
        case 1:
          FW_SetLibVerboseLevel(FW_COMPONENT_CMD, level);
          break;
        case 2:
          EXPECT_EQ(FW_GetLibVerboseLevel(FW_COMPONENT_CMD, &read), FW_STATUS_OK);
          EXPECT_LT(read, 3u);
          break;
        default:
          TARNFW_TRACE(FW_COMPONENT_CMD, 0, "turn %d\n", turn);
      }
    }
  });
  FW_SetLibVerboseLevel(FW_COMPONENT_ALL, 0);
  const int lines = g_lines;
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "off\n");
  FW_UnregisterLogger();
  EXPECT_EQ(g_lines, lines);
}

TEST(TarnFWStatus, ThreadsHaveTheirOwnTextOfAnUnknownStatus) {
  std::atomic<int> wrong = 0;
  inThreads([&](unsigned int thread) {
    const std::string expected = "unknown error code: " + std::to_string(1000 + thread);
    for (int turn = 0; turn < 500; ++turn) {
      if (FW_StatusToString(1000 + thread) != expected) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
}
