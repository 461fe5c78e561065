#include "ConfirmSubcommand.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "ApplyConfirm.h"
#include "LanguageText.h"
#include "Options.h"
#include "PolicyProgram.h"
#include "StateFilter.h"

namespace {

constexpr int kNothingStatus = 1;
constexpr OptionForm kForms[] = {{"filter", 'f', true, true}};

void list(const WaitingApply& apply) {
  for (const std::string& filter : apply.filters) {
    std::printf("%s\n", escapedText(filter).c_str());
  }
}

}  // namespace

int runConfirm(int argc, char** argv) {
  std::string filter;
  OptionReader options(argc, argv, kForms);
  while (options.next() != 0) filter = givenFilter(options.argument());
  if (!options.operands().empty()) {
    throw CallError(std::string("unexpected ") + options.operands().front());
  }
  std::vector<WaitingApply> waiting = waitingApplies();
  if (!filter.empty()) {
    std::erase_if(waiting, [&](const WaitingApply& apply) {
      return std::find(apply.filters.begin(), apply.filters.end(), filter) == apply.filters.end();
    });
  }
  if (waiting.empty()) {
    std::fputs("tarnpolicy confirm: nothing waits to be confirmed\n", stderr);
    return kNothingStatus;
  }
  if (waiting.size() > 1) {
    std::fputs("tarnpolicy confirm: several wait; name a filter of one of them (-f):\n", stderr);
    for (const WaitingApply& apply : waiting) list(apply);
    return kTroubleStatus;
  }
  if (!confirmApply(waiting.front())) {
    std::fputs("tarnpolicy confirm: it ended before it was confirmed\n", stderr);
    return kNothingStatus;
  }
  std::puts("Confirmed; these filters keep what they hold now:");
  list(waiting.front());
  return 0;
}
