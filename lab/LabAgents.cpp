// Requests 23, 24 and 41 of the firewall device: the owners of filters.
#include <cerrno>

#include "LabFamily.h"
#include "LabSelector.h"

namespace TarnLab {

namespace {

constexpr std::size_t bodySize = 100;
constexpr Name name{0, bodySize, "name", "agent"};

/// What the table device has of a name. It has to tell the agents apart.
constexpr std::size_t tableRoom = 39;
constexpr std::size_t agentLimit = 1024;

constexpr FlagSetting registered{"agent.registered", "the host's agent is registered"};

int createAgent(Request& request, Body& body) {
  const std::string_view wanted = name.get(body);
  if (wanted.empty()) return request.refuse(EINVAL, "agent without a name");
  if (const auto found = request.host.findAgent(wanted.substr(0, tableRoom), tableRoom)) {
    return request.refuse(EEXIST, "agent " + request.host.agents()[*found].name);
  }
  Host host = request.host;
  if (host.agents().size() >= agentLimit) return request.refuse(ENOSPC, "too many agents");
  host.agents().push_back({std::string(wanted)});
  host.save(request.store);
  return 0;
}

int destroyAgent(Request& request, Body& body) {
  const std::string_view wanted = name.get(body);
  const auto found = request.host.findAgent(wanted, bodySize);
  if (!found) return request.refuse(ENOENT, "no agent " + std::string(wanted));
  std::size_t filters = 0;
  for (std::size_t i = 0; i < request.host.filterCount(); ++i) {
    if (request.host.agent(i) == wanted) ++filters;
  }
  if (filters > 0) return request.refuse(EBUSY, format("it has %zu filters", filters));
  Host host = request.host;
  host.agents().erase(host.agents().begin() + static_cast<std::ptrdiff_t>(*found));
  host.save(request.store);
  request.store.removeTree("shared/" + Selector::fileName(wanted));
  return 0;
}

int registerAgent(Request& request, Body& /*body*/) {
  Settings settings = Settings::load(request.store, Settings::ofHost);
  settings.set(registered, true);
  settings.save(request.store, Settings::ofHost);
  return 0;
}

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 23,
     .title = "create agent",
     .size = bodySize,
     .answer = createAgent,
     .request = {name}},
    {.device = Device::firewall,
     .number = 24,
     .title = "destroy agent",
     .size = bodySize,
     .answer = destroyAgent,
     .request = {name}},
    {.device = Device::firewall,
     .number = 41,
     .title = "register the agent",
     .size = 0,
     .answer = registerAgent,
     .sentStatus = 0xbad0001},
};

constexpr Setting settings[] = {registered};

}  // namespace

constinit const Family agentFamily{.requests = requests, .settings = settings};

}  // namespace TarnLab
