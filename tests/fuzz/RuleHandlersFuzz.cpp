// Options of the commands that show rules, and replies of any kernel to them.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getrules", "getrule"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
