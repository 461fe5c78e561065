// The part of the preload library that connects programs to the lab's peers. A peer is a thread of
// the program that connects, so that it ends with it, whichever way that ends; the socket between
// them has no name that outlives the connecting.
#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "LabHostFiles.h"
#include "LabPeer.h"
#include "LabPreloadNext.h"
#include "LabPreloadPath.h"
#include "LabUndisturbed.h"

using TarnLab::Device;
using TarnLab::HostPath;
using TarnLab::Next;

namespace {

using AddressFunction = int(int, const sockaddr*, socklen_t);

constinit Next<AddressFunction> nextConnect("connect"), nextBind("bind");

/// One connection that a peer's thread serves.
struct Exchange {
  TarnLab::Store store;
  Device peer;
  TarnLab::PeerManner manner;
  int fd;
  Exchange* next = nullptr;
};

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t ended = PTHREAD_COND_INITIALIZER;
Exchange* exchanges = nullptr;  // all that are served now

/// Threads are not copied by fork, and so their exchanges are not the child's.
void forget() {
  mutex = PTHREAD_MUTEX_INITIALIZER;
  ended = PTHREAD_COND_INITIALIZER;
  exchanges = nullptr;
}

/// At the end of the program: what it has sent is still read and written to the log. Not for long,
/// as another program may hold the lab's lock.
void finish() {
  constexpr int patience = 5;  // seconds
  timespec until{};
  ::clock_gettime(CLOCK_REALTIME, &until);
  until.tv_sec += patience;
  ::pthread_mutex_lock(&mutex);
  for (const Exchange* each = exchanges; each != nullptr; each = each->next) {
    ::shutdown(each->fd, SHUT_RDWR);
  }
  while (exchanges != nullptr && ::pthread_cond_timedwait(&ended, &mutex, &until) == 0) {
  }
  ::pthread_mutex_unlock(&mutex);
}

void prepareOnce() {
  ::pthread_atfork(nullptr, nullptr, forget);
  std::atexit(finish);
}

void enlist(Exchange* exchange) {
  ::pthread_mutex_lock(&mutex);
  exchange->next = exchanges;
  exchanges = exchange;
  ::pthread_mutex_unlock(&mutex);
}

/// The last of an exchange. A child that was forked meanwhile may have the descriptor too, so the
/// stream is shut down as well.
void dismiss(Exchange* exchange) {
  ::pthread_mutex_lock(&mutex);
  for (Exchange** each = &exchanges; *each != nullptr; each = &(*each)->next) {
    if (*each != exchange) continue;
    *each = exchange->next;
    break;
  }
  ::shutdown(exchange->fd, SHUT_RDWR);
  ::close(exchange->fd);
  ::pthread_cond_broadcast(&ended);
  ::pthread_mutex_unlock(&mutex);
  delete exchange;
}

void* serve(void* argument) {
  auto* const exchange = static_cast<Exchange*>(argument);
  TarnLab::Peer::serve(exchange->store, exchange->peer, exchange->manner, exchange->fd);
  dismiss(exchange);
  return nullptr;
}

/// Starts the thread that serves; 0 or an errno.
int start(Exchange* exchange) {
  static pthread_once_t once = PTHREAD_ONCE_INIT;
  ::pthread_once(&once, prepareOnce);
  constexpr std::size_t stack = std::size_t{1} << 20;
  pthread_attr_t attributes;
  if (const int error = ::pthread_attr_init(&attributes); error != 0) return error;
  ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  ::pthread_attr_setstacksize(&attributes, stack);
  enlist(exchange);
  // The thread has the mask of its maker: no signal of the program comes to it.
  pthread_t thread;
  const int error = ::pthread_create(&thread, &attributes, serve, exchange);
  ::pthread_attr_destroy(&attributes);
  return error;
}

/// Connects the program's socket to one of ours, by a name outside the file system that is gone
/// when both are connected. The other end, or -1 with errno.
int pairWith(int fd, const TarnLab::Store& store) {
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener < 0) return -1;
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  // The lab's folder and this connection, so that no two have the same name.
  struct stat home {};
  ::stat(store.folder().c_str(), &home);
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  const int length =
      std::snprintf(name.sun_path + 1, sizeof name.sun_path - 1, "tarnlab-%lu-%d-%d-%ld",
                    static_cast<unsigned long>(home.st_ino), static_cast<int>(::getpid()),
                    static_cast<int>(::gettid()), now.tv_sec * 1000000000 + now.tv_nsec);
  const auto size =
      static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + static_cast<unsigned>(length));
  const auto* const address = reinterpret_cast<const sockaddr*>(&name);
  int other = -1;
  if (nextBind.get()(listener, address, size) == 0 && ::listen(listener, 1) == 0 &&
      nextConnect.get()(fd, address, size) == 0) {
    other = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  }
  const int error = errno;
  ::close(listener);
  errno = error;
  return other;
}

