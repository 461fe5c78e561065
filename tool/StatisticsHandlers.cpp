#include <cstdio>
#include <cstring>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "StatisticsRecords.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetUsage[] =
    "Get traffic statistics of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -z          : reset the stats to zero\n" USAGE_VERBOSE USAGE_COMPONENT USAGE_HELP;

constexpr char kClearUsage[] =
    "Clear statistics for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_HELP;

// The long form of -z takes an argument, which is not looked at: scripts write --zero=1.
constexpr option kGetWords[] = {
    kHelpWord, kVerboseWord, kFilterWord, {"zero", required_argument, nullptr, 'z'}, kLastWord};

}  // namespace

int GetFilterStat(const char* cmd, int argc, char** argv) {
  bool zero = false;
  return onFilter(
      cmd, argc, argv,
      {.usage = kGetUsage,
       .letters = "hv::m:f:z",
       .words = kGetWords,
       .own = {{'z', &zero}},
       .missing = {.usage = false},
       .alwaysTakesAgent = true,
       .prints = true},
      [&](const Target& target) {
        if (FW_GetKifStat(target.handle, target.port, nullptr) != FW_STATUS_OK)
          return error("ERROR: Failed to get filter stat\n");
        if (zero && FW_ClearKifStat(target.handle, target.port, nullptr) != FW_STATUS_OK)
          return error("ERROR: Failed to clear filter stat\n");
        return 0;
      });
}

int ClearFilterStat(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kClearUsage,
                   .letters = "hv::f:",
                   .missing = {.usage = false},
                   .opensLibrary = false},
                  [](const Target& target) {
                    if (target.verbose())
                      std::printf("DEBUG: Clear stats for filter %s\n", target.filter.name);
                    FWFilterName_ request{};
                    static_assert(sizeof request.name == sizeof target.filter.name);
                    std::memcpy(request.name, target.filter.name, sizeof request.name);
                    directRequest(kFirewall, FW_REQUEST_CLEAR_STATISTICS, request);
                    return 0;
                  });
}
