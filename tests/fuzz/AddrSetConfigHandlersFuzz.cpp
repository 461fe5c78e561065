// Options and words of the configuration of address sets, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"setaddrsetcfg"};
  // A set of another type has no marks: the command fails then and prints nothing.
  runInput(kCommands, {data, size});
  return 0;
}
