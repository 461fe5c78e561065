// Options of the commands on one connection, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getattrinfo", "getstatedpiinfo"};
  // `getattrinfo` has a status and no text for a request that fails.
  runInput(kCommands, {data, size});
  return 0;
}
