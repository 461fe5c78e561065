// Options of getflows, and flows of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getflows"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
