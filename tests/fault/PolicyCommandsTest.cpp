// What each subcommand for whole policies does when memory fails. This program is run in a lab by
// "tarnlab run".
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "CommandProcess.h"
#include "PolicyProgram.h"

using CommandProcess::Result;
using CommandProcess::Words;

const CommandProcess::Program CommandProcess::kProgram = {"tarnpolicy", runPolicyProgram,
                                                          "tarnpolicy", kTroubleStatus};

/// Nobody waits here: not for a kernel that is busy, and a question is answered by a signal.
extern "C" {
unsigned int sleep(unsigned int);
unsigned int sleep(unsigned int) { return 0; }
int poll(pollfd*, nfds_t, int);
int poll(pollfd*, nfds_t, int) {
  raise(SIGTERM);
  return -1;
}
}

namespace {

#define FILTER "nic-1002672-eth0-kelpco-sfw.2"
#define OTHER_FILTER "nic-1002731-eth0-kelpco-sfw.2"

constexpr char kBefore[] =
    "create addrset \"hosts of the first network\" { 10.0.0.1, 10.1.0.0/16 };\n"
    "create attrprofile \"applications\" with { [ APP_ID : APP_HTTP, APP_DNS ] };\n"
    "create ruleset \"the rule set of the first network\" {\n"
    "  rule 10 in protocol tcp from \"hosts of the first network\" to any port { 80, 443 }\n"
    "    attrprofile \"applications\" accept with log tag \"a tag of some length\";\n"
    "  rule 20 inout protocol any from any to any drop;\n"
    "};\n"
    "set root ruleset \"the rule set of the first network\" and \"\";\n";
constexpr char kAfter[] =
    "create addrset \"hosts of the first network\" { 10.0.0.2 };\n"
    "create ruleset \"the rule set of the second network\" {\n"
    "  rule 10 in protocol tcp from any to \"hosts of the first network\" port 80-443 accept;\n"
    "};\n"
    "set root ruleset \"the rule set of the second network\" and \"\";\n";
constexpr char kMistakes[] =
    "create addrset \"hosts\" { 10.0.0.1, 10.0.0.256 };\n"
    "create ruleset \"web\" { rule 1 in protocl tcp from \"nobody\" to any accept; };\n";

/// A folder with the texts, in which the runs work.
class PolicyCommands : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    char name[] = "/tmp/tarnpolicy-fault.XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    folder_ = new std::string(name);
    std::filesystem::current_path(name);
    ASSERT_EQ(setenv("TARNPOLICY_RUNTIME", (*folder_ + "/run").c_str(), 1), 0);
    std::ofstream("before.conf") << kBefore;
    std::ofstream("after.conf") << kAfter;
    std::ofstream("mistakes.conf") << kMistakes;
    const Result made = CommandProcess::run({"apply", "-f", FILTER, "before.conf"});
    ASSERT_EQ(made.status, 0) << made;
  }
  static void TearDownTestSuite() {
    std::filesystem::current_path("/");
    std::filesystem::remove_all(*folder_);
    delete folder_;
  }

  static inline std::string* folder_ = nullptr;
};

bool holds(const char* filter, const char* file) {
  return CommandProcess::run({"diff", std::string("filter:") + filter, file}).status == 0;
}

/// Files with earlier states that were left.
std::set<std::string> leftFiles() {
  std::set<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator("run")) {
    if (entry.path().extension() == ".conf") paths.insert(entry.path().string());
  }
  return paths;
}

void reset() {
  const Result made =
      CommandProcess::run({"apply", "-f", FILTER, "-f", OTHER_FILTER, "before.conf"});
  ASSERT_EQ(made.status, 0) << made;
}

/// Which of the two states a filter holds.
std::string heldBy(const char* filter) {
  if (holds(filter, "before.conf")) return "before";
  return holds(filter, "after.conf") ? "after" : "a mixture";
}

}  // namespace

TEST_F(PolicyCommands, ThoseThatReadSayThatMemoryIsMissing) {
  const Words rows[] = {
      {"check", "before.conf"},
      {"check", "mistakes.conf"},
      {"check", "--format", "json", "-f", FILTER, "mistakes.conf"},
      {"check", "--format", "sarif", "mistakes.conf"},
      {"diff", "before.conf", "after.conf"},
      {"diff", "--json", "filter:" FILTER, "after.conf"},
      {"diff", "--stat", "filter:" FILTER, "after.conf"},
      {"save", "-f", FILTER},
      {"save", "-f", FILTER, "--verify"},
      {"save", "-f", FILTER, "-o", "saved.conf"},
      {"apply", "-f", FILTER, "--dry-run", "after.conf"},
      {"confirm"},
  };
  for (const Words& words : rows) {
    const Result whole = CommandProcess::run(words);
    unsigned int failures = 0;
    for (const unsigned int step : {1u, 7u}) {
      for (unsigned int number = 0;; number += step) {
        std::filesystem::remove("saved.conf");
        const Result result = CommandProcess::runWithoutMemory(words, number, step > 1);
        if (!result.reached && result.status >= 0) break;
        const bool isSaved = std::filesystem::exists("saved.conf");
        if (result.status == whole.status && result.err == whole.err) {
          EXPECT_EQ(result.out, whole.out) << words[0] << ", allocation " << number;
          continue;
        }
        ++failures;
        const bool ofFilter = words[0] == "apply" && result.status == 1;
        EXPECT_TRUE(result.status == kTroubleStatus || ofFilter)
            << words[0] << ", allocation " << number << ": " << result;
        EXPECT_TRUE(result.err.ends_with("out of memory\n"))
            << words[0] << ", allocation " << number << ": " << result;
        EXPECT_FALSE(isSaved);
      }
    }
    EXPECT_GT(failures, 0u) << words[0];
  }
}

