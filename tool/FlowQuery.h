#pragma once

/// Records of the direct request that reads the flows of a filter.

#include <cstddef>
#include <cstdint>

#include "TarnFWTypes.h"
#include "TarnFWWire.h"

/// Requests of the firewall device that take a `FWFlowQuery_`.
enum FWFlowRequest : std::uint32_t { FW_REQUEST_FLOWS = 22 };

/// Values of `FWFlowQuery_::operation`.
enum FWFlowOperation : std::uint8_t {
  FW_FLOWS_COUNT = 1,
  FW_FLOWS_READ = 2,
};

/// What there is of one kind of flows.
struct FWFlowCounts_ {
  TarnFirewall::host32 records;          //  +0
  TarnFirewall::host32 attributes;       //  +4  of all records
  TarnFirewall::host32 attributeLength;  //  +8  bytes of all attributes
  TarnFirewall::host32 length;           // +12  bytes of the records and their attributes
};
static_assert(sizeof(FWFlowCounts_) == 16 && alignof(FWFlowCounts_) == 1);
static_assert(offsetof(FWFlowCounts_, records) == 0 && offsetof(FWFlowCounts_, attributes) == 4 &&
              offsetof(FWFlowCounts_, attributeLength) == 8 &&
              offsetof(FWFlowCounts_, length) == 12);

/// Asks for the counts, or for the records as well. In the buffer 32 bytes come first that are not
/// read, then each `FWFlowRecord_` with its attributes.
struct FWFlowQuery_ {
  char agent[100];                    //   +0
  TarnFirewall::dvs_port_ selector;   // +100  without an agent
  std::uint8_t operation;             // +200  FWFlowOperation
  std::uint8_t flush;                 // +201  not 0: the flows are flushed after reading
  std::uint8_t resetRtt;              // +202  not 0: the averages of round-trip times start again
  std::uint8_t withAttributes;        // +203  not 0: the records have attributes
  TarnFirewall::host32 bufferLength;  // +204
  TarnFirewall::host64 buffer;        // +208  address
  FWFlowCounts_ active;               // +216
  FWFlowCounts_ inactive;             // +232
  FWFlowCounts_ drop;                 // +248
};
static_assert(sizeof(FWFlowQuery_) == 264 && alignof(FWFlowQuery_) == 1);
static_assert(offsetof(FWFlowQuery_, agent) == 0 && offsetof(FWFlowQuery_, selector) == 100 &&
              offsetof(FWFlowQuery_, operation) == 200 && offsetof(FWFlowQuery_, flush) == 201 &&
              offsetof(FWFlowQuery_, resetRtt) == 202 &&
              offsetof(FWFlowQuery_, withAttributes) == 203 &&
              offsetof(FWFlowQuery_, bufferLength) == 204 &&
              offsetof(FWFlowQuery_, buffer) == 208 && offsetof(FWFlowQuery_, active) == 216 &&
              offsetof(FWFlowQuery_, inactive) == 232 && offsetof(FWFlowQuery_, drop) == 248);

/// Bytes in front of the first record.
inline constexpr std::uint32_t kFlowBufferHead = 32;
