// Handlers of flow exclusion, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DirectKernel.h"
#include "FakeKernel.h"
#include "LibcShim.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
const std::size_t kRoom = 1024 * 162;

const char kSetUsage[] =
    "Set flow exclusion setting of a filter.\n\n"
    "Usage: tarnioctl setflowexclusion <options>\n"
    "    -g <on|off> : collecting flows\n"
    "    -l <on|off> : collecting non-IP L2 flows\n"
    "    -2 <on|off> : collecting L2 flows\n"
    "    -d <on|off> : collecting flows of dropped packets\n"
    "    -a <on|off> : aggregate source address\n"
    "    -b <on|off> : aggregate dest address\n"
    "    -s <on|off> : aggregate source port\n"
    "    -t <on|off> : aggregate dest port\n"
    "    -p <on|off> : aggregate protocol\n"
    "    -f <string> : filter name, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "    -F <definition> : one flow exclusion definition, repeatable:\n"
    "                  smac|dmac|ethertype|sip|dip|protocol|sport|dport|svnic|dvnic\n"
    "    -h          : this help message\n";

/// The definition "||N|||||||" as a record.
Bytes ethertype(int number) {
  return Bytes(162).at(1, {1}).at(9, {1}).at(18, {number >> 8 & 0xff, number & 0xff});
}

std::string definition(int number) { return "||" + std::to_string(number) + "|||||||"; }

/// A kernel that keeps the records it was given, and gives those that it has.
class ExclusionKernel : public DirectKernel {
 public:
  ExclusionKernel() {
    on(25, [this](std::uint8_t* body) {
      given = Bytes(word(body, 104));
      if (!given.empty()) std::memcpy(given.data(), buffer(body), given.size());
      return 0u;
    });
    on(26, [this](std::uint8_t* body) {
      EXPECT_EQ(word(body, 104), kRoom);
      if (!had.empty()) std::memcpy(buffer(body), had.data(), had.size());
      const auto length = answeredLength ? *answeredLength : std::uint32_t(had.size());
      std::memcpy(body + 100, &flags, sizeof flags);
      std::memcpy(body + 104, &length, sizeof length);
      return status;
    });
  }

  /// The last request without the address of its records.
  Bytes request() const {
    Bytes body = requests().back().body;
    std::fill(body.begin() + 108, body.end(), std::uint8_t{0});
    return body;
  }

  Bytes given = Bytes(0);
  Bytes had = Bytes(0);
  std::uint32_t flags = 0;
  std::optional<std::uint32_t> answeredLength;
  std::uint32_t status = 0;

 private:
  static std::uint32_t word(const std::uint8_t* body, std::size_t at) {
    std::uint32_t value;
    std::memcpy(&value, body + at, sizeof value);
    return value;
  }
  static std::uint8_t* buffer(const std::uint8_t* body) {
    std::uint64_t address;
    std::memcpy(&address, body + 108, sizeof address);
    return reinterpret_cast<std::uint8_t*>(address);
  }
};

CommandResult runSet(std::vector<std::string> options) {
  options.insert(options.begin(), {"setflowexclusion", "-Override"});
  return runCommand(options);
}

const CommandResult kSilent{0, "", ""};

}  // namespace

TEST(SetFlowExclusion, WithoutOptionsTakesEverythingAway) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({}), kSilent);
  ASSERT_EQ(kernel.requests().size(), 1u);
  EXPECT_EQ(kernel.requests()[0].number, 25u);
  EXPECT_EQ(kernel.request(), Bytes(116));
}

TEST(SetFlowExclusion, SendsTheDefinitionsInTheirOrder) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({"-f", kFilter, "-F", definition(3), "-F", definition(0x102)}), kSilent);
  EXPECT_EQ(kernel.request(), Bytes(116).text(0, kFilter).at(104, {0x44, 1}));
  Bytes wanted = ethertype(3);
  const Bytes second = ethertype(0x102);
  wanted.insert(wanted.end(), second.begin(), second.end());
  EXPECT_EQ(kernel.given, wanted);
}

