#pragma once

/// The control device of service insertion.

#include "TarnFWDevice.h"

namespace TarnSi {

class CTarnSiIoctl final : public TarnFirewall::CTarnFWDevice {
 public:
  /// Opens "/dev/brq-tarn-ploy" on first use. Throws `CCannotOpenDevException`; the next call tries
  /// again.
  static CTarnSiIoctl* GetInstance();

  /// As the base's, and logs every request at info level, also a failed one. `argument` is null or
  /// a request frame.
  int sendIoctl(int request, void* argument);

  static const char* const ioctl_devname;

 private:
  CTarnSiIoctl();
};

}  // namespace TarnSi
