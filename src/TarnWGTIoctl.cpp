#include "TarnWGTIoctl.h"

#include "Locks.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

constinit const char* const CTarnWGTIoctl::ioctl_devname = "/dev/weirgatetbl";

CTarnWGTIoctl::CTarnWGTIoctl()
    : CTarnFWDevice(ioctl_devname, {"TarnWGTIoctl", "~CTarnWGTIoctl"}, LOG_DEBUG) {}

CTarnWGTIoctl* CTarnWGTIoctl::GetInstance() {
  return Locks::onlyInstance<CTarnWGTIoctl>([] { return new CTarnWGTIoctl; });
}

}  // namespace TarnFirewall