TEST(SetFlowExclusion, EverySwitchHasItsWordAndItsText) {
  const struct {
    const char* option;
    const char* word;
    const char* opposite;
    std::uint32_t flags;
    const char* text;
  } rows[] = {
      {"-g", "off", "on", 0x1, "turn off flow collection\n"},
      {"-l", "off", "on", 0x2, "turn off non-IP L2 flow collection\n"},
      {"-2", "off", "on", 0x4, "turn off all L2 flow collection\n"},
      {"-d", "off", "on", 0x8, "turn off drop packets flow collection\n"},
      {"-a", "on", "off", 0x8003c500, "aggregate source address\n"},
      {"-b", "on", "off", 0x8003c600, "aggregate dest address\n"},
      {"-s", "on", "off", 0x8003d400, "aggregate source port\n"},
      {"-t", "on", "off", 0x8003e400, "aggregate dest port\n"},
      {"-p", "on", "off", 0x8003cc00, "aggregate protocol\n"},
  };
  for (const auto& row : rows) {
    const ExclusionKernel kernel;
    EXPECT_EQ(runSet({row.option, row.word}), (CommandResult{0, row.text, ""}));
    EXPECT_EQ(kernel.request(), put32(*std::make_unique<Bytes>(116), 100, row.flags));
    EXPECT_EQ(runSet({row.option, row.opposite}), kSilent);
    EXPECT_EQ(kernel.request(), Bytes(116));
    for (const char* const word : {"", "o", "offf", "1", "yes", "on "})
      EXPECT_EQ(runSet({row.option, word}), (CommandResult{1, kSetUsage, ""})) << word;
    EXPECT_EQ(kernel.requests().size(), 2u);
  }
}

TEST(SetFlowExclusion, WordsMayHaveCapitals) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({"-g", "OFF", "-a", "On"}),
            (CommandResult{0, "turn off flow collection\naggregate source address\n", ""}));
  EXPECT_EQ(kernel.request(), Bytes(116).at(100, {0x01, 0xc5, 0x03, 0x80}));
}

TEST(SetFlowExclusion, CombinesTheMasks) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({"-p", "on", "-t", "on", "-d", "off", "-2", "off"}).status, 0);
  EXPECT_EQ(kernel.request(), Bytes(116).at(100, {0x0c, 0xec, 0x03, 0x80}));
}

TEST(SetFlowExclusion, TheLastWordOfASwitchCounts) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({"-g", "off", "-a", "on", "-b", "on", "-g", "on", "-a", "off"}),
            (CommandResult{0,
                           "turn off flow collection\naggregate source address\n"
                           "aggregate dest address\n",
                           ""}));
  EXPECT_EQ(kernel.request(), Bytes(116).at(100, {0x00, 0xc6, 0x03, 0x80}));
}

TEST(SetFlowExclusion, PrintsItsTextsWhileItReadsTheOptions) {
  const ExclusionKernel kernel;
  EXPECT_EQ(
      runSet({"-g", "off", "-F", "x"}),
      (CommandResult{1, "turn off flow collection\n", "ERROR: cannot find source mac address\n"}));
  EXPECT_EQ(runSet({"-g", "off", "-a", "maybe"}),
            (CommandResult{1, std::string("turn off flow collection\n") + kSetUsage, ""}));
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(SetFlowExclusion, AGlobalSettingHasNoFilter) {
  const ExclusionKernel kernel;
  const char kError[] = "ERROR: cannot combine global flags with filter\n";
  for (const char* const option : {"-g", "-l", "-2", "-d"})
    EXPECT_EQ(runSet({option, "on", "-f", kFilter}), (CommandResult{1, kSetUsage, kError}));
  EXPECT_EQ(runSet({"-f", kFilter, "-d", "off"}),
            (CommandResult{1, std::string("turn off drop packets flow collection\n") + kSetUsage,
                           kError}));
  EXPECT_TRUE(kernel.requests().empty());
  for (const char* const option : {"-a", "-b", "-s", "-t", "-p"})
    EXPECT_EQ(runSet({"-f", kFilter, option, "off"}), kSilent);
  EXPECT_EQ(kernel.requests().size(), 5u);
  EXPECT_EQ(kernel.request(), Bytes(116).text(0, kFilter));
}

TEST(SetFlowExclusion, AnEmptyFilterNameIsTheHost) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({"-f", "", "-g", "on"}), kSilent);
  EXPECT_EQ(kernel.request(), Bytes(116));
}

TEST(SetFlowExclusion, AFilterNameHas99Characters) {
  const ExclusionKernel kernel;
  const std::string longest(99, 'f');
  EXPECT_EQ(runSet({"-f", longest + "f"}),
            (CommandResult{1, "", "ERROR: invalid filter " + longest + "f.\n"}));
  EXPECT_EQ(runSet({"-f", "%s%n" + longest}),
            (CommandResult{1, "", "ERROR: invalid filter %s%n" + longest + ".\n"}));
  EXPECT_TRUE(kernel.requests().empty());
  EXPECT_EQ(runSet({"-f", longest}), kSilent);
  EXPECT_EQ(kernel.request(), Bytes(116).text(0, longest));
}

