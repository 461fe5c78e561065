// What a program sees that runs in a lab. This program is run by "tarnlab run".
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

// What the C library's headers call when a program is built with checks.
extern "C" int __open_2(const char*, int);
extern "C" int __open64_2(const char*, int);
extern "C" int __openat_2(int, const char*, int);
extern "C" int __openat64_2(int, const char*, int);
extern "C" void __syslog_chk(int, int, const char*, ...);

namespace {

constexpr const char* device = "/dev/brq-tarn";

struct [[gnu::packed]] Frame {
  std::uint32_t command;
  std::uint32_t status;
  std::uint32_t length;
  std::uint64_t address;
};

/// Asks for the number of filters; -1 when the descriptor is no firewall device.
int filters(int fd) {
  std::vector<unsigned char> body(116);
  Frame frame{20, 0, 116, reinterpret_cast<std::uintptr_t>(body.data())};
  if (::ioctl(fd, 20, &frame) != 0) return -1;
  return body[100];
}

int openDescriptors() {
  return static_cast<int>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

TEST(LabPreload, EveryFormOfOpenReachesTheDevice) {
  const int before = openDescriptors();
  // Outside a lab some of the forms would make a file of the device's name.
  const int there = ::open(device, O_RDWR);
  ASSERT_GE(there, 0) << "this program is run by tarnlab run";
  EXPECT_EQ(::close(there), 0);
  for (int fd :
       {::open(device, O_RDWR), ::open64(device, O_RDWR), ::open("/dev/tarn", O_RDWR),
        ::openat(AT_FDCWD, device, O_RDWR), ::openat64(-1, device, O_RDWR),
        __open_2(device, O_RDWR), __open64_2(device, O_RDWR), __openat_2(AT_FDCWD, device, O_RDWR),
        __openat64_2(AT_FDCWD, device, O_RDWR), ::open(device, O_RDWR | O_CREAT, 0600),
        ::creat(device, 0600), ::creat64(device, 0600)}) {
    EXPECT_EQ(filters(fd), 8);
    EXPECT_EQ(::close(fd), 0);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST(LabPreload, TheOtherDevicesAreThere) {
  for (const char* path : {"/dev/weirgatetbl", "/dev/brq-tarn-ploy"}) {
    const int fd = ::open(path, O_RDWR | O_CLOEXEC);
    ASSERT_GE(fd, 0) << path;
    EXPECT_NE(::fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
    errno = 0;
    EXPECT_EQ(::ioctl(fd, 99, nullptr), -1);
    EXPECT_EQ(errno, ENOTTY);
    ::close(fd);
  }
}

TEST(LabPreload, EveryCopyOfADescriptorIsTheDeviceToo) {
  const int fd = ::open(device, O_RDWR);
  ASSERT_GE(fd, 0);
  const int copies[] = {::dup(fd),
                        ::dup2(fd, 200),
                        ::dup3(fd, 201, O_CLOEXEC),
                        ::fcntl(fd, F_DUPFD, 202),
                        ::fcntl(fd, F_DUPFD_CLOEXEC, 203),
                        ::dup2(fd, fd)};
  for (const int copy : copies) EXPECT_EQ(filters(copy), 8) << copy;
  const int plain = ::open("/dev/zero", O_RDONLY);
  EXPECT_EQ(::dup2(plain, 200), 200);
  EXPECT_EQ(filters(200), -1) << "a descriptor that was replaced is no device any more";
  for (const int copy : {copies[0], 200, 201, 202, 203, plain, fd}) ::close(copy);
  EXPECT_EQ(filters(fd), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST(LabPreload, ADescriptorClosedWithoutItsNoticeIsNoDevice) {
  const int fd = ::open(device, O_RDWR);
  ASSERT_GE(fd, 0);
  std::FILE* stream = ::fdopen(fd, "r+");
  ASSERT_NE(stream, nullptr);
  std::fclose(stream);
  const int again = ::open("/dev/zero", O_RDONLY);
  EXPECT_EQ(again, fd);
  EXPECT_EQ(filters(again), -1);
  EXPECT_EQ(errno, ENOTTY);
  ::close(again);
}

TEST(LabPreload, NullThatTakesTheNumberOfADeviceIsNoDevice) {
  const int fd = ::open(device, O_RDWR);
  ASSERT_GE(fd, 0);
  std::FILE* stream = ::fdopen(fd, "r+");
  ASSERT_NE(stream, nullptr);
  std::fclose(stream);
  const int again = ::open("/dev/null", O_RDWR);
  EXPECT_EQ(again, fd);
  EXPECT_EQ(filters(again), -1);
  EXPECT_EQ(errno, ENOTTY);
  ::close(again);
}

TEST(LabPreload, WhatAChildOfVforkClosesItsParentStillHas) {
  const int fd = ::open(device, O_RDWR);
  const int plain = ::open("/dev/zero", O_RDONLY);
  const pid_t child = ::vfork();
  if (child == 0) {
    ::close(fd);
    ::dup2(plain, fd);
    ::_exit(0);
  }
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  EXPECT_EQ(filters(fd), 8);
  ::close(plain);
  ::close(fd);
}

/// Asks without taking memory, as a handler of a signal may.
int filtersNow(int fd) {
  unsigned char body[116] = {};
  Frame frame{20, 0, 116, reinterpret_cast<std::uintptr_t>(body)};
  return ::ioctl(fd, 20, &frame) == 0 ? body[100] : -1;
}

#ifndef __SANITIZE_THREAD__  // which forbids a handler the memory that the model takes
int handlersDevice = -1;

TEST(LabPreload, AHandlerThatAsksWhileARequestIsAnsweredDoesNotWaitForItself) {
  handlersDevice = ::open(device, O_RDWR);
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(60);  // ends a child that is stuck
    struct sigaction action {};
    action.sa_handler = [](int) {
      if (filtersNow(handlersDevice) != 8) ::_exit(1);
    };
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGPROF, &action, nullptr);
    const itimerval often{{0, 1000}, {0, 1000}};
    ::setitimer(ITIMER_PROF, &often, nullptr);
    for (int turn = 0; turn < 1000; ++turn) {
      if (filtersNow(handlersDevice) != 8) ::_exit(2);
    }
    ::_exit(0);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  ::close(handlersDevice);
}
#endif

TEST(LabPreload, ARequestIsNotWhereAThreadIsCancelled) {
  int fd = ::open(device, O_RDWR);
  static std::atomic<int> answer;
  answer = 0;
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    ::pthread_cancel(::pthread_self());
    answer = filtersNow(*static_cast<int*>(argument));
    return nullptr;
  };
  ASSERT_EQ(::pthread_create(&thread, nullptr, run, &fd), 0);
  ASSERT_EQ(::pthread_join(thread, nullptr), 0);
  EXPECT_EQ(answer, 8);
  ::close(fd);
}

TEST(LabPreload, TheNumberOfARequestHas32Bits) {
  const int fd = ::open(device, O_RDWR);
  unsigned char body[116] = {};
  Frame frame{20, 0, 116, reinterpret_cast<std::uintptr_t>(body)};
  EXPECT_EQ(::ioctl(fd, 20ul | 1ul << 32, &frame), 0);
  EXPECT_EQ(body[100], 8);
  ::close(fd);
}

TEST(LabPreload, EverythingElsePassesThrough) {
  char name[] = "/tmp/tarnlab-preload.XXXXXX";
  ::close(::mkstemp(name));
  const int fd = ::open(name, O_RDWR | O_CREAT | O_TRUNC, 0640);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(::write(fd, "text", 4), 4);
  int waiting = 0;
  EXPECT_EQ(::ioctl(fd, FIONREAD, &waiting), 0);
  EXPECT_EQ(::fcntl(fd, F_GETFL) & O_ACCMODE, O_RDWR);
  EXPECT_EQ(::close(fd), 0);
  ::unlink(name);
  const std::string folder = std::string(name) + ".d";
  ASSERT_EQ(::mkdir(folder.c_str(), 0700), 0);
  const int in = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
  const ::mode_t mask = ::umask(0);
  const int made = ::openat(in, "made", O_WRONLY | O_CREAT | O_EXCL, 0604);
  ::umask(mask);
  struct stat status {};
  EXPECT_EQ(::fstat(made, &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0604u);
  ::close(made);
  ::close(in);
  std::filesystem::remove_all(folder);

  EXPECT_EQ(::open("/dev/brq-tarn-", O_RDWR), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(::open("/dev/brq", O_RDWR), -1);
  EXPECT_EQ(::close(-1), -1);
  EXPECT_EQ(errno, EBADF);
  EXPECT_EQ(::ioctl(-1, 20, nullptr), -1);
  EXPECT_EQ(errno, EBADF);
  EXPECT_EQ(::ioctl(1 << 20, 20, nullptr), -1);
  EXPECT_EQ(errno, EBADF);
#ifndef __SANITIZE_THREAD__  // whose own open reads the path
  const char* volatile nowhere = reinterpret_cast<const char*>(16);
  EXPECT_EQ(::open(nowhere, O_RDONLY), -1);
  EXPECT_EQ(errno, EFAULT);
  const char* volatile beyond = reinterpret_cast<const char*>(~std::uintptr_t{0});
  EXPECT_EQ(::open(beyond, O_RDONLY), -1);
  EXPECT_EQ(errno, EFAULT);
#endif
}

TEST(LabPreload, BadAddressesAreAnErrorAndNoCrash) {
  const int fd = ::open(device, O_RDWR);
  for (const std::uintptr_t address : {std::uintptr_t{0}, std::uintptr_t{1}, ~std::uintptr_t{0}}) {
    errno = 0;
    EXPECT_EQ(::ioctl(fd, 15, address), -1);
    EXPECT_EQ(errno, EFAULT);
  }
  ::close(fd);
}

TEST(LabPreload, ARequestThatSucceedsLeavesErrnoAlone) {
  const int fd = ::open(device, O_RDWR);
  errno = EXDEV;
  EXPECT_EQ(filters(fd), 8);
  EXPECT_EQ(errno, EXDEV);
  ::close(fd);
}

TEST(LabPreload, ThreadsOpenAskAndCloseAtOnce) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([] {
      for (int turn = 0; turn < 100; ++turn) {
        const int fd = ::open(device, O_RDWR);
        EXPECT_EQ(filters(fd), 8);
        EXPECT_EQ(::close(fd), 0);
        const int plain = ::open("/dev/zero", O_RDONLY);
        EXPECT_EQ(filters(plain), -1);
        ::close(plain);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

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

/// The status with which a child ended.
int waitFor(pid_t child) {
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status;
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

TEST(LabPreload, TheHostsListOfMachinesIsTheLabs) {
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

TEST(LabPreload, EveryFormOfExecFindsTheListOfMachines) {
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

TEST(LabPreload, OtherProgramsAreStartedAsTheyAre) {
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

TEST(LabPreload, TheHostsSpawnCallGivesAChildItsThreeStreamsAndNoMore) {
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

TEST(LabPreload, TheStreamsOfTheHostsSpawnCallMayStandInEachOthersPlace) {
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

TEST(LabPreload, TheHostsSpawnCallStartsTheListOfMachines) {
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

TEST(LabPreload, TheHostsSpawnCallRefusesWhatItDoesNotHave) {
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

TEST(LabPreload, AChildHasTheDeviceThatItsParentOpened) {
  const int fd = ::open(device, O_RDWR);
  const pid_t child = ::fork();
  if (child == 0) ::_exit(filters(fd));
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 8);
  ::close(fd);
}

// --- The host's processes and files

constexpr const char* traceSocket = "/var/run/kelpco/hulld_trace";
constexpr const char* marker = "/etc/kelpco/hulld/enable_trace";

/// Connects as programs do, with an address of the path's length and 2. The descriptor, or -1.
int connected(const char* path, int type = SOCK_STREAM) {
  const int fd = ::socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  std::strcpy(name.sun_path, path);
  const auto size = static_cast<socklen_t>(std::strlen(path) + 2);
  if (::connect(fd, reinterpret_cast<const sockaddr*>(&name), size) == 0) return fd;
  const int error = errno;
  ::close(fd);
  errno = error;
  return -1;
}

/// Asks the host daemon for its status over a descriptor; the first line of the answer.
std::string askStatus(int fd) {
  char message[260] = {'t', 'c', 'A', 10};
  if (::send(fd, message, sizeof message, MSG_NOSIGNAL) != 260) return "";
  std::string text;
  char piece[64];
  for (ssize_t got = 0; (got = ::recv(fd, piece, sizeof piece, 0)) > 0;) {
    text.append(piece, static_cast<std::size_t>(got));
  }
  return text.substr(0, text.find('\n'));
}

std::string status() {
  const int fd = connected(traceSocket);
  if (fd < 0) return std::strerror(errno);
  std::string text = askStatus(fd);
  ::close(fd);
  return text;
}

void runTarnlab(const std::string& arguments) {
  const std::string command = "\"$TARNLAB_PROGRAM\" " + arguments;
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

/// The sockets of this lab's peers, of whatever process.
int peerSockets() {
  struct stat home {};
  EXPECT_EQ(::stat(std::getenv("TARNLAB_HOME"), &home), 0);
  const std::string ours = "@tarnlab-" + std::to_string(home.st_ino) + "-";
  std::ifstream table("/proc/net/unix");
  EXPECT_TRUE(table.is_open());
  int count = 0;
  for (std::string line; std::getline(table, line);) count += line.find(ours) != line.npos;
  return count;
}

int threads() {
  return static_cast<int>(
      std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

/// After every test no thread, socket or descriptor of a peer is left. A thread that has ended is
/// there a moment longer.
class LabPreloadPeer : public ::testing::Test {
 protected:
  void TearDown() override { expectNothingLeft(); }

  void expectNothingLeft() const {
    const auto left = [&] {
      return threads() > threadsBefore_ || peerSockets() > 0 ||
             openDescriptors() > descriptorsBefore_;
    };
    for (int turn = 0; turn < 2000 && left(); ++turn) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_LE(threads(), threadsBefore_);
    EXPECT_EQ(peerSockets(), 0);
    EXPECT_LE(openDescriptors(), descriptorsBefore_);
  }

 private:
  int threadsBefore_ = threads();
  int descriptorsBefore_ = openDescriptors();
};

/// Whether the machine itself has that file, as the kernel says.
bool isOutside(const char* path) { return ::syscall(SYS_access, path, F_OK) == 0; }

TEST_F(LabPreloadPeer, TheHostDaemonAnswersAndNothingIsLeftOfIt) {
  for (int turn = 0; turn < 20; ++turn) EXPECT_EQ(status(), "tracing: off");
}

TEST_F(LabPreloadPeer, ManyThreadsTalkToPeersAtOnce) {
  std::vector<std::thread> all;
  for (int t = 0; t < 8; ++t) {
    all.emplace_back([] {
      for (int turn = 0; turn < 10; ++turn) EXPECT_EQ(status(), "tracing: off");
    });
  }
  for (std::thread& thread : all) thread.join();
}

TEST_F(LabPreloadPeer, TheAddressOfAPeerIsReadAsFarAsItGoes) {
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
  struct {
    sockaddr_un name;
    char after[8];
  } address{};
  address.name.sun_family = AF_UNIX;
  std::strcpy(address.name.sun_path, traceSocket);
  const auto* name = reinterpret_cast<const sockaddr*>(&address.name);
  const auto whole = static_cast<socklen_t>(2 + std::strlen(traceSocket));
  EXPECT_EQ(::connect(fd, name, whole - 1), -1) << "another name, which is not there";
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(::connect(fd, name, sizeof address), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(::connect(fd, name, 2), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(::connect(fd, name, sizeof address.name), 0);
  EXPECT_EQ(::connect(fd, name, sizeof address.name), -1) << "connected already";
  EXPECT_EQ(errno, EISCONN);
  ::close(fd);
  EXPECT_EQ(::connect(-1, name, whole), -1);
  EXPECT_EQ(errno, EBADF);
  EXPECT_EQ(connected(traceSocket, SOCK_DGRAM), -1);
  EXPECT_EQ(errno, EPROTOTYPE);
}

TEST_F(LabPreloadPeer, WhatIsNoSocketOfAPeerIsNoPeer) {
  EXPECT_EQ(connected("/var/run/kelpco/nobody"), -1);
  EXPECT_EQ(errno, ENOENT);
  const int fd = ::open("/var/run/kelpco/plain", O_WRONLY | O_CREAT | O_EXCL, 0600);
  ASSERT_GE(fd, 0);
  ::close(fd);
  EXPECT_EQ(connected("/var/run/kelpco/plain"), -1);
  EXPECT_EQ(errno, ECONNREFUSED);
  ASSERT_EQ(::unlink(traceSocket), 0);
  EXPECT_EQ(connected(traceSocket), -1);
  EXPECT_EQ(errno, ENOENT);
  ASSERT_EQ(::rename("/var/run/kelpco/plain", traceSocket), 0);
  EXPECT_EQ(connected(traceSocket), -1) << "a plain file in its place";
  EXPECT_EQ(errno, ECONNREFUSED);
  runTarnlab("reset");
  EXPECT_EQ(status(), "tracing: off");
}

TEST_F(LabPreloadPeer, AProgramOfTheLabMayListenItself) {
  ASSERT_EQ(::unlink(traceSocket), 0);
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  std::strcpy(name.sun_path, traceSocket);
  ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
  EXPECT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&name), sizeof name), -1);
  EXPECT_FALSE(isOutside(traceSocket));
  ASSERT_EQ(::listen(listener, 1), 0);
  const int fd = connected(traceSocket);
  ASSERT_GE(fd, 0);
  const int served = ::accept(listener, nullptr, nullptr);
  ASSERT_GE(served, 0);
  EXPECT_EQ(::send(served, "own", 3, 0), 3);
  char text[4] = {};
  EXPECT_EQ(::recv(fd, text, 3, 0), 3);
  EXPECT_STREQ(text, "own");
  for (const int each : {fd, served, listener}) ::close(each);
  EXPECT_EQ(status(), "tracing: off") << "nobody listens any more, so the lab's own peer answers";
}

TEST_F(LabPreloadPeer, APeerThatIsKeptAwayIsNotThere) {
  runTarnlab("fault peer absent --count 1");
  EXPECT_EQ(connected(traceSocket), -1);
  EXPECT_EQ(errno, ENOENT);
  runTarnlab("fault peer refuse --count 1");
  EXPECT_EQ(connected(traceSocket), -1);
  EXPECT_EQ(errno, ECONNREFUSED);
  runTarnlab("fault peer close --count 1");
  const int fd = connected(traceSocket);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(::send(fd, "t", 1, MSG_NOSIGNAL), -1) << "closed before the first byte";
  EXPECT_EQ(errno, EPIPE);
  ::close(fd);
  EXPECT_EQ(status(), "tracing: off");
}

TEST_F(LabPreloadPeer, APeerEndsWithAProgramThatIsKilled) {
  for (const char* fault : {"silent", "endless", "slow 60000"}) {
    runTarnlab(std::string("fault peer ") + fault + " --count 1");
    int ready[2];
    ASSERT_EQ(::pipe2(ready, O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      const int fd = connected(traceSocket);
      const char message[260] = {'t', 'c', 'A', 10};
      const bool sent = ::send(fd, message, sizeof message, 0) == 260;
      if (!sent || ::write(ready[1], "r", 1) != 1) ::_exit(1);
      for (;;) ::pause();
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_EQ(peerSockets(), 1) << fault;
    ::kill(child, SIGKILL);
    EXPECT_EQ(waitFor(child), SIGKILL);
    ::close(ready[0]);
    ::close(ready[1]);
    expectNothingLeft();
  }
}

TEST_F(LabPreloadPeer, APeerEndsWhenItsProgramClosesOrExits) {
  runTarnlab("fault peer silent");
  const int fd = connected(traceSocket);
  const char message[260] = {'t', 'c', 'A', 10};
  ASSERT_EQ(::send(fd, message, sizeof message, 0), 260);
  ::close(fd);
  expectNothingLeft();
  runTarnlab("fault clear");

  // What a program sends last is read, also when it ends at once.
  std::fflush(stdout);  // which the child's exit would write once more
  const pid_t child = ::fork();
  if (child == 0) {
    const int last = connected("/var/run/kelpco/vdpi_stats_channel");
    const std::uint32_t enable[] = {4, 66};
    std::exit(::send(last, enable, sizeof enable, 0) == 8 ? 0 : 1);
  }
  EXPECT_EQ(waitFor(child), 0);
  runTarnlab("show | grep -q 'the inspection process traces'");
  EXPECT_EQ(peerSockets(), 0);
}

TEST_F(LabPreloadPeer, AChildThatWasForkedBesideAConnectionDoesNotWaitForIt) {
  runTarnlab("fault peer silent --count 1");
  const int fd = connected(traceSocket);
  const char message[260] = {'t', 'c', 'A', 10};
  ASSERT_EQ(::send(fd, message, sizeof message, 0), 260);
  const auto start = std::chrono::steady_clock::now();
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) std::exit(status() == "tracing: off" ? 0 : 1);
  EXPECT_EQ(waitFor(child), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
  ::close(fd);
}

TEST_F(LabPreloadPeer, EveryFormOfOpenMakesTheHostsFilesInTheLab) {
  ASSERT_FALSE(isOutside(marker));
  const auto form = [](int fd) {
    EXPECT_GE(fd, 0) << std::strerror(errno);
    ::close(fd);
    EXPECT_FALSE(isOutside(marker));
    EXPECT_EQ(::unlink(marker), 0);
  };
  const int make = O_WRONLY | O_CREAT | O_EXCL;
  form(::open(marker, make, 0644));
  form(::open64(marker, make, 0644));
  form(::openat(AT_FDCWD, marker, make, 0644));
  form(::openat64(-1, marker, make, 0644));
  form(::creat(marker, 0644));
  form(::creat64(marker, 0644));
  for (const auto& open : {&::fopen, &::fopen64}) {
    std::FILE* stream = open(marker, "w");
    ASSERT_NE(stream, nullptr);
    std::fclose(stream);
    EXPECT_FALSE(isOutside(marker));
    EXPECT_EQ(::remove(marker), 0);
  }
  const ::mode_t mask = ::umask(0);
  EXPECT_EQ(::close(::open(marker, make, 0640)), 0);
  ::umask(mask);
  EXPECT_EQ(::open(marker, make, 0644), -1);
  EXPECT_EQ(errno, EEXIST);
  for (const int fd : {__open_2(marker, O_RDONLY), __open64_2(marker, O_RDONLY),
                       __openat_2(-1, marker, O_RDONLY), __openat64_2(-1, marker, O_RDONLY)}) {
    EXPECT_GE(fd, 0);
    ::close(fd);
  }
  EXPECT_EQ(status(), "tracing: on");
  EXPECT_EQ(::unlink(marker), 0);
}

TEST_F(LabPreloadPeer, EveryLookAtAFileSeesTheLabs) {
  EXPECT_EQ(::access(marker, F_OK), -1);
  ASSERT_EQ(::close(::creat(marker, 0600)), 0);
  struct stat seen {};
  struct stat64 seen64 {};
  struct statx seenx {};
  EXPECT_EQ(::access(marker, R_OK), 0);
  EXPECT_EQ(::eaccess(marker, R_OK), 0);
  EXPECT_EQ(::euidaccess(marker, R_OK), 0);
  EXPECT_EQ(::faccessat(AT_FDCWD, marker, R_OK, 0), 0);
  EXPECT_EQ(::stat(marker, &seen), 0);
  EXPECT_EQ(::lstat(marker, &seen), 0);
  EXPECT_EQ(::fstatat(-1, marker, &seen, 0), 0);
  EXPECT_EQ(::stat64(marker, &seen64), 0);
  EXPECT_EQ(::lstat64(marker, &seen64), 0);
  EXPECT_EQ(::fstatat64(-1, marker, &seen64, 0), 0);
  EXPECT_EQ(::statx(-1, marker, 0, STATX_MODE, &seenx), 0);
  EXPECT_EQ(seenx.stx_mode & 0777, 0600);
  EXPECT_EQ(::chmod(marker, 0604), 0);
  EXPECT_EQ(::truncate(marker, 5), 0);
  const timespec times[] = {{1000, 0}, {2000, 0}};
  EXPECT_EQ(::utimensat(AT_FDCWD, marker, times, 0), 0);
  EXPECT_EQ(::stat(marker, &seen), 0);
  EXPECT_EQ(seen.st_mode & 0777, 0604u);
  EXPECT_EQ(seen.st_size, 5);
  EXPECT_EQ(seen.st_mtime, 2000);
  EXPECT_EQ(::stat(traceSocket, &seen), 0);
  EXPECT_TRUE(S_ISSOCK(seen.st_mode));
  DIR* folder = ::opendir("/etc/kelpco/hulld");
  ASSERT_NE(folder, nullptr);
  int found = 0;
  while (const dirent* entry = ::readdir(folder)) found += entry->d_name[0] == 'e';
  ::closedir(folder);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(::unlinkat(AT_FDCWD, marker, 0), 0);
  EXPECT_EQ(::access(marker, F_OK), -1);
}

TEST_F(LabPreloadPeer, FilesAndFoldersOfTheHostAreMadeMovedAndRemoved) {
  ASSERT_EQ(::mkdir("/etc/kelpco/made", 0755), 0);
  ASSERT_EQ(::mkdirat(-1, "/etc/kelpco/made/inner", 0755), 0);
  ASSERT_EQ(::close(::creat("/etc/kelpco/made/one", 0600)), 0);
  EXPECT_EQ(::rename("/etc/kelpco/made/one", "/var/run/kelpco/two"), 0);
  EXPECT_EQ(::renameat(-1, "/var/run/kelpco/two", -1, "/var/run/kelpco/three"), 0);
  EXPECT_EQ(::renameat2(-1, "/var/run/kelpco/three", -1, "/etc/kelpco/four", 0), 0);
  std::FILE* stream = ::freopen("/etc/kelpco/four", "w", ::fopen("/dev/null", "w"));
  ASSERT_NE(stream, nullptr);
  std::fputs("text", stream);
  stream = ::freopen64("/etc/kelpco/four", "r", stream);
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(std::fgetc(stream), 't');
  std::fclose(stream);
  for (const char* path : {"/etc/kelpco/made", "/etc/kelpco/four"}) EXPECT_FALSE(isOutside(path));
  EXPECT_EQ(::unlink("/etc/kelpco/four"), 0);
  EXPECT_EQ(::rmdir("/etc/kelpco/made/inner"), 0);
  EXPECT_EQ(::rmdir("/etc/kelpco/made"), 0);
}

TEST_F(LabPreloadPeer, OnlyTheHostsOwnFoldersAreMoved) {
  for (const char* path : {"/etc/kelpco/../hostname-of-nobody", "/etc/kelpcos",
                           "/etc/kelpco/hulld/..", "/var/run/kelpc", "etc/kelpco"}) {
    EXPECT_EQ(::access(path, F_OK) == 0, isOutside(path)) << path;
  }
  EXPECT_EQ(::access("/etc/kelpco/hulld/..", F_OK), -1) << "for the kernel, which has no such";
  EXPECT_EQ(::access("/etc/kelpco/..name", F_OK), -1);
  EXPECT_EQ(::access("/etc/kelpco", F_OK), 0);
  EXPECT_EQ(::access("/etc/kelpco/", F_OK), 0);
  const std::string longest = "/etc/kelpco/" + std::string(4000, 'n');
  EXPECT_EQ(::access(longest.c_str(), F_OK), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
  const std::string longer = "/etc/kelpco/" + std::string(2000, '/') + std::string(2100, '/');
  EXPECT_EQ(::access(longer.c_str(), F_OK), -1);
  EXPECT_EQ(errno, ENAMETOOLONG);
#ifndef __SANITIZE_THREAD__  // whose own calls read the path
  const char* volatile nowhere = reinterpret_cast<const char*>(16);
  EXPECT_EQ(::access(nowhere, F_OK), -1);
  EXPECT_EQ(errno, EFAULT);
#endif
}

// --- The system log

/// The last lines of the lab's log with what went to the system log, in short form.
std::string lastLines(int count) {
  std::fflush(stdout);
  const std::string command = "\"$TARNLAB_PROGRAM\" log -s -l -n " + std::to_string(count);
  std::FILE* stream = ::popen(command.c_str(), "r");
  std::string text;
  for (int c = 0; stream != nullptr && (c = std::fgetc(stream)) != EOF;) {
    text += static_cast<char>(c);
  }
  EXPECT_EQ(::pclose(stream), 0);
  return text;
}

[[gnu::format(printf, 2, 3)]] void write(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  ::vsyslog(priority, format, arguments);
  va_end(arguments);
}

TEST(LabPreload, WhatGoesToTheSystemLogIsInTheLabsLogToo) {
  const int fd = ::open(device, O_RDWR);
  ::openlog("tester", LOG_PID, LOG_LOCAL3);
  errno = ENOSPC;
  void (*const form)(int, const char*, ...) = ::syslog;  // %m is no format of the standard
  form(LOG_ERR, "no %s: %m\n\n", "room");
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(filters(fd), 8);
  write(LOG_DAEMON | LOG_DEBUG, "%d and\n%d", 1, 2);
  __syslog_chk(LOG_INFO, 1, "checked %u", 3u);
  EXPECT_EQ(lastLines(4),
            "syslog local3.err tester: no room: No space left on device\n"
            "firewall 20: number of filters of every agent = ok {count 8}\n"
            "syslog daemon.debug tester: 1 and\\x0a2\n"
            "syslog local3.info tester: checked 3\n");
  ::closelog();
  ::syslog(LOG_NOTICE, "after");
  EXPECT_EQ(lastLines(1), "syslog local3.notice tarnlab_preloaded: after\n")
      << "a program without a name in the log has its own";
  ::close(fd);
}

TEST(LabPreload, AMessageThatIsHeldBackOrTooLongIsNoneOrCut) {
  const std::string before = lastLines(1);
  const int mask = ::setlogmask(LOG_UPTO(LOG_ERR));
  ::syslog(LOG_INFO, "held back");
  EXPECT_EQ(lastLines(1), before);
  ::setlogmask(mask);
  const std::string text(100000, 'l');
  ::syslog(LOG_INFO, "%s", text.c_str());
  const std::string line = lastLines(1);
  EXPECT_EQ(line.size() - line.find("lllll"), 65537u) << "64 KiB and the line's end";
  ::syslog(LOG_INFO, "%s", "");
  EXPECT_TRUE(lastLines(1).ends_with(": \n"));
}

}  // namespace
