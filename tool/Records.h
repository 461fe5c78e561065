#pragma once

/// Memory for what the kernel is asked to list.

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "TarnFWFilter.h"

template <typename Record>
using Records = std::unique_ptr<Record[], TarnFirewall::FreeMemory>;

/// Zeroed room for `count` records; null when there is no memory for so many, which a count from
/// the kernel may ask for.
template <typename Record>
Records<Record> makeRecords(std::size_t count) {
  return Records<Record>(static_cast<Record*>(std::calloc(count, sizeof(Record))));
}
