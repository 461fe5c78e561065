// Options of the commands that trace, and what a daemon or a kernel says.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"tracehulld", "tracetarn"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
