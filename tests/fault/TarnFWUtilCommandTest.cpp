#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "CallShim.h"
#include "DeviceShim.h"
#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnFWUtilCommand.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

/// What a script of the shell is given, and what of it is to be kept.
struct ScriptRun {
  std::string script;
  std::string input = {};
  int room = 4096;       // of the output, -1 for none
  int errorRoom = 4096;  // -1 for none
  unsigned int timeout = 0;

  UtilStatus_t result = -1;
  std::string output = {};  // the whole buffer up to its length
  int length = 0;
  std::string errors = {};
  double seconds = 0;

  void now() {
    std::string shell = "sh", option = "-c";
    char* const arguments[] = {shell.data(), option.data(), script.data(), nullptr};
    // What lies beyond the room must stay as it is.
    std::vector<char> out(static_cast<std::size_t>(std::max(room, 0)) + 8, '#');
    std::vector<char> err(static_cast<std::size_t>(std::max(errorRoom, 0)) + 8, '#');
    length = room;
    int errorLength = errorRoom;
    const auto start = std::chrono::steady_clock::now();
    result = RunCommandWithTimeout(
        "/bin/sh", arguments, room < 0 ? nullptr : out.data(), room < 0 ? nullptr : &length,
        errorRoom < 0 ? nullptr : err.data(), errorRoom < 0 ? nullptr : &errorLength,
        input.empty() ? nullptr : input.data(), static_cast<int>(input.size()), timeout);
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(std::string(out.end() - 8, out.end()), "########");
    EXPECT_EQ(std::string(err.end() - 8, err.end()), "########");
    if (room > 0 && result == 1) {
      ASSERT_GE(length, 0);
      ASSERT_LE(length, room);
      EXPECT_EQ(out[static_cast<std::size_t>(std::min(length, room - 1))], '\0');
      output.assign(out.data(), static_cast<std::size_t>(length));
    }
    if (errorRoom >= 0 && result == 1) {
      ASSERT_GE(errorLength, 0);
      ASSERT_LE(errorLength, errorRoom);
      errors.assign(err.data(), static_cast<std::size_t>(errorLength));
    }
  }
};

/// After every run nothing is left of it: no descriptor, no child, no signal.
class UtilCommand : public testing::Test {
 protected:
  UtilCommand() : descriptors_(openDescriptors()) { CallShim::setHostCall({}, nullptr); }
  ~UtilCommand() override {
    EXPECT_EQ(openDescriptors(), descriptors_);
    EXPECT_FALSE(hasChild());
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
  }

  const std::vector<int> descriptors_;
  LogCapture log_;
};

}  // namespace

TEST_F(UtilCommand, GivesTheInputAndTakesBothOutputs) {
  ScriptRun run{.script = "cat; echo problem >&2", .input = "one\ntwo\n"};
  run.now();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.output, "one\ntwo\n");
  EXPECT_EQ(run.errors, "problem\n");
  EXPECT_TRUE(log_.lines().empty());
}

TEST_F(UtilCommand, WithoutInputTheProgramFindsItsEnd) {
  ScriptRun run{.script = "cat; echo done"};
  run.now();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.output, "done\n");
}

TEST_F(UtilCommand, RunCommandHasNoTimeout) {
  std::string shell = "sh", option = "-c", script = "sleep 1.2; echo late";
  char* const arguments[] = {shell.data(), option.data(), script.data(), nullptr};
  char output[16];
  int length = sizeof output;
  EXPECT_EQ(RunCommand("/bin/sh", arguments, output, &length, nullptr, nullptr, nullptr, 0), 1);
  EXPECT_STREQ(output, "late\n");
  EXPECT_EQ(length, 5);
}

TEST_F(UtilCommand, TheExitStatusIsNoResult) {
  for (const char* script : {"exit 0", "exit 7", "kill -9 $$", "kill -15 $$"}) {
    ScriptRun run{.script = script};
    run.now();
    EXPECT_EQ(run.result, 1) << script;
    EXPECT_EQ(run.length, 0);
  }
}

