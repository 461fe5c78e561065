#include "TarnFWCmdGetUid2SidMapping.h"

#include "TarnFWSid.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 84;

void printSids(const CTarnFWReplyRecords<fwattr_sid>& sids, const PrettyPrinting& out) {
  char text[kSidTextSize];
  for (const fwattr_sid& sid : sids) {
    if (!sid_bin2str(&sid, text, sizeof text)) {
      TARNFW_LOG_IN(kCheckCmdReply, LOG_ERR, "%s : failed to convert sid to string\n",
                    kCheckCmdReply);
      continue;
    }
    out.print(out.context, "  %s\n", text);
  }
}

}  // namespace

CTarnFWCmdGetUid2SidMapping::CTarnFWCmdGetUid2SidMapping(const dvs_port_* port, unsigned int users,
                                                         unsigned int size)
    : CTarnFWPrinted(port,
                     countedSize(kHead, 1, size, "integer overflow for the size of uid2sid map")),
      users_(users),
      usersSize_(size) {}

void CTarnFWCmdGetUid2SidMapping::fill(std::span<std::byte> body) const {
  storeAt(body, 4, host32(users_));
  storeAt(body, 8, host32(usersSize_));
}

void CTarnFWCmdGetUid2SidMapping::print(const CTarnFWCmdReply& reply,
                                        const PrettyPrinting& out) const {
  std::size_t offset = kHead;
  for (unsigned int i = 0; i < users_; ++i) {
    if (offset > reply.size() || reply.size() - offset < sizeof(FWUidMapping_)) {
      logCutRecords(users_, i);
      return;
    }
    const auto user = reply.record<FWUidMapping_>(offset);
    offset += sizeof(FWUidMapping_);
    char uid[kSidTextSize];
    if (!sid_bin2str(&user.uid, uid, sizeof uid)) {
      TARNFW_LOG_IN(kCheckCmdReply, LOG_ERR, "%s : failed to convert uid to string\n",
                    kCheckCmdReply);
      return;
    }
    out.print(out.context, "User ID : %s\n", uid);
    out.print(out.context, "Status : %s\n", user.active != 0 ? "Active" : "Inactive");
    out.print(out.context, "NoConn : %u\n", std::uint32_t{user.connections});
    out.print(out.context, "{\n");
    const std::uint32_t reported = user.sidCount;
    const auto sids = reply.records<fwattr_sid>(offset, reported, reported);
    printSids(sids, out);
    out.print(out.context, "}\n");
    if (sids.checkedSize() < reported) return;
    offset += sizeof(fwattr_sid) * sids.size();
  }
}

}  // namespace TarnFirewall
