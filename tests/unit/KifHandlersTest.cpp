// getkifflags, setkifflags and kiffastpath against a scripted kernel.

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

/// Numbers of the commands.
enum : unsigned int { kGet = 39, kSet = 40, kFastPath = 68 };

/// Two flags with a gap between them.
class KifKernel : public HandlerKernel {
 public:
  KifKernel() {
    on(kGet, [](Body& body) {
      EXPECT_EQ(body.size, 1316u);
      body.put32(0, 0x80000001);
      body.putText(4, "fast");
      body.at[1284] = 1;
      body.putText(4 + 31 * 40, std::string(40, 'n'));
      body.at[1284 + 31] = 255;
      return 0;
    });
    on(kSet, [this](Body& body) {
      EXPECT_EQ(body.size, 1316u);
      EXPECT_EQ(body.word(0), 0u);
      name = body.text(4, 1280);
      value = body.at[1284];
      return 0;
    });
    on(kFastPath, [this](Body& body) {
      EXPECT_EQ(body.size, 8u);
      fast = {body.word(0), body.word(4)};
      body.put32(0, answer);
      return 0;
    });
  }
  std::string name{};
  unsigned int value = 999;
  std::vector<std::uint32_t> fast{};
  std::uint32_t answer = 0;
};

CommandResult run(const char* command, std::vector<std::string> options) {
  std::vector<std::string> words{command};
  if (std::string(command) == "setkifflags") words.emplace_back("-Override");
  words.insert(words.end(), {"-f", kFilter});
  words.insert(words.end(), options.begin(), options.end());
  return runCommand(words);
}

std::string usageOf(const std::string& command) {
  std::vector<std::string> words{command};
  if (command == "setkifflags") words.emplace_back("-Override");
  words.emplace_back("-h");
  return runCommand(words).out;
}

}  // namespace

TEST(GetKifFlags, PrintsTheFlagsThatHaveANameAndStopsAtTheEndOfTheField) {
  const KifKernel kernel;
  EXPECT_EQ(run("getkifflags", {}),
            (CommandResult{0,
                           "kif flags: (0x80000001)\n"
                           "    fast                                     1\n"
                           "    " +
                               std::string(40, 'n') + " 255\n",
                           ""}));
}

