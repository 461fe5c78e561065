#include "TarnFWUtilFilter.h"

#include <strings.h>

#include <cstring>

#include "TarnFWUtilText.h"

using namespace TarnFirewall;

int GetAgentFromFilterName(const char* name, char* agent) {
  constexpr std::size_t kAgentSize = 99;
  constexpr char kSharedPrefix[] = "shared-addrset-filter-";
  constexpr std::size_t kSharedPrefixLength = sizeof kSharedPrefix - 1;

  if (strncasecmp(name, kSharedPrefix, kSharedPrefixLength) == 0) {
    Strncpy(agent, name + kSharedPrefixLength, kAgentSize);
    agent[std::strcspn(agent, ".")] = '\0';
    return agent[0] == '\0' ? 1 : 0;
  }

  // nic-<world>-<virtual nic>-<agent>.<slot>
  char copy[kAgentSize];
  Strncpy(copy, name, sizeof copy);
  char* begin = copy;
  for (int dash = 0; dash < 3; ++dash) {
    begin = std::strchr(begin, '-');
    if (begin == nullptr) return 1;
    ++begin;
  }
  char* const dot = std::strrchr(begin, '.');
  if (dot == nullptr) return 1;
  *dot = '\0';
  Strncpy(agent, begin, kAgentSize);
  return 0;
}

bool selectFilter(const char* name, dvs_port_* port) {
  if (std::strlen(name) > kMaxName) return false;
  *port = {};
  char agent[kMaxName];
  Strncpy(agent, kDefaultAgent, sizeof agent);
  const bool hasAgent = GetAgentFromFilterName(name, agent) == 0;
  setSelectorType(*port, hasAgent ? FW_SELECTOR_FILTER : FW_SELECTOR_VIF);
  Strncpy(port->agent, agent, sizeof port->agent);
  Strncpy(port->identifier, name, sizeof port->identifier);
  return true;
}
