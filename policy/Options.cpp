#include "Options.h"

#include <getopt.h>

namespace {

constexpr OptionForm kHelp = {"help", 'h', true, false};
constexpr OptionForm kVersion = {"version", 'V', false, false};

}  // namespace

OptionReader::OptionReader(int argc, char** argv, std::span<const OptionForm> forms)
    : argc_(argc), argv_(argv), letters_(":") {
  const auto add = [&](const OptionForm& form) {
    names_.push_back(
        {form.name, form.takesArgument ? required_argument : no_argument, nullptr, form.letter});
    if (!form.isShort) return;
    letters_ += form.letter;
    if (form.takesArgument) letters_ += ':';
  };
  for (const OptionForm& form : forms) add(form);
  add(kHelp);
  add(kVersion);
  names_.push_back({});
  optind = 0;  // begins anew, whatever an earlier reader has read
}

OptionReader::~OptionReader() = default;

char OptionReader::next() {
  opterr = 0;
  const int result = getopt_long(argc_, argv_, letters_.c_str(), names_.data(), nullptr);
  if (result == -1) return 0;
  if (result == kHelp.letter) throw HelpWanted();
  if (result == kVersion.letter) throw VersionWanted();
  if (result == '?' || result == ':') refuse(result);
  argument_ = optarg;
  return static_cast<char>(result);
}

void OptionReader::refuse(int result) const {
  // For a long option the C library has moved on; for a short one only `optopt` is sure.
  std::string word = std::string("-") + static_cast<char>(optopt);
  const std::string before = optind > 0 && optind <= argc_ ? argv_[optind - 1] : "";
  if (before.starts_with("--")) word = before;
  if (result == ':') throw CallError("option " + word + " needs an argument");
  if (optopt != 0 && before.starts_with("--")) {
    throw CallError("option " + word.substr(0, word.find('=')) + " takes no argument");
  }
  throw CallError("no option " + word);
}

std::span<char* const> OptionReader::operands() const {
  return {argv_ + optind, static_cast<std::size_t>(argc_ - optind)};
}