TEST(SetFlowExclusion, SendsNothingAfterADefinitionThatIsWrong) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({"-F", definition(1), "-F", "|||||||||", "-F", "x"}),
            (CommandResult{1, "", "ERROR: empty flow exclusion definition\n"}));
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(SetFlowExclusion, DropsThe1025thDefinition) {
  const ExclusionKernel kernel;
  std::vector<std::string> options;
  for (int i = 0; i < 1026; ++i) {
    options.emplace_back("-F");
    options.push_back(i < 1024 ? definition(i) : "not looked at");
  }
  EXPECT_EQ(runSet(options), (CommandResult{0,
                                            "maximal number of flow exclusion reached\n"
                                            "maximal number of flow exclusion reached\n",
                                            ""}));
  EXPECT_EQ(kernel.request(), put32(*std::make_unique<Bytes>(116), 104, kRoom));
  ASSERT_EQ(kernel.given.size(), kRoom);
  EXPECT_EQ(Bytes(kernel.given.end() - 162, kernel.given.end()), ethertype(1023));
}

TEST(SetFlowExclusion, ADefinitionWithoutMemoryCountsAsAnEmptyOne) {
  const ExclusionKernel kernel;
  CommandResult result;
  {
    const LibcShim::FailingCopies failing;
    result = runSet({"-F", "x%s", "-F", "y"});
  }
  EXPECT_EQ(result, (CommandResult{0, "",
                                   "ERROR: bad flow exclusion spec: x%s\n"
                                   "ERROR: bad flow exclusion spec: y\n"}));
  EXPECT_EQ(kernel.given, Bytes(2 * 162));
}

TEST(SetFlowExclusion, EndsWithZeroWhateverTheKernelSays) {
  const LogCapture log;
  ExclusionKernel kernel;
  kernel.fail(25, ENOTTY);
  EXPECT_EQ(runSet({"-F", definition(1)}), kSilent);
  kernel.fail(25, 0);
  kernel.on(25, [](std::uint8_t*) { return 7u; });
  EXPECT_EQ(runSet({"-F", definition(1)}), kSilent);
}

TEST(SetFlowExclusion, TakesNoVerbosity) {
  const ExclusionKernel kernel;
  EXPECT_EQ(runSet({"-v"}), (CommandResult{1, kSetUsage, "-Override: invalid option -- 'v'\n"}));
}

TEST(GetFlowExclusion, PrintsWhatTheHostCollects) {
  ExclusionKernel kernel;
  EXPECT_EQ(runCommand({"getflowexclusion"}), (CommandResult{0,
                                                             "Global flow collection      : on\n"
                                                             "non-IP L2 flow collection   : on\n"
                                                             "L2 flow collection          : on\n"
                                                             "Drop packet flow collection : on\n"
                                                             "Flow exclusion count        : 0\n",
                                                             ""}));
  EXPECT_EQ(kernel.requests().back().number, 26u);
  EXPECT_EQ(kernel.request(), Bytes(116).at(104, {0x00, 0x88, 0x02, 0x00}));
  const std::vector<std::string> lines = {
      "Global flow collection      : ", "non-IP L2 flow collection   : ",
      "L2 flow collection          : ", "Drop packet flow collection : "};
  for (const std::uint32_t flags : {1u, 2u, 4u, 8u, 0x8003ff05u}) {
    kernel.flags = flags;
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i)
      text += lines[i] + ((flags >> i & 1) != 0 ? "off\n" : "on\n");
    EXPECT_EQ(runCommand({"getflowexclusion"}),
              (CommandResult{0, text + "Flow exclusion count        : 0\n", ""}));
  }
}

TEST(GetFlowExclusion, OfAFilterPrintsItsDefinitionsOnly) {
  ExclusionKernel kernel;
  kernel.flags = 0xffffffff;
  EXPECT_EQ(runCommand({"getflowexclusion", "-f", kFilter}),
            (CommandResult{0, "Flow exclusion count        : 0\n", ""}));
  EXPECT_EQ(kernel.request(), Bytes(116).text(0, kFilter).at(104, {0x00, 0x88, 0x02, 0x00}));
  kernel.had = ethertype(1);
  const Bytes second = ethertype(0x8906);
  kernel.had.insert(kernel.had.end(), second.begin(), second.end());
  EXPECT_EQ(runCommand({"getflowexclusion", "-f", kFilter}),
            (CommandResult{0,
                           "Flow exclusion count        : 2\n"
                           "  0: ||0x0001|||||||\n"
                           "  1: ||0x8906|||||||\n",
                           ""}));
}

