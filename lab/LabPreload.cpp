// The preload library: takes open, ioctl, close and the dup calls in front of the C library's, and
// answers for the control devices. Everything else goes on to the C library as it came, but for the
// host's files, which are those in the lab's folder.
#include <fcntl.h>
#include <pthread.h>
#include <stdarg.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <new>

#include "LabModel.h"
#include "LabPreloadNext.h"
#include "LabPreloadPath.h"
#include "LabUndisturbed.h"

using TarnLab::Device;
using TarnLab::HostPath;
using TarnLab::Next;

namespace {

using OpenFunction = int(const char*, int, ...);
using OpenAtFunction = int(int, const char*, int, ...);

constinit Next<OpenFunction> nextOpen("open"), nextOpen64("open64");
constinit Next<OpenAtFunction> nextOpenAt("openat"), nextOpenAt64("openat64");
constinit Next<int(const char*, mode_t)> nextCreat("creat"), nextCreat64("creat64");
constinit Next<int(const char*, int)> nextOpen2("__open_2"), nextOpen642("__open64_2");
constinit Next<int(int, const char*, int)> nextOpenAt2("__openat_2"), nextOpenAt642("__openat64_2");
constinit Next<int(int, unsigned long, ...)> nextIoctl("ioctl");
constinit Next<int(int)> nextClose("close"), nextDup("dup");
constinit Next<int(int, int)> nextDup2("dup2");
constinit Next<int(int, int, int)> nextDup3("dup3");
constinit Next<int(int, int, ...)> nextFcntl("fcntl"), nextFcntl64("fcntl64");

/// Which device a descriptor stands for. A page of it costs nothing before a device is opened.
constexpr int descriptorLimit = 1 << 16;
std::atomic<std::uint8_t> devices[descriptorLimit];

Device deviceOf(int fd) {
  if (fd < 0 || fd >= descriptorLimit) return Device::none;
  return static_cast<Device>(devices[fd].load(std::memory_order_relaxed));
}

void setDevice(int fd, Device device) {
  if (fd >= 0 && fd < descriptorLimit) {
    devices[fd].store(static_cast<std::uint8_t>(device), std::memory_order_relaxed);
  }
}

/// The process whose descriptors the table has.
std::atomic<pid_t> owner{0};

void own() { owner.store(::getpid(), std::memory_order_relaxed); }

[[gnu::constructor]] void start() {
  own();
  ::pthread_atfork(nullptr, nullptr, own);
}

/// The descriptor is no device, or none any more. What a child of vfork closes is its own: it
/// shares the table with its parent, but not the descriptors.
void forgetDevice(int fd) {
  if (deviceOf(fd) != Device::none && owner.load(std::memory_order_relaxed) == ::getpid()) {
    setDevice(fd, Device::none);
  }
}

Device deviceOfPath(const char* path) {
  // An address in the first page, or in the kernel's half, is the caller's mistake and for the
  // kernel to refuse.
  if (reinterpret_cast<std::intptr_t>(path) < 4096 || path[0] != '/' || path[1] != 'd' ||
      path[2] != 'e' || path[3] != 'v' || path[4] != '/') {
    return Device::none;
  }
  return TarnLab::deviceOfPath(path);
}

/// A device's descriptor is one of /dev/null. One that was closed without our notice and given to
/// another file is not.
bool isNull(int fd) {
  struct stat status;
  return ::fstat(fd, &status) == 0 && S_ISCHR(status.st_mode) && major(status.st_rdev) == 1 &&
         minor(status.st_rdev) == 3;
}

int openDevice(Device device, int flags) {
  int error = ENOMEM;
  try {
    const TarnLab::Undisturbed undisturbed;
    error = TarnLab::Model(TarnLab::Store(TarnLab::Store::defaultFolder())).openDevice(device);
  } catch (const std::bad_alloc&) {
  }
  if (error != 0) {
    errno = error;
    return -1;
  }
  const int kept = flags & (O_ACCMODE | O_CLOEXEC | O_NONBLOCK);
  const int fd = nextOpen.get()("/dev/null", kept);
  if (fd >= descriptorLimit) {
    nextClose.get()(fd);
    errno = EMFILE;
    return -1;
  }
  if (fd >= 0) setDevice(fd, device);
  return fd;
}

/// A descriptor that came from the C library. A device may have had its number and been closed
/// without our notice, as by fclose.
int passed(int fd) {
  forgetDevice(fd);
  return fd;
}

int copied(int from, int to) {
  if (to < 0 || to == from) return to;
  const Device device = deviceOf(from);
  if (device == Device::none) return passed(to);
  setDevice(to, device);
  return to;
}

int requestDevice(Device device, std::uint32_t number, void* argument) {
  const int before = errno;
  int error = ENOMEM;
  int result = 0;
  try {
    const TarnLab::Undisturbed undisturbed;
    error = TarnLab::Model(TarnLab::Store(TarnLab::Store::defaultFolder()))
                .request(device, number, reinterpret_cast<std::uintptr_t>(argument),
                         &undisturbed.before(), &result);
  } catch (const std::bad_alloc&) {
  }
  errno = error != 0 ? error : before;
  return error != 0 ? -1 : result;
}

/// The mode of an open call is there only when the flags ask for it.
mode_t modeOf(int flags, va_list arguments) {
  const bool wanted = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return wanted ? va_arg(arguments, mode_t) : 0;
}

/// What a form of open gives: a device of the lab, or what the next library opens at the path or,
/// for a file of the host, at its place in the lab.
template <typename Call>
int opened(const char* path, int flags, const Call& call) {
  const Device device = deviceOfPath(path);
  if (device != Device::none) return openDevice(device, flags);
  return passed(call(HostPath(path).get()));
}

int fcntlDevice(Next<int(int, int, ...)>& next, int fd, int command, void* argument) {
  const int result = next.get()(fd, command, argument);
  const bool copies = command == F_DUPFD || command == F_DUPFD_CLOEXEC;
  return copies ? copied(fd, result) : result;
}

}  // namespace

