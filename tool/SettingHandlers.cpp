#include <strings.h>

#include "HandlerForm.h"
#include "Handlers.h"

using namespace TarnFirewall;

namespace {

constexpr char kSetFailPolicyUsage[] =
    "Set fail policy.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
    "    -p<fail_policy> : fail policy (0: fail_open, 1: fail_close)\n" USAGE_HELP;

constexpr char kGetFailPolicyUsage[] =
    "Get fail policy.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_HELP;

constexpr char kSetVerboseUsage[] = "Set log level.\n\n" USAGE_OPTIONS USAGE_FILTER
                                    "    -c <comp>   : component, DP or CP\n"
                                    "    -v <number> : verbose level, from 0 to 3\n" USAGE_HELP;

/// The value of -p. The library refuses a number that is no policy.
FWFailPolicy_t failPolicy(const char* text) {
  return static_cast<FWFailPolicy_t>(boundedOption(text, -1, 2));
}

}  // namespace

int SetFailPolicy(const char* cmd, int argc, char** argv) {
  const char* policy = nullptr;
  return onFilter(cmd, argc, argv,
                  {.usage = kSetFailPolicyUsage,
                   .letters = "hv:f:p:",
                   .own = {{'p', &policy}},
                   .check = given(policy, "ERROR: fail policy is missing.\n"),
                   .raisesLibraryLevel = false},
                  [&](const Target& target) {
                    const FWStatus_t status =
                        FW_SetFailPolicy(target.handle, target.port, nullptr, failPolicy(policy));
                    if (status == FW_STATUS_OK) return 0;
                    return error("ERROR: failed to set fail policy: %s %d\n",
                                 FW_StatusToString(status), static_cast<int>(status));
                  });
}

int GetFailPolicy(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kGetFailPolicyUsage,
                   .letters = "hv:f:",
                   .raisesLibraryLevel = false,
                   .prints = true},
                  [](const Target& target) {
                    FWFailPolicy_t policy;
                    return outcome(FW_GetFailPolicy(target.handle, target.port, nullptr, &policy),
                                   "ERROR: failed to get fail policy: %s\n");
                  });
}

int SetVerbose(const char* cmd, int argc, char** argv) {
  unsigned int component = 0;
  unsigned int level = 0;
  const auto takeComponent = [&](const char* value, const Target&) {
    if (strcasecmp(value, "DP") != 0 && strcasecmp(value, "CP") != 0) return kNotTaken;
    component = strcasecmp(value, "DP") == 0 ? 1 : 2;
    return kGoOn;
  };
  const auto takeLevel = [&](const char* value, const Target&) {
    level = static_cast<unsigned int>(boundedOption(value, -1, 16));  // 15 is the library's highest
    return kGoOn;
  };
  // Neither the component nor the filter is looked for: the library and the kernel refuse without.
  return onFilter(cmd, argc, argv,
                  {.usage = kSetVerboseUsage,
                   .letters = "hc:v:f:",
                   .own = {{'c', takeComponent}, {'v', takeLevel}},
                   .needsFilter = false},
                  [&](const Target& target) {
                    return outcome(
                        FW_EnableVerboseLog(target.handle, target.port, nullptr, component, level),
                        "ERROR: failed to set verbose log: %s\n");
                  });
}
