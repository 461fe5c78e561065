#include <algorithm>
#include <cstdlib>

#include "HandlerForm.h"
#include "Handlers.h"

using namespace TarnFirewall;

namespace {

constexpr char kSetFailPolicyUsage[] =
    "Set fail policy.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
    "    -p<fail_policy> : fail policy (0: fail_open, 1: fail_close)\n" USAGE_HELP;

constexpr char kGetFailPolicyUsage[] =
    "Get fail policy.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_HELP;

/// The value of -p: what `strtol` makes of it. The library refuses a number that is no policy; one
/// of more than 32 bits must not turn into one that is.
FWFailPolicy_t failPolicy(const char* text) {
  return static_cast<FWFailPolicy_t>(std::clamp(std::strtol(text, nullptr, 10), -1L, 2L));
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
