// The commands about connections: their texts, what they refuse, and the lines that connections
// print as.

#include <gtest/gtest.h>

#include "CommandTest.h"
#include "FlowBytes.h"
#include "TarnFWCmdClearAllConnection.h"
#include "TarnFWCmdGetConnectionCount.h"
#include "TarnFWCmdGetConnectionStat.h"
#include "TarnFWCmdSetAllConnection.h"
#include "TarnFWCmdSetConnectionByFilter.h"
#include "TarnFWCmdSetConnectionByList.h"
#include "TarnFWLog.h"
#include "TimeZone.h"

using namespace TarnFirewall;

namespace {

class TarnFWCmdConnection : public CommandTest<FWAddrSetID_t> {
 protected:
  const TimeZone zone{"TST-02:30"};

  /// A reply with these connections, in room for `asked`.
  static Bytes replyWith(const std::vector<Bytes>& flows, unsigned int asked) {
    Bytes reply(32 + 251 * std::size_t{asked});
    put32(reply, 16, static_cast<std::uint32_t>(flows.size()));
    for (std::size_t i = 0; i < flows.size(); ++i) copyTo(reply, 32 + 251 * i, flows[i]);
    return reply;
  }

  /// The line that one connection prints.
  static std::string line(const Bytes& flow) {
    CTarnFWCmdGetConnectionStat command(nullptr, nullptr, 1, 0);
    return printedFor(command, replyWith({flow}, 1));
  }
};

constexpr const char* kHead4 =
    "2023-11-15T00:43:20Z 0x0102030405060708 af 2  ethertype 0x0800 proto";
constexpr const char* kHead6 =
    "2023-11-15T00:43:20Z 0x0102030405060708 af 28 ethertype 0x86dd proto";
constexpr const char* kCounters = " b 16 21 2c\n";  // in hexadecimal

}  // namespace

TEST_F(TarnFWCmdConnection, StatementsAreTheTextsOfTheCommands) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdGetConnectionCount(&port, nullptr), 23, 16,
                 "describe connection count of filter nic-1");
  expectIdentity(CTarnFWCmdGetConnectionStat(&port, nullptr, 0, 0), 24, 32,
                 "describe connection stat of filter nic-1");
  expectIdentity(CTarnFWCmdGetConnectionStat(nullptr, nullptr, 3, ~0ull), 24, 785,
                 "describe connection stat from 18446744073709551615");
  expectIdentity(CTarnFWCmdSetConnectionByFilter(&port, nullptr), 66, 84,
                 "set connection of filter nic-1");
  FWConnection_ connection{};
  connection.sourcePort = 80;
  expectIdentity(CTarnFWCmdSetConnectionByList(&port, 1, &connection), 37, 48,
                 "set connection of filter nic-1 with { from 0.0.0.0:80 to 0.0.0.0:0}");
  expectIdentity(CTarnFWCmdSetAllConnection(&port), 67, 4, "set all connection of filter nic-1");
  expectIdentity(CTarnFWCmdClearAllConnection(&port), 43, 4,
                 "clear all connection of filter nic-1");
}

TEST_F(TarnFWCmdConnection, WithoutABlockZerosAreSent) {
  CTarnFWCmdSetConnectionByFilter command(nullptr, nullptr);
  EXPECT_EQ(requestOf(command), Bytes(84));
}

TEST_F(TarnFWCmdConnection, ABlockIsNotSentWhereTheKernelCountsOrListsAll) {
  const FWConnFilter_ filter = loadRecord<FWConnFilter_>(Bytes(80, 0xff).data());
  CTarnFWCmdGetConnectionCount count(nullptr, &filter);
  EXPECT_EQ(requestOf(count), Bytes(16));
  CTarnFWCmdGetConnectionStat stat(nullptr, &filter, 1, 0);
  EXPECT_EQ(requestOf(stat), Bytes(283).at(0, {1}).at(12, {1}).at(28, {0x1b, 1}));
}

TEST_F(TarnFWCmdConnection, AListMayBeEmpty) {
  CTarnFWCmdSetConnectionByList command(nullptr, std::make_unique<CTarnFWConnectionList>());
  EXPECT_EQ(requestOf(command), Bytes(8));
  EXPECT_EQ(command.toString(), "set connection with {}");
}

