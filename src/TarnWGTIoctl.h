#pragma once

/// The control device of the host's packet-filter framework, with the filter tables.

#include "TarnFWDevice.h"

namespace TarnFirewall {

class CTarnWGTIoctl final : public CTarnFWDevice {
 public:
  /// Opens "/dev/weirgatetbl" on first use. Throws `CCannotOpenDevException`; the next call tries
  /// again.
  static CTarnWGTIoctl* GetInstance();

  static const char* const ioctl_devname;

 private:
  CTarnWGTIoctl();
};

}  // namespace TarnFirewall
