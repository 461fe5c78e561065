#pragma once

/// The firewall's control device, opened once per process.

#include "TarnFWDevice.h"

namespace TarnFirewall {

/// "/dev/brq-tarn", or "/dev/tarn" when the environment variable `TARN_CONTROL_DEVICE_PATH_OLD`
/// exists; its value does not matter, so that an empty one counts too.
class CTarnFWIoctl final : public CTarnFWDevice {
 public:
  /// Opens the device on first use. Throws `CCannotOpenDevException`; the next call tries again.
  static CTarnFWIoctl* GetInstance();

  /// The device's name. The old name overwrites it.
  static const char* ioctl_devname;

 private:
  CTarnFWIoctl();
};

}  // namespace TarnFirewall
