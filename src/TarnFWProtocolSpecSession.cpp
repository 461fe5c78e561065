#include "TarnFWProtocolSpecSession.h"

namespace TarnFirewall {

bool CTarnFWProtocolSpecSession::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (size < sizeof(FWSessionBlock_)) return false;
  host16 flags = loadRecord<host16>(buffer);
  flags = static_cast<std::uint16_t>(flags | flagBits());
  storeRecord(buffer, flags);
  if (written != nullptr) *written = sizeof(FWSessionBlock_);
  return true;
}

}  // namespace TarnFirewall
