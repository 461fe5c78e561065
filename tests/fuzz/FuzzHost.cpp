#include "FuzzHost.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "FlowQuery.h"
#include "Fuzz.h"
#include "TarnFWFilter.h"
#include "TarnFWLog.h"
#include "TarnFWMsgBuf.h"
#include "TarnFWParserActionsAddress.h"
#include "TarnFWParserActionsSelector.h"
#include "TarnSiIoctl.h"
#include "TarnWGTIoctl.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// Of the thread that runs the input: the searching program has one of its own, which sleeps.
thread_local FuzzHost* g_host = nullptr;

/// The devices of the filter tables and of service insertion, which stay open to the end of the
/// process.
int g_tables = -1;
int g_insertion = -1;

/// A small host. A message takes what the largest request needs; an array has as many items as the
/// kernel says, and more than these bytes it does not get.
constexpr std::size_t kMessageMemory = 16 << 20;
constexpr std::size_t kArrayMemory = 192 << 10;

constexpr unsigned long kSendMessage = 15;

constexpr std::size_t kFrameSize = 32;  // of the requests that no record is known for

// --- Standard output and standard error

std::string g_out;
std::string g_err;

/// Never closed: the library keeps the stream of its printer. More than is kept can't be written to
/// standard error, so that a line which a command repeats for ever ends.
std::FILE* sinkOf(std::string& text) {
  cookie_io_functions_t functions{};
  functions.write = [](void* cookie, const char* bytes, std::size_t size) {
    auto& kept = *static_cast<std::string*>(cookie);
    const std::size_t fits = std::min(size, FuzzHost::kMaxText - kept.size());
    kept.append(bytes, fits);
    return static_cast<ssize_t>(&kept == &g_err ? fits : size);
  };
  std::FILE* const sink = fopencookie(&text, "w", functions);
  require(sink != nullptr);
  return sink;
}

std::FILE* outSink() {
  static std::FILE* const sink = sinkOf(g_out);
  return sink;
}

std::FILE* errSink() {
  static std::FILE* const sink = sinkOf(g_err);
  return sink;
}

/// What the searching program itself writes while a command runs: what it found.
bool isFind(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  const char* const name = slash != nullptr ? slash + 1 : path;
  for (const char* begin : {"crash-", "leak-", "oom-", "slow-unit-", "timeout-"})
    if (std::strncmp(name, begin, std::strlen(begin)) == 0) return true;
  return false;
}

}  // namespace

// --- The program's calls, while a host lives

extern "C" {
int __real_open(const char* path, int flags, ...);
int __real_close(int descriptor);
}

struct FuzzHostCalls {
  static int descriptor() {
    return g_host->answers() ? __real_open("/dev/null", O_RDWR | O_CLOEXEC) : -1;
  }

  static int socket(int family) {
    g_host->local_ = family == AF_UNIX;
    return g_host->local_ && g_host->outcome() != 0 ? -1 : descriptor();
  }

  static bool hostile() { return g_host->hostile_; }
  static int outcome() { return g_host->outcome(); }

  static int open(const char* path) {
    if (path[0] == '\0') return g_host->fail(ENOENT);
    if (!g_host->hostile_) {
      const int opened = descriptor();
      if (std::strcmp(path, CTarnWGTIoctl::ioctl_devname) == 0) g_tables = opened;
      if (std::strcmp(path, TarnSi::CTarnSiIoctl::ioctl_devname) == 0) g_insertion = opened;
      return opened;
    }
    const int result = g_host->outcome();
    if (result == 0 && std::strcmp(path, CTarnWGTIoctl::ioctl_devname) == 0)
      return g_host->fail(ENOENT);
    return result == 0 ? __real_open("/dev/null", O_RDWR | O_CLOEXEC) : result;
  }

  static void sleep(unsigned int seconds) {
    g_host->slept_ += seconds;
    if (g_host->calls_ > FuzzHost::kMaxCalls) throw FuzzHost::Signal();
  }

