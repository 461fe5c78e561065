#pragma once

/// Records that the flat functions copy out of the kernel's replies, or hand in; that of a rule has
/// a header of its own. Integers in host order; names are NUL-padded and may fill their field.
/// Clear a record (`FWAddress_ record{}`) before you fill it.

#include <cstddef>
#include <cstdint>

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Type codes of addresses: `getType()` of an address and `FWAddress_::type` share them. Other
/// objects continue the same number space.
enum FWAddressType_t : int {
  FW_ADDRESS_ANY = 0,
  FW_ADDRESS_IPV4 = 1,
  FW_ADDRESS_IPV6 = 2,
  FW_ADDRESS_IPV4_RANGE = 3,
  FW_ADDRESS_IPV6_RANGE = 4,
  FW_ADDRESS_IPV4_CIDR = 5,
  FW_ADDRESS_IPV6_CIDR = 6,
  FW_ADDRESS_ETHER = 7,
  FW_ADDRESS_ETHER_RANGE = 8,
  FW_ADDRESS_ETHER_MASK = 9,
  FW_ADDRESS_VNIC = 10,  // has a word in traces and no class
  FW_ADDRESS_ADDRSET = 11,
  FW_ADDRESS_ATTR_INT = 12,
  FW_ADDRESS_ATTR_UINT = 13,
  FW_ADDRESS_ATTR_STRING = 14,
  FW_ADDRESS_ATTR_SID = 15,
  FW_ADDRESS_IP_LIST = 16,   // of objects only, never on the wire
  FW_ADDRESS_MAC_LIST = 17,  // of objects only, never on the wire
  FW_ADDRESS_SID_LIST = 18,  // on the wire it is read as an attribute of sid value
  FW_ADDRESS_LIST = 132,
};

/// Record of one address, as the kernel lays it out. The two header fields are in host order,
/// address bytes in network order. No writer of an address clears the record: what lies outside
/// the fields of its type stays as the buffer held it, so that whoever builds a message clears its
/// buffer first.
///
///     type     value area, offsets from the start of the record
///     0        none
///     1, 2     +4 address (4 or 16 bytes)
///     3        +4 first, +8 last
///     4        +4 first, +20 last
///     5        +4 address masked with the prefix's mask, +8 prefix length (1 byte)
///     6        +4 address masked, +20 prefix length
///     7        +4 MAC address (6 bytes)
///     8        +4 first, +10 last
///     9        +4 MAC address, +10 mask
///     11       +4 name (38 bytes, NUL-terminated)
///     12, 13   +4 key, +8 value type, +12 reserved, +16 value (8 bytes)
///     14       +4 key, +8 value type, +12 string value record (132 bytes)
///     15       +4 key, +8 value type, +12 sid value record (76 bytes)
struct FWAddress_ {
  host16 type;              //  +0  address type code
  std::uint8_t flags;       //  +2  bit 0 negated; bits 1 to 7 stay as they stand
  std::uint8_t reserved;    //  +3
  std::uint8_t value[140];  //  +4  by type
};
static_assert(sizeof(FWAddress_) == 144 && alignof(FWAddress_) == 1);
static_assert(offsetof(FWAddress_, type) == 0 && offsetof(FWAddress_, flags) == 2 &&
              offsetof(FWAddress_, reserved) == 3 && offsetof(FWAddress_, value) == 4);

inline constexpr std::uint8_t kAddressNegated = 0x01;

/// Statistics of one rule.
struct FWRuleStat_ {
  host32 id;                 //  +0  rule id
  std::uint8_t reserved[4];  //  +4
  host64 evaluations;        //  +8
  host64 hits;               // +16
  host64 sessions;           // +24
  host64 packetsIn;          // +32
  host64 packetsOut;         // +40
  host64 bytesIn;            // +48
  host64 bytesOut;           // +56
};
static_assert(sizeof(FWRuleStat_) == 64 && alignof(FWRuleStat_) == 1);
static_assert(offsetof(FWRuleStat_, evaluations) == 8 && offsetof(FWRuleStat_, hits) == 16 &&
              offsetof(FWRuleStat_, sessions) == 24 && offsetof(FWRuleStat_, packetsIn) == 32 &&
              offsetof(FWRuleStat_, packetsOut) == 40 && offsetof(FWRuleStat_, bytesIn) == 48 &&
              offsetof(FWRuleStat_, bytesOut) == 56);

/// State of one load-balancing rule.
struct FWDlbRule_ {
  host32 flows;               //  +0  flows at present
  host32 currentTime;         //  +4  seconds
  host32 lastUse;             //  +8  seconds
  host32 persistTimeout;      // +12  minutes
  std::uint8_t address[144];  // +16  the persisted address, an `FWAddress_`
};
static_assert(sizeof(FWDlbRule_) == 160 && alignof(FWDlbRule_) == 1);
static_assert(offsetof(FWDlbRule_, currentTime) == 4 && offsetof(FWDlbRule_, lastUse) == 8 &&
              offsetof(FWDlbRule_, persistTimeout) == 12 && offsetof(FWDlbRule_, address) == 16);

