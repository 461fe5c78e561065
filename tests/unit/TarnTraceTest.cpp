// tracetarn against a scripted kernel.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "CallShim.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

const char kTarnUsage[] =
    "Trace tarn kernel module.\n\n"
    "Usage: tarnioctl tracetarn <options>\n"
    "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "    -s          : tracing status\n"
    "    -c <string> : execute a trace command\n"
    "    -m <string> : verbose log component name or id\n"
    "    -v<number>  : verbose log level for log commands\n"
    "    -h          : this help message\n";

const char kTarnList[] =
    "Available trace commands are:\n"
    "           status (A): tracing status\n"
    "         comp-log (B): set component log level\n"
    "             help (?): this help message\n";

const char kMissing[] = "ERROR: missing trace command\n";

using Words = std::vector<std::string>;

CommandResult tarn(Words options) {
  options.insert(options.begin(), {"tracetarn", "-f", kFilter});
  return runCommand(options);
}

using Body = HandlerKernel::Body;

/// Keeps what it was asked and sent.
class TraceKernel : public HandlerKernel {
 public:
  TraceKernel() {
    on(33, [this](Body& body) { return keep(body), 0; });
    on(34, [this](Body& body) {
      keep(body);
      for (std::uint8_t i = 0; i < 21; ++i) body.at[i] = static_cast<std::uint8_t>(i * 12);
      return 0;
    });
  }
  Bytes request = Bytes(0);

 private:
  void keep(const Body& body) {
    request = Bytes(body.size);
    std::copy_n(body.at, body.size, request.begin());
  }
};

const char kFailed[] = "ERROR: failed to execute tarn trace command: ";

}  // namespace

TEST(TarnTrace, PrintsTheLevelsOfTheComponents) {
  for (const Words& options :
       {Words{"-s"}, {"-c", "status"}, {"-c", "Status"}, {"-c", "A"}, {"-c", "B", "-s", "-v2"}}) {
    TraceKernel kernel;
    const CallShim::SocketCalls calls;
    EXPECT_EQ(tarn(options), (CommandResult{0,
                                            "Filter debug status:\n"
                                            "    comp       level \n"
                                            "    fastpath   0     \n"
                                            "    rule       12    \n"
                                            "    table      24    \n"
                                            "    icmp       36    \n"
                                            "    tcp        48    \n"
                                            "    udp        60    \n"
                                            "    ioctl      72    \n"
                                            "    norm       84    \n"
                                            "    rpc        96    \n"
                                            "    ftp        108   \n"
                                            "    oracle     120   \n"
                                            "    tftp       132   \n"
                                            "    ospf       144   \n"
                                            "    msg2pf     156   \n"
                                            "    layer7     168   \n"
                                            "    layer4     180   \n"
                                            "    layer3     192   \n"
                                            "    layer2     204   \n"
                                            "    skiffer    216   \n"
                                            "    syncache   228   \n"
                                            "    lb         240   \n",
                                            ""}))
        << lineOf(options);
    EXPECT_EQ(kernel.request, Bytes(23).at(21, {21})) << lineOf(options);
    EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{34})) << lineOf(options);
    EXPECT_STREQ(kernel.kernel().last().port->identifier, kFilter);
    EXPECT_TRUE(calls.lines().empty()) << lineOf(options);
  }
}

TEST(TarnTrace, SetsTheLevelOfAComponent) {
  const std::vector<std::pair<Words, Bytes>> rows = {
      {{"-c", "comp-log"}, {255, 0, 0, 3}},
      {{"-c", "B"}, {255, 0, 0, 3}},
      {{"-c", "COMP-Log", "-v"}, {255, 0, 0, 1}},
      {{"-c", "B", "-v", "-v"}, {255, 0, 0, 2}},
      {{"-c", "B", "-v0"}, {255, 0, 0, 0}},
      {{"-v9", "-c", "B"}, {255, 0, 0, 9}},
      {{"-c", "B", "-v4", "-v"}, {255, 0, 0, 5}},
      {{"-c", "B", "-m", "fastpath"}, {0, 0, 0, 3}},
      {{"-m", "LB", "-c", "B", "-v6"}, {20, 0, 0, 6}},
      {{"-c", "B", "-m", "20"}, {20, 0, 0, 3}},
      {{"-c", "B", "-m", "0x0e"}, {14, 0, 0, 3}},
      {{"-c", "B", "-m", "icmp", "-m", "all"}, {255, 0, 0, 3}},
      {{"-s", "-c", "B", "-m", "msg2pf"}, {13, 0, 0, 3}},
  };
  for (const auto& [options, request] : rows) {
    TraceKernel kernel;
    const CallShim::SocketCalls calls;
    EXPECT_EQ(tarn(options), (CommandResult{0, "", ""})) << lineOf(options);
    EXPECT_EQ(kernel.request, request) << lineOf(options);
    EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{33})) << lineOf(options);
    EXPECT_TRUE(calls.lines().empty()) << lineOf(options);
  }
}

