#include "ApplySubcommand.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ApplyConfirm.h"
#include "ApplyFilter.h"
#include "ApplyProgress.h"
#include "ApplySignals.h"
#include "FilterNames.h"
#include "LanguageText.h"
#include "Options.h"
#include "PlanCommand.h"
#include "ShownText.h"
#include "StateFilter.h"
#include "StateText.h"
#include "TarnFWText.h"

using TarnFirewall::formatText;

namespace {

constexpr int kFailedStatus = 1;
constexpr int kMixtureStatus = 3;
constexpr unsigned int kMostSeconds = 86400;

constexpr OptionForm kForms[] = {{"filter", 'f', true, true},
                                 {"agent", 'a', true, true},
                                 {"dry-run", 'n', true, false},
                                 {"confirm", 'c', true, true},
                                 {"partial", 'p', false, false}};

struct ApplyCall {
  std::vector<std::string> filters;
  std::string agent;
  std::string file;
  bool dryRun = false;
  bool partial = false;
  unsigned int confirmSeconds = 0;  // 0 for no confirmation
};

unsigned int secondsOf(const char* text) {
  unsigned int seconds = 0;
  const char* const end = text + std::strlen(text);
  const auto [after, error] = std::from_chars(text, end, seconds);
  if (error != std::errc() || after != end || seconds == 0 || seconds > kMostSeconds) {
    throw CallError(formatText("the seconds must be a number from 1 to %u", kMostSeconds));
  }
  return seconds;
}

void takeFilter(ApplyCall& call, const std::string& name) {
  if (std::find(call.filters.begin(), call.filters.end(), name) == call.filters.end()) {
    call.filters.push_back(name);
  }
}

ApplyCall readCall(int argc, char** argv) {
  ApplyCall call;
  OptionReader options(argc, argv, kForms);
  while (const char letter = options.next()) {
    switch (letter) {
      case 'f':
        takeFilter(call, givenFilter(options.argument()));
        break;
      case 'a':
        call.agent = options.argument();
        if (call.agent.empty()) throw CallError("the agent's name is empty");
        break;
      case 'n':
        call.dryRun = true;
        break;
      case 'c':
        call.confirmSeconds = secondsOf(options.argument());
        break;
      default:
        call.partial = true;
        break;
    }
  }
  const auto operands = options.operands();
  if (operands.empty()) throw CallError("the file is missing");
  if (operands.size() > 1) throw CallError(std::string("unexpected ") + operands[1]);
  call.file = operands.front();
  if (call.filters.empty() == call.agent.empty()) {
    throw CallError("either filters (-f) or an agent (--agent) must be given");
  }
  return call;
}

/// The state that the text makes. Throws `StateError` for one that no filter can be given whole.
State wantedState(const ApplyCall& call) {
  StateText text = stateOfFile(call.file.c_str());
  const std::string name = call.file == "-" ? "standard input" : call.file;
  if (!text.others.empty()) {
    const std::string first = "`" + escapedText(text.others.front()) + "'";
    if (!call.partial) {
      throw StateError(name + ": " + first +
                       " is no part of a policy and would not be carried out; load it by tarnioctl "
                       "tarnfwcli, or pass it over with --partial");
    }
    std::fprintf(stderr, "tarnpolicy apply: %s: passed over: %s, the first is %s\n",
                 shownLine(name, kLongestMessage).c_str(),
                 countedText(text.others.size(), "statement").c_str(), first.c_str());
  }
  if (const std::string obstacle = obstacleOf(text.state); !obstacle.empty()) {
    throw StateError(name + ": " + obstacle);
  }
  return std::move(text.state);
}

/// A filter that did not get the policy.
struct Failure {
  const std::string* filter;  // its name, which outlives this
  ApplyReport report;
};

class Apply {
 public:
  explicit Apply(const ApplyCall& call) : call_(call), wanted_(wantedState(call)) {}

