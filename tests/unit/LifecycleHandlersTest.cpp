// Handlers that make and remove filters and agents, and delete rules, against scripted kernels.

#include <gtest/gtest.h>
#include <syslog.h>

#include <cerrno>
#include <string>
#include <vector>

#include "DirectKernel.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Words = std::vector<std::string>;
using Requests = std::vector<DirectKernel::Request>;

#define UUID "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f"
#define VNIC "00010203-0405-0607-0809-0a0b0c0d0e0f"

Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

Words dangerous(const std::string& command, const Words& options = {}) {
  return Words{command, "-Override"} + options;
}

const Words kFilter = {"-w", "1000", "-u", UUID, "-v", "2", "-f", "3", "-a", "my-agent"};

std::string usageOf(const std::string& command) {
  return runCommand(dangerous(command, {"-h"})).out;
}

/// The record of `kFilter`, without its parameters.
Bytes filterRecord(std::uint8_t add) {
  return Bytes(4284)
      .text(0, "my-agent")
      .at(4208, {0xe8, 3, 0, 0, 3, 0, 0, 0})
      .text(4216, VNIC ".002")
      .at(4280, {add});
}

/// A kernel that makes and removes filters.
class FilterKernel : public DirectKernel {
 public:
  explicit FilterKernel(std::uint32_t status = 0) {
    on(1000, [status](std::uint8_t*) { return status; });
  }
  Bytes sent() const {
    EXPECT_EQ(requests().size(), 1u);
    return requests().empty() ? Bytes(0) : requests()[0].body;
  }
};

}  // namespace

// --- addfilter and deletefilter

TEST(AddFilter, SendsTheFilterAndEndsWith1) {
  const LogCapture log;
  const FilterKernel kernel;
  EXPECT_EQ(runCommand(dangerous("addfilter", kFilter)),
            (CommandResult{1,
                           "Add filter: vm worldId(1000), vnic (" VNIC
                           ".002), filter (3), agent (my-agent)\n"
                           "Filter of agent my-agent vnic " VNIC ".002 index 3 was Created\n",
                           ""}));
  ASSERT_EQ(kernel.requests().size(), 1u);
  EXPECT_EQ(kernel.requests()[0].number, 1000u);
  EXPECT_EQ(kernel.sent(), filterRecord(1));
}

TEST(DeleteFilter, SendsTheFilterAndEndsWith1) {
  const LogCapture log;
  const FilterKernel kernel;
  EXPECT_EQ(runCommand(dangerous("deletefilter", kFilter)),
            (CommandResult{1,
                           "Delete filter: vm worldId(1000), vnic (" VNIC
                           ".002), filter (3), agent (my-agent)\n"
                           "Filter of agent my-agent vnic " VNIC ".002 index 3 was Deleted\n",
                           ""}));
  EXPECT_EQ(kernel.sent(), filterRecord(0));
}

TEST(AddFilter, ReportsWhatTheKernelRefuses) {
  const std::string line =
      "filter: vm worldId(1000), vnic (" VNIC ".002), filter (3), agent (my-agent)\n";
  const LogCapture log;
  {
    const FilterKernel busy(26);
    EXPECT_EQ(runCommand(dangerous("addfilter", kFilter)),
              (CommandResult{1, "Add " + line,
                             std::string("ERROR: Create filter failed: error ") +
                                 FW_StatusToString(26) + "\n"}));
  }
  // A kernel that does not have the request.
  const DirectKernel none;
  EXPECT_EQ(
      runCommand(dangerous("deletefilter", kFilter)),
      (CommandResult{1, "Delete " + line, "ERROR: Delete filter failed: error ioctl failed\n"}));
}

TEST(AddFilter, AnAgentOfAnyLengthIsPrintedWholeAndSentCut) {
  const LogCapture log;
  const FilterKernel kernel;
  const std::string agent(99, 'a');
  Words options = kFilter;
  options.back() = agent;
  const CommandResult result = runCommand(dangerous("addfilter", options));
  EXPECT_NE(result.out.find("agent (" + agent + ")\nFilter of agent " + agent + " vnic "),
            std::string::npos);
  EXPECT_EQ(kernel.sent(), filterRecord(1).text(0, agent.substr(0, 39)));

  options.back() = agent + "b";
  EXPECT_EQ(runCommand(dangerous("addfilter", options)),
            (CommandResult{1, "", "ERROR: invalid agent name " + agent + "b"}));
}

