#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "PolicyProgram.h"

/// What a run of `tarnpolicy` printed and returned.
struct PolicyResult {
  int status;
  std::string out;
  std::string err;
};

inline bool operator==(const PolicyResult& a, const PolicyResult& b) {
  return a.status == b.status && a.out == b.out && a.err == b.err;
}
inline std::ostream& operator<<(std::ostream& to, const PolicyResult& result) {
  return to << "status " << result.status << "\n--- standard output\n"
            << result.out << "--- standard error\n"
            << result.err << "---\n";
}

/// Runs the program in this process: `runPolicy({"check", "-"})`.
inline PolicyResult runPolicy(const std::vector<std::string>& words) {
  std::vector<std::string> copies{"/usr/bin/tarnpolicy"};
  copies.insert(copies.end(), words.begin(), words.end());
  std::vector<char*> argv;
  for (std::string& word : copies) argv.push_back(word.data());
  argv.push_back(nullptr);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int status = runPolicyProgram(static_cast<int>(copies.size()), argv.data());
  PolicyResult result{status, testing::internal::GetCapturedStdout(),
                      testing::internal::GetCapturedStderr()};
  return result;
}
