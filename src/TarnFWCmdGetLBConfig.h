#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWLoadBalancerRecords.h"

namespace TarnFirewall {

/// Asks for the configuration of the load balancer's services, and prints it as one JSON object.
///
/// Command 86  request   +0  u32       bytes of this body            reply   +4  u32  active
/// services
///                       +4  u32       active services                       +8  u32  stale
///                       services +8  u32       stale services                       +12  u32
///                       service id
///                      +12  u32       service id                           +16  64 bytes, the uuid
///                      +16  64 bytes  service uuid                         +80  flags
///                      +80  flags                                          +81  blocks
///                      +81  a block for each service, first the active ones: `FWLBServiceHead_`
///                           and room for what it counts
class CTarnFWCmdGetLBConfig final : public CTarnFWPrinted<CTarnFWSizedCmd<86>> {
 public:
  /// `sizes` is what command 87 answered; null asks without services. Throws
  /// `CIntegerOverflowException` for more services than it has room for, and for a size that needs
  /// more than 32 bits.
  explicit CTarnFWCmdGetLBConfig(const dvs_port_* port, const FWLBConfigSize_* sizes = nullptr);
  std::string toString() const override { return "describe config of lb" + dvsportToString("of"); }

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
  void trace(std::span<const std::byte> body) const;
  std::span<const FWLBServiceSize_> services() const;

  FWLBConfigSize_ sizes_;
};

}  // namespace TarnFirewall
