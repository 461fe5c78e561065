#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CommandTable.h"

/// What a run of the program printed and returned.
struct CommandResult {
  int status;
  std::string out;
  std::string err;
};

inline bool operator==(const CommandResult& a, const CommandResult& b) {
  return a.status == b.status && a.out == b.out && a.err == b.err;
}
inline std::ostream& operator<<(std::ostream& to, const CommandResult& result) {
  return to << "status " << result.status << "\n--- standard output\n"
            << result.out << "--- standard error\n"
            << result.err << "---\n";
}

/// Runs `body` with both output streams captured.
template <typename Body>
CommandResult captured(Body&& body) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int status = body();
  CommandResult result{status, testing::internal::GetCapturedStdout(),
                       testing::internal::GetCapturedStderr()};
  return result;
}

/// Runs the program in this process: `runCommand({"getfilters", "-s"})`.
inline CommandResult runCommand(const std::vector<std::string>& words) {
  std::vector<std::string> copies{"/usr/bin/tarnioctl"};
  copies.insert(copies.end(), words.begin(), words.end());
  std::vector<char*> argv;
  for (std::string& word : copies) argv.push_back(word.data());
  argv.push_back(nullptr);
  return captured([&] { return runCommand(static_cast<int>(copies.size()), argv.data()); });
}

/// Words as a test's message shows them.
inline std::string lineOf(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += " " + word;
  return line;
}
