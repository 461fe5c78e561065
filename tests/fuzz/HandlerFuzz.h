#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// A command of the program that ran in this process.
struct HandlerRun {
  int status;
  std::string out;
  std::string err;
  unsigned int hostCalls;  // what it asked of devices, files and sockets

  bool silent() const { return out.empty() && err.empty(); }
};

/// Runs the program with these words after its name, on a host that is made up by `host` (see
/// FuzzHost). A run that does not return, or with another status than 0 and 1, or that leaves a
/// descriptor or a file open, is a finding.
HandlerRun runProgram(const std::vector<std::string>& words,
                      std::span<const std::uint8_t> host = {});

/// Runs the command line of a fuzzer's input:
///
///     first byte             chooses the command
///     up to a byte of 1      the words after it, with a NUL between two words
///     after it               the host
///
/// The words of "-Override" stand where the command needs them. Words after the first 320 are left
/// out.
HandlerRun runInput(std::span<const char* const> commands, std::span<const std::uint8_t> input);

/// A finding when the command failed and did not say why.
void requireReason(const HandlerRun& run);
