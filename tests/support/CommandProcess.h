#pragma once

#include <ostream>
#include <string>
#include <vector>

/// Runs commands as a program does, each in a process of its own, in which memory or standard
/// output can fail. The test program that links this defines `kProgram`, and is run in a lab.
namespace CommandProcess {

/// The program: its name, what its `main` runs, and how it says that its output was lost.
struct Program {
  const char* name;
  int (*run)(int argc, char** argv);
  const char* lostPrefix;
  int lostStatus;
};
extern const Program kProgram;

/// What a run left.
struct Result {
  int status;  // exit status; for a signal its number, negative
  std::string out;
  std::string err;
  bool reached;  // whether it came to what was to fail
};

std::ostream& operator<<(std::ostream& to, const Result& result);

using Words = std::vector<std::string>;

Result run(const Words& words);

/// The allocation of this number fails, by itself or with all that follow. The first has number 0.
Result runWithoutMemory(const Words& words, unsigned int number, bool onwards);

/// The write of this number to standard output fails with `error`; the first has the number 0.
Result runWithoutRoom(const Words& words, unsigned int number, int error);

}  // namespace CommandProcess
