// The control devices and the host's processes that the lab answers for.
#ifndef TARNLAB_DEVICE_H
#define TARNLAB_DEVICE_H

#include <cstdint>
#include <string_view>

namespace TarnLab {

/// Trace and inspection are no devices but processes of the host, which listen on sockets; the
/// system log is what programs write to it.
enum class Device : std::uint8_t {
  none,
  firewall,
  filterTables,
  serviceInsertion,
  trace,
  inspection,
  systemLog
};

struct DeviceNode {
  std::string_view path;
  Device device;
  std::string_view name;  // as the log and "tarnlab fault" write it
};

inline constexpr DeviceNode deviceNodes[] = {
    {"/dev/brq-tarn", Device::firewall, "firewall"},
    {"/dev/tarn", Device::firewall, "firewall"},
    {"/dev/weirgatetbl", Device::filterTables, "tables"},
    {"/dev/brq-tarn-ploy", Device::serviceInsertion, "insertion"},
};

/// The sockets of the host daemon and of the inspection process: the lab's peers.
inline constexpr DeviceNode peerNodes[] = {
    {"/var/run/kelpco/hulld_trace", Device::trace, "trace"},
    {"/var/run/kelpco/vdpi_stats_channel", Device::inspection, "inspection"},
};

constexpr bool isPeer(Device device) {
  return device == Device::trace || device == Device::inspection;
}

/// The device that a path names, by its exact spelling.
constexpr Device deviceOfPath(std::string_view path) {
  for (const DeviceNode& node : deviceNodes) {
    if (path == node.path) return node.device;
  }
  return Device::none;
}

/// The peer whose socket has that path.
constexpr Device peerOfPath(std::string_view path) {
  for (const DeviceNode& node : peerNodes) {
    if (path == node.path) return node.device;
  }
  return Device::none;
}

constexpr std::string_view deviceName(Device device) {
  for (const DeviceNode& node : deviceNodes) {
    if (device == node.device) return node.name;
  }
  for (const DeviceNode& node : peerNodes) {
    if (device == node.device) return node.name;
  }
  return "none";
}

}  // namespace TarnLab

#endif
