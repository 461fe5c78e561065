#include "TarnFWIoctl.h"

#include <cstdlib>
#include <memory>

#include "Locks.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

constinit const char* CTarnFWIoctl::ioctl_devname = "/dev/brq-tarn";

CTarnFWIoctl::CTarnFWIoctl() : CTarnFWDevice(ioctl_devname, LOG_DEBUG) {}

CTarnFWIoctl* CTarnFWIoctl::GetInstance() {
  static Locks::Mutex mutex;
  static std::unique_ptr<CTarnFWIoctl> instance;
  const Locks::Guard lock(mutex);
  if (instance == nullptr) {
    if (std::getenv("TARN_CONTROL_DEVICE_PATH_OLD") != nullptr) {
      ioctl_devname = "/dev/tarn";
      TARNFW_TRACE(FW_COMPONENT_IO, 0, "using the old tarn device: %s\n", ioctl_devname);
    }
    instance.reset(new CTarnFWIoctl);
  }
  return instance.get();
}

}  // namespace TarnFirewall
