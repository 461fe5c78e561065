#pragma once

/// Records of the direct requests about service insertion: instances, profiles and GRE on the
/// firewall's device, and the tables of the data path on the insertion device. Integers in host
/// order; texts are NUL-padded and may fill their fields in a reply.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

/// Requests of the firewall device. Those that list profiles take a `FWFilterList_`.
enum FWInsertionRequest : std::uint32_t {
  FW_REQUEST_CREATE_INSTANCE = 1,
  FW_REQUEST_REPLACE_INSTANCE = 2,
  FW_REQUEST_DESTROY_INSTANCE = 3,
  FW_REQUEST_INSTANCE_COUNT = 4,
  FW_REQUEST_INSTANCES = 5,
  FW_REQUEST_CREATE_PROFILE = 8,
  FW_REQUEST_DESTROY_PROFILE = 10,
  FW_REQUEST_PROFILE_COUNT = 11,
  FW_REQUEST_PROFILES = 12,
  FW_REQUEST_ADD_GRE = 16,
};

/// Requests of the insertion device. The entries of a table come after a `SITableHead_`.
enum SIRequest : std::uint32_t {
  SI_REQUEST_PROXY_STATS = 11,
  SI_REQUEST_SERVICE_COUNT = 12,
  SI_REQUEST_SERVICES = 13,
  SI_REQUEST_NSH_COUNT = 14,
  SI_REQUEST_NSH = 15,
  SI_REQUEST_PROXY_COUNT = 16,
  SI_REQUEST_PROXIES = 17,
};

// --- The firewall device

/// Values of `FWServiceInstance_::protocol`: how traffic gets to the service.
enum FWTransportProtocol : std::uint32_t {
  FW_TRANSPORT_RIBS = 1,
  FW_TRANSPORT_PLANKIO = 2,
  FW_TRANSPORT_MACRED = 3,
  FW_TRANSPORT_GRE = 4,
  FW_TRANSPORT_NONE = 11,
};

/// A service and the way to it.
struct FWServiceInstance_ {
  char id[32];                             //   +0
  char name[64];                           //  +32
  TarnFirewall::host32 slot;               //  +96  0 to 15
  TarnFirewall::host32 deployType;         // +100  1 RIBS, 2 PLANKIO, 3 L2, 4 L3
  TarnFirewall::host32 references;         // +104  reply: profiles that use it
  TarnFirewall::host32 markedForDeletion;  // +108  reply
  TarnFirewall::host32 force;              // +112
  TarnFirewall::host32 protocol;           // +116  `FWTransportProtocol`
  char address[128];                       // +120
  std::uint8_t transport[45];              // +248  `FWTransportMacred_` or `FWTransportGre_`
};
static_assert(sizeof(FWServiceInstance_) == 293 && alignof(FWServiceInstance_) == 1);
static_assert(offsetof(FWServiceInstance_, name) == 32 &&
              offsetof(FWServiceInstance_, slot) == 96 &&
              offsetof(FWServiceInstance_, deployType) == 100 &&
              offsetof(FWServiceInstance_, references) == 104 &&
              offsetof(FWServiceInstance_, markedForDeletion) == 108 &&
              offsetof(FWServiceInstance_, force) == 112 &&
              offsetof(FWServiceInstance_, protocol) == 116 &&
              offsetof(FWServiceInstance_, address) == 120 &&
              offsetof(FWServiceInstance_, transport) == 248);

/// Transport of protocol 4.
struct FWTransportGre_ {
  TarnFirewall::host32 key;            //  +0
  TarnFirewall::host32 flags;          //  +4
  TarnFirewall::host32 encapProtocol;  //  +8
  char gatewayMac[32];                 // +12  text
  std::uint8_t flipDirection;          // +44
};
static_assert(sizeof(FWTransportGre_) == 45 && alignof(FWTransportGre_) == 1);
static_assert(offsetof(FWTransportGre_, flags) == 4 &&
              offsetof(FWTransportGre_, encapProtocol) == 8 &&
              offsetof(FWTransportGre_, gatewayMac) == 12 &&
              offsetof(FWTransportGre_, flipDirection) == 44);

