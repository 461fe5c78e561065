// The long options of the commands on balancers, gateways, statistics and single connections: which
// there are, which of them take a value, and which letter each stands for. Every other is refused.

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "CommandTable.h"
#include "HandlerKernel.h"
#include "RunCommand.h"

namespace {

enum Value { kNone, kNeeded, kOptional };

/// One long option. Without a letter it stands for none that the command has.
struct Word {
  const char* name;
  char letter;
  Value value = kNeeded;
};

struct Words {
  const char* command;
  std::vector<Word> words;
};
void PrintTo(const Words& one, std::ostream* to) { *to << one.command; }

constexpr Word kHelp{"help", 'h', kNone};
constexpr Word kVerbose{"verbose", 'v', kOptional};
constexpr Word kFilter{"filter", 'f'};

const Words kWords[] = {
    {"getfilterstat", {kHelp, kVerbose, kFilter, {"zero", 'z'}}},
    {"clearfilterstat", {}},
    {"rtt", {kFilter, {"flowid", 'i'}, {"reset", 'r', kNone}}},
    {"getattrinfo",
     {kHelp,
      kVerbose,
      kFilter,
      {"direction", 'i'},
      {"srcip", 'S'},
      {"dstip", 'D'},
      {"sport", 's'},
      {"dport", 'd'},
      {"proto", 'p'},
      {"stateid", 'm'}}},
    {"getstatedpiinfo", {kHelp, kVerbose, kFilter, {"stateid", '\0'}, {"byteorder", '\0', kNone}}},
    {"getalginfo", {}},
    {"getlbinfo",
     {kHelp,
      kVerbose,
      kFilter,
      {"id", 'i'},
      {"uuid", 'u'},
      {"current", 'c', kNone},
      {"all", 'a', kNone},
      {"debug", 'd', kNone}}},
    {"getlbstat",
     {kHelp,
      kVerbose,
      kFilter,
      {"lbs uuid", 'l'},
      {"vs", 's', kNone},
      {"pool", 'p', kNone},
      {"uuid", 'u'},
      {"zero", 'z', kNone},
      {"debug", 'd', kNone}}},
};

class HandlerWords : public testing::TestWithParam<Words> {
 protected:
  CommandResult run(const std::vector<std::string>& options) const {
    std::vector<std::string> words{GetParam().command};
    if (dangerous_) words.emplace_back("-Override");
    words.insert(words.end(), options.begin(), options.end());
    return runCommand(words);
  }

  /// The usage text after a line of getopt's.
  CommandResult refused(const std::string& text) const {
    return {1, help_.out,
            (dangerous_ ? std::string("-Override") : GetParam().command) + ": " + text + "\n"};
  }

  /// The word does what its letter does, with this value if it takes one.
  void expectLikeLetter(const Word& word, const std::string& value) const {
    const std::string name = std::string("--") + word.name;
    const std::string letter{'-', word.letter};
    switch (word.value) {
      case kNone:
        EXPECT_EQ(run({name}), run({letter}));
        break;
      case kNeeded:
        if (name == "--zero") break;  // its letter takes no value
        EXPECT_EQ(run({name, value}), run({letter, value})) << name;
        EXPECT_EQ(run({name + "=" + value}), run({letter + value})) << name;
        break;
      case kOptional:
        EXPECT_EQ(run({name + "=" + value}), run({letter + value})) << name;
    }
  }

  const bool dangerous_ = (findCommand(GetParam().command)->flags & kCommandDangerous) != 0;
  const DefaultHandle none_{nullptr};
  const CommandResult help_ = run({"-h"});
};

}  // namespace

TEST_P(HandlerWords, TakeAValueOrNone) {
  for (const Word& word : GetParam().words) {
    const std::string name = std::string("--") + word.name;
    if (word.value == kNeeded) {
      EXPECT_EQ(run({name}), refused("option '" + name + "' requires an argument"));
    } else if (word.value == kOptional) {
      EXPECT_EQ(run({name, "-h"}), help_) << name;
    } else {
      EXPECT_EQ(run({name + "=1"}), refused("option '" + name + "' doesn't allow an argument"));
    }
  }
}

TEST_P(HandlerWords, StandForTheirLetters) {
  for (const Word& word : GetParam().words) {
    if (word.letter != '\0') {
      expectLikeLetter(word, "x");
      expectLikeLetter(word, "1");
    } else if (word.value == kNone) {
      EXPECT_EQ(run({std::string("--") + word.name}), (CommandResult{1, help_.out, ""}));
    } else {
      EXPECT_EQ(run({std::string("--") + word.name, "1"}), (CommandResult{1, help_.out, ""}));
    }
  }
}

TEST_P(HandlerWords, AreTheseAndNoOthers) {
  for (const Words& others : kWords) {
    for (const Word& word : others.words) {
      const auto isThis = [&](const Word& own) { return std::string(own.name) == word.name; };
      const std::vector<Word>& words = GetParam().words;
      if (std::any_of(words.begin(), words.end(), isThis)) continue;
      const std::string name = std::string("--") + word.name;
      EXPECT_EQ(run({name}), refused(words.empty() ? "invalid option -- '-'"
                                                   : "unrecognized option '" + name + "'"));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, HandlerWords, testing::ValuesIn(kWords),
                         testing::PrintToStringParamName());