  static int close(int descriptor) {
    __real_close(descriptor);
    return g_host->outcome();
  }

  /// The streams of files and of standard input: the content is taken at the first read.
  struct Content {
    FuzzHost& host;
    std::span<const std::uint8_t> left{};
    bool taken = false;
  };

  static std::FILE* stream(FuzzHost& host) {
    cookie_io_functions_t functions{};
    functions.read = [](void* cookie, char* bytes, std::size_t size) {
      auto& content = *static_cast<Content*>(cookie);
      if (!std::exchange(content.taken, true)) {
        content.host.answers();
        content.left = content.host.take(content.host.number(2));
      }
      const auto part = content.left.first(std::min(size, content.left.size()));
      content.left = content.left.subspan(part.size());
      std::copy(part.begin(), part.end(), bytes);
      return static_cast<ssize_t>(part.size());
    };
    functions.close = [](void* cookie) {
      const std::unique_ptr<Content> content(static_cast<Content*>(cookie));
      --content->host.openFiles_;
      return 0;
    };
    std::FILE* const made = fopencookie(new Content{host}, "r", functions);
    require(made != nullptr);
    ++host.openFiles_;
    return made;
  }

  static int ioctl(int device, unsigned long request, void* argument) {
    if (!g_host->answers()) return -1;
    if (device == g_tables) return g_host->table(request, argument);
    if (!g_host->hostile_ && device == g_insertion) return g_host->insertion(argument);
    if (!g_host->hostile_ && FuzzHost::hasBuffer(request))
      return g_host->buffered(request, argument);
    switch (request) {
      case kSendMessage:
        return g_host->message(argument);
      case FW_REQUEST_FILTER_COUNT:
      case FW_REQUEST_FILTER_LIST:
      case FW_REQUEST_ONE_FILTER:
        return g_host->filterList(request, argument);
      case FW_REQUEST_FLOWS:
        if (!g_host->hostile_) return g_host->flows(argument);
        break;
    }
    if (argument == nullptr) return g_host->fail(ENOTTY);
    if (!g_host->hostile_) return g_host->record(argument);
    std::optional<std::uint32_t> status;
    return g_host->reply({static_cast<std::uint8_t*>(argument), kFrameSize}, &status);
  }

  static int start(const int* descriptors, int* pid);

  static ssize_t send(std::size_t size) {
    if (!g_host->answers()) return -1;
    g_host->received_ = 0;
    const std::size_t most = g_host->number(1);
    if (most == 255)
      return g_host->fail(g_host->hostile_ || g_host->local_ ? static_cast<int>(g_host->number(1))
                                                             : EAGAIN);
    return static_cast<ssize_t>(most == 0 ? size : std::min(size, most));
  }

  static ssize_t recv(void* buffer, std::size_t size) {
    if (!g_host->answers()) return -1;
    const std::size_t claimed = g_host->number(2);
    if ((g_host->hostile_ || g_host->local_) && claimed == 0xffff)
      return g_host->fail(static_cast<int>(g_host->number(1)));
    const auto bytes = g_host->take(std::min(claimed, size));
    if (g_host->hostile_ || g_host->local_) {
      std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(buffer));
      return static_cast<ssize_t>(bytes.size());
    }
    // The buffer holds the header that was sent. One whose header is broken is never freed, which
    // is known and kept.
    const std::size_t kept =
        kMsgHeaderSize - std::min<std::size_t>(g_host->received_, kMsgHeaderSize);
    const auto written = bytes.subspan(std::min(kept, bytes.size()));
    std::copy(written.begin(), written.end(), static_cast<std::uint8_t*>(buffer) + kept);
    g_host->received_ += bytes.size();
    return static_cast<ssize_t>(bytes.size());
  }
};

extern "C" {

int __wrap_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (g_host == nullptr) return __real_open(path, flags, mode);
  return FuzzHostCalls::open(path);
}

/// Whether a call on this descriptor is the host's to answer, and not the searching program's own.
static bool isHostile(int descriptor) {
  return g_host != nullptr && FuzzHostCalls::hostile() && descriptor > STDERR_FILENO;
}

