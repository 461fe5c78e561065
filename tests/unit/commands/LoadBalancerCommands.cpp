// Requests and replies of the commands on load balancers and ALGs.

#include "CommandFamily.h"
#include "TarnFWCmdGetLBConfig.h"
#include "TarnFWCmdGetLBStat.h"

using namespace TarnFirewall;

namespace {

/// One active service with 1 virtual server, 2 pools and 3 members, and one stale one without any.
CommandPtr getLBConfig() {
  FWLBConfigSize_ sizes{};
  sizes.activeCount = 1;
  sizes.staleCount = 1;
  sizes.id = 0x14131211;
  std::string("lbs-1").copy(sizes.uuid, sizeof sizes.uuid);
  sizes.flags = 0xff;
  sizes.services[0].virtualServers = 1;
  sizes.services[0].pools = 2;
  sizes.services[0].poolMembers = 3;
  return std::make_unique<CTarnFWCmdGetLBConfig>(nullptr, &sizes);
}

/// 1 virtual server, and 2 pools with 3 and 1 members.
CommandPtr getLBStat() {
  FWLBStat_ stat{};
  stat.size = 0x04030201;
  stat.virtualServers = 1;
  stat.pools = 2;
  std::string("lbs-1").copy(stat.lbsUuid, sizeof stat.lbsUuid);
  std::string("pool-1").copy(stat.uuid, sizeof stat.uuid);
  stat.flags = 0x1b;
  stat.memberCounts[0] = 3;
  stat.memberCounts[1] = 1;
  stat.memberCounts[999] = 0x44434241;
  return std::make_unique<CTarnFWCmdGetLBStat>(nullptr, &stat);
}

}  // namespace

CommandFamily loadBalancerCommands() {
  CommandFamily family;
  family.goldens.push_back({"CTarnFWCmdGetLBConfig", 86, 109, "GetLBConfig", 81, 158, 526 + 85,
                            getLBConfig,
                            Bytes(526 + 85)  // 81, 85 + 90 + 2 x 24 + 3 x 74, 85
                                .at(0, {0x63, 2, 0, 0})
                                .at(4, {1, 0, 0, 0})
                                .at(8, {1, 0, 0, 0})
                                .at(12, {0x11, 0x12, 0x13, 0x14})
                                .text(16, "lbs-1")
                                .at(80, {0x1f})  // bits 0 to 4
                                .at(81 + 68, {1, 0, 0, 0})
                                .at(81 + 72, {2, 0, 0, 0})
                                .at(81 + 76, {3, 0, 0, 0})});

  family.goldens.push_back({"CTarnFWCmdGetLBStat", 88, 111, "GetLBStat", 4141, 4141, 4141 + 1030,
                            getLBStat,
                            Bytes(4141 + 1030)  // 200, 2 x 49, 4 x 183
                                .at(0, {1, 2, 3, 4})
                                .at(4, {1, 0, 0, 0})
                                .at(8, {2, 0, 0, 0})
                                .text(12, "lbs-1")
                                .text(76, "pool-1")
                                .at(140, {0x1b})
                                .at(141, {3, 0, 0, 0, 1, 0, 0, 0})
                                .at(4137, {0x41, 0x42, 0x43, 0x44})});

  readsNothing(family.replies, "CTarnFWCmdGetLBConfig", getLBConfig);
  readsNothing(family.replies, "CTarnFWCmdGetLBStat", plain<CTarnFWCmdGetLBStat>);

  // The counts in the blocks are there for the kernel of this host only.
  family.cutRequest = {"CTarnFWCmdGetLBConfig"};

  family.later = {
      "CTarnFWCmdGetAlgCount",      // 47
      "CTarnFWCmdGetAlgs",          // 47
      "CTarnFWCmdGetAlgPortCount",  // 48
      "CTarnFWCmdGetAlgPorts",      // 48
      "CTarnFWCmdGetLBConfigSize",  // 87
      "CTarnFWCmdGetLBStatSize",    // 89
      "CTarnFWCmdClearLBStat",      // 90
  };
  return family;
}