TEST_F(UtilCommand, LogsItsFirstTenArgumentsAndTheEnd) {
  FW_SetLibVerboseLevel(FW_COMPONENT_UTIL, 1);
  std::vector<std::string> words{"sh", "-c", "exit 3"};
  for (int i = 3; i < 12; ++i) words.push_back(std::to_string(i));
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  EXPECT_EQ(RunCommand("/bin/sh", arguments.data(), nullptr, nullptr, nullptr, nullptr, nullptr, 0),
            1);
  ASSERT_EQ(log_.lines().size(), 11u);
  EXPECT_TRUE(log_.has(7, "/bin/sh: args[0](sh)\n"));
  EXPECT_TRUE(log_.has(7, "/bin/sh: args[9](9)\n"));
  EXPECT_TRUE(log_.has(7, "Reaped child /bin/sh, exit status = 3\n\n"));
  for (const LogCapture::Line& line : log_.lines())
    EXPECT_TRUE(line.text.starts_with("tarnfw:util TarnFWUtil:RunCommandWithTimeout():"))
        << line.text;
}

TEST_F(UtilCommand, OutputIsCutWithItsTerminatorInTheLastByte) {
  const std::string text = "0123456789";
  for (int room = 1; room <= 12; ++room) {
    ScriptRun run{.script = "printf 0123456789", .room = room};
    run.now();
    EXPECT_EQ(run.result, 1);
    EXPECT_EQ(run.length, std::min(room, 10)) << room;
    std::string kept = text.substr(0, static_cast<std::size_t>(run.length));
    if (room <= 10) kept.back() = '\0';
    EXPECT_EQ(run.output, kept) << room;
  }
}

