#include <cstdio>
#include <optional>

#include "HandlerForm.h"
#include "Handlers.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetFlagsUsage[] =
    "Get kif flag settings for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
        USAGE_COMPONENT USAGE_HELP;

constexpr char kSetFlagsUsage[] = "Set kif flag for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
                                  "    -n <flagname> : flag name\n"
                                  "    -e <0|1>    : flag value\n" USAGE_VERBOSE USAGE_HELP;

constexpr char kFastPathUsage[] =
    "Set/Get kif fast path rule lookup flag.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -s <number> : set fp flag to 0/1 (disable/enable)\n"
    "    -i          : retrive fp kif configuration\n" USAGE_HELP;

constexpr option kGetFlagsWords[] = {kFilterWord, kHelpWord, kVerboseWord, kLastWord};
constexpr option kSetFlagsWords[] = {
    {"enable", required_argument, nullptr, 'e'}, kFilterWord, kHelpWord, kVerboseWord, kLastWord};

/// Both commands on flags print the level a second time: scripts that read the output expect both.
void printLevelAgain(const Target& target) {
  if (target.verbose()) std::printf("verbose level : %d\n", target.verbosity.level);
}

/// The value of -e, of which the record has eight bits.
unsigned int flagValue(const char* text) {
  const long value = boundedOption(text, -1, 255);
  return value < 0 ? 255 : static_cast<unsigned int>(value);
}

/// Reads or sets the flag of the fast path.
int fastPath(const Target& target, const std::optional<bool>& wanted) {
  unsigned int value = wanted.value_or(false) ? 1 : 0;
  const FWStatus_t status =
      FW_FpFlag(target.handle, target.port, nullptr, &value, wanted.has_value() ? 0 : 1);
  if (status == FW_STATUS_OK && !wanted.has_value())
    std::printf("Fast Path flag %s\n", value != 0 ? "Enabled" : "Disable");
  return outcome(status, "ERROR: failed to set fp interface flag: %s\n");
}

}  // namespace

int GetKifFlags(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kGetFlagsUsage,
                   .letters = "hv::m:f:",
                   .words = kGetFlagsWords,
                   .missing = {.text = kFilterMissingPlain},
                   .prints = true},
                  [](const Target& target) {
                    printLevelAgain(target);
                    return outcome(FW_GetKifFlags(target.handle, target.port, nullptr),
                                   "ERROR: Failed to get filter kif flags\n");
                  });
}

int SetKifFlags(const char* cmd, int argc, char** argv) {
  const char* name = nullptr;
  const char* value = nullptr;
  const auto bothGiven = [&](const Target& target) {
    if (name == nullptr) return target.usage.error("ERROR: flagname is missing\n");
    if (value == nullptr) return target.usage.error("ERROR: flagvalue is missing\n");
    return kGoOn;
  };
  // The library sends 39 characters of a longer name.
  return onFilter(cmd, argc, argv,
                  {.usage = kSetFlagsUsage,
                   .letters = "f:n:e:v::h",
                   .words = kSetFlagsWords,
                   .own = {{'n', &name}, {'e', &value}},
                   .missing = {.text = kFilterMissingPlain},
                   .check = bothGiven,
                   .prints = true},
                  [&](const Target& target) {
                    printLevelAgain(target);
                    return outcome(
                        FW_SetKifFlags(target.handle, target.port, nullptr, name, flagValue(value)),
                        "ERROR: Failed to set kif flag\n");
                  });
}

int KifsFastPath(const char* cmd, int argc, char** argv) {
  std::optional<bool> wanted;
  bool asks = false;
  const auto anyGiven = [&](const Target& target) {
    return wanted.has_value() || asks ? kGoOn
                                      : target.usage.error("ERROR: FP flag value is missing.\n");
  };
  return onFilter(cmd, argc, argv,
                  {.usage = kFastPathUsage,
                   .letters = "hf:s:i::",  // what may stand with -i is not looked at
                   .own = {{'s', &wanted, "ERROR: bad enable value %s\n"}, {'i', &asks}},
                   .check = anyGiven,
                   .opensLibraryFirst = true,
                   .libraryFailure = {.text = "ERROR: Library handle init failure.\n"}},
                  [&](const Target& target) { return fastPath(target, wanted); });
}
