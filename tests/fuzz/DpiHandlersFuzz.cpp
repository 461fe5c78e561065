// Options of the command that asks the inspection process, and what that says.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getdpiinfo"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