/// Transport of protocol 3.
struct FWTransportMacred_ {
  std::uint8_t flipDirection;  //  +0
  char gatewayMac[32];         //  +1  text
  std::uint8_t reserved[12];   // +33  zero
};
static_assert(sizeof(FWTransportMacred_) == 45 && alignof(FWTransportMacred_) == 1);
static_assert(offsetof(FWTransportMacred_, gatewayMac) == 1 &&
              offsetof(FWTransportMacred_, reserved) == 33);

/// Asks for service instances.
struct FWInstanceQuery_ {
  char id[32];                        //  +0  empty for every instance
  TarnFirewall::host32 count;         // +32  reply: instances
  TarnFirewall::host32 bufferLength;  // +36  bytes of the buffer
  TarnFirewall::host64 buffer;        // +40  address of the records
};
static_assert(sizeof(FWInstanceQuery_) == 48 && alignof(FWInstanceQuery_) == 1);
static_assert(offsetof(FWInstanceQuery_, count) == 32 &&
              offsetof(FWInstanceQuery_, bufferLength) == 36 &&
              offsetof(FWInstanceQuery_, buffer) == 40);

/// What attaches a service instance to a filter.
struct FWServiceProfile_ {
  char id[32];                        //   +0
  char instanceId[32];                //  +32
  char filter[100];                   //  +64
  char vendorTemplateId[64];          // +164
  char vendorProvidedTemplateId[64];  // +228
};
static_assert(sizeof(FWServiceProfile_) == 292 && alignof(FWServiceProfile_) == 1);
static_assert(offsetof(FWServiceProfile_, instanceId) == 32 &&
              offsetof(FWServiceProfile_, filter) == 64 &&
              offsetof(FWServiceProfile_, vendorTemplateId) == 164 &&
              offsetof(FWServiceProfile_, vendorProvidedTemplateId) == 228);

/// A GRE configuration.
struct FWGreEntry_ {
  std::uint8_t address[4];             //  +0  network order
  TarnFirewall::host32 key;            //  +4
  TarnFirewall::host32 flags;          //  +8
  TarnFirewall::host32 encapProtocol;  // +12
  std::uint8_t reserved[4];            // +16  zero
  std::uint8_t mac[6];                 // +20
  std::uint8_t guestAddress[4];        // +26  network order
};
static_assert(sizeof(FWGreEntry_) == 30 && alignof(FWGreEntry_) == 1);
static_assert(offsetof(FWGreEntry_, key) == 4 && offsetof(FWGreEntry_, flags) == 8 &&
              offsetof(FWGreEntry_, encapProtocol) == 12 && offsetof(FWGreEntry_, reserved) == 16 &&
              offsetof(FWGreEntry_, mac) == 20 && offsetof(FWGreEntry_, guestAddress) == 26);

// --- The insertion device

/// Stands in front of a table's entries.
struct SITableHead_ {
  TarnFirewall::host64 count;  // +0  entries that follow
  std::uint8_t reserved[8];    // +8  not read
};
static_assert(sizeof(SITableHead_) == 16 && alignof(SITableHead_) == 1);
static_assert(offsetof(SITableHead_, reserved) == 8);

/// A service path index: 24 bits in network order in the first three bytes of its field.
inline std::uint32_t spiOf(TarnFirewall::net32 field) { return std::uint32_t{field} >> 8; }

