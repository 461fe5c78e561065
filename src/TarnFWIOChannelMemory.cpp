#include "TarnFWIOChannelMemory.h"

#include <cstring>

#include "TarnFWException.h"

namespace TarnFirewall {

FWStatus_t CTarnFWIOChannelMemory::sendIOCTL(dvs_port_* port, void* message, unsigned int size,
                                             void*) {
  const std::size_t selector = port != nullptr ? sizeof *port : 0;
  const std::size_t needed = selector + size;
  if (needed > length_) throw COutOfMemoryException(static_cast<int>(needed));
  validateMessage(message, size);
  auto* to = static_cast<std::byte*>(memory_);
  if (port != nullptr) std::memcpy(to, port, selector);
  std::memcpy(to + selector, message, size);
  return FW_STATUS_OK;
}

}  // namespace TarnFirewall
