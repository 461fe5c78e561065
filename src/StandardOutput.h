#pragma once

/// The standard streams of a program: those that the caller has closed, and standard output,
/// watched.

#include <cstdio>

namespace TarnFirewall {

/// Takes the places of standard streams that the caller has closed. A file or the control device
/// would get the first of them otherwise, and with it what is printed. Reading and writing them
/// still fails.
void fillStandardStreams();

/// Standard output: the first write that fails is remembered with its error, so that output that
/// was lost is reported at the end, be it lost in the middle or by the last flush.
class StandardOutput {
 public:
  /// Takes the place of `stdout`, with the same buffering: by lines on a terminal, otherwise in
  /// blocks. `speaker` begins the line about lost output, and `lostStatus` is the exit status of a
  /// program that lost some.
  StandardOutput(const char* speaker, int lostStatus);

  /// Reports what was lost, unless `finish` did, and puts the former `stdout` back.
  ~StandardOutput();

  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;

  /// Flushes. When anything was lost, prints a line about it, once, and returns the status for that
  /// in the place of a lower one; otherwise returns `status`. Nothing is lost while nothing was
  /// printed.
  int finish(int status);

 private:
  static ssize_t write(void* self, const char* bytes, std::size_t size);

  const char* speaker_;
  int lostStatus_;
  std::FILE* former_;
  std::FILE* stream_;
  int error_ = 0;  // `errno` of the first write that failed
  bool reported_ = false;
  char buffer_[4096];
};

}  // namespace TarnFirewall
