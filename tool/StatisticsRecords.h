#pragma once

/// Records of the direct requests about the statistics of a filter and the round trips of a flow.
/// Integers in host order. Clear a record before you fill it.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

/// Requests of the firewall device: one takes a `FWFilterName_`, the other a `FWRtt_`.
enum FWStatisticsRequest : std::uint32_t {
  FW_REQUEST_CLEAR_STATISTICS = 35,
  FW_REQUEST_ROUND_TRIP = 42,
};

/// Names a filter.
struct FWFilterName_ {
  char name[100];  // +0  text
};
static_assert(sizeof(FWFilterName_) == 100 && alignof(FWFilterName_) == 1);

/// Round trips of one flow. Out is from the machine to its switch. Ticks are cycles of the
/// processor.
struct FWRtt_ {
  char name[100];                             //   +0  text, a filter's name
  TarnFirewall::host64 flowId;                // +100  request
  TarnFirewall::host32 version;               // +108  reply: 1 when the flow was found
  TarnFirewall::host32 size;                  // +112  request: 220
  std::uint8_t reserved[4];                   // +116  zero
  TarnFirewall::host32 reset;                 // +120  request: not 0 starts the averages again
  TarnFirewall::host32 outSequence;           // +124
  TarnFirewall::host32 inSequence;            // +128
  TarnFirewall::host64 outTicks;              // +132
  TarnFirewall::host64 inTicks;               // +140
  TarnFirewall::host64 outWindowTicks;        // +148
  TarnFirewall::host64 inWindowTicks;         // +156
  TarnFirewall::host32 outWindowSamples;      // +164
  TarnFirewall::host32 inWindowSamples;       // +168
  TarnFirewall::host64 outAverageTicks;       // +172  of all windows
  TarnFirewall::host64 inAverageTicks;        // +180
  TarnFirewall::host64 cyclesPerMicrosecond;  // +188
  TarnFirewall::host32 roundTripTime;         // +196
  TarnFirewall::host32 windowSamples;         // +200
  TarnFirewall::host32 windowWeight;          // +204
  TarnFirewall::host32 accumulatedWeight;     // +208
  TarnFirewall::host32 bufferEntries;         // +212
  TarnFirewall::host32 length;                // +216
};
static_assert(sizeof(FWRtt_) == 220 && alignof(FWRtt_) == 1);
static_assert(offsetof(FWRtt_, flowId) == 100 && offsetof(FWRtt_, version) == 108 &&
              offsetof(FWRtt_, size) == 112 && offsetof(FWRtt_, reserved) == 116 &&
              offsetof(FWRtt_, reset) == 120 && offsetof(FWRtt_, outSequence) == 124 &&
              offsetof(FWRtt_, inSequence) == 128 && offsetof(FWRtt_, outTicks) == 132 &&
              offsetof(FWRtt_, inTicks) == 140 && offsetof(FWRtt_, outWindowTicks) == 148 &&
              offsetof(FWRtt_, inWindowTicks) == 156 && offsetof(FWRtt_, outWindowSamples) == 164 &&
              offsetof(FWRtt_, inWindowSamples) == 168 &&
              offsetof(FWRtt_, outAverageTicks) == 172 && offsetof(FWRtt_, inAverageTicks) == 180 &&
              offsetof(FWRtt_, cyclesPerMicrosecond) == 188 &&
              offsetof(FWRtt_, roundTripTime) == 196 && offsetof(FWRtt_, windowSamples) == 200 &&
              offsetof(FWRtt_, windowWeight) == 204 && offsetof(FWRtt_, accumulatedWeight) == 208 &&
              offsetof(FWRtt_, bufferEntries) == 212 && offsetof(FWRtt_, length) == 216);
