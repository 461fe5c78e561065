#pragma once

#include <sys/un.h>

#include <cstddef>

/// A stream to a process of this host, which listens at a path. Interrupted transfers go on. What
/// fails leaves its reason in `errno`; a peer that has gone is such a failure, and no signal.
class LocalSocket {
 public:
  LocalSocket() = default;
  ~LocalSocket();
  LocalSocket(const LocalSocket&) = delete;
  LocalSocket& operator=(const LocalSocket&) = delete;

  /// Makes the socket, once. False on failure.
  bool open();

  /// Connects it to the process at a path. False on failure.
  template <std::size_t Size>
  bool connect(const char (&path)[Size]) {
    static_assert(Size <= sizeof sockaddr_un::sun_path);
    return connect(path, Size - 1);
  }

  /// Sends all of it, in as many pieces as the peer takes. False on failure.
  bool send(const void* bytes, std::size_t size);

  /// Receives a piece of at most `size` bytes: how many there are, 0 at the end of the stream, -1
  /// on failure.
  long receive(void* buffer, std::size_t size);

 private:
  bool connect(const char* path, std::size_t length);

  int descriptor_ = -1;
};
