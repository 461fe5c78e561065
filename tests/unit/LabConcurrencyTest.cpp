// Several programs and threads of one lab at once, some of them killed.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>
#include <thread>

#include "LabBench.h"

namespace TarnLab {
namespace {

class LabConcurrency : public LabBench {
 protected:
  /// The rules of a set that is only ever replaced by one with `count` rules of that id.
  static std::vector<ByteVector> rules(unsigned count) {
    return std::vector<ByteVector>(count, ruleRecord(count));
  }

  /// Whether the set is one of those that were sent: all its rules agree with their number.
  void expectWhole(const std::string& set) {
    ASSERT_EQ(command(9, Record().text(set, 64).to(84)), 0u);
    const std::uint32_t count = get32(reply, 64);
    ASSERT_EQ(command(10, Record().text(set, 64).u32(count).u32(0).u16(1).to(96 + 896 * count)),
              0u);
    ASSERT_EQ(get32(reply, 76), count);
    for (std::uint32_t i = 0; i < count; ++i) {
      EXPECT_EQ(get32(reply, 96 + 4 * count + 892 * i), count);
    }
  }

  /// Creates a filter of the firewall in that slot of the first NIC, or destroys it.
  int changeFilter(unsigned slot, bool add) {
    ByteVector body = Record()
                          .text("kelpco-sfw", 40)
                          .to(4208)
                          .u32(1002672)
                          .u32(slot)
                          .text("502e1f3a-c21a-632a-4ae1-00505699b626.000", 64)
                          .u32(add ? 1 : 0);
    return direct(1000, body);
  }

  /// Whether every filter has a folder of its own.
  void expectOwnFolders() const {
    const Host host = Host::load(store);
    std::set<std::string> folders;
    for (std::size_t i = 0; i < host.filterCount(); ++i) folders.insert(host.folderOf(i));
    EXPECT_EQ(folders.size(), host.filterCount());
  }
};

TEST_F(LabConcurrency, ThreadsOfOneProgramChangeAndReadTheSameSet) {
  ASSERT_EQ(createRuleSet("web", rules(1)), 0u);
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < 4; ++t) {
    threads.emplace_back([this, t] {
      for (unsigned turn = 1; turn <= 20; ++turn) {
        ByteVector body = Record().zero(64).text("web", 64).u64(0).u32(t + turn).u8(3).to(168);
        for (const ByteVector& rule : rules(t + turn)) {
          body.insert(body.end(), rule.begin(), rule.end());
        }
        ByteVector sent = message(3, body);
        EXPECT_EQ(send(sent, filterSelector(web)), 0);
        EXPECT_EQ(get32(sent, 28), 0u);
        ByteVector info = message(9, Record().text("web", 64).to(84));
        EXPECT_EQ(send(info, filterSelector(web)), 0);
        EXPECT_EQ(get32(info, 28), 0u);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  expectWhole("web");
  ASSERT_EQ(command(9, Record().text("web", 64).to(84)), 0u);
  EXPECT_EQ(get64(reply, 76), 81u) << "no change was lost";
}

TEST_F(LabConcurrency, AgentsAndFiltersThatThreadsCreateAreAllThere) {
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < 4; ++t) {
    threads.emplace_back([this, t] {
      for (unsigned turn = 0; turn < 10; ++turn) {
        const unsigned number = 100 + t * 10 + turn;
        ByteVector name = Record().text("agent-" + std::to_string(number), 100);
        EXPECT_EQ(direct(23, name), 0);
        EXPECT_EQ(changeFilter(number, true), 0);
        EXPECT_EQ(turn % 2 == 0 ? changeFilter(number, false) : 0, 0);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Host::load(store).agents().size(), 3u + 40u);
  EXPECT_EQ(Host::load(store).filterCount(), 8u + 20u);
  expectOwnFolders();
}

TEST_F(LabConcurrency, KilledProgramsLeaveEveryFilterThereOrGone) {
  for (unsigned round = 0; round < 6; ++round) {
    pid_t children[2];
    for (unsigned c = 0; c < 2; ++c) {
      children[c] = ::fork();
      ASSERT_GE(children[c], 0);
      if (children[c] == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that is ended leaves nothing that runs
        for (unsigned turn = 0;; ++turn) changeFilter(10 * c + 10 + turn / 2 % 3, turn % 2 == 0);
      }
    }
    ::usleep(15000 + round * 1700);
    for (const pid_t child : children) {
      ::kill(child, SIGKILL);
      ::waitpid(child, nullptr, 0);
    }
    expectOwnFolders();
    EXPECT_LE(Host::load(store).filterCount(), 8u + 6u);
  }
  const Host host = Host::load(store);
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    if (host.slotOf(i) < 10) continue;
    EXPECT_EQ(changeFilter(host.slotOf(i), false), 0) << note();
  }
  EXPECT_EQ(Host::load(store).filterCount(), 8u);
}

TEST_F(LabConcurrency, KilledProgramsLeaveTheStateAsItWasBeforeOrAfter) {
  ASSERT_EQ(createRuleSet("web", rules(1)), 0u);
  for (unsigned round = 0; round < 12; ++round) {
    pid_t children[2];
    for (pid_t& child : children) {
      child = ::fork();
      ASSERT_GE(child, 0);
      if (child == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (unsigned turn = 0;; ++turn) {
          createRuleSet("web", rules(turn * 37 % 400 + 1));
          createAddrSet("set", std::vector<ByteVector>(turn % 50, ipv4("10.0.0.1")));
          if (turn % 5 == 4) command(65, ByteVector(4));
        }
      }
    }
    ::usleep(15000 + round * 1700);
    for (const pid_t child : children) {
      ::kill(child, SIGKILL);
      ::waitpid(child, nullptr, 0);
    }
    expectWhole("web");
    ASSERT_EQ(command(20, ByteVector(8)), 0u);
    EXPECT_LE(get32(reply, 4), 1u);
    EXPECT_EQ(createAddrSet("set", {ipv4("10.0.0.1")}), 0u);
  }
  EXPECT_GT(journal().size(), 24u);
}

}  // namespace
}  // namespace TarnLab
