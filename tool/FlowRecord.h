#pragma once

/// Flows and connections as text.

#include <cstddef>
#include <span>

/// What of a record prints besides its line.
struct FlowView {
  bool times = false;       // when it began and ended
  bool attributes = false;  // those that follow it
};

/// Prints one `FWFlowRecord_` with its attributes as one line. `record` is the record's whole
/// length, at least 251 bytes; attributes that go past its end are left out, with a line in the
/// log. Without a record it prints "!!!Empty!!!".
void PrintRecord(std::span<const std::byte> record, const FlowView& view);
