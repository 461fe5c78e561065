#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string>

#include "Arguments.h"
#include "DeviceShim.h"
#include "Expect.h"
#include "HandlerCommon.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

namespace {

struct Agent {
  int result;
  std::string agent;
};
bool operator==(const Agent& a, const Agent& b) {
  return a.result == b.result && a.agent == b.agent;
}

/// Asks for the agent of a name with exactly the room that callers promise.
Agent agentOf(const std::string& name) {
  const auto buffer = std::make_unique<char[]>(99);
  std::snprintf(buffer.get(), 99, "kelpco-sfw");
  const int result = GetAgentFromFilterName(name.c_str(), buffer.get());
  return {result, buffer.get()};
}

Bytes bytesOf(const dvs_port_& port) {
  Bytes bytes(sizeof port);
  std::memcpy(bytes.data(), &port, sizeof port);
  return bytes;
}

/// Walks options and gives them as text: "a=value b ?".
std::string walk(Options& options) {
  std::string seen;
  for (int option; (option = options.next()) != -1;) {
    seen += static_cast<char>(option);
    if (option != '?' && options.value() != nullptr) seen += std::string("=") + options.value();
    seen += ' ';
  }
  return seen;
}

}  // namespace

// --- Agent of a filter name

TEST(GetAgentFromFilterName, TakesWhatStandsBetweenTheThirdDashAndTheLastDot) {
  EXPECT_EQ(agentOf("nic-1002672-eth0-kelpco-sfw.2"), (Agent{0, "kelpco-sfw"}));
  EXPECT_EQ(agentOf("nic-1-eth0-a.b.c.12"), (Agent{0, "a.b.c"}));
  EXPECT_EQ(agentOf("a-b-c-d."), (Agent{0, "d"}));
  EXPECT_EQ(agentOf("---agent.0"), (Agent{0, "agent"}));
}

TEST(GetAgentFromFilterName, AnEmptyAgentInThePlaceOfOneIsTaken) {
  EXPECT_EQ(agentOf("nic-1-eth0-.2"), (Agent{0, ""}));
}

TEST(GetAgentFromFilterName, FewerThanThreeDashesHaveNoneAndKeepTheBuffer) {
  EXPECT_EQ(agentOf("nic-1-eth0"), (Agent{1, "kelpco-sfw"}));
  EXPECT_EQ(agentOf("nic-1-eth0.5"), (Agent{1, "kelpco-sfw"}));
  EXPECT_EQ(agentOf("nic.1"), (Agent{1, "kelpco-sfw"}));
  EXPECT_EQ(agentOf(""), (Agent{1, "kelpco-sfw"}));
}

TEST(GetAgentFromFilterName, NoDotAfterTheThirdDashIsNoAgent) {
  EXPECT_EQ(agentOf("nic-1-eth0-kelpco"), (Agent{1, "kelpco-sfw"}));
  EXPECT_EQ(agentOf("nic-1.5-eth0-kelpco"), (Agent{1, "kelpco-sfw"}));
}

TEST(GetAgentFromFilterName, TheSharedFiltersAgentEndsAtTheFirstDot) {
  EXPECT_EQ(agentOf("shared-addrset-filter-kelpco-sfw.2"), (Agent{0, "kelpco-sfw"}));
  EXPECT_EQ(agentOf("Shared-AddrSet-FILTER-other"), (Agent{0, "other"}));
  EXPECT_EQ(agentOf("shared-addrset-filter-a.b.c"), (Agent{0, "a"}));
}

TEST(GetAgentFromFilterName, TheSharedFilterWithoutAnAgentFailsAndClearsTheBuffer) {
  EXPECT_EQ(agentOf("shared-addrset-filter-"), (Agent{1, ""}));
  EXPECT_EQ(agentOf("shared-addrset-filter-.2"), (Agent{1, ""}));
}

TEST(GetAgentFromFilterName, ANameIsLookedAtForItsFirst98Characters) {
  const std::string start = "nic-1-eth0-";
  EXPECT_EQ(agentOf(start + std::string(86, 'a') + "."), (Agent{0, std::string(86, 'a')}));
  EXPECT_EQ(agentOf(start + std::string(87, 'a') + "."), (Agent{1, "kelpco-sfw"}));
}