TEST_F(UtilCommand, WithoutRoomNothingIsWritten) {
  for (const int room : {-1, 0}) {
    ScriptRun run{.script = "echo out; echo err >&2", .room = room, .errorRoom = room};
    run.now();
    EXPECT_EQ(run.result, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
  }
  ScriptRun negative{.script = "echo out"};
  std::string shell = "sh", option = "-c";
  char* const arguments[] = {shell.data(), option.data(), negative.script.data(), nullptr};
  char output = '#';
  int length = -5;
  EXPECT_EQ(RunCommand("/bin/sh", arguments, &output, &length, nullptr, nullptr, nullptr, 0), 1);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(output, '#');
}

TEST_F(UtilCommand, AFloodIsReadToItsEnd) {
  const std::string flood = "head -c 1000000 /dev/zero | tr '\\0' ";
  for (const char* where : {"", " >&2", " >&2; head -c 1000000 /dev/zero"}) {
    for (const int room : {-1, 100, 2'000'000}) {
      ScriptRun run{.script = flood + "x" + where, .room = room, .errorRoom = room};
      run.now();
      EXPECT_EQ(run.result, 1);
      if (room == 100) {
        EXPECT_EQ(run.length + static_cast<int>(run.errors.size()),
                  std::strlen(where) > 5 ? 200 : 100);
      }
    }
  }
  ScriptRun all{.script = flood + "x", .room = 1'000'001};
  all.now();
  EXPECT_EQ(all.output, std::string(1'000'000, 'x'));
}

TEST_F(UtilCommand, AProgramMayReadItsInputSlowlyOrLate) {
  ScriptRun slow{.script = "sleep 0.3; wc -c", .input = std::string(1'000'000, 'i')};
  slow.now();
  EXPECT_EQ(std::atoi(slow.output.c_str()), 1'000'000);
  // It writes more than a pipe holds first: neither may wait for the other.
  ScriptRun late{.script = "head -c 500000 /dev/zero; wc -c >&2",
                 .input = std::string(500'000, 'i'),
                 .room = 600'000};
  late.now();
  EXPECT_EQ(late.length, 500'000);
  EXPECT_EQ(std::atoi(late.errors.c_str()), 500'000);
}

TEST_F(UtilCommand, AProgramMayCloseItsInputEarly) {
  for (const char* script :
       {"exec <&-; sleep 0.2; echo done", "head -c 10 > /dev/null; echo done"}) {
    ScriptRun run{.script = script, .input = std::string(1'000'000, 'i')};
    run.now();
    EXPECT_EQ(run.result, 1);
    EXPECT_EQ(run.output, "done\n");
  }
}

TEST_F(UtilCommand, ASignalOfAnotherWriterStays) {
  sigset_t signal, before;
  sigemptyset(&signal);
  sigaddset(&signal, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signal, &before);
  raise(SIGPIPE);
  ScriptRun run{.script = "exec <&-; sleep 0.2", .input = std::string(1'000'000, 'i')};
  run.now();
  sigset_t pending;
  sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 1);
  const timespec none{};
  EXPECT_EQ(sigtimedwait(&signal, nullptr, &none), SIGPIPE);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(UtilCommand, AProgramMayCloseItsOutputsEarly) {
  ScriptRun run{.script = "echo out; echo err >&2; exec >&- 2>&-; sleep 0.3"};
  run.now();
  EXPECT_EQ(run.output, "out\n");
  EXPECT_EQ(run.errors, "err\n");
  EXPECT_GE(run.seconds, 0.3);
}

TEST_F(UtilCommand, ASilentProgramIsSentASignal) {
  FW_SetLibVerboseLevel(FW_COMPONENT_UTIL, 1);
  ScriptRun run{.script = "echo begun; exec sleep 20", .timeout = 1};
  run.now();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.output, "begun\n");
  EXPECT_GE(run.seconds, 1.0);
  EXPECT_LT(run.seconds, 10.0);
  const Lines lines = log_.normalized();
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
            (Lines{"4|tarnfw: TarnFWUtil:RunCommandWithTimeout():N "
                   "Kill stuck child process /bin/sh.\n",
                   "7|tarnfw:util TarnFWUtil:RunCommandWithTimeout():N "
                   "Reaped child /bin/sh, exit status = -15\n\n"}));
}

TEST_F(UtilCommand, SilentIsWhoWritesNothingToStandardOutput) {
  for (const char* script :
       {"while :; do echo still here >&2; sleep 0.2; done", "exec >&- 2>&-; exec sleep 20"}) {
    ScriptRun run{.script = script, .timeout = 1};
    run.now();
    EXPECT_EQ(run.result, 1);
    EXPECT_LT(run.seconds, 10.0) << script;
    EXPECT_TRUE(log_.has(4, "Kill stuck child process /bin/sh.\n"));
    log_.clear();
  }
}

TEST_F(UtilCommand, AProgramThatGoesOnWritingIsLeftAlone) {
  // With room for all of it, and after the room is used up.
  for (const int room : {4096, 3}) {
    ScriptRun run{.script = "for i in 1 2 3 4; do echo $i; sleep 0.5; done; echo end >&2",
                  .room = room,
                  .timeout = 1};
    run.now();
    EXPECT_EQ(run.errors, "end\n");
    EXPECT_TRUE(log_.lines().empty());
  }
}

TEST_F(UtilCommand, WithoutABufferForTheOutputThereIsNoTimeout) {
  ScriptRun run{.script = "sleep 1.3; echo end >&2", .room = -1, .timeout = 1};
  run.now();
  EXPECT_EQ(run.errors, "end\n");
  EXPECT_TRUE(log_.lines().empty());
}

TEST_F(UtilCommand, WhatTheProgramHasStartedIsNotWaitedFor) {
  ScriptRun run{.script = "sleep 6 & echo begun; wait", .timeout = 1};
  run.now();
  EXPECT_EQ(run.output, "begun\n");
  EXPECT_LT(run.seconds, 5.0);
}

TEST_F(UtilCommand, ASignalThatIsHandledIsWaitedFor) {
  ScriptRun run{.script =
                    "trap 'head -c 200000 /dev/zero; echo end >&2; exit' TERM;"
                    " while :; do sleep 0.1; done",
                .room = 300'000,
                .timeout = 1};
  run.now();
  EXPECT_EQ(run.length, 200'000);
  EXPECT_EQ(run.errors, "end\n");
}

TEST_F(UtilCommand, AProgramThatIsNotThereIsAFailure) {
  std::string name = "none";
  char* const arguments[] = {name.data(), nullptr};
  EXPECT_EQ(RunCommand("/none", arguments, nullptr, nullptr, nullptr, nullptr, nullptr, 0), 0);
  EXPECT_EQ(log_.normalized(), Lines{"3|tarnfw: TarnFWUtil:RunCommandWithTimeout():N "
                                     "Failed to fork child process (/none), status: 2\n\n"});
}

TEST_F(UtilCommand, PipesThatCannotBeMadeAreReported) {
  const char* const names[] = {"stderr", "stdout", "stdin"};
  for (unsigned int number = 0; number < 3; ++number) {
    log_.clear();
    const CallShim::Failing failing(number, EMFILE, "pipe2");
    ScriptRun run{.script = "echo out"};
    run.now();
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(log_.normalized(),
              Lines{"3|tarnfw: TarnFWUtil:RunCommandWithTimeout():N Failed to create " +
                    std::string(names[number]) + " pipe: " + std::to_string(EMFILE) + "\n\n"});
  }
}

TEST_F(UtilCommand, AReadEndThatStaysBlockingHasNoTimeout) {
  for (unsigned int number = 0; number < 2; ++number) {
    log_.clear();
    const CallShim::Failing failing(number, EINVAL, "fcntl");
    ScriptRun run{.script = "sleep 1.3; echo late", .timeout = 1};
    run.now();
    EXPECT_EQ(run.output, "late\n");
    EXPECT_EQ(log_.normalized(),
              Lines{"3|tarnfw: TarnFWUtil:RunCommandWithTimeout():N "
                    "Use blocking read to read from child /bin/sh: Invalid argument\n"});
  }
}

TEST_F(UtilCommand, WhateverFailsNothingIsLeftOver) {
  unsigned int failures = 0;
  for (unsigned int number = 0;; ++number) {
    log_.clear();
    ScriptRun run{.script = "cat; echo problem >&2", .input = "input", .timeout = 5};
    std::string failed;
    {
      const CallShim::Failing failing(number, EIO);
      run.now();
      if (failing.reached()) failed = failing.name();
    }
    EXPECT_EQ(openDescriptors(), descriptors_) << failed;
    // A child that was not to be waited for: there is none, as far as the caller was told.
    if (failed == "waitpid") wait(nullptr);
    EXPECT_FALSE(hasChild()) << failed;
    EXPECT_LT(run.seconds, 5.0) << failed;
    if (failed.empty()) break;
    ++failures;
    if (failed == "pipe2" || failed.rfind("posix_spawn", 0) == 0) {
      EXPECT_EQ(run.result, 0) << failed;
      EXPECT_EQ(log_.lines().size(), 1u) << failed;
    } else {
      EXPECT_EQ(run.result, 1) << failed;
    }
  }
  EXPECT_GE(failures, 15u);
}

TEST_F(UtilCommand, ShortAndInterruptedCallsAreGoneOnWith) {
  const CallShim::ShortCalls calls(7);
  ScriptRun run{.script = "cat; echo problem >&2", .input = std::string(1000, 'i')};
  run.now();
  EXPECT_EQ(run.output, run.input);
  EXPECT_EQ(run.errors, "problem\n");
}

TEST_F(UtilCommand, TheProgramHasItsStandardStreamsOnly) {
  // As the control devices are opened, which stay open for as long as the process runs.
  const int device = open("/dev/null", O_RDWR);
  ASSERT_GT(device, STDERR_FILENO);
  ScriptRun run{.script = "for i in 0 1 2 " + std::to_string(device) +
                          "; do [ -e /proc/$$/fd/$i ] && echo $i; done"};
  run.now();
  close(device);
  EXPECT_EQ(run.output, "0\n1\n2\n");
}

TEST_F(UtilCommand, AProcessWithoutStandardStreamsRunsItTheSame) {
  EXPECT_FRESH([] {
    close(0);
    close(1);
    ScriptRun run{.script = "cat; echo problem >&2", .input = "input"};
    run.now();
    EXPECT_EQ(run.output, "input");
    EXPECT_EQ(run.errors, "problem\n");
    open("/dev/null", O_RDWR);
    open("/dev/null", O_RDWR);
  });
}
