#pragma once

#include <functional>
#include <string>
#include <vector>

/// Stands in for the control devices of the program it is linked into: it defines `open`, `ioctl`
/// and `close`, so that the library's ordinary calls reach it. A device is a name under "/dev/"
/// that a test has put there; every other file and descriptor passes through untouched.
namespace DeviceShim {

struct Call {
  std::string device;
  unsigned long request;
  void* argument;
};

/// Answers an ioctl: its result, with `errno` set.
using Answer = std::function<int(const Call&)>;

/// Puts a device there. Opening it succeeds; its ioctls get `answer`.
void put(
    const std::string& device, Answer answer = [](const Call&) { return 0; });

/// Opening the device fails with `error`.
void putFailing(const std::string& device, int error);

/// Paths and flags of the opens of control devices so far, failed ones too, as "path flags".
const std::vector<std::string>& opens();

/// Names of the devices that were closed so far.
const std::vector<std::string>& closes();

const std::vector<Call>& calls();

/// The next `calloc` of the library gives null.
void failNextCalloc();

/// The next lock of a mutex by the library fails with `EINVAL`; so does the next making of one, and
/// the next unlock, although the mutex is free after it.
void failNextLock();
void failNextMutex();
void failNextUnlock();

/// The next `write` or `close` of the program fails with `error`. The descriptor is closed all the
/// same, as the system does.
void failNextWrite(int error);
void failNextClose(int error);

/// The next `new (std::nothrow)` of the program gives null, be it of one object or of many.
void failNextNothrowNew();

}  // namespace DeviceShim

/// What a process of its own did.
struct FreshResult {
  int status;          // exit status, or -1 when a signal ended it
  std::string errors;  // what it wrote to standard error
};

/// Runs `body` in a child process and ends that with `exit`, 1 when an expectation failed in it, so
/// that singletons that are made once in a process start anew and go through their ends.
FreshResult runFresh(const std::function<void()>& body);

/// Expects `body` to pass in a process of its own.
#define EXPECT_FRESH(...)                                              \
  do {                                                                 \
    const FreshResult fresh = runFresh(__VA_ARGS__);                   \
    EXPECT_EQ(fresh.status, 0) << "standard error:\n" << fresh.errors; \
  } while (false)

/// Logs to standard error as "priority|text", with the place's line number as N.
void logToStandardError();
