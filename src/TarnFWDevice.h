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

/// Where a direct request stands, for its log lines.
struct DevicePlace {
  const char* source;
  const char* function;
  int line;
};

/// Runs a direct request. An exception is logged under `place` and gives -1, and `errno` stays as
/// it was when the exception was caught. `named` puts the function's name in front of the logged
/// text.
template <typename Body>
int callDevice(const DevicePlace& place, bool named, Body&& body) {
  try {
    return body();
  } catch (const CTarnFWException& e) {
    const int error = errno;
    if (named) {
      Logger(LOG_WARNING, "tarnfw: %s:%s():%d %s: error %d: %s\n", place.source, place.function,
             place.line, place.function, e.retcode(), e.what());
    } else {
      Logger(LOG_WARNING, "tarnfw: %s:%s():%d error %d: %s\n", place.source, place.function,
             place.line, e.retcode(), e.what());
    }
    errno = error;
  } catch (...) {
    const int error = errno;
    Logger(LOG_WARNING, "tarnfw: %s:%s():%d %s: encountered internal error\n", place.source,
           place.function, place.line, place.function);
    errno = error;
  }
  return -1;
}

}  // namespace TarnFirewall

/// The function that it stands in.
#define TARNFW_DEVICE_PLACE \
  ::TarnFirewall::DevicePlace { ::TarnFirewall::sourceName<__FILE_NAME__>(), __func__, __LINE__ }
