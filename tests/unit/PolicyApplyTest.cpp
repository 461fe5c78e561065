/// One filter that is brought to a state: what is left by every failure at every request.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "ApplyConfirm.h"
#include "ApplyFilter.h"
#include "ApplySignals.h"
#include "PolicyFilter.h"
#include "StateText.h"
#include "TarnFWCmdList.h"

using namespace TarnFirewall;

namespace {

constexpr FWStatus_t kNoMemory = 65, kBadState = 26;
constexpr char kName[] = "nic-1-eth0-kelpco-sfw.2";

State stateOf(const std::string& text) { return stateOfText(text, "test.conf").state; }

const char kBefore[] =
    "create addrset s 10.0.0.1; create addrset gone 10.0.0.9;"
    "create ruleset old with rule 1 in protocol any from gone to any drop;"
    "create ruleset kept with rule 2 in protocol any from s to any drop;"
    "create ruleset next; set jumpto of ruleset old as next; set root ruleset old and \"\";";
const char kAfter[] =
    "create addrset s 10.0.0.2; create addrset n 10.0.0.3;"
    "create ruleset new with rule 3 in protocol any from n to any jumpto kept;"
    "create ruleset kept with rule 2 in protocol any from n to any accept;"
    "create ruleset next; set jumpto of ruleset new as next; set root ruleset new and \"\";";

/// A folder for the journal, which is gone afterwards.
class PolicyApply : public testing::Test {
 protected:
  PolicyApply() {
    char name[] = "/tmp/tarnpolicy-test.XXXXXX";
    folder_ = mkdtemp(name);
    setenv("TARNPOLICY_RUNTIME", folder_.c_str(), 1);
  }
  ~PolicyApply() override {
    std::filesystem::remove_all(folder_);
    unsetenv("TARNPOLICY_RUNTIME");
  }

  /// Files with earlier states that were left.
  std::vector<std::string> leftFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      if (entry.path().extension() == ".conf") names.push_back(entry.path());
    }
    return names;
  }

  std::string folder_;
};

ApplyReport applyTo(PolicyFilter& filter, const State& wanted, bool partial = false) {
  ApplyFilter apply(filter.handle(), kName);
  try {
    apply.prepare(wanted, partial, true);
  } catch (const StateError& e) {
    return {ApplyEnd::untouched, 0, e.what(), {}};
  }
  if (apply.plan().empty()) {
    apply.keep();
    return {};
  }
  ApplyReport report = apply.run([](std::size_t, std::size_t) { return true; });
  if (report.end == ApplyEnd::done) apply.keep();
  return report;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// What stands after the line that announces the statements.
std::string statementsIn(const std::string& instructions) {
  const std::string line = "these are still to be done:\n";
  const std::size_t at = instructions.find(line);
  return at == instructions.npos ? "" : instructions.substr(at + line.size());
}

void load(State& state, const std::string& text) {
  const auto list = parseStatements(text, "rest");
  for (std::size_t i = 0; i < list->size(); ++i) applyStatement(state, list->at(i));
}

}  // namespace

TEST_F(PolicyApply, AFilterGetsTheStateAndTheFileGoes) {
  PolicyFilter filter(stateOf(kBefore));
  const ApplyReport report = applyTo(filter, stateOf(kAfter));
  EXPECT_EQ(report.end, ApplyEnd::done);
  EXPECT_EQ(report.statements, 8u);
  EXPECT_EQ(filter.state(), stateOf(kAfter));
  EXPECT_TRUE(leftFiles().empty());
}

