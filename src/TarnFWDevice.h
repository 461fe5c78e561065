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
  /// How lines in the log name the class of a device, which scripts match.
  struct LogNames {
    const char* source;
    const char* destructor;
  };

  /// Opens `name`, which must outlive the device. Opening and closing are logged at `priority`.
  /// Throws `CCannotOpenDevException`.
  CTarnFWDevice(const char* name, const LogNames& logNames, int priority);
  ~CTarnFWDevice();

 private:
  /// Logs what was done to the device in `function`.
  void trace(const char* function, const char* done, int line = __builtin_LINE()) const;

  const char* name_;
  LogNames logNames_;
  int priority_;
  int descriptor_;
};

}  // namespace TarnFirewall
