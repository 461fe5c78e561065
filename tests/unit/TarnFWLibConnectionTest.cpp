// The flat functions about connections of a filter: what they send and hand out, and what they
// refuse.

#include <cstring>
#include <functional>
#include <vector>

#include "FlowBytes.h"
#include "LibraryTest.h"

using namespace TarnFirewall;

namespace {

class TarnFWLibConnection : public LibraryTest {
 protected:
  unsigned int number = 77;
  FWConnFilter_ filter{};
  FWConnection_ connections[2] = {};
  Bytes room = Bytes(2 * 251, 0xcd);
};

}  // namespace

TEST_F(TarnFWLibConnection, EveryArgumentStandsInItsPlaceOfTheRequest) {
  filter.bytes[79] = 9;
  connections[0].sourceAddress[0] = 2;
  connections[1].sourceAddress[0] = 1;
  const std::vector<Request> requests = {
      {23, [&](void* c) { return FW_GetConnectionCount(handle, &port, c, &filter, &number); },
       Bytes(16)},
      {23, [&](void* c) { return FW_GetConnectionCount(handle, &port, c, nullptr, &number); },
       Bytes(16)},
      {24,
       [&](void* c) {
         return FW_GetConnectionStat(handle, &port, c, 2, 0x0102030405060708, room.data(), &number);
       },
       Bytes(534).at(0, {1}).at(4, {1, 2, 3, 4, 5, 6, 7, 8}).at(12, {2}).at(28, {0x16, 0x02})},
      {66, [&](void* c) { return FW_SetConnectionByFilter(handle, &port, c, &filter, &number); },
       Bytes(84).at(79, {9})},
      {37,
       [&](void* c) { return FW_SetConnectionByList(handle, &port, c, 2, connections, &number); },
       Bytes(88).at(0, {2}).at(8, {1}).at(48, {2})},
      {67, [&](void* c) { return FW_SetAllConnection(handle, &port, c, &number); }, Bytes(4)},
      {43, [&](void* c) { return FW_ClearAllConnection(handle, &port, c, &number); }, Bytes(4)},
  };
  expectRequests(requests);
  for (const Request& request : requests) {
    number = 77;
    kernel.answer(21, Bytes(4, 0xff));
    EXPECT_EQ(request.call(nullptr), 21u) << request.number;
    EXPECT_EQ(number, 77u) << request.number;
  }
}

TEST_F(TarnFWLibConnection, ANullHandleIsStatusTwoBeforeAnythingElse) {
  EXPECT_EQ(FW_GetConnectionCount(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetConnectionStat(nullptr, &port, nullptr, 0, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetConnectionByFilter(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetConnectionByList(nullptr, &port, nullptr, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetAllConnection(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_ClearAllConnection(nullptr, &port, nullptr, nullptr), 2u);
}

TEST_F(TarnFWLibConnection, WhatIsRefusedSendsNothing) {
  EXPECT_EQ(FW_GetConnectionCount(handle, &port, nullptr, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetConnectionStat(handle, &port, nullptr, 0, 0, room.data(), &number), 3u);
  EXPECT_EQ(FW_GetConnectionStat(handle, &port, nullptr, 1, 0, nullptr, &number), 3u);
  EXPECT_EQ(FW_GetConnectionStat(handle, &port, nullptr, 1, 0, room.data(), nullptr), 3u);
  EXPECT_EQ(FW_GetConnectionStat(handle, &port, nullptr, 17111424, 0, room.data(), &number), 17u);
  EXPECT_EQ(FW_SetConnectionByFilter(handle, &port, nullptr, nullptr, &number), 3u);
  EXPECT_EQ(FW_SetConnectionByFilter(handle, &port, nullptr, &filter, nullptr), 3u);
  EXPECT_EQ(FW_SetConnectionByList(handle, &port, nullptr, 0, connections, &number), 3u);
  EXPECT_EQ(FW_SetConnectionByList(handle, &port, nullptr, 1, nullptr, &number), 3u);
  EXPECT_EQ(FW_SetConnectionByList(handle, &port, nullptr, 1, connections, nullptr), 3u);
  EXPECT_EQ(FW_SetConnectionByList(handle, &port, nullptr, ~0u, connections, &number), 17u);
  EXPECT_EQ(FW_SetAllConnection(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_ClearAllConnection(handle, &port, nullptr, nullptr), 3u);
  EXPECT_TRUE(kernel.messages().empty());
  EXPECT_EQ(number, 77u);
}

TEST_F(TarnFWLibConnection, EachNumberComesFromItsPlaceOfTheReply) {
  struct Row {
    std::function<FWStatus_t()> call;
    Bytes reply;
  };
  const std::vector<Row> rows = {
      {[&] { return FW_GetConnectionCount(handle, &port, nullptr, nullptr, &number); },
       Bytes(16, 0xee).at(4, {1, 2, 3, 0x84})},
      {[&] { return FW_SetConnectionByFilter(handle, &port, nullptr, &filter, &number); },
       Bytes(84, 0xee).at(80, {1, 2, 3, 0x84})},
      {[&] { return FW_SetConnectionByList(handle, &port, nullptr, 1, connections, &number); },
       Bytes(48, 0xee).at(4, {1, 2, 3, 0x84})},
      {[&] { return FW_SetAllConnection(handle, &port, nullptr, &number); },
       Bytes({1, 2, 3, 0x84})},
      {[&] { return FW_ClearAllConnection(handle, &port, nullptr, &number); },
       Bytes({1, 2, 3, 0x84})},
  };
  for (const Row& row : rows) {
    number = 0;
    kernel.answer(0, row.reply);
    EXPECT_EQ(row.call(), 0u);
    EXPECT_EQ(number, 0x84030201u);
  }
}

TEST_F(TarnFWLibConnection, ConnectionsAreCopiedUpToTheCallersRoom) {
  const Bytes flow = ipv4Flow(6);
  Bytes reply(32 + 2 * 251);
  for (std::size_t i = 0; i < flow.size(); ++i) reply[32 + i] = reply[283 + i] = flow[i];
  for (const std::uint32_t reported : {0u, 1u, 2u, 3u, ~0u}) {
    room = Bytes(2 * 251, 0xcd);
    kernel.answer(0, put32(reply, 16, reported));
    ASSERT_EQ(FW_GetConnectionStat(handle, &port, nullptr, 2, 0, room.data(), &number), 0u);
    EXPECT_EQ(number, reported) << "above 2 it is the kernel's count";
    EXPECT_EQ(Bytes(room.begin(), room.begin() + 251), reported > 0 ? flow : Bytes(251, 0xcd));
    EXPECT_EQ(Bytes(room.begin() + 251, room.end()), reported > 1 ? flow : Bytes(251, 0xcd));
  }
}
