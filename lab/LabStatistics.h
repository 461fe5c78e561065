// Counters that were cleared, which more than one family has to know.
#ifndef TARNLAB_STATISTICS_H
#define TARNLAB_STATISTICS_H

#include "LabSettings.h"

namespace TarnLab {

/// What was counted on a filter's interface, and everything that was counted for the filter, the
/// interface included. No packets flow, so what was cleared stays 0.
inline constexpr FlagSetting interfaceCleared{"kif.cleared",
                                              "counters of the interface were cleared"};
inline constexpr FlagSetting filterCleared{"filter.cleared", "statistics were cleared"};

}  // namespace TarnLab

#endif
