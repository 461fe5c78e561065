// The commands on load balancers: their sizes by what the kernel said that there is, and the log.

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "CommandTest.h"
#include "TarnFWCmdGetLBConfig.h"
#include "TarnFWCmdGetLBStat.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

using TarnFWCmdLoadBalancer = CommandTest<FWAddrSetID_t>;

namespace {

constexpr std::uint32_t kMost = std::numeric_limits<std::uint32_t>::max();

FWLBConfigSize_ sizesOf(std::uint32_t active, std::uint32_t stale) {
  FWLBConfigSize_ sizes{};
  sizes.activeCount = active;
  sizes.staleCount = stale;
  return sizes;
}

FWLBStat_ statOf(std::uint32_t virtualServers, std::uint32_t pools) {
  FWLBStat_ stat{};
  stat.virtualServers = virtualServers;
  stat.pools = pools;
  return stat;
}

}  // namespace

TEST_F(TarnFWCmdLoadBalancer, WithoutARecordOnlyTheHeadIsSent) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdGetLBConfig(&port), 86, 81, "describe config of lb of filter nic-1");
  expectIdentity(CTarnFWCmdGetLBStat(&port), 88, 4141, "describe stat of lb of filter nic-1");
  CTarnFWCmdGetLBConfig config(nullptr);
  EXPECT_EQ(requestOf(config), Bytes(81).at(0, {81}));
  CTarnFWCmdGetLBStat stat(nullptr);
  EXPECT_EQ(requestOf(stat), Bytes(4141));
}

TEST_F(TarnFWCmdLoadBalancer, ARecordWithoutServicesAddsNothing) {
  const FWLBConfigSize_ sizes = sizesOf(0, 0);
  EXPECT_EQ(CTarnFWCmdGetLBConfig(nullptr, &sizes).getMsgSize(), 81u);
  const FWLBStat_ stat = statOf(0, 0);
  EXPECT_EQ(CTarnFWCmdGetLBStat(nullptr, &stat).getMsgSize(), 4141u);
}

TEST_F(TarnFWCmdLoadBalancer, EveryServiceTakesABlockOfItsSize) {
  FWLBConfigSize_ sizes = sizesOf(1, 0);
  sizes.services[0].virtualServers = 1;
  sizes.services[0].pools = 2;
  sizes.services[0].poolMembers = 3;
  EXPECT_EQ(CTarnFWCmdGetLBConfig(nullptr, &sizes).getMsgSize(), 526u);
  sizes.staleCount = 999;
  EXPECT_EQ(CTarnFWCmdGetLBConfig(nullptr, &sizes).getMsgSize(), 526u + 999 * 85);
}

TEST_F(TarnFWCmdLoadBalancer, OnlyThePoolsThatAreCountedHaveMembers) {
  FWLBStat_ stat = statOf(2, 1);
  stat.memberCounts[0] = 5;
  stat.memberCounts[1] = 7;
  EXPECT_EQ(CTarnFWCmdGetLBStat(nullptr, &stat).getMsgSize(), 4141u + 2 * 200 + 49 + 5 * 183);
}

TEST_F(TarnFWCmdLoadBalancer, MoreServicesOrPoolsThanARecordHoldsAreRefused) {
  using Row = std::tuple<std::uint32_t, std::uint32_t, const char*>;
  for (const auto& [active, stale, count] :
       {Row{1001, 0, "1001"}, Row{1, 1000, "1001"}, Row{kMost, 0, "-1"}, Row{kMost, 1, "0"},
        Row{kMost, kMost, "-2"}}) {
    const FWLBConfigSize_ sizes = sizesOf(active, stale);
    EXPECT_THROW_WITH(
        CTarnFWCmdGetLBConfig(nullptr, &sizes), CIntegerOverflowException, 17,
        std::string("integer overflow for the number of load balancer services: ") + count);
  }
  const FWLBStat_ stat = statOf(0, 1001);
  EXPECT_THROW_WITH(CTarnFWCmdGetLBStat(nullptr, &stat), CIntegerOverflowException, 17,
                    "integer overflow for the number of load balancer pools: 1001");
}

