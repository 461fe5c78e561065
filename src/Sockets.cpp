#include "Sockets.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace Sockets {

using TarnFirewall::formatText;

SocketError::SocketError(const char* call, int error, int descriptor)
    : call_(call),
      error_(error),
      descriptor_(descriptor),
      text_(formatText("SocketError on sd %d, in %s: %s (%d)", descriptor, call,
                       std::strerror(error), error)) {}

Socket::Socket(const char* address, const char* port) { Socket::Connect(address, port, true); }

Socket::~Socket() {
  if (descriptor_ != -1) ::close(descriptor_);
}

namespace {

struct FreeAddresses {
  void operator()(addrinfo* addresses) const { freeaddrinfo(addresses); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

Addresses resolve(const char* address, const char* port, int descriptor) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int result = getaddrinfo(address, port, &hints, &found);
  // A failing call leaves nothing to free.
  Addresses addresses(result == 0 ? found : nullptr);
  if (!addresses) throw SocketError("getaddrinfo", result, descriptor);
  return addresses;
}

}  // namespace

void Socket::Connect(const char* address, const char* port, bool block) {
  if (address == nullptr) throw std::invalid_argument("addr");
  if (port == nullptr) throw std::invalid_argument("port");
  const Addresses addresses = resolve(address, port, descriptor_);
  Close();
  descriptor_ = ::socket(addresses->ai_family, addresses->ai_socktype, addresses->ai_protocol);
  if (descriptor_ == -1) throw SocketError("socket", errno, -1);
  try {
    if (!block) SetNonBlocking();
    if (::connect(descriptor_, addresses->ai_addr, addresses->ai_addrlen) != 0 &&
        (block || errno != EINPROGRESS)) {
      throw SocketError("connect", errno, descriptor_);
    }
  } catch (...) {  // also when there is no memory for the error
    ::close(descriptor_);
    descriptor_ = -1;
    throw;
  }
}

int Socket::GetErrorStatus() const {
  int status = 0;
  socklen_t size = sizeof status;
  if (getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &status, &size) != 0) {
    throw SocketError("getsockopt", errno, descriptor_);
  }
  return status;
}

void Socket::Close() {
  if (descriptor_ == -1) return;
  const int descriptor = descriptor_;
  descriptor_ = -1;
  if (::close(descriptor) != 0 && errno != EINTR) throw SocketError("close", errno, descriptor);
}

void Socket::Shutdown() {
  if (descriptor_ == -1) return;
  if (::shutdown(descriptor_, SHUT_RDWR) != 0) throw SocketError("shutdown", errno, descriptor_);
}

void Socket::SetBlockingMode(bool block) {
  const int flags = ::fcntl(descriptor_, F_GETFL);
  if (flags == -1) throw SocketError("fcntl", errno, descriptor_);
  const int wanted = block ? flags & ~O_NONBLOCK : flags | O_NONBLOCK;
  if (::fcntl(descriptor_, F_SETFL, wanted) == -1) throw SocketError("fcntl", errno, descriptor_);
}

void Socket::SetNoDelay() {
  const int on = 1;
  if (setsockopt(descriptor_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0) {
    throw SocketError("setsockopt", errno, descriptor_);
  }
}

unsigned long Socket::Send(const unsigned char* buffer, unsigned long size, bool& wouldBlock) {
  wouldBlock = false;
  const ssize_t sent = ::send(descriptor_, buffer, size, MSG_NOSIGNAL);
  if (sent >= 0) return static_cast<unsigned long>(sent);
  if (errno != EAGAIN) throw SocketError("send", errno, descriptor_);
  wouldBlock = true;
  return 0;
}

unsigned long Socket::Recv(unsigned char* buffer, unsigned long size, bool& wouldBlock) {
  wouldBlock = false;
  const ssize_t received = ::recv(descriptor_, buffer, size, 0);
  if (received > 0) return static_cast<unsigned long>(received);
  if (received == 0) throw SocketShutdown();
  if (errno != EAGAIN) throw SocketError("recv", errno, descriptor_);
  wouldBlock = true;
  return 0;
}

unsigned long Socket::SendAll(const unsigned char* buffer, unsigned long size) {
  unsigned long moved = 0;
  bool wouldBlock = false;
  while (moved < size && !wouldBlock) moved += Send(buffer + moved, size - moved, wouldBlock);
  return moved;
}

unsigned long Socket::RecvAll(unsigned char* buffer, unsigned long size) {
  unsigned long moved = 0;
  bool wouldBlock = false;
  while (moved < size && !wouldBlock) moved += Recv(buffer + moved, size - moved, wouldBlock);
  return moved;
}

std::unique_ptr<Socket> SocketFactory::createSocket(SocketType_t type, const char* address,
                                                    const char* port) {
  if (type != SOCKET_TCP) throw TarnFirewall::CUnknownSocketTypeException(type);
  return std::make_unique<Socket>(address, port);
}

}  // namespace Sockets
