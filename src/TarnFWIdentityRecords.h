#pragma once

/// Records about names, users and attributes of connections that the flat functions take and fill.
/// Integers in host order. Clear a record before you fill it.

#include <cstddef>
#include <cstdint>

#include "TarnFWRecords.h"

namespace TarnFirewall {

/// Keys of layer-7 attributes, as the kernel numbers them.
enum FWAttrKeyID : int {
  FW_ATTR_KEY_APP_ID = 0,
  FW_ATTR_KEY_TLS_VERSION = 1,
  FW_ATTR_KEY_TLS_CIPHER_SUITE = 2,
  FW_ATTR_KEY_CIFS_SMB_VERSION = 3,
  FW_ATTR_KEY_HTTP_METHOD = 4,
  FW_ATTR_KEY_HTTP_PATH = 5,
  FW_ATTR_KEY_FTP_COMMAND = 6,
  FW_ATTR_KEY_FQDN = 7,
  FW_ATTR_KEY_WIN_SID = 8,
  FW_ATTR_KEY_USER_SID = 9,
  FW_ATTR_KEY_PROCESS_HASH = 10,
  FW_ATTR_KEY_CTX_PROFILE_ID = 11,
  FW_ATTR_KEY_NONE = 12,  // no such key
};

/// Opaque handles of commands that are built in steps. They are numbers and no addresses.
struct fwconnattr_;
struct fwdomain2ip_;

/// What is done with the attributes of a connection. The kernel knows more than the one that
/// statements send.
enum FWAttrOpType : std::uint32_t {
  FW_ATTR_OP_SET = 0,
};

/// What is done with the security identifiers of a user.
enum Uid2SidOp_t : std::uint32_t {
  FW_UID2SID_ADD = 0,
  FW_UID2SID_DELETE = 1,
};

inline constexpr std::size_t kSidSubAuthorities = 15;

/// One security identifier as the kernel holds it.
struct fwattr_sid {
  host32 reserved;                            //  +0  0
  std::uint8_t revision;                      //  +4  1
  std::uint8_t count;                         //  +5  sub-authorities in use, at most 15
  std::uint8_t authority[6];                  //  +6  48 bits, highest byte first
  host32 subAuthorities[kSidSubAuthorities];  // +12
};
static_assert(sizeof(fwattr_sid) == 72 && alignof(fwattr_sid) == 1);
static_assert(offsetof(fwattr_sid, reserved) == 0 && offsetof(fwattr_sid, revision) == 4 &&
              offsetof(fwattr_sid, count) == 5 && offsetof(fwattr_sid, authority) == 6 &&
              offsetof(fwattr_sid, subAuthorities) == 12);

/// How far deep inspection of one connection has come.
struct FWDPIInfo_ {
  host64 id;                 //  +0  state id, as it was asked for
  std::uint8_t found;        //  +8  1: the state was found
  std::uint8_t state;        //  +9  inspection state
  std::uint8_t reserved[6];  // +10
};
static_assert(sizeof(FWDPIInfo_) == 16 && alignof(FWDPIInfo_) == 1);
static_assert(offsetof(FWDPIInfo_, id) == 0 && offsetof(FWDPIInfo_, found) == 8 &&
              offsetof(FWDPIInfo_, state) == 9 && offsetof(FWDPIInfo_, reserved) == 10);

/// An address that belongs to a fully qualified name. It never crosses to the kernel: the reply has
/// the same fields without the gaps.
struct FWFqdnEntry_ {
  FWAddress_ address;            //   +0  the key of the next request
  std::uint8_t family;           // +144  2 is IPv4
  std::uint8_t reserved[3];      // +145
  host32 uuidCount;              // +148  identifiers of this entry
  host64 startTime;              // +152  seconds since boot
  std::uint8_t reservedToo[8];   // +160
  host32 timeToLive;             // +168  seconds
  std::uint8_t infinite;         // +172  not 0: the entry stays
  std::uint8_t reservedLast[3];  // +173
};
static_assert(sizeof(FWFqdnEntry_) == 176 && alignof(FWFqdnEntry_) == 1);
static_assert(offsetof(FWFqdnEntry_, address) == 0 && offsetof(FWFqdnEntry_, family) == 144 &&
              offsetof(FWFqdnEntry_, reserved) == 145 && offsetof(FWFqdnEntry_, uuidCount) == 148 &&
              offsetof(FWFqdnEntry_, startTime) == 152 &&
              offsetof(FWFqdnEntry_, reservedToo) == 160 &&
              offsetof(FWFqdnEntry_, timeToLive) == 168 &&
              offsetof(FWFqdnEntry_, infinite) == 172 &&
              offsetof(FWFqdnEntry_, reservedLast) == 173);

/// An identifier that belongs to such an address.
struct FWUuidItem_ {
  char text[1090];  // +0  the identifier's text, with its NUL
};
static_assert(sizeof(FWUuidItem_) == 1090 && alignof(FWUuidItem_) == 1);

}  // namespace TarnFirewall
