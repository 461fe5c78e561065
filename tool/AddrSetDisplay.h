#pragma once

/// Showing one address set or container, also for the commands that show the sets of a feature.

#include <string>

#include "tarnfw.h"

/// Types of sets, as `FW_GetAddrSetTypeAndSize` gives them.
inline constexpr unsigned int kAddrSetType = 1;
inline constexpr unsigned int kContainerType = 2;

/// What is shown with the members of a set.
struct MemberStatistics {
  bool wanted = false;  // statistics of each member
  bool header = false;  // the column header in front of them
  bool clear = false;   // the kernel sets them back after the reading
};

/// Shows the addresses of a set, with `prefix` in front of its name; nothing for a set of another
/// type. Returns 0; or 1 after an error line.
int GetSingleAddrSet(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                     const char* prefix, const MemberStatistics& statistics);

/// The same for the elements of a container.
int GetSingleContainer(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                       const char* prefix, const MemberStatistics& statistics);

/// Shows number of members, generation and time of a set. Returns 0; or 1 after an error line.
int GetSingleAddrSetInfo(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                         unsigned int type);

/// Type of a set, number of its members and its size. Returns 0; or 1 after an error line.
int GetContainerTypeAndSize(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                            unsigned int* type, unsigned int* count, unsigned int* size);

/// Shows the statistics of a set. Returns 0; or 1 for null.
int PrintSingleAddrSetStat(const FWAddrSetStat_* stat);