int __wrap_close(int descriptor);
int __wrap_close(int descriptor) {
  return isHostile(descriptor) ? FuzzHostCalls::close(descriptor) : __real_close(descriptor);
}

ssize_t __real_write(int descriptor, const void* bytes, std::size_t size);
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t size);
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t size) {
  if (g_host != nullptr && descriptor == STDOUT_FILENO)
    return static_cast<ssize_t>(std::fwrite(bytes, 1, size, stdout));
  return isHostile(descriptor) ? FuzzHostCalls::send(size) : __real_write(descriptor, bytes, size);
}

/// Starts a program: what it writes is in its standard output at once, and it has ended.
int fuzzHostStart(const char*, char* const*, int, int, const int* descriptors, int, int, int, int,
                  int* pid);
int fuzzHostStart(const char*, char* const*, int, int, const int* descriptors, int, int, int, int,
                  int* pid) {
  return g_host != nullptr ? FuzzHostCalls::start(descriptors, pid) : ENOSYS;
}

int __real_fcntl(int descriptor, int command, ...);
int __wrap_fcntl(int descriptor, int command, ...);
int __wrap_fcntl(int descriptor, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  const long argument = va_arg(arguments, long);
  va_end(arguments);
  return isHostile(descriptor) ? FuzzHostCalls::outcome()
                               : __real_fcntl(descriptor, command, argument);
}

int __real_getsockopt(int descriptor, int level, int name, void* value, socklen_t* size) noexcept;
int __wrap_getsockopt(int descriptor, int level, int name, void* value, socklen_t* size) noexcept;
int __wrap_getsockopt(int descriptor, int level, int name, void* value, socklen_t* size) noexcept {
  return isHostile(descriptor) ? FuzzHostCalls::outcome()
                               : __real_getsockopt(descriptor, level, name, value, size);
}

int __real_setsockopt(int descriptor, int level, int name, const void* value,
                      socklen_t size) noexcept;
int __wrap_setsockopt(int descriptor, int level, int name, const void* value,
                      socklen_t size) noexcept;
int __wrap_setsockopt(int descriptor, int level, int name, const void* value,
                      socklen_t size) noexcept {
  return isHostile(descriptor) ? FuzzHostCalls::outcome()
                               : __real_setsockopt(descriptor, level, name, value, size);
}

int __real_shutdown(int descriptor, int how) noexcept;
int __wrap_shutdown(int descriptor, int how) noexcept;
int __wrap_shutdown(int descriptor, int how) noexcept {
  return isHostile(descriptor) ? FuzzHostCalls::outcome() : __real_shutdown(descriptor, how);
}

std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode);
std::FILE* __wrap_fopen(const char* path, const char* mode) {
  if (g_host == nullptr || (mode[0] != 'r' && isFind(path))) return __real_fopen(path, mode);
  // Every file is there but the one without a name; none can be written.
  if (path[0] != '\0' && mode[0] == 'r') return FuzzHostCalls::stream(*g_host);
  errno = path[0] == '\0' ? ENOENT : EROFS;
  return nullptr;
}

int __real_ioctl(int descriptor, unsigned long request, ...) noexcept;
int __wrap_ioctl(int descriptor, unsigned long request, ...) noexcept;
int __wrap_ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  if (g_host == nullptr) return __real_ioctl(descriptor, request, argument);
  return FuzzHostCalls::ioctl(descriptor, request, argument);
}

int __real_socket(int family, int type, int protocol) noexcept;
int __wrap_socket(int family, int type, int protocol) noexcept;
int __wrap_socket(int family, int type, int protocol) noexcept {
  if (g_host == nullptr) return __real_socket(family, type, protocol);
  return FuzzHostCalls::socket(family);
}

