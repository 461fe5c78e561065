// getfwconfig against a scripted kernel.

#include <gtest/gtest.h>

#include "HandlerKernel.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

const char kUsage[] =
    "Get rules, addrsets and containers of a filter.\n\n"
    "Usage: tarnioctl getfwconfig <options>\n"
    "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "    -v<number>  : enable verbose log\n"
    "    -m <string> : verbose log component name or id\n"
    "    -i          : print summary info only\n"
    "    -h          : this help message\n";

/// A filter that holds one empty rule set and one address set without members.
class ConfigKernel : public HandlerKernel {
 public:
  ConfigKernel() {
    on(1, [](Body& body) { return body.put32(0, 1), 0; });
    on(4, [](Body& body) { return body.putText(0, "web"), 0; });
    on(2, [](Body& body) { return body.put32(8, 1), body.putText(12, "web"), 0; });
    on(8, [](Body&) { return 0; });
    on(9, [](Body& body) { return body.put64(68, 5), 0; });
    on(45, [](Body&) { return 0; });
    on(20, [](Body& body) { return body.put32(4, 1), 0; });
    on(21, [](Body& body) { return body.put32(12, 1), body.putText(16, "src1"), 0; });
    on(15, [](Body& body) { return body.put32(42, 1), 0; });
    on(16, [](Body& body) { return body.put64(42, 5), 0; });
  }
};

}  // namespace

TEST(GetFWConfig, ShowsItsUsageWhateverItsPartsTake) {
  EXPECT_EQ(runCommand({"getfwconfig", "-f", kFilter, "-h"}), (CommandResult{0, kUsage, ""}));
  for (const char* bad : {"-x", "-s", "-r", "-a", "-o", "-d", "-p"}) {
    const CommandResult result = runCommand({"getfwconfig", "-f", kFilter, bad});
    EXPECT_EQ(result.status, 1) << bad;
    EXPECT_EQ(result.out, kUsage) << bad;
  }
}

TEST(GetFWConfig, AFilterNameJoinedToItsOptionIsABadOption) {
  const CommandResult result = runCommand({"getfwconfig", std::string("-f") + kFilter});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, kUsage);
  EXPECT_EQ(result.err, "getfwconfig: invalid option -- 'n'\n");
}

TEST(GetFWConfig, ShowsRulesThenAddressSetsThenContainers) {
  ConfigKernel kernel;
  CommandResult result = runCommand({"getfwconfig", "-f", kFilter});
  result.out = maskTime(result.out, 5);
  EXPECT_EQ(result, (CommandResult{0,
                                   "ruleset web {\n"
                                   "  # generation number: 0\n"
                                   "  # realization time : TIME\n"
                                   "}\n\n"
                                   "addrset src1 {\n"
                                   "}\n"
                                   "No containers.\n",
                                   ""}));
}

TEST(GetFWConfig, TheOrderOfTheOptionsDoesNotMatter) {
  const std::vector<std::vector<std::string>> orders = {
      {"-f", kFilter, "-i"}, {"-i", "-f", kFilter}, {"-if", kFilter}};
  for (std::vector<std::string> words : orders) {
    ConfigKernel kernel;
    words.insert(words.begin(), "getfwconfig");
    CommandResult result = runCommand(words);
    result.out = maskTime(maskTime(result.out, 5), 5);
    EXPECT_EQ(result, (CommandResult{0,
                                     "ruleset web {\n"
                                     "rule count       : 0\n"
                                     "generation number: 0\n"
                                     "realization time : TIME\n"
                                     "}\n"
                                     "addrset src1 {\n"
                                     "address count    : 0\n"
                                     "generation number: 0\n"
                                     "realization time : TIME\n"
                                     "}\n"
                                     "No containers.\n",
                                     ""}));
    EXPECT_STREQ(kernel.kernel().last().port->identifier, kFilter);
  }
}

TEST(GetFWConfig, GoesOnAfterAFilterWithoutRules) {
  ConfigKernel kernel;
  kernel.on(1, [](Body&) { return 0; });
  EXPECT_EQ(runCommand({"getfwconfig", "-f", kFilter}),
            (CommandResult{0, "No rules.\naddrset src1 {\n}\nNo containers.\n", ""}));
}

TEST(GetFWConfig, EndsWithTheFirstThatFails) {
  ConfigKernel kernel;
  kernel.fail(1, 21);
  EXPECT_EQ(runCommand({"getfwconfig", "-f", kFilter}),
            (CommandResult{1, "",
                           std::string("ERROR: failed to get total rulesets: ") +
                               FW_StatusToString(21) + "\n"}));
  EXPECT_EQ(kernel.timesAsked(20), 0u);

  ConfigKernel second;
  second.on(1, [](Body&) { return 0; });
  second.fail(20, 21);
  EXPECT_EQ(runCommand({"getfwconfig", "-f", kFilter}),
            (CommandResult{1, "No rules.\n",
                           std::string("ERROR: failed to get addrset count: ") +
                               FW_StatusToString(21) + "\n"}));
  EXPECT_EQ(second.timesAsked(20), 1u);
}

TEST(GetFWConfig, VerbosityIsSaidByEachOfThem) {
  ConfigKernel kernel;
  kernel.on(1, [](Body&) { return 0; });
  const CommandResult result = runCommand({"getfwconfig", "-v2", "-m", "cache", "-f", kFilter});
  const std::string said = "verbose level : 2\nweirgate agent: kelpco-sfw\n";
  EXPECT_EQ(
      result,
      (CommandResult{
          0, said + "No rules.\n" + said + "addrset src1 {\n}\n" + said + "No containers.\n", ""}));
}
