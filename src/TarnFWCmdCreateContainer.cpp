#include "TarnFWCmdCreateContainer.h"

#include <algorithm>
#include <cstring>

#include "TarnFWAddrSetHead.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

constexpr std::uint16_t kNumber = 75;

}  // namespace

CTarnFWCmdCreateContainer::CTarnFWCmdCreateContainer(const dvs_port_* port, const std::string& name,
                                                     FWContainerType type)
    : CTarnFWCreateCmd(port, kNumber, kAddrSetLayout),
      container_(CTarnFWContainer::BuildContainer(name, type)) {}

bool CTarnFWCmdCreateContainer::addElement(std::unique_ptr<CTarnFWContainerElement> element) {
  return container_->addElement(std::move(element));
}

std::string CTarnFWCmdCreateContainer::toString() const {
  std::string text = container_->getContainerType() == FW_CONTAINER_ATTR_PROFILE
                         ? "create attrprofile"
                         : "create container";
  text += ' ' + container_->getName() + dvsportToString("for");
  if (container_->getCount() != 0) text += " with " + container_->toString();
  return text;
}

bool CTarnFWCmdCreateContainer::writeEntries(void* buffer, unsigned int room,
                                             unsigned int* written) {
  std::memset(buffer, 0, std::min(room, entriesSize()));
  return container_->toMessage(buffer, room, written);
}

void CTarnFWCmdCreateContainer::fillHead(std::span<std::byte> head) const {
  FWAddrSetHead_ record{};
  container_->getName().copy(record.name.text, sizeof record.name.text - 1);
  record.count = container_->getCount();
  record.type = container_->getContainerType();
  record.size = container_->getMsgSize();
  record.flags = kRequestFlags;
  storeAt(head, 0, record);
}

void CTarnFWCmdCreateContainer::refused(unsigned int room) const {
  TARNFW_LOG_IN(kWriteCmdBody, LOG_ERR,
                "failed to write command body buffer size: %u required size: %u\n\n", room,
                getMsgSize());
}

}  // namespace TarnFirewall
