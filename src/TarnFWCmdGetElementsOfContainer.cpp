#include "TarnFWCmdGetElementsOfContainer.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kChain = 70;

}  // namespace

CTarnFWCmdGetElementsOfContainer::CTarnFWCmdGetElementsOfContainer(const dvs_port_* port,
                                                                   const std::string& name,
                                                                   FWContainerType type,
                                                                   unsigned int count,
                                                                   unsigned int bufferSize)
    : CTarnFWSizedCmd(
          port, countedSize(kChain, 1, bufferSize, "integer overflow for the size of a container")),
      name_(name),
      type_(type),
      count_(count),
      container_(CTarnFWContainer::BuildContainer(name, type)) {}

bool CTarnFWCmdGetElementsOfContainer::elementsToCharArray(char** out, unsigned int max,
                                                           unsigned int* count) const {
  if (!decoded_ || !container_->elementsToCharArray(out, max)) {
    TARNFW_ERROR("failed to convert tlv elements into a char array\n");
    return false;
  }
  *count = container_->getCount();
  return true;
}

std::string CTarnFWCmdGetElementsOfContainer::toString() const {
  return "describe elements of container " + name_ + dvsportToString("of");
}

void CTarnFWCmdGetElementsOfContainer::fill(std::span<std::byte> body) const {
  // The name's limit leaves room for its NUL, which the zeroed body gives.
  FWAddrSetID_t id{};
  name_.copy(id.text, sizeof id.text - 1);
  storeAt(body, 0, id);
  storeAt(body, 42, host32(count_));
}

void CTarnFWCmdGetElementsOfContainer::read(const CTarnFWCmdReply& reply) {
  // A fresh container, so that a command that is executed again holds the last reply only.
  container_ = CTarnFWContainer::BuildContainer(name_, type_);
  const auto chain = reply.rest(kChain);
  decoded_ = container_->parseTLVChain(reinterpret_cast<const FWtlvChain*>(chain.data()),
                                       static_cast<unsigned int>(chain.size()));
}

}  // namespace TarnFirewall
