// The commands on service instances and service profiles, with any words for a transport and
// any records of the kernel.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {
      "createinstance", "replaceinstance", "destroyinstance", "getinstances",
      "createprofile",  "destroyprofile",  "getprofiles"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