TEST_F(PolicyApply, AFilterThatHoldsTheStateIsOnlyAsked) {
  PolicyFilter filter(stateOf(kAfter));
  EXPECT_EQ(applyTo(filter, stateOf(kAfter)).end, ApplyEnd::unchanged);
  EXPECT_TRUE(filter.changes().empty());
  EXPECT_EQ(filter.messages(), 1u);
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

/// Whatever request fails, once or twice, and whether or not it was carried out all the same: the
/// filter holds the one or the other state.
TEST_F(PolicyApply, NoFailureThatPassesLeavesAMixture) {
  const State before = stateOf(kBefore), after = stateOf(kAfter);
  PolicyFilter counting(before);
  applyTo(counting, after);
  const unsigned int all = counting.requests();
  ASSERT_GT(all, 40u);
  for (const FWStatus_t status : {kNoMemory, kBadState}) {
    for (const bool carriedOut : {false, true}) {
      for (unsigned int failures = 1; failures <= 2; ++failures) {
        for (unsigned int first = 1; first <= all; ++first) {
          PolicyFilter filter(before);
          filter.setFault(
              [&](unsigned int request) {
                return request >= first && request < first + failures ? status
                                                                      : PolicyKernel::kUsual;
              },
              carriedOut);
          const ApplyReport report = applyTo(filter, after);
          const std::string where = "request " + std::to_string(first) + ", status " +
                                    std::to_string(status) + ": " + report.reason;
          if (report.end == ApplyEnd::done) {
            ASSERT_EQ(filter.state(), after) << where;
          } else {
            ASSERT_NE(report.end, ApplyEnd::mixture) << where << report.instructions;
            ASSERT_EQ(filter.state(), before) << where;
            ASSERT_FALSE(report.reason.empty());
          }
          ASSERT_TRUE(leftFiles().empty()) << where;
        }
      }
    }
  }
}

/// When nothing is answered any more, the file and the statements lead back.
TEST_F(PolicyApply, AFailureThatStaysIsReportedWithTheWayBack) {
  const State before = stateOf(kBefore), after = stateOf(kAfter);
  PolicyFilter counting(before);
  applyTo(counting, after);
  bool sawMixture = false;
  for (unsigned int first = 1; first <= counting.requests(); ++first) {
    PolicyFilter filter(before);
    filter.setFault(
        [&](unsigned int request) { return request >= first ? kNoMemory : PolicyKernel::kUsual; },
        false);
    const ApplyReport report = applyTo(filter, after);
    if (report.end == ApplyEnd::untouched) {
      ASSERT_EQ(filter.state(), before);
      continue;
    }
    ASSERT_EQ(report.end, ApplyEnd::mixture);
    sawMixture = true;
    const auto files = leftFiles();
    ASSERT_EQ(files.size(), 1u);
    ASSERT_NE(report.instructions.find(files[0]), std::string::npos);
    ASSERT_EQ(stateOf(readFile(files[0])), before);
    State now = filter.state();
    load(now, statementsIn(report.instructions));
    ASSERT_EQ(now, before) << report.instructions;
    // The file does it, too.
    filter.clearFault();
    ASSERT_NE(applyTo(filter, stateOf(readFile(files[0]))).end, ApplyEnd::mixture);
    ASSERT_EQ(filter.state(), before);
    std::filesystem::remove(files[0]);
  }
  EXPECT_TRUE(sawMixture);
}

/// A rule set whose state the kernel does not say could neither be kept nor put back.
TEST_F(PolicyApply, AFilterWithAPurgedRuleSetIsLeftAlone) {
  const State before = stateOf(kBefore);
  PolicyFilter counting(before);
  applyTo(counting, stateOf(kAfter));
  for (unsigned int first = 1; first <= counting.requests(); ++first) {
    PolicyFilter filter(before);
    filter.setFault(
        [&](unsigned int request) {
          return request >= first && request < first + 3 ? kBadState : PolicyKernel::kUsual;
        },
        false);
    const ApplyReport report = applyTo(filter, stateOf(kAfter));
    ASSERT_EQ(filter.state(), report.end == ApplyEnd::done ? stateOf(kAfter) : before)
        << first << ": " << report.reason;
  }
}

/// Nothing is answered any more while the way back is half gone: the statements begin there.
TEST_F(PolicyApply, TheStatementsGoOnWhereTheWayBackEnded) {
  const State before = stateOf(kBefore), after = stateOf(kAfter);
  bool sawMixture = false, sawEnd = false;
  for (unsigned int first = 1; !sawEnd; ++first) {
    PolicyFilter filter(before);
    ApplyFilter apply(filter.handle(), kName);
    apply.prepare(after, false, true);
    ASSERT_EQ(apply.run([](std::size_t, std::size_t) { return true; }).end, ApplyEnd::done);
    filter.setFault(
        [&](unsigned int request) { return request >= first ? kNoMemory : PolicyKernel::kUsual; },
        false);
    const ApplyReport report = apply.undo("not confirmed");
    sawEnd = report.end == ApplyEnd::restored;
    State now = filter.state();
    if (!sawEnd) {
      ASSERT_EQ(report.end, ApplyEnd::mixture);
      sawMixture = true;
      load(now, statementsIn(report.instructions));
      std::filesystem::remove(leftFiles().at(0));
    }
    ASSERT_EQ(now, before) << first << report.instructions;
  }
  EXPECT_TRUE(sawMixture);
}

TEST_F(PolicyApply, AStopAtAnyStatementPutsTheEarlierStateBack) {
  const State before = stateOf(kBefore), after = stateOf(kAfter);
  for (std::size_t stop = 0; stop < 8; ++stop) {
    PolicyFilter filter(before);
    ApplyFilter apply(filter.handle(), kName);
    apply.prepare(after, false, true);
    const ApplyReport report =
        apply.run([&](std::size_t done, std::size_t) { return done != stop; });
    EXPECT_EQ(report.end, stop == 0 ? ApplyEnd::untouched : ApplyEnd::restored);
    EXPECT_EQ(report.reason, "interrupted");
    EXPECT_EQ(filter.state(), before);
    EXPECT_TRUE(leftFiles().empty());
  }
}

/// A signal during any request ends the work after it, but for those that a broken connection
/// sends, which end nothing.
TEST_F(PolicyApply, ASignalDuringAnyRequestLeavesNoMixture) {
  const State before = stateOf(kBefore), after = stateOf(kAfter);
  PolicyFilter counting(before);
  applyTo(counting, after);
  const unsigned int all = counting.requests();
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGTSTP}) {
    const bool ends = number != SIGPIPE && number != SIGTSTP;
    unsigned int stopped = 0;
    for (unsigned int at = 1; at <= all; ++at) {
      const ApplySignals signals;
      PolicyFilter filter(before);
      filter.setFault(
          [&](unsigned int request) {
            if (request == at) raise(number);
            return PolicyKernel::kUsual;
          },
          false);
      ApplyFilter apply(filter.handle(), kName);
      apply.prepare(after, false, true);
      const ApplyReport report =
          apply.run([](std::size_t, std::size_t) { return ApplySignals::seen() == 0; });
      ASSERT_EQ(ApplySignals::seen(), ends ? number : 0);
      if (report.end == ApplyEnd::done) {
        apply.keep();
        ASSERT_EQ(filter.state(), after) << at;
        ASSERT_TRUE(!ends || at == all) << "signal " << number << ", request " << at;
      } else {
        ++stopped;
        ASSERT_NE(report.end, ApplyEnd::mixture) << at;
        ASSERT_EQ(report.reason, "interrupted");
        ASSERT_EQ(filter.state(), before) << at;
      }
      ASSERT_TRUE(leftFiles().empty()) << at;
    }
    EXPECT_EQ(stopped, ends ? all - 1 : 0) << number;
  }
}

