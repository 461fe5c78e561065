// Handlers of settings that are one switch, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

const char kSharedUsage[] =
    "Set shared addrset setting.\n\n"
    "Usage: tarnioctl setsharedaddrset <options>\n"
    "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "    -v<number>  : enable verbose log\n"
    "    -m <string> : verbose log component name or id\n"
    "    -s <0|1>    : set shared addrset setting (0: disable, 1: enable)\n"
    "    -h          : this help message\n";

/// The same with another command's word.
std::string sharedUsageOf(const std::string& word) {
  std::string text = kSharedUsage;
  return text.replace(text.find("setsharedaddrset"), 16, word);
}

/// Keeps the words that it was sent.
class SwitchKernel : public HandlerKernel {
 public:
  SwitchKernel() {
    on(44, [this](Body& body) { return shared = body.word(0), 0; });
    on(45, [this](Body& body) { return body.put32(0, shared), 0; });
    on(49, [this](Body& body) { return errorDrop = body.word(0), 0; });
  }
  std::uint32_t shared = 9, errorDrop = 9;
};

std::vector<std::string> words(const char* command, std::vector<std::string> options) {
  options.insert(options.begin(), {command, "-Override", "-f", kFilter});
  return options;
}

}  // namespace

TEST(SetSharedAddrSet, SendsItsSwitch) {
  for (const bool on : {false, true}) {
    SwitchKernel kernel;
    EXPECT_EQ(runCommand(words("setsharedaddrset", {"-s", on ? "1" : "0"})),
              (CommandResult{0, "", ""}));
    EXPECT_EQ(kernel.shared, on ? 1u : 0u);
    EXPECT_EQ(runCommand(words("setsharedaddrset", {"--shared=0", on ? "-s1" : "-s0"})),
              (CommandResult{0, "", ""}));
    EXPECT_EQ(kernel.shared, on ? 1u : 0u);
  }
}

TEST(SetSharedAddrSet, SaysWhatItDidWhenItIsVerbose) {
  const LogCapture log;
  const SwitchKernel kernel;
  const std::string lines = "verbose level : 1\nweirgate agent: kelpco-sfw\n";
  EXPECT_EQ(
      runCommand(words("setsharedaddrset", {"-s1", "-v"})),
      (CommandResult{
          0, lines + "DEBUG: Shared addrset was set to enable for filter " + kFilter + ".\n", ""}));
  EXPECT_EQ(runCommand(words("setsharedaddrset", {"-s0", "-v"})),
            (CommandResult{
                0, lines + "DEBUG: Shared addrset was set to disable for filter " + kFilter + ".\n",
                ""}));
}

TEST(SetSharedAddrSet, RefusesWhatIsNoSwitch) {
  SwitchKernel kernel;
  for (const char* const bad : {"2", "-1", "4294967296", "4294967297", "x", "", "1x", "0x1"}) {
    EXPECT_EQ(runCommand(words("setsharedaddrset", {"-s", bad})),
              (CommandResult{1, sharedUsageOf("setsharedaddrset"),
                             std::string("ERROR: bad shared option ") + bad + "\n"}));
  }
  EXPECT_EQ(runCommand(words("setsharedaddrset", {})),
            (CommandResult{1, kSharedUsage, "ERROR: shared option is missing\n"}));
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(SetSharedAddrSet, ReportsWhatTheKernelRefuses) {
  SwitchKernel kernel;
  kernel.fail(44, 21);
  EXPECT_EQ(runCommand(words("setsharedaddrset", {"-s1", "-v"})).err,
            "ERROR: Failed to set filter shared addrset setting\n");
  EXPECT_EQ(runCommand(words("setsharedaddrset", {"-s1"})),
            (CommandResult{1, "", "ERROR: Failed to set filter shared addrset setting\n"}));
}

TEST(GetSharedAddrSet, PrintsTheFirstBit) {
  for (const std::uint32_t shared : {0u, 1u, 2u, 0x101u, 0xffffffffu}) {
    SwitchKernel kernel;
    kernel.shared = shared;
    const std::string state = (shared & 1) != 0 ? "enabled" : "disabled";
    EXPECT_EQ(runCommand({"getsharedaddrset", "-f", kFilter}),
              (CommandResult{0, "shared addrset: " + state + "\n", ""}))
        << shared;
  }
}

TEST(GetSharedAddrSet, ReportsWhatTheKernelRefuses) {
  SwitchKernel kernel;
  kernel.fail(45, 21);
  EXPECT_EQ(runCommand({"getsharedaddrset", "-f", kFilter}),
            (CommandResult{1, "", "ERROR: Failed to get filter shared addrset setting\n"}));
}

TEST(SetICMPErrPktDrop, SendsItsSwitch) {
  const LogCapture log;
  SwitchKernel kernel;
  EXPECT_EQ(runCommand(words("seticmperrpktdrop", {"-e1"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.errorDrop, 1u);
  EXPECT_EQ(runCommand(words("seticmperrpktdrop", {"--enable", "0", "--verbose=2"})),
            (CommandResult{0,
                           std::string("verbose level : 2\nweirgate agent: kelpco-sfw\n"
                                       "DEBUG: ICMP error drop enable was set to disable for "
                                       "filter ") +
                               kFilter + ".\n",
                           ""}));
  EXPECT_EQ(kernel.errorDrop, 0u);
}

TEST(SetICMPErrPktDrop, ABadValueShowsTheUsageOfAnotherCommand) {
  SwitchKernel kernel;
  for (const char* const bad : {"2", "-1", "x", ""}) {
    EXPECT_EQ(runCommand(words("seticmperrpktdrop", {"-e", bad})),
              (CommandResult{1, sharedUsageOf("seticmperrpktdrop"),
                             std::string("ERROR: bad enable option ") + bad + "\n"}));
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(SetICMPErrPktDrop, SaysWhatIsMissingAndWhatFails) {
  SwitchKernel kernel;
  const CommandResult missing = runCommand(words("seticmperrpktdrop", {}));
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "ERROR: enable option is missing\n");
  EXPECT_EQ(missing.out, runCommand(words("seticmperrpktdrop", {"-h"})).out);
  kernel.fail(49, 7);
  EXPECT_EQ(runCommand(words("seticmperrpktdrop", {"-e0"})),
            (CommandResult{1, "", "ERROR: Failed to set filter icmp error drop enable setting\n"}));
}