TEST_F(TarnFWCmdConnection, ASizeOfMoreThan32BitsIsRefusedBeforeAnythingIsRead) {
  // 32 + 251 x 17111423 is 4294967205.
  EXPECT_EQ(CTarnFWCmdGetConnectionStat(nullptr, nullptr, 17111423, 0).getMsgSize(), 4294967205u);
  EXPECT_THROW_WITH(CTarnFWCmdGetConnectionStat(nullptr, nullptr, 17111424, 0),
                    CIntegerOverflowException, 17, "number of connections: 17111424");
  EXPECT_THROW_WITH(CTarnFWCmdGetConnectionStat(nullptr, nullptr, ~0u, 0),
                    CIntegerOverflowException, 17, "number of connections: -1");
  EXPECT_THROW_WITH(CTarnFWCmdSetConnectionByList(nullptr, 107374183, nullptr),
                    CIntegerOverflowException, 17, "number of connections: 107374183");
}

TEST_F(TarnFWCmdConnection, TheFlowIdToStartFromIsLoggedWhenTheCommandsAreVerbose) {
  CTarnFWCmdGetConnectionStat command(nullptr, nullptr, 1, 0x4d2);
  requestOf(command);
  EXPECT_TRUE(log.lines().empty());
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  requestOf(command);
  EXPECT_TRUE(log.has(7, "Fetching connection from 0x00000000000004d2\n"));
}

TEST_F(TarnFWCmdConnection, TheNumberOfConnectionsIsLoggedWhenTheyArePrinted) {
  CTarnFWCmdGetConnectionStat command(nullptr, nullptr, 2, 0);
  const Bytes reply = replyWith({ipv4Flow(6)}, 2);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  command.checkCmdReply(reply.data(), static_cast<unsigned int>(reply.size()));
  EXPECT_FALSE(log.has(7, "connection count : 1\n\n")) << "there is no printer";
  const Printed printed;
  command.checkCmdReply(reply.data(), static_cast<unsigned int>(reply.size()));
  EXPECT_TRUE(log.has(7, "connection count : 1\n\n"));
}

// --- Printed lines

TEST_F(TarnFWCmdConnection, EveryProtocolHasItsLine) {
  const std::string counters = kCounters;
  const std::string head = kHead4;
  EXPECT_EQ(line(ipv4Flow(6)), head + "tcp   10.0.0.1:1024 -> 10.0.0.2:443 " + counters);
  EXPECT_EQ(line(ipv4Flow(17)), head + "udp   10.0.0.1:1024 -> 10.0.0.2:443 " + counters);
  EXPECT_EQ(line(ipv4Flow(1)), head + "icmp  10.0.0.1 -> 10.0.0.2" + counters);
  EXPECT_EQ(line(ipv4Flow(58)), head + "icmp6 10.0.0.1 -> 10.0.0.2" + counters);
  EXPECT_EQ(line(ipv4Flow(47)), head + "47    10.0.0.1 -> 10.0.0.2" + counters);
  EXPECT_EQ(line(ipv4Flow(0)), head + "0     10.0.0.1 -> 10.0.0.2" + counters);
  EXPECT_EQ(line(ipv4Flow(255)), head + "255   10.0.0.1 -> 10.0.0.2" + counters);
}

TEST_F(TarnFWCmdConnection, AnIPv6ConnectionHasNoAddressesAndThePortsOfAnotherPlace) {
  Bytes flow = ipv6Flow(6);
  EXPECT_EQ(line(flow), kHead6 + std::string("tcp   :::0 -> :::2 ") + kCounters)
      << "these bytes are the end of the destination";
  flow.at(173, {0x00, 0x50, 0x1f, 0x90});
  EXPECT_EQ(line(flow), kHead6 + std::string("tcp   :::80 -> :::8080 ") + kCounters);
  flow.at(90, {10});
  EXPECT_EQ(line(flow),
            std::string("2023-11-15T00:43:20Z 0x0102030405060708 af 10 ethertype 0x86dd prototcp   "
                        ":::80 -> :::8080 ") +
                kCounters);
}

TEST_F(TarnFWCmdConnection, AnUnknownFamilyHasNoAddressesAndIsLogged) {
  CTarnFWCmdGetConnectionStat command(nullptr, nullptr, 2, 0);
  Bytes unknown = ipv4Flow(17);
  unknown.at(90, {77});
  EXPECT_EQ(
      printedFor(command, replyWith({ipv4Flow(1), unknown}, 2)),
      kHead4 + std::string("icmp  10.0.0.1 -> 10.0.0.2") + kCounters +
          "2023-11-15T00:43:20Z 0x0102030405060708 af 77 ethertype 0x0800 protoudp   :1024 -> "
          ":443 " +
          kCounters);
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{"4|tarnfw: TarnFWCmdGetConnectionStat:checkCmdReply():N "
                                     "unknown address family for 1 flow record: 77\n\n"});
}