/// A process that is killed during a request leaves what leads back, from the first change on.
TEST_F(PolicyApply, TheFileIsThereBeforeAnythingChanges) {
  const State before = stateOf(kBefore), after = stateOf(kAfter);
  PolicyFilter filter(before);
  unsigned int seen = 0;
  filter.setFault(
      [&](unsigned int) {
        if (filter.state() == before) return PolicyKernel::kUsual;
        ++seen;
        const auto files = leftFiles();
        EXPECT_EQ(files.size(), 1u);
        if (files.size() == 1) {
          EXPECT_EQ(stateOf(readFile(files[0])), before);
        }
        return PolicyKernel::kUsual;
      },
      false);
  EXPECT_EQ(applyTo(filter, after).end, ApplyEnd::done);
  EXPECT_EQ(seen, 7u);
}

TEST_F(PolicyApply, WhatEarlierCallsLeftGoesWithTheNextSuccess) {
  const State before = stateOf(kBefore), after = stateOf(kAfter);
  const auto leave = [&](const std::string& filter) {
    JournalFile file;
    file.write(filter, "# left\n");
    return file.path();
  };
  PolicyFilter filter(before);
  const std::vector<std::string> left = {leave(kName), leave("nic-2-eth0-kelpco-sfw.2")};

  // Not while the filter may still need it.
  filter.setFault([](unsigned int) { return kNoMemory; }, false);
  EXPECT_EQ(applyTo(filter, after).end, ApplyEnd::untouched);
  EXPECT_EQ(leftFiles().size(), 2u);
  filter.clearFault();
  {
    ApplyFilter stopped(filter.handle(), kName);
    stopped.prepare(after, false, true);
    EXPECT_EQ(stopped.run([](std::size_t done, std::size_t) { return done < 2; }).end,
              ApplyEnd::restored);
  }
  EXPECT_EQ(leftFiles().size(), 2u);

  EXPECT_EQ(applyTo(filter, after).end, ApplyEnd::done);
  EXPECT_EQ(leftFiles(), std::vector<std::string>{left[1]});
  leave(kName);
  EXPECT_EQ(applyTo(filter, after).end, ApplyEnd::unchanged);
  EXPECT_EQ(leftFiles(), std::vector<std::string>{left[1]});
}

