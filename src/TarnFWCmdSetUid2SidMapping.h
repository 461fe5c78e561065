#pragma once

#include <vector>

#include "TarnFWFixedCmd.h"
#include "TarnFWIdentityRecords.h"

namespace TarnFirewall {

/// Adds or deletes the security identifiers of a user.
///
/// Command 80  request   +4  u32         `Uid2SidOp_t`                        reply  none
///                       +8  u32         identifiers
///                      +12  `fwattr_sid`  the user
///                      +84  `fwattr_sid`  each identifier
class CTarnFWCmdSetUid2SidMapping final : public CTarnFWSizedCmd<80> {
 public:
  CTarnFWCmdSetUid2SidMapping(const dvs_port_* port, Uid2SidOp_t operation, const fwattr_sid& uid);

  /// Adds `count` identifiers. Throws `CIntegerOverflowException`, with none added, when no message
  /// holds them.
  void addSid(const fwattr_sid* sids, unsigned int count);

  std::string toString() const override;

 private:
  void fill(std::span<std::byte> body) const override;

  Uid2SidOp_t operation_;
  fwattr_sid uid_;
  std::vector<fwattr_sid> sids_;
};

}  // namespace TarnFirewall