TEST(GetAgentFromFilterName, NeverWritesMoreThan99Bytes) {
  EXPECT_EQ(agentOf("shared-addrset-filter-" + std::string(500, 'a')),
            (Agent{0, std::string(98, 'a')}));
}

// --- The filter option

TEST(FilterTarget, BeginsWithTheDefaultAgentAndNoSelector) {
  const FilterTarget target;
  EXPECT_FALSE(target.given);
  EXPECT_STREQ(target.agent, "kelpco-sfw");
  EXPECT_EQ(bytesOf(target.port), Bytes(100));
}

TEST(FilterTarget, ANameWithAnAgentGivesAFilterSelector) {
  FilterTarget target;
  EXPECT_EQ(target.take("nic-1002672-eth0-other-fw.2"), 0);
  EXPECT_TRUE(target.given);
  EXPECT_STREQ(target.name, "nic-1002672-eth0-other-fw.2");
  EXPECT_STREQ(target.agent, "other-fw");
  Bytes expected(100);
  expected.text(0, "nic-1002672-eth0-other-fw.2").text(64, "other-fw").at(99, {7});
  EXPECT_EQ(bytesOf(target.port), expected);
  target.settleAgent();
  EXPECT_EQ(bytesOf(target.port), expected);
}

TEST(FilterTarget, ANameWithoutAnAgentGivesAVifSelectorThatSettlesOnTheDefaultAgent) {
  FilterTarget target;
  EXPECT_EQ(target.take("nic-1-eth0"), 0);
  EXPECT_EQ(bytesOf(target.port), Bytes(100).text(0, "nic-1-eth0").at(99, {8}));
  target.settleAgent();
  EXPECT_EQ(bytesOf(target.port),
            Bytes(100).text(0, "nic-1-eth0").text(64, "kelpco-sfw").at(99, {8}));
}

TEST(FilterTarget, KeepsTheUpperHalfOfTheTypeByte) {
  FilterTarget target;
  target.port.type = 0xa0;
  target.take("nic-1-eth0-a.1");
  EXPECT_EQ(target.port.type, 0xa7);
  target.take("vif");
  EXPECT_EQ(target.port.type, 0xa8);
}

TEST(FilterTarget, TakesANameOf99CharactersAndRefusesOneOf100) {
  FilterTarget target;
  const std::string longest(99, 'x');
  EXPECT_EQ(target.take(longest.c_str()), 0);
  EXPECT_EQ(target.name, longest);
  EXPECT_EQ(bytesOf(target.port), Bytes(100).text(0, std::string(63, 'x')).at(99, {8}));

  FilterTarget other;
  const std::string tooLong(100, 'x');
  EXPECT_EQ(captured([&] { return other.take(tooLong.c_str()); }),
            (CommandResult{1, "", "ERROR: invalid filter name " + tooLong + "\n"}));
  EXPECT_FALSE(other.given);
}

TEST(FilterTarget, ALongAgentFillsItsFieldAndStaysTerminated) {
  FilterTarget target;
  EXPECT_EQ(target.take(("nic-1-e-" + std::string(40, 'a') + ".1").c_str()), 0);
  EXPECT_STREQ(target.agent, std::string(40, 'a').c_str());
  EXPECT_EQ(std::string(target.port.agent, 32), std::string(31, 'a') + '\0');
}

TEST(FilterTarget, ARepeatedOptionReplacesAllOfTheOneBefore) {
  FilterTarget target;
  target.take("nic-1002672-eth0-other-fw.2");
  target.take("vif");
  EXPECT_EQ(bytesOf(target.port), Bytes(100).text(0, "vif").at(99, {8}));
  target.settleAgent();
  EXPECT_STREQ(target.name, "vif");
  EXPECT_EQ(bytesOf(target.port), Bytes(100).text(0, "vif").text(64, "kelpco-sfw").at(99, {8}));
}

