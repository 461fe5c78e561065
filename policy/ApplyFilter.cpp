#include "ApplyFilter.h"

#include <unistd.h>

#include <new>
#include <optional>

#include "HeldState.h"
#include "PlanCommand.h"
#include "SaveText.h"
#include "StateFilter.h"
#include "TarnFWCmdRun.h"
#include "TarnFWException.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

/// How often putting the earlier state back is tried; between two tries the program waits a second,
/// as it does for a kernel that is busy.
constexpr int kTries = 3;
constexpr unsigned int kPauseSeconds = 1;

/// A word as a shell takes it. What a terminal would obey stands as `$'\033'`.
std::string inCommand(const std::string& word) {
  std::string quotedWord = "'";
  for (const char c : word) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\'') {
      quotedWord += "'\\''";
    } else if (byte < 0x20 || byte == 0x7f) {
      quotedWord += formatText("'$'\\%03o''", byte);
    } else {
      quotedWord += c;
    }
  }
  return quotedWord + "'";
}

/// Room that putting a state back takes, for each record: in the list that is read, in the state,
/// in its growth, and in the message.
constexpr std::size_t kCopies = 4;
constexpr std::size_t kLeastRoom = std::size_t{1} << 20;

std::size_t roomOf(const State& state) {
  std::size_t bytes = 0;
  for (const auto& [name, set] : state.sets) {
    bytes += set.addresses.size() * sizeof(FWAddress_);
    for (const std::string& element : set.elements) bytes += element.size();
  }
  for (const auto& [name, set] : state.ruleSets) bytes += set.count() * sizeof(FWRule_);
  return bytes * kCopies;
}

}  // namespace

ApplyFilter::ApplyFilter(fwlibhandle_* library, std::string name)
    : library_(library), name_(std::move(name)), port_(filterSelector(name_)) {}

void ApplyFilter::prepare(const State& wanted, bool partial, bool toRun) {
  if (toRun) lock_ = std::make_unique<JournalLock>(name_);
  wanted_ = &wanted;
  partial_ = partial;
  if (filterHolds(library_, port_, wanted)) return;
  earlier_ = held();
  plan_ = planSteps(earlier_, wanted);
  if (plan_.empty()) {
    earlier_ = {};
    return;
  }
  SavedText saved = saveText(earlier_);
  earlierText_ = std::move(saved.text);
  if (saved.missing.empty() || partial) return;
  throw StateError(formatText("it holds what no file can keep (%zu in all); --partial goes on: ",
                              saved.missing.size()) +
                   saved.missing.front());
}

State ApplyFilter::held() const {
  // Who puts a state back must know all of it.
  return stateOfFilter(library_, port_, name_, PurgedRuleSets::refuse);
}

void ApplyFilter::send(const PlanStep& step, const State& to) {
  FWStatus_t status = FW_STATUS_OK;
  try {
    const auto command = stepCommand(step, to, &port_);
    wasSent_ = true;
    status = ::TarnFirewall::run(*fromLibHandle(library_), *command, nullptr);
  } catch (const CTarnFWException& e) {
    status = static_cast<FWStatus_t>(e.retcode());
  }
  if (status == FW_STATUS_OK) return;
  throw StateError("`" + shownStep(step, to) + "' failed: " + statusReason(status));
}

ApplyReport ApplyFilter::run(const ApplyProgress& progress) {
  wasSent_ = false;
  done_ = 0;
  try {
    reserve_ = std::make_unique_for_overwrite<std::byte[]>(roomOf(earlier_) + roomOf(*wanted_) +
                                                           kLeastRoom);
    ApplyReport report = carryOut(progress);
    reserve_.reset();
    return report;
  } catch (const std::bad_alloc&) {
    if (wasSent_) return restore(kOutOfMemory);
  }
  file_.remove();
  return {ApplyEnd::untouched, 0, kOutOfMemory, {}};
}

ApplyReport ApplyFilter::carryOut(const ApplyProgress& progress) {
  try {
    file_.write(name_, earlierText_);
  } catch (const StateError& e) {
    return {ApplyEnd::untouched, 0, e.what(), {}};
  }
  earlierText_ = std::string();
  for (const PlanStep& step : plan_) {
    if (!progress(done_, plan_.size())) {
      if (done_ > 0) return restore("interrupted");
      file_.remove();
      return {ApplyEnd::untouched, 0, "interrupted", {}};
    }
    try {
      send(step, *wanted_);
    } catch (const StateError& e) {
      return restore(e.what());
    }
    ++done_;
  }
  return {ApplyEnd::done, plan_.size(), {}, {}};
}

std::vector<std::string> ApplyFilter::keep() {
  file_.remove();
  return removeLeftFiles(name_);
}

ApplyReport ApplyFilter::undo(const std::string& reason) { return restore(reason); }

ApplyReport ApplyFilter::restore(const std::string& reason) {
  reserve_.reset();
  try {
    return tryRestore(reason);
  } catch (const std::bad_alloc&) {
    return {ApplyEnd::mixture, done_, kOutOfMemory, {}, file_.takePath()};
  }
}

ApplyReport ApplyFilter::tryRestore(const std::string& reason) {
  std::string problem;
  std::optional<State> known;  // by what was read and answered last
  for (int attempt = 0; attempt < kTries; ++attempt) {
    if (attempt > 0) sleep(kPauseSeconds);
    try {
      // What the filter holds now decides, not what was sent: a statement that failed may have
      // been carried out all the same.
      known = held();
      for (const PlanStep& step : planSteps(*known, earlier_)) {
        send(step, earlier_);
        applyStep(*known, step, earlier_);
      }
      file_.remove();
      return {ApplyEnd::restored, done_, reason, {}};
    } catch (const StateError& e) {
      problem = e.what();
    } catch (const std::bad_alloc&) {
      problem = kOutOfMemory;
    }
  }
  if (!known) {
    known = earlier_;
    for (std::size_t i = 0; i < done_; ++i) applyStep(*known, plan_[i], *wanted_);
  }
  return reportMixture(reason, problem, *known);
}

ApplyReport ApplyFilter::reportMixture(const std::string& reason, const std::string& problem,
                                       const State& known) const {
  ApplyReport report{ApplyEnd::mixture, done_, reason, {}};
  std::string& text = report.instructions;
  text = formatText("%zu of %zu statements were carried out", done_, plan_.size());
  text += ": " + reason + "\nPutting the earlier state back failed too: " + problem + "\n";
  text += "The earlier state is in " + file_.path();
  if (partial_) text += ", as far as the language can say it";
  text += ". This puts it back:\n    tarnpolicy apply " +
          std::string(partial_ ? "--partial " : "") + "-f " + inCommand(name_) + " " +
          inCommand(file_.path()) + "\n";
  const std::vector<PlanStep> rest = planSteps(known, earlier_);
  if (rest.empty()) return report;
  text += "Statement by statement, after those that were answered, these are still to be done:\n";
  for (const PlanStep& step : rest) text += stepText(step, earlier_);
  return report;
}
