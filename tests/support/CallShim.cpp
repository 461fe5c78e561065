#include "CallShim.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>

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
void* __real_dlopen(const char* name, int flags);
void* __real_dlsym(void* library, const char* name);
}

namespace {

constexpr unsigned int kNone = std::numeric_limits<unsigned int>::max();

unsigned int g_left = kNone;  // calls up to the one that fails
int g_error = 0;
const char* g_only = nullptr;
std::string g_failed;

unsigned int g_writesLeft = kNone;
std::size_t g_limit = std::numeric_limits<std::size_t>::max();
bool g_interrupts = false;
std::map<std::string, bool> g_interrupted;  // whether the last one of a name was

std::string g_path;
std::string g_script;
std::vector<std::string> g_starts;

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

}  // namespace

extern "C" {

int __wrap_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return fails("open") ? -1 : __real_open(path, flags, mode);
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
  return __real_write(descriptor, bytes, std::min(size, g_limit));
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

FullDisk::FullDisk(unsigned int number) { g_writesLeft = number; }
FullDisk::~FullDisk() { g_writesLeft = kNone; }

ShortCalls::ShortCalls(std::size_t limit) {
  g_limit = limit;
  g_interrupts = true;
  g_interrupted.clear();
}
ShortCalls::~ShortCalls() {
  g_limit = std::numeric_limits<std::size_t>::max();
  g_interrupts = false;
}

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
