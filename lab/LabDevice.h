// The control devices that the lab answers for.
#ifndef TARNLAB_DEVICE_H
#define TARNLAB_DEVICE_H

#include <cstdint>
#include <string_view>

namespace TarnLab {

enum class Device : std::uint8_t { none, firewall, filterTables, serviceInsertion };

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

/// The device that a path names, by its exact spelling.
constexpr Device deviceOfPath(std::string_view path) {
  for (const DeviceNode& node : deviceNodes) {
    if (path == node.path) return node.device;
  }
  return Device::none;
}

constexpr std::string_view deviceName(Device device) {
  for (const DeviceNode& node : deviceNodes) {
    if (device == node.device) return node.name;
  }
  return "none";
}

}  // namespace TarnLab

#endif
