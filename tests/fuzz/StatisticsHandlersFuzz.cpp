// Options of the commands on the statistics of a filter, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getfilterstat", "clearfilterstat"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