TEST(GetKifFlags, PrintsTheLevelTwice) {
  const LogCapture log;
  const KifKernel kernel;
  const CommandResult result = run("getkifflags", {"-v2"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out.substr(0, result.out.find("kif")),
            "verbose level : 2\nweirgate agent: kelpco-sfw\nverbose level : 2\n");
}

TEST(GetKifFlags, ReportsWhatFails) {
  KifKernel kernel;
  kernel.fail(kGet, 21);
  EXPECT_EQ(run("getkifflags", {}),
            (CommandResult{1, "", "ERROR: Failed to get filter kif flags\n"}));
}

TEST(SetKifFlags, SendsNameAndValue) {
  KifKernel kernel;
  EXPECT_EQ(run("setkifflags", {"-n", "fast", "-e", "1"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.name, "fast");
  EXPECT_EQ(kernel.value, 1u);
  EXPECT_EQ(run("setkifflags", {"--enable=0", "-n", ""}), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.name, "");
  EXPECT_EQ(kernel.value, 0u);
  EXPECT_EQ(run("setkifflags", {"-e1", "-n", std::string(39, 'n') + "more"}),
            (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.name, std::string(39, 'n'));
}

TEST(SetKifFlags, AValueOfMoreThanEightBitsDoesNotTurnIntoAnother) {
  const std::vector<std::pair<const char*, unsigned int>> rows = {
      {"2", 2}, {"255", 255}, {"256", 255}, {"-1", 255}, {"4294967296", 255}, {"on", 0}, {"1x", 1}};
  for (const auto& [text, value] : rows) {
    KifKernel kernel;
    EXPECT_EQ(run("setkifflags", {"-n", "fast", "-e", text}), (CommandResult{0, "", ""})) << text;
    EXPECT_EQ(kernel.value, value) << text;
  }
}

TEST(SetKifFlags, SaysWhatIsMissingInItsOrder) {
  const std::string usage = usageOf("setkifflags");
  EXPECT_EQ(runCommand({"setkifflags", "-Override"}),
            (CommandResult{1, usage, "ERROR: filter is missing\n"}));
  EXPECT_EQ(run("setkifflags", {}), (CommandResult{1, usage, "ERROR: flagname is missing\n"}));
  EXPECT_EQ(run("setkifflags", {"-e1"}), (CommandResult{1, usage, "ERROR: flagname is missing\n"}));
  EXPECT_EQ(run("setkifflags", {"-n", "fast"}),
            (CommandResult{1, usage, "ERROR: flagvalue is missing\n"}));
}

TEST(SetKifFlags, ReportsHowItWent) {
  const LogCapture log;
  KifKernel kernel;
  EXPECT_EQ(
      run("setkifflags", {"-n", "fast", "-e1", "-v"}),
      (CommandResult{0, "verbose level : 1\nweirgate agent: kelpco-sfw\nverbose level : 1\n", ""}));
  kernel.fail(kSet, 3);
  EXPECT_EQ(run("setkifflags", {"-n", "fast", "-e1"}),
            (CommandResult{1, "", "ERROR: Failed to set kif flag\n"}));
}

TEST(KifFastPath, SetsTheFlagAndSaysNothing) {
  for (const std::uint32_t value : {0u, 1u}) {
    KifKernel kernel;
    kernel.answer = 7;
    EXPECT_EQ(run("kiffastpath", {"-s", std::to_string(value)}), (CommandResult{0, "", ""}));
    EXPECT_EQ(kernel.fast, (std::vector<std::uint32_t>{value, 0}));
    EXPECT_EQ(run("kiffastpath", {"-i", "-s", std::to_string(value)}), (CommandResult{0, "", ""}))
        << "what is set counts";
    EXPECT_EQ(kernel.fast, (std::vector<std::uint32_t>{value, 0}));
  }
}

TEST(KifFastPath, PrintsTheFlag) {
  for (const char* const option : {"-i", "-iwhatever"}) {
    KifKernel kernel;
    EXPECT_EQ(run("kiffastpath", {option}), (CommandResult{0, "Fast Path flag Disable\n", ""}));
    EXPECT_EQ(kernel.fast, (std::vector<std::uint32_t>{0, 1}));
    for (const std::uint32_t answer : {1u, 0xffffffffu}) {
      kernel.answer = answer;
      EXPECT_EQ(run("kiffastpath", {option}), (CommandResult{0, "Fast Path flag Enabled\n", ""}));
    }
  }
}

TEST(KifFastPath, RefusesAValueThatIsNoChoice) {
  const std::string usage = usageOf("kiffastpath");
  for (const char* const text : {"2", "-1", "4294967297", "", "on", "1x"}) {
    const KifKernel kernel;
    EXPECT_EQ(run("kiffastpath", {"-s", text}),
              (CommandResult{1, usage, std::string("ERROR: bad enable value ") + text + "\n"}));
    EXPECT_TRUE(kernel.asked().empty());
  }
}

TEST(KifFastPath, OpensTheLibraryBeforeItLooksForTheFilter) {
  const std::string usage = usageOf("kiffastpath");
  {
    const DefaultHandle none(nullptr);
    EXPECT_EQ(runCommand({"kiffastpath"}),
              (CommandResult{1, "",
                             "ERROR: unable to open firewall library\n"
                             "ERROR: Library handle init failure.\n"}));
  }
  const KifKernel kernel;
  EXPECT_EQ(runCommand({"kiffastpath"}), (CommandResult{1, usage, "ERROR: filter is missing.\n"}));
  EXPECT_EQ(run("kiffastpath", {}),
            (CommandResult{1, usage, "ERROR: FP flag value is missing.\n"}));
}

TEST(KifFastPath, ReportsWhatFails) {
  KifKernel kernel;
  kernel.fail(kFastPath, 21);
  for (const char* const option : {"-i", "-s1"}) {
    EXPECT_EQ(
        run("kiffastpath", {option}),
        (CommandResult{1, "", "ERROR: failed to set fp interface flag: switch port not found\n"}));
  }
}
