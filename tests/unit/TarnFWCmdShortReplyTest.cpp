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
#include "LogCapture.h"
#include "TarnFWCmdGetElementsOfContainer.h"
#include "TarnFWLog.h"
#include "commands/CommandFamily.h"

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

std::string tooShort(std::size_t needed, std::size_t size) {
  return "9 expect " + std::to_string(needed) + " byte in message buffer, but only get " +
         std::to_string(size) + " bytes";
}

/// What the row says of a reply that was cut to `size`. The number of records is judged as soon as
/// the silent fields are there, which come first.
Outcome expected(const ReplyRow& row, std::size_t size, bool printing) {
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
/// read after it. The log has everything, which reads as well.
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

}  // namespace

TEST(TarnFWCmdShortReply, EveryCommandThatIsBuiltIsTried) {
  std::set<std::string> tried = namesOf(&CommandFamily::ownReplyTest);
  for (const ReplyRow& row : rowsOf(&CommandFamily::replies)) tried.insert(row.className);
  for (const Creation& row : rowsOf(&CommandFamily::creations)) tried.insert(row.className);
  const std::set<std::string> built = builtCommandClasses();
  for (const std::string& name : built) {
    EXPECT_EQ(tried.count(name), 1u) << name << " has no reply that is cut";
  }
  for (const std::string& name : tried) {
    EXPECT_EQ(built.count(name), 1u) << name << " is no class that is built";
  }
}

TEST(TarnFWCmdShortReply, WhatIsThereIsPrintedAndWhatIsMissingIsRefused) {
  for (const ReplyRow& row : rowsOf(&CommandFamily::replies)) {
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

TEST(TarnFWCmdShortReply, WhatIsLoggedOfAReplyNamesTheOperationOfTheCommand) {
  for (const ReplyRow& row : rowsOf(&CommandFamily::replies)) {
    if (row.records.logged.empty()) continue;
    const auto command = row.make();
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
    command->checkCmdReply(row.reply.data(), static_cast<unsigned int>(row.reply.size()));
    const std::string file = std::string(row.className).substr(1);
    EXPECT_EQ(log.normalized(),
              std::vector<std::string>{"7|tarnfw:cmd " + file + ":checkCmdReply():N retrieved " +
                                       std::to_string(row.records.texts.size()) + ' ' +
                                       row.records.logged + '\n'});
  }
}

TEST(TarnFWCmdShortReply, ATransactionIdIsKeptWholeOrNotAtAll) {
  for (const Creation& creation : rowsOf(&CommandFamily::creations)) {
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
