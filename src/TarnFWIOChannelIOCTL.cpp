#include "TarnFWIOChannelIOCTL.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "TarnFWDirectRequest.h"
#include "TarnFWException.h"
#include "TarnFWIoctl.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

/// The ioctl that carries a message.
constexpr std::uint32_t kSendMessage = 15;

}  // namespace

CTarnFWIOChannelIOCTL::CTarnFWIOChannelIOCTL()
    : CTarnFWIOChannelIOCTL(CTarnFWIoctl::ioctl_devname) {}

CTarnFWIOChannelIOCTL::CTarnFWIOChannelIOCTL(const char* name)
    : name_(name), descriptor_(open(name, O_RDWR)) {
  if (descriptor_ < 0) throw CCannotOpenDevException(name, errno);
}

CTarnFWIOChannelIOCTL::CTarnFWIOChannelIOCTL(int descriptor) : descriptor_(descriptor) {}

CTarnFWIOChannelIOCTL::~CTarnFWIOChannelIOCTL() {
  if (!name_.empty()) close(descriptor_);
}

FWStatus_t CTarnFWIOChannelIOCTL::sendIOCTL(dvs_port_* port, void* message, unsigned int size,
                                            void*) {
  FWIoctlMessage_ block{};
  if (port != nullptr) block.selector = *port;
  block.messageSize = size;
  block.message = addressOf(message);

  // The status of a message stands in its envelopes; that of the frame is not read.
  errno = 0;
  const int result = directRequest(FirewallDevice(descriptor_), kSendMessage, block);
  const int error = errno;  // logging comes in between
  const dvs_port_& selector = block.selector;
  TARNFW_TRACE(
      FW_COMPONENT_IO, 1, "called ioctl [type %d uuid %s idx %d]: %d\n", selectorType(selector),
      std::string(selector.identifier, fieldLength(selector.identifier, sizeof selector.identifier))
          .c_str(),
      static_cast<int>(selectorIndex(selector)), result);
  if (result >= 0) return FW_STATUS_OK;
  if (selectorType(selector) != FW_SELECTOR_NONE && error == ENOENT) {
    throw CPortNotFoundException("ioctl failed because switch port is not found");
  }
  throw CIoctlException(formatText("ioctl failed, errno=%d", error), error);
}

}  // namespace TarnFirewall
