// Requests 28 and 29 of the firewall device: the load above which the host raises an event.
#include "LabThresholds.h"

#include <algorithm>
#include <cerrno>

#include "LabFamily.h"

namespace TarnLab {

namespace {

constexpr const NumberSetting& cpuThreshold = eventThresholds[0].setting;
constexpr const NumberSetting& memoryThreshold = eventThresholds[1].setting;
constexpr const NumberSetting& connectionThreshold = eventThresholds[2].setting;

constexpr std::size_t bodySize = 8;
constexpr Bits given{0, 0x03, "given"};
constexpr unsigned cpuGiven = 1, connectionsGiven = 2;
constexpr Reserved otherFlags{0, 1, nullptr, 0xfc}, requestRest{2, 2};
constexpr U8 cpu{1, "cpu"}, cpuUsed{2, "cpu used"};
constexpr U32 connections{4, "connections"};

/// Percent. No packets flow, so it is made of the number of filters: 1, and 3 for each.
std::uint8_t usage(const Host& host) {
  return static_cast<std::uint8_t>(std::min<std::size_t>(1 + 3 * host.filterCount(), 100));
}

int setThresholds(Request& request, Body& body) {
  const unsigned flags = given.get(body);
  if ((flags & cpuGiven) != 0 && cpu.get(body) > 100) {
    return request.refuse(EINVAL, format("%u percent", cpu.get(body)));
  }
  Settings settings = Settings::load(request.store, Settings::ofHost);
  if ((flags & cpuGiven) != 0) settings.set(cpuThreshold, cpu.get(body));
  if ((flags & connectionsGiven) != 0) settings.set(connectionThreshold, connections.get(body));
  settings.save(request.store, Settings::ofHost);
  return 0;
}

int getThresholds(Request& request, Body& body) {
  const Settings settings = Settings::load(request.store, Settings::ofHost);
  cpu.put(body, static_cast<std::uint8_t>(settings.get(cpuThreshold)));
  cpuUsed.put(body, usage(request.host));
  connections.put(body, static_cast<std::uint32_t>(settings.get(connectionThreshold)));
  return 0;
}

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 28,
     .title = "set thresholds",
     .size = bodySize,
     .answer = setThresholds,
     .request = {given, otherFlags, cpu, requestRest, connections}},
    {.device = Device::firewall,
     .number = 29,
     .title = "thresholds",
     .size = bodySize,
     .answer = getThresholds,
     .reply = {cpu, cpuUsed, connections}},
};

constexpr Setting settings[] = {cpuThreshold, memoryThreshold, connectionThreshold};

}  // namespace

constinit const Family thresholdFamily{.requests = requests, .settings = settings};

}  // namespace TarnLab
