#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWFlowRecords.h"

namespace TarnFirewall {

/// Asks for connections of a filter, from a flow id on, and prints them.
///
/// Command 24  request  +0  1 byte  version, 1          reply  +16  u32  records that follow
///                      +4  u64     flow id, network           +32  251 bytes each, `FWFlowRecord_`
///                     +12  u32     records asked for
///                     +28  u32     bytes of this body
class CTarnFWCmdGetConnectionStat final : public CTarnFWPrinted<CTarnFWSizedCmd<24>> {
 public:
  /// A filter of connections is taken and not sent. A size that needs more than 32 bits throws
  /// `CIntegerOverflowException`.
  CTarnFWCmdGetConnectionStat(const dvs_port_* port, const FWConnFilter_* filter,
                              unsigned int count, std::uint64_t cursor);
  std::string toString() const override;

  CTarnFWReplyRecords<FWFlowRecord_> records(const CTarnFWCmdReply& reply) const {
    return reply.records<FWFlowRecord_>(32, reply.word(16), count_);
  }

 private:
  void fill(std::span<std::byte> body) const override;
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  unsigned int count_;
  std::uint64_t cursor_;
};

}  // namespace TarnFirewall
