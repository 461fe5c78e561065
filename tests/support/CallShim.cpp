#include "CallShim.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <list>
#include <map>
#include <utility>

#include "HostCallName.h"

extern "C" {
int __real_open(const char* path, int flags, ...);
int __real_close(int descriptor);
ssize_t __real_read(int descriptor, void* bytes, std::size_t size);
ssize_t __real_write(int descriptor, const void* bytes, std::size_t size);
int __real_fchmod(int descriptor, mode_t mode);
int __real_pipe2(int* ends, int flags);
int __real_fcntl(int descriptor, int command, ...);
int __real_poll(pollfd* streams, nfds_t count, int timeout);
pid_t __real_waitpid(pid_t child, int* status, int options);
int __real_posix_spawn_file_actions_init(posix_spawn_file_actions_t* actions);
int __real_posix_spawn_file_actions_adddup2(posix_spawn_file_actions_t* actions, int from, int to);
int __real_posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments,
                       char* const* environment);
int __real_socket(int family, int type, int protocol) noexcept;
int __real_connect(int descriptor, const sockaddr* address, socklen_t size);
ssize_t __real_send(int descriptor, const void* bytes, std::size_t size, int flags);
ssize_t __real_recv(int descriptor, void* bytes, std::size_t size, int flags);
void* __real_dlopen(const char* name, int flags);
void* __real_dlsym(void* library, const char* name);
}

namespace {

constexpr unsigned int kNone = std::numeric_limits<unsigned int>::max();

unsigned int g_left = kNone;  // calls up to the one that fails
int g_error = 0;
const char* g_only = nullptr;
std::string g_failed;

constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();
unsigned int g_writesLeft = kNone;
std::size_t g_writeLimit = kUnlimited;
std::size_t g_limit = kUnlimited;
bool g_interrupts = false;
std::map<std::string, bool> g_interrupted;  // whether the last one of a name was

std::string g_path;
std::string g_script;
std::vector<std::string> g_starts;

unsigned int g_wholeReceives = kNone;  // up to the first pause
bool g_paused = false;

/// What is to follow a call.
struct Hook {
  std::string name;
  unsigned int left;
  std::function<void()> body;
};
std::list<Hook> g_hooks;

std::vector<std::pair<std::string, std::string>> g_moved;  // from, to

bool g_keepsSocketCalls = false;
std::vector<std::string> g_socketCalls;

CallShim::HostCall g_hostCall = CallShim::HostCall::kNone;
void* g_function = nullptr;
char g_library;  // its address stands for the host's library
std::vector<std::string> g_lookUps;

/// Counts a call; true when it is the one that fails.
bool fails(const char* name) {
  if (g_left == kNone || (g_only != nullptr && std::strcmp(g_only, name) != 0)) return false;
  if (g_left-- != 0) return false;
  g_failed = name;
  errno = g_error;
  return true;
}

bool isInterrupted(const char* name) {
  if (!g_interrupts) return false;
  bool& now = g_interrupted[name];
  now = !now;
  if (now) errno = EINTR;
  return now;
}

/// Runs what is to follow this call, unless it failed. Returns what the call gave.
template <typename Result>
Result followed(const char* name, Result result) {
  if (result == -1) return result;
  for (Hook& hook : g_hooks)
    if (hook.name == name && hook.left-- == 0) hook.body();
  return result;
}

std::string movedPath(const char* path) {
  const std::string text = path;
  for (const auto& [from, to] : g_moved)
    if (text.starts_with(from + "/")) return to + text.substr(from.size());
  return text;
}

void keepSocketCall(const std::string& line) {
  if (g_keepsSocketCalls) g_socketCalls.push_back(line);
}

/// Whether this `recv` finds an end that is none.
bool pauses() {
  if (g_wholeReceives == kNone) return false;
  if (g_wholeReceives != 0) return --g_wholeReceives, false;
  return g_paused = !g_paused;
}

int connectLocal(int descriptor, const sockaddr* address, socklen_t size) {
  constexpr std::size_t kHead = offsetof(sockaddr_un, sun_path);
  const std::string path(reinterpret_cast<const char*>(address) + kHead, size - kHead);
  keepSocketCall("connect " + path + " " + std::to_string(size));
  const std::string moved = movedPath(path.c_str());
  sockaddr_un there{};
  if (moved.size() >= sizeof there.sun_path) std::abort();
  there.sun_family = AF_UNIX;
  std::memcpy(there.sun_path, moved.data(), moved.size());
  const auto length = static_cast<socklen_t>(kHead + moved.size());
  return __real_connect(descriptor, reinterpret_cast<const sockaddr*>(&there), length);
}

}  // namespace

