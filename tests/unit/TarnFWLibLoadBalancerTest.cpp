// The flat functions about the load balancer and gateways: what they send and hand out, and what
// they refuse.

#include <cstring>
#include <memory>
#include <vector>

#include "LibraryTest.h"

using namespace TarnFirewall;

namespace {

class TarnFWLibLoadBalancer : public LibraryTest {
 protected:
  /// A record of the caller's with these bytes.
  template <typename Record>
  static Record of(const Bytes& bytes) {
    Record record{};
    std::memcpy(static_cast<void*>(&record), bytes.data(), bytes.size());
    return record;
  }
  template <typename Record>
  static Bytes bytesOf(const Record& record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
  }

  unsigned int size = 77;
  unsigned int number = 78;
  FWAlg_ algs[2] = {};
  FWAlgPort_ ports[2] = {};
};

}  // namespace

TEST_F(TarnFWLibLoadBalancer, EveryArgumentStandsInItsPlaceOfTheRequest) {
  FWLBConfigSize_ sizes = of<FWLBConfigSize_>(Bytes(12077).at(0, {1}).at(8, {7}).at(76, {16}));
  FWLBStat_ stat = of<FWLBStat_>(Bytes(4141).at(0, {9}).at(4, {1}).at(140, {5}));
  expectRequests({
      {87, [&](void* c) { return FW_GetLBConfigSize(handle, &port, c, &sizes); },
       Bytes(12077).at(0, {1}).at(8, {7}).at(76, {16})},
      {86, [&](void* c) { return FW_GetLBConfig(handle, &port, c, &sizes); },
       Bytes(166).at(0, {166}).at(4, {1}).at(12, {7}).at(80, {16})},
      {89, [&](void* c) { return FW_GetLBStatSize(handle, &port, c, &stat); },
       Bytes(4141).at(0, {9}).at(4, {1}).at(140, {5})},
      {88, [&](void* c) { return FW_GetLBStat(handle, &port, c, &stat); },
       Bytes(4341).at(0, {9}).at(4, {1}).at(140, {5})},
      {90, [&](void* c) { return FW_ClearLBStat(handle, &port, c, &stat); },
       Bytes(4141).at(0, {9}).at(4, {1}).at(140, {5})},
      {47, [&](void* c) { return FW_GetAlgCount(handle, &port, c, &size, &number); }, Bytes(8)},
      {47, [&](void* c) { return FW_GetAlgs(handle, &port, c, 12, 2, algs, &number); },
       Bytes(20).at(0, {12}).at(4, {2})},
      {48, [&](void* c) { return FW_GetAlgPortCount(handle, &port, c, &size, &number); }, Bytes(8)},
      {48, [&](void* c) { return FW_GetAlgPorts(handle, &port, c, 80, 2, ports, &number); },
       Bytes(88).at(0, {80}).at(4, {2})},
  });
}

TEST_F(TarnFWLibLoadBalancer, AFailureChangesNoResult) {
  FWLBStat_ stat{};
  FWLBConfigSize_ sizes = of<FWLBConfigSize_>(Bytes(12077, 0x22));
  const auto failing = [&](std::size_t bytes) { kernel.answer(21, Bytes(bytes, 0xff)); };
  failing(4141);
  EXPECT_EQ(FW_GetLBStatSize(handle, &port, nullptr, &stat), 21u);
  failing(4141);
  EXPECT_EQ(FW_GetLBStat(handle, &port, nullptr, &stat), 21u);
  failing(4141);
  EXPECT_EQ(FW_ClearLBStat(handle, &port, nullptr, &stat), 21u);
  failing(12077);
  EXPECT_EQ(FW_GetLBConfigSize(handle, &port, nullptr, &sizes), 21u);
  failing(8);
  EXPECT_EQ(FW_GetAlgCount(handle, &port, nullptr, &size, &number), 21u);
  failing(88);
  EXPECT_EQ(FW_GetAlgPorts(handle, &port, nullptr, 80, 2, ports, &number), 21u);
  EXPECT_EQ(bytesOf(stat), Bytes(4141));
  EXPECT_EQ(bytesOf(sizes), Bytes(12077, 0x22));
  EXPECT_EQ(bytesOf(ports[0]), Bytes(40));
  EXPECT_EQ(size, 77u);
  EXPECT_EQ(number, 78u);
}

