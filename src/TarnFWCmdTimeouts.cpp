#include "TarnFWCmdTimeouts.h"

#include "TarnFWException.h"
#include "TarnFWUtilTimeout.h"

namespace TarnFirewall {

FWInstTimeout_ oneTimeout(const char* name, std::uint32_t value) {
  const unsigned int id = TimeoutName2ID(name);
  if (id >= kTimeouts) throw CInvalidTimeoutException(name == nullptr ? "" : name);
  return oneTimeout(id, value);
}

FWInstTimeout_ oneTimeout(unsigned int id, std::uint32_t value) {
  if (id >= kTimeouts) throw CInvalidTimeoutException(id);
  FWInstTimeout_ timeouts{};
  timeouts.values[id] = value;
  timeouts.marks[id] = 1;
  return timeouts;
}

}  // namespace TarnFirewall
