#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "CallShim.h"

/// A folder in the place of "/var/run/kelpco" and "/etc/kelpco", with nothing in it but the folder
/// of the daemon's settings.
class HostFolder {
 public:
  HostFolder() {
    char name[] = "/tmp/tarnfw-host-XXXXXX";
    EXPECT_NE(mkdtemp(name), nullptr);
    root_ = name;
    std::filesystem::create_directories(root_ + "/etc/hulld");
    std::filesystem::create_directory(root_ + "/run");
    run_ = std::make_unique<CallShim::Moved>("/var/run/kelpco", root_ + "/run");
    etc_ = std::make_unique<CallShim::Moved>("/etc/kelpco", root_ + "/etc");
  }
  ~HostFolder() {
    etc_.reset();
    run_.reset();
    std::filesystem::remove_all(root_);
  }
  HostFolder(const HostFolder&) = delete;
  HostFolder& operator=(const HostFolder&) = delete;

  std::string run(const std::string& name) const { return root_ + "/run/" + name; }
  std::string etc(const std::string& name) const { return root_ + "/etc/" + name; }

 private:
  std::string root_;
  std::unique_ptr<CallShim::Moved> run_;
  std::unique_ptr<CallShim::Moved> etc_;
};

/// A process of the host that listens at a path and talks to the one program that connects. It says
/// all that it has to say as soon as that has connected, and ends its side of the stream then.
class LocalPeer {
 public:
  explicit LocalPeer(const std::string& path, std::string reply = "")
      : path_(path),
        reply_(std::move(reply)),
        listener_(static_cast<int>(syscall(SYS_socket, AF_UNIX, SOCK_STREAM, 0))),
        onConnect_("connect", 0, [this] { answer(); }) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    EXPECT_LT(path_.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, path_.c_str(), path_.size());
    EXPECT_EQ(::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listener_, 1), 0);
  }
  ~LocalPeer() {
    close();
    ::close(listener_);
    ::unlink(path_.c_str());
  }
  LocalPeer(const LocalPeer&) = delete;
  LocalPeer& operator=(const LocalPeer&) = delete;

  bool wasReached() const { return reached_; }

  /// All that the program has sent, once it has ended.
  std::string sent() {
    std::string all;
    char piece[4096];
    for (ssize_t size; stream_ != -1 && (size = receive(piece, sizeof piece)) > 0;)
      all.append(piece, static_cast<std::size_t>(size));
    return all;
  }

  /// Goes away.
  void close() {
    if (stream_ != -1) ::close(stream_);
    stream_ = -1;
  }

 private:
  // None of the calls that the shim lets fail.
  ssize_t receive(char* piece, std::size_t size) const {
    return ::recvfrom(stream_, piece, size, 0, nullptr, nullptr);
  }
  ssize_t say(const std::string& text) const {
    return ::sendto(stream_, text.data(), text.size(), 0, nullptr, 0);
  }

  void answer() {
    stream_ = ::accept(listener_, nullptr, nullptr);
    reached_ = stream_ != -1;
    if (!reply_.empty()) {
      EXPECT_EQ(say(reply_), static_cast<ssize_t>(reply_.size()));
    }
    EXPECT_EQ(::shutdown(stream_, SHUT_WR), 0);
  }

  std::string path_;
  std::string reply_;
  int listener_;
  int stream_ = -1;
  bool reached_ = false;
  CallShim::After onConnect_;
};