extern "C" {

int __wrap_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (fails("open")) return -1;
  if (g_moved.empty()) return __real_open(path, flags, mode);
  return __real_open(movedPath(path).c_str(), flags, mode);
}

int __wrap_close(int descriptor);
int __wrap_close(int descriptor) {
  const int result = __real_close(descriptor);
  return fails("close") ? -1 : result;
}

ssize_t __wrap_read(int descriptor, void* bytes, std::size_t size);
ssize_t __wrap_read(int descriptor, void* bytes, std::size_t size) {
  if (fails("read") || isInterrupted("read")) return -1;
  return __real_read(descriptor, bytes, std::min(size, g_limit));
}

ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t size);
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t size) {
  if (fails("write") || isInterrupted("write")) return -1;
  if (g_writesLeft == 0) {
    errno = ENOSPC;
    return -1;
  }
  if (g_writesLeft != kNone) --g_writesLeft;
  return __real_write(descriptor, bytes, std::min({size, g_limit, g_writeLimit}));
}

int __wrap_fchmod(int descriptor, mode_t mode);
int __wrap_fchmod(int descriptor, mode_t mode) {
  return fails("fchmod") ? -1 : __real_fchmod(descriptor, mode);
}

int __wrap_pipe2(int* ends, int flags);
int __wrap_pipe2(int* ends, int flags) { return fails("pipe2") ? -1 : __real_pipe2(ends, flags); }

int __wrap_fcntl(int descriptor, int command, ...);
int __wrap_fcntl(int descriptor, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return fails("fcntl") ? -1 : __real_fcntl(descriptor, command, argument);
}

int __wrap_poll(pollfd* streams, nfds_t count, int timeout);
int __wrap_poll(pollfd* streams, nfds_t count, int timeout) {
  return fails("poll") || isInterrupted("poll") ? -1 : __real_poll(streams, count, timeout);
}

pid_t __wrap_waitpid(pid_t child, int* status, int options);
pid_t __wrap_waitpid(pid_t child, int* status, int options) {
  return fails("waitpid") || isInterrupted("waitpid") ? -1 : __real_waitpid(child, status, options);
}

int __wrap_posix_spawn_file_actions_init(posix_spawn_file_actions_t* actions);
int __wrap_posix_spawn_file_actions_init(posix_spawn_file_actions_t* actions) {
  return fails("posix_spawn_file_actions_init") ? errno
                                                : __real_posix_spawn_file_actions_init(actions);
}

int __wrap_posix_spawn_file_actions_adddup2(posix_spawn_file_actions_t* actions, int from, int to);
int __wrap_posix_spawn_file_actions_adddup2(posix_spawn_file_actions_t* actions, int from, int to) {
  return fails("posix_spawn_file_actions_adddup2")
             ? errno
             : __real_posix_spawn_file_actions_adddup2(actions, from, to);
}

int __wrap_posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments,
                       char* const* environment);
int __wrap_posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments,
                       char* const* environment) {
  if (fails("posix_spawn")) return errno;
  if (g_path != path)
    return __real_posix_spawn(child, path, actions, attributes, arguments, environment);

  std::string start;
  for (char* const* argument = arguments; *argument != nullptr; ++argument)
    start += (start.empty() ? "" : " ") + std::string(*argument);
  g_starts.push_back(start);
  char name[] = "sh";
  char option[] = "-c";
  char* const shell[] = {name, option, g_script.data(), nullptr};
  return __real_posix_spawn(child, "/bin/sh", actions, attributes, shell, environment);
}

int __wrap_socket(int family, int type, int protocol) noexcept;
int __wrap_socket(int family, int type, int protocol) noexcept {
  keepSocketCall("socket " + std::to_string(family) + " " + std::to_string(type) + " " +
                 std::to_string(protocol));
  return fails("socket") ? -1 : __real_socket(family, type, protocol);
}

int __wrap_connect(int descriptor, const sockaddr* address, socklen_t size);
int __wrap_connect(int descriptor, const sockaddr* address, socklen_t size) {
  if (fails("connect")) return -1;
  return followed("connect", address->sa_family == AF_UNIX
                                 ? connectLocal(descriptor, address, size)
                                 : __real_connect(descriptor, address, size));
}

