// Options of setflowexclusion and getflowexclusion, and definitions of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getflowexclusion", "setflowexclusion"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
