#pragma once

#include "TarnFWConnectionRecord.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Which connection's attributes are asked about, and how many there are.
struct FWConnAttrInfo_ {
  host32 selector;           //  +0  2 by connection, 0 by id
  FWConnection_ connection;  //  +4  zero when the id selects
  host64 id;                 // +44  connection id
  host32 attributeCount;     // +52  the reply's
  host32 attributeSize;      // +56  the reply's: bytes of the attributes in a message
};
static_assert(sizeof(FWConnAttrInfo_) == 60 && alignof(FWConnAttrInfo_) == 1);
static_assert(offsetof(FWConnAttrInfo_, selector) == 0 &&
              offsetof(FWConnAttrInfo_, connection) == 4 && offsetof(FWConnAttrInfo_, id) == 44 &&
              offsetof(FWConnAttrInfo_, attributeCount) == 52 &&
              offsetof(FWConnAttrInfo_, attributeSize) == 56);

/// Asks how many attributes a connection has, and prints it.
///
/// Command 74  request  +0  `FWConnAttrInfo_`            reply  +52  u32  attributes
///                                                              +56  u32  their size in a message
class CTarnFWCmdGetConnAttrInfo final : public CTarnFWPrinted<CTarnFWFixedCmd<74, 60>> {
 public:
  CTarnFWCmdGetConnAttrInfo(const dvs_port_* port, const FWConnection_& connection);
  CTarnFWCmdGetConnAttrInfo(const dvs_port_* port, std::uint64_t id);
  std::string toString() const override { return "describe connattr" + dvsportToString("of"); }

  static std::uint32_t count(const CTarnFWCmdReply& reply) {
    return reply.word(offsetof(FWConnAttrInfo_, attributeCount));
  }
  static std::uint32_t size(const CTarnFWCmdReply& reply) {
    return reply.word(offsetof(FWConnAttrInfo_, attributeSize));
  }

 private:
  void fill(std::span<std::byte> body) const override { storeAt(body, 0, request_); }
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  FWConnAttrInfo_ request_{};
};

}  // namespace TarnFirewall
