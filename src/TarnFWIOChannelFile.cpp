#include "TarnFWIOChannelFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

std::string errorText(int error) {
  char buffer[256];
  return strerror_r(error, buffer, sizeof buffer);
}

}  // namespace

CTarnFWIOChannelFile::CTarnFWIOChannelFile(const char* name)
    : name_(name), descriptor_(open(name, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0644)) {
  if (descriptor_ < 0) throw CCannotOpenFileException(name, errorText(errno));
}

CTarnFWIOChannelFile::~CTarnFWIOChannelFile() {
  close(descriptor_);
  descriptor_ = -1;
}

void CTarnFWIOChannelFile::write(const void* bytes, std::size_t size) {
  // A short write is no failure: the file is for people who inspect messages.
  if (::write(descriptor_, bytes, size) < 0) {
    const int error = errno;
    throw CIoctlException(errorText(error), error);
  }
}

FWStatus_t CTarnFWIOChannelFile::sendIOCTL(dvs_port_* port, void* message, unsigned int size,
                                           void*) {
  if (port != nullptr) write(port, sizeof *port);
  write(message, size);
  return FW_STATUS_OK;
}

}  // namespace TarnFirewall
