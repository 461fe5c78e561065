#pragma once

/// Records of the load balancer's services, as the flat functions take them. Integers in host
/// order. Clear a record (`FWLBStat_ record{}`) before you fill it.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// Services that a `FWLBConfigSize_` has room for, and pools that a `FWLBStat_` has.
inline constexpr unsigned int kLBServices = 1000;
inline constexpr unsigned int kLBPools = 1000;

/// How much one service of the load balancer holds.
struct FWLBServiceSize_ {
  host32 virtualServers;  // +0
  host32 pools;           // +4
  host32 poolMembers;     // +8
};
static_assert(sizeof(FWLBServiceSize_) == 12 && alignof(FWLBServiceSize_) == 1);
static_assert(offsetof(FWLBServiceSize_, virtualServers) == 0 &&
              offsetof(FWLBServiceSize_, pools) == 4 &&
              offsetof(FWLBServiceSize_, poolMembers) == 8);

/// Which services are asked for, and how much they hold.
struct FWLBConfigSize_ {
  host32 activeCount;                      //  +0  active services
  host32 staleCount;                       //  +4  stale services
  host32 id;                               //  +8  request: service id
  char uuid[64];                           // +12  request: text, service uuid
  std::uint8_t flags;                      // +76  request: kLB...
  FWLBServiceSize_ services[kLBServices];  // +77  first the active ones
};
static_assert(sizeof(FWLBConfigSize_) == 12077 && alignof(FWLBConfigSize_) == 1);
static_assert(offsetof(FWLBConfigSize_, activeCount) == 0 &&
              offsetof(FWLBConfigSize_, staleCount) == 4 && offsetof(FWLBConfigSize_, id) == 8 &&
              offsetof(FWLBConfigSize_, uuid) == 12 && offsetof(FWLBConfigSize_, flags) == 76 &&
              offsetof(FWLBConfigSize_, services) == 77);

/// Values of `FWLBConfigSize_::flags`.
inline constexpr std::uint8_t kLBActive = 0x01;  // active services only
inline constexpr std::uint8_t kLBAll = 0x02;     // active and stale ones
inline constexpr std::uint8_t kLBDebug = 0x04;   // more detail
inline constexpr std::uint8_t kLBByUuid = 0x08;
inline constexpr std::uint8_t kLBById = 0x10;

/// Head of a service's block in what command 86 sends and receives.
struct FWLBServiceHead_ {
  std::uint8_t reserved1[68];  //  +0
  host32 virtualServers;       // +68  90 bytes each
  host32 pools;                // +72  24 bytes each
  host32 poolMembers;          // +76  74 bytes each
  std::uint8_t reserved2[5];   // +80
};
static_assert(sizeof(FWLBServiceHead_) == 85 && alignof(FWLBServiceHead_) == 1);
static_assert(offsetof(FWLBServiceHead_, reserved1) == 0 &&
              offsetof(FWLBServiceHead_, virtualServers) == 68 &&
              offsetof(FWLBServiceHead_, pools) == 72 &&
              offsetof(FWLBServiceHead_, poolMembers) == 76 &&
              offsetof(FWLBServiceHead_, reserved2) == 80);

/// Whose statistics are asked for, and how many there are.
struct FWLBStat_ {
  host32 size;                    //   +0  4141 in the request that clears
  host32 virtualServers;          //   +4  reply
  host32 pools;                   //   +8  reply
  char lbsUuid[64];               //  +12  request: text, service uuid
  char uuid[64];                  //  +76  request: text, uuid of a virtual server or pool
  std::uint8_t flags;             // +140
  host32 memberCounts[kLBPools];  // +141  reply: one a pool
};
static_assert(sizeof(FWLBStat_) == 4141 && alignof(FWLBStat_) == 1);
static_assert(offsetof(FWLBStat_, size) == 0 && offsetof(FWLBStat_, virtualServers) == 4 &&
              offsetof(FWLBStat_, pools) == 8 && offsetof(FWLBStat_, lbsUuid) == 12 &&
              offsetof(FWLBStat_, uuid) == 76 && offsetof(FWLBStat_, flags) == 140 &&
              offsetof(FWLBStat_, memberCounts) == 141);

/// Values of `FWLBStat_::flags`.
inline constexpr std::uint8_t kLBStatByLbs = 0x01;   // a service uuid is given
inline constexpr std::uint8_t kLBStatByUuid = 0x02;  // a second uuid is given
inline constexpr std::uint8_t kLBStatVirtualServers = 0x04;
inline constexpr std::uint8_t kLBStatPools = 0x08;
inline constexpr std::uint8_t kLBStatDebug = 0x10;    // more detail
inline constexpr std::uint8_t kLBStatReset = 0x20;    // zero them
inline constexpr std::uint8_t kLBStatNoLbs = 0x40;    // reply: there is no such service
inline constexpr std::uint8_t kLBStatNoEntry = 0x80;  // reply: no such virtual server or pool

/// Bytes of the blocks that follow in the reply of command 88. What they hold is the kernel's.
inline constexpr std::size_t kLBVirtualServerStat = 200;
inline constexpr std::size_t kLBPoolStat = 49;
inline constexpr std::size_t kLBMemberStat = 183;

}  // namespace TarnFirewall
