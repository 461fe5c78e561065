// What a program sees that runs in a lab: programs that it starts.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "PreloadedProgram.h"

namespace {

constexpr const char* vmList = "/bin/tarn_vm_list.sh";
constexpr const char* machines =
    "1002672:50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26\n"
    "1002731:50 2e 1f 3a c2 1a 63 2b-4a e1 00 50 56 99 b6 2d\n"
    "1003044:50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77\n"
    "1003120:50 2e 1f 3a c2 1a 70 12-4a e1 00 50 56 99 10 7e\n"
    "998214:50 2e 1f 3a c2 1a 04 51-4a e1 00 50 56 99 1e 37\n";

/// Everything that comes out of a pipe whose writing end is the caller's.
std::string readAll(int pipe[2]) {
  ::close(pipe[1]);
  std::string text;
  char piece[256];
  for (ssize_t got = 0; (got = ::read(pipe[0], piece, sizeof piece)) > 0;) {
    text.append(piece, static_cast<std::size_t>(got));
  }
  ::close(pipe[0]);
  return text;
}

/// Whether a call that starts a program has found none. It may say so by the status of its child,
/// as it does under valgrind, whose children share no memory with their parent.
bool foundNone(int error, pid_t child) {
  return error == ENOENT || (error == 0 && WEXITSTATUS(waitFor(child)) == 127);
}

using Spawn = decltype(&::posix_spawn);

std::string spawned(Spawn spawn, char* const* environment) {
  int out[2];
  EXPECT_EQ(::pipe(out), 0);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, out[1], 1);
  char name[] = "/bin/tarn_vm_list.sh";
  char* const arguments[] = {name, nullptr};
  pid_t child = -1;
  EXPECT_EQ(spawn(&child, name, &actions, nullptr, arguments, environment), 0);
  ::posix_spawn_file_actions_destroy(&actions);
  const std::string text = readAll(out);
  EXPECT_EQ(waitFor(child), 0);
  return text;
}

TEST(LabPreloadSpawn, TheHostsListOfMachinesIsTheLabs) {
  EXPECT_EQ(::access(vmList, F_OK), -1) << "there is no such file";
  EXPECT_EQ(spawned(::posix_spawn, environ), machines);
  EXPECT_EQ(spawned(::posix_spawnp, environ), machines);
  char* const nothing[] = {nullptr};
  EXPECT_EQ(spawned(::posix_spawn, nothing), machines) << "also without an environment";
  std::FILE* stream = ::popen("/bin/tarn_vm_list.sh", "r");
  ASSERT_NE(stream, nullptr);
  char line[100] = {};
  EXPECT_NE(std::fgets(line, sizeof line, stream), nullptr);
  EXPECT_EQ(line, std::string(machines, 56));
  ::pclose(stream);
}

TEST(LabPreloadSpawn, EveryFormOfExecFindsTheListOfMachines) {
  static char name[] = "/bin/tarn_vm_list.sh";
  static char* const arguments[] = {name, nullptr};
  void (*const forms[])() = {[] { ::execv(name, arguments); }, [] { ::execvp(name, arguments); },
                             [] { ::execve(name, arguments, environ); },
                             [] { ::execvpe(name, arguments, environ); }};
  for (const auto form : forms) {
    int out[2];
    ASSERT_EQ(::pipe(out), 0);
    const pid_t child = ::vfork();
    if (child == 0) {
      ::dup2(out[1], 1);
      form();
      ::_exit(9);
    }
    EXPECT_EQ(readAll(out), machines);
    EXPECT_EQ(waitFor(child), 0);
  }
}

TEST(LabPreloadSpawn, OtherProgramsAreStartedAsTheyAre) {
  char name[] = "/bin/sh", option[] = "-c", script[] = "exit 7";
  char* const arguments[] = {name, option, script, nullptr};
  pid_t child = -1;
  ASSERT_EQ(::posix_spawn(&child, name, nullptr, nullptr, arguments, environ), 0);
  EXPECT_EQ(WEXITSTATUS(waitFor(child)), 7);
  child = ::vfork();
  if (child == 0) {
    ::execv(name, arguments);
    ::_exit(9);
  }
  EXPECT_EQ(WEXITSTATUS(waitFor(child)), 7);
  char missing[] = "/bin/tarn_vm_list";
  const int error = ::posix_spawn(&child, missing, nullptr, nullptr, arguments, environ);
  EXPECT_TRUE(foundNone(error, child)) << error;
  EXPECT_EQ(::execv(missing, arguments), -1);
  EXPECT_EQ(errno, ENOENT);
}

