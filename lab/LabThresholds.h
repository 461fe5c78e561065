// The load above which the host raises an event.
#ifndef TARNLAB_THRESHOLDS_H
#define TARNLAB_THRESHOLDS_H

#include <array>

#include "LabSettings.h"

namespace TarnLab {

struct EventThreshold {
  const char* name;
  const char* unit;
  std::uint32_t most;
  NumberSetting setting;
};

/// In the order in which the host daemon counts them. The device knows the first and the last.
inline constexpr std::array eventThresholds = {
    EventThreshold{"CPU", "percent", 100, NumberSetting{"threshold.cpu", 80}},
    EventThreshold{"memory", "percent", 100, NumberSetting{"threshold.memory", 75}},
    EventThreshold{"connections", "per second", 0xffffffff,
                   NumberSetting{"threshold.connections", 5000}},
};

}  // namespace TarnLab

#endif
