// Options of the command that configures a filter, with what they lead to: texts, files, standard
// input, channels of any kind, and replies of any kernel or peer.

#include "Fuzz.h"
#include "HandlerFuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"tarnfwcli"};
  const HandlerRun run = runInput(kCommands, {data, size});
  // Without anything to load the command fails and says nothing.
  if (run.hostCalls != 0) requireReason(run);
  return 0;
}
