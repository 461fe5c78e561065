#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

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

/// A MAC address, first octet first.
struct fw_ether_ {
  std::uint8_t octet[6];
};
static_assert(sizeof(fw_ether_) == 6 && alignof(fw_ether_) == 1);

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

/// Base of everything that a rule or a set matches an end of the traffic by.
class CTarnFWAddress : public ITarnFWObject {
 public:
  /// 144, for every address that is a single record.
  unsigned int getMsgSize() const override;

  virtual bool isIPAddress() const;
  virtual bool isMACAddress() const;

  /// True when the address stands for others: a reference to a set, an attribute.
  virtual bool isContainer() const;
  virtual bool isIPv4Address() const;
  virtual bool isIPv6Address() const;

  /// Name of the set that is referred to; empty for every other address.
  virtual std::string getName() const;

  /// Order of the type code, then plain before negated, then the order of the class. Not always a
  /// strict weak order: see the classes.
  virtual bool operator<(const CTarnFWAddress& other) const = 0;

  /// Appends what `toString` gives, without a string of its own on the way where the class can.
  void appendTo(std::string& text) const override;

  /// True when the address means everything but this one.
  bool isNegated() const { return negated_; }
  void setNegated(bool negated) { negated_ = negated; }

 protected:
  explicit CTarnFWAddress(bool negated = false) : negated_(negated) {}

  bool negated_;
};

}  // namespace TarnFirewall
