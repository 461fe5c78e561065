#pragma once

#include <string>
#include <vector>

/// Captures every line that the library logs while it lives, through a registered logger with base
/// 6, so that priorities are the system log's. Restores silence and all verbosity levels at its
/// end. One at a time.
class LogCapture {
 public:
  struct Line {
    int priority;
    std::string text;
  };

  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  const std::vector<Line>& lines() const;

  /// Lines as "priority|text" with the line number of "name():123 " replaced by "name():N ", for
  /// comparisons that a moved source line does not break.
  std::vector<std::string> normalized() const;

  /// True when a line of this priority has `text` after its place ("file:function():line ").
  bool has(int priority, const std::string& text) const;

  void clear();
};