using ForkExec = int(const char*, char* const*, int, int, const int*, int, int, int, int, int*);

ForkExec* hostsCall() {
  return reinterpret_cast<ForkExec*>(::dlsym(RTLD_DEFAULT, "RudderCompat_ForkExec"));
}

TEST(LabPreloadSpawn, TheHostsSpawnCallGivesAChildItsThreeStreamsAndNoMore) {
  ASSERT_NE(hostsCall(), nullptr);
  int in[2], out[2], error[2];
  for (int* each : {in, out, error}) ASSERT_EQ(::pipe(each), 0);
  char name[] = "/bin/sh", option[] = "-c";
  char script[] =
      "cat; echo error >&2; for fd in /proc/self/fd/*; do [ -e $fd ] && echo ${fd##*/}; done; exit "
      "0";
  char* const arguments[] = {name, option, script, nullptr};
  const int streams[] = {in[0], out[1], error[1]};
  int child = -1;
  ASSERT_EQ(hostsCall()(name, arguments, 0, -1, streams, 3, -1, -1, 0, &child), 0);
  ::close(in[0]);
  EXPECT_EQ(::write(in[1], "in\n", 3), 3);
  ::close(in[1]);
  EXPECT_EQ(readAll(out), "in\n0\n1\n2\n");
  EXPECT_EQ(readAll(error), "error\n");
  EXPECT_EQ(waitFor(child), 0);
}

TEST(LabPreloadSpawn, TheStreamsOfTheHostsSpawnCallMayStandInEachOthersPlace) {
  int out[2];
  ASSERT_EQ(::pipe(out), 0);
  // In a child, where standard streams can change places: output goes out by 0, errors by 1.
  const pid_t caller = ::fork();
  if (caller == 0) {
    ::dup2(out[1], 0);
    ::dup2(out[1], 1);
    const int streams[] = {2, 0, 1};
    char name[] = "/bin/sh", option[] = "-c", script[] = "echo out; echo error >&2";
    char* const arguments[] = {name, option, script, nullptr};
    int child = -1;
    if (hostsCall()(name, arguments, 0, -1, streams, 3, -1, -1, 0, &child) != 0) ::_exit(1);
    ::_exit(::waitpid(child, nullptr, 0) == child ? 0 : 2);
  }
  EXPECT_EQ(readAll(out), "out\nerror\n");
  EXPECT_EQ(waitFor(caller), 0);
}

TEST(LabPreloadSpawn, TheHostsSpawnCallStartsTheListOfMachines) {
  int out[2];
  ASSERT_EQ(::pipe(out), 0);
  const int streams[] = {0, out[1], 2};
  char name[] = "/bin/tarn_vm_list.sh";
  char* const arguments[] = {name, nullptr};
  int child = -1;
  ASSERT_EQ(hostsCall()(name, arguments, 0, -1, streams, 3, -1, -1, 0, &child), 0);
  EXPECT_EQ(readAll(out), machines);
  EXPECT_EQ(waitFor(child), 0);
}

TEST(LabPreloadSpawn, TheHostsSpawnCallRefusesWhatItDoesNotHave) {
  const int streams[] = {0, 1, 2}, closed[] = {0, -1, 2};
  char name[] = "/bin/true", missing[] = "/bin/no-such-program";
  char* const arguments[] = {name, nullptr};
  int child = -5;
  ForkExec* const call = hostsCall();
  const int error = call(missing, arguments, 0, -1, streams, 3, -1, -1, 0, &child);
  EXPECT_TRUE(foundNone(error, child)) << error;
  child = -5;
  EXPECT_EQ(call(nullptr, arguments, 0, -1, streams, 3, -1, -1, 0, &child), EINVAL);
  EXPECT_EQ(call(name, nullptr, 0, -1, streams, 3, -1, -1, 0, &child), EINVAL);
  EXPECT_EQ(call(name, arguments, 0, -1, nullptr, 3, -1, -1, 0, &child), EINVAL);
  EXPECT_EQ(call(name, arguments, 0, -1, streams, 3, -1, -1, 0, nullptr), EINVAL);
  EXPECT_EQ(call(name, arguments, 0, -1, streams, 2, -1, -1, 0, &child), EINVAL);
  EXPECT_EQ(call(name, arguments, 1, -1, streams, 3, -1, -1, 0, &child), EINVAL);
  EXPECT_EQ(call(name, arguments, 0, -1, closed, 3, -1, -1, 0, &child), EBADF);
  EXPECT_EQ(child, -5);
}

}  // namespace
