#pragma once

/// Standard output of the program, watched: the first write that fails is remembered with its
/// error, so that output that was lost is reported at the end, be it lost in the middle or by the
/// last flush.

#include <cstdio>

class StandardOutput {
 public:
  /// Takes the place of `stdout`, with the same buffering: by lines on a terminal, otherwise in
  /// blocks.
  StandardOutput();

  /// Reports what was lost, unless `finish` did, and puts the former `stdout` back.
  ~StandardOutput();

  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;

  /// Flushes. When anything was lost, prints an error line, once, and returns 1 in the place of 0;
  /// otherwise returns `status`. Nothing is lost while nothing was printed.
  int finish(int status);

 private:
  static ssize_t write(void* self, const char* bytes, std::size_t size);

  std::FILE* former_;
  std::FILE* stream_;
  int error_ = 0;  // `errno` of the first write that failed
  bool reported_ = false;
  char buffer_[4096];
};