TEST_F(PolicyApply, WhatIsDoneIsUndoneByTheEarlierRecords) {
  State before = stateOf(kBefore);
  // No text says this rule.
  before.ruleSets.at("kept").of(StateRules::filter)[0].origin = kRuleInternal;
  PolicyFilter filter(before);
  const ApplyReport refused = applyTo(filter, stateOf(kAfter));
  EXPECT_EQ(refused.end, ApplyEnd::untouched);
  EXPECT_NE(refused.reason.find("--partial"), std::string::npos);
  EXPECT_TRUE(filter.changes().empty());

  const State after = stateOf(kAfter);
  ApplyFilter apply(filter.handle(), kName);
  apply.prepare(after, true, true);
  EXPECT_EQ(apply.run([](std::size_t, std::size_t) { return true; }).end, ApplyEnd::done);
  EXPECT_EQ(filter.state(), after);
  EXPECT_EQ(leftFiles().size(), 1u);
  const ApplyReport undone = apply.undo("not confirmed in time");
  EXPECT_EQ(undone.end, ApplyEnd::restored);
  EXPECT_EQ(undone.reason, "not confirmed in time");
  EXPECT_EQ(filter.state(), before);
  EXPECT_TRUE(leftFiles().empty());
}

TEST_F(PolicyApply, TwoCallsDoNotWorkOnOneFilter) {
  PolicyFilter filter(stateOf(kBefore));
  const State after = stateOf(kAfter);
  ApplyFilter first(filter.handle(), kName);
  first.prepare(after, false, true);
  EXPECT_EQ(applyTo(filter, after).reason, "another tarnpolicy apply works on it");
  ApplyFilter onlyLooks(filter.handle(), kName);
  EXPECT_NO_THROW(onlyLooks.prepare(after, false, false));
}

TEST_F(PolicyApply, AFolderThatOthersCanWriteIsRefused) {
  std::filesystem::permissions(folder_, std::filesystem::perms::all);
  PolicyFilter filter(stateOf(kBefore));
  const ApplyReport report = applyTo(filter, stateOf(kAfter));
  EXPECT_EQ(report.end, ApplyEnd::untouched);
  EXPECT_EQ(report.reason, folder_ + " is not a folder of this user's alone (mode 0700)");
  EXPECT_TRUE(filter.changes().empty());
}

