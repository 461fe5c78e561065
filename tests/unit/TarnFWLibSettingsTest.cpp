// The flat functions about settings of a filter: what they send and hand out, and what they refuse.

#include <cstring>
#include <functional>
#include <memory>
#include <vector>

#include "LibraryTest.h"

using namespace TarnFirewall;

namespace {

class TarnFWLibSettings : public LibraryTest {
 protected:
  FWFailPolicy_t policy{};
  FWInstTimeout_ timeouts{};
  FWFloodCfg_ flood{};
  FWFloodStat_ stat{};
  unsigned int number = 0;
  unsigned int count = 0;
  std::uint8_t mac[6] = {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5};
  FWAddress_ addresses[3] = {};
};

}  // namespace

TEST_F(TarnFWLibSettings, EveryArgumentStandsInItsPlaceOfTheRequest) {
  std::uint8_t room[6] = {};
  timeouts.values[2] = 5;
  timeouts.marks[2] = 1;
  flood.zeroCounters = 1;
  stat.zeroCounters = 1;
  stat.rowSize = 24;
  addresses[0] = ipv4(1);
  addresses[1] = ipv4(2);
  expectRequests({
      {31, [&](void* c) { return FW_SetFailPolicy(handle, &port, c, FW_FAIL_CLOSE); }, Bytes({1})},
      {35, [&](void* c) { return FW_GetFailPolicy(handle, &port, c, &policy); }, Bytes(1)},
      {32, [&](void* c) { return FW_EnableVerboseLog(handle, &port, c, 2, 3); },
       Bytes({2, 0, 0, 3})},
      {33, [&](void* c) { return FW_DebugComponent(handle, &port, c, 20, 4); },
       Bytes({20, 0, 0, 4})},
      {34, [&](void* c) { return FW_DebugStatus(handle, &port, c); }, Bytes(23).at(21, {21})},
      {41, [&](void* c) { return FW_SetTimeout(handle, &port, c, &timeouts); },
       Bytes(112).at(8, {5}).at(90, {1})},
      {42, [&](void* c) { return FW_GetTimeout(handle, &port, c, &timeouts); },
       Bytes(112).at(8, {5}).at(90, {1})},
      {78, [&](void* c) { return FW_SetFloodCfg(handle, &port, c, &flood); },
       Bytes(36).at(32, {1})},
      {79, [&](void* c) { return FW_GetFloodStat(handle, &port, c, &stat); },
       Bytes(12424).at(0, {1}).at(128, {24})},
      {54, [&](void* c) { return FW_SetSkifferExportver(handle, &port, c, 0x04030201); },
       Bytes({1, 2, 3, 4})},
      {55, [&](void* c) { return FW_GetSkifferExportver(handle, &port, c, &number); }, Bytes(4)},
      {49, [&](void* c) { return FW_ConfigICMPErrPktDrop(handle, &port, c, 1); },
       Bytes({1, 0, 0, 0})},
      {25, [&](void* c) { return FW_CreateSpoofGuard(handle, &port, c, addresses, 2, mac); },
       Bytes(300)
           .at(0, {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5, 0, 0, 2})
           .at(12, {1, 0, 0, 0, 10, 0, 0, 1})
           .at(156, {1, 0, 0, 0, 10, 0, 0, 2})},
      {25, [&](void* c) { return FW_CreateSpoofGuard(handle, &port, c, nullptr, 0, mac); },
       Bytes(156).at(0, {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5})},
      {26, [&](void* c) { return FW_DeleteSpoofGuard(handle, &port, c, mac); },
       Bytes({0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5, 0, 0})},
      {26, [&](void* c) { return FW_DeleteSpoofGuard(handle, &port, c, nullptr); }, Bytes(8)},
      {27,
       [&](void* c) {
         count = 0;
         return FW_CheckSpoofGuard(handle, &port, c, &number, room, &count, nullptr);
       },
       Bytes(147468).at(8, {1})},
      {28, [&](void* c) { return FW_GetSpoofGuardStat(handle, &port, c); }, Bytes(56)},
      {29, [&](void* c) { return FW_GetKifStat(handle, &port, c); }, Bytes(1642)},
      {30, [&](void* c) { return FW_ClearKifStat(handle, &port, c); }, Bytes(1642)},
      {68,
       [&](void* c) {
         number = 0x04030201;
         return FW_FpFlag(handle, &port, c, &number, 0x08070605);
       },
       Bytes({1, 2, 3, 4, 5, 6, 7, 8})},
      {39, [&](void* c) { return FW_GetKifFlags(handle, &port, c); }, Bytes(1316)},
      {40, [&](void* c) { return FW_SetKifFlags(handle, &port, c, "fast", 1); },
       Bytes(1316).text(4, "fast").at(1284, {1})},
  });
}

