#pragma once

#include <memory>
#include <vector>

#include "TarnFWAddress.h"
#include "TarnFWFixedCmd.h"
#include "TarnFWL7Attribute.h"

namespace TarnFirewall {

/// Binds a domain, an identifier with a name, to its addresses.
///
/// Command 76  request  +0  u32  addresses                                   reply  none
///                      +4  u32  bytes that follow
///                      +8  the domain's `FWtlvChainElem` and attribute
///                   after  144 bytes each address, in the order of adding
class CTarnFWCmdAddDomain2IPMapping final : public CTarnFWSizedCmd<76> {
 public:
  CTarnFWCmdAddDomain2IPMapping(const dvs_port_* port, std::unique_ptr<CTarnFWL7Attribute> domain);

  /// Takes an address. Statements pass 100 as its time to live, for which the request has no field.
  /// Throws `CIntegerOverflowException`, with nothing added, when no message holds it too.
  void addAddress(std::unique_ptr<CTarnFWAddress> address, unsigned int timeToLive);

  std::string toString() const override;

 private:
  void fill(std::span<std::byte> body) const override;

  std::unique_ptr<CTarnFWL7Attribute> domain_;
  std::vector<std::unique_ptr<CTarnFWAddress>> addresses_;
};

}  // namespace TarnFirewall