TEST(TarnTrace, AComponentThatTheKernelDoesNotHaveIsNeverSent) {
  for (const char* const component : {"21", "22", "63"}) {
    const LogCapture log;
    const TraceKernel kernel;
    EXPECT_EQ(tarn({"-c", "B", "-m", component}),
              (CommandResult{0, "", kFailed + std::string(FW_StatusToString(7)) + "\n"}))
        << component;
    EXPECT_TRUE(kernel.asked().empty()) << component;
  }
}

TEST(TarnTrace, EndsWithZeroWhateverTheKernelSays) {
  for (const auto& [options, command] :
       std::vector<std::pair<Words, unsigned int>>{{{"-s"}, 34}, {{"-c", "B", "-m", "icmp"}, 33}}) {
    for (const std::uint32_t status : {1u, 4u, 21u}) {
      TraceKernel kernel;
      kernel.fail(command, status);
      EXPECT_EQ(tarn(options),
                (CommandResult{0, "", kFailed + std::string(FW_StatusToString(status)) + "\n"}))
          << lineOf(options);
    }
  }
}

TEST(TarnTrace, ListsItsCommands) {
  const DefaultHandle none(nullptr);
  for (const char* const text : {"help", "?"})
    EXPECT_EQ(tarn({"-c", text}), (CommandResult{1, kTarnList, ""}));
  for (const std::string& text : Words{"", "C", "a", "b", "log", "Help", "exit"})
    EXPECT_EQ(tarn({"-c", text}),
              (CommandResult{1, kTarnList, "ERROR: invalid trace command `" + text + "'.\n"}));
  EXPECT_EQ(tarn({"-c", "?", "-s"}), (CommandResult{1, kTarnList, ""}));
  EXPECT_EQ(tarn({"-c", "?", "-c", "B"}), (CommandResult{1, kTarnList, ""}));
  EXPECT_EQ(tarn({"-s", "-c", "?"}), (CommandResult{1, kTarnList, ""}));
  // Before it is noticed that a filter is missing.
  EXPECT_EQ(runCommand({"tracetarn", "-c", "?"}), (CommandResult{1, kTarnList, ""}));
}

TEST(TarnTrace, NeedsACommandBeforeAFilter) {
  const DefaultHandle none(nullptr);
  EXPECT_EQ(runCommand({"tracetarn"}), (CommandResult{1, kTarnUsage, kMissing}));
  EXPECT_EQ(tarn({}), (CommandResult{1, kTarnUsage, kMissing}));
  EXPECT_EQ(tarn({"-v1", "-m", "icmp"}), (CommandResult{1, kTarnUsage, kMissing}));
  EXPECT_EQ(runCommand({"tracetarn", "-c", "B"}),
            (CommandResult{1, kTarnUsage, "ERROR: filter is missing.\n"}));
}

TEST(TarnTrace, RefusesValues) {
  const DefaultHandle none(nullptr);
  const std::string level = "ERROR: invalid log level ";
  const std::vector<std::pair<Words, std::string>> rows = {
      {{"-v10"}, level + "10\n"},
      {{"-v-1"}, level + "-1\n"},
      {{"-vx"}, level + "x\n"},
      {{"-v9", "-v"}, level + "10\n"},
      // The letter of thresholds is none here, so nothing is asked for but a level.
      {{"-v1000"}, level + "1000\n"},
      {{"-m", "misc"}, "ERROR: bad component id misc\n"},
      {{"-m", "64"}, "ERROR: bad component id 64\n"},
      {{"-m", "256"}, "ERROR: bad component id 256\n"},
  };
  for (const auto& [options, text] : rows)
    EXPECT_EQ(tarn(options), (CommandResult{1, "", text})) << lineOf(options);
}

TEST(TarnTrace, DoesNotTakeTheOptionsOfTheDaemon) {
  const DefaultHandle none(nullptr);
  for (const Words& options :
       {Words{"-e"}, {"-q"}, {"-o"}, {"-i", "path"}, {"-t", "1"}, {"-s", "-eh"}})
    EXPECT_EQ(tarn(options), (CommandResult{1, kTarnUsage, ""})) << lineOf(options);
}
