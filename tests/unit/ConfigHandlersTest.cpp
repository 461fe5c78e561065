// tarnfwcli on the firewall device: what its transcripts can't bring about. Each test runs in a
// process of its own, since the command gives its library handles up.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "DeviceShim.h"
#include "RunCommand.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// Numbers of the commands.
enum : unsigned int { kDestroyAllRules = 60, kDestroyAllSets = 65 };

/// The firewall device with a kernel that answers every command with status 0, or with the one that
/// was ordered for its number.
class Kernel {
 public:
  struct Message {
    unsigned int command;
    std::string filter;  // identifier of the selector; empty without one
    std::string agent;
  };

  Kernel() {
    DeviceShim::put("/dev/brq-tarn", [this](const DeviceShim::Call& call) { return answer(call); });
  }

  std::map<unsigned int, std::uint32_t> statuses;
  std::map<unsigned int, std::function<void()>> meanwhile;
  std::vector<Message> messages;

  std::vector<unsigned int> commands() const {
    std::vector<unsigned int> numbers;
    for (const Message& message : messages) numbers.push_back(message.command);
    return numbers;
  }

 private:
  int answer(const DeviceShim::Call& call) {
    // The frame has the block's address at 12; that has the selector at 0, the message's at 104.
    std::uint64_t address;
    std::memcpy(&address, static_cast<const char*>(call.argument) + 12, sizeof address);
    char block[112];
    std::memcpy(block, reinterpret_cast<const void*>(address), sizeof block);
    std::memcpy(&address, block + 104, sizeof address);
    auto* const message = reinterpret_cast<char*>(address);
    std::uint16_t command;
    std::memcpy(&command, message + 24, sizeof command);
    messages.push_back({command, std::string(block, strnlen(block, 64)),
                        std::string(block + 64, strnlen(block + 64, 32))});
    const std::uint32_t status = statuses[command];
    std::memcpy(message + 28, &status, sizeof status);
    if (meanwhile[command]) meanwhile[command]();
    return 0;
  }
};

CommandResult tarnfwcli(std::vector<std::string> options) {
  options.insert(options.begin(), {"tarnfwcli", "-Override"});
  return runCommand(options);
}

/// An empty file, removed at its end.
class EmptyFile {
 public:
  EmptyFile() { close(mkstemp(path_)); }
  ~EmptyFile() { unlink(path_); }
  EmptyFile(const EmptyFile&) = delete;
  EmptyFile& operator=(const EmptyFile&) = delete;
  std::string path() const { return path_; }

 private:
  char path_[32] = "/tmp/tarnfw-config-XXXXXX";
};

}  // namespace

TEST(TarnFWCLI, SaysThatThereIsNoMemoryForTheTexts) {
  EXPECT_FRESH([] {
    const Kernel kernel;
    DeviceShim::failNextNothrowNew();
    EXPECT_EQ(tarnfwcli({"-c", "destroy all ruleset;"}),
              (CommandResult{1, "", "ERROR: failed to alloc memory for configs\n"}));
    EXPECT_TRUE(DeviceShim::opens().empty());
  });
}

TEST(TarnFWCLI, WithoutATextNothingIsSentAndTheStatusIsOne) {
  EXPECT_FRESH([] {
    const Kernel kernel;
    EXPECT_EQ(tarnfwcli({"-f", kFilter}), (CommandResult{1, "", ""}));
    EXPECT_TRUE(kernel.messages.empty());
  });
}

TEST(TarnFWCLI, TextsAreCarriedOutInTheirOrderUpToTheFirstThatFails) {
  EXPECT_FRESH([] {
    Kernel kernel;
    kernel.statuses[kDestroyAllSets] = 28;
    EXPECT_EQ(tarnfwcli({"-c", "destroy all ruleset;", "-c", "destroy all addrset;", "-c",
                         "destroy all ruleset;"}),
              (CommandResult{1, "",
                             "ERROR: Failed to eval config `destroy all addrset;': no ruleset\n"}));
    EXPECT_EQ(kernel.commands(), (std::vector<unsigned int>{kDestroyAllRules, kDestroyAllSets}));
  });
}

TEST(TarnFWCLI, ATextThatCannotBeLoadedEndsTheCommandAfterThoseBeforeIt) {
  EXPECT_FRESH([] {
    const Kernel kernel;
    EXPECT_EQ(
        tarnfwcli({"-c", "destroy all ruleset;", "-c", "destroy all addrset; nonsense", "-c",
                   "destroy all ruleset;"}),
        (CommandResult{1, "",
                       "ERROR: Could not load config `destroy all addrset; nonsense': parsing "
                       "error\n"}));
    EXPECT_EQ(kernel.commands(), std::vector<unsigned int>{kDestroyAllRules});
  });
}

TEST(TarnFWCLI, TheFilterOfTheOptionGoesWithEveryCommandAndNoneWithoutIt) {
  EXPECT_FRESH([] {
    const Kernel kernel;
    EXPECT_EQ(tarnfwcli({"-c", "destroy all ruleset; destroy all addrset of filter f;"}).status, 0);
    EXPECT_EQ(tarnfwcli({"-f", kFilter, "-c", "destroy all addrset of filter f;"}).status, 0);
    ASSERT_EQ(kernel.messages.size(), 3u);
    EXPECT_EQ(kernel.messages[0].filter, "");
    EXPECT_EQ(kernel.messages[1].filter, "f");
    EXPECT_EQ(kernel.messages[1].agent, "");
    EXPECT_EQ(kernel.messages[2].filter, kFilter);
    EXPECT_EQ(kernel.messages[2].agent, "kelpco-sfw");
  });
}

TEST(TarnFWCLI, WithoutAFilterAStatementWithoutOneIsPassedOverUnlessItIsTheLast) {
  EXPECT_FRESH([] {
    Kernel kernel;
    kernel.statuses[kDestroyAllRules] = 21;
    EXPECT_EQ(tarnfwcli({"-c", "destroy all ruleset; destroy all addrset;"}).status, 0);
    EXPECT_EQ(kernel.commands(), (std::vector<unsigned int>{kDestroyAllRules, kDestroyAllSets}));
    EXPECT_EQ(tarnfwcli({"-c", "destroy all addrset; destroy all ruleset;"}),
              (CommandResult{1, "",
                             "ERROR: Failed to eval config `destroy all addrset; destroy all "
                             "ruleset;': switch port not found\n"}));
  });
}

TEST(TarnFWCLI, SaysThatTheFormerChannelCannotBeGivenUp) {
  EXPECT_FRESH([] {
    Kernel kernel;
    // The next lock after the first text is that of the default handle, when it is given up.
    kernel.meanwhile[kDestroyAllRules] = DeviceShim::failNextLock;
    const EmptyFile file;
    const std::string text = "config file \"" + file.path() + "\"; destroy all addrset;";
    EXPECT_EQ(tarnfwcli({"-c", "destroy all ruleset;", "-c", text}),
              (CommandResult{1, "",
                             "ERROR: Failed to free old library `" + text + "': unknown error\n"}));
    EXPECT_EQ(kernel.commands(), std::vector<unsigned int>{kDestroyAllRules});
  });
}
