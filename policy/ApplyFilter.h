#pragma once

/// One filter that is brought to a state, or back.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Journal.h"
#include "Plan.h"
#include "State.h"
#include "TarnFWTypes.h"

/// How the work on a filter ended.
enum class ApplyEnd {
  unchanged,  // it held the state already
  done,
  untouched,  // it failed before the first change
  restored,   // it failed, and the filter has its earlier state again
  mixture,    // it failed, and so did putting the earlier state back
};

struct ApplyReport {
  ApplyEnd end = ApplyEnd::unchanged;
  std::size_t statements = 0;
  std::string reason;        // why it failed, for a line of its own
  std::string instructions;  // of a mixture: lines that say what to do
  std::string file{};        // that has the earlier state, where no memory is left for instructions
};

/// Why something fails for want of memory. No string of it takes any.
inline constexpr char kOutOfMemory[] = "out of memory";

/// Called before each statement with those that are done and all; false stops the work.
using ApplyProgress = std::function<bool(std::size_t done, std::size_t all)>;

class ApplyFilter {
 public:
  /// The library must outlive it.
  ApplyFilter(TarnFirewall::fwlibhandle_* library, std::string name);

  /// Reads what the filter holds and finds the statements that make it the state, which must
  /// outlive this. Throws `StateError`; nothing has changed then. `partial` takes a filter that
  /// holds something which the language can't say, and which is lost in the file. Where the
  /// statements are to be carried out, other calls of `apply` are kept from the filter.
  void prepare(const State& wanted, bool partial, bool toRun);

  const std::string& name() const { return name_; }
  const std::vector<PlanStep>& plan() const { return plan_; }

  /// Carries the statements out, after the earlier state is in a file. The file is kept until
  /// `keep`, or while the filter holds a mixture. Memory that runs out is a failure as any other:
  /// neither this nor `undo` throws.
  ApplyReport run(const ApplyProgress& progress);

  /// Puts the earlier state back after `run` has done its work.
  ApplyReport undo(const std::string& reason);

  /// The filter keeps the state, which `run` has given it or which it held: the file with the
  /// earlier one goes. So do those that calls before this one left, since the filter holds a whole
  /// policy; gives their paths.
  std::vector<std::string> keep();

 private:
  ApplyReport carryOut(const ApplyProgress& progress);
  ApplyReport restore(const std::string& reason);
  ApplyReport tryRestore(const std::string& reason);
  /// `known` is what the filter holds by what is known of it.
  ApplyReport reportMixture(const std::string& reason, const std::string& problem,
                            const State& known) const;
  State held() const;
  void send(const PlanStep& step, const State& to);

  TarnFirewall::fwlibhandle_* library_;
  std::string name_;
  TarnFirewall::dvs_port_ port_;
  std::unique_ptr<JournalLock> lock_;
  JournalFile file_;
  State earlier_;
  std::string earlierText_;  // until it is in the file
  const State* wanted_ = nullptr;
  std::vector<PlanStep> plan_;
  std::size_t done_ = 0;
  bool wasSent_ = false;                  // a statement, at least as far as the library
  std::unique_ptr<std::byte[]> reserve_;  // memory for putting the earlier state back
  bool partial_ = false;
};