TEST(FilterTarget, AnEmptyNameIsAVifWithoutAName) {
  FilterTarget target;
  EXPECT_EQ(target.take(""), 0);
  EXPECT_TRUE(target.given);
  EXPECT_EQ(bytesOf(target.port), Bytes(100).at(99, {8}));
}

TEST(FilterTarget, ACallerMayWantTheAgentInAnySelector) {
  FilterTarget target;
  target.take("nic-1-eth0-.2");
  EXPECT_EQ(bytesOf(target.port), Bytes(100).text(0, "nic-1-eth0-.2").at(99, {7}));
  Strncpy(target.agent, "kelpco-sfw", sizeof target.agent);
  target.settleAgent();
  EXPECT_EQ(bytesOf(target.port), Bytes(100).text(0, "nic-1-eth0-.2").at(99, {7}));
  target.settleAgent(true);
  EXPECT_EQ(bytesOf(target.port),
            Bytes(100).text(0, "nic-1-eth0-.2").text(64, "kelpco-sfw").at(99, {7}));
}

// --- Verbosity

TEST(Verbosity, StepsAndValuesAddUpAndNegativeOnesCountAsZero) {
  Verbosity verbosity;
  EXPECT_EQ(verbosity.level, 0);
  EXPECT_EQ(verbosity.component, 255u);
  verbosity.raise(nullptr);
  verbosity.raise("2");
  verbosity.raise("-7");
  verbosity.raise("");
  verbosity.raise("abc");
  verbosity.raise("3x");
  EXPECT_EQ(verbosity.level, 6);
}

TEST(Verbosity, StopsAtTheLargestInt) {
  Verbosity verbosity;
  verbosity.raise("99999999999999999999999");
  EXPECT_EQ(verbosity.level, INT_MAX);
  verbosity.raise(nullptr);
  EXPECT_EQ(verbosity.level, INT_MAX);
}

TEST(Verbosity, TakesComponentsByNumberAndName) {
  Verbosity verbosity;
  EXPECT_EQ(verbosity.takeComponent("CMD"), 0);
  EXPECT_EQ(verbosity.component, 7u);
  EXPECT_EQ(verbosity.takeComponent("63"), 0);
  EXPECT_EQ(verbosity.component, 63u);
  EXPECT_EQ(verbosity.takeComponent("all"), 0);
  EXPECT_EQ(verbosity.component, 255u);
}

TEST(Verbosity, RefusesAComponentThatIsNotThere) {
  for (const std::string text : {"64", "", "nobody", "cmdx", "-1"}) {
    Verbosity verbosity;
    EXPECT_EQ(captured([&] { return verbosity.takeComponent(text.c_str()); }),
              (CommandResult{1, "", "ERROR: bad component id " + text + "\n"}));
  }
}

TEST(Verbosity, PrintsItsLevelAndTheSelectorsAgent) {
  const LogCapture log;  // puts the levels back at its end
  FilterTarget target;
  target.take("nic-1-eth0-other-fw.2");
  Verbosity verbosity;
  verbosity.raise("3");
  EXPECT_EQ(captured([&] { return verbosity.announce(target), 0; }),
            (CommandResult{0, "verbose level : 3\nweirgate agent: other-fw\n", ""}));
  unsigned int level = 9;
  EXPECT_EQ(FW_GetLibVerboseLevel(3, &level), 0u);
  EXPECT_EQ(level, 0u);
}

TEST(Verbosity, ReachesTheLibrarysComponent) {
  const LogCapture log;
  Verbosity verbosity;
  verbosity.raise("3");
  verbosity.takeComponent("lexer");
  EXPECT_EQ(captured([&] { return verbosity.raiseLibrary(), 0; }), (CommandResult{0, "", ""}));
  unsigned int level = 9;
  FW_GetLibVerboseLevel(3, &level);
  EXPECT_EQ(level, 3u);
  FW_GetLibVerboseLevel(4, &level);
  EXPECT_EQ(level, 0u);
}

TEST(Verbosity, WithoutAComponentReachesAllOfThem) {
  const LogCapture log;
  Verbosity verbosity;
  verbosity.raise(nullptr);
  verbosity.raiseLibrary();
  for (unsigned int component = 0; component < FW_GetComponentCount(); ++component) {
    unsigned int level = 0;
    FW_GetLibVerboseLevel(component, &level);
    EXPECT_EQ(level, 1u) << component;
  }
}