/// Entry of the service table.
struct SIService_ {
  char uuid[37];                     //  +0
  TarnFirewall::net32 forwardSpi;    // +37  by `spiOf`
  TarnFirewall::host32 forwardSi;    // +41
  TarnFirewall::host32 forwardScid;  // +45
  std::uint8_t forwardMac[6];        // +49
  std::uint8_t reserved[3];          // +55  not read
  std::uint8_t reverseMac[6];        // +58
  TarnFirewall::net32 reverseSpi;    // +64  by `spiOf`
  TarnFirewall::host32 reverseSi;    // +68
  TarnFirewall::host32 reverseScid;  // +72
  std::uint8_t reservedToo[3];       // +76  not read
  std::uint8_t failPolicy;           // +79  0 invalid, 1 drop, 2 allow, 3 default
  std::uint8_t reservedLast[4];      // +80  not read
};
static_assert(sizeof(SIService_) == 84 && alignof(SIService_) == 1);
static_assert(offsetof(SIService_, forwardSpi) == 37 && offsetof(SIService_, forwardSi) == 41 &&
              offsetof(SIService_, forwardScid) == 45 && offsetof(SIService_, forwardMac) == 49 &&
              offsetof(SIService_, reverseMac) == 58 && offsetof(SIService_, reverseSpi) == 64 &&
              offsetof(SIService_, reverseSi) == 68 && offsetof(SIService_, reverseScid) == 72 &&
              offsetof(SIService_, failPolicy) == 79 && offsetof(SIService_, reservedLast) == 80);

/// Entry of the NSH table.
struct SINsh_ {
  TarnFirewall::net32 spi;  //  +0  by `spiOf`
  TarnFirewall::host32 si;  //  +4
  std::uint8_t reserved;    //  +8  not read
  std::uint8_t mac[6];      //  +9
  std::uint8_t type;        // +15  0 compatibility, 1 native
  std::uint8_t mode;        // +16  0 copy, 1 redirect
};
static_assert(sizeof(SINsh_) == 17 && alignof(SINsh_) == 1);
static_assert(offsetof(SINsh_, si) == 4 && offsetof(SINsh_, mac) == 9 &&
              offsetof(SINsh_, type) == 15 && offsetof(SINsh_, mode) == 16);

/// Entry of the proxy table. A byte that is not 0 means yes.
struct SIProxy_ {
  std::uint8_t mac[6];      // +0
  std::uint8_t native;      // +6  else compatibility
  std::uint8_t canDecrypt;  // +7
  std::uint8_t liveness;    // +8  required
  std::uint8_t redirect;    // +9  else copy
};
static_assert(sizeof(SIProxy_) == 10 && alignof(SIProxy_) == 1);
static_assert(offsetof(SIProxy_, native) == 6 && offsetof(SIProxy_, canDecrypt) == 7 &&
              offsetof(SIProxy_, liveness) == 8 && offsetof(SIProxy_, redirect) == 9);

/// Statistics of a service machine's port.
struct SIProxyStats_ {
  TarnFirewall::host64 rxFromSvm;               //   +0
  TarnFirewall::host64 rxFromIochain;           //   +8
  TarnFirewall::host64 toSvmLivenessPkts;       //  +16
  TarnFirewall::host64 fromSvmLivenessPkts;     //  +24
  TarnFirewall::host64 reserved;                //  +32  not read
  TarnFirewall::host64 nativeLengthPatchFail;   //  +40
  TarnFirewall::host64 badEthHdr;               //  +48
  TarnFirewall::host64 quench;                  //  +56
  TarnFirewall::host64 getNshFail;              //  +64
  TarnFirewall::host64 ingressInjectFail;       //  +72
  TarnFirewall::host64 copyFail;                //  +80
  TarnFirewall::host64 nshTtlExpired;           //  +88
  TarnFirewall::host64 zeroSi;                  //  +96
  TarnFirewall::host64 unknownNextHop;          // +104
  TarnFirewall::host64 setNshFail;              // +112
  TarnFirewall::host64 pushHeadroomFail;        // +120
  TarnFirewall::host64 insufficientDecapBytes;  // +128
  TarnFirewall::host64 insufficientSpfBytes;    // +136
  TarnFirewall::host64 insufficientMapBytes;    // +144
  TarnFirewall::host64 partialCopy;             // +152
};
static_assert(sizeof(SIProxyStats_) == 160 && alignof(SIProxyStats_) == 1);
static_assert(offsetof(SIProxyStats_, reserved) == 32 &&
              offsetof(SIProxyStats_, nativeLengthPatchFail) == 40 &&
              offsetof(SIProxyStats_, partialCopy) == 152);
