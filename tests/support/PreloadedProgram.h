// What the tests share that run as a program of a lab.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
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

inline constexpr const char* device = "/dev/brq-tarn";

struct [[gnu::packed]] Frame {
  std::uint32_t command;
  std::uint32_t status;
  std::uint32_t length;
  std::uint64_t address;
};

/// Asks for the number of filters; -1 when the descriptor is no firewall device.
inline int filters(int fd) {
  std::vector<unsigned char> body(116);
  Frame frame{20, 0, 116, reinterpret_cast<std::uintptr_t>(body.data())};
  if (::ioctl(fd, 20, &frame) != 0) return -1;
  return body[100];
}

inline int openDescriptors() {
  return static_cast<int>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

/// The status with which a child ended.
inline int waitFor(pid_t child) {
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status;
}

inline constexpr const char* traceSocket = "/var/run/kelpco/hulld_trace";
inline constexpr const char* marker = "/etc/kelpco/hulld/enable_trace";

/// Connects as programs do, with an address of the path's length and 2. The descriptor, or -1.
inline int connected(const char* path, int type = SOCK_STREAM) {
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
inline std::string askStatus(int fd) {
  char message[260] = {'t', 'c', 'A', 10};
  if (::send(fd, message, sizeof message, MSG_NOSIGNAL) != 260) return "";
  std::string text;
  char piece[64];
  for (ssize_t got = 0; (got = ::recv(fd, piece, sizeof piece, 0)) > 0;) {
    text.append(piece, static_cast<std::size_t>(got));
  }
  return text.substr(0, text.find('\n'));
}

inline std::string status() {
  const int fd = connected(traceSocket);
  if (fd < 0) return std::strerror(errno);
  std::string text = askStatus(fd);
  ::close(fd);
  return text;
}

inline void runTarnlab(const std::string& arguments) {
  const std::string command = "\"$TARNLAB_PROGRAM\" " + arguments;
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

/// The sockets of this lab's peers, of whatever process.
inline int peerSockets() {
  struct stat home {};
  EXPECT_EQ(::stat(std::getenv("TARNLAB_HOME"), &home), 0);
  const std::string ours = "@tarnlab-" + std::to_string(home.st_ino) + "-";
  std::ifstream table("/proc/net/unix");
  EXPECT_TRUE(table.is_open());
  int count = 0;
  for (std::string line; std::getline(table, line);) count += line.find(ours) != line.npos;
  return count;
}

inline int threads() {
  return static_cast<int>(
      std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

/// After every test no thread, socket or descriptor of a peer is left. A thread that has ended is
/// there a moment longer.
class PreloadedBesidePeers : public ::testing::Test {
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
  /// The thread sanitizer starts a thread of its own with the first of the program.
  static int threadsWithTheSanitizers() {
    std::thread([] {}).join();
    return threads();
  }

  int threadsBefore_ = threadsWithTheSanitizers();
  int descriptorsBefore_ = openDescriptors();
};

/// Whether the machine itself has that file, as the kernel says.
inline bool isOutside(const char* path) { return ::syscall(SYS_access, path, F_OK) == 0; }