/// Statistics of one address set or container.
struct FWAddrSetStat_ {
  FWAddrSetID_t name;       //   +0
  host64 packetsOutPass;    //  +38
  host64 packetsOutDrop;    //  +46
  host64 packetsInPass;     //  +54
  host64 packetsInDrop;     //  +62
  host64 bytesOutPass;      //  +70
  host64 bytesOutDrop;      //  +78
  host64 bytesInPass;       //  +86
  host64 bytesInDrop;       //  +94
  host64 match;             // +102
  host64 noMatch;           // +110
  host64 uptime;            // +118
  host32 anchorReferences;  // +126
};
static_assert(sizeof(FWAddrSetStat_) == 130 && alignof(FWAddrSetStat_) == 1);
static_assert(offsetof(FWAddrSetStat_, packetsOutPass) == 38 &&
              offsetof(FWAddrSetStat_, packetsOutDrop) == 46 &&
              offsetof(FWAddrSetStat_, packetsInPass) == 54 &&
              offsetof(FWAddrSetStat_, packetsInDrop) == 62 &&
              offsetof(FWAddrSetStat_, bytesOutPass) == 70 &&
              offsetof(FWAddrSetStat_, bytesOutDrop) == 78 &&
              offsetof(FWAddrSetStat_, bytesInPass) == 86 &&
              offsetof(FWAddrSetStat_, bytesInDrop) == 94 &&
              offsetof(FWAddrSetStat_, match) == 102 && offsetof(FWAddrSetStat_, noMatch) == 110 &&
              offsetof(FWAddrSetStat_, uptime) == 118 &&
              offsetof(FWAddrSetStat_, anchorReferences) == 126);

/// Statistics of one address of a set.
struct FWAddressStat_ {
  host64 packetsInDrop;   //  +0
  host64 packetsInPass;   //  +8
  host64 packetsOutDrop;  // +16
  host64 packetsOutPass;  // +24
  host64 bytesInDrop;     // +32
  host64 bytesInPass;     // +40
  host64 bytesOutDrop;    // +48
  host64 bytesOutPass;    // +56
  hosti32 connections;    // +64  TCP connections at present
  hosti32 highWater;      // +68  most TCP connections at a time
  host64 uptime;          // +72
};
static_assert(sizeof(FWAddressStat_) == 80 && alignof(FWAddressStat_) == 1);
static_assert(offsetof(FWAddressStat_, packetsInPass) == 8 &&
              offsetof(FWAddressStat_, packetsOutDrop) == 16 &&
              offsetof(FWAddressStat_, packetsOutPass) == 24 &&
              offsetof(FWAddressStat_, bytesInDrop) == 32 &&
              offsetof(FWAddressStat_, bytesInPass) == 40 &&
              offsetof(FWAddressStat_, bytesOutDrop) == 48 &&
              offsetof(FWAddressStat_, bytesOutPass) == 56 &&
              offsetof(FWAddressStat_, connections) == 64 &&
              offsetof(FWAddressStat_, highWater) == 68 && offsetof(FWAddressStat_, uptime) == 72);

/// An address of a set with its validity count.
struct FWAddressValid_ {
  std::uint8_t address[144];  //   +0  an `FWAddress_`
  std::uint8_t validCount;    // +144
};
static_assert(sizeof(FWAddressValid_) == 145 && alignof(FWAddressValid_) == 1);
static_assert(offsetof(FWAddressValid_, validCount) == 144);

/// What an address set's configuration is asked to do. Not a record of the kernel: the command
/// writes the fields in another order.
struct FWAddrSetCfg_ {
  FWAddrSetID_t name;        //  +0  empty for the filter as a whole
  std::uint8_t reserved[2];  // +38
  host32 operation;          // +40  `FWAddrSetOperation_t`
  host32 component;          // +44
  std::uint8_t address[16];  // +48
  host32 first;              // +64  the old value when the kernel has answered
  host32 second;             // +68  the new value when the kernel has answered
};
static_assert(sizeof(FWAddrSetCfg_) == 72 && alignof(FWAddrSetCfg_) == 1);
static_assert(offsetof(FWAddrSetCfg_, operation) == 40 &&
              offsetof(FWAddrSetCfg_, component) == 44 && offsetof(FWAddrSetCfg_, address) == 48 &&
              offsetof(FWAddrSetCfg_, first) == 64 && offsetof(FWAddrSetCfg_, second) == 68);

/// Values of `FWAddrSetCfg_::operation`.
enum FWAddrSetOperation_t : std::uint32_t {
  FW_ADDRSET_ENABLE_STATS = 1,
  FW_ADDRSET_DISABLE_STATS = 2,
  FW_ADDRSET_UNSET_STATS = 3,
  FW_ADDRSET_DISPLAY = 4,
  FW_ADDRSET_SET_VALID = 5,
  FW_ADDRSET_CLEAR_VALID = 6,
};

}  // namespace TarnFirewall
