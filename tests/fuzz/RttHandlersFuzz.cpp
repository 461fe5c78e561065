// Options of the command that shows the round trips of a flow, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"rtt"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