  int run() {
    const FilterLibrary library;
    names_ = call_.agent.empty() ? call_.filters : filtersOfAgent(call_.agent);
    // What a filter has become is noted without memory.
    done_.reserve(names_.size());
    failures_.reserve(names_.size());
    const ApplySignals signals;
    std::optional<ConfirmPlace> place;
    if (call_.confirmSeconds != 0 && !call_.dryRun) place.emplace();
    for (const std::string& name : names_) one(library.handle(), name);
    if (place && !done_.empty()) confirm(*place);
    withoutMemory([this] { printFailures(); });
    return status();
  }

 private:
  /// Runs what only prints and tidies up; what has been done does not depend on it.
  template <typename Body>
  static void withoutMemory(Body body) {
    try {
      body();
    } catch (const std::bad_alloc&) {
      std::fprintf(stderr, "tarnpolicy apply: %s\n", kOutOfMemory);
    }
  }

  void one(TarnFirewall::fwlibhandle_* library, const std::string& name) {
    try {
      tryOne(library, name);
    } catch (const std::bad_alloc&) {
      failed(name, {ApplyEnd::untouched, 0, kOutOfMemory, {}});
    }
  }

  void tryOne(TarnFirewall::fwlibhandle_* library, const std::string& name) {
    if (ApplySignals::seen() != 0 || stopped_) {
      failed(name, {ApplyEnd::untouched, 0, "not begun", {}});
      return;
    }
    try {
      auto filter = std::make_unique<ApplyFilter>(library, name);
      filter->prepare(wanted_, call_.partial, !call_.dryRun);
      if (call_.dryRun) {
        printPlan(*filter);
      } else if (filter->plan().empty()) {
        withoutMemory([&] {
          const std::string removed = keep(*filter);
          std::printf("%s: nothing to do\n%s", shown(name).c_str(), removed.c_str());
        });
      } else {
        change(name, std::move(filter));
      }
    } catch (const StateError& e) {
      failed(name, {ApplyEnd::untouched, 0, e.what(), {}});
    }
  }

  void printPlan(const ApplyFilter& filter) {
    std::printf("# %s: %s\n", shown(filter.name()).c_str(), counted(filter.plan()).c_str());
    for (const PlanStep& step : filter.plan()) std::fputs(stepText(step, wanted_).c_str(), stdout);
  }

  void change(const std::string& name, std::unique_ptr<ApplyFilter> filter) {
    ProgressLine line(shown(name));
    ApplyReport report = filter->run([&](std::size_t done, std::size_t all) {
      line.show(done, all);
      return ApplySignals::seen() == 0;
    });
    line.clear();
    if (report.end != ApplyEnd::done) {
      failed(name, std::move(report));
      return;
    }
    withoutMemory([&] {
      std::printf("%s: done, %s\n", shown(name).c_str(), counted(filter->plan()).c_str());
    });
    if (call_.confirmSeconds == 0) {
      withoutMemory([&] { std::fputs(keep(*filter).c_str(), stdout); });
    } else {
      done_.push_back(std::move(filter));
    }
  }

  /// Gives a line for each file of an earlier call that has gone.
  static std::string keep(ApplyFilter& filter) {
    std::string lines;
    for (const std::string& path : filter.keep()) {
      lines += shown(filter.name()) + ": removed " + printableText(path) +
               ", which an earlier call left\n";
    }
    return lines;
  }

  void confirm(ConfirmPlace& place) {
    try {
      const ConfirmEnd end = ask(place);
      if (end != ConfirmEnd::confirmed) return undo(reasonOf(end));
    } catch (const std::bad_alloc&) {
      return undo(kOutOfMemory);
    }
    std::puts("confirmed");
    for (const auto& filter : done_) {
      withoutMemory([&] { std::fputs(keep(*filter).c_str(), stdout); });
    }
  }