TEST_F(TarnFWCmdConnection, OnlyTCPHasTheTextOfAGateway) {
  Bytes tcp = ipv4Flow(6);
  EXPECT_EQ(
      line(putAlg(tcp, kIPv4Alg, 1, 1, 21)),
      kHead4 + std::string("tcp   10.0.0.1:1024 -> 10.0.0.2:443  alg ctrl(FTP) 21") + kCounters);
  EXPECT_EQ(line(putAlg(tcp, kIPv4Alg, 6, 2, 65535)),
            kHead4 +
                std::string("tcp   10.0.0.1:1024 -> 10.0.0.2:443  alg data(?\?) 65535 "
                            "1122334455667788") +
                kCounters);
  EXPECT_EQ(line(putAlg(tcp, kIPv4Alg, 1, 3, 21)),
            kHead4 + std::string("tcp   10.0.0.1:1024 -> 10.0.0.2:443 ") + kCounters);
  Bytes udp = ipv4Flow(17);
  EXPECT_EQ(line(putAlg(udp, kIPv4Alg, 5, 2, 69)),
            kHead4 + std::string("udp   10.0.0.1:1024 -> 10.0.0.2:443 ") + kCounters);
  Bytes ipv6 = ipv6Flow(6);
  EXPECT_EQ(line(putAlg(ipv6, kIPv6Alg, 4, 2, 135)),
            kHead6 + std::string("tcp   :::0 -> :::2  alg data(DCERPC) 135 1122334455667788") +
                kCounters);
}

TEST_F(TarnFWCmdConnection, TheLongestLineComesOutWhole) {
  Bytes flow(251, 0xff);
  flow.at(89, {6, 2});
  flow.at(165, {4, 2});
  EXPECT_EQ(line(flow),
            "2106-02-07T08:58:15Z 0xffffffffffffffff af 2  ethertype 0xffff prototcp   "
            "255.255.255.255:65535 -> 255.255.255.255:65535  alg data(DCERPC) 65535 "
            "ffffffffffffffff ffffffffffffffff ffffffffffffffff ffffffffffffffff "
            "ffffffffffffffff\n");
}

// --- Replies that lie

TEST_F(TarnFWCmdConnection, NoMoreConnectionsAreReadThanWereAskedForOrAreThere) {
  const std::string one = line(ipv4Flow(6));
  for (const std::uint32_t reported : {0u, 1u, 2u, 3u, 0x7fffffffu, ~0u}) {
    CTarnFWCmdGetConnectionStat command(nullptr, nullptr, 2, 0);
    Bytes reply = replyWith({ipv4Flow(6), ipv4Flow(6)}, 2);
    put32(reply, 16, reported);
    log.clear();
    std::string expected;
    for (std::uint32_t i = 0; i < std::min(reported, 2u); ++i) expected += one;
    EXPECT_EQ(printedFor(command, reply), expected) << reported;
    EXPECT_EQ(log.lines().size(), reported > 2 ? 1u : 0u) << reported;
  }
}

TEST_F(TarnFWCmdConnection, AReplyThatIsCutHasTheConnectionsThatAreWhole) {
  const Bytes reply = replyWith({ipv4Flow(6), ipv4Flow(17)}, 2);
  const std::string first = line(ipv4Flow(6));
  const std::string second = line(ipv4Flow(17));
  for (std::size_t size = 0; size <= reply.size() + 1; ++size) {
    // In memory of its own size, so that the address sanitizer sees what is read past the end.
    const Bytes cut(reply.begin(),
                    reply.begin() + static_cast<std::ptrdiff_t>(std::min(size, reply.size())));
    CTarnFWCmdGetConnectionStat command(nullptr, nullptr, 2, 0);
    const Printed printed;
    log.clear();
    if (size < 20) {
      EXPECT_THROW_WITH(
          command.checkCmdReply(cut.data(), static_cast<unsigned int>(cut.size())),
          CInsufficientMsgBufException, 9,
          "expect 20 byte in message buffer, but only get " + std::to_string(size) + " bytes");
      continue;
    }
    command.checkCmdReply(cut.data(), static_cast<unsigned int>(cut.size()));
    const std::size_t there = size < 283 ? 0 : size < 534 ? 1 : 2;
    EXPECT_EQ(printed.text(), (there > 0 ? first : "") + (there > 1 ? second : "")) << size;
    EXPECT_EQ(log.has(4, "reply tells 2 entries, only " + std::to_string(there) + " can be read\n"),
              there < 2)
        << size;
  }
}
