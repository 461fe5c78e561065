// The host's own call. It is looked up once in a process, so each test has a process of its own and
// they run before the others.

#include <gtest/gtest.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

#include "CallShim.h"
#include "DeviceShim.h"
#include "LogCapture.h"
#include "TarnFWUtilCommand.h"
#include "TarnFWUtilSpawn.h"

using Lines = std::vector<std::string>;

namespace {

/// What the host's call was given, and what it gives.
struct HostSpawn {
  std::string path;
  Lines arguments;
  std::array<int, 7> numbers{};
  int result = 0;
  bool starts = true;
};
HostSpawn g_spawn;

int hostSpawn(const char* path, char* const* arguments, int first, int second,
              const int* descriptors, int count, int third, int fourth, int fifth, int* pid) {
  g_spawn.path = path;
  for (; *arguments != nullptr; ++arguments) g_spawn.arguments.emplace_back(*arguments);
  g_spawn.numbers = {first, second, count, third, fourth, fifth, 0};
  if (g_spawn.result != 0) return g_spawn.result;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int i = 0; i < count; ++i) posix_spawn_file_actions_adddup2(&actions, descriptors[i], i);
  std::string shell = "sh", option = "-c", script = "cat; echo error >&2";
  char* const words[] = {shell.data(), option.data(), script.data(), nullptr};
  const int result = posix_spawn(pid, "/bin/sh", &actions, nullptr, words, environ);
  posix_spawn_file_actions_destroy(&actions);
  return result;
}

void runByTheHost(CallShim::HostCall where, const Lines& lookUps) {
  CallShim::setHostCall(where, reinterpret_cast<void*>(hostSpawn));
  for (int time = 0; time < 2; ++time) {
    g_spawn = {};
    std::string name = "name", argument = "argument";
    char* const arguments[] = {name.data(), argument.data(), nullptr};
    char output[16], errors[16];
    int length = sizeof output, errorLength = sizeof errors;
    EXPECT_EQ(RunCommand("/bin/program", arguments, output, &length, errors, &errorLength, "in", 2),
              1);
    EXPECT_STREQ(output, "in");
    EXPECT_EQ(std::string(errors, static_cast<std::size_t>(errorLength)), "error\n");
    EXPECT_EQ(g_spawn.path, "/bin/program");
    EXPECT_EQ(g_spawn.arguments, (Lines{"name", "argument"}));
    EXPECT_EQ(g_spawn.numbers, (std::array<int, 7>{0, -1, 3, -1, -1, 0, 0}));
    EXPECT_EQ(CallShim::lookUps(), lookUps) << "it is looked up once";
  }
}

}  // namespace

TEST(UtilSpawn, TakesTheHostsCallThatIsLoaded) {
  EXPECT_FRESH(
      [] { runByTheHost(CallShim::HostCall::kLoaded, {"default RudderCompat_ForkExec"}); });
}

TEST(UtilSpawn, TakesTheHostsCallOfItsLibrary) {
  EXPECT_FRESH([] {
    runByTheHost(CallShim::HostCall::kInLibrary,
                 {"default RudderCompat_ForkExec", "librudder.so.0 RudderCompat_ForkExec"});
  });
}

TEST(UtilSpawn, AFailureOfTheHostsCallIsReported) {
  EXPECT_FRESH([] {
    const std::vector<int> descriptors = openDescriptors();
    CallShim::setHostCall(CallShim::HostCall::kLoaded, reinterpret_cast<void*>(hostSpawn));
    g_spawn.result = -7;
    char* const arguments[] = {nullptr};
    LogCapture log;
    EXPECT_EQ(RunCommand("/bin/sh", arguments, nullptr, nullptr, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_TRUE(log.has(3, "Failed to fork child process (/bin/sh), status: -7\n\n"));
  });
}

TEST(UtilSpawn, WithoutAProcessIdNobodyIsWaitedForOrEnded) {
  EXPECT_FRESH([] {
    using Call = int (*)(const char*, char* const*, int, int, const int*, int, int, int, int, int*);
    const Call none = [](const char*, char* const*, int, int, const int*, int, int, int, int,
                         int*) { return 0; };
    CallShim::setHostCall(CallShim::HostCall::kLoaded, reinterpret_cast<void*>(none));
    char* const arguments[] = {nullptr};
    char output[8];
    int length = sizeof output;
    EXPECT_EQ(RunCommandWithTimeout("/bin/sh", arguments, output, &length, nullptr, nullptr,
                                    nullptr, 0, 1),
              1);
    EXPECT_EQ(length, 0);
  });
}