int __real_connect(int descriptor, const sockaddr* address, socklen_t size);
int __wrap_connect(int descriptor, const sockaddr* address, socklen_t size);
int __wrap_connect(int descriptor, const sockaddr* address, socklen_t size) {
  if (g_host == nullptr) return __real_connect(descriptor, address, size);
  return FuzzHostCalls::outcome();
}

ssize_t __real_send(int descriptor, const void* bytes, std::size_t size, int flags);
ssize_t __wrap_send(int descriptor, const void* bytes, std::size_t size, int flags);
ssize_t __wrap_send(int descriptor, const void* bytes, std::size_t size, int flags) {
  if (g_host == nullptr) return __real_send(descriptor, bytes, size, flags);
  return FuzzHostCalls::send(size);
}

ssize_t __real_recv(int descriptor, void* buffer, std::size_t size, int flags);
ssize_t __wrap_recv(int descriptor, void* buffer, std::size_t size, int flags);
ssize_t __wrap_recv(int descriptor, void* buffer, std::size_t size, int flags) {
  if (g_host == nullptr) return __real_recv(descriptor, buffer, size, flags);
  return FuzzHostCalls::recv(buffer, size);
}

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
  const std::size_t most = count > 1 ? kArrayMemory : kMessageMemory;
  if (g_host == nullptr || size == 0 || count <= most / size) return __real_calloc(count, size);
  errno = ENOMEM;
  return nullptr;
}

unsigned int __real_sleep(unsigned int seconds);
unsigned int __wrap_sleep(unsigned int seconds);
unsigned int __wrap_sleep(unsigned int seconds) {
  if (g_host == nullptr) return __real_sleep(seconds);
  FuzzHostCalls::sleep(seconds);
  return 0;
}

__attribute__((format(printf, 2, 3))) void __wrap_syslog(int priority, const char* format, ...);
void __wrap_syslog(int, const char* format, ...) {
  char line[1024];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
}

[[noreturn]] void __real_exit(int status);
[[noreturn]] void __wrap_exit(int status);
void __wrap_exit(int status) {
  require(g_host == nullptr);  // commands return
  __real_exit(status);
}

}  // extern "C"

int FuzzHostCalls::start(const int* descriptors, int* pid) {
  if (const int result = outcome(); result != 0) return result;
  *pid = 0;  // nobody to wait for
  const auto text = g_host->take(g_host->number(2));
  const ssize_t written = __real_write(descriptors[1], text.data(), text.size());
  require(written == static_cast<ssize_t>(text.size()));
  return 0;
}

// --- Its life

FuzzHost::FuzzHost(std::span<const std::uint8_t> bytes, Kind kind)
    : bytes_(bytes),
      hostile_(kind == Kind::kHostile),
      realInput_(stdin),
      realOutput_(stdout),
      realError_(stderr) {
  require(g_host == nullptr);
  g_out.clear();
  g_err.clear();
  __fpurge(errSink());
  std::clearerr(errSink());
  input_ = FuzzHostCalls::stream(*this);
  stdin = input_;
  stdout = outSink();
  stderr = errSink();
  g_host = this;
}

FuzzHost::~FuzzHost() {
  std::fflush(stdout);
  std::fflush(stderr);
  g_host = nullptr;
  stdin = realInput_;
  stdout = realOutput_;
  stderr = realError_;
  std::fclose(input_);
}

std::string FuzzHost::out() const {
  std::fflush(stdout);
  return g_out;
}

std::string FuzzHost::err() const {
  std::fflush(stderr);
  return g_err;
}

// --- The process

namespace {

__attribute__((format(printf, 2, 0))) void format(int, const char* text, va_list arguments) {
  char line[1024];
  std::vsnprintf(line, sizeof line, text, arguments);
}

}  // namespace

void startAnew() {
  FW_RegisterLogger(format, 6);
  FW_SetLibVerboseLevel(FW_COMPONENT_ALL, 0);
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  g_tarnfw_default_dvsport = {};
  attribute_type = FW_ATTR_ID_NONE;
  errno = 0;
}

int freeDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  require(descriptor >= 0);
  close(descriptor);
  return descriptor;
}
