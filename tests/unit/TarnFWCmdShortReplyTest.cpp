// Replies that end early: every command, at every length from nothing to one byte more than it
// asked for, in memory of exactly that size. What is printed, thrown and logged is stated for each.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "CommandClasses.h"
#include "CommandMakers.h"
#include "Expect.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

/// What a command makes of a reply.
struct Outcome {
  std::string printed;
  std::string thrown;            // "STATUS TEXT", empty when nothing was
  std::vector<std::string> log;  // "PRIORITY TEXT"

  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& to, const Outcome& outcome) {
  to << "\n--- printed\n" << outcome.printed << "--- thrown: " << outcome.thrown << "\n--- log\n";
  for (const std::string& line : outcome.log) to << line << '\n';
  return to;
}

/// One field or record that a command reads: the size that the reply must have for it, and what is
/// printed then. Fields are listed in the order in which they are read.
struct Field {
  std::size_t end;
  std::string text;
  bool silent = false;  // read without a printer, too
};

/// Records of a reply: where they stand, the text of each, and what the log calls them, if it tells
/// how many were retrieved.
struct Records {
  std::size_t first = 0;
  std::size_t stride = 0;
  std::vector<std::string> texts;
  std::string logged;
};

struct Row {
  const char* className;
  std::function<CommandPtr()> make;
  Bytes reply;
  std::vector<Field> fields;
  Records records;
};

std::string tooShort(std::size_t needed, std::size_t size) {
  return "9 expect " + std::to_string(needed) + " byte in message buffer, but only get " +
         std::to_string(size) + " bytes";
}

/// What the row says of a reply that was cut to `size`. The number of records is judged as soon as
/// the silent fields are there, which come first.
Outcome expected(const Row& row, std::size_t size, bool printing) {
  Outcome outcome;
  const auto read = [&](bool silent) {
    for (const Field& field : row.fields) {
      if (field.silent != silent) continue;
      if (size < field.end) {
        outcome.thrown = tooShort(field.end, size);
        return false;
      }
      outcome.printed += field.text;
    }
    return true;
  };
  if (!read(true)) return outcome;
  std::size_t there = 0;
  while (there < row.records.texts.size() &&
         size >= row.records.first + (there + 1) * row.records.stride) {
    ++there;
  }
  if (there < row.records.texts.size()) {
    outcome.log.push_back("4 reply tells " + std::to_string(row.records.texts.size()) +
                          " entries, only " + std::to_string(there) + " can be read\n");
  }
  if (!row.records.logged.empty()) {
    outcome.log.push_back("7 retrieved " + std::to_string(there) + ' ' + row.records.logged + '\n');
  }
  if (!printing || !read(false)) return outcome;
  for (std::size_t i = 0; i < there; ++i) outcome.printed += row.records.texts[i];
  return outcome;
}

/// Hands the command a reply in a heap block of its own size, so that the address sanitizer sees a
/// read behind it. The log tells everything, which reads as well.
Outcome actual(CTarnFWCmd& command, const Bytes& reply, std::size_t size, bool printing) {
  const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[size]);
  std::fill_n(block.get(), size, std::uint8_t{0xee});
  std::copy_n(reply.begin(), std::min(size, reply.size()), block.get());

  Outcome outcome;
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  const std::unique_ptr<Printed> printed = printing ? std::make_unique<Printed>() : nullptr;
  try {
    command.checkCmdReply(block.get(), static_cast<unsigned int>(size));
  } catch (const CTarnFWException& e) {
    outcome.thrown = std::to_string(e.retcode()) + ' ' + e.what();
  }
  if (printing) outcome.printed = printed->text();
  for (const LogCapture::Line& line : log.lines()) {
    // Behind the place, which ends with the line number and a blank.
    const std::size_t place = line.text.find("():");
    const std::size_t text = place == std::string::npos ? place : line.text.find(' ', place);
    outcome.log.push_back(std::to_string(line.priority) + line.text.substr(text));
  }
  return outcome;
}

template <typename Class, auto... arguments>
CommandPtr ofRuleSet() {
  return std::make_unique<Class>(nullptr, ruleSet("web"), arguments...);
}

template <typename Class, auto... arguments>
CommandPtr ofAddrSet() {
  return std::make_unique<Class>(nullptr, addrSet("web"), arguments...);
}

