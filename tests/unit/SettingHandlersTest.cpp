// Handlers of settings of a filter, against a scripted kernel.

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

const char kSetUsage[] =
    "Set fail policy.\n\n"
    "Usage: tarnioctl setfailpolicy <options>\n"
    "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "    -v<number>  : enable verbose log\n"
    "    -p<fail_policy> : fail policy (0: fail_open, 1: fail_close)\n"
    "    -h          : this help message\n";

/// Keeps the policy that it was sent.
class PolicyKernel : public HandlerKernel {
 public:
  explicit PolicyKernel(std::uint8_t first = 9) : policy(first) {
    on(31, [this](Body& body) { return policy = body.at[0], 0; });
    on(35, [this](Body& body) { return body.at[0] = policy, 0; });
  }
  std::uint8_t policy;
};

}  // namespace

TEST(SetFailPolicy, NeedsAPolicy) {
  EXPECT_EQ(runCommand({"setfailpolicy", "-f", kFilter}),
            (CommandResult{1, kSetUsage, "ERROR: fail policy is missing.\n"}));
}

TEST(SetFailPolicy, SendsWhatItsOptionBeginsWith) {
  const std::vector<std::pair<const char*, std::uint8_t>> rows = {
      {"0", 0}, {"1", 1}, {" +1close", 1}, {"open", 0}, {"", 0}};
  for (const auto& [text, policy] : rows) {
    PolicyKernel kernel;
    EXPECT_EQ(runCommand({"setfailpolicy", "-p0", "-f", kFilter, "-p", text}),
              (CommandResult{0, "", ""}));
    EXPECT_EQ(kernel.policy, policy) << text;
    EXPECT_STREQ(kernel.kernel().last().port->identifier, kFilter);
  }
}

TEST(SetFailPolicy, ANumberThatIsNoPolicyIsNeverSent) {
  for (const char* const text : {"2", "-1", "256", "4294967296", "99999999999999999999"}) {
    const LogCapture log;
    const PolicyKernel kernel;
    EXPECT_EQ(runCommand({"setfailpolicy", "-f", kFilter, "-p", text}),
              (CommandResult{1, "",
                             std::string("ERROR: failed to set fail policy: ") +
                                 FW_StatusToString(7) + " 7\n"}))
        << text;
    EXPECT_TRUE(kernel.asked().empty()) << text;
  }
}

TEST(SetFailPolicy, ReportsWhatTheKernelRefuses) {
  PolicyKernel kernel;
  kernel.fail(31, 21);
  EXPECT_EQ(runCommand({"setfailpolicy", "-f", kFilter, "-p1"}),
            (CommandResult{1, "", "ERROR: failed to set fail policy: switch port not found 21\n"}));
}

TEST(GetFailPolicy, PrintsWhatTheKernelHas) {
  const std::vector<std::pair<std::uint8_t, std::string>> rows = {
      {0, "fail open"}, {1, "fail close"}, {2, "undefined"}, {255, "undefined"}};
  for (const auto& [policy, text] : rows) {
    const PolicyKernel kernel(policy);
    EXPECT_EQ(runCommand({"getfailpolicy", "-f", kFilter}),
              (CommandResult{0, "filter fail policy: " + text + "\n", ""}));
  }
}

TEST(GetFailPolicy, ReportsWhatTheKernelRefuses) {
  PolicyKernel kernel;
  kernel.fail(35, 21);
  EXPECT_EQ(runCommand({"getfailpolicy", "-f", kFilter}),
            (CommandResult{1, "", "ERROR: failed to get fail policy: switch port not found\n"}));
}

TEST(FailPolicy, VerbosityIsPrintedAndDoesNotReachTheLibrary) {
  const std::string lines = "verbose level : 3\nweirgate agent: kelpco-sfw\n";
  const PolicyKernel kernel(0);
  EXPECT_EQ(runCommand({"setfailpolicy", "-v", "3", "-f", kFilter, "-p", "1"}),
            (CommandResult{0, lines, ""}));
  EXPECT_EQ(runCommand({"getfailpolicy", "-v1", "-f", kFilter, "-v2"}),
            (CommandResult{0, lines + "filter fail policy: fail close\n", ""}));
  unsigned int level = 99;
  FW_GetLibVerboseLevel(0, &level);
  EXPECT_EQ(level, 0u);
}

// --- What a filter writes to the kernel's log

namespace {

/// Keeps component and level as they were sent.
class VerboseKernel : public HandlerKernel {
 public:
  VerboseKernel() {
    on(32, [this](Body& body) {
      EXPECT_EQ(body.size, 4u);
      component = body.word(0) & 0xffffff;
      level = body.at[3];
      return 0;
    });
  }
  unsigned int component = 99;
  unsigned int level = 99;
};

}  // namespace

TEST(SetVerbose, SendsComponentAndLevel) {
  VerboseKernel kernel;
  EXPECT_EQ(runCommand({"setverbose", "-c", "DP", "-v", "3", "-f", kFilter}),
            (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.component, 1u);
  EXPECT_EQ(kernel.level, 3u);
  EXPECT_STREQ(kernel.kernel().last().port->identifier, kFilter);
  EXPECT_EQ(runCommand({"setverbose", "-f", kFilter, "-ccp"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.component, 2u);
  EXPECT_EQ(kernel.level, 0u);
  EXPECT_EQ(runCommand({"setverbose", "-f", kFilter, "-cdp", "-v15"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.level, 15u) << "the kernel's own levels end here";
}

TEST(SetVerbose, RefusesWhatIsNoComponentOrLevel) {
  const VerboseKernel kernel;
  const CommandResult help = runCommand({"setverbose", "-h"});
  for (const char* const text : {"", "D", "DPX", "1"}) {
    EXPECT_EQ(runCommand({"setverbose", "-f", kFilter, "-c", text}),
              (CommandResult{1, help.out, ""}));
  }
  for (const char* const text : {"16", "-1", "4294967297", "99999999999999999999"}) {
    const LogCapture log;
    EXPECT_EQ(runCommand({"setverbose", "-f", kFilter, "-c", "DP", "-v", text}),
              (CommandResult{1, "", "ERROR: failed to set verbose log: not supported\n"}))
        << text;
  }
  const LogCapture log;
  EXPECT_EQ(runCommand({"setverbose", "-f", kFilter, "-v1"}),
            (CommandResult{1, "", "ERROR: failed to set verbose log: not supported\n"}))
      << "without a component";
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(SetVerbose, WithoutAFilterTheKernelDecides) {
  const LogCapture log;
  FakeKernel kernel;
  const DefaultHandle handle(kernel.handle());
  kernel.answer(21);
  EXPECT_EQ(runCommand({"setverbose", "-c", "DP", "-v1"}),
            (CommandResult{1, "", "ERROR: failed to set verbose log: switch port not found\n"}));
  EXPECT_FALSE(kernel.last().port.has_value());
}