TEST(AddFilter, ZeroIsGiven) {
  const LogCapture log;
  const FilterKernel kernel;
  const CommandResult result = runCommand(
      dangerous("addfilter", {"-w", "0", "-u", UUID, "-v0", "-f0", "-a", "", "-o", "0"}));
  EXPECT_EQ(result.out, "Add filter: vm worldId(0), vnic (" VNIC
                        ".000), filter (0), agent ()\n"
                        "Filter of agent  vnic " VNIC ".000 index 0 was Created\n");
  EXPECT_EQ(kernel.sent(), Bytes(4284).text(4216, VNIC ".000").at(4280, {1}));
}

TEST(AddFilter, NumbersOf32BitsAreSentWhole) {
  const LogCapture log;
  const FilterKernel kernel;
  const CommandResult result = runCommand(dangerous(
      "addfilter", {"-w", "4294967295", "-u", UUID, "-v", "255", "-f", "4294967294", "-a", "x"}));
  EXPECT_EQ(result.out, "Add filter: vm worldId(-1), vnic (" VNIC
                        ".255), filter (-2), agent (x)\n"
                        "Filter of agent x vnic " VNIC ".255 index 4294967294 was Created\n");
  EXPECT_EQ(kernel.sent(), Bytes(4284)
                               .text(0, "x")
                               .at(4208, {255, 255, 255, 255, 254, 255, 255, 255})
                               .text(4216, VNIC ".255")
                               .at(4280, {1}));
}

