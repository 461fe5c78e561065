#pragma once

/// Records of the direct requests about addresses that the data path has discovered. Integers in
/// host order. Clear a record before you fill it.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

/// Requests of the firewall device that take a `FWIpDiscovery_`.
enum FWDiscoveryRequest : std::uint32_t {
  FW_REQUEST_DISCOVERED_IPS = 31,
  FW_REQUEST_SET_DISCOVERY = 32,
  FW_REQUEST_CLEAR_DISCOVERED_IPS = 34,
};

/// Values of `FWIpDiscovery_::operation`.
enum FWDiscoveryOperation : std::uint8_t {
  FW_DISCOVERY_ENTRIES = 2,
  FW_DISCOVERY_ENTRIES_AND_STATS = 3,
  FW_DISCOVERY_COUNTS = 4,
  FW_DISCOVERY_SET = 5,
  FW_DISCOVERY_CLEAR = 34,
};

/// Bits of `FWIpDiscovery_::features`.
enum FWDiscoveryFeature : std::uint32_t {
  FW_DISCOVERY_DHCP = 1,
  FW_DISCOVERY_ARP = 2,
  FW_DISCOVERY_DHCPV6 = 4,
  FW_DISCOVERY_ND = 8,
};

/// Body of the discovery requests. A read names a buffer; a setting and a reply with statistics
/// have the limits.
struct FWIpDiscovery_ {
  char name[100];                      //   +0  filter name, at most 99 characters
  std::uint8_t operation;              // +100
  TarnFirewall::host32 ipv4Count;      // +101  reply: entries of IPv4
  TarnFirewall::host32 ipv6Count;      // +105  reply: entries of IPv6
  TarnFirewall::host32 features;       // +109
  TarnFirewall::host64 adds;           // +113  reply
  TarnFirewall::host64 deletes;        // +121  reply
  TarnFirewall::host64 lastUpdated;    // +129  reply
  TarnFirewall::host32 bufferLength;   // +137  bytes of the buffer
  TarnFirewall::host64 buffer;         // +141  address of an array of entries
  TarnFirewall::host32 maxArpEntries;  // +149
  TarnFirewall::host32 otherEntries;   // +153  128 less the maximum, when it is set
  TarnFirewall::host32 arpTimeout;     // +157  seconds
};
static_assert(sizeof(FWIpDiscovery_) == 161 && alignof(FWIpDiscovery_) == 1);
static_assert(
    offsetof(FWIpDiscovery_, operation) == 100 && offsetof(FWIpDiscovery_, ipv4Count) == 101 &&
    offsetof(FWIpDiscovery_, ipv6Count) == 105 && offsetof(FWIpDiscovery_, features) == 109 &&
    offsetof(FWIpDiscovery_, adds) == 113 && offsetof(FWIpDiscovery_, deletes) == 121 &&
    offsetof(FWIpDiscovery_, lastUpdated) == 129 && offsetof(FWIpDiscovery_, bufferLength) == 137 &&
    offsetof(FWIpDiscovery_, buffer) == 141 && offsetof(FWIpDiscovery_, maxArpEntries) == 149 &&
    offsetof(FWIpDiscovery_, otherEntries) == 153 && offsetof(FWIpDiscovery_, arpTimeout) == 157);

/// Entries that a filter holds at most.
inline constexpr std::uint32_t kMaxDiscoveredIps = 128;

/// One discovered address.
struct FWIpDiscoveryEntry_ {
  TarnFirewall::host16 vlan;  //  +0
  std::uint8_t mac[6];        //  +2
  std::uint8_t isIpv4;        //  +8  not 0 for IPv4
  std::uint8_t address[16];   //  +9  an IPv4 address takes the first 4 bytes
  std::uint8_t source;        // +25  1 DHCP, 2 ARP, 3 DHCPv6, 4 ND
};
static_assert(sizeof(FWIpDiscoveryEntry_) == 26 && alignof(FWIpDiscoveryEntry_) == 1);
static_assert(offsetof(FWIpDiscoveryEntry_, vlan) == 0 && offsetof(FWIpDiscoveryEntry_, mac) == 2 &&
              offsetof(FWIpDiscoveryEntry_, isIpv4) == 8 &&
              offsetof(FWIpDiscoveryEntry_, address) == 9 &&
              offsetof(FWIpDiscoveryEntry_, source) == 25);
