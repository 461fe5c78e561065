// What a filter learns of names, and whether it copies packets for layer 7.

#include <strings.h>

#include <optional>

#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWSettingsRecords.h"

using namespace TarnFirewall;

namespace {

#define USAGE_TTL "    -t <ttl>    : AUTO, MAX or time to live in seconds, Range (0-1024)\n"

constexpr char kSetProfileUsage[] =
    "set dns config profile for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_TTL
        USAGE_HELP;

constexpr char kGetProfileUsage[] =
    "get dns config profile for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_TTL
        USAGE_HELP;

constexpr char kSetCopyModeUsage[] =
    "set L7 copy mode for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
    "    -e          : enable L7 copy mode\n"
    "    -d          : disable L7 copy mode\n" USAGE_HELP;

// Some words have a number that getopt does not know in the place of their kind: they take a value
// after "=" and no other, and are taken without one as well. Scripts depend on both.
constexpr int kValueOrNot3 = 3;
constexpr int kValueOrNot4 = 4;

constexpr option kProfileWords[] = {
    {"address", kValueOrNot4, nullptr, 'a'}, kFilterWord,  kHelpWord,
    {"ttl", kValueOrNot3, nullptr, 't'},     kVerboseWord, kLastWord};
constexpr option kCopyModeWords[] = {{"disable", kValueOrNot4, nullptr, 'd'},
                                     {"enable", kValueOrNot3, nullptr, 'e'},
                                     kFilterWord,
                                     kHelpWord,
                                     kVerboseWord,
                                     kLastWord};

/// The value of `-t`.
struct TimeToLive {
  static constexpr int kMost = 864000;  // ten days, in spite of the usage text

  unsigned int mode = FW_DNS_TTL_SECONDS;
  int seconds = 0;

  bool take(const char* text) {
    if (text == nullptr) return false;
    const bool automatic = strcasecmp(text, "AUTO") == 0;
    if (automatic || strcasecmp(text, "MAX") == 0) {
      mode = automatic ? FW_DNS_TTL_AUTOMATIC : FW_DNS_TTL_INFINITE;
      seconds = 0;
      return true;
    }
    mode = FW_DNS_TTL_SECONDS;
    return decimalOption(text, &seconds) && seconds >= 0 && seconds <= kMost;
  }
};

/// Both commands on the profile take the same options; only one of them sends the time to live. The
/// options -n and -a are taken and not used.
int onProfile(const char* cmd, int argc, char** argv, const char* usage, bool prints,
              FWStatus_t (*call)(const Target& target, const TimeToLive& live)) {
  TimeToLive live;
  const char* unused = nullptr;
  const auto takeTimeToLive = [&](const char* value, const Target&) {
    if (live.take(value)) return kGoOn;
    std::printf("invalid ttl value %s\n", value != nullptr ? value : "");
    return 1;
  };
  return onFilter(cmd, argc, argv,
                  {.usage = usage,
                   .letters = "hv::f:t:n:a:",
                   .words = kProfileWords,
                   .own = {{'t', takeTimeToLive}, {'n', &unused}, {'a', &unused}},
                   .missing = {.text = kFilterMissingPlain},
                   .prints = prints},
                  [&](const Target& target) {
                    // "set" for both: scripts match it.
                    if (call(target, live) == FW_STATUS_OK) return 0;
                    return error("ERROR: Failed to set dns config for %s\n", target.filter.name);
                  });
}

}  // namespace

int SetDnsConfigProfile(const char* cmd, int argc, char** argv) {
  return onProfile(cmd, argc, argv, kSetProfileUsage, false,
                   [](const Target& target, const TimeToLive& live) {
                     return FW_SetDnsConfigProfile(target.handle, target.port, live.mode,
                                                   static_cast<unsigned int>(live.seconds));
                   });
}

int GetDnsConfigProfile(const char* cmd, int argc, char** argv) {
  return onProfile(cmd, argc, argv, kGetProfileUsage, true,
                   [](const Target& target, const TimeToLive&) {
                     return FW_GetDnsConfigProfile(target.handle, target.port);
                   });
}

int SetL7CopyMode(const char* cmd, int argc, char** argv) {
  std::optional<bool> enable;
  const auto choose = [&enable](char letter, bool choice) {
    return OwnOption(letter, [&enable, choice](const char*, const Target&) {
      enable = choice;
      return kGoOn;
    });
  };
  const auto needChoice = [&](const Target& target) {
    return enable ? kGoOn : target.usage.error("ERROR: select either enable/disable\n");
  };
  return onFilter(
      cmd, argc, argv,
      {.usage = kSetCopyModeUsage,
       .letters = "hedv::f:",
       .words = kCopyModeWords,
       .own = {choose('e', true), choose('d', false)},
       .missing = {.text = kFilterMissingPlain},
       .check = needChoice},
      [&](const Target& target) {
        if (FW_SetL7CopyMode(target.handle, target.port, *enable ? 1 : 0) == FW_STATUS_OK) return 0;
        return error("ERROR: Failed to set L7 copy mode config for %s\n", target.filter.name);
      });
}