TEST_F(TarnFWLibLoadBalancer, ANullHandleIsStatusTwoBeforeAnythingElse) {
  EXPECT_EQ(FW_GetLBConfigSize(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetLBConfig(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetLBStatSize(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetLBStat(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_ClearLBStat(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAlgCount(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAlgs(nullptr, &port, nullptr, 0, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAlgPortCount(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAlgPorts(nullptr, &port, nullptr, 0, 0, nullptr, nullptr), 2u);
}

TEST_F(TarnFWLibLoadBalancer, WhatIsRefusedSendsNothing) {
  FWLBConfigSize_ sizes{};
  FWLBStat_ stat{};
  sizes.activeCount = 1001;
  stat.pools = 1001;
  EXPECT_EQ(FW_GetLBConfigSize(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetLBConfig(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetLBConfig(handle, &port, nullptr, &sizes), 17u);
  EXPECT_EQ(FW_GetLBStatSize(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetLBStat(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetLBStat(handle, &port, nullptr, &stat), 17u);
  EXPECT_EQ(FW_ClearLBStat(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetAlgCount(handle, &port, nullptr, nullptr, &number), 3u);
  EXPECT_EQ(FW_GetAlgCount(handle, &port, nullptr, &size, nullptr), 3u);
  EXPECT_EQ(FW_GetAlgs(handle, &port, nullptr, 12, 2, nullptr, &number), 3u);
  EXPECT_EQ(FW_GetAlgs(handle, &port, nullptr, 12, 2, algs, nullptr), 3u);
  EXPECT_EQ(FW_GetAlgs(handle, &port, nullptr, ~0u - 7, 2, algs, &number), 17u);
  EXPECT_EQ(FW_GetAlgPortCount(handle, &port, nullptr, nullptr, &number), 3u);
  EXPECT_EQ(FW_GetAlgPorts(handle, &port, nullptr, 80, 2, nullptr, &number), 3u);
  EXPECT_EQ(FW_GetAlgPorts(handle, &port, nullptr, ~0u, 2, ports, &number), 17u);
  EXPECT_TRUE(kernel.messages().empty());
  EXPECT_EQ(number, 78u);
}

TEST_F(TarnFWLibLoadBalancer, TheKernelsAnswerReplacesTheRecord) {
  FWLBConfigSize_ sizes{};
  kernel.answer(0, Bytes(12077, 0x5a));
  EXPECT_EQ(FW_GetLBConfigSize(handle, &port, nullptr, &sizes), 0u);
  EXPECT_EQ(bytesOf(sizes), Bytes(12077, 0x5a));
  kernel.answer(0, Bytes(4141, 0x5b));
  FWLBStat_ stat{};
  EXPECT_EQ(FW_GetLBStatSize(handle, &port, nullptr, &stat), 0u);
  EXPECT_EQ(bytesOf(stat), Bytes(4141, 0x5b));
  stat = {};
  kernel.answer(0, Bytes(4141, 0x5b));
  EXPECT_EQ(FW_GetLBStat(handle, &port, nullptr, &stat), 0u);
  EXPECT_EQ(bytesOf(stat), Bytes(4141, 0x5b));
  stat = {};
  kernel.answer(0, Bytes(4141, 0x5b));
  EXPECT_EQ(FW_ClearLBStat(handle, &port, nullptr, &stat), 0u);
  EXPECT_EQ(bytesOf(stat), Bytes(4141, 0x5b));
}

TEST_F(TarnFWLibLoadBalancer, SizeAndCountComeFromTheirPlaces) {
  kernel.answer(0, Bytes(8).at(0, {1, 2, 3, 4, 5, 6, 7, 0x88}));
  EXPECT_EQ(FW_GetAlgCount(handle, &port, nullptr, &size, &number), 0u);
  EXPECT_EQ(size, 0x04030201u);
  EXPECT_EQ(number, 0x88070605u);
  size = number = 0;
  kernel.answer(0, Bytes(8).at(0, {1, 2, 3, 4, 5, 6, 7, 0x88}));
  EXPECT_EQ(FW_GetAlgPortCount(handle, &port, nullptr, &size, &number), 0u);
  EXPECT_EQ(size, 0x04030201u);
  EXPECT_EQ(number, 0x88070605u);
}

TEST_F(TarnFWLibLoadBalancer, RecordsAreCopiedUpToTheCallersRoom) {
  const Bytes first{1, 2, 3, 4, 5, 6};
  const Bytes second{7, 8, 9, 10, 11, 12};
  Bytes reply(20);
  std::copy(first.begin(), first.end(), reply.begin() + 8);
  std::copy(second.begin(), second.end(), reply.begin() + 14);
  for (const std::uint32_t reported : {0u, 1u, 2u, 3u, ~0u}) {
    algs[0] = of<FWAlg_>(Bytes(6, 0xcd));
    algs[1] = algs[0];
    kernel.answer(0, put32(reply, 4, reported));
    ASSERT_EQ(FW_GetAlgs(handle, &port, nullptr, 12, 2, algs, &number), 0u);
    EXPECT_EQ(number, reported) << "above 2 it is the kernel's count";
    EXPECT_EQ(bytesOf(algs[0]), reported > 0 ? first : Bytes(6, 0xcd));
    EXPECT_EQ(bytesOf(algs[1]), reported > 1 ? second : Bytes(6, 0xcd));
  }
  // Room for less than what is asked for: the bytes count.
  for (const unsigned int room : {0u, 5u, 6u, 11u}) {
    algs[0] = of<FWAlg_>(Bytes(6, 0xcd));
    algs[1] = algs[0];
    put32(reply, 4, 2);
    kernel.answer(0, Bytes(reply.begin(), reply.begin() + 8 + room));
    ASSERT_EQ(FW_GetAlgs(handle, &port, nullptr, room, ~0u, algs, &number), 0u);
    EXPECT_EQ(bytesOf(algs[0]), room >= 6 ? first : Bytes(6, 0xcd)) << room;
    EXPECT_EQ(bytesOf(algs[1]), Bytes(6, 0xcd)) << room;
    EXPECT_EQ(number, 2u) << "what the kernel counts";
  }
  // And for more: what is asked for counts.
  algs[1] = of<FWAlg_>(Bytes(6, 0xcd));
  kernel.answer(0, reply);
  ASSERT_EQ(FW_GetAlgs(handle, &port, nullptr, 12, 1, algs, &number), 0u);
  EXPECT_EQ(bytesOf(algs[0]), first);
  EXPECT_EQ(bytesOf(algs[1]), Bytes(6, 0xcd));
}

TEST_F(TarnFWLibLoadBalancer, PortsAreCopiedInTheSameWay) {
  Bytes reply(88, 0x31);
  for (std::size_t i = 48; i < 88; ++i) reply[i] = 0x32;
  kernel.answer(0, put32(reply, 4, 2));
  ASSERT_EQ(FW_GetAlgPorts(handle, &port, nullptr, 80, 2, ports, &number), 0u);
  EXPECT_EQ(number, 2u);
  EXPECT_EQ(bytesOf(ports[0]), Bytes(40, 0x31));
  EXPECT_EQ(bytesOf(ports[1]), Bytes(40, 0x32));
}
