#include "TarnFWCmdGetDnsConfigProfile.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetDnsConfigProfile::toString() const {
  return "describe dns config profile" + dvsportToString("of");
}

void CTarnFWCmdGetDnsConfigProfile::print(const CTarnFWCmdReply& reply,
                                          const PrettyPrinting& out) const {
  const auto profile = reply.record<FWDnsConfigProfile_>(0);
  switch (profile.timeToLiveKind) {
    case FW_DNS_TTL_INFINITE:
      out.print(out.context, "Time To Live Value : Infinite\n");
      break;
    case FW_DNS_TTL_AUTOMATIC:
      out.print(out.context, "Time To Live Value : auto\n");
      break;
    default:
      out.print(out.context, "Time To Live Value : %u secs\n",
                static_cast<std::uint32_t>(profile.timeToLive));
  }
}

}  // namespace TarnFirewall
