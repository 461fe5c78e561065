#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "Expect.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "TarnFWCmd.h"

/// What the tests of the kernel's commands share: the log is captured, and names are of the
/// family's type.
template <typename Id>
class CommandTest : public ::testing::Test {
 protected:
  static Id id(const std::string& name) {
    Id result{};
    name.copy(result.text, sizeof result.text);
    return result;
  }

  /// A name that fills its field, without a NUL.
  static std::string full() { return std::string(sizeof(Id::text), 'f'); }

  /// Number, type by the number, size and text of a command.
  static void expectIdentity(const TarnFirewall::CTarnFWCmd& command, int number, unsigned int size,
                             const std::string& text) {
    EXPECT_EQ(command.getCommand(), number);
    EXPECT_EQ(command.getType(), 23 + number);
    EXPECT_EQ(command.getMsgSize(), size);
    EXPECT_EQ(command.toString(), text);
  }

  /// Number, text and request of a command that is sent as it was made.
  static void expectCommand(TarnFirewall::CTarnFWCmd&& command, int number, const std::string& text,
                            const Bytes& request) {
    expectIdentity(command, number, static_cast<unsigned int>(request.size()), text);
    EXPECT_EQ(requestOf(command), request) << text;
  }

  /// What the command prints for a zeroed reply of full size with `value` at `offset`. The command
  /// ends with status 0.
  static std::string printedForWord(TarnFirewall::CTarnFWCmd& command, std::size_t offset,
                                    std::uint32_t value) {
    Bytes reply(command.getMsgSize());
    put32(reply, offset, value);
    return printedFor(command, reply);
  }

  static long lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

  static void copyTo(Bytes& bytes, std::size_t offset, const Bytes& part) {
    std::copy(part.begin(), part.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  }

  LogCapture log;
};
