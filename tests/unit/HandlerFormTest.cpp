// The skeleton of the handlers, by handlers that have nothing else.

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "Arguments.h"
#include "HandlerForm.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "TarnFWLog.h"

namespace {

const char kFilter[] = "nic-1-eth0-other-fw.2";
const char kUsage[] = "Usage: tarnioctl word\n";

/// Does nothing.
int succeed(Target&) { return 0; }

/// The words of a run, which outlive it: options point into them.
Arguments& kept(std::vector<std::string> words) {
  static std::deque<Arguments> all;
  words.insert(words.begin(), "word");
  return all.emplace_back(std::move(words));
}

CommandResult run(std::vector<std::string> words, HandlerForm form, HandlerBody body = succeed) {
  form.usage = "Usage: tarnioctl %s\n";
  Arguments& arguments = kept(std::move(words));
  return captured(
      [&] { return onFilter("word", arguments.count(), arguments.vector(), form, body); });
}

CommandResult runOnHost(std::vector<std::string> words, HandlerForm form,
                        HandlerBody body = succeed) {
  form.usage = "Usage: tarnioctl %s\n";
  Arguments& arguments = kept(std::move(words));
  return captured(
      [&] { return onHost("word", arguments.count(), arguments.vector(), form, body); });
}

HandlerForm form(const char* letters) { return {.usage = nullptr, .letters = letters}; }

/// A step that prints its name and goes on.
HandlerForm::Step step(const char* name) {
  return [=](const Target&) {
    std::puts(name);
    return kGoOn;
  };
}

unsigned int levelOf(unsigned int component) {
  unsigned int level = 99;
  FW_GetLibVerboseLevel(component, &level);
  return level;
}

bool printerIsThere() { return TarnFirewall::g_tarnfw_pretty_printing != nullptr; }

}  // namespace

// --- Options

TEST(OnFilter, GivesTheBodyFilterVerbosityHandleAndOperands) {
  const LogCapture log;
  const HandlerKernel kernel;
  EXPECT_EQ(run({"-v", "one", "-f", kFilter, "-m", "io", "-v2", "two"}, form("hv::m:f:"),
                [](Target& target) {
                  EXPECT_STREQ(target.port->identifier, kFilter);
                  EXPECT_STREQ(target.port->agent, "other-fw");
                  EXPECT_EQ(target.port->type, 7);
                  EXPECT_STREQ(target.filter.name, kFilter);
                  EXPECT_EQ(target.verbosity.level, 3);
                  EXPECT_TRUE(target.verbose());
                  EXPECT_NE(target.handle, nullptr);
                  EXPECT_EQ(target.options.operandCount(), 2);
                  EXPECT_STREQ(target.options.operands()[1], "two");
                  return 7;
                }),
            (CommandResult{7, "verbose level : 3\nweirgate agent: other-fw\n", ""}));
  EXPECT_EQ(levelOf(5), 3u);
  EXPECT_EQ(levelOf(4), 0u);
}

TEST(OnFilter, ShowsTheUsageForHAndForWhatItDoesNotKnow) {
  const HandlerForm plain = form("hf:");
  EXPECT_EQ(run({"-h", "-x"}, plain), (CommandResult{0, kUsage, ""}));
  EXPECT_EQ(run({"-x", "-h"}, plain), (CommandResult{1, kUsage, "word: invalid option -- 'x'\n"}));
  EXPECT_EQ(run({"-f"}, plain),
            (CommandResult{1, kUsage, "word: option requires an argument -- 'f'\n"}));
  EXPECT_EQ(run({"-v"}, plain).status, 1) << "a shared letter that the handler does not have";
}

TEST(OnFilter, ABadOptionMayGiveAnotherStatus) {
  HandlerForm zero = form("f:");
  zero.badOption = 0;
  EXPECT_EQ(run({"-x"}, zero), (CommandResult{0, kUsage, "word: invalid option -- 'x'\n"}));
}

