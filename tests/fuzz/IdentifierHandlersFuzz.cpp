// Options and operands of the commands that convert identifiers and numbers into each other. What
// one of them prints for its last operand is read by the other one, and back again.

#include "Fuzz.h"
#include "HandlerFuzz.h"

namespace {

constexpr std::size_t kUuidLength = 36;

/// The last line after its last ": ".
std::string lastResult(const HandlerRun& run) {
  require(run.out.ends_with('\n'));
  const std::size_t colon = run.out.rfind(": ");
  require(colon != std::string::npos);
  return run.out.substr(colon + 2, run.out.size() - colon - 3);
}

std::string converted(const char* command, const std::string& operand) {
  const HandlerRun run = runProgram({command, operand});
  require(run.status == 0 && run.err.empty());
  return lastResult(run);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr const char* kCommands[] = {"number2uuid", "num2uuid", "uuid2number", "uuid2num"};
  const HandlerRun run = runInput(kCommands, {data, size});
  requireReason(run);
  if (run.status != 0 || run.out.empty() || run.out.starts_with("Convert")) return 0;
  const std::string result = lastResult(run);
  if (result.size() == kUuidLength && result.find(',') == std::string::npos) {
    require(converted("number2uuid", converted("uuid2number", result)) == result);
  } else {
    require(converted("uuid2number", converted("number2uuid", result)) == result);
  }
  return 0;
}
