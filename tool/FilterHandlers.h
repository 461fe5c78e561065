#pragma once

/// Listing of filters, shared by `getfilters` and the commands that work on all filters.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "TarnFWFilter.h"

using FilterBuffer = std::unique_ptr<std::byte[], TarnFirewall::FreeMemory>;

/// Asks the kernel for the filters of an agent, or of every agent for null. With `countOnly` the
/// count is printed and nothing else is given back. `oldRecord` selects records of the older kernel
/// interface. Count and size are the reply's, cut to what the buffer holds. Returns 0; or 1 after
/// an error line.
///
/// Only the status in the frame decides: when the device call itself fails, which is logged, the
/// status stays 0 and no filter is found.
int GetFilterList(bool oldRecord, bool countOnly, const char* agent, std::uint32_t* count,
                  FilterBuffer* buffer, std::uint32_t* bufferSize);

/// How `PrintFilter` shows a filter.
struct FilterView {
  bool withStats = false;
  bool distribution = false;  // one line per filter that has a slow path
  bool slowPathOnly = false;  // only filters of `slowPathId`
  std::int32_t slowPathId = 0;
  bool header = false;   // a header line first
  bool vifOnly = false;  // nothing, not even the header, for a filter without a VIF ID
};

void PrintFilter(const TarnFirewall::FWFilterRecord_& record, const FilterView& view);