/// Connects the program to the model of a peer. 0 or an errno.
int connectToPeer(int fd, Device peer, const TarnLab::Store& store,
                  const TarnLab::PeerManner& manner) {
  int type = 0;
  socklen_t typeSize = sizeof type;
  if (::getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &typeSize) != 0) return errno;
  if (type != SOCK_STREAM) return EPROTOTYPE;
  const int other = pairWith(fd, store);
  if (other < 0) return errno;
  if (manner.closes) {
    ::close(other);
    return 0;
  }
  auto* const exchange = new (std::nothrow) Exchange{store, peer, manner, other};
  const int error = exchange == nullptr ? ENOMEM : start(exchange);
  if (error == 0) return 0;
  if (exchange != nullptr) {
    dismiss(exchange);
  } else {
    ::close(other);
  }
  return error;
}

/// The path of a socket's address, when it has one.
class SocketPath {
 public:
  SocketPath(const sockaddr* address, socklen_t size) {
    constexpr socklen_t head = offsetof(sockaddr_un, sun_path);
    // What is no address is for the kernel to refuse.
    if (reinterpret_cast<std::intptr_t>(address) < 4096 || size <= head ||
        size > sizeof(sockaddr_un) || address->sa_family != AF_UNIX) {
      return;
    }
    std::memcpy(text_, reinterpret_cast<const char*>(address) + head, size - head);
  }
  const char* get() const { return text_; }

 private:
  char text_[sizeof(sockaddr_un::sun_path) + 1] = {};
};

/// Calls `use` with the address of a socket in the lab's folder. The folder may have a path that is
/// too long for an address, so it is named by a descriptor.
int withMoved(Next<AddressFunction>& next, int fd, const char* path) {
  char folder[PATH_MAX + 1];
  std::snprintf(folder, sizeof folder, "%s", path);
  char* const slash = std::strrchr(folder, '/');
  *slash = '\0';
  const int in = ::open(folder, O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (in < 0) return -1;
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  const int length =
      std::snprintf(name.sun_path, sizeof name.sun_path, "/proc/self/fd/%d/%s", in, slash + 1);
  int result = -1;
  int error = ENAMETOOLONG;
  if (length > 0 && static_cast<std::size_t>(length) < sizeof name.sun_path) {
    result = next.get()(fd, reinterpret_cast<const sockaddr*>(&name), sizeof name);
    error = errno;
  }
  ::close(in);
  errno = error;
  return result;
}

/// Connects to what stands at the path: to a program of the lab that listens there or, where
/// nobody does, to the model of the peer.
int connectMoved(int fd, const char* wanted, const char* path) {
  const TarnLab::Undisturbed undisturbed;
  const Device peer = TarnLab::peerOfPath(wanted);
  const TarnLab::Store store(TarnLab::Store::defaultFolder());
  TarnLab::PeerManner manner;
  if (peer != Device::none) {
    if (const int error = TarnLab::Peer::admit(store, peer, manner); error != 0) {
      errno = error;
      return -1;
    }
  }
  struct stat status;
  const bool socket = ::lstat(path, &status) == 0 && S_ISSOCK(status.st_mode);
  const int result = withMoved(nextConnect, fd, path);
  if (result == 0 || !socket || peer == Device::none || errno == EINPROGRESS) return result;
  if (errno != ECONNREFUSED && errno != ENOENT) return result;
  const int error = connectToPeer(fd, peer, store, manner);
  errno = error;
  return error == 0 ? 0 : -1;
}

}  // namespace

TARNLAB_EXPORT int connect(int fd, const sockaddr* address, socklen_t size) {
  const int before = errno;
  const SocketPath wanted(address, size);
  const HostPath path(wanted.get());
  if (!path.isMoved()) return nextConnect.get()(fd, address, size);
  int result = -1;
  try {
    result = connectMoved(fd, wanted.get(), path.get());
    if (result == 0) errno = before;
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
  }
  return result;
}

TARNLAB_EXPORT int bind(int fd, const sockaddr* address, socklen_t size) noexcept {
  const SocketPath wanted(address, size);
  const HostPath path(wanted.get());
  return path.isMoved() ? withMoved(nextBind, fd, path.get()) : nextBind.get()(fd, address, size);
}
