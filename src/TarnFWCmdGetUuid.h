#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWIdentityRecords.h"

namespace TarnFirewall {

/// One identifier of an address of a fully qualified name as the kernel lays it out.
struct FWUuidEntry_ {
  FWAddress_ address;   //    +0
  std::uint8_t family;  //  +144  2 is IPv4
  FWUuidItem_ item;     //  +145
  host32 count;         // +1235  in the request: items asked for
};
static_assert(sizeof(FWUuidEntry_) == 1239 && alignof(FWUuidEntry_) == 1);
static_assert(offsetof(FWUuidEntry_, address) == 0 && offsetof(FWUuidEntry_, family) == 144 &&
              offsetof(FWUuidEntry_, item) == 145 && offsetof(FWUuidEntry_, count) == 1235);

/// Asks for the identifiers of an address, and prints it when there is none.
///
/// Command 72  request     +0  144 bytes  `FWAddress_` of the entry
///                      +1235  u32        identifiers asked for
///             reply       +0  `FWUuidEntry_` each; one without a text ends them
class CTarnFWCmdGetUuid final : public CTarnFWPrinted<CTarnFWSizedCmd<72>> {
 public:
  /// Throws `CIntegerOverflowException` for more identifiers than a message holds.
  CTarnFWCmdGetUuid(const dvs_port_* port, const FWAddress_& address, unsigned int count);
  std::string toString() const override { return "describe uuid of fqdn" + dvsportToString("of"); }

  /// The identifiers of the reply, as many as were asked for at most.
  CTarnFWReplyRecords<FWUuidEntry_> entries(const CTarnFWCmdReply& reply) const;

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  FWAddress_ address_;
  unsigned int count_;
};

}  // namespace TarnFirewall
