// The commands that show the tables and statistics of the insertion device, and any tables.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getsisvctable", "getsinshtable", "getsiproxytable",
                                              "getsisvmstats"};
  requireReason(runInput(kCommands, {data, size}));
  return 0;
}
