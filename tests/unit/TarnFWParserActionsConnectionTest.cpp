#include <gtest/gtest.h>

#include "Expect.h"
#include "ParseText.h"
#include "TarnFWParserActionsConnection.h"

using namespace TarnFirewall;

namespace {

const std::string kAttributes = " with { [ TLS_VERSION : 771 ] }";

/// The body of a statement's command from `from` on, `size` bytes of it.
Bytes part(const std::string& statement, std::size_t from, std::size_t size) {
  const ParseText parse(statement + ";");
  EXPECT_EQ(parse.failure(), "") << statement;
  if (parse.count() != 1) return {};
  const std::vector<std::uint8_t> body = parse.body();
  if (body.size() < from + size) return {};
  const auto begin = body.begin() + static_cast<std::ptrdiff_t>(from);
  return Bytes(begin, begin + static_cast<std::ptrdiff_t>(size));
}

/// The only connection of a `set connection`.
Bytes connectionOf(const std::string& text) {
  const std::string statement = "set connection with " + text;
  EXPECT_EQ(part(statement, 0, 8), Bytes({1, 0, 0, 0, 0, 0, 0, 0})) << text;
  return part(statement, 8, 40);
}

/// The connection of a `set connattr`.
Bytes describedBy(const std::string& text) {
  return part("set connattr " + text + kAttributes, 8, 40);
}

std::string failureOf(const std::string& connection) {
  return parseFailure("set connection with " + connection + ";");
}

std::string specFailure(const std::string& text) {
  return parseFailure("set connattr " + text + kAttributes + ";");
}

}  // namespace

TEST(TarnFWParserActionsConnection, CountsSetsAndClearsConnections) {
  EXPECT_EQ(numberAndText("describe connection count of filter f"),
            "23|describe connection count of filter f");
  EXPECT_EQ(numberAndText("set connection of filter f"), "66|set connection of filter f");
  EXPECT_EQ(numberAndText("set all connection of filter f"), "67|set all connection of filter f");
  EXPECT_EQ(numberAndText("clear all connection of filter f"),
            "43|clear all connection of filter f");
  EXPECT_EQ(part("describe connection count", 0, 16), Bytes(16));
  EXPECT_EQ(part("set connection", 0, 84), Bytes(84));
}

TEST(TarnFWParserActionsConnection, AsksForConnectionsFromAFlowOn) {
  // 32 + 251 x 50000, which is the room as well; the flow id is in network order.
  for (const auto& [from, id] : std::vector<std::pair<std::string, Bytes>>{
           {"", Bytes(8)},
           {" from 0", Bytes(8)},
           {" from 4328719365", Bytes({0, 0, 0, 1, 2, 3, 4, 5})},
           {" from -1", Bytes(8, 0xff)}}) {
    const ParseText parse("describe connection stat" + from + " of filter f;");
    ASSERT_EQ(parse.failure(), "") << from;
    ASSERT_EQ(parse.count(), 1u);
    EXPECT_EQ(parse.command().getCommand(), 24);
    EXPECT_EQ(parse.command().getMsgSize(), 12550032u);
    const std::vector<std::uint8_t> body = parse.body();
    EXPECT_EQ(Bytes(body.begin() + 4, body.begin() + 12), id) << from;
    EXPECT_EQ(parse.word(12), 50000u);
    EXPECT_EQ(parse.word(28), 12550032u);
  }
}

TEST(TarnFWParserActionsConnection, TakesOneConnectionWithOrWithoutBraces) {
  const std::string one = "from 10.0.0.1 port 1024 to 10.0.0.2 port 80";
  for (const std::string& text : {one, "{ " + one + " }"}) {
    EXPECT_EQ(numberAndText("set connection of filter f with " + text),
              "37|set connection of filter f with { from 10.0.0.1:4 to 10.0.0.2:20480}");
  }
}

TEST(TarnFWParserActionsConnection, StoresTheirPortsAsTheyStand) {
  const Bytes golden = Bytes(40).at(0, {10, 0, 0, 1}).at(16, {10, 0, 0, 2}).at(32, {1, 4, 80, 0});
  EXPECT_EQ(connectionOf("from 10.0.0.1 port 1025 to 10.0.0.2 port 80"), golden);
  EXPECT_EQ(connectionOf("from 10.0.0.1:1025 to 10.0.0.2:80"), golden);
  EXPECT_EQ(connectionOf("from 10.0.0.1 port 65535 to 10.0.0.2 port 0"),
            Bytes(40).at(0, {10, 0, 0, 1}).at(16, {10, 0, 0, 2}).at(32, {255, 255}));
}

TEST(TarnFWParserActionsConnection, AnyIsTheAddressOfAllOnes) {
  const Bytes golden =
      Bytes(40).at(0, {255, 255, 255, 255}).at(16, {10, 0, 0, 2}).at(32, {1, 4, 80});
  EXPECT_EQ(connectionOf("from any port 1025 to 10.0.0.2 port 80"), golden);
  EXPECT_EQ(connectionOf("from any:1025 to 10.0.0.2:80"), golden);
  EXPECT_EQ(connectionOf("from 10.0.0.2:80 to any:1025"),
            Bytes(40).at(0, {10, 0, 0, 2}).at(16, {255, 255, 255, 255}).at(32, {80, 0, 1, 4}));
}

