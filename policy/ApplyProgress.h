#pragma once

/// A line on standard error that says how far a long work has come; on a terminal only.

#include <chrono>
#include <cstddef>
#include <string>

class ProgressLine {
 public:
  /// `what` stands in front: the filter's name.
  explicit ProgressLine(std::string what);
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Shows the numbers, unless it is too early or too soon after the last time.
  void show(std::size_t done, std::size_t all);

  /// Takes the line away.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::string what_;
  Clock::time_point next_;
  bool isTerminal_;
  bool isShown_ = false;
};
