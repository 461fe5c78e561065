// The commands on load balancers: their sizes by what the kernel said that there is, what they
// print of any reply, and the log.

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <sstream>
#include <tuple>
#include <utility>

#include "CommandTest.h"
#include "TarnFWCmdClearLBStat.h"
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

/// One active service with 1 virtual server, 1 pool and 1 member, and one stale one without any.
FWLBConfigSize_ twoServices() {
  FWLBConfigSize_ sizes = sizesOf(1, 1);
  sizes.services[0].virtualServers = 1;
  sizes.services[0].pools = 1;
  sizes.services[0].poolMembers = 1;
  return sizes;
}
constexpr std::size_t kFirst = 81, kSecond = 81 + 85 + 90 + 24 + 74;

/// The kernel's answer about them.
Bytes twoServicesReply() {
  return Bytes(kSecond + 85)
      .at(4, {1})
      .at(8, {1})
      .at(12, {9})
      .text(16, "lbs")
      .at(80, {2})
      .at(kFirst + 68, {1})
      .at(kFirst + 72, {1})
      .at(kFirst + 76, {1});
}

/// The answer with another number at an offset.
Bytes replyWith(std::size_t offset, std::uint32_t value) {
  Bytes reply = twoServicesReply();
  return put32(reply, offset, value);
}

/// The head of what is printed, up to the services.
std::string configHead(const std::string& active, const std::string& stale) {
  return "{\n    \"active_count\": " + active + ",\n    \"stale_count\": " + stale +
         ",\n    \"id\": 9,\n    \"uuid\": \"lbs\",\n    \"flags\": 2,\n    \"services\": [\n";
}

std::string service(int index, const std::string& state, int count) {
  const std::string number = std::to_string(count);
  return "        {\n            \"index\": " + std::to_string(index) +
         ",\n            \"state\": \"" + state +
         "\",\n            \"virtual_servers\": " + number + ",\n            \"pools\": " + number +
         ",\n            \"pool_members\": " + number + "\n        }";
}

const std::string kConfigEnd = "    ]\n}\n";

/// 1 virtual server; 2 pools, of 1 and 0 members.
FWLBStat_ someStatistics() {
  FWLBStat_ stat = statOf(1, 2);
  stat.memberCounts[0] = 1;
  return stat;
}

std::string statistics(const std::string& servers, const std::string& pools) {
  return "{\n    \"virtual_server_count\": " + servers + ",\n    \"pool_count\": " + pools +
         ",\n    \"virtual_servers\": [\n";
}

std::string entry(int level, const std::string& fields) {
  const std::string indent(static_cast<std::size_t>(4 * level), ' ');
  return indent + "{\n" + fields + indent + "}";
}

std::string indexLine(int level, int index, const char* end) {
  return std::string(static_cast<std::size_t>(4 * level), ' ') +
         "\"index\": " + std::to_string(index) + end;
}

/// The command reads a reply of the first bytes of this one, after which memory ends.
void checkCut(CTarnFWCmd& command, const Bytes& whole, std::size_t size) {
  const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[size]);
  std::copy_n(whole.begin(), size, block.get());
  command.checkCmdReply(block.get(), static_cast<unsigned int>(size));
}

}  // namespace

TEST_F(TarnFWCmdLoadBalancer, TheConfigurationIsPrintedWithItsServices) {
  const FWLBConfigSize_ sizes = twoServices();
  CTarnFWCmdGetLBConfig command(nullptr, &sizes);
  EXPECT_EQ(printedFor(command, twoServicesReply()),
            configHead("1", "1") + service(0, "active", 1) + ",\n" + service(1, "stale", 0) + "\n" +
                kConfigEnd);
}

TEST_F(TarnFWCmdLoadBalancer, NoMoreServicesArePrintedThanWereAskedFor) {
  const FWLBConfigSize_ sizes = twoServices();
  CTarnFWCmdGetLBConfig command(nullptr, &sizes);
  EXPECT_EQ(printedFor(command, replyWith(4, kMost)),
            configHead("4294967295", "1") + service(0, "active", 1) + ",\n" +
                service(1, "active", 0) + "\n" + kConfigEnd);
  EXPECT_EQ(printedFor(command, replyWith(8, 0)),
            configHead("1", "0") + service(0, "active", 1) + "\n" + kConfigEnd);
  Bytes none = replyWith(8, 0);
  EXPECT_EQ(printedFor(command, put32(none, 4, 0)), configHead("0", "0") + kConfigEnd);
  CTarnFWCmdGetLBConfig without(nullptr);
  EXPECT_EQ(printedFor(without, Bytes(0)),
            "{\n    \"active_count\": 0,\n    \"stale_count\": 0,\n    \"id\": 0,\n"
            "    \"uuid\": \"\",\n    \"flags\": 0,\n    \"services\": [\n    ]\n}\n");
}