TEST(Verbosity, IsSilentAtLevelZero) {
  const LogCapture log;
  FW_SetLibVerboseLevel(255, 2);
  const Verbosity verbosity;
  EXPECT_EQ(captured([&] { return verbosity.announce(FilterTarget()), 0; }),
            (CommandResult{0, "", ""}));
  verbosity.raiseLibrary();
  unsigned int level = 0;
  FW_GetLibVerboseLevel(0, &level);
  EXPECT_EQ(level, 2u);
}

// --- Options

TEST(Options, EachWalkBeginsAnew) {
  for (int i = 0; i < 2; ++i) {
    Arguments arguments({"cmd", "-ab", "one", "operand", "-b", "two"});
    Options options(arguments.count(), arguments.vector(), "ab:");
    EXPECT_EQ(walk(options), "a b=one b=two ");
    ASSERT_EQ(options.operandCount(), 1);
    EXPECT_STREQ(options.operands()[0], "operand");
  }
}

TEST(Options, AWalkThatWasLeftInsideAWordDoesNotReachTheNext) {
  Arguments arguments({"cmd", "-aaa"});
  Options(arguments.count(), arguments.vector(), "a").next();
  Arguments others({"cmd", "-b"});
  Options options(others.count(), others.vector(), "b");
  EXPECT_EQ(walk(options), "b ");
}

TEST(Options, AnOptionalValueStandsInTheSameWord) {
  Arguments arguments({"cmd", "-v", "-v3", "-v", "4"});
  Options options(arguments.count(), arguments.vector(), "v::");
  EXPECT_EQ(walk(options), "v v=3 v ");
  EXPECT_EQ(options.operandCount(), 1);
}

TEST(Options, UnknownOnesAndMissingValuesAreQuestionMarksWithGetoptsOwnLine) {
  Arguments arguments({"getfilters", "-x", "-a"});
  EXPECT_EQ(captured([&] {
              Options options(arguments.count(), arguments.vector(), "a:");
              EXPECT_EQ(walk(options), "? ? ");
              return 0;
            }),
            (CommandResult{0, "",
                           "getfilters: invalid option -- 'x'\n"
                           "getfilters: option requires an argument -- 'a'\n"}));
}

TEST(Options, LongOnesStandForTheirLetters) {
  const option words[] = {{"help", no_argument, nullptr, 'h'},
                          {"filter", required_argument, nullptr, 'f'},
                          {nullptr, 0, nullptr, 0}};
  Arguments arguments({"cmd", "--filter=x", "--help", "--", "-h"});
  Options options(arguments.count(), arguments.vector(), "hf:", words);
  EXPECT_EQ(walk(options), "f=x h ");
  EXPECT_STREQ(options.operands()[0], "-h");
}

TEST(DecimalOption, TakesWholeDecimalNumbersOfAnInt) {
  int value = 7;
  EXPECT_TRUE(decimalOption("0", &value));
  EXPECT_EQ(value, 0);
  EXPECT_TRUE(decimalOption("010", &value));
  EXPECT_EQ(value, 10);
  EXPECT_TRUE(decimalOption("2147483647", &value));
  EXPECT_EQ(value, INT_MAX);
  EXPECT_TRUE(decimalOption("-2147483648", &value));
  EXPECT_EQ(value, INT_MIN);
}

TEST(DecimalOption, RefusesTheRestAndKeepsTheValue) {
  for (const char* text : {"", " ", "x", "5x", "0x10", "5 ", "2147483648", "-2147483649",
                           "99999999999999999999999999"}) {
    int value = 7;
    EXPECT_FALSE(decimalOption(text, &value)) << text;
    EXPECT_EQ(value, 7);
  }
}