/// With one allocation that fails the filter holds the earlier state or the new one.
TEST_F(PolicyCommands, ApplyLeavesNoMixture) {
  std::set<int> statuses;
  for (unsigned int number = 0;; ++number) {
    reset();
    const Result result =
        CommandProcess::runWithoutMemory({"apply", "-f", FILTER, "after.conf"}, number, false);
    if (!result.reached && result.status >= 0) break;
    EXPECT_EQ(heldBy(FILTER), result.status == 0 ? "after" : "before") << number << ": " << result;
    EXPECT_TRUE(leftFiles().empty()) << number << ": " << result;
    EXPECT_TRUE(result.status == 0 || result.err.ends_with("out of memory\n"))
        << number << ": " << result;
    statuses.insert(result.status);
  }
  EXPECT_EQ(statuses, (std::set<int>{0, 1, 2}));
}

TEST_F(PolicyCommands, ApplyGoesOnWithTheNextFilter) {
  const Words words{"apply", "-f", FILTER, "-f", OTHER_FILTER, "after.conf"};
  std::set<std::string> ends;
  for (unsigned int number = 0;; number += 7) {
    reset();
    const Result result = CommandProcess::runWithoutMemory(words, number, false);
    if (!result.reached && result.status >= 0) break;
    const std::string end = heldBy(FILTER) + " " + heldBy(OTHER_FILTER);
    EXPECT_EQ(result.status == 0, end == "after after") << number << ": " << result;
    EXPECT_TRUE(result.status != 2 || end == "before before") << number << ": " << result;
    EXPECT_TRUE(result.status <= 2 && leftFiles().empty()) << number << ": " << result;
    ends.insert(end);
  }
  EXPECT_EQ(ends, (std::set<std::string>{"after after", "after before", "before after",
                                         "before before"}));
}

/// Without any memory from some moment on nothing can be put back: the file is kept and named.
TEST_F(PolicyCommands, WithoutAnyMemoryApplyNamesTheFile) {
  std::set<int> statuses;
  for (unsigned int number = 0;; number += 3) {
    reset();
    const Result result =
        CommandProcess::runWithoutMemory({"apply", "-f", FILTER, "after.conf"}, number, true);
    if (!result.reached && result.status >= 0) break;
    statuses.insert(result.status);
    const std::set<std::string> left = leftFiles();
    if (result.status != 3) {
      EXPECT_EQ(heldBy(FILTER), result.status == 0 ? "after" : "before")
          << number << ": " << result;
      EXPECT_TRUE(left.empty()) << number << ": " << result;
      continue;
    }
    ASSERT_EQ(left.size(), 1u) << number << ": " << result;
    EXPECT_NE(result.err.find(*left.begin()), result.err.npos) << number << ": " << result;
    const Result back = CommandProcess::run({"apply", "-f", FILTER, *left.begin()});
    EXPECT_EQ(back.status, 0) << back;
    EXPECT_EQ(heldBy(FILTER), "before") << number;
    EXPECT_TRUE(leftFiles().empty());
  }
  EXPECT_EQ(statuses, (std::set<int>{0, 1, 2, 3}));
}

/// Whatever fails, what nobody has confirmed is undone; also when there is no memory to ask.
TEST_F(PolicyCommands, WithoutMemoryForTheQuestionApplyUndoes) {
  const Words words{"apply", "-f", FILTER, "-f", OTHER_FILTER, "--confirm", "60", "after.conf"};
  unsigned int unasked = 0;
  reset();
  for (unsigned int number = 0;; number += 5) {
    const Result result = CommandProcess::runWithoutMemory(words, number, false);
    if (!result.reached && result.status >= 0) break;
    EXPECT_TRUE(result.status == 1 || result.status == 2) << number << ": " << result;
    EXPECT_EQ(heldBy(FILTER) + heldBy(OTHER_FILTER), "beforebefore") << number << ": " << result;
    EXPECT_TRUE(leftFiles().empty()) << number << ": " << result;
    if (result.err.ends_with("earlier state  out of memory\n")) ++unasked;
  }
  EXPECT_GT(unasked, 0u);
}
