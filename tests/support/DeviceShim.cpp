#include "DeviceShim.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <utility>

#include "tarnfw.h"

namespace {

struct Device {
  int error = 0;
  DeviceShim::Answer answer;
};

struct State {
  std::map<std::string, Device> devices;
  std::map<int, std::string> open;
  std::vector<std::string> opens;
  std::vector<std::string> closes;
  std::vector<DeviceShim::Call> calls;
};

/// Never destroyed: devices close while the process ends. Null until the first device is there, so
/// that calls before `main` pass through.
State* g_state = nullptr;
bool g_failCalloc = false;
bool g_failNew = false;
bool g_failLock = false;
bool g_failMutex = false;
bool g_failUnlock = false;
int g_writeError = 0;
int g_closeError = 0;

State& state() {
  if (g_state == nullptr) g_state = new State;
  return *g_state;
}

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int openAny(const char* name, const char* path, int flags, mode_t mode) {
  static auto* const realOpen = next<int(const char*, int, ...)>("open");
  static auto* const realOpen64 = next<int(const char*, int, ...)>("open64");
  auto* const real = std::strcmp(name, "open64") == 0 ? realOpen64 : realOpen;
  if (g_state == nullptr || path == nullptr) return real(path, flags, mode);
  const auto device = g_state->devices.find(path);
  if (device == g_state->devices.end()) return real(path, flags, mode);
  g_state->opens.push_back(std::string(path) + " " + std::to_string(flags));
  if (device->second.error != 0) {
    errno = device->second.error;
    return -1;
  }
  const int descriptor = real("/dev/null", O_RDWR, 0);
  g_state->open[descriptor] = path;
  return descriptor;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return openAny("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return openAny("open64", path, flags, mode);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
  static auto* const real = next<int(int, unsigned long, void*)>("ioctl");
  va_list arguments;
  va_start(arguments, request);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  if (g_state == nullptr) return real(descriptor, request, argument);
  const auto open = g_state->open.find(descriptor);
  if (open == g_state->open.end()) return real(descriptor, request, argument);
  const DeviceShim::Call call{open->second, request, argument};
  g_state->calls.push_back(call);
  return g_state->devices.at(call.device).answer(call);
}

int close(int descriptor) {
  static auto* const real = next<int(int)>("close");
  if (g_state != nullptr) {
    const auto open = g_state->open.find(descriptor);
    if (open != g_state->open.end()) {
      g_state->closes.push_back(open->second);
      // For tests of what happens after the last expectation could run.
      std::fprintf(stderr, "close %s\n", open->second.c_str());
      g_state->open.erase(open);
    }
  }
  const int result = real(descriptor);
  if (g_closeError == 0) return result;
  errno = std::exchange(g_closeError, 0);
  return -1;
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  static auto* const real = next<ssize_t(int, const void*, size_t)>("write");
  if (g_writeError == 0) return real(descriptor, bytes, size);
  errno = std::exchange(g_writeError, 0);
  return -1;
}

// The linker sends the library's calls of these functions here.
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
  if (!g_failCalloc) return __real_calloc(count, size);
  g_failCalloc = false;
  return nullptr;
}

int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  if (!g_failLock) return __real_pthread_mutex_lock(mutex);
  g_failLock = false;
  return EINVAL;
}

int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  const int result = __real_pthread_mutex_unlock(mutex);
  if (!g_failUnlock) return result;
  g_failUnlock = false;
  return EINVAL;
}

int __real_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes);
int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes);
int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
  if (!g_failMutex) return __real_pthread_mutex_init(mutex, attributes);
  g_failMutex = false;
  return EINVAL;
}

void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) {
  if (!g_failNew) return __real__ZnwmRKSt9nothrow_t(size, tag);
  g_failNew = false;
  return nullptr;
}

void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) {
  if (!g_failNew) return __real__ZnamRKSt9nothrow_t(size, tag);
  g_failNew = false;
  return nullptr;
}

}  // extern "C"

namespace DeviceShim {

void put(const std::string& device, Answer answer) {
  state().devices[device] = {0, std::move(answer)};
}

void putFailing(const std::string& device, int error) { state().devices[device] = {error, {}}; }

const std::vector<std::string>& opens() { return state().opens; }
const std::vector<std::string>& closes() { return state().closes; }
const std::vector<Call>& calls() { return state().calls; }

void failNextCalloc() { g_failCalloc = true; }
void failNextLock() { g_failLock = true; }
void failNextMutex() { g_failMutex = true; }
void failNextUnlock() { g_failUnlock = true; }
void failNextWrite(int error) { g_writeError = error; }
void failNextClose(int error) { g_closeError = error; }
void failNextNothrowNew() { g_failNew = true; }

}  // namespace DeviceShim

FreshResult runFresh(const std::function<void()>& body) {
  std::fflush(nullptr);
  int ends[2];
  if (pipe(ends) != 0) return {-1, "no pipe"};
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
    body();
    std::exit(testing::Test::HasFailure() ? 1 : 0);
  }
  close(ends[1]);
  FreshResult result{-1, ""};
  char piece[4096];
  for (ssize_t got; (got = read(ends[0], piece, sizeof piece)) > 0;) {
    result.errors.append(piece, static_cast<std::size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}

namespace {

__attribute__((format(printf, 2, 0))) void toStandardError(int priority, const char* format,
                                                           va_list arguments) {
  char text[4096];
  std::vsnprintf(text, sizeof text, format, arguments);
  std::string line = text;
  const std::size_t at = line.find("():");
  if (at != std::string::npos) {
    const std::size_t digits = at + 3;
    line.replace(digits, line.find(' ', at) - digits, "N");
  }
  std::fprintf(stderr, "%d|%s", priority, line.c_str());
}

}  // namespace

void logToStandardError() { FW_RegisterLogger(toStandardError, 6); }
