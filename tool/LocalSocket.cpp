#include "LocalSocket.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

LocalSocket::~LocalSocket() {
  if (descriptor_ != -1) ::close(descriptor_);
}

bool LocalSocket::open() {
  descriptor_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
  return descriptor_ != -1;
}

bool LocalSocket::connect(const char* path, std::size_t length) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path, length);
  // The NUL after the path is not counted.
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + length);
  return ::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), size) == 0;
}

bool LocalSocket::send(const void* bytes, std::size_t size) {
  const auto* left = static_cast<const char*>(bytes);
  while (size != 0) {
    const ssize_t sent = ::send(descriptor_, left, size, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent < 0) return false;
    left += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

long LocalSocket::receive(void* buffer, std::size_t size) {
  for (;;) {
    const ssize_t received = ::recv(descriptor_, buffer, size, 0);
    if (received >= 0 || errno != EINTR) return received;
  }
}
