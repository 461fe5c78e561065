#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWFilter.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetUsage[] =
    "Get connection timeout setting for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -t <string> : timeout name, all timeouts without it\n" USAGE_VERBOSE USAGE_HELP;

constexpr char kSetUsage[] =
    "Set connection timeout setting for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -t <string> : timeout setting, name=value\n" USAGE_VERBOSE USAGE_HELP;

constexpr option kWords[] = {
    kFilterWord, kHelpWord, {"timeout", required_argument, nullptr, 't'}, kVerboseWord, kLastWord};

int takeName(FWInstTimeout_& timeouts, const char* name) {
  const unsigned int id = TimeoutName2ID(name);
  if (id >= kTimeouts) return error("ERROR: invalid timeout name: %s\n", name);
  timeouts.marks[id] = 1;
  return kGoOn;
}

/// Takes a name and a value out of a copy, which is cut into its words.
int takeWords(FWInstTimeout_& timeouts, char* copy, const char* setting) {
  constexpr char kBetween[] = " \t=";
  char* rest = nullptr;
  const char* const name = strtok_r(copy, kBetween, &rest);
  if (name == nullptr) return error("ERROR: cannot find timeout name in %s\n", setting);
  const unsigned int id = TimeoutName2ID(name);
  if (id >= kTimeouts) return error("ERROR: invalid timeout name %s\n", name);
  const char* const value = strtok_r(nullptr, kBetween, &rest);
  if (value == nullptr) return error("ERROR: cannot find timeout value in %s\n", setting);
  long seconds = 0;
  if (!Str2Long(value, 10, &seconds) || seconds < 0 || seconds > UINT32_MAX)
    return error("ERROR: invalid timeout value: %s\n", value);
  timeouts.values[id] = static_cast<std::uint32_t>(seconds);
  timeouts.marks[id] = 1;
  return kGoOn;
}

int takeSetting(FWInstTimeout_& timeouts, const char* setting) {
  const std::unique_ptr<char, FreeMemory> copy(strdup(setting));
  if (copy == nullptr) return error("ERROR: no memory for parsing timeout setting %s\n", setting);
  return takeWords(timeouts, copy.get(), setting);
}

}  // namespace

int GetTimeout(const char* cmd, int argc, char** argv) {
  FWInstTimeout_ timeouts{};
  const auto take = [&](const char* value, const Target&) { return takeName(timeouts, value); };
  return onFilter(
      cmd, argc, argv,
      {.usage = kGetUsage,
       .letters = "hv::f:t:",
       .words = kWords,
       .own = {{'t', take}},
       .missing = {.text = kFilterMissingPlain},
       .prints = true},
      [&](const Target& target) {
        auto& marks = timeouts.marks;
        if (std::count(std::begin(marks), std::end(marks), 0) == kTimeouts)
          std::fill(std::begin(marks), std::end(marks), std::uint8_t{1});
        if (FW_GetTimeout(target.handle, target.port, nullptr, &timeouts) == FW_STATUS_OK) return 0;
        return error("ERROR: Failed to get timeout for filter %s\n", target.filter.name);
      });
}

int SetTimeout(const char* cmd, int argc, char** argv) {
  FWInstTimeout_ timeouts{};
  const auto take = [&](const char* value, const Target&) { return takeSetting(timeouts, value); };
  return onFilter(
      cmd, argc, argv,
      {.usage = kSetUsage,
       .letters = "hv::f:t:",
       .words = kWords,
       .own = {{'t', take}},
       .missing = {.text = kFilterMissingPlain}},
      [&](const Target& target) {
        if (FW_SetTimeout(target.handle, target.port, nullptr, &timeouts) != FW_STATUS_OK) {
          return error("ERROR: Failed to change timeout setting for filter %s.\n",
                       target.filter.name);
        }
        if (target.verbose()) {
          std::printf("DEBUG: Timeout setting was changed for filter %s.\n", target.filter.name);
        }
        return 0;
      });
}
