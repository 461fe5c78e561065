#include "TarnFWCmdSetConnAttr.h"

#include "TarnFWStatus.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = sizeof(FWConnAttrHead_);
constexpr unsigned int kEmptyChain = sizeof(FWtlvChain);
constexpr char kTooLarge[] = "integer overflow for the size of attributes";

FWConnAttrHead_ headBy(const FWConnection_& connection, FWAttrOpType operation) {
  FWConnAttrHead_ head{};
  head.operation = operation;
  head.connection = connection;
  head.selector = 1;
  return head;
}

FWConnAttrHead_ headBy(std::uint64_t id, FWAttrOpType operation) {
  FWConnAttrHead_ head{};
  head.operation = operation;
  head.id = id;
  return head;
}

}  // namespace

CTarnFWCmdSetConnAttr::CTarnFWCmdSetConnAttr(const dvs_port_* port, const FWConnAttrHead_& head)
    : CTarnFWSizedCmd(port, kHead + kEmptyChain),
      head_(head),
      // The kernel gets no name of this container.
      attributes_(std::make_unique<CTarnFWContainer>("dummy", FW_CONTAINER_ATTR_PROFILE)) {}

CTarnFWCmdSetConnAttr::CTarnFWCmdSetConnAttr(const dvs_port_* port, const FWConnection_& connection,
                                             FWAttrOpType operation)
    : CTarnFWCmdSetConnAttr(port, headBy(connection, operation)) {}

CTarnFWCmdSetConnAttr::CTarnFWCmdSetConnAttr(const dvs_port_* port, std::uint64_t id,
                                             FWAttrOpType operation)
    : CTarnFWCmdSetConnAttr(port, headBy(id, operation)) {}

bool CTarnFWCmdSetConnAttr::addAttribute(std::unique_ptr<CTarnFWL7Attribute> attribute) {
  const unsigned int size = countedSize(getMsgSize(), 1, attribute->getMsgSize(), kTooLarge);
  const bool added = attributes_->addElement(std::move(attribute));
  if (added) setMsgSize(size);
  return added;
}

std::string CTarnFWCmdSetConnAttr::toString() const {
  return "set connattr" + dvsportToString("of") + " with " + attributes_->toString();
}

void CTarnFWCmdSetConnAttr::fill(std::span<std::byte> body) const {
  FWConnAttrHead_ head = head_;
  head.attributeCount = attributes_->getCount();
  head.attributeSize = getMsgSize() - kHead;
  storeAt(body, 0, head);
  const std::span<std::byte> chain = body.subspan(kHead);
  const auto room = static_cast<unsigned int>(chain.size());
  unsigned int written = 0;
  if (!attributes_->toMessage(chain.data(), room, &written)) {
    throw CInsufficientMsgBufException(attributes_->getMsgSize(), room);
  }
}

void CTarnFWCmdSetConnAttr::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t result = reply.word(0);
  if (result == FW_STATUS_OK) return;
  if (result == FW_STATUS_NO_UID_TO_SID_MAPPING) throw CInvalidUidException();
  throw CIoctlException(statusText(FW_STATUS_UNKNOWN_ERROR), 0);
}

}  // namespace TarnFirewall
