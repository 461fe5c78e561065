#include "TarnFWDevice.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstring>

#include "TarnFWException.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

CTarnFWDevice::CTarnFWDevice(const char* name, int priority)
    : name_(name), priority_(priority), descriptor_(open(name, O_RDWR)) {
  if (descriptor_ < 0) throw CCannotOpenDevException(name, errno);
  TARNFW_TRACE_AT(priority_, FW_COMPONENT_IO, 0, "successfully opened ioctl device: %s\n", name_);
}

CTarnFWDevice::~CTarnFWDevice() {
  close(descriptor_);
  descriptor_ = -1;
  TARNFW_TRACE_AT(priority_, FW_COMPONENT_IO, 0, "closed ioctl device: %s\n", name_);
}

int CTarnFWDevice::sendIoctl(int request, void* argument) {
  const unsigned int number = static_cast<unsigned int>(request);
  const int result = ioctl(descriptor_, number, argument);
  const int error = errno;
  if (result != 0) {
    TARNFW_ERROR("ioctl cmd %u on device %s failed: %s\n\n", number, name_, std::strerror(error));
  }
  errno = error;
  return result;
}

}  // namespace TarnFirewall
