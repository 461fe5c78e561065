#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWIdentityRecords.h"

namespace TarnFirewall {

/// An address of a fully qualified name as the kernel lays it out.
struct FWFqdnRecord_ {
  FWAddress_ address;        //   +0
  std::uint8_t family;       // +144  2 is IPv4
  host64 startTime;          // +145  seconds since boot
  std::uint8_t reserved[8];  // +153
  host32 timeToLive;         // +161  seconds
  std::uint8_t infinite;     // +165  not 0: the entry stays
  host32 uuidCount;          // +166  identifiers of this entry
};
static_assert(sizeof(FWFqdnRecord_) == 170 && alignof(FWFqdnRecord_) == 1);
static_assert(offsetof(FWFqdnRecord_, address) == 0 && offsetof(FWFqdnRecord_, family) == 144 &&
              offsetof(FWFqdnRecord_, startTime) == 145 &&
              offsetof(FWFqdnRecord_, reserved) == 153 &&
              offsetof(FWFqdnRecord_, timeToLive) == 161 &&
              offsetof(FWFqdnRecord_, infinite) == 165 &&
              offsetof(FWFqdnRecord_, uuidCount) == 166);

/// Asks for the address of a fully qualified name that comes after another, and prints how many
/// identifiers belong to it.
///
/// Command 71  request    +4  4 bytes   address of the entry before, for family 0 and 2
///                        +4  16 bytes  the same for any other family
///                      +144  1 byte    its family, 0 asks for the first entry
///             reply      +0  `FWFqdnRecord_`
class CTarnFWCmdGetFqdnEntries final : public CTarnFWPrinted<CTarnFWFixedCmd<71, 170>> {
 public:
  CTarnFWCmdGetFqdnEntries(const dvs_port_* port, const FWAddress_& before, std::uint8_t family)
      : CTarnFWPrinted(port), before_(before), family_(family) {}
  std::string toString() const override { return "describe fqdn" + dvsportToString("of"); }

  static FWFqdnEntry_ entry(const CTarnFWCmdReply& reply);

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  FWAddress_ before_;
  std::uint8_t family_;
};

/// True for the families whose addresses are four bytes: IPv4, and none yet.
inline bool isFqdnIPv4(std::uint8_t family) { return family == 0 || family == 2; }

}  // namespace TarnFirewall