  ConfirmEnd ask(ConfirmPlace& place) {
    std::vector<std::string> names;
    for (const auto& filter : done_) names.push_back(filter->name());
    std::fflush(stdout);
    // Keys count from the message on.
    const bool asksTerminal = call_.file != "-" && place.askTerminal();
    std::fprintf(stderr,
                 "tarnpolicy apply: undone in %s unless confirmed%s by "
                 "\"tarnpolicy confirm\" elsewhere\n",
                 countedText(call_.confirmSeconds, "second").c_str(),
                 asksTerminal ? ": by Enter here, or" : "");
    return place.wait(names, call_.confirmSeconds);
  }

  void undo(const std::string& reason) {
    // First the filters: a terminal that is lost may hold up whoever writes to it.
    for (const auto& filter : done_) failed(filter->name(), filter->undo(reason));
  }

  static std::string reasonOf(ConfirmEnd end) {
    switch (end) {
      case ConfirmEnd::refused:
        return "not confirmed";
      case ConfirmEnd::interrupted:
        return std::string("not confirmed, ") + signalName(ApplySignals::seen());
      default:
        return "not confirmed in time";
    }
  }

  void failed(const std::string& name, ApplyReport report) {
    // One that can't be put back says that something is wrong with more than this filter.
    stopped_ = stopped_ || report.end == ApplyEnd::mixture;
    failures_.push_back({&name, std::move(report)});
  }

  static std::string reasonOf(const Failure& failure) {
    const std::string& reason = failure.report.reason;
    const std::string prefix = "filter " + *failure.filter + ": ";
    return shownLine(reason.starts_with(prefix) ? reason.substr(prefix.size()) : reason,
                     kLongestMessage);
  }

  void printFailures() const {
    if (failures_.empty()) return;
    std::fflush(stdout);
    for (const Failure& failure : failures_) {
      if (failure.report.end == ApplyEnd::mixture) printMixture(failure);
    }
    std::fprintf(stderr, "tarnpolicy apply: %zu of %zu filters failed:\n", failures_.size(),
                 names_.size());
    std::size_t width = std::strlen("FILTER");
    for (const Failure& failure : failures_) {
      width = std::max(width, shown(*failure.filter).size());
    }
    const auto row = [&](const std::string& filter, const char* holds, const std::string& why) {
      std::fprintf(stderr, "  %-*s  %-13s  %s\n", static_cast<int>(width), filter.c_str(), holds,
                   why.c_str());
    };
    row("FILTER", "HOLDS", "WHY");
    for (const Failure& failure : failures_) {
      row(shown(*failure.filter), heldBy(failure.report.end), reasonOf(failure));
    }
  }

  static void printMixture(const Failure& failure) {
    const ApplyReport& report = failure.report;
    if (report.file.empty()) {
      std::fprintf(stderr, "tarnpolicy apply: filter %s holds a mixture: %s",
                   shown(*failure.filter).c_str(), report.instructions.c_str());
      return;
    }
    // Without memory; the file is named after the filter.
    std::fprintf(stderr, "tarnpolicy apply: a filter holds a mixture; the earlier state is in %s\n",
                 report.file.c_str());
  }

  static const char* heldBy(ApplyEnd end) {
    if (end == ApplyEnd::mixture) return "a mixture";
    return end == ApplyEnd::untouched ? "what it held" : "earlier state";
  }

  int status() const {
    const auto isMixture = [](const Failure& failure) {
      return failure.report.end == ApplyEnd::mixture;
    };
    if (std::any_of(failures_.begin(), failures_.end(), isMixture)) return kMixtureStatus;
    return failures_.empty() ? 0 : kFailedStatus;
  }

  static std::string shown(const std::string& name) { return escapedText(name); }

  static std::string counted(const std::vector<PlanStep>& plan) {
    return plan.empty() ? "nothing to do" : countedText(plan.size(), "statement");
  }

  const ApplyCall& call_;
  State wanted_;
  std::vector<std::string> names_;
  std::vector<std::unique_ptr<ApplyFilter>> done_;  // that wait to be confirmed
  std::vector<Failure> failures_;
  bool stopped_ = false;
};

}  // namespace

int runApply(int argc, char** argv) {
  const ApplyCall call = readCall(argc, argv);
  return Apply(call).run();
}
