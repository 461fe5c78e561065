#pragma once

#include <memory>

#include "TarnFWConnectionRecord.h"
#include "TarnFWContainer.h"
#include "TarnFWFixedCmd.h"
#include "TarnFWL7Attribute.h"

namespace TarnFirewall {

/// What stands in front of the attributes of a connection.
struct FWConnAttrHead_ {
  host32 result;             //  +0  the reply's: 0, or 70 for a user without a mapping
  host32 operation;          //  +4  `FWAttrOpType`
  FWConnection_ connection;  //  +8  zero when the id selects
  host32 selector;           // +48  1 by connection, 0 by id
  host64 id;                 // +52  connection id
  host32 attributeCount;     // +60
  host32 attributeSize;      // +64  bytes that follow
};
static_assert(sizeof(FWConnAttrHead_) == 68 && alignof(FWConnAttrHead_) == 1);
static_assert(offsetof(FWConnAttrHead_, result) == 0 && offsetof(FWConnAttrHead_, operation) == 4 &&
              offsetof(FWConnAttrHead_, connection) == 8 &&
              offsetof(FWConnAttrHead_, selector) == 48 && offsetof(FWConnAttrHead_, id) == 52 &&
              offsetof(FWConnAttrHead_, attributeCount) == 60 &&
              offsetof(FWConnAttrHead_, attributeSize) == 64);

/// Attaches attributes of layer 7 to a connection.
///
/// Command 73  request   +0  `FWConnAttrHead_`                 reply  +0  u32  result
///                      +68  the chain of the attributes, 12 bytes when there are none
///
/// A result of 70 throws `CInvalidUidException`, any other but 0 `CIoctlException`.
class CTarnFWCmdSetConnAttr final : public CTarnFWSizedCmd<73> {
 public:
  CTarnFWCmdSetConnAttr(const dvs_port_* port, const FWConnection_& connection,
                        FWAttrOpType operation);
  CTarnFWCmdSetConnAttr(const dvs_port_* port, std::uint64_t id, FWAttrOpType operation);

  /// False for an attribute that equals one that was added; it is dropped then.
  bool addAttribute(std::unique_ptr<CTarnFWL7Attribute> attribute);

  std::string toString() const override;

 private:
  CTarnFWCmdSetConnAttr(const dvs_port_* port, const FWConnAttrHead_& head);

  void fill(std::span<std::byte> body) const override;
  void read(const CTarnFWCmdReply& reply) override;

  FWConnAttrHead_ head_;
  std::unique_ptr<CTarnFWContainer> attributes_;
};

}  // namespace TarnFirewall
