#include "TarnFWCmdGetConnAttrInfo.h"

namespace TarnFirewall {

namespace {

/// How this command says that a connection is named by its description. Command 73 says it by 1.
constexpr std::uint32_t kByConnection = 2;

}  // namespace

CTarnFWCmdGetConnAttrInfo::CTarnFWCmdGetConnAttrInfo(const dvs_port_* port,
                                                     const FWConnection_& connection)
    : CTarnFWPrinted(port) {
  request_.selector = kByConnection;
  request_.connection = connection;
}

CTarnFWCmdGetConnAttrInfo::CTarnFWCmdGetConnAttrInfo(const dvs_port_* port, std::uint64_t id)
    : CTarnFWPrinted(port) {
  request_.id = id;
}

void CTarnFWCmdGetConnAttrInfo::print(const CTarnFWCmdReply& reply,
                                      const PrettyPrinting& out) const {
  out.print(out.context, "attribute count : %u\n", count(reply));
  out.print(out.context, "serialize size : %u\n", size(reply));
}

}  // namespace TarnFirewall
