#include "SaveSubcommand.h"

#include <sys/stat.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "LanguageText.h"
#include "Options.h"
#include "PolicyProgram.h"
#include "SaveText.h"
#include "ShownText.h"
#include "StateFilter.h"
#include "StateText.h"
#include "TarnFWUtilFile.h"

namespace {

constexpr int kMissingStatus = 3;
constexpr std::size_t kShownDifferences = 20;

constexpr OptionForm kForms[] = {{"filter", 'f', true, true},
                                 {"output", 'o', true, true},
                                 {"verify", 'v', false, false},
                                 {"partial", 'p', false, false}};

struct SaveCall {
  std::string filter;
  std::string output;
  bool verify = false;
  bool partial = false;
};

SaveCall readCall(int argc, char** argv) {
  SaveCall call;
  OptionReader options(argc, argv, kForms);
  while (const char letter = options.next()) {
    switch (letter) {
      case 'f':
        call.filter = givenFilter(options.argument());
        break;
      case 'o':
        call.output = options.argument();
        if (call.output.empty()) throw CallError("the name of the output file is empty");
        break;
      case 'v':
        call.verify = true;
        break;
      default:
        call.partial = true;
        break;
    }
  }
  if (!options.operands().empty()) {
    throw CallError(std::string("unexpected ") + options.operands().front());
  }
  if (call.filter.empty()) throw CallError("the filter is missing (-f)");
  return call;
}

/// Loads the whole text and compares it with what the kernel gave. False, with a report, where
/// something differs that is not named as missing.
bool verify(const State& held, const SavedText& saved) {
  const State loaded = stateOfText(saved.text, "the saved text").state;
  const State& wanted = saved.missing.empty() ? held : saved.made;
  const auto differences = recordDifferences(wanted, loaded, kShownDifferences);
  for (const std::string& line : differences) {
    std::fprintf(stderr, "tarnpolicy save: verification: %s\n", line.c_str());
  }
  if (!differences.empty()) return false;
  std::size_t rules = 0, members = 0;
  for (const auto& [name, set] : loaded.ruleSets) rules += set.count();
  for (const auto& [name, set] : loaded.sets) {
    members += set.addresses.size() + set.elements.size();
  }
  std::fprintf(
      stderr, "tarnpolicy save: verified: %s in %s, %s in %s\n", countedText(rules, "rule").c_str(),
      countedText(loaded.ruleSets.size(), "rule set").c_str(),
      countedText(members, "member").c_str(), countedText(loaded.sets.size(), "set").c_str());
  return true;
}

std::string shownOutput(const SaveCall& call) { return shownLine(call.output, kLongestMessage); }

UtilStatus_t writeText(void* context, std::ostream& stream) {
  stream << *static_cast<const std::string*>(context);
  return stream.good() ? UTIL_STATUS_OK : UTIL_STATUS_FAILED;
}

/// A device or a pipe has no earlier content to keep, and may never come to the end of one.
bool isReplaceable(const char* path) {
  struct stat facts {};
  return stat(path, &facts) != 0 || S_ISREG(facts.st_mode);
}

bool writeThrough(const char* path, const std::string& text) {
  std::ofstream file(path);
  return (file << text).flush().good();
}

int store(const SaveCall& call, std::string& text) {
  if (call.output.empty() || call.output == "-") {
    std::fwrite(text.data(), 1, text.size(), stdout);  // main sees whether it arrives
    return 0;
  }
  const char* const path = call.output.c_str();
  const bool stored = isReplaceable(path) ? FwReplaceFile(path, &text, writeText) == UTIL_STATUS_OK
                                          : writeThrough(path, text);
  if (stored) return 0;
  std::fprintf(stderr, "tarnpolicy save: can't write %s\n", shownOutput(call).c_str());
  return kTroubleStatus;
}

}  // namespace

int runSave(int argc, char** argv) {
  const SaveCall call = readCall(argc, argv);
  const State held = stateOfFilter(call.filter);
  SavedText saved = saveText(held);
  for (const std::string& sentence : saved.missing) {
    std::fprintf(stderr, "tarnpolicy save: missing: %s\n", sentence.c_str());
  }
  if (call.verify && !verify(held, saved)) return kTroubleStatus;
  const bool incomplete = !saved.missing.empty() && !call.partial;
  const bool toFile = !call.output.empty() && call.output != "-";
  if (incomplete && toFile) {
    // A file that is there may be whole.
    std::fprintf(stderr, "tarnpolicy save: %s is not written; --partial writes it\n",
                 shownOutput(call).c_str());
    return kMissingStatus;
  }
  if (const int status = store(call, saved.text)) return status;
  return incomplete ? kMissingStatus : 0;
}
