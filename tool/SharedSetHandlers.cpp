// Settings of a filter that are one switch: sharing its address sets, and dropping ICMP errors.

#include <cstdio>
#include <optional>

#include "HandlerForm.h"
#include "Handlers.h"

using namespace TarnFirewall;

namespace {

constexpr char kSetSharedUsage[] =
    "Set shared addrset setting.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_COMPONENT
    "    -s <0|1>    : set shared addrset setting (0: disable, 1: enable)\n" USAGE_HELP;

constexpr char kGetSharedUsage[] = "Get shared addrset setting.\n\n" USAGE_OPTIONS USAGE_FILTER
    USAGE_VERBOSE USAGE_COMPONENT USAGE_HELP;

constexpr char kSetErrorDropUsage[] =
    "Set ICMP err pkt drop enable setting.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
    "    -e <0|1>    : set ICMP err pkt drop enable setting (0: disable, 1: enable)\n" USAGE_HELP;

constexpr option kSetSharedWords[] = {
    kFilterWord, kHelpWord, {"shared", required_argument, nullptr, 's'}, kVerboseWord, kLastWord};
constexpr option kGetSharedWords[] = {kFilterWord, kHelpWord, kVerboseWord, kLastWord};
constexpr option kSetErrorDropWords[] = {
    {"enable", required_argument, nullptr, 'e'}, kFilterWord, kHelpWord, kVerboseWord, kLastWord};

/// A check that the switch was given.
HandlerForm::Step givenSwitch(const std::optional<bool>& value, const char* missing) {
  return [&value, missing](const Target& target) {
    return value ? kGoOn : target.usage.error("%s", missing);
  };
}

const char* stateName(bool enable) { return enable ? "enable" : "disable"; }

}  // namespace

int SetSharedAddrSet(const char* cmd, int argc, char** argv) {
  std::optional<bool> shared;
  return onFilter(
      cmd, argc, argv,
      {.usage = kSetSharedUsage,
       .letters = "hv::m:f:s:",
       .words = kSetSharedWords,
       .own = {{'s', &shared, "ERROR: bad shared option %s\n"}},
       .missing = {.text = kFilterMissingPlain},
       .check = givenSwitch(shared, "ERROR: shared option is missing\n")},
      [&](const Target& target) {
        if (FW_ConfigSharedAddrSet(target.handle, target.port, nullptr, *shared) != FW_STATUS_OK)
          return error("ERROR: Failed to set filter shared addrset setting\n");
        if (target.verbose())
          std::printf("DEBUG: Shared addrset was set to %s for filter %s.\n", stateName(*shared),
                      target.filter.name);
        return 0;
      });
}

int GetSharedAddrSet(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kGetSharedUsage,
                   .letters = "hv::m:f:",
                   .words = kGetSharedWords,
                   .missing = {.text = kFilterMissingPlain},
                   .prints = true},
                  [](const Target& target) {
                    unsigned int enabled = 0;
                    return outcome(
                        FW_GetSharedAddrSet(target.handle, target.port, nullptr, &enabled),
                        "ERROR: Failed to get filter shared addrset setting\n");
                  });
}

int SetICMPErrPktDrop(const char* cmd, int argc, char** argv) {
  std::optional<bool> enable;
  // For a bad value the usage text is that of `setsharedaddrset`, with the word of this command:
  // scripts match it.
  const auto takeEnable = [&](const char* value, const Target&) {
    int number = 0;
    if (!decimalOption(value, &number) || number < 0 || number > 1)
      return Usage(kSetSharedUsage, cmd).error("ERROR: bad enable option %s\n", value);
    enable = number == 1;
    return kGoOn;
  };
  return onFilter(
      cmd, argc, argv,
      {.usage = kSetErrorDropUsage,
       .letters = "hv::f:e:",
       .words = kSetErrorDropWords,
       .own = {{'e', takeEnable}},
       .missing = {.text = kFilterMissingPlain},
       .check = givenSwitch(enable, "ERROR: enable option is missing\n")},
      [&](const Target& target) {
        if (FW_ConfigICMPErrPktDrop(target.handle, target.port, nullptr, *enable) != FW_STATUS_OK)
          return error("ERROR: Failed to set filter icmp error drop enable setting\n");
        if (target.verbose())
          std::printf("DEBUG: ICMP error drop enable was set to %s for filter %s.\n",
                      stateName(*enable), target.filter.name);
        return 0;
      });
}