TEST_F(TarnFWLibSettings, ANullHandleIsStatusTwoBeforeAnythingElse) {
  EXPECT_EQ(FW_SetFailPolicy(nullptr, &port, nullptr, static_cast<FWFailPolicy_t>(2)), 2u);
  EXPECT_EQ(FW_GetFailPolicy(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_EnableVerboseLog(nullptr, &port, nullptr, 0, 0), 2u);
  EXPECT_EQ(FW_DebugComponent(nullptr, &port, nullptr, 21, 0), 2u);
  EXPECT_EQ(FW_DebugStatus(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_SetTimeout(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetTimeout(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetFloodCfg(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetFloodStat(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetSkifferExportver(nullptr, &port, nullptr, 1), 2u);
  EXPECT_EQ(FW_GetSkifferExportver(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_ConfigICMPErrPktDrop(nullptr, &port, nullptr, 1), 2u);
  EXPECT_EQ(FW_CreateSpoofGuard(nullptr, &port, nullptr, nullptr, 1, nullptr), 2u);
  EXPECT_EQ(FW_DeleteSpoofGuard(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_CheckSpoofGuard(nullptr, &port, nullptr, nullptr, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetSpoofGuardStat(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_GetKifStat(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_ClearKifStat(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_FpFlag(nullptr, &port, nullptr, nullptr, 0), 2u);
  EXPECT_EQ(FW_GetKifFlags(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_SetKifFlags(nullptr, &port, nullptr, nullptr, 0), 2u);
}

TEST_F(TarnFWLibSettings, WhatIsRefusedSendsNothing) {
  EXPECT_EQ(FW_SetFailPolicy(handle, &port, nullptr, static_cast<FWFailPolicy_t>(2)), 7u);
  EXPECT_EQ(FW_GetFailPolicy(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_EnableVerboseLog(handle, &port, nullptr, 3, 0), 7u);
  EXPECT_EQ(FW_EnableVerboseLog(handle, &port, nullptr, 1, 16), 7u);
  EXPECT_EQ(FW_DebugComponent(handle, &port, nullptr, 21, 0), 7u);
  EXPECT_EQ(FW_SetTimeout(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetTimeout(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_SetFloodCfg(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetFloodStat(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetSkifferExportver(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_FpFlag(handle, &port, nullptr, nullptr, 0), 3u);
  EXPECT_EQ(FW_SetKifFlags(handle, &port, nullptr, nullptr, 0), 3u);
  EXPECT_EQ(FW_CreateSpoofGuard(handle, &port, nullptr, nullptr, 1, mac), 3u);
  EXPECT_EQ(FW_CreateSpoofGuard(handle, &port, nullptr, addresses, 1, nullptr), 3u);
  addresses[0].type = 0xeeee;
  EXPECT_EQ(FW_CreateSpoofGuard(handle, &port, nullptr, addresses, 1, mac), 33u);
  count = 1;
  EXPECT_EQ(FW_CheckSpoofGuard(handle, &port, nullptr, nullptr, mac, &count, addresses), 3u);
  EXPECT_EQ(FW_CheckSpoofGuard(handle, &port, nullptr, &number, nullptr, &count, addresses), 3u);
  EXPECT_EQ(FW_CheckSpoofGuard(handle, &port, nullptr, &number, mac, nullptr, addresses), 3u);
  EXPECT_EQ(FW_CheckSpoofGuard(handle, &port, nullptr, &number, mac, &count, nullptr), 3u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibSettings, AFailPolicyComesBackAsTheKernelHasIt) {
  for (const unsigned int answered : {0u, 1u, 255u}) {
    kernel.answer(0, Bytes(1, static_cast<std::uint8_t>(answered)));
    EXPECT_EQ(FW_GetFailPolicy(handle, &port, nullptr, &policy), 0u);
    EXPECT_EQ(policy, answered);
  }
}

TEST_F(TarnFWLibSettings, NumbersComeBackAsTheKernelHasThem) {
  kernel.answer(0, Bytes({1, 2, 3, 0xff}));
  EXPECT_EQ(FW_GetSkifferExportver(handle, &port, nullptr, &number), 0u);
  EXPECT_EQ(number, 0xff030201u);
  number = 1;
  kernel.answer(0, Bytes({5, 0, 0, 0, 9, 9, 9, 9}));
  EXPECT_EQ(FW_FpFlag(handle, &port, nullptr, &number, 1), 0u);
  EXPECT_EQ(number, 5u);
}

TEST_F(TarnFWLibSettings, TimeoutsComeBackWithTheMarksOfTheKernel) {
  timeouts.marks[0] = 1;
  kernel.answer(0, Bytes(112).at(84, {1, 2, 3, 4}).at(109, {7}));
  EXPECT_EQ(FW_GetTimeout(handle, &port, nullptr, &timeouts), 0u);
  EXPECT_EQ(timeouts.values[21], 0x04030201u);
  EXPECT_EQ(timeouts.marks[21], 7);
  EXPECT_EQ(timeouts.marks[0], 0);
}

TEST_F(TarnFWLibSettings, EveryFieldOfTheFloodStateIsAtItsPlace) {
  Bytes reply(12424);
  for (std::uint32_t i = 0; i < 16; ++i) put32(reply, 4 * i, 100 + i);
  for (std::uint64_t i = 0; i < 8; ++i) put64(reply, 64 + 8 * i, 200 + i);
  put32(put32(reply, 128, 24), 132, 2);
  put64(put64(put32(reply, 136 + 24, 31), 136 + 32, 32), 136 + 40, 33);
  put64(reply, 12416, 34);
  kernel.answer(0, reply);
  ASSERT_EQ(FW_GetFloodStat(handle, &port, nullptr, &stat), 0u);
  const std::vector<std::uint32_t> words = {
      stat.zeroCounters,  stat.udpLimit,       stat.udpActive,   stat.icmpLimit,    stat.icmpActive,
      stat.tcpLimit,      stat.tcpActive,      stat.otherLimit,  stat.otherActive,  stat.syncache,
      stat.syncacheFirst, stat.syncacheSecond, stat.rstSpoofing, stat.syncacheInUse};
  EXPECT_EQ(words, (std::vector<std::uint32_t>{100, 101, 102, 103, 104, 105, 106, 107, 108, 109,
                                               110, 111, 113, 114}));
  const std::vector<std::uint64_t> longs = {
      stat.syncachePurged, stat.syncacheNotFound, stat.udpDenied, stat.icmpDenied,
      stat.tcpDenied,      stat.otherDenied,      stat.rstSent};
  EXPECT_EQ(longs, (std::vector<std::uint64_t>{200, 201, 202, 203, 204, 205, 207}));
  EXPECT_EQ(stat.rowSize, 24u);
  EXPECT_EQ(stat.rowCount, 2u);
  EXPECT_EQ(stat.rows[1].inUse, 31u);
  EXPECT_EQ(stat.rows[1].purged, 32u);
  EXPECT_EQ(stat.rows[1].notFound, 33u);
  EXPECT_EQ(stat.rows[511].notFound, 34u);
  for (const std::uint32_t claimed : {513u, ~0u}) {
    kernel.answer(0, put32(reply, 132, claimed));
    EXPECT_EQ(FW_GetFloodStat(handle, &port, nullptr, &stat), 0u);
    EXPECT_EQ(stat.rowCount, 512u);
  }
}

TEST_F(TarnFWLibSettings, ASpoofGuardComesBackUpToTheRoomOfTheCaller) {
  Bytes reply = Bytes(147468).at(0, {1, 2, 3, 4, 5, 6, 1}).at(8, {3});
  for (int i = 0; i < 3; ++i) {
    reply.at(12 + 144 * static_cast<std::size_t>(i), {1, 0, 0, 0, 10, 0, 0, i + 1});
  }
  count = 2;
  kernel.answer(0, reply);
  ASSERT_EQ(FW_CheckSpoofGuard(handle, &port, nullptr, &number, mac, &count, addresses), 0u);
  EXPECT_EQ(number, 1u);
  EXPECT_EQ(mac[0], 1);
  EXPECT_EQ(mac[5], 6);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(addresses[1].value[3], 2);
  EXPECT_EQ(addresses[2].value[3], 0) << "there was no room for it";
  kernel.answer(0, reply.at(6, {0xfe}));
  ASSERT_EQ(FW_CheckSpoofGuard(handle, &port, nullptr, &number, mac, &count, addresses), 0u);
  EXPECT_EQ(number, 0u);
  EXPECT_EQ(addresses[2].value[3], 3);
}

TEST_F(TarnFWLibSettings, ASpoofGuardsCountIsBoundedByTheReply) {
  const auto room = std::make_unique<FWAddress_[]>(1025);
  room[1024].type = 0x7777;
  for (const std::uint32_t claimed : {0u, 1024u, 1025u, ~0u}) {
    Bytes reply(147468);
    kernel.answer(0, put32(reply, 8, claimed));
    count = 1025;
    EXPECT_EQ(FW_CheckSpoofGuard(handle, &port, nullptr, &number, mac, &count, room.get()), 0u);
    EXPECT_EQ(count, claimed == 0 ? 0u : 1024u);
    EXPECT_EQ(room[1024].type, 0x7777u);
  }
}

TEST_F(TarnFWLibSettings, WhatTheKernelRefusesChangesNoResult) {
  number = 77;
  count = 3;
  for (const auto& call : std::vector<std::function<FWStatus_t()>>{
           [&] { return FW_GetSkifferExportver(handle, &port, nullptr, &number); },
           [&] { return FW_FpFlag(handle, &port, nullptr, &number, 1); },
           [&] {
             return FW_CheckSpoofGuard(handle, &port, nullptr, &number, mac, &count, addresses);
           },
       }) {
    kernel.answer(21, Bytes(4, 0xff));
    EXPECT_EQ(call(), 21u);
    EXPECT_EQ(number, 77u);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(mac[0], 0xa0);
  }
}