TEST(GetFlowExclusion, HasALongForm) {
  ExclusionKernel kernel;
  const auto cells = [](const std::string& text, std::initializer_list<std::size_t> widths,
                        char fill) {
    std::string line;
    for (const std::size_t width : widths) {
      const std::string cell = width == 28 && !text.empty() ? text : text.empty() ? "" : "*";
      line += cell + std::string(width - cell.size(), fill) + " ";
    }
    return line + "\n";
  };
  const std::initializer_list<std::size_t> widths = {36, 36, 28, 78, 78, 33, 12, 12, 48, 48};
  const CommandResult none = runCommand({"getflowexclusion", "-l", "-f", kFilter});
  EXPECT_EQ(none.status, 0);
  const std::string count = "Flow exclusion count        : 0\nSource MAC Address  ";
  EXPECT_EQ(none.out.substr(0, count.size()), count);
  EXPECT_EQ(none.out.substr(none.out.size() - 420), cells("", widths, '-'));
  kernel.had = ethertype(0x8906);
  const CommandResult one = runCommand({"getflowexclusion", "-f", kFilter, "-l"});
  EXPECT_EQ(one.out.substr(one.out.size() - 840),
            cells("", widths, '-') + cells("0x8906", widths, ' '));
}

TEST(GetFlowExclusion, ARequestThatFailsReportsNoDefinitions) {
  const LogCapture log;
  ExclusionKernel kernel;
  kernel.fail(26, EIO);
  const CommandResult none{0,
                           "Global flow collection      : on\n"
                           "non-IP L2 flow collection   : on\n"
                           "L2 flow collection          : on\n"
                           "Drop packet flow collection : on\n"
                           "Flow exclusion count        : 0\n",
                           ""};
  EXPECT_EQ(runCommand({"getflowexclusion"}), none);
  EXPECT_EQ(runCommand({"getflowexclusion", "-f", kFilter}),
            (CommandResult{0, "Flow exclusion count        : 0\n", ""}));
}

TEST(GetFlowExclusion, DoesNotReadTheStatus) {
  ExclusionKernel kernel;
  kernel.status = 7;
  kernel.had = ethertype(1);
  EXPECT_EQ(runCommand({"getflowexclusion", "-f", kFilter}),
            (CommandResult{0, "Flow exclusion count        : 1\n  0: ||0x0001|||||||\n", ""}));
}

TEST(GetFlowExclusion, PrintsNoMoreThanItHasRoomFor) {
  LogCapture log;
  ExclusionKernel kernel;
  kernel.had = Bytes(kRoom);
  for (const auto& [length, count] :
       std::vector<std::pair<std::uint32_t, std::uint32_t>>{{kRoom, 1024},
                                                            {kRoom + 161, 1024},
                                                            {kRoom + 162, 1025},
                                                            {0xffffffff, 26512143},
                                                            {161, 0}}) {
    kernel.answeredLength = length;
    const CommandResult result = runCommand({"getflowexclusion", "-f", kFilter});
    EXPECT_EQ(result.status, 0);
    const std::string line = "Flow exclusion count        : " + std::to_string(count) + "\n";
    EXPECT_EQ(result.out.substr(0, line.size()), line);
    const std::string last = "1023: |||||||||\n";
    const std::string end = count == 0 ? line : last;
    EXPECT_EQ(result.out.substr(result.out.size() - end.size()), end);
  }
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{"4|tarnfw: FlowExclusionHandlers:showExclusion():N 1025 flow "
                                      "exclusions returned for room of 1024\n",
                                      "4|tarnfw: FlowExclusionHandlers:showExclusion():N 26512143 "
                                      "flow exclusions returned for room of 1024\n"}));
}

TEST(FlowExclusion, NeedsRoomForAllDefinitionsBeforeItReadsItsOptions) {
  const ExclusionKernel kernel;
  const CommandResult none{1, "", "ERROR: no memory for 1024 flow exclusion records\n"};
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runCommand({"getflowexclusion", "-h"}), none);
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runSet({"-g", "off"}), none);
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(GetFlowExclusion, HasNoMoreOptions) {
  const ExclusionKernel kernel;
  const CommandResult result = runCommand({"getflowexclusion", "-F", "x"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(kernel.requests().empty());
}
