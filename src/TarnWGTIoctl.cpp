#include "TarnWGTIoctl.h"

#include <memory>

#include "Locks.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

constinit const char* const CTarnWGTIoctl::ioctl_devname = "/dev/weirgatetbl";

CTarnWGTIoctl::CTarnWGTIoctl() : CTarnFWDevice(ioctl_devname, LOG_DEBUG) {}

CTarnWGTIoctl* CTarnWGTIoctl::GetInstance() {
  static Locks::Mutex mutex;
  static std::unique_ptr<CTarnWGTIoctl> instance;
  const Locks::Guard lock(mutex);
  if (instance == nullptr) instance.reset(new CTarnWGTIoctl);
  return instance.get();
}

}  // namespace TarnFirewall
