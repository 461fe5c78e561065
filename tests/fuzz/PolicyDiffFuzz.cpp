// Two configuration texts, up to the first NUL and after it: either is refused with a reason, or
// both make states, whose differences are found and written, and which are saved as texts that make
// them again.

#include <string>

#include "DiffText.h"
#include "Fuzz.h"
#include "SaveText.h"
#include "StateText.h"

namespace {

/// The state is saved as a text that makes what it says; the same when nothing is missing in it.
void checkSaved(const State& state) {
  const SavedText saved = saveText(state);
  require(stateOfText(saved.text, "saved").state == saved.made);
  require(saved.missing.empty() == (saved.made == state));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = input.find('\0');
  State a, b;
  try {
    a = stateOfText(input.substr(0, end), "a").state;
    b = stateOfText(end == input.npos ? std::string() : input.substr(end + 1), "b").state;
  } catch (const StateError& e) {
    require(*e.what() != '\0');
    return 0;
  }
  const StateDiff diff = differencesOf(a, b);
  require(diff.isEmpty() == differencesOf(b, a).isEmpty());
  require(diff.isEmpty() == diffText(diff).empty());
  if (a == b) require(diff.isEmpty());
  diffStatistics(diff);
  checkSaved(a);
  checkSaved(b);
  return 0;
}
