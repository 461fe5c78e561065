#pragma once

/// Options and operands of a subcommand's call. Options may stand after operands, "--" ends them,
/// and every long name may be cut where it stays unique. `-h`, `--help` and `--version` are listed
/// for no subcommand, and each has them.

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

struct option;

/// An option of a subcommand.
struct OptionForm {
  const char* name;  // long form without "--"
  char letter;       // what `next` returns; with `isShort` also the short form
  bool isShort;
  bool takesArgument;
};

/// A call that is wrong. The text is for the line that the frame prints: no capital, no full stop.
class CallError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Thrown where the help text was asked for.
struct HelpWanted {};

/// Thrown where the version was asked for.
struct VersionWanted {};

/// Reads the options of one call, then its operands.
class OptionReader {
 public:
  /// `argv[0]` is the subcommand. One reader at a time: the C library keeps its place.
  OptionReader(int argc, char** argv, std::span<const OptionForm> forms);
  ~OptionReader();
  OptionReader(const OptionReader&) = delete;
  OptionReader& operator=(const OptionReader&) = delete;

  /// The letter of the next option, 0 after the last. Throws `CallError` for an unknown option, for
  /// an argument that is missing and for one that has no place, `HelpWanted` and `VersionWanted`.
  char next();

  /// The argument of the option that `next` returned.
  const char* argument() const { return argument_; }

  /// What is not an option, after `next` has returned 0.
  std::span<char* const> operands() const;

 private:
  [[noreturn]] void refuse(int result) const;

  int argc_;
  char** argv_;
  std::string letters_;
  std::vector<option> names_;
  const char* argument_ = nullptr;
};
