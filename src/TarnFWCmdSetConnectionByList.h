#pragma once

#include <memory>

#include "TarnFWConnectionList.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Sets the connections of a list; how is the kernel's matter. Prints nothing.
///
/// Command 37  request  +0  u32            connections that follow     reply  +4  u32  result
///                      +8  40 bytes each  `FWConnection_`
class CTarnFWCmdSetConnectionByList final : public CTarnFWSizedCmd<37> {
 public:
  /// The list is never null. A size that needs more than 32 bits throws
  /// `CIntegerOverflowException`.
  CTarnFWCmdSetConnectionByList(const dvs_port_* port, std::unique_ptr<CTarnFWConnectionList> list);

  /// From `count` connections at `connections`: duplicates are sent once, in the list's order.
  CTarnFWCmdSetConnectionByList(const dvs_port_* port, unsigned int count,
                                const FWConnection_* connections);
  std::string toString() const override;

  static std::uint32_t result(const CTarnFWCmdReply& reply) { return reply.word(4); }

 private:
  void fill(std::span<std::byte> body) const override;

  std::unique_ptr<CTarnFWConnectionList> list_;
};

}  // namespace TarnFirewall
