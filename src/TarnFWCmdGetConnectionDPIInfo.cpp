#include "TarnFWCmdGetConnectionDPIInfo.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 8;
constexpr std::size_t kMaxIds = 101;
constexpr unsigned int kMaxIdsAtOnce = 100;

}  // namespace

CTarnFWCmdGetConnectionDPIInfo::CTarnFWCmdGetConnectionDPIInfo(const dvs_port_* port)
    : CTarnFWSizedCmd(port, kHead) {}

bool CTarnFWCmdGetConnectionDPIInfo::addStateID(std::uint64_t id) {
  if (ids_.size() >= kMaxIds) return false;
  ids_.push_back(id);
  setMsgSize(getMsgSize() + sizeof(FWDPIInfo_));
  return true;
}

bool CTarnFWCmdGetConnectionDPIInfo::addStateID(const std::uint64_t* ids, unsigned int count) {
  if (count == 0) return true;
  if (ids == nullptr || count > kMaxIdsAtOnce || count > kMaxIds - ids_.size()) return false;
  for (unsigned int i = 0; i < count; ++i) addStateID(ids[i]);
  return true;
}

CTarnFWReplyRecords<FWDPIInfo_> CTarnFWCmdGetConnectionDPIInfo::records(
    const CTarnFWCmdReply& reply) const {
  const auto asked = static_cast<std::uint32_t>(ids_.size());
  return reply.records<FWDPIInfo_>(kHead, reply.word(0), asked);
}

void CTarnFWCmdGetConnectionDPIInfo::fill(std::span<std::byte> body) const {
  storeAt(body, 0, host32(static_cast<std::uint32_t>(ids_.size())));
  for (std::size_t i = 0; i < ids_.size(); ++i) {
    storeAt(body, kHead + i * sizeof(FWDPIInfo_), host64(ids_[i]));
  }
}

void CTarnFWCmdGetConnectionDPIInfo::read(const CTarnFWCmdReply& reply) {
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0, "responded state count : %d\n",
                  static_cast<int>(reply.word(0)));
}

}  // namespace TarnFirewall
