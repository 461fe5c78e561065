/// What `apply` keeps on the host: files with earlier states, and locks.

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "Journal.h"
#include "State.h"

namespace {

class PolicyJournal : public testing::Test {
 protected:
  PolicyJournal() {
    char name[] = "/tmp/tarnpolicy-test.XXXXXX";
    folder_ = mkdtemp(name);
    setenv("TARNPOLICY_RUNTIME", folder_.c_str(), 1);
  }
  ~PolicyJournal() override {
    std::filesystem::remove_all(folder_);
    unsetenv("TARNPOLICY_RUNTIME");
  }

  std::size_t files() const {
    const std::filesystem::directory_iterator all(folder_);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
  }

  std::string folder_;
};

std::string refusal(const std::string& filter) {
  try {
    const JournalLock lock(filter);
  } catch (const StateError& e) {
    return e.what();
  }
  return "taken";
}

}  // namespace

TEST_F(PolicyJournal, ALockLeavesNoFile) {
  {
    const JournalLock lock("a");
    EXPECT_EQ(files(), 1u);
    EXPECT_EQ(refusal("a"), "another tarnpolicy apply works on it");
    EXPECT_EQ(files(), 1u);
    EXPECT_EQ(refusal("b"), "taken");
  }
  EXPECT_EQ(files(), 0u);
  EXPECT_EQ(refusal("a"), "taken");
}

TEST_F(PolicyJournal, TheFileOfALockThatWasKilledIsTaken) {
  std::ofstream(folder_ + "/a.lock").close();
  EXPECT_EQ(refusal("a"), "taken");
  EXPECT_EQ(files(), 0u);
}

TEST_F(PolicyJournal, ALockWhoseFileWasTidiedAwayLeavesThatOfALaterOne) {
  auto first = std::make_unique<JournalLock>("a");
  std::filesystem::remove(folder_ + "/a.lock");
  {
    const JournalLock second("a");
    first.reset();
    EXPECT_EQ(refusal("a"), "another tarnpolicy apply works on it");
  }
  EXPECT_EQ(files(), 0u);
}

/// Processes that take and give back one lock, as fast as they can: no two have it at a time.
TEST_F(PolicyJournal, NoTwoProcessesHaveALock) {
  constexpr int kProcesses = 4, kTurns = 3000;
  const std::string inside = folder_ + "/inside";
  pid_t children[kProcesses];
  for (pid_t& child : children) {
    child = fork();
    ASSERT_GE(child, 0);
    if (child != 0) continue;
    int failures = 0;
    for (int turn = 0; turn < kTurns; ++turn) {
      try {
        const JournalLock lock("a");
        // Exclusive: it fails while another process is inside.
        if (mkdir(inside.c_str(), 0700) != 0) ++failures;
        rmdir(inside.c_str());
      } catch (const StateError& e) {
        if (std::string(e.what()) != "another tarnpolicy apply works on it") ++failures;
      }
    }
    _exit(failures == 0 ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_EQ(files(), 0u);
}

TEST_F(PolicyJournal, WhoIsKilledWhileItWritesLeavesNothingThatCouldBeLoaded) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const rlimit none{0, 0}, half{50000, 50000};
    setrlimit(RLIMIT_CORE, &none);
    setrlimit(RLIMIT_FSIZE, &half);  // who writes more is killed
    signal(SIGXFSZ, SIG_DFL);
    JournalFile().write("a", std::string(100000, 'x'));
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ);
  ASSERT_EQ(files(), 1u);
  const std::filesystem::path left = *std::filesystem::directory_iterator(folder_);
  EXPECT_EQ(left.extension(), ".part");
  EXPECT_EQ(removeLeftFiles("a"), std::vector<std::string>{left});
  EXPECT_EQ(files(), 0u);
}

TEST_F(PolicyJournal, OnlyTheFiltersOwnFilesAreRemoved) {
  const std::vector<std::string> filters = {"a", "a.b", "a b", "a_b", "A", "a.XXXXXX.conf"};
  std::vector<std::string> paths;
  for (const std::string& filter : filters) {
    JournalFile file;
    file.write(filter, "text\n");
    paths.push_back(file.path());  // it stays
  }
  std::ofstream(folder_ + "/a.conf").close();
  std::ofstream(folder_ + "/a.123456.text").close();
  for (std::size_t i = 0; i < filters.size(); ++i) {
    EXPECT_EQ(removeLeftFiles(filters[i]), std::vector<std::string>{paths[i]}) << filters[i];
    EXPECT_EQ(removeLeftFiles(filters[i]), std::vector<std::string>{}) << filters[i];
  }
  EXPECT_EQ(files(), 2u);
}

TEST_F(PolicyJournal, NoFileIsHidden) {
  JournalFile file;
  file.write(".hidden", "text\n");
  EXPECT_EQ(file.path().find(folder_ + "/%2ehidden."), 0u) << file.path();
}

TEST_F(PolicyJournal, WithoutAFolderThereIsNothingToRemove) {
  setenv("TARNPOLICY_RUNTIME", (folder_ + "/none").c_str(), 1);
  EXPECT_EQ(removeLeftFiles("a"), std::vector<std::string>{});
  EXPECT_EQ(files(), 0u);
}
