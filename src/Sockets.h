#pragma once

/// A TCP client socket with exceptions instead of return codes.

#include <exception>
#include <memory>
#include <string>

namespace Sockets {

/// Base of what a socket throws.
class SocketException : public std::exception {};

/// The peer closed the connection.
class SocketShutdown : public SocketException {
 public:
  const char* what() const noexcept override { return "SocketShutdown"; }
};

/// A failing call, with its name, its error number and the descriptor, so that a log line names
/// what failed. For `getaddrinfo` the number is its own result code.
class SocketError : public SocketException {
 public:
  SocketError(const char* call, int error, int descriptor);

  const char* what() const noexcept override { return text_.c_str(); }
  const char* call() const noexcept { return call_; }
  int error() const noexcept { return error_; }
  int descriptor() const noexcept { return descriptor_; }

 private:
  const char* call_;
  int error_;
  int descriptor_;
  std::string text_;
};

enum SocketType_t : int {
  SOCKET_TCP = 0,
};

/// One connection, or none. Owns its descriptor, and belongs to one thread.
class Socket {
 public:
  Socket() = default;

  /// Takes the descriptor over.
  explicit Socket(int descriptor) : descriptor_(descriptor) {}

  /// Connects at once, blocking.
  Socket(const char* address, const char* port);

  virtual ~Socket();
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  /// Connects to the first IPv4 address of `address`; an earlier connection is closed. Without
  /// `block` the connection may still be in progress on return: wait, then read `GetErrorStatus`.
  /// A null argument throws `std::invalid_argument`, a failing call `SocketError`; the socket is
  /// closed then.
  virtual void Connect(const char* address, const char* port, bool block);
  void Connect(const char* address, const char* port) { Connect(address, port, true); }

  /// -1 when closed.
  int GetDescriptor() const { return descriptor_; }

  /// The pending `SO_ERROR`, 0 when there is none.
  int GetErrorStatus() const;

  /// Both do nothing on a closed socket.
  void Close();
  void Shutdown();

  void SetBlockingMode(bool block);
  void SetNonBlocking() { SetBlockingMode(false); }
  void SetBlocking() { SetBlockingMode(true); }
  void SetNoDelay();

  /// Bytes moved by one call; 0 with `wouldBlock` set when the socket isn't ready. `wouldBlock` is
  /// false otherwise. No signal is raised when the peer is gone. `Recv` throws `SocketShutdown` at
  /// the end of the stream.
  unsigned long Send(const unsigned char* buffer, unsigned long size, bool& wouldBlock);
  unsigned long Recv(unsigned char* buffer, unsigned long size, bool& wouldBlock);

  /// Move all of `size` bytes, or less when a non-blocking socket isn't ready. Return the bytes
  /// moved. An end of the stream throws also when some bytes had arrived.
  unsigned long SendAll(const unsigned char* buffer, unsigned long size);
  unsigned long RecvAll(unsigned char* buffer, unsigned long size);

 private:
  int descriptor_ = -1;
};

class SocketFactory {
 public:
  /// A connected socket. A type other than `SOCKET_TCP` throws `CUnknownSocketTypeException`.
  static std::unique_ptr<Socket> createSocket(SocketType_t type, const char* address,
                                              const char* port);
};

}  // namespace Sockets
