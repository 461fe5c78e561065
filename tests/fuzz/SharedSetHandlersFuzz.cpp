// Options of the commands that set one switch, and replies of any kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"setsharedaddrset", "getsharedaddrset",
                                              "seticmperrpktdrop"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