TEST_F(TarnFWCmdLoadBalancer, ABlockThatGoesPastTheReplyEndsTheList) {
  const FWLBConfigSize_ sizes = twoServices();
  CTarnFWCmdGetLBConfig command(nullptr, &sizes);
  for (const std::size_t count : {std::size_t{68}, std::size_t{72}, std::size_t{76}}) {
    EXPECT_EQ(printedFor(command, replyWith(kFirst + count, kMost)),
              configHead("1", "1") + kConfigEnd)
        << count;
    // The second block has room for its head only.
    EXPECT_EQ(printedFor(command, replyWith(kSecond + count, 1)),
              configHead("1", "1") + service(0, "active", 1) + "\n" + kConfigEnd)
        << count;
  }
  // A first block that says it is smaller: what follows it is read as the next, up to the number
  // that was asked for.
  Bytes reply = twoServicesReply();
  put32(put32(put32(reply, kFirst + 68, 0), kFirst + 72, 0), kFirst + 76, 0);
  for (const std::uint32_t stale : {1u, 2u, kMost}) {
    EXPECT_EQ(printedFor(command, put32(reply, 8, stale)),
              configHead("1", std::to_string(stale)) + service(0, "active", 0) + ",\n" +
                  service(1, "stale", 0) + "\n" + kConfigEnd);
  }
}

TEST_F(TarnFWCmdLoadBalancer, AnIdentifierOfAnyBytesStaysInItsQuotes) {
  CTarnFWCmdGetLBConfig command(nullptr);
  Bytes reply(81);
  reply.text(16, std::string(64, '"'));
  std::string quotes;
  for (int i = 0; i < 64; ++i) quotes += "\\\"";
  EXPECT_NE(printedFor(command, reply).find("\"uuid\": \"" + quotes + "\",\n"), std::string::npos);
}

TEST_F(TarnFWCmdLoadBalancer, StatisticsArePrintedByTheirPlaces) {
  const FWLBStat_ stat = someStatistics();
  CTarnFWCmdGetLBStat command(nullptr, &stat);
  const std::string member = entry(4, indexLine(5, 0, "\n"));
  const auto pool = [&](int index, int count, const std::string& members) {
    return entry(2, indexLine(3, index, ",\n") +
                        "            \"member_count\": " + std::to_string(count) +
                        ",\n            \"members\": [\n" + members + "            ]\n");
  };
  EXPECT_EQ(printedFor(command, requestOf(command)),
            statistics("1", "2") + entry(2, indexLine(3, 0, "\n")) +
                "\n    ],\n    \"pools\": [\n" + pool(0, 1, member + "\n") + ",\n" +
                pool(1, 0, "") + "\n    ]\n}\n");
}

TEST_F(TarnFWCmdLoadBalancer, MoreDetailIsTheBytesOfEachBlock) {
  const FWLBStat_ stat = someStatistics();
  CTarnFWCmdGetLBStat command(nullptr, &stat);
  Bytes reply = requestOf(command);
  reply.at(140, {0x10});
  std::fill(reply.begin() + 4141, reply.begin() + 4341, std::uint8_t{0xa1});
  std::fill(reply.begin() + 4341, reply.begin() + 4390, std::uint8_t{0xb2});
  std::fill(reply.begin() + 4390, reply.begin() + 4439, std::uint8_t{0xc3});
  std::fill(reply.begin() + 4439, reply.end(), std::uint8_t{0xd4});
  const std::string text = printedFor(command, reply);
  const auto bytes = [](const std::string& digits, int count) {
    std::string line = "\"bytes\": \"";
    for (int i = 0; i < count; ++i) line += digits;
    return line + "\"";
  };
  std::size_t at = 0;
  for (const std::string& line :
       {bytes("a1", 200), bytes("b2", 49), bytes("d4", 183), bytes("c3", 49)}) {
    at = text.find(line, at);
    ASSERT_NE(at, std::string::npos) << line;
  }
}