TEST(BoundedOption, TakesTheBeginningAndStaysBetweenItsBounds) {
  EXPECT_EQ(boundedOption("12", -1, 16), 12);
  EXPECT_EQ(boundedOption(" 7seven", -1, 16), 7);
  EXPECT_EQ(boundedOption("-1", -1, 16), -1);
  for (const char* text : {"", "seven", "-"}) EXPECT_EQ(boundedOption(text, -1, 16), 0) << text;
  for (const char* text : {"16", "17", "4294967296", "99999999999999999999"})
    EXPECT_EQ(boundedOption(text, -1, 16), 16) << text;
  for (const char* text : {"-2", "-4294967296", "-99999999999999999999"})
    EXPECT_EQ(boundedOption(text, -1, 16), -1) << text;
}

// --- Texts and the library

TEST(Usage, GoesToStandardOutputWithTheWordAndGivesTheStatus) {
  const Usage usage("Does it.\n\nUsage: tarnioctl %s <options>\n    -x : 100%\n", "GetRules%s");
  EXPECT_EQ(
      captured([&] { return usage(0); }),
      (CommandResult{0, "Does it.\n\nUsage: tarnioctl GetRules%s <options>\n    -x : 100%\n", ""}));
  EXPECT_EQ(captured([&] { return usage(1); }).status, 1);
}

TEST(Usage, FollowsAnErrorLine) {
  const Usage usage("Usage: tarnioctl %s\n", "getrules");
  EXPECT_EQ(captured([&] { return usage.error("ERROR: bad enable value %s\n", "2"); }),
            (CommandResult{1, "Usage: tarnioctl getrules\n", "ERROR: bad enable value 2\n"}));
}

TEST(PrintWith, PutsTheWordInThePlaceOfTheFirstPercentS) {
  EXPECT_EQ(captured([] { return printWith(stderr, "a %s b %s %d\n", "%s%n"), 0; }),
            (CommandResult{0, "", "a %s%n b %s %d\n"}));
  EXPECT_EQ(captured([] { return printWith(stdout, "none 100%\n", "x"), 0; }),
            (CommandResult{0, "none 100%\n", ""}));
}

TEST(Error, GoesToStandardErrorAndGives1) {
  EXPECT_EQ(captured([] { return error("ERROR: %d %s\n", 5, "x"); }),
            (CommandResult{1, "", "ERROR: 5 x\n"}));
}

TEST(PrettyPrinting, FormatsOntoTheStreamAndReturnsTheLength) {
  EXPECT_EQ(captured([] {
              EXPECT_EQ(pretty_printing(stdout, "%s=%u\n", "count", 12u), 9);
              return pretty_printing(stderr, "e");
            }),
            (CommandResult{1, "count=12\n", "e"}));
}

TEST(FieldText, EndsAtItsNulOrAtItsField) {
  const char full[4] = {'a', 'b', 'c', 'd'};
  const char part[4] = {'a', '\0', 'c', 'd'};
  EXPECT_EQ(fieldText(full), "abcd");
  EXPECT_EQ(fieldText(full, 3), "abc");
  EXPECT_EQ(fieldText(full, 9), "abcd");
  EXPECT_EQ(fieldText(part), "a");
}

TEST(InitFWLibrary, SaysThatTheLibraryCannotBeOpened) {
  fwlibhandle_* handle = reinterpret_cast<fwlibhandle_*>(&handle);
  const DefaultHandle none(nullptr);
  EXPECT_EQ(captured([&] { return initFWLibrary(&handle); }),
            (CommandResult{1, "", "ERROR: unable to open firewall library\n"}));
  EXPECT_EQ(handle, nullptr);
}

TEST(InitFWLibraryDeathTest, EndsTheProcessWithStatus255WithoutADevice) {
  EXPECT_EXIT(
      {
        DeviceShim::putFailing("/dev/brq-tarn", ENOENT);
        fwlibhandle_* handle = nullptr;
        initFWLibrary(&handle);
      },
      testing::ExitedWithCode(255), "^$");
}

TEST(InitFWLibrary, GivesTheDefaultHandle) {
  DeviceShim::put("/dev/brq-tarn");
  fwlibhandle_* first = nullptr;
  fwlibhandle_* second = nullptr;
  EXPECT_EQ(initFWLibrary(&first), 0);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(initFWLibrary(&second), 0);
  EXPECT_EQ(first, second);
}
