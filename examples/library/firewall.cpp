// The C++ side of the C program: tarnfw.h is C++20, so that the integers of its records convert by
// themselves. What a C program needs is wrapped in functions of its own, as here.

#include "firewall.h"

#include <tarnfw.h>

#include <cstring>

namespace {

/// The selector of a filter by its name. A name says which agent owns the filter; this program
/// works on filters of one agent.
dvs_port_ selector(const char* filter) {
  dvs_port_ port{};
  std::strncpy(port.identifier, filter, sizeof port.identifier - 1);
  std::strncpy(port.agent, "kelpco-sfw", sizeof port.agent - 1);
  TarnFirewall::setSelectorType(port, TarnFirewall::FW_SELECTOR_FILTER);
  return port;
}

const char* failure(FWStatus_t status) {
  return status != TarnFirewall::FW_STATUS_OK ? FW_StatusToString(status) : nullptr;
}

}  // namespace

const char* firewall_load(const char* filter, const char* text) {
  fwlibhandle_* const firewall = FW_GetDefaultLibHandle();
  fwlibhandle_* channel = firewall;
  fwconfigfile_* configuration = nullptr;
  FWStatus_t status = FW_LoadConfigString(text, &channel, &configuration);
  if (status == TarnFirewall::FW_STATUS_OK) {
    dvs_port_ port = selector(filter);
    status = FW_EvaluateConfigFile(channel, configuration, &port, nullptr);
    FW_FreeConfigFile(configuration);
  }
  // A text may name another channel, which is the caller's then.
  if (channel != firewall) FW_Exit(channel);
  return failure(status);
}

const char* firewall_count_rules(const char* filter, const char* rule_set, unsigned int* count) {
  const dvs_port_ port = selector(filter);
  FWRuleSetID_t name{};
  std::strncpy(name.text, rule_set, sizeof name.text - 1);
  return failure(
      FW_GetRuleCountOfRuleSet(FW_GetDefaultLibHandle(), &port, nullptr, &name, 0, count));
}
