#pragma once

/// Records of the direct requests about flow exclusion: what is collected, and definitions of flows
/// that are not. Integers in host order unless their type says otherwise. Clear a record before you
/// fill it.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

/// Requests of the firewall device that take a `FWFlowExclusionQuery_`.
enum FWFlowExclusionRequest : std::uint32_t {
  FW_REQUEST_SET_FLOW_EXCLUSION = 25,
  FW_REQUEST_GET_FLOW_EXCLUSION = 26,
};

/// Bits of `FWFlowExclusionQuery_::flags`: what is not collected on the host, and masks of what is
/// aggregated, which share bits.
enum FWFlowExclusionFlag : std::uint32_t {
  FW_NO_FLOWS = 0x1,
  FW_NO_NON_IP_L2_FLOWS = 0x2,
  FW_NO_L2_FLOWS = 0x4,
  FW_NO_DROP_FLOWS = 0x8,
  FW_AGGREGATE_SOURCE_ADDRESS = 0x8003c500,
  FW_AGGREGATE_DESTINATION_ADDRESS = 0x8003c600,
  FW_AGGREGATE_PROTOCOL = 0x8003cc00,
  FW_AGGREGATE_SOURCE_PORT = 0x8003d400,
  FW_AGGREGATE_DESTINATION_PORT = 0x8003e400,
};

/// Bits of `FWFlowExclusion_::fields` and, but for those of ranges and IPv6, of `negated`.
enum FWFlowExclusionField : std::uint32_t {
  FW_EXCLUSION_SOURCE_MAC = 0x1,
  FW_EXCLUSION_DESTINATION_MAC = 0x2,
  FW_EXCLUSION_SOURCE_ADDRESS = 0x4,
  FW_EXCLUSION_SOURCE_IS_RANGE = 0x8,
  FW_EXCLUSION_DESTINATION_ADDRESS = 0x10,
  FW_EXCLUSION_DESTINATION_IS_RANGE = 0x20,
  FW_EXCLUSION_SOURCE_PORT = 0x40,
  FW_EXCLUSION_DESTINATION_PORT = 0x80,
  FW_EXCLUSION_ETHERTYPE = 0x100,
  FW_EXCLUSION_PROTOCOL = 0x200,
  FW_EXCLUSION_SOURCE_VNIC = 0x400,
  FW_EXCLUSION_DESTINATION_VNIC = 0x800,
  FW_EXCLUSION_SOURCE_VM = 0x1000,
  FW_EXCLUSION_DESTINATION_VM = 0x2000,
  FW_EXCLUSION_IPV6 = 0x80000000,  // of both addresses
};

/// Definitions that the kernel holds at most, for the host and for each filter.
inline constexpr std::uint32_t kMaxFlowExclusions = 1024;

/// Body of the requests. Without a name it is about the host.
struct FWFlowExclusionQuery_ {
  char name[100];               //   +0  filter name, at most 99 characters
  TarnFirewall::host32 flags;   // +100
  TarnFirewall::host32 length;  // +104  bytes of the records; when reading, of the room for them
  TarnFirewall::host64 buffer;  // +108  address of the records
};
static_assert(sizeof(FWFlowExclusionQuery_) == 116 && alignof(FWFlowExclusionQuery_) == 1);
static_assert(offsetof(FWFlowExclusionQuery_, flags) == 100 &&
              offsetof(FWFlowExclusionQuery_, length) == 104 &&
              offsetof(FWFlowExclusionQuery_, buffer) == 108);

