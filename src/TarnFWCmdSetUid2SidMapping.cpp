#include "TarnFWCmdSetUid2SidMapping.h"

#include "TarnFWSid.h"

namespace TarnFirewall {

namespace {

struct FWUid2SidRequest_ {
  host32 reserved;   //  +0
  host32 operation;  //  +4  `Uid2SidOp_t`
  host32 count;      //  +8  identifiers that follow
  fwattr_sid uid;    // +12
};
static_assert(sizeof(FWUid2SidRequest_) == 84 && alignof(FWUid2SidRequest_) == 1);
static_assert(offsetof(FWUid2SidRequest_, reserved) == 0 &&
              offsetof(FWUid2SidRequest_, operation) == 4 &&
              offsetof(FWUid2SidRequest_, count) == 8 && offsetof(FWUid2SidRequest_, uid) == 12);

constexpr unsigned int kHead = sizeof(FWUid2SidRequest_);

/// The text of an identifier; that of a record that has none is empty.
std::string sidText(const fwattr_sid& sid) {
  char text[kSidTextSize];
  return sid_bin2str(&sid, text, sizeof text) ? text : "";
}

}  // namespace

CTarnFWCmdSetUid2SidMapping::CTarnFWCmdSetUid2SidMapping(const dvs_port_* port,
                                                         Uid2SidOp_t operation,
                                                         const fwattr_sid& uid)
    : CTarnFWSizedCmd(port, kHead), operation_(operation), uid_(uid) {}

void CTarnFWCmdSetUid2SidMapping::addSid(const fwattr_sid* sids, unsigned int count) {
  const unsigned int size = countedSize(getMsgSize(), sizeof(fwattr_sid), count, "number of sids");
  sids_.insert(sids_.end(), sids, sids + count);
  setMsgSize(size);
}

std::string CTarnFWCmdSetUid2SidMapping::toString() const {
  std::string text = (operation_ == FW_UID2SID_DELETE ? "delete uid2sidmap" : "set uid2sidmap") +
                     dvsportToString("of") + ' ' + sidText(uid_) + " {";
  const char* separator = " ";
  for (const fwattr_sid& sid : sids_) {
    text += separator + sidText(sid);
    separator = ", ";
  }
  return text + " }";
}

void CTarnFWCmdSetUid2SidMapping::fill(std::span<std::byte> body) const {
  FWUid2SidRequest_ request{};
  request.operation = operation_;
  request.count = static_cast<std::uint32_t>(sids_.size());
  request.uid = uid_;
  storeAt(body, 0, request);
  for (std::size_t i = 0; i < sids_.size(); ++i) {
    storeAt(body, kHead + i * sizeof(fwattr_sid), sids_[i]);
  }
}

}  // namespace TarnFirewall