TEST(TarnFWParserActionsConnection, RefusesIPv6AddressesInAList) {
  EXPECT_EQ(failureOf("from 2001:db8::1 port 1 to 10.0.0.2 port 80"), "33|ip 2001:db8::1");
  EXPECT_EQ(failureOf("from 10.0.0.2 port 1 to ::1 port 80"), "33|ip ::1");
  EXPECT_EQ(failureOf("{ from any:1 to any:2, from any port 1 to ::1 port 80 }"), "33|ip ::1");
}

TEST(TarnFWParserActionsConnection, JudgesPortsBeforeAddresses) {
  EXPECT_EQ(failureOf("from ::1 port 65536 to any port 80"),
            "38|TCP/UDP port number (65536) is invalid");
  EXPECT_EQ(failureOf("from any port 1 to any port -1"), "38|TCP/UDP port number (-1) is invalid");
  EXPECT_EQ(failureOf("from any port 70000 to any port 80000"),
            "38|TCP/UDP port number (70000) is invalid");
  EXPECT_EQ(failureOf("from any:65536 to any:1"), "38|port number (65536) is invalid");
}

TEST(TarnFWParserActionsConnection, APortThatOverflowsInItsTokenIsZero) {
  EXPECT_EQ(connectionOf("from 1.1.1.1:70000 to any:1"),
            Bytes(40).at(0, {1, 1, 1, 1}).at(16, {255, 255, 255, 255}).at(34, {1, 0}));
}

TEST(TarnFWParserActionsConnection, AListHasEachConnectionOnceInOrder) {
  const ParseText parse(
      "set connection with { from 10.0.0.2:1 to any:1, from 10.0.0.1:1 to any:1, "
      "from 10.0.0.2:1 to any:1 };");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.word(0), 2u);
  EXPECT_EQ(parse.body().size(), 88u);
  EXPECT_EQ(parse.body()[8 + 3], 1);
  EXPECT_EQ(parse.body()[48 + 3], 2);
}

TEST(TarnFWParserActionsConnection, LeavesNothingOfAListThatEndsInAnError) {
  EXPECT_EQ(failureOf("{ from any:1 to any:2, from any:1 to any:2, }").substr(0, 16),
            "16|syntax error,");
  EXPECT_EQ(failureOf("{ from any:1 to any:2, from any:65536 to any:2 }"),
            "38|port number (65536) is invalid");
  EXPECT_EQ(failureOf("from 10.0.0.1 port 1 to 10.0.0.2;").substr(0, 16), "16|syntax error,");
}

TEST(TarnFWParserActionsConnection, DescribesAConnectionWithItsPortsInNetworkOrder) {
  EXPECT_EQ(describedBy("10.0.0.1 1025 10.0.0.2 80 tcp dir_in"), Bytes(40)
                                                                     .at(0, {10, 0, 0, 1})
                                                                     .at(16, {10, 0, 0, 2})
                                                                     .at(32, {4, 1, 0, 80})
                                                                     .at(36, {2, 0, 0, 6}));
  EXPECT_EQ(describedBy("2001:db8::1 1 2001:db8::2 65535 udp dir_out"),
            Bytes(40)
                .at(0, {0x20, 1, 0x0d, 0xb8})
                .at(15, {1})
                .at(16, {0x20, 1, 0x0d, 0xb8})
                .at(31, {2})
                .at(32, {0, 1, 255, 255})
                .at(36, {5, 0, 0, 17}));
}

TEST(TarnFWParserActionsConnection, AnyOtherDirectionIsNone) {
  for (const char* word : {"dir_inout", "DIR_IN", "both", "\"\"", "dir_outer"}) {
    EXPECT_EQ(describedBy("10.0.0.1 1 10.0.0.2 2 icmp " + std::string(word)),
              Bytes(40).at(0, {10, 0, 0, 1}).at(16, {10, 0, 0, 2}).at(32, {0, 1, 0, 2}).at(39, {1}))
        << word;
  }
}

TEST(TarnFWParserActionsConnection, EndsSilentlyAtADescriptionThatMeansNoConnection) {
  EXPECT_EQ(specFailure("10.0.0.1 1 ::1 2 tcp dir_in"), "0|");
  EXPECT_EQ(specFailure("::1 1 10.0.0.1 2 tcp dir_in"), "0|");
  EXPECT_EQ(specFailure("10.0.0.1 1 10.0.0.2 2 nonesuch dir_in"), "0|");
  // The families first, the ports next, the protocol last.
  EXPECT_EQ(specFailure("10.0.0.1 70000 ::1 2 nonesuch dir_in"), "0|");
  EXPECT_EQ(specFailure("10.0.0.1 70000 10.0.0.2 2 nonesuch dir_in"),
            "38|TCP/UDP port number (70000) is invalid");
  EXPECT_EQ(specFailure("10.0.0.1 1 10.0.0.2 -2 tcp dir_in"),
            "38|TCP/UDP port number (-2) is invalid");
}
