// Requests and replies of the commands on connections.

#include <array>

#include "CommandFamily.h"
#include "TarnFWCmdClearAllConnection.h"
#include "TarnFWCmdGetConnectionCount.h"
#include "TarnFWCmdGetConnectionStat.h"
#include "TarnFWCmdSetAllConnection.h"
#include "TarnFWCmdSetConnectionByFilter.h"
#include "TarnFWCmdSetConnectionByList.h"

using namespace TarnFirewall;

namespace {

CommandPtr setByFilter() {
  FWConnFilter_ filter;
  for (std::uint8_t i = 0; i < 80; ++i) filter.bytes[i] = static_cast<std::uint8_t>(i + 1);
  return std::make_unique<CTarnFWCmdSetConnectionByFilter>(nullptr, &filter);
}

/// Three connections, one of them twice, not in their order.
CommandPtr setByList() {
  std::array<FWConnection_, 3> connections{};
  connections[0].sourceAddress[0] = 0x20;
  connections[0].sourceAddress[15] = 0x21;
  connections[0].destinationAddress[15] = 0x22;
  connections[0].flags = kConnectionIPv6 | kConnectionOut;
  connections[0].protocol = 17;
  connections[1].sourceAddress[0] = 10;
  connections[1].destinationAddress[0] = 11;
  connections[1].sourcePort = 0x0102;
  connections[1].destinationPort = 0x0304;
  connections[1].flags = kConnectionIn;
  connections[1].protocol = 6;
  connections[2] = connections[0];
  return std::make_unique<CTarnFWCmdSetConnectionByList>(
      nullptr, static_cast<unsigned int>(connections.size()), connections.data());
}

/// The commands, by number. Offsets are those of the body.
std::vector<Golden> goldens() {
  std::vector<Golden> rows;
  rows.push_back({"CTarnFWCmdGetConnectionCount", 23, 46, "GetConnectionCount", 12, 0, 16,
                  plain<CTarnFWCmdGetConnectionCount, nullptr>, Bytes(16)});

  rows.push_back({"CTarnFWCmdGetConnectionStat", 24, 47, "GetConnectionStat", 28, 30, 32,
                  plain<CTarnFWCmdGetConnectionStat, nullptr, 2u, 0x0102030405060708ull>,
                  Bytes(534)       // 32 and 251 for each of 2 connections
                      .at(0, {1})  // version
                      .at(4, {1, 2, 3, 4, 5, 6, 7, 8})
                      .at(12, {2, 0, 0, 0})
                      .at(28, {0x16, 0x02, 0, 0})});

  rows.push_back({"CTarnFWCmdSetConnectionByList", 37, 60, "SetConnectionByList", 4, 1, 8,
                  setByList,
                  Bytes(88)  // 8 and 40 for each of 2 connections
                      .at(0, {2, 0, 0, 0})
                      .at(8, {10})
                      .at(24, {11})
                      .at(40, {1, 2, 3, 4})  // ports
                      .at(44, {2, 0, 0, 6})  // in, TCP
                      .at(48, {0x20})
                      .at(63, {0x21})
                      .at(79, {0x22})
                      .at(84, {5, 0, 0, 17})});  // out, IPv6, UDP

  rows.push_back({"CTarnFWCmdClearAllConnection", 43, 66, "ClearAllConnection", 4, 0, 4,
                  plain<CTarnFWCmdClearAllConnection>, Bytes(4)});

  Bytes filter(84);
  for (int i = 0; i < 80; ++i) filter.at(static_cast<std::size_t>(i), {i + 1});
  rows.push_back({"CTarnFWCmdSetConnectionByFilter", 66, 89, "SetConnectionByFilter", 80, 80, 84,
                  setByFilter, filter});

  rows.push_back({"CTarnFWCmdSetAllConnection", 67, 90, "SetAllConnection", 1, 0, 4,
                  plain<CTarnFWCmdSetAllConnection>, Bytes(4)});
  return rows;
}

std::vector<ReplyRow> replies() {
  std::vector<ReplyRow> rows;
  rows.push_back({"CTarnFWCmdGetConnectionCount",
                  plain<CTarnFWCmdGetConnectionCount, nullptr>,
                  Bytes(16).at(4, {0x39, 0x30}),
                  {{8, "connection count : 12345\n"}},
                  {}});
  rows.push_back({"CTarnFWCmdClearAllConnection",
                  plain<CTarnFWCmdClearAllConnection>,
                  Bytes(4, 0xff),
                  {{4, "Cleared connection count : 4294967295\n"}},
                  {}});
  readsNothing(rows, "CTarnFWCmdSetConnectionByFilter", setByFilter);
  readsNothing(rows, "CTarnFWCmdSetConnectionByList", setByList);
  readsNothing(rows, "CTarnFWCmdSetAllConnection", plain<CTarnFWCmdSetAllConnection>);
  return rows;
}

}  // namespace

CommandFamily connectionCommands() {
  CommandFamily family;
  family.goldens = goldens();
  family.replies = replies();
  family.ownReplyTest = {"CTarnFWCmdGetConnectionStat"};
  family.cutRequest = {"CTarnFWCmdGetConnectionStat"};
  return family;
}