TEST(OnFilter, AColonInFrontOfTheLettersSilencesGetopt) {
  EXPECT_EQ(run({"-f"}, form(":f:")), (CommandResult{1, kUsage, ""}));
  EXPECT_EQ(run({"-x"}, form(":f:")), (CommandResult{1, kUsage, ""}));
}

TEST(OnFilter, LongOptionsStandForTheirLettersAndOthersForNone) {
  const HandlerKernel kernel;
  static constexpr option kWords[] = {{"filter", required_argument, nullptr, 'f'},
                                      {"help", no_argument, nullptr, 'h'},
                                      {"stateid", required_argument, nullptr, 'm'},
                                      {nullptr, 0, nullptr, 0}};
  HandlerForm words = form("hf:");
  words.words = kWords;
  EXPECT_EQ(run({"--filter", "vif"}, words).status, 0);
  EXPECT_EQ(run({"--help"}, words), (CommandResult{0, kUsage, ""}));
  EXPECT_EQ(run({"--filter", "vif", "--stateid=io"}, words), (CommandResult{1, kUsage, ""}));
}

TEST(OnFilter, ABadFilterOrComponentEndsItWithoutTheUsage) {
  const std::string tooLong(100, 'f');
  EXPECT_EQ(run({"-f", tooLong, "-h"}, form("hf:")),
            (CommandResult{1, "", "ERROR: invalid filter name " + tooLong + "\n"}));
  EXPECT_EQ(run({"-m", "nobody", "-h"}, form("hm:f:")),
            (CommandResult{1, "", "ERROR: bad component id nobody\n"}));
}

TEST(OnFilter, TakesOptionsOfTheHandlersOwn) {
  const HandlerKernel kernel;
  bool flag = false;
  const char* text = nullptr;
  const char* name = nullptr;
  std::string seen;
  HandlerForm own = form("hf:at:n:c:");
  own.own = {{'a', &flag},
             {'t', &text},
             {'n', &name, 3, "ERROR: invalid name %s.\n"},
             {'c', [&](const char* value, const Target& target) {
                seen += value;
                if (seen == "?") return kNotTaken;
                return seen == "end" ? target.usage.error("ERROR: end\n") : kGoOn;
              }}};
  EXPECT_EQ(run({"-f", "x", "-c", "e", "-t", "1", "-t2", "-a", "-n", "abc", "-c", "n"}, own),
            (CommandResult{0, "", ""}));
  EXPECT_TRUE(flag);
  EXPECT_STREQ(text, "2");
  EXPECT_STREQ(name, "abc");
  EXPECT_EQ(seen, "en");
  EXPECT_EQ(run({"-c", "d", "-x"}, own), (CommandResult{1, kUsage, "ERROR: end\n"}));
  EXPECT_EQ(run({"-n", "abcd", "-x"}, own), (CommandResult{1, "", "ERROR: invalid name abcd.\n"}));
  EXPECT_STREQ(name, "abc");
  seen.clear();
  EXPECT_EQ(run({"-c", "?", "-f", "x"}, own), (CommandResult{1, kUsage, ""}));
}

TEST(OnFilter, AnOwnOptionReplacesASharedOne) {
  const HandlerKernel kernel;
  const char* level = nullptr;
  HandlerForm own = form("hv:f:");
  own.own = {{'v', &level}};
  EXPECT_EQ(
      run({"-v", "3", "-f", "x"}, own, [](Target& target) { return target.verbose() ? 1 : 0; }),
      (CommandResult{0, "", ""}));
  EXPECT_STREQ(level, "3");
}

TEST(OwnOptions, AChoiceIsZeroOrOneAndRefusesAnythingElse) {
  std::optional<bool> choice;
  HandlerForm own = form("c:");
  own.own = {{'c', &choice, "ERROR: bad choice %s\n"}};
  own.needsFilter = false;
  own.opensLibrary = false;
  run({}, own);
  EXPECT_FALSE(choice.has_value());
  run({"-c1"}, own);
  EXPECT_EQ(choice, std::optional(true));
  run({"-c1", "-c", "0"}, own);
  EXPECT_EQ(choice, std::optional(false)) << "the last one counts";
  for (const char* const text : {"2", "-1", "4294967296", "", "on", "1x", "0x1"}) {
    EXPECT_EQ(run({"-c", text}, own),
              (CommandResult{1, kUsage, std::string("ERROR: bad choice ") + text + "\n"}));
  }
}

