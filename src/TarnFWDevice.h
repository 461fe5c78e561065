#pragma once

/// A control device of the kernel: an open descriptor and the ioctl on it.

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

}  // namespace TarnFirewall
