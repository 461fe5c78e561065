#pragma once

/// Records of the settings of a filter, as the flat functions take them. Integers in host order.
/// Clear a record (`FWFloodStat_ record{}`) before you fill it.

#include <cstddef>
#include <cstdint>

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// The timeouts of a filter, in the order of their numbers.
struct FWInstTimeout_ {
  host32 values[22];         //   +0
  std::uint8_t marks[22];    //  +88  not 0 when the value is set, or wanted
  std::uint8_t reserved[2];  // +110
};
static_assert(sizeof(FWInstTimeout_) == 112 && alignof(FWInstTimeout_) == 1);
static_assert(offsetof(FWInstTimeout_, values) == 0 && offsetof(FWInstTimeout_, marks) == 88 &&
              offsetof(FWInstTimeout_, reserved) == 110);

/// Protection against floods, as it is set. -1 leaves a setting as it is.
struct FWFloodCfg_ {
  hosti32 udpLimit;      //  +0  active flows, 0 for no limit
  hosti32 icmpLimit;     //  +4  active flows, 0 for no limit
  hosti32 tcpLimit;      //  +8  half-open flows, 0 for no limit
  hosti32 otherLimit;    // +12  active flows, 0 for no limit
  hosti32 syncache;      // +16  0 off, 1 on
  hosti32 hashSize;      // +20  buckets of the syncache, a power of 2
  hosti32 reserved;      // +24  -1
  hosti32 rstSpoofing;   // +28  0 off, 1 on
  hosti32 zeroCounters;  // +32  0 or 1, never -1
};
static_assert(sizeof(FWFloodCfg_) == 36 && alignof(FWFloodCfg_) == 1);
static_assert(offsetof(FWFloodCfg_, udpLimit) == 0 && offsetof(FWFloodCfg_, icmpLimit) == 4 &&
              offsetof(FWFloodCfg_, tcpLimit) == 8 && offsetof(FWFloodCfg_, otherLimit) == 12 &&
              offsetof(FWFloodCfg_, syncache) == 16 && offsetof(FWFloodCfg_, hashSize) == 20 &&
              offsetof(FWFloodCfg_, reserved) == 24 && offsetof(FWFloodCfg_, rstSpoofing) == 28 &&
              offsetof(FWFloodCfg_, zeroCounters) == 32);

/// One bucket of the syncache.
struct FWFloodRow_ {
  host32 inUse;              //  +0
  std::uint8_t reserved[4];  //  +4
  host64 purged;             //  +8
  host64 notFound;           // +16
};
static_assert(sizeof(FWFloodRow_) == 24 && alignof(FWFloodRow_) == 1);
static_assert(offsetof(FWFloodRow_, inUse) == 0 && offsetof(FWFloodRow_, reserved) == 4 &&
              offsetof(FWFloodRow_, purged) == 8 && offsetof(FWFloodRow_, notFound) == 16);

/// Rows that a `FWFloodStat_` has room for.
inline constexpr unsigned int kFloodRows = 512;

/// State of the protection against floods. A request sets `zeroCounters`, `rowSize` and `rowCount`;
/// the kernel answers with the rest.
struct FWFloodStat_ {
  host32 zeroCounters;           //   +0  request: 1 zeroes the counters
  host32 udpLimit;               //   +4  0 for no limit
  host32 udpActive;              //   +8
  host32 icmpLimit;              //  +12  0 for no limit
  host32 icmpActive;             //  +16
  host32 tcpLimit;               //  +20  half-open flows, 0 for no limit
  host32 tcpActive;              //  +24
  host32 otherLimit;             //  +28  0 for no limit
  host32 otherActive;            //  +32
  host32 syncache;               //  +36  not 0: on
  host32 syncacheFirst;          //  +40  first dimension
  host32 syncacheSecond;         //  +44  second dimension
  std::uint8_t reserved1[4];     //  +48
  host32 rstSpoofing;            //  +52  not 0: on
  host32 syncacheInUse;          //  +56
  std::uint8_t reserved2[4];     //  +60
  host64 syncachePurged;         //  +64
  host64 syncacheNotFound;       //  +72
  host64 udpDenied;              //  +80
  host64 icmpDenied;             //  +88
  host64 tcpDenied;              //  +96
  host64 otherDenied;            // +104
  std::uint8_t reserved3[8];     // +112
  host64 rstSent;                // +120
  host32 rowSize;                // +128  request: 24 when rows are wanted
  host32 rowCount;               // +132  request: 512 when rows are wanted; reply: rows
  FWFloodRow_ rows[kFloodRows];  // +136
};
static_assert(sizeof(FWFloodStat_) == 12424 && alignof(FWFloodStat_) == 1);
static_assert(
    offsetof(FWFloodStat_, zeroCounters) == 0 && offsetof(FWFloodStat_, udpLimit) == 4 &&
    offsetof(FWFloodStat_, udpActive) == 8 && offsetof(FWFloodStat_, icmpLimit) == 12 &&
    offsetof(FWFloodStat_, icmpActive) == 16 && offsetof(FWFloodStat_, tcpLimit) == 20 &&
    offsetof(FWFloodStat_, tcpActive) == 24 && offsetof(FWFloodStat_, otherLimit) == 28 &&
    offsetof(FWFloodStat_, otherActive) == 32 && offsetof(FWFloodStat_, syncache) == 36 &&
    offsetof(FWFloodStat_, syncacheFirst) == 40 && offsetof(FWFloodStat_, syncacheSecond) == 44 &&
    offsetof(FWFloodStat_, reserved1) == 48 && offsetof(FWFloodStat_, rstSpoofing) == 52 &&
    offsetof(FWFloodStat_, syncacheInUse) == 56 && offsetof(FWFloodStat_, reserved2) == 60 &&
    offsetof(FWFloodStat_, syncachePurged) == 64 &&
    offsetof(FWFloodStat_, syncacheNotFound) == 72 && offsetof(FWFloodStat_, udpDenied) == 80 &&
    offsetof(FWFloodStat_, icmpDenied) == 88 && offsetof(FWFloodStat_, tcpDenied) == 96 &&
    offsetof(FWFloodStat_, otherDenied) == 104 && offsetof(FWFloodStat_, reserved3) == 112 &&
    offsetof(FWFloodStat_, rstSent) == 120 && offsetof(FWFloodStat_, rowSize) == 128 &&
    offsetof(FWFloodStat_, rowCount) == 132 && offsetof(FWFloodStat_, rows) == 136);

/// How long a filter keeps what it has learned from answers of name servers: the head of the
/// profile. Addresses of servers follow it in a request.
struct FWDnsConfigProfile_ {
  std::uint8_t reserved[4];     //  +0  zero
  std::uint8_t timeToLiveKind;  //  +4  `FWDnsTimeToLive_t`
  host32 timeToLive;            //  +5  seconds
  host32 addressCount;          //  +9
};
static_assert(sizeof(FWDnsConfigProfile_) == 13 && alignof(FWDnsConfigProfile_) == 1);
static_assert(offsetof(FWDnsConfigProfile_, timeToLiveKind) == 4 &&
              offsetof(FWDnsConfigProfile_, timeToLive) == 5 &&
              offsetof(FWDnsConfigProfile_, addressCount) == 9);

/// Values of `FWDnsConfigProfile_::timeToLiveKind`. With any other the seconds count.
enum FWDnsTimeToLive_t : std::uint8_t {
  FW_DNS_TTL_SECONDS = 0,
  FW_DNS_TTL_INFINITE = 1,
  FW_DNS_TTL_AUTOMATIC = 2,
};

}  // namespace TarnFirewall
