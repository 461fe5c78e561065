// Options of the commands on filter tables, tables of any kernel, and any list of machines.

#include <iterator>

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"getfiltertables", "setfiltertables",
                                              "clearallfilters", "clrwgttable", "revalidatevm"};
  const HandlerRun run = runInput(kCommands, {data, size});
  // The last one leaves it to the log; the one before prints nothing without memory.
  if (size != 0 && data[0] % std::size(kCommands) < 3) requireReason(run);
  return 0;
}
