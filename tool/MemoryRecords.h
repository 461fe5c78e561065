#pragma once

/// Records of the direct request about the memory of the data path. Integers in host order.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

/// Request of the firewall device that takes a `FWMemInfo_`.
inline constexpr std::uint32_t FW_REQUEST_MEMORY = 37;

inline constexpr unsigned int kMemHeaps = 10;
inline constexpr unsigned int kMemZones = 32;

/// Objects of one size in a heap.
struct FWMemZone_ {
  std::uint8_t reserved[4];           //  +0  not read
  char name[32];                      //  +4
  TarnFirewall::host32 objectSize;    // +36  bytes
  std::uint8_t reservedToo[8];        // +40  not read
  TarnFirewall::host64 objectsInUse;  // +48
  TarnFirewall::host64 failures;      // +56
};
static_assert(sizeof(FWMemZone_) == 64 && alignof(FWMemZone_) == 1);
static_assert(offsetof(FWMemZone_, name) == 4 && offsetof(FWMemZone_, objectSize) == 36 &&
              offsetof(FWMemZone_, objectsInUse) == 48 && offsetof(FWMemZone_, failures) == 56);

/// One heap with its zones.
struct FWMemHeap_ {
  std::uint8_t reserved[8];              //   +0  not read
  char name[32];                         //   +8
  TarnFirewall::host32 maxMegabytes;     //  +40
  std::uint8_t reservedToo[4];           //  +44  not read
  TarnFirewall::host64 allocations;      //  +48
  TarnFirewall::host64 frees;            //  +56
  TarnFirewall::host64 memoryInUse;      //  +64  bytes, without the zones
  TarnFirewall::host64 memoryHighWater;  //  +72  bytes
  TarnFirewall::host64 objectHighWater;  //  +80
  TarnFirewall::host32 overhead;         //  +88  bytes an object
  std::uint8_t reservedThird[4];         //  +92  not read
  TarnFirewall::host32 zoneCount;        //  +96  in the request: zones that there is room for
  std::uint8_t reservedLast[4];          // +100  not read
  FWMemZone_ zones[kMemZones];           // +104
};
static_assert(sizeof(FWMemHeap_) == 2152 && alignof(FWMemHeap_) == 1);
static_assert(offsetof(FWMemHeap_, name) == 8 && offsetof(FWMemHeap_, maxMegabytes) == 40 &&
              offsetof(FWMemHeap_, allocations) == 48 && offsetof(FWMemHeap_, frees) == 56 &&
              offsetof(FWMemHeap_, memoryInUse) == 64 &&
              offsetof(FWMemHeap_, memoryHighWater) == 72 &&
              offsetof(FWMemHeap_, objectHighWater) == 80 && offsetof(FWMemHeap_, overhead) == 88 &&
              offsetof(FWMemHeap_, zoneCount) == 96 && offsetof(FWMemHeap_, zones) == 104);

/// All of them.
struct FWMemInfo_ {
  TarnFirewall::host32 version;    //  +0  1
  std::uint8_t reserved[4];        //  +4  zero
  TarnFirewall::host32 heapCount;  //  +8  in the request: heaps that there is room for
  std::uint8_t reservedToo[4];     // +12  zero
  FWMemHeap_ heaps[kMemHeaps];     // +16
};
static_assert(sizeof(FWMemInfo_) == 21536 && alignof(FWMemInfo_) == 1);
static_assert(offsetof(FWMemInfo_, version) == 0 && offsetof(FWMemInfo_, heapCount) == 8 &&
              offsetof(FWMemInfo_, heaps) == 16);
