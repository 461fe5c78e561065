#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

/// A TCP listener on the loopback address, at a port of the system's choice.
class LoopbackListener {
 public:
  LoopbackListener() : descriptor_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(::bind(descriptor_, reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(::listen(descriptor_, 4), 0);
    EXPECT_EQ(::getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    port_ = std::to_string(ntohs(address.sin_port));
  }
  ~LoopbackListener() { close(); }
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;

  const char* port() const { return port_.c_str(); }

  /// The accepted descriptor; the caller closes it.
  int accept() const { return ::accept(descriptor_, nullptr, nullptr); }

  void close() {
    if (descriptor_ != -1) ::close(descriptor_);
    descriptor_ = -1;
  }

 private:
  int descriptor_;
  std::string port_;
};

/// Two connected stream sockets. `ours` is for the object under test, `peer` stays the test's.
struct StreamPair {
  int ours = -1;
  int peer = -1;

  StreamPair() {
    int both[2] = {-1, -1};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, both), 0);
    ours = both[0];
    peer = both[1];
  }
  ~StreamPair() { closePeer(); }
  StreamPair(const StreamPair&) = delete;
  StreamPair& operator=(const StreamPair&) = delete;

  void closePeer() {
    if (peer != -1) ::close(peer);
    peer = -1;
  }

  /// What has arrived at the peer, without waiting for more.
  std::vector<std::uint8_t> arrived() const {
    std::vector<std::uint8_t> bytes(65536);
    const ssize_t size = ::recv(peer, bytes.data(), bytes.size(), MSG_DONTWAIT);
    bytes.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return bytes;
  }
};
