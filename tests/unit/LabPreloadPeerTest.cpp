// What a program sees that runs in a lab: the host's processes.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "PreloadedProgram.h"

namespace {

using LabPreloadPeer = PreloadedBesidePeers;

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

}  // namespace