TEST_F(TarnFWCmdLoadBalancer, ASizeOfMoreThan32BitsIsRefused) {
  for (host32 FWLBServiceSize_::*count :
       {&FWLBServiceSize_::virtualServers, &FWLBServiceSize_::pools,
        &FWLBServiceSize_::poolMembers}) {
    FWLBConfigSize_ sizes = sizesOf(1, 0);
    sizes.services[0].*count = kMost;
    EXPECT_THROW_WITH(CTarnFWCmdGetLBConfig(nullptr, &sizes), CIntegerOverflowException, 17,
                      "integer overflow for the number of load balancer services: 1");
  }
  // The largest that a message holds: 81 + 85 + 24 x 178956963 is 18 below 32 bits.
  FWLBConfigSize_ sizes = sizesOf(1, 0);
  sizes.services[0].pools = 178956963;
  EXPECT_EQ(CTarnFWCmdGetLBConfig(nullptr, &sizes).getMsgSize(), 4294967278u);
  sizes.services[0].pools = 178956964;
  EXPECT_THROW_WITH(CTarnFWCmdGetLBConfig(nullptr, &sizes), CIntegerOverflowException, 17,
                    "integer overflow for the number of load balancer services: 1");

  FWLBStat_ stat = statOf(kMost, 0);
  EXPECT_THROW_WITH(CTarnFWCmdGetLBStat(nullptr, &stat), CIntegerOverflowException, 17,
                    "integer overflow for the number of load balancer pools: 0");
  stat = statOf(0, 2);
  stat.memberCounts[0] = kMost;
  stat.memberCounts[1] = kMost;
  EXPECT_THROW_WITH(CTarnFWCmdGetLBStat(nullptr, &stat), CIntegerOverflowException, 17,
                    "integer overflow for the number of load balancer pools: 2");
}

TEST_F(TarnFWCmdLoadBalancer, AnIdentifierMayFillItsField) {
  FWLBConfigSize_ sizes = sizesOf(0, 0);
  std::string(64, 'u').copy(sizes.uuid, sizeof sizes.uuid);
  CTarnFWCmdGetLBConfig command(nullptr, &sizes);
  EXPECT_EQ(requestOf(command), Bytes(81).at(0, {81}).text(16, std::string(64, 'u')));
}

TEST_F(TarnFWCmdLoadBalancer, TheRequestIsLoggedWithItsBlocksAboveLevelOne) {
  FWLBConfigSize_ sizes = sizesOf(1, 1);
  sizes.id = 7;
  sizes.flags = 0x06;
  std::string("lbs-1").copy(sizes.uuid, sizeof sizes.uuid);
  sizes.services[1].virtualServers = 1;
  sizes.services[1].pools = 2;
  sizes.services[1].poolMembers = 3;
  CTarnFWCmdGetLBConfig command(nullptr, &sizes);
  const auto linesAt = [&](int level) {
    log.clear();
    g_tarnfw_verbose[FW_COMPONENT_CMD].level = level;
    Bytes body(command.getMsgSize());
    unsigned int written = 0;
    EXPECT_TRUE(command.writeCmdBody(body.data(), command.getMsgSize(), &written, 0));
    return log.normalized();
  };
  EXPECT_TRUE(linesAt(1).empty());
  const std::vector<std::string> lines = linesAt(2);
  ASSERT_EQ(lines.size(), 3u);
  const std::string place = "7|tarnfw:cmd TarnFWCmdGetLBConfig:writeCmdBody():N LB config: ";
  EXPECT_EQ(lines[0], place +
                          "size 611 lbs_cnt 1 stale_lbs 1 options: (current 0 all 1 debug 1 "
                          "id 7 uuid lbs-1)\n\n");
  EXPECT_EQ(lines[1].find(place + "LB-0: vs 0 pool 0 pm 0 lbs 0x"), 0u) << lines[1];
  EXPECT_EQ(lines[2].find(place + "LB-1: vs 1 pool 2 pm 3 lbs 0x"), 0u) << lines[2];
}
