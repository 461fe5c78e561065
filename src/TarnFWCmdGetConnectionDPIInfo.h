#pragma once

#include <vector>

#include "TarnFWFixedCmd.h"
#include "TarnFWIdentityRecords.h"

namespace TarnFirewall {

/// Asks how far deep inspection of connections has come. Prints nothing.
///
/// Command 77  request  +0  u32  connections             reply  +0  u32  connections
///                      +4  u32  zero                           +8  `FWDPIInfo_` each
///                      +8  `FWDPIInfo_` each, with its id
class CTarnFWCmdGetConnectionDPIInfo final : public CTarnFWSizedCmd<77> {
 public:
  explicit CTarnFWCmdGetConnectionDPIInfo(const dvs_port_* port);

  /// Adds the state id of a connection. False from the 102nd on.
  bool addStateID(std::uint64_t id);

  /// Adds `count` of them. False, with none added, for more than 100, one less than can be added
  /// one by one: callers split their lists by it. True at once for none.
  bool addStateID(const std::uint64_t* ids, unsigned int count);

  std::string toString() const override { return "describe dpi" + dvsportToString("of"); }

  /// What the kernel answered, as many as were asked for at most.
  CTarnFWReplyRecords<FWDPIInfo_> records(const CTarnFWCmdReply& reply) const;

 private:
  void fill(std::span<std::byte> body) const override;
  void read(const CTarnFWCmdReply& reply) override;

  std::vector<std::uint64_t> ids_;
};

}  // namespace TarnFirewall
