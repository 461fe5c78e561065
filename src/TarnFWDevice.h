#pragma once

/// A control device of the kernel: an open descriptor and the ioctl on it.

#include <cerrno>

#include "TarnFWLibCall.h"

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

/// Runs a direct request. An exception is logged under the place of the call and gives -1, and
/// `errno` stays as it was when the exception was caught. `named` puts the function's name in front
/// of the logged text.
template <typename Body>
int callDevice(const char* function, bool named, Body&& body, const char* file = __builtin_FILE(),
               int line = __builtin_LINE()) {
  try {
    return body();
  } catch (...) {
    const int error = errno;
    statusOfException({function, file, line}, named);
    errno = error;
  }
  return -1;
}

}  // namespace TarnFirewall
