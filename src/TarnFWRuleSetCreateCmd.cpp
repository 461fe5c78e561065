#include "TarnFWRuleSetCreateCmd.h"

namespace TarnFirewall {

namespace {

constexpr std::uint16_t kNumber = 3;
constexpr CTarnFWCreateCmd::Layout kLayout = {
    sizeof(FWRuleSetHead_), offsetof(FWRuleSetHead_, flags), offsetof(FWRuleSetHead_, transaction)};

}  // namespace

CTarnFWRuleSetCreateCmd::CTarnFWRuleSetCreateCmd(const dvs_port_* port, const FWRuleSetID_t& name,
                                                 std::unique_ptr<CTarnFWRuleList> list)
    : CTarnFWCreateCmd(port, kNumber, kLayout), name_(name), list_(std::move(list)) {}

bool CTarnFWRuleSetCreateCmd::writeEntries(void* buffer, unsigned int room, unsigned int* written) {
  if (list_->getRuleCount() == 0) return true;
  return list_->toMessage(buffer, room, written);
}

bool CTarnFWRuleSetCreateCmd::writeFreshEntries(void* buffer, unsigned int room,
                                                unsigned int* written) {
  if (list_->getRuleCount() == 0) return true;
  return list_->toFreshMessage(buffer, room, written);
}

void CTarnFWRuleSetCreateCmd::fillHead(std::span<std::byte> head) const {
  FWRuleSetHead_ record{};
  record.name = name_;
  record.count = list_->getRuleCount();
  record.flags = kRequestFlags;
  storeAt(head, 0, record);
}

}  // namespace TarnFirewall