ssize_t __wrap_send(int descriptor, const void* bytes, std::size_t size, int flags);
ssize_t __wrap_send(int descriptor, const void* bytes, std::size_t size, int flags) {
  keepSocketCall("send " + std::to_string(size) + " " + std::to_string(flags));
  if (fails("send") || isInterrupted("send")) return -1;
  return followed("send", __real_send(descriptor, bytes, std::min(size, g_limit), flags));
}

ssize_t __wrap_recv(int descriptor, void* bytes, std::size_t size, int flags);
ssize_t __wrap_recv(int descriptor, void* bytes, std::size_t size, int flags) {
  if (fails("recv")) return g_error == 0 ? 0 : -1;
  if (isInterrupted("recv")) return -1;
  const std::size_t most = g_wholeReceives != kNone ? 1 : g_limit;
  if (pauses()) return 0;
  return followed("recv", __real_recv(descriptor, bytes, std::min(size, most), flags));
}

void* __wrap_dlopen(const char* name, int flags);
void* __wrap_dlopen(const char* name, int flags) {
  if (std::strcmp(name, "librudder.so.0") != 0) return __real_dlopen(name, flags);
  return g_hostCall == CallShim::HostCall::kInLibrary ? &g_library : nullptr;
}

void* __wrap_dlsym(void* library, const char* name);
void* __wrap_dlsym(void* library, const char* name) {
  if (!isHostCall(name)) return __real_dlsym(library, name);
  const bool loaded = library == RTLD_DEFAULT;
  g_lookUps.push_back((loaded ? "default " : "librudder.so.0 ") + std::string(name));
  const auto here = loaded ? CallShim::HostCall::kLoaded : CallShim::HostCall::kInLibrary;
  return g_hostCall == here ? g_function : nullptr;
}

}  // extern "C"

namespace CallShim {

Failing::Failing(unsigned int number, int error, const char* name) {
  g_left = number;
  g_error = error;
  g_only = name;
  g_failed.clear();
}
Failing::~Failing() { g_left = kNone; }
bool Failing::reached() const { return !g_failed.empty(); }
std::string Failing::name() const { return g_failed; }

FullDisk::FullDisk(unsigned int number, std::size_t limit) {
  g_writesLeft = number;
  g_writeLimit = limit;
}
FullDisk::~FullDisk() {
  g_writesLeft = kNone;
  g_writeLimit = kUnlimited;
}

ShortCalls::ShortCalls(std::size_t limit) {
  g_limit = limit;
  g_interrupts = true;
  g_interrupted.clear();
}
ShortCalls::~ShortCalls() {
  g_limit = kUnlimited;
  g_interrupts = false;
}

PausingStream::PausingStream(unsigned int whole) {
  g_wholeReceives = whole;
  g_paused = false;
}
PausingStream::~PausingStream() { g_wholeReceives = kNone; }

After::After(const char* name, unsigned int number, std::function<void()> body) {
  g_hooks.push_back({name, number, std::move(body)});
}
After::~After() { g_hooks.pop_back(); }

Moved::Moved(const std::string& from, const std::string& to) { g_moved.emplace_back(from, to); }
Moved::~Moved() { g_moved.pop_back(); }

SocketCalls::SocketCalls() {
  g_keepsSocketCalls = true;
  g_socketCalls.clear();
}
SocketCalls::~SocketCalls() { g_keepsSocketCalls = false; }
const std::vector<std::string>& SocketCalls::lines() const { return g_socketCalls; }

Program::Program(const std::string& path, const std::string& script) {
  g_path = path;
  g_script = script;
  g_starts.clear();
}
Program::~Program() { g_path.clear(); }
const std::vector<std::string>& Program::starts() const { return g_starts; }

void setHostCall(HostCall where, void* call) {
  g_hostCall = where;
  g_function = call;
}
const std::vector<std::string>& lookUps() { return g_lookUps; }

}  // namespace CallShim

std::vector<int> openDescriptors() {
  DIR* const folder = opendir("/proc/self/fd");
  if (folder == nullptr) std::abort();
  std::vector<int> numbers;
  while (const dirent* const entry = readdir(folder)) {
    const int number = std::atoi(entry->d_name);
    if (entry->d_name[0] != '.' && number != dirfd(folder)) numbers.push_back(number);
  }
  closedir(folder);
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

bool hasChild() {
  siginfo_t child{};
  return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0;
}
