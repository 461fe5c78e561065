// Options of the commands on connections of a filter, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getconnections", "getconncount", "clrconnection"};
  // A list without a connection prints nothing: its count was the kernel's of a moment before.
  runInput(kCommands, {data, size});
  return 0;
}
