#include "TarnFWDirectRequest.h"

#include <sys/ioctl.h>

namespace TarnFirewall {

int DeviceLine::send(std::uint32_t number, void* argument) const {
  return call_ != nullptr ? call_(static_cast<int>(number), argument)
                          : ioctl(descriptor_, number, argument);
}

int directRequest(const FirewallDevice& device, std::uint32_t number, RequestMemory body,
                  std::uint32_t* frameStatus) {
  FWIoctlFrame frame{};
  frame.command = number;
  frame.bodyLength = body.size;
  frame.body = addressOf(body.at);
  if (frameStatus == nullptr) return device.send(number, &frame);

  frame.status = *frameStatus;
  const int result = device.send(number, &frame);
  *frameStatus = frame.status;
  return result;
}

int directRequest(const InsertionDevice& device, std::uint32_t number, RequestMemory input,
                  RequestMemory output) {
  SIIoctlFrame frame{};
  frame.command = number;
  frame.inputLength = input.size;
  frame.outputLength = output.size;
  frame.input = addressOf(input.at);
  frame.output = addressOf(output.at);
  return device.send(number, &frame);
}

}  // namespace TarnFirewall
