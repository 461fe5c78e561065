#pragma once

/// Records of the direct requests that list filters, and the query that lists them on a descriptor.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// Requests of the firewall device that take a `FWFilterList_`.
enum FWFilterRequest : std::uint32_t {
  FW_REQUEST_FILTER_COUNT = 20,
  FW_REQUEST_FILTER_LIST = 21,
  FW_REQUEST_ONE_FILTER = 40,
};

/// The request with a `FWAddRemoveFilter_`. Its number lies outside those that kernels have given
/// out: one that does not know the request refuses it.
inline constexpr std::uint32_t FW_REQUEST_ADD_REMOVE_FILTER = 1000;

/// Body of the filter requests.
struct FWFilterList_ {
  char name[100];       //   +0  agent to select, all zero for every agent
  host32 count;         // +100  reply: filters known to the kernel, or filters returned
  host32 bufferLength;  // +104  bytes of the buffer; reply: bytes filled
  host64 buffer;        // +108  address of an array of filter records
};
static_assert(sizeof(FWFilterList_) == 116 && alignof(FWFilterList_) == 1);
static_assert(offsetof(FWFilterList_, count) == 100 &&
              offsetof(FWFilterList_, bufferLength) == 104 &&
              offsetof(FWFilterList_, buffer) == 108);

/// One filter, as the kernel reports it. Texts are NUL-padded and may fill their fields.
struct FWFilterRecord_ {
  char name[204];              //   +0  at most 99 characters are used
  char agent[100];             // +204
  char vmUuid[128];            // +304  gfy form
  host32 vnicIndex;            // +432
  host32 flowFlags;            // +436  FWFlowFlag: which flow collection is switched off
  std::uint8_t reserved[8];    // +440  not read
  host64 counters[32];         // +448  FWFilterCounter
  hosti32 connectionRates[6];  // +704
  char serviceProfile[32];     // +728  empty when there is none
  host16 hash;                 // +760
  hosti32 slowPathId;          // +762  0 when the filter has no slow path
  host32 ruleConfig;           // +766  non-zero when a rule set is configured
  char vifId[48];              // +770
  char lspId[48];              // +818
};
static_assert(sizeof(FWFilterRecord_) == 866 && alignof(FWFilterRecord_) == 1);
static_assert(
    offsetof(FWFilterRecord_, agent) == 204 && offsetof(FWFilterRecord_, vmUuid) == 304 &&
    offsetof(FWFilterRecord_, vnicIndex) == 432 && offsetof(FWFilterRecord_, flowFlags) == 436 &&
    offsetof(FWFilterRecord_, reserved) == 440 && offsetof(FWFilterRecord_, counters) == 448 &&
    offsetof(FWFilterRecord_, connectionRates) == 704 &&
    offsetof(FWFilterRecord_, serviceProfile) == 728 && offsetof(FWFilterRecord_, hash) == 760 &&
    offsetof(FWFilterRecord_, slowPathId) == 762 && offsetof(FWFilterRecord_, ruleConfig) == 766 &&
    offsetof(FWFilterRecord_, vifId) == 770 && offsetof(FWFilterRecord_, lspId) == 818);

/// The same from the older kernel interface, which differs after the agent.
struct FWOldFilterRecord_ {
  char name[204];              //   +0
  char agent[100];             // +204
  std::uint8_t reserved[430];  // +304  not read
};
static_assert(sizeof(FWOldFilterRecord_) == 734 && alignof(FWOldFilterRecord_) == 1);
static_assert(offsetof(FWOldFilterRecord_, agent) == 204);

/// Memory from `calloc`: the array may be large and is mostly written by the kernel.
struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};
using FilterRecords = std::unique_ptr<FWFilterRecord_[], FreeMemory>;

}  // namespace TarnFirewall

/// Lists the filters of an agent (null: of every agent) by two direct requests on the descriptor of
/// the firewall device, for callers that do not use the library's device object. Null with `*count`
/// 0 on failure, which is logged. `*count` is never more than the array holds.
TarnFirewall::FilterRecords GetFilterDetailList(int fd, const char* agent, std::uint32_t* count);
