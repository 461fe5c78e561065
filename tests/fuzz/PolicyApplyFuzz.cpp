// A filter that holds one generated policy is brought to another, while requests fail and the work
// is stopped: whatever happens, the filter holds the one, or the other, or it is said what leads
// back. A process that is killed at any time leaves a file that does.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "ApplyFilter.h"
#include "Choices.h"
#include "FakeKernel.h"
#include "Fuzz.h"
#include "PolicyFilter.h"
#include "PolicyTextGenerator.h"
#include "StateText.h"

using namespace TarnFirewall;

namespace {

constexpr char kName[] = "nic-1-eth0-kelpco-sfw.2";

/// The folder for the files of all runs, in memory where there is such a place.
class Folder {
 public:
  Folder() {
    std::string name = std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
    name += "/tarnpolicy-fuzz.XXXXXX";
    require(mkdtemp(name.data()) != nullptr);
    path_ = name;
    setenv("TARNPOLICY_RUNTIME", name.c_str(), 1);
    // What the kernel of the tests does not expect is a find, too.
    GTEST_FLAG_SET(throw_on_failure, true);
  }
  ~Folder() { std::filesystem::remove_all(path_); }

  /// The one file with an earlier state; empty without one. A second one is a find.
  std::string file() const {
    std::string found;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      if (entry.path().extension() != ".conf") continue;
      require(found.empty());
      found = entry.path();
    }
    return found;
  }

  bool isEmpty() const { return std::filesystem::is_empty(path_); }

 private:
  std::filesystem::path path_;
};

const Folder& folder() {
  static const Folder made;
  return made;
}

State stateOf(const std::string& text) { return stateOfText(text, "policy").state; }

State stateOfPath(const std::string& path) {
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return stateOf(text.str());
}

bool same(const State& a, const State& b) { return planSteps(a, b).empty(); }

/// What goes wrong, and when.
struct Trouble {
  explicit Trouble(Choices& choices)
      : first(1 + choices.below(80)),
        count(choices.chance(20) ? ~0u : choices.below(12)),
        status(kStatuses[choices.below(std::size(kStatuses))]),
        carriedOut(choices.chance(40)),
        stopAt(choices.chance(30) ? choices.below(8) : SIZE_MAX),
        undoes(choices.chance(30)) {}

  static constexpr FWStatus_t kStatuses[] = {65, 26, 19, 28};

  bool strikes(unsigned int request) const { return request >= first && request - first < count; }

  unsigned int first;  // request that fails
  unsigned int count;
  FWStatus_t status;
  bool carriedOut;     // all the same
  std::size_t stopAt;  // statement before which the work is stopped
  bool undoes;         // what was done, as when nobody confirms
};

/// Whether the statements lead back, after those that were answered.
bool leadsBack(State state, const std::string& instructions, const State& before) {
  const std::string line = "these are still to be done:\n";
  const std::size_t at = instructions.find(line);
  if (at != instructions.npos) {
    const auto list = parseStatements(instructions.substr(at + line.size()), "rest");
    for (std::size_t i = 0; i < list->size(); ++i) applyStatement(state, list->at(i));
  }
  return same(state, before);
}

/// The work; gives the report of a mixture, and of nothing else.
std::optional<ApplyReport> change(PolicyFilter& filter, const State& before, const State& after,
                                  const Trouble& trouble) {
  ApplyFilter apply(filter.handle(), kName);
  try {
    apply.prepare(after, false, true);
  } catch (const StateError& e) {
    require(*e.what() != '\0' && same(filter.state(), before) && folder().file().empty());
    return {};
  }
  if (apply.plan().empty()) {
    require(same(filter.state(), after) && apply.keep().empty());
    return {};
  }
  ApplyReport report =
      apply.run([&](std::size_t done, std::size_t) { return done != trouble.stopAt; });
  if (report.end == ApplyEnd::done) {
    require(same(filter.state(), after));
    if (!trouble.undoes) {
      require(apply.keep().empty() && folder().file().empty());
      return {};
    }
    report = apply.undo("not confirmed");
  }
  require(!report.reason.empty());
  if (report.end == ApplyEnd::mixture) return report;
  require(report.end == ApplyEnd::restored || report.end == ApplyEnd::untouched);
  require(same(filter.state(), before) && folder().file().empty());
  return {};
}

void checkMixture(PolicyFilter& filter, const ApplyReport& report, const State& before,
                  const Trouble& trouble) {
  const std::string file = folder().file();
  require(!file.empty() && report.instructions.find(file) != std::string::npos);
  const State earlier = stateOfPath(file);
  require(same(earlier, before));
  // What was carried out without an answer is not among what was answered.
  if (!trouble.carriedOut) require(leadsBack(filter.state(), report.instructions, before));
  filter.clearFault();
  ApplyFilter again(filter.handle(), kName);
  again.prepare(earlier, false, true);
  if (!again.plan().empty()) {
    require(again.run([](std::size_t, std::size_t) { return true; }).end == ApplyEnd::done);
  }
  // The second call removes the file of the first, too.
  require(again.keep() == std::vector<std::string>{file} && same(filter.state(), before));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  folder();
  Sleeps::clear();
  Choices choices(std::span<const std::uint8_t>(data, size));
  const Trouble trouble(choices);
  const PolicyShape shape{.names = 4, .chanceOfRuleSet = 75, .chanceOfOpenLayer = 10};
  const State before = stateOf(generatedPolicyText(choices, shape));
  const State after = stateOf(generatedPolicyText(choices, shape));
  PolicyFilter filter(before);
  bool isRead = false;
  filter.setFault(
      [&](unsigned int request) {
        // Who is killed here needs the file, once anything has changed.
        if (!same(filter.state(), before)) {
          const std::string file = folder().file();
          require(!file.empty());
          if (!isRead) require(same(stateOfPath(file), before));
          isRead = true;
        }
        return trouble.strikes(request) ? trouble.status : PolicyKernel::kUsual;
      },
      trouble.carriedOut);
  const auto mixture = change(filter, before, after, trouble);
  if (mixture) checkMixture(filter, *mixture, before, trouble);
  require(folder().isEmpty());
  return 0;
}
