// Options of the commands that make direct requests, and replies of any device.

#include <iterator>

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getfwstatus", "getthresholds", "setthresholds",
                                              "setfilterflags"};
  const HandlerRun run = runInput(kCommands, {data, size});
  // The first one prints nothing when its requests fail.
  if (size != 0 && data[0] % std::size(kCommands) != 0) requireReason(run);
  return 0;
}
