#include "DiffSubcommand.h"

#include <cstdio>
#include <string>

#include "DiffText.h"
#include "Options.h"
#include "StateSource.h"

namespace {

constexpr int kDifferentStatus = 1;

constexpr OptionForm kForms[] = {{"stat", 's', false, false}, {"json", 'j', false, false}};

}  // namespace

int runDiff(int argc, char** argv) {
  bool statistics = false;
  bool json = false;
  OptionReader options(argc, argv, kForms);
  while (const char letter = options.next()) (letter == 's' ? statistics : json) = true;
  if (statistics && json) throw CallError("--stat and --json exclude each other");
  const auto operands = options.operands();
  if (operands.size() != 2) throw CallError("there must be two policies to compare");
  const std::string a = operands[0];
  const std::string b = operands[1];
  if (a == "-" && b == "-") throw CallError("standard input can be one of the two only");

  const State before = stateOfSource(a);
  const State after = stateOfSource(b);
  const StateDiff diff = differencesOf(before, after);
  // The frame sees whether the output arrives.
  if (json) {
    writeDiffJson(diff, stdout);
  } else if (!diff.isEmpty()) {
    const std::string text = statistics ? diffStatistics(diff) : diffText(diff);
    std::fwrite(text.data(), 1, text.size(), stdout);
  }
  return diff.isEmpty() ? 0 : kDifferentStatus;
}