TEST_F(TarnFWCmdLoadBalancer, CountsAboveThoseThatWereAskedForAreNotBelieved) {
  const FWLBStat_ stat = someStatistics();
  CTarnFWCmdGetLBStat command(nullptr, &stat);
  const std::string whole = printedFor(command, requestOf(command));
  Bytes reply = requestOf(command);
  put32(put32(put32(reply, 4, kMost), 8, kMost), 141, kMost);
  std::string expected = whole;
  const auto replace = [&](const std::string& from, const std::string& to) {
    ASSERT_NE(expected.find(from), std::string::npos) << from;
    expected.replace(expected.find(from), from.size(), to);
  };
  replace("\"virtual_server_count\": 1", "\"virtual_server_count\": 4294967295");
  replace("\"pool_count\": 2", "\"pool_count\": 4294967295");
  replace("\"member_count\": 1", "\"member_count\": 4294967295");
  EXPECT_EQ(printedFor(command, reply), expected);
  // Smaller ones are.
  put32(put32(reply, 4, 0), 8, 0);
  EXPECT_EQ(printedFor(command, reply),
            statistics("0", "0") + "    ],\n    \"pools\": [\n    ]\n}\n");
}

TEST_F(TarnFWCmdLoadBalancer, MembersAreThoseOfTheirPoolAsFarAsTheyWereAskedFor) {
  FWLBStat_ stat = statOf(0, 2);
  stat.flags = kLBStatDebug;
  stat.memberCounts[0] = 1;
  stat.memberCounts[1] = 1;
  CTarnFWCmdGetLBStat command(nullptr, &stat);
  Bytes whole = requestOf(command);
  std::size_t at = 4141;
  for (const auto& [size, value] :
       {std::pair{49, 0xb1}, std::pair{49, 0xb2}, std::pair{183, 0xc1}, std::pair{183, 0xc2}}) {
    for (int i = 0; i < size; ++i) whole[at++] = static_cast<std::uint8_t>(value);
  }
  // The first byte of each block that is printed.
  const auto blocksOf = [&](std::size_t offset, std::uint32_t count) {
    Bytes reply = whole;
    const std::string text = printedFor(command, put32(reply, offset, count));
    const std::string start = "\"bytes\": \"";
    std::string blocks;
    for (std::size_t i = 0; (i = text.find(start, i)) != std::string::npos; ++i) {
      blocks += text.substr(i + start.size(), 2) + " ";
    }
    return blocks;
  };
  EXPECT_EQ(blocksOf(8, 2), "b1 c1 b2 c2 ");
  EXPECT_EQ(blocksOf(141, 2), "b1 c1 b2 c2 ") << "not the member of the next pool";
  EXPECT_EQ(blocksOf(141, 0), "b1 b2 c1 ");
  EXPECT_EQ(blocksOf(8, 1), "b1 b2 ") << "the members stand after one pool";
}

TEST_F(TarnFWCmdLoadBalancer, NothingIsPrintedOfWhatIsNotThere) {
  const FWLBStat_ stat = someStatistics();
  CTarnFWCmdGetLBStat command(nullptr, &stat);
  for (const int flags : {0x40, 0x80, 0xc0, 0xff}) {
    EXPECT_EQ(printedFor(command, requestOf(command).at(140, {flags})), "") << flags;
  }
  EXPECT_NE(printedFor(command, requestOf(command).at(140, {0x3f})), "");
}

TEST_F(TarnFWCmdLoadBalancer, AReplyThatEndsEarlyIsPrintedAsFarAsItsBlocksGo) {
  const FWLBStat_ stat = someStatistics();
  CTarnFWCmdGetLBStat command(nullptr, &stat);
  const Bytes whole = requestOf(command);
  for (const std::size_t size : {std::size_t{0}, std::size_t{140}, std::size_t{4140}}) {
    const Printed printed;
    EXPECT_THROW(checkCut(command, whole, size), CInsufficientMsgBufException) << size;
    EXPECT_EQ(printed.text(), "") << size;
  }
  for (std::size_t size = 4141; size <= whole.size(); ++size) {
    const Printed printed;
    checkCut(command, whole, size);
    const std::string text = printed.text();
    std::size_t found = 0;
    for (std::size_t at = 0; (at = text.find("\"index\"", at)) != std::string::npos; ++at) ++found;
    // The virtual server, its pools, and the member of the first one.
    const std::size_t entries = (size >= 4341 ? 1u : 0u) + (size >= 4390 ? 1u : 0u) +
                                (size >= 4439 ? 1u : 0u) + (size >= 4622 ? 1u : 0u);
    EXPECT_EQ(found, entries) << size;
    EXPECT_EQ(text.substr(text.size() - 3), "\n}\n") << size;
  }
}

