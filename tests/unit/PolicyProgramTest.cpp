#include <gtest/gtest.h>

#include "RunPolicy.h"
#include "Subcommand.h"

namespace {

TEST(PolicyProgram, HelpNamesEverySubcommandThatIsThere) {
  const PolicyResult help = runPolicy({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.err, "");
  for (const Subcommand& subcommand : subcommands()) {
    const std::string line = std::string("\n  ") + subcommand.name + " ";
    EXPECT_EQ(help.out.find(line) != std::string::npos, subcommand.run != nullptr)
        << subcommand.name;
  }
}

TEST(PolicyProgram, EverySubcommandAnswersHelpWithItsUsage) {
  for (const Subcommand& subcommand : subcommands()) {
    if (subcommand.run == nullptr) continue;
    EXPECT_EQ(std::string(subcommand.usage)
                  .find(std::string("Usage: tarnpolicy ") + subcommand.name + " "),
              0u);
    EXPECT_EQ(runPolicy({subcommand.name, "--help"}), (PolicyResult{0, subcommand.usage, ""}));
    EXPECT_EQ(runPolicy({subcommand.name, "-h"}), (PolicyResult{0, subcommand.usage, ""}));
  }
}

TEST(PolicyProgram, EverySubcommandAnswersWithTheVersion) {
  const PolicyResult version = runPolicy({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(version.out.starts_with("tarnpolicy ")) << version.out;
  for (const Subcommand& subcommand : subcommands()) {
    if (subcommand.run == nullptr) continue;
    EXPECT_EQ(runPolicy({subcommand.name, "--version"}), version);
  }
}

TEST(PolicyProgram, EverySubcommandRefusesAnUnknownOption) {
  for (const Subcommand& subcommand : subcommands()) {
    if (subcommand.run == nullptr) continue;
    const std::string name = subcommand.name;
    EXPECT_EQ(runPolicy({name, "--frobnicate"}),
              (PolicyResult{2, "",
                            "tarnpolicy " + name + ": no option --frobnicate\n" +
                                "Its usage is shown by: tarnpolicy " + name + " --help\n"}));
  }
}

TEST(PolicyProgram, AWrongCallEndsWithTwo) {
  EXPECT_EQ(runPolicy({}).status, 2);
  EXPECT_EQ(runPolicy({"frobnicate"}).status, 2);
  EXPECT_EQ(runPolicy({""}).status, 2);
  EXPECT_EQ(runPolicy({"--frobnicate"}).status, 2);
}

}  // namespace
