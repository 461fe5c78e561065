#include "TarnFWCmdAddDomain2IPMapping.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 8;

/// Writes an object at `offset` and moves on to its end.
void writeAt(std::span<std::byte> body, unsigned int& offset, ITarnFWObject& object) {
  const std::span<std::byte> rest = body.subspan(offset);
  const auto room = static_cast<unsigned int>(rest.size());
  unsigned int written = 0;
  if (!object.toMessage(rest.data(), room, &written)) {
    throw CInsufficientMsgBufException(object.getMsgSize(), room);
  }
  offset += written;
}

}  // namespace

CTarnFWCmdAddDomain2IPMapping::CTarnFWCmdAddDomain2IPMapping(
    const dvs_port_* port, std::unique_ptr<CTarnFWL7Attribute> domain)
    : CTarnFWSizedCmd(port, kHead + domain->getMsgSize()), domain_(std::move(domain)) {}

void CTarnFWCmdAddDomain2IPMapping::addAddress(std::unique_ptr<CTarnFWAddress> address,
                                               unsigned int) {
  const unsigned int size = countedSize(getMsgSize(), 1, address->getMsgSize(),
                                        "integer overflow for the number of addresses");
  addresses_.push_back(std::move(address));
  setMsgSize(size);
}

std::string CTarnFWCmdAddDomain2IPMapping::toString() const {
  CTarnFWText text;
  text += "add domain2ip" + dvsportToString("of") + ' ' + domain_->toStringValue() + " with {";
  const char* separator = "";
  for (const auto& address : addresses_) {
    text += separator;
    address->appendTo(text);
    separator = ", ";
  }
  text += '}';
  return text.str();
}

void CTarnFWCmdAddDomain2IPMapping::fill(std::span<std::byte> body) const {
  storeAt(body, 0, host32(static_cast<std::uint32_t>(addresses_.size())));
  storeAt(body, 4, host32(getMsgSize() - kHead));
  unsigned int offset = kHead;
  writeAt(body, offset, *domain_);
  for (const auto& address : addresses_) writeAt(body, offset, *address);
}

}  // namespace TarnFirewall