// --- What is missing

TEST(OnFilter, WithoutAFilterDoesAsTheHandlerWants) {
  HandlerForm missing = form("hf:");
  EXPECT_EQ(run({}, missing), (CommandResult{1, kUsage, "ERROR: filter is missing.\n"}));
  missing.missing = {.text = kFilterMissingPlain};
  EXPECT_EQ(run({}, missing), (CommandResult{1, kUsage, "ERROR: filter is missing\n"}));
  missing.missing = {.status = 0};
  EXPECT_EQ(run({}, missing), (CommandResult{0, kUsage, "ERROR: filter is missing.\n"}));
  missing.missing = {.usage = false};
  EXPECT_EQ(run({}, missing), (CommandResult{1, "", "ERROR: filter is missing.\n"}));
}

TEST(OnFilter, AHandlerMayWorkWithoutAFilter) {
  const HandlerKernel kernel;
  HandlerForm any = form("hf:");
  any.needsFilter = false;
  EXPECT_EQ(run({}, any,
                [](Target& target) {
                  EXPECT_FALSE(target.filter.given);
                  const dvs_port_ none{};
                  return std::memcmp(target.port, &none, sizeof none);
                }),
            (CommandResult{0, "", ""}));
}

TEST(OnFilter, ItsStepsFollowEachOther) {
  const LogCapture log;
  const HandlerKernel kernel;
  HandlerForm steps = form("hv::f:");
  steps.parsed = step("parsed");
  steps.check = step("check");
  EXPECT_EQ(run({"-x"}, steps).out, kUsage);
  EXPECT_EQ(run({}, steps).out, std::string("parsed\n") + kUsage);
  EXPECT_EQ(run({"-v", "-f", "x"}, steps, [](Target&) { return std::puts("body"), 0; }).out,
            "parsed\ncheck\nverbose level : 1\nweirgate agent: kelpco-sfw\nbody\n");
}

TEST(OnFilter, AStepThatGivesAStatusEndsIt) {
  const LogCapture log;
  HandlerForm steps = form("hv::f:");
  steps.check = [](const Target& target) { return target.usage.error("ERROR: no\n"); };
  EXPECT_EQ(run({"-v", "-f", "x"}, steps), (CommandResult{1, kUsage, "ERROR: no\n"}));
  EXPECT_EQ(levelOf(0), 0u);
  steps.parsed = [](const Target&) { return 0; };
  EXPECT_EQ(run({}, steps), (CommandResult{0, "", ""}));
}

TEST(OnFilter, AValueThatMustBeGiven) {
  const HandlerKernel kernel;
  const char* policy = nullptr;
  HandlerForm needs = form("f:p:");
  needs.own = {{'p', &policy}};
  needs.check = given(policy, "ERROR: fail policy is missing: 100%\n");
  EXPECT_EQ(run({"-f", "x"}, needs),
            (CommandResult{1, kUsage, "ERROR: fail policy is missing: 100%\n"}));
  EXPECT_EQ(run({"-f", "x", "-p", ""}, needs), (CommandResult{0, "", ""}));
}

// --- Agent, verbosity, printer

TEST(OnFilter, AnAgentReplacesTheSelectorsOnlyWhereThatHasNone) {
  const HandlerKernel kernel;
  const auto agent = [](Target& target) { return std::puts(target.port->agent), 0; };
  HandlerForm form8 = form("f:");
  EXPECT_EQ(run({"-f", "x"}, form8, agent).out, "kelpco-sfw\n");
  EXPECT_EQ(run({"-f", kFilter}, form8, agent).out, "other-fw\n");
  form8.alwaysTakesAgent = true;
  form8.needsFilter = false;
  EXPECT_EQ(run({}, form8, agent).out, "kelpco-sfw\n");
}

