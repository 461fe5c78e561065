#include "TarnFWDevice.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstring>

#include "TarnFWException.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

CTarnFWDevice::CTarnFWDevice(const char* name, const LogNames& logNames, int priority)
    : name_(name), logNames_(logNames), priority_(priority), descriptor_(open(name, O_RDWR)) {
  if (descriptor_ < 0) throw CCannotOpenDevException(name, errno);
  trace("GetInstance", "successfully opened");
}

CTarnFWDevice::~CTarnFWDevice() {
  close(descriptor_);
  descriptor_ = -1;
  trace(logNames_.destructor, "closed");
}

void CTarnFWDevice::trace(const char* function, const char* done, int line) const {
  if (verboseLevel(FW_COMPONENT_IO) <= 0) return;
  Logger(priority_, "tarnfw:%s %s:%s():%d %s ioctl device: %s\n",
         g_tarnfw_verbose[FW_COMPONENT_IO].name, logNames_.source, function, line, done, name_);
}

int CTarnFWDevice::sendIoctl(int request, void* argument) {
  const unsigned int number = static_cast<unsigned int>(request);
  const int result = ioctl(descriptor_, number, argument);
  const int error = errno;
  if (result != 0) {
    Logger(LOG_ERR, "tarnfw: %s:%s():%d ioctl cmd %u on device %s failed: %s\n\n", logNames_.source,
           __func__, __LINE__, number, name_, std::strerror(error));
  }
  errno = error;
  return result;
}

}  // namespace TarnFirewall
