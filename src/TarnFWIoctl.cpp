#include "TarnFWIoctl.h"

#include <cstdlib>

#include "Locks.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

constinit const char* CTarnFWIoctl::ioctl_devname = "/dev/brq-tarn";

CTarnFWIoctl::CTarnFWIoctl()
    : CTarnFWDevice(ioctl_devname, {"TarnFWIoctl", "~CTarnFWIoctl"}, LOG_DEBUG) {}

CTarnFWIoctl* CTarnFWIoctl::GetInstance() {
  return Locks::onlyInstance<CTarnFWIoctl>([function = __func__] {
    if (std::getenv("TARN_CONTROL_DEVICE_PATH_OLD") != nullptr) {
      ioctl_devname = "/dev/tarn";
      TARNFW_TRACE_IN(function, LOG_DEBUG, FW_COMPONENT_IO, 0, "using the old tarn device: %s\n",
                      ioctl_devname);
    }
    return new CTarnFWIoctl;
  });
}

}  // namespace TarnFirewall