#define TARNLAB_OPEN(name, next)                                                             \
  TARNLAB_EXPORT int name(const char* path, int flags, ...) {                                \
    va_list arguments;                                                                       \
    va_start(arguments, flags);                                                              \
    const mode_t mode = modeOf(flags, arguments);                                            \
    va_end(arguments);                                                                       \
    return opened(path, flags, [&](const char* at) { return next.get()(at, flags, mode); }); \
  }

#define TARNLAB_OPENAT(name, next)                                                      \
  TARNLAB_EXPORT int name(int folder, const char* path, int flags, ...) {               \
    va_list arguments;                                                                  \
    va_start(arguments, flags);                                                         \
    const mode_t mode = modeOf(flags, arguments);                                       \
    va_end(arguments);                                                                  \
    return opened(path, flags,                                                          \
                  [&](const char* at) { return next.get()(folder, at, flags, mode); }); \
  }

// With checking turned on, the headers make inline functions and redirections of these names.
#undef open
#undef open64
#undef openat
#undef openat64
#undef fcntl

TARNLAB_OPEN(open, nextOpen)
TARNLAB_OPEN(open64, nextOpen64)
TARNLAB_OPENAT(openat, nextOpenAt)
TARNLAB_OPENAT(openat64, nextOpenAt64)

TARNLAB_EXPORT int creat(const char* path, mode_t mode) {
  return opened(path, O_WRONLY, [&](const char* at) { return nextCreat.get()(at, mode); });
}

TARNLAB_EXPORT int creat64(const char* path, mode_t mode) {
  return opened(path, O_WRONLY, [&](const char* at) { return nextCreat64.get()(at, mode); });
}

TARNLAB_EXPORT int __open_2(const char* path, int flags) {
  return opened(path, flags, [&](const char* at) { return nextOpen2.get()(at, flags); });
}

TARNLAB_EXPORT int __open64_2(const char* path, int flags) {
  return opened(path, flags, [&](const char* at) { return nextOpen642.get()(at, flags); });
}

TARNLAB_EXPORT int __openat_2(int folder, const char* path, int flags) {
  return opened(path, flags, [&](const char* at) { return nextOpenAt2.get()(folder, at, flags); });
}

TARNLAB_EXPORT int __openat64_2(int folder, const char* path, int flags) {
  return opened(path, flags,
                [&](const char* at) { return nextOpenAt642.get()(folder, at, flags); });
}

TARNLAB_EXPORT int ioctl(int fd, unsigned long number, ...) {
  va_list arguments;
  va_start(arguments, number);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  const Device device = deviceOf(fd);
  if (__builtin_expect(device != Device::none, 0)) {
    // The kernel takes no more than 32 bits of the number.
    if (isNull(fd)) return requestDevice(device, static_cast<std::uint32_t>(number), argument);
    forgetDevice(fd);
  }
  return nextIoctl.get()(fd, number, argument);
}

TARNLAB_EXPORT int close(int fd) {
  forgetDevice(fd);
  return nextClose.get()(fd);
}

TARNLAB_EXPORT int dup(int fd) noexcept { return copied(fd, nextDup.get()(fd)); }

TARNLAB_EXPORT int dup2(int fd, int to) noexcept { return copied(fd, nextDup2.get()(fd, to)); }

TARNLAB_EXPORT int dup3(int fd, int to, int flags) noexcept {
  return copied(fd, nextDup3.get()(fd, to, flags));
}

TARNLAB_EXPORT int fcntl(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  return fcntlDevice(nextFcntl, fd, command, argument);
}

TARNLAB_EXPORT int fcntl64(int fd, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  return fcntlDevice(nextFcntl64, fd, command, argument);
}