/// One definition. Flows that match all of its fields are not collected.
struct FWFlowExclusion_ {
  TarnFirewall::host32 fields;                //   +0  those that the definition names
  TarnFirewall::host32 negated;               //   +4  those of them that must not match
  std::uint8_t protocolCount;                 //   +8
  std::uint8_t ethertypeCount;                //   +9
  std::uint8_t protocols[8];                  //  +10
  TarnFirewall::net16 ethertypes[4];          //  +18
  std::uint8_t sourceMac[6];                  //  +26
  std::uint8_t sourceMacMask[6];              //  +32
  std::uint8_t destinationMac[6];             //  +38
  std::uint8_t destinationMacMask[6];         //  +44
  std::uint8_t sourceAddress[16];             //  +50  IPv4: the address, then its mask or the end
  std::uint8_t sourceAddressEnd[16];          //  +66  IPv6: the mask or the end of the range
  std::uint8_t destinationAddress[16];        //  +82
  std::uint8_t destinationAddressEnd[16];     //  +98
  TarnFirewall::net16 sourcePort;             // +114
  TarnFirewall::net16 sourcePortEnd;          // +116  0 for one port
  TarnFirewall::net16 destinationPort;        // +118
  TarnFirewall::net16 destinationPortEnd;     // +120
  std::uint8_t sourceVnic[16];                // +122  identifier of the machine
  TarnFirewall::host32 sourceVnicIndex;       // +138
  std::uint8_t destinationVnic[16];           // +142
  TarnFirewall::host32 destinationVnicIndex;  // +158
};
static_assert(sizeof(FWFlowExclusion_) == 162 && alignof(FWFlowExclusion_) == 1);
static_assert(offsetof(FWFlowExclusion_, negated) == 4 &&
              offsetof(FWFlowExclusion_, protocolCount) == 8 &&
              offsetof(FWFlowExclusion_, ethertypeCount) == 9 &&
              offsetof(FWFlowExclusion_, protocols) == 10 &&
              offsetof(FWFlowExclusion_, ethertypes) == 18 &&
              offsetof(FWFlowExclusion_, sourceMac) == 26 &&
              offsetof(FWFlowExclusion_, sourceMacMask) == 32 &&
              offsetof(FWFlowExclusion_, destinationMac) == 38 &&
              offsetof(FWFlowExclusion_, destinationMacMask) == 44 &&
              offsetof(FWFlowExclusion_, sourceAddress) == 50 &&
              offsetof(FWFlowExclusion_, sourceAddressEnd) == 66 &&
              offsetof(FWFlowExclusion_, destinationAddress) == 82 &&
              offsetof(FWFlowExclusion_, destinationAddressEnd) == 98 &&
              offsetof(FWFlowExclusion_, sourcePort) == 114 &&
              offsetof(FWFlowExclusion_, sourcePortEnd) == 116 &&
              offsetof(FWFlowExclusion_, destinationPort) == 118 &&
              offsetof(FWFlowExclusion_, destinationPortEnd) == 120 &&
              offsetof(FWFlowExclusion_, sourceVnic) == 122 &&
              offsetof(FWFlowExclusion_, sourceVnicIndex) == 138 &&
              offsetof(FWFlowExclusion_, destinationVnic) == 142 &&
              offsetof(FWFlowExclusion_, destinationVnicIndex) == 158);

/// Where a definition has the fields of one end of a flow.
struct FlowExclusionEnd {
  std::uint32_t macBit, addressBit, rangeBit, portBit, vnicBit, vmBit;
  std::uint8_t (FWFlowExclusion_::*mac)[6];
  std::uint8_t (FWFlowExclusion_::*macMask)[6];
  std::uint8_t (FWFlowExclusion_::*address)[16];
  std::uint8_t (FWFlowExclusion_::*addressEnd)[16];
  TarnFirewall::net16 FWFlowExclusion_::*port;
  TarnFirewall::net16 FWFlowExclusion_::*portEnd;
  std::uint8_t (FWFlowExclusion_::*vnic)[16];
  TarnFirewall::host32 FWFlowExclusion_::*vnicIndex;
};

inline constexpr FlowExclusionEnd kExclusionSource{
    FW_EXCLUSION_SOURCE_MAC,          FW_EXCLUSION_SOURCE_ADDRESS,
    FW_EXCLUSION_SOURCE_IS_RANGE,     FW_EXCLUSION_SOURCE_PORT,
    FW_EXCLUSION_SOURCE_VNIC,         FW_EXCLUSION_SOURCE_VM,
    &FWFlowExclusion_::sourceMac,     &FWFlowExclusion_::sourceMacMask,
    &FWFlowExclusion_::sourceAddress, &FWFlowExclusion_::sourceAddressEnd,
    &FWFlowExclusion_::sourcePort,    &FWFlowExclusion_::sourcePortEnd,
    &FWFlowExclusion_::sourceVnic,    &FWFlowExclusion_::sourceVnicIndex,
};

inline constexpr FlowExclusionEnd kExclusionDestination{
    FW_EXCLUSION_DESTINATION_MAC,          FW_EXCLUSION_DESTINATION_ADDRESS,
    FW_EXCLUSION_DESTINATION_IS_RANGE,     FW_EXCLUSION_DESTINATION_PORT,
    FW_EXCLUSION_DESTINATION_VNIC,         FW_EXCLUSION_DESTINATION_VM,
    &FWFlowExclusion_::destinationMac,     &FWFlowExclusion_::destinationMacMask,
    &FWFlowExclusion_::destinationAddress, &FWFlowExclusion_::destinationAddressEnd,
    &FWFlowExclusion_::destinationPort,    &FWFlowExclusion_::destinationPortEnd,
    &FWFlowExclusion_::destinationVnic,    &FWFlowExclusion_::destinationVnicIndex,
};
