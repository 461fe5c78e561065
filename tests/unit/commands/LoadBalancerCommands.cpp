// Requests and replies of the commands on load balancers and ALGs.

#include "CommandFamily.h"
#include "TarnFWCmdClearLBStat.h"
#include "TarnFWCmdGetAlgCount.h"
#include "TarnFWCmdGetAlgPortCount.h"
#include "TarnFWCmdGetAlgPorts.h"
#include "TarnFWCmdGetAlgs.h"
#include "TarnFWCmdGetLBConfig.h"
#include "TarnFWCmdGetLBConfigSize.h"
#include "TarnFWCmdGetLBStat.h"
#include "TarnFWCmdGetLBStatSize.h"

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
FWLBStat_ someStat() {
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
  return stat;
}

CommandPtr getLBStat() {
  const FWLBStat_ stat = someStat();
  return std::make_unique<CTarnFWCmdGetLBStat>(nullptr, &stat);
}

CommandPtr getLBStatSize() {
  return std::make_unique<CTarnFWCmdGetLBStatSize>(nullptr, someStat());
}

CommandPtr clearLBStat() { return std::make_unique<CTarnFWCmdClearLBStat>(nullptr, someStat()); }

CommandPtr getLBConfigSize() {
  FWLBConfigSize_ sizes{};
  sizes.activeCount = 0x04030201;
  sizes.staleCount = 0x08070605;
  sizes.id = 0x14131211;
  std::string("lbs-1").copy(sizes.uuid, sizeof sizes.uuid);
  sizes.flags = 0xff;
  sizes.services[0].virtualServers = 0x24232221;
  sizes.services[0].pools = 0x28272625;
  sizes.services[999].poolMembers = 0x34333231;
  return std::make_unique<CTarnFWCmdGetLBConfigSize>(nullptr, sizes);
}

/// A statistics record as it is sent, in a body of so many bytes.
Bytes statBytes(std::size_t size) {
  return Bytes(size)
      .at(0, {1, 2, 3, 4})
      .at(4, {1, 0, 0, 0})
      .at(8, {2, 0, 0, 0})
      .text(12, "lbs-1")
      .text(76, "pool-1")
      .at(140, {0x1b})
      .at(141, {3, 0, 0, 0, 1, 0, 0, 0})
      .at(4137, {0x41, 0x42, 0x43, 0x44});
}

/// What clearing prints of a kernel that says that pools were meant.
constexpr const char* kPoolsCleared =
    "{\n    \"result\": \"pool stats on datapath is cleared. In rare cases some of the counters "
    "may "
    "not be cleared and when that happens please try issuing the command again\"\n}\n";

void addAlgs(CommandFamily& family) {
  family.goldens.push_back({"CTarnFWCmdGetAlgCount", 47, 70, "GetAlgInfo", 4, 0, 8,
                            plain<CTarnFWCmdGetAlgCount>, Bytes(8)});
  family.goldens.push_back({"CTarnFWCmdGetAlgs", 47, 70, "GetAlgInfo", 4, 5, 8,
                            plain<CTarnFWCmdGetAlgs, 12u, 2u>,
                            Bytes(20).at(0, {12, 0, 0, 0}).at(4, {2, 0, 0, 0})});
  family.goldens.push_back({"CTarnFWCmdGetAlgPortCount", 48, 71, "GetAlgPortInfo", 4, 0, 8,
                            plain<CTarnFWCmdGetAlgPortCount>, Bytes(8)});
  family.goldens.push_back({"CTarnFWCmdGetAlgPorts", 48, 71, "GetAlgPortInfo", 4, 5, 8,
                            plain<CTarnFWCmdGetAlgPorts, 80u, 2u>,
                            Bytes(88).at(0, {80, 0, 0, 0}).at(4, {2, 0, 0, 0})});

  family.replies.push_back({"CTarnFWCmdGetAlgCount",
                            plain<CTarnFWCmdGetAlgCount>,
                            Bytes(8).at(0, {6}).at(4, {0x39, 0x30}),
                            {{8, "alg count : 12345\n"}},
                            {}});
  family.replies.push_back({"CTarnFWCmdGetAlgPortCount",
                            plain<CTarnFWCmdGetAlgPortCount>,
                            Bytes(8).at(0, {40}).at(4, {0x39, 0x30}),
                            {{8, "alg port count : 12345\n"}},
                            {}});
  family.replies.push_back({"CTarnFWCmdGetAlgs",
                            plain<CTarnFWCmdGetAlgs, 12u, 2u>,
                            Bytes(20, 1).at(4, {2, 0, 0, 0}),
                            {{8, "", true}, {8, "alg count : 2\n"}},
                            {8, 6, {"", ""}, ""}});
  family.replies.push_back({"CTarnFWCmdGetAlgPorts",
                            plain<CTarnFWCmdGetAlgPorts, 80u, 2u>,
                            Bytes(88, 1).at(4, {2, 0, 0, 0}),
                            {{8, "", true}, {8, "alg port count : 2\n"}},
                            {8, 40, {"", ""}, ""}});
  // The number of records that are asked for is there for the kernel of this host only.
  family.cutRequest.insert({"CTarnFWCmdGetAlgs", "CTarnFWCmdGetAlgPorts"});
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
                            getLBStat, statBytes(4141 + 1030)});  // 200, 2 x 49, 4 x 183

  family.goldens.push_back({"CTarnFWCmdGetLBConfigSize", 87, 110, "GetLBConfigSize", 12077, 12077,
                            12077, getLBConfigSize,
                            Bytes(12077)
                                .at(0, {1, 2, 3, 4, 5, 6, 7, 8})
                                .at(8, {0x11, 0x12, 0x13, 0x14})
                                .text(12, "lbs-1")
                                .at(76, {0xff})
                                .at(77, {0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x28})
                                .at(12073, {0x31, 0x32, 0x33, 0x34})});
  family.goldens.push_back({"CTarnFWCmdGetLBStatSize", 89, 112, "GetLBStatSize", 4141, 4141, 4141,
                            getLBStatSize, statBytes(4141)});
  family.goldens.push_back({"CTarnFWCmdClearLBStat", 90, 113, "ClearLBStat", 4141, 4141, 4141,
                            clearLBStat, statBytes(4141)});

  readsNothing(family.replies, "CTarnFWCmdGetLBConfigSize", getLBConfigSize);
  readsNothing(family.replies, "CTarnFWCmdGetLBStatSize", getLBStatSize);
  family.replies.push_back({"CTarnFWCmdClearLBStat",
                            clearLBStat,
                            Bytes(4141).at(140, {0x08}),
                            {{4141, kPoolsCleared}},
                            {}});
  family.ownReplyTest = {"CTarnFWCmdGetLBConfig", "CTarnFWCmdGetLBStat"};

  // The counts in the blocks are there for the kernel of this host only.
  family.cutRequest = {"CTarnFWCmdGetLBConfig"};

  addAlgs(family);
  return family;
}
