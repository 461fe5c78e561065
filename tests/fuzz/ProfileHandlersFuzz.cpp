// Options of the commands on names and on layer 7, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"setdnsconfigprofile", "getdnsconfigprofile",
                                              "setcopymode"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
