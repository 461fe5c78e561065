// Options of the commands that show address sets and containers, and replies of any kernel to them.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getaddrsets", "getaddrset", "getcontainers"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