TEST_F(PolicyApply, TheFileIsTheUsersAlone) {
  JournalFile file;
  file.write("../a b/\xff", "text\n");
  EXPECT_EQ(std::filesystem::path(file.path()).parent_path(), folder_);
  EXPECT_EQ(std::filesystem::status(file.path()).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_EQ(readFile(file.path()), "text\n");
  file.remove();
  EXPECT_TRUE(leftFiles().empty());
}

// --- Confirming

namespace {

/// Is called before a socket listens.
std::function<void()> g_beforeListening;

/// Waits elsewhere, as another process would.
class Waiting {
 public:
  explicit Waiting(unsigned int seconds) {
    thread_ = std::thread([this, seconds] { end_ = place_.wait({"f1", "f2"}, seconds); });
  }
  ConfirmEnd end() {
    thread_.join();
    return end_;
  }

 private:
  ConfirmPlace place_;
  std::thread thread_;
  ConfirmEnd end_ = ConfirmEnd::refused;
};

}  // namespace

TEST_F(PolicyApply, AnotherProcessConfirms) {
  const ApplySignals signals;
  Waiting waiting(30);
  const auto found = waitingApplies();
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].filters, (std::vector<std::string>{"f1", "f2"}));
  EXPECT_TRUE(confirmApply(found[0]));
  EXPECT_EQ(waiting.end(), ConfirmEnd::confirmed);
}

extern "C" {
int __real_listen(int, int);
int __wrap_listen(int, int);
int __wrap_listen(int socket, int backlog) {
  if (g_beforeListening) g_beforeListening();
  return __real_listen(socket, backlog);
}
}

TEST_F(PolicyApply, WhoLooksTooEarlyToConfirmDoesNotKeepOthersFromIt) {
  const ApplySignals signals;
  unsigned int looks = 0;
  g_beforeListening = [&] {
    ++looks;
    EXPECT_TRUE(waitingApplies().empty());
  };
  Waiting waiting(2);
  g_beforeListening = nullptr;
  EXPECT_EQ(looks, 1u);
  const auto found = waitingApplies();
  EXPECT_EQ(found.size(), 1u);
  for (const WaitingApply& apply : found) EXPECT_TRUE(confirmApply(apply));
  EXPECT_EQ(waiting.end(), ConfirmEnd::confirmed);
}

TEST_F(PolicyApply, WhoGaveUpWaitingForTheAnswerHasNotConfirmed) {
  const ApplySignals signals;
  ConfirmPlace place;  // held up before it listens to anybody
  EXPECT_FALSE(confirmApply({folder_ + "/confirm-" + std::to_string(getpid()), {"f1"}}));
  EXPECT_EQ(place.wait({"f1"}, 1), ConfirmEnd::expired);
}

TEST_F(PolicyApply, WithoutAnAnswerTheTimeEnds) {
  const ApplySignals signals;
  EXPECT_EQ(Waiting(1).end(), ConfirmEnd::expired);
  EXPECT_TRUE(waitingApplies().empty());
}

TEST_F(PolicyApply, ASignalEndsTheWait) {
  const ApplySignals signals;
  Waiting waiting(30);
  raise(SIGHUP);
  EXPECT_EQ(waiting.end(), ConfirmEnd::interrupted);
  EXPECT_EQ(ApplySignals::seen(), SIGHUP);
  EXPECT_STREQ(signalName(ApplySignals::seen()), "SIGHUP");
}

TEST_F(PolicyApply, ASocketOfAProcessThatDiedIsRemoved) {
  {
    const ApplySignals signals;
    const ConfirmPlace place;
    // The name of the socket stays, and nobody listens at it.
    std::filesystem::rename(folder_ + "/confirm-" + std::to_string(getpid()),
                            folder_ + "/confirm-1");
  }
  EXPECT_TRUE(waitingApplies().empty());
  EXPECT_FALSE(std::filesystem::exists(folder_ + "/confirm-1"));
}
