#include "TarnFWIoctl.h"

#include <cstdlib>
#include <memory>

#include "Locks.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

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

extern "C" int FW_Ioctl(int request, void* argument) {
  using namespace TarnFirewall;
  return callDevice(__func__, false,
                    [&] { return CTarnFWIoctl::GetInstance()->sendIoctl(request, argument); });
}
