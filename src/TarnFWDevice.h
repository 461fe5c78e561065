#pragma once

/// A control device of the kernel: an open descriptor and the ioctl on it.

#include <cerrno>

#include "TarnFWException.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

/// Base of the three devices. Each is opened once per process by its own `GetInstance`, whose mutex
/// guards the opening only: ioctls are not serialised here. The descriptor closes with the process.
class CTarnFWDevice {
 public:
  /// Result of the ioctl, with `errno` as the ioctl left it. A result other than 0 is logged.
  int sendIoctl(int request, void* argument);

  int descriptor() const { return descriptor_; }

  CTarnFWDevice(const CTarnFWDevice&) = delete;
  CTarnFWDevice& operator=(const CTarnFWDevice&) = delete;

 protected:
  /// Opens `name`, which must outlive the device. Opening and closing are logged at `priority`.
  /// Throws `CCannotOpenDevException`.
  CTarnFWDevice(const char* name, int priority);
  ~CTarnFWDevice();

 private:
  const char* name_;
  int priority_;
  int descriptor_;
};

/// Runs a direct request. An exception is logged and gives -1, and `errno` stays as it was when the
/// exception was caught. `named` puts the function's name in front of the logged text.
template <typename Body>
int callDevice(const char* function, bool named, Body&& body) {
  try {
    return body();
  } catch (const CTarnFWException& e) {
    const int error = errno;
    if (named) {
      TARNFW_WARNING("%s: error %d: %s\n", function, e.retcode(), e.what());
    } else {
      TARNFW_WARNING("error %d: %s\n", e.retcode(), e.what());
    }
    errno = error;
  } catch (...) {
    const int error = errno;
    TARNFW_WARNING("%s: encountered internal error\n", function);
    errno = error;
  }
  return -1;
}

}  // namespace TarnFirewall