TEST(OnFilter, VerbosityIsPrintedAndReachesTheLibraryAsTheHandlerWants) {
  const HandlerKernel kernel;
  const std::vector<std::string> words{"-v2", "-f", kFilter};
  const std::string lines = "verbose level : 2\nweirgate agent: other-fw\n";
  HandlerForm quiet = form("v::f:");
  {
    const LogCapture log;
    quiet.raisesLibraryLevel = false;
    EXPECT_EQ(run(words, quiet).out, lines);
    EXPECT_EQ(levelOf(0), 0u);
  }
  const LogCapture log;
  quiet.raisesLibraryLevel = true;
  quiet.announces = false;
  EXPECT_EQ(run(words, quiet).out, "");
  EXPECT_EQ(levelOf(0), 2u);
}

TEST(OnFilter, ThePrinterStaysOrGoesAsTheHandlerWants) {
  const LogCapture log;
  const HandlerKernel kernel;
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  const auto there = [](Target&) { return printerIsThere() ? 1 : 0; };
  HandlerForm printing = form("f:");
  EXPECT_EQ(run({"-f", "x"}, printing, there).status, 0);
  printing.prints = true;
  EXPECT_EQ(run({"-f", "x"}, printing, there).status, 1);
  EXPECT_TRUE(printerIsThere());
  printing.removesPrinter = true;
  EXPECT_EQ(run({"-f", "x"}, printing, there).status, 1);
  EXPECT_FALSE(printerIsThere());
}

// --- The library

TEST(OnFilter, OpensTheLibraryWhenNothingIsMissing) {
  const DefaultHandle none(nullptr);
  const std::string failed = "ERROR: unable to open firewall library\n";
  HandlerForm library = form("hf:");
  EXPECT_EQ(run({}, library).err, "ERROR: filter is missing.\n");
  EXPECT_EQ(run({"-f", "x"}, library), (CommandResult{1, "", failed}));
  library.libraryFailure = {.text = "ERROR: Library handle init failure.\n"};
  EXPECT_EQ(run({"-f", "x"}, library),
            (CommandResult{1, "", failed + "ERROR: Library handle init failure.\n"}));
  library.libraryFailure = {.status = 0};
  EXPECT_EQ(run({"-f", "x"}, library), (CommandResult{0, "", failed}));
}

TEST(OnFilter, OpensTheLibraryBeforeTheFilterIsLookedForWhereTheHandlerWantsIt) {
  HandlerForm first = form("hf:");
  first.opensLibraryFirst = true;
  {
    const HandlerKernel kernel;
    EXPECT_EQ(run({}, first), (CommandResult{1, kUsage, "ERROR: filter is missing.\n"}));
  }
  const DefaultHandle none(nullptr);
  EXPECT_EQ(run({}, first), (CommandResult{1, "", "ERROR: unable to open firewall library\n"}));
}

TEST(OnHost, NeedsNeitherAFilterNorTheLibrary) {
  const DefaultHandle none(nullptr);
  EXPECT_EQ(runOnHost({"one"}, form("h"),
                      [](Target& target) {
                        EXPECT_EQ(target.handle, nullptr);
                        return target.options.operandCount();
                      }),
            (CommandResult{1, "", ""}));
  EXPECT_EQ(runOnHost({"-h"}, form("h")), (CommandResult{0, kUsage, ""}));
}

TEST(Outcome, IsZeroForSuccessAndALineWithTheStatusOtherwise) {
  EXPECT_EQ(captured([] { return outcome(0, "ERROR: %s\n"); }), (CommandResult{0, "", ""}));
  EXPECT_EQ(captured([] { return outcome(21, "ERROR: failed: %s!\n"); }),
            (CommandResult{1, "", "ERROR: failed: switch port not found!\n"}));
  EXPECT_EQ(captured([] { return outcome(21, "ERROR: Failed to set kif flag\n"); }),
            (CommandResult{1, "", "ERROR: Failed to set kif flag\n"}));
}