TEST_F(TarnFWCmdLoadBalancer, AConfigurationThatEndsEarlyIsPrintedAsFarAsItsBlocksGo) {
  const FWLBConfigSize_ sizes = twoServices();
  CTarnFWCmdGetLBConfig command(nullptr, &sizes);
  const Bytes whole = twoServicesReply();
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const Printed printed;
    if (size < kFirst) {
      EXPECT_THROW(checkCut(command, whole, size), CInsufficientMsgBufException) << size;
      EXPECT_EQ(printed.text(), "") << size;
      continue;
    }
    checkCut(command, whole, size);
    std::string services;
    if (size >= kSecond) services = service(0, "active", 1);
    if (size == whole.size()) services += ",\n" + service(1, "stale", 0);
    if (!services.empty()) services += "\n";
    EXPECT_EQ(printed.text(), configHead("1", "1") + services + kConfigEnd) << size;
  }
}

TEST_F(TarnFWCmdLoadBalancer, ClearingSaysWhatItCleared) {
  CTarnFWCmdClearLBStat command(nullptr, someStatistics());
  const auto sentence = [](const std::string& what) {
    return "{\n    \"result\": \"" + what +
           " stats on datapath is cleared. In rare cases some of the counters may not be cleared "
           "and when that happens please try issuing the command again\"\n}\n";
  };
  EXPECT_EQ(printedFor(command, Bytes(4141).at(140, {4})), sentence("vs"));
  EXPECT_EQ(printedFor(command, Bytes(4141).at(140, {12})), sentence("vs"));
  EXPECT_EQ(printedFor(command, Bytes(4141).at(140, {8})), sentence("pool"));
  EXPECT_EQ(printedFor(command, Bytes(4141, 0xff)), sentence("vs"));
  EXPECT_EQ(printedFor(command, Bytes(4141)), "{\n\n}\n");
}

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
  Bytes body(command.getMsgSize());
  const auto linesAt = [&](int level) {
    log.clear();
    g_tarnfw_verbose[FW_COMPONENT_CMD].level = level;
    unsigned int written = 0;
    EXPECT_TRUE(command.writeCmdBody(body.data(), command.getMsgSize(), &written, 0));
    return log.normalized();
  };
  EXPECT_TRUE(linesAt(1).empty());
  const std::string place = "7|tarnfw:cmd TarnFWCmdGetLBConfig:writeCmdBody():N LB config: ";
  const auto addressOf = [&](std::size_t offset) {
    std::ostringstream text;
    text << static_cast<const void*>(body.data() + offset);
    return text.str();
  };
  EXPECT_EQ(linesAt(2),
            (std::vector<std::string>{
                place + "size 611 lbs_cnt 1 stale_lbs 1 options: (current 0 all 1 debug 1 "
                        "id 7 uuid lbs-1)\n\n",
                place + "LB-0: vs 0 pool 0 pm 0 lbs " + addressOf(81) + "\n\n",
                place + "LB-1: vs 1 pool 2 pm 3 lbs " + addressOf(81 + 85) + "\n\n"}));
  // Of the active ones, by id and by uuid.
  for (const auto& [flags, options] :
       {std::pair{0x01, "current 1 all 0 debug 0"}, std::pair{0x1a, "current 0 all 1 debug 0"}}) {
    sizes.flags = static_cast<std::uint8_t>(flags);
    CTarnFWCmdGetLBConfig other(nullptr, &sizes);
    log.clear();
    unsigned int written = 0;
    EXPECT_TRUE(other.writeCmdBody(body.data(), other.getMsgSize(), &written, 0));
    EXPECT_EQ(log.normalized().at(0), place + "size 611 lbs_cnt 1 stale_lbs 1 options: (" +
                                          options + " id 7 uuid lbs-1)\n\n");
  }
}
