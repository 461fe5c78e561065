// What a program sees that runs in a lab: the devices and the system log. This program is run by
// "tarnlab run".
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "PreloadedProgram.h"

// What the C library's headers call when a program is built with checks.
extern "C" void __syslog_chk(int, int, const char*, ...);

namespace {

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

TEST(LabPreload, AChildHasTheDeviceThatItsParentOpened) {
  const int fd = ::open(device, O_RDWR);
  const pid_t child = ::fork();
  if (child == 0) ::_exit(filters(fd));
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 8);
  ::close(fd);
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
