// Options of the commands that make and remove filters and agents, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"addfilter",    "deletefilter",  "createagent",
                                              "destroyagent", "registeragent", "deleterules"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
