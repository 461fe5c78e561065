// Options of the command that lists filters, and lists of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getfilters"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
