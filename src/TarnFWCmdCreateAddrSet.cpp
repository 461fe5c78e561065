#include "TarnFWCmdCreateAddrSet.h"

#include <algorithm>
#include <cstring>

#include "TarnFWAddrSetHead.h"
#include "TarnFWAddressListFactory.h"

namespace TarnFirewall {

namespace {

constexpr std::uint16_t kNumber = 13;
constexpr std::uint32_t kAddressSet = 1;
constexpr std::uint8_t kHasIPv6 = 0x08;

FWAddrSetID_t idOf(const char* name) {
  FWAddrSetID_t id{};
  const std::size_t length = std::strlen(name);
  if (length >= sizeof id.text) throw CIDTooLongException(name);
  std::memcpy(id.text, name, length);
  return id;
}

}  // namespace

CTarnFWCmdCreateAddrSet::CTarnFWCmdCreateAddrSet(const dvs_port_* port, const FWAddrSetID_t& id,
                                                 FWAddrSetType_t type)
    : CTarnFWCmdCreateAddrSet(port, id, type, std::make_unique<CTarnFWAddressList>(false)) {}

CTarnFWCmdCreateAddrSet::CTarnFWCmdCreateAddrSet(const dvs_port_* port, const FWAddrSetID_t& id,
                                                 FWAddrSetType_t type,
                                                 std::unique_ptr<CTarnFWAddressList> list)
    : CTarnFWCreateCmd(port, kNumber, kAddrSetLayout),
      id_(id),
      type_(type),
      list_(std::move(list)) {}

CTarnFWCmdCreateAddrSet::CTarnFWCmdCreateAddrSet(const dvs_port_* port, const char* name,
                                                 FWAddrSetType_t type)
    : CTarnFWCmdCreateAddrSet(port, idOf(name), type) {}

CTarnFWCmdCreateAddrSet::CTarnFWCmdCreateAddrSet(const dvs_port_* port, const char* name,
                                                 FWAddrSetType_t type,
                                                 std::unique_ptr<CTarnFWAddressList> list)
    : CTarnFWCmdCreateAddrSet(port, idOf(name), type, std::move(list)) {}

bool CTarnFWCmdCreateAddrSet::addAddress(const FWAddress_* addresses, unsigned int count) {
  CTarnFWAddressListFactory::append(*list_, addresses, count);
  return true;
}

std::string CTarnFWCmdCreateAddrSet::toString() const {
  CTarnFWText text;
  text += type_ == FW_ADDRSET_ATTRIBUTE ? "create attrset " : "create addrset ";
  text += fieldText(id_.text);
  text += dvsportToString("for");
  if (!list_->getAddresses().empty()) {
    text += " with ";
    list_->appendTo(text);
  }
  return text.str();
}

bool CTarnFWCmdCreateAddrSet::writeEntries(void* buffer, unsigned int room, unsigned int* written) {
  // Addresses leave the bytes of their records that they do not use as they stand.
  std::memset(buffer, 0, std::min(room, entriesSize()));
  return writeFreshEntries(buffer, room, written);
}

bool CTarnFWCmdCreateAddrSet::writeFreshEntries(void* buffer, unsigned int room,
                                                unsigned int* written) {
  if (list_->getAddresses().empty()) return true;
  return list_->toMessage(buffer, room, written);
}

void CTarnFWCmdCreateAddrSet::fillHead(std::span<std::byte> head) const {
  FWAddrSetHead_ record{};
  record.name = id_;
  record.count = static_cast<std::uint32_t>(list_->getAddressCount());
  record.type = kAddressSet;
  record.size = list_->getMsgSize();
  record.flags = kRequestFlags;
  if (list_->hasIPv6()) record.flags |= kHasIPv6;
  storeAt(head, 0, record);
}

}  // namespace TarnFirewall