TEST(AddFilter, NeedsItsFiveOptions) {
  const DirectKernel kernel;
  for (std::size_t left = 0; left < kFilter.size(); left += 2) {
    Words options = kFilter;
    options.erase(options.begin() + static_cast<std::ptrdiff_t>(left),
                  options.begin() + static_cast<std::ptrdiff_t>(left) + 2);
    for (const char* command : {"addfilter", "deletefilter"})
      EXPECT_EQ(runCommand(dangerous(command, options)), (CommandResult{1, usageOf(command), ""}));
  }
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(AddFilter, RefusesWhatItCannotRead) {
  const DirectKernel kernel;
  const std::string uuidLine =
      "ERROR: bad vcuuid, correct format \"00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f\"\n";
  const std::string vnicLine = "ERROR: bad vnic index, no larger than 255\n";
  const std::string usage = usageOf("addfilter");
  const std::vector<std::pair<Words, CommandResult>> rows = {
      {{"-u", UUID " "}, {1, "", uuidLine}},
      {{"-u", "0 1 2 3 4 5 6 7-8 9 a b c d e f"}, {1, "", uuidLine}},
      {{"-u", std::string(47, 'g')}, {1, "", uuidLine}},
      {{"-u", ""}, {1, "", uuidLine}},
      {{"-v", "256"}, {1, "", vnicLine}},
      {{"-v", "4294967295"}, {1, "", vnicLine}},
      {{"-v", "-1"}, {1, usage, ""}},
      {{"-v", "4294967296"}, {1, usage, ""}},
      {{"-v", "x"}, {1, usage, ""}},
      {{"-w", "12x"}, {1, usage, ""}},
      {{"-w", "-1"}, {1, usage, ""}},
      {{"-f", ""}, {1, usage, ""}},
      {{"-f", "4294967296"}, {1, usage, ""}},
      {{"-o", "2"}, {1, usage, ""}},
      {{"-o", "-1"}, {1, usage, ""}},
      {{"-o", "yes"}, {1, usage, ""}},
  };
  for (const auto& [options, result] : rows)
    EXPECT_EQ(runCommand(dangerous("addfilter", kFilter + options)), result) << options[1];
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(AddFilter, SendsItsParametersAndItsPolicy) {
  const LogCapture log;
  const FilterKernel kernel;
  const std::string letters = "0123456789ABCDEF";
  Words options = kFilter + Words{"-o", "1"};
  Bytes record = filterRecord(1).at(40, {16, 0, 0, 0, 1});
  for (std::uint8_t number = 0; number < 16; ++number) {
    const std::string text = "text of " + std::to_string(number);
    options.push_back(std::string("-") + letters[number]);
    options.push_back(text);
    const std::size_t slot = 48u + 260u * number;
    record.at(slot, {number}).text(slot + 4, text);
  }
  EXPECT_EQ(runCommand(dangerous("addfilter", options)).err, "");
  EXPECT_EQ(kernel.sent(), record);
}

TEST(AddFilter, AParameterIsCutAt255Characters) {
  const LogCapture log;
  const FilterKernel kernel;
  const std::string longest(255, 'p');
  EXPECT_EQ(
      runCommand(dangerous("addfilter", kFilter + Words{"-0", longest + "qr", "-1", "next"})).err,
      "");
  EXPECT_EQ(kernel.sent(),
            filterRecord(1).at(40, {2}).text(52, longest).at(308, {1}).text(312, "next"));
}

TEST(AddFilter, TheSlotsUpToTheCountMustHaveText) {
  const DirectKernel kernel;
  const std::vector<std::pair<Words, std::string>> rows = {
      {{"-0", "a", "-2", "b"}, "ERROR: missing param 1\n"},
      {{"-F", "a"}, "ERROR: missing param 0\n"},
      {{"-0", ""}, "ERROR: missing param 0\n"},
      {{"-0", "a", "-0", "b"}, "ERROR: missing param 1\n"},
      {{"-0", "a", "-1", "b", "-0", ""}, "ERROR: missing param 0\n"},
  };
  for (const auto& [options, line] : rows) {
    EXPECT_EQ(runCommand(dangerous("addfilter", kFilter + options)), (CommandResult{1, "", line}));
    // It comes before the options that are missing.
    EXPECT_EQ(runCommand(dangerous("deletefilter", options)), (CommandResult{1, "", line}));
  }
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(AddFilter, ThereIsNo17thSlot) {
  const DirectKernel kernel;
  Words options = kFilter;
  for (const char letter : std::string("0123456789ABCDEF"))
    options = options + Words{std::string("-") + letter, "a"};
  EXPECT_EQ(runCommand(dangerous("addfilter", options + Words{"-F", "b"})),
            (CommandResult{1, "", "ERROR: missing param 16\n"}));
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(AddFilter, WithoutMemoryThereIsNoConfiguration) {
  for (const char* command : {"addfilter", "deletefilter"}) {
    DeviceShim::failNextCalloc();
    EXPECT_EQ(runCommand(dangerous(command, {"-h"})),
              (CommandResult{1, "", "ERROR: no memory for filter config\n"}));
  }
}

// --- Agents

TEST(CreateAgent, SendsTheNameAndReadsNothing) {
  for (const auto& [command, number] : {std::pair{"createagent", 23ul}, {"destroyagent", 24ul}}) {
    for (const int error : {0, EEXIST}) {
      const LogCapture log;
      DirectKernel kernel;
      kernel.on(number, [](std::uint8_t*) { return 17u; });
      if (error != 0) kernel.fail(number, error);
      const std::string agent(99, 'a');
      EXPECT_EQ(runCommand(dangerous(command, {"-a", "other", "-a", agent})),
                (CommandResult{0, "", ""}));
      ASSERT_EQ(kernel.requests().size(), 1u);
      EXPECT_EQ(kernel.requests()[0].number, number);
      EXPECT_EQ(kernel.requests()[0].status, 0u);
      EXPECT_EQ(kernel.requests()[0].body, Bytes(100).text(0, agent));
    }
  }
}

TEST(CreateAgent, NeedsANameOfAtMost99Characters) {
  const DirectKernel kernel;
  const std::string agent(100, 'a');
  for (const char* command : {"createagent", "destroyagent"}) {
    EXPECT_EQ(runCommand(dangerous(command)), (CommandResult{1, usageOf(command), ""}));
    EXPECT_EQ(runCommand(dangerous(command, {"-a", agent})),
              (CommandResult{1, "", "ERROR: invalid agent name " + agent + "\n"}));
  }
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(RegisterAgent, ReadsTheFramesStatusAndEndsWith0) {
  const std::vector<std::pair<std::uint32_t, std::string>> rows = {
      {0, ""},
      {5, "ERROR: ioctl failed to set registeragent 5\n"},
      {0xffffffff, "ERROR: ioctl failed to set registeragent -1\n"},
  };
  for (const auto& [status, line] : rows) {
    DirectKernel kernel;
    kernel.on(41, [status = status](std::uint8_t*) { return status; });
    EXPECT_EQ(runCommand({"registeragent"}), (CommandResult{0, "", line}));
    EXPECT_EQ(runCommand({"registeragent", "-h", "-Override", "x"}), (CommandResult{0, "", line}));
    ASSERT_EQ(kernel.requests().size(), 2u);
    EXPECT_EQ(kernel.requests()[1].status, 0xbad0001u);
    EXPECT_EQ(kernel.requests()[1].body.size(), 0u);
  }
}

TEST(RegisterAgent, AKernelThatDoesNotAnswerHasFailed) {
  const LogCapture log;
  const DirectKernel kernel;
  EXPECT_EQ(runCommand({"registeragent"}),
            (CommandResult{0, "", "ERROR: ioctl failed to set registeragent 195887105\n"}));
}

// --- deleterules

namespace {

const char kName[] = "nic-1002672-eth0-kelpco-sfw.2";

/// Keeps the name of the rule set that was cleared. The number is the request's on the wire.
class RuleSetKernel : public HandlerKernel {
 public:
  RuleSetKernel() {
    on(6, [this](Body& body) {
      ruleSet = body.text(0, 64);
      return 0;
    });
  }
  std::string ruleSet;
};

}  // namespace

TEST(DelRules, ClearsTheRuleSet) {
  RuleSetKernel kernel;
  EXPECT_EQ(runCommand(dangerous("deleterules", {"-f", kName, "-r", "domain-c7"})),
            (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.ruleSet, "domain-c7");
  EXPECT_STREQ(kernel.kernel().last().port->identifier, kName);
}

TEST(DelRules, SaysMoreWithVerbosity) {
  const LogCapture log;
  RuleSetKernel kernel;
  EXPECT_EQ(runCommand(dangerous("deleterules", {"-v", "-f", kName, "-r", "a%sb%n"})),
            (CommandResult{0,
                           "verbose level : 1\nweirgate agent: kelpco-sfw\n"
                           "DEBUG: All rules of ruleset a%sb%n on filter " +
                               std::string(kName) + " were deleted.\n",
                           ""}));
  EXPECT_EQ(kernel.ruleSet, "a%sb%n");
}

TEST(DelRules, NeedsARuleSetOfAtMost63Characters) {
  const std::string longest(63, 'r');
  RuleSetKernel kernel;
  EXPECT_EQ(runCommand(dangerous("deleterules", {"-f", kName})),
            (CommandResult{1, usageOf("deleterules"), "ERROR: ruleset name is missing.\n"}));
  EXPECT_EQ(runCommand(dangerous("deleterules")),
            (CommandResult{1, usageOf("deleterules"), "ERROR: filter is missing.\n"}));
  EXPECT_EQ(runCommand(dangerous("deleterules", {"-f", kName, "-r", longest + "s"})),
            (CommandResult{1, "", "ERROR: invalid ruleset name " + longest + "s\n"}));
  EXPECT_TRUE(kernel.asked().empty());
  EXPECT_EQ(runCommand(dangerous("deleterules", {"-f", kName, "-r", longest})),
            (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.ruleSet, longest);
}

TEST(DelRules, ReportsWhatTheKernelRefuses) {
  RuleSetKernel kernel;
  kernel.fail(6, 21);
  EXPECT_EQ(runCommand(dangerous("deleterules", {"-f", kName, "-r", "domain-c7"})),
            (CommandResult{1, "",
                           "ERROR: failed to delete all rules of ruleset domain-c7 on filter " +
                               std::string(kName) + ": switch port not found\n"}));
}
