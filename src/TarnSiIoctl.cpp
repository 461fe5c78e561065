#include "TarnSiIoctl.h"

#include <string>

#include "Locks.h"
#include "TarnFWLog.h"
#include "TarnFWWire.h"

namespace TarnSi {

using namespace TarnFirewall;

namespace {

/// Bytes of a request frame of this device.
constexpr std::size_t kFrameSize = 32;

}  // namespace

constinit const char* const CTarnSiIoctl::ioctl_devname = "/dev/brq-tarn-ploy";

CTarnSiIoctl::CTarnSiIoctl()
    : CTarnFWDevice(ioctl_devname, {"TarnSiIoctl", "~CTarnSiIoctl"}, LOG_INFO) {}

CTarnSiIoctl* CTarnSiIoctl::GetInstance() {
  return Locks::onlyInstance<CTarnSiIoctl>([] { return new CTarnSiIoctl; });
}

int CTarnSiIoctl::sendIoctl(int request, void* argument) {
  const int result = CTarnFWDevice::sendIoctl(request, argument);
  const int error = errno;
  // The log's readers know this line: the frame is shown as if it were text, up to its first NUL or
  // its end, and "successfully" also after a failure.
  const char* frame = static_cast<const char*>(argument);
  const std::string data =
      frame != nullptr ? std::string(frame, fieldLength(frame, kFrameSize)) : "(null)";
  TARNFW_INFO("successfully sent cmd %d with data %s\n", request, data.c_str());
  errno = error;
  return result;
}

}  // namespace TarnSi