CommandPtr addrSetConfiguration(const std::string& name) {
  FWAddrSetCfg_ configuration{};
  configuration.name = addrSet(name);
  return std::make_unique<CTarnFWCmdSetAddrSetCfg>(nullptr, configuration);
}

// A moment that no calendar has is printed the same on every host, whenever it was started.
constexpr std::uint64_t kNoMoment = 0x7fffffffffffffff;
const char* const kTime = "realization time : 1900-01-00T00:00:00\n";
const char* const kHashTime = "# realization time : 1900-01-00T00:00:00\n";

/// Generation and time of a reply.
Bytes& at(Bytes& reply, std::size_t generation, std::size_t time) {
  return put64(put64(reply, generation, 42), time, kNoMoment);
}

std::string statLine(int first) {
  std::string text = "addrset " + std::string(1, static_cast<char>('a' + first)) + ":\n";
  for (const char* const way : {"in + pass  :", "in + drop  :", "out + pass :", "out + drop :"}) {
    text += std::string("    ") + way + " packets = 0                 bytes = 0               \n";
  }
  return text +
         "    match = 0                 no_match = 0                 uptime = 0               \n";
}

void addRuleSetRows(std::vector<Row>& rows) {
  rows.push_back({"CTarnFWCmdGetRuleSetCount",
                  plain<CTarnFWCmdGetRuleSetCount>,
                  Bytes({7, 1, 0, 0}),
                  {{4, "ruleset count : 263\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetRuleSetList",
                  plain<CTarnFWCmdGetRuleSetList, 2u, 0u>,
                  Bytes(140).at(8, {2}).text(12, "first").text(76, std::string(64, 'f')),
                  {{12, "", true}},
                  {12, 64, {"first\n", std::string(64, 'f') + "\n"}, "rulesets"}});

  rows.push_back({"CTarnFWCmdGetRootRuleSet",
                  plain<CTarnFWCmdGetRootRuleSet>,
                  Bytes(132).text(0, "l3").text(64, std::string(64, 'f')),
                  {{64, "layer3 root ruleset : l3\n"},
                   {128, "layer2 root ruleset : " + std::string(64, 'f') + "\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetRuleCountOfRuleSet",
                  ofRuleSet<CTarnFWCmdGetRuleCountOfRuleSet, 0u>,
                  Bytes(72).at(68, {9, 0, 0, 1}),
                  {{72, "rule count : 16777225\n"}},
                  {}});

  Bytes info = Bytes(84).at(64, {3});
  rows.push_back({"CTarnFWCmdGetRuleSetInfo",
                  ofRuleSet<CTarnFWCmdGetRuleSetInfo>,
                  at(info, 76, 68),
                  {{68, "rule count       : 3\n"}, {84, "generation number: 42\n"}, {76, kTime}},
                  {}});

  // Two records of zeros behind two ids, as an accepting rule that is called 0.
  const std::string rule = "rule 0 at 0 inout ethertype any from any to any accept;\n";
  Bytes rules = Bytes(1888).at(64, {2}).at(76, {2}).at(104 + 750, {1}).at(996 + 750, {1});
  rows.push_back(
      {"CTarnFWCmdGetRuleOfRuleSet",
       ofRuleSet<CTarnFWCmdGetRuleOfRuleSet, 2u, 0u, 0u>,
       at(rules, 88, 80),
       {{68, "", true}, {80, "", true}, {96, "# generation number: 42\n"}, {88, kHashTime}},
       {104, 892, {rule, rule}, "rules of ruleset web"}});

  const auto stat = [](int number) {
    return "rule     " + std::to_string(number) +
           ": 0 evals, 0 hits, 0 sessions, in 0 out 0 pkts, in 0 out 0 bytes\n";
  };
  rows.push_back({"CTarnFWCmdGetStatOfRuleSet",
                  ofRuleSet<CTarnFWCmdGetStatOfRuleSet, 2u, 0u, 0u>,
                  Bytes(216).at(64, {2}).at(76, {2}).at(88, {5}).at(152, {6}),
                  {{68, "", true}, {80, "", true}},
                  {88, 64, {stat(5), stat(6)}, "stats of ruleset web"}});

  rows.push_back({"CTarnFWCmdGetDlbOfRuleSet",
                  ofRuleSet<CTarnFWCmdGetDlbOfRuleSet, 2u, 0u, 0u>,
                  Bytes(408).at(64, {2}).at(76, {2}).at(80, {5, 0, 0, 0, 0x40, 0xe2, 1}),
                  {{80, "", true}},
                  {80, 4, {"rule     5\n", "rule 123456\n"}, "dlb of ruleset web"}});
}

void addAddrSetRows(std::vector<Row>& rows) {
  rows.push_back({"CTarnFWCmdGetAddrSetTypeAndSize",
                  ofAddrSet<CTarnFWCmdGetAddrSetTypeAndSize>,
                  Bytes(50).at(38, {3, 0, 0, 0, 1, 0, 0, 0, 0xb0, 1}),
                  {{46, "addrset type : 1\n"},
                   {42, "addrset elements count : 3\n"},
                   {50, "addrset serialize size : 432\n"}},
                  {}});

  Bytes info = Bytes(58).at(38, {3});
  rows.push_back({"CTarnFWCmdGetAddrSetInfo",
                  ofAddrSet<CTarnFWCmdGetAddrSetInfo>,
                  at(info, 50, 42),
                  {{42, "address count    : 3\n"}, {58, "generation number: 42\n"}, {50, kTime}},
                  {}});

  Bytes addresses = Bytes(358).at(50, {2}).at(70, {1, 0, 0, 0, 10, 0, 0, 1}).at(214, {1, 0, 1, 0});
  rows.push_back({"CTarnFWCmdGetAddressOfAddrSet",
                  ofAddrSet<CTarnFWCmdGetAddressOfAddrSet, 2u, 0u>,
                  at(addresses, 62, 54),
                  {{54, "", true}, {70, "# generation number: 42\n"}, {62, kHashTime}},
                  {70, 144, {"ip 10.0.0.1\n", "not ip 0.0.0.0\n"}, "addresses of addrset web"}});

  rows.push_back(
      {"CTarnFWCmdGetAddrValidOfAddrSet",
       ofAddrSet<CTarnFWCmdGetAddrValidOfAddrSet, 2u, 0u>,
       Bytes(344).at(50, {2}).at(54, {1, 0, 0, 0, 10, 0, 0, 1}).at(198, {0xa5}).at(343, {1}),
       {{54, "", true}},
       {54,
        145,
        {"ip 10.0.0.1  dlb_valid_cnt = 0xa5\n", "any  dlb_valid_cnt = 0x01\n"},
        "addresses of addrset web"}});

  rows.push_back({"CTarnFWCmdGetAddressStatOfAddrSet",
                  ofAddrSet<CTarnFWCmdGetAddressStatOfAddrSet, 2u, 0u, 0u>,
                  Bytes(218).at(54, {2}),
                  {{58, "", true}},
                  {58, 80, {"", ""}, "stats of addrset web"}});

  rows.push_back({"CTarnFWCmdGetAddrSetCount",
                  plain<CTarnFWCmdGetAddrSetCount, FW_ADDRSET_ANY>,
                  Bytes(8).at(4, {9, 1}),
                  {{8, "addrset count : 265\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetAddrSetList",
                  plain<CTarnFWCmdGetAddrSetList, FW_ADDRSET_ANY, 2u, 0u>,
                  Bytes(92).at(12, {2}).text(16, std::string(38, 'f')).text(54, "b"),
                  {{16, "", true}},
                  {16, 38, {std::string(38, 'f') + "\n", "b\n"}, "addrsets"}});

  rows.push_back({"CTarnFWCmdGetAddrSetStatList",
                  plain<CTarnFWCmdGetAddrSetStatList, FW_ADDRSET_ANY, 2u, 0u>,
                  Bytes(276).at(12, {2}).text(16, "a").text(146, "b"),
                  {{16, "", true}},
                  {16, 130, {statLine(0), statLine(1)}, ""}});

  rows.push_back({"CTarnFWCmdGetSharedAddrSet",
                  plain<CTarnFWCmdGetSharedAddrSet>,
                  Bytes({1, 0, 0, 0}),
                  {{1, "shared addrset: enabled\n"}},
                  {}});

  // The values are read together, whatever of them is printed.
  const Bytes values = Bytes(194).at(186, {1, 0, 0, 0, 2});
  rows.push_back({"CTarnFWCmdSetAddrSetCfg",
                  [] { return addrSetConfiguration(""); },
                  Bytes(values).at(0, {5}),
                  {{4, ""}, {190, ""}, {194, "kentry valid field changed from 0x1 to 0x2\n"}},
                  {}});
  rows.push_back({"CTarnFWCmdSetAddrSetCfg",
                  [] { return addrSetConfiguration(""); },
                  Bytes(values).at(0, {4}),
                  {{4, ""}, {190, ""}, {194, "kif stats = enabled\n"}},
                  {}});
  rows.push_back({"CTarnFWCmdSetAddrSetCfg",
                  [] { return addrSetConfiguration("web"); },
                  Bytes(values).at(0, {4}),
                  {{4, ""}, {190, ""}, {194, "kif stats = enabled, table stats = disabled"}},
                  {}});
}

/// Commands without a reply, and the one whose reply stays in the buffer for the caller.
void addRowsThatReadNothing(std::vector<Row>& rows) {
  const auto add = [&](const char* name, std::function<CommandPtr()> make) {
    const std::size_t size = make()->getMsgSize();
    rows.push_back({name, std::move(make), Bytes(size, 0xff), {}, {}});
  };
  add("CTarnFWCmdClearRuleSet", ofRuleSet<CTarnFWCmdClearRuleSet>);
  add("CTarnFWCmdDestroyRuleSet", ofRuleSet<CTarnFWCmdDestroyRuleSet>);
  add("CTarnFWCmdDestroyAddrSet", ofAddrSet<CTarnFWCmdDestroyAddrSet>);
  add("CTarnFWCmdClearRootRuleSet", plain<CTarnFWCmdClearRootRuleSet>);
  add("CTarnFWCmdConfigSharedAddrSet", plain<CTarnFWCmdConfigSharedAddrSet, true>);
  add("CTarnFWCmdDestroyAllRuleSet", plain<CTarnFWCmdDestroyAllRuleSet>);
  add("CTarnFWCmdSetRuleSetJump", [] {
    return std::make_unique<CTarnFWCmdSetRuleSetJump>(nullptr, ruleSet("web"), ruleSet("next"));
  });
  add("CTarnFWCmdGetRuleSetJump", ofRuleSet<CTarnFWCmdGetRuleSetJump>);
  add("CTarnFWCmdClearRuleSetJump", ofRuleSet<CTarnFWCmdClearRuleSetJump>);
  add("CTarnFWCmdClearAddrSet", ofAddrSet<CTarnFWCmdClearAddrSet>);
  add("CTarnFWCmdDestroyAllAddrSet", plain<CTarnFWCmdDestroyAllAddrSet>);
}

std::vector<Row> rows() {
  std::vector<Row> all;
  addRuleSetRows(all);
  addAddrSetRows(all);
  addRowsThatReadNothing(all);
  return all;
}

/// The creations, which keep a transaction id, and where their heads have it.
struct Creation {
  const char* className;
  std::function<std::unique_ptr<CTarnFWCreateCmd>()> make;
  std::size_t flags;
  std::size_t transaction;
};

const std::vector<Creation> kCreations = {
    {"CTarnFWCmdCreateRuleSet",
     [] { return std::make_unique<CTarnFWCmdCreateRuleSet>(nullptr, "web"); }, 140, 144},
    {"CTarnFWCmdSetRootRuleSet", [] { return std::make_unique<CTarnFWCmdSetRootRuleSet>(nullptr); },
     140, 144},
    {"CTarnFWCmdCreateAddrSet",
     [] { return std::make_unique<CTarnFWCmdCreateAddrSet>(nullptr, "web", FW_ADDRSET_IP); }, 58,
     62},
    {"CTarnFWCmdCreateContainer",
     [] {
       return std::make_unique<CTarnFWCmdCreateContainer>(nullptr, "web",
                                                          FW_CONTAINER_ATTR_PROFILE);
     },
     58, 62},
};

const char* const kElements = "CTarnFWCmdGetElementsOfContainer";

}  // namespace

TEST(TarnFWCmdShortReply, EveryCommandThatIsBuiltIsTried) {
  std::set<std::string> tried{kElements};
  for (const Row& row : rows()) tried.insert(row.className);
  for (const Creation& creation : kCreations) tried.insert(creation.className);
  EXPECT_EQ(tried, builtCommandClasses());
}

TEST(TarnFWCmdShortReply, WhatIsThereIsPrintedAndWhatIsMissingIsRefused) {
  for (const Row& row : rows()) {
    SCOPED_TRACE(row.className);
    const std::size_t whole = row.reply.size();
    ASSERT_EQ(row.make()->getMsgSize(), whole);
    for (const bool printing : {true, false}) {
      for (std::size_t size = 0; size <= whole + 1; ++size) {
        const auto command = row.make();
        ASSERT_EQ(actual(*command, row.reply, size, printing), expected(row, size, printing))
            << size << " bytes, " << (printing ? "with" : "without") << " a printer";
      }
    }
    // The whole reply is one that the command reads to its end.
    const Outcome complete = expected(row, whole, true);
    EXPECT_EQ(complete.thrown, "");
    EXPECT_EQ(complete.log.size(), row.records.logged.empty() ? 0u : 1u);
  }
}

TEST(TarnFWCmdShortReply, ATransactionIdIsKeptWholeOrNotAtAll) {
  for (const Creation& creation : kCreations) {
    SCOPED_TRACE(creation.className);
    const std::size_t end = creation.transaction + 16;
    Bytes reply(creation.make()->getMsgSize(), 0xee);
    for (int i = 0; i < 16; ++i) {
      reply.at(creation.transaction + static_cast<std::size_t>(i), {i + 1});
    }
    std::array<std::uint8_t, 16> id{};
    for (std::uint8_t i = 0; i < 16; ++i) id[i] = static_cast<std::uint8_t>(i + 1);

    for (std::size_t size = 0; size <= reply.size() + 1; ++size) {
      const auto command = creation.make();
      // Bit 0 alone: the id counts.
      Outcome outcome;
      if (size < creation.flags + 1) {
        outcome.thrown = tooShort(creation.flags + 1, size);
      } else if (size < end) {
        outcome.thrown = tooShort(end, size);
      } else {
        outcome.log = {"7 transaction id: 0x04030201, 0x08070605, 0x0c0b0a09, 0x100f0e0d\n"};
      }
      ASSERT_EQ(actual(*command, reply.at(creation.flags, {1}), size, true), outcome) << size;
      ASSERT_EQ(command->transactionID(), size < end ? decltype(id){} : id) << size;

      // Both bits: no id, and one of an earlier reply is forgotten.
      command->checkCmdReply(reply.data(), static_cast<unsigned int>(reply.size()));
      ASSERT_EQ(command->transactionID(), id);
      if (size >= creation.flags + 1) outcome = {};
      ASSERT_EQ(actual(*command, reply.at(creation.flags, {3}), size, true), outcome) << size;
      ASSERT_EQ(command->transactionID(), size < creation.flags + 1 ? id : decltype(id){}) << size;
    }
  }
}

TEST(TarnFWCmdShortReply, AChainThatEndsEarlyGivesNoElements) {
  // The chain of one TLS version: a head of 12 bytes, the element's head of 8, its value of 18.
  Bytes reply(70 + 38);
  reply.at(70, {2, 0, 0, 0, 1, 0, 0, 0, 26, 0, 0, 0});
  reply.at(82, {1, 0, 0, 0, 18, 0, 0, 0});
  reply.at(90, {1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 3, 3});
  for (std::size_t size = 0; size <= reply.size() + 1; ++size) {
    CTarnFWCmdGetElementsOfContainer command(nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 1, 38);
    ASSERT_EQ(command.getMsgSize(), reply.size());
    Outcome outcome;
    if (size < 70) {
      outcome.thrown = tooShort(70, size);
    } else if (size < 70 + 12) {
      outcome.log = {"3 size of tlv chain message less than minimum size : 12\n"};
    } else if (size < 70 + 26) {
      // The chain's size leaves its head out; a chain that fits without it is looked into.
      outcome.log = {"3 size of tlv chain 26 is greater than the buffer size " +
                     std::to_string(size - 70) + "\n"};
    } else if (size < reply.size()) {
      outcome.log = {"3 failed to create element at index 0\n\n"};
    }
    ASSERT_EQ(actual(command, reply, size, true), outcome) << size;

    LogCapture log;
    char* text[1] = {nullptr};
    unsigned int count = 77;
    const bool whole = size >= reply.size();
    ASSERT_EQ(command.elementsToCharArray(text, 1, &count), whole) << size;
    if (whole) {
      EXPECT_EQ(count, 1u);
      EXPECT_STREQ(text[0], "TLS_VERSION : TLS_V12");
      std::free(text[0]);
    } else {
      EXPECT_EQ(count, 77u);
      EXPECT_EQ(text[0], nullptr);
    }
  }
}
