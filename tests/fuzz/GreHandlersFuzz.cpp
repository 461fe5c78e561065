// The command that adds a GRE configuration, with any values.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"gre"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
