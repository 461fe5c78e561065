#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

#include "Expect.h"
#include "LibcShim.h"
#include "Loopback.h"
#include "TarnFWIOChannelFactory.h"
#include "TarnFWIOChannelSocket.h"

using namespace TarnFirewall;

namespace {

/// A message of one command, with the 20 bytes of slack after it.
Bytes message(int command, int body, int commands = 1) {
  Bytes bytes(static_cast<std::size_t>(32 + body + 20));
  bytes.text(0, "TARN").at(4, {(12 + body) & 0xff, (12 + body) >> 8});
  bytes.at(12, {1, 1, 0, 1, commands, 0});
  bytes.at(20, {body & 0xff, body >> 8, 0, 0, command & 0xff, command >> 8});
  for (int i = 0; i < body; ++i) bytes.at(static_cast<std::size_t>(32 + i), {0xb0 + i % 16});
  return bytes;
}

class TarnFWIOChannelSocket : public testing::Test {
 protected:
  FWStatus_t send(Bytes& bytes) { return send(bytes, bytes.size() - 20); }
  FWStatus_t send(Bytes& bytes, std::size_t size) {
    return channel.sendIOCTL(nullptr, bytes.data(), static_cast<unsigned int>(size), nullptr);
  }

  /// What the peer will answer: sent ahead, since the channel reads only after it has written.
  void answer(const Bytes& bytes) {
    ASSERT_EQ(::send(pair.peer, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  }

  StreamPair pair;
  CTarnFWIOChannelSocket channel{std::make_unique<Sockets::Socket>(pair.ours)};
};

}  // namespace

TEST_F(TarnFWIOChannelSocket, SendsTheRequestsSizeAndFiftyTwoBytesAndReceivesTheWholeMessage) {
  // Command 9 has 64 bytes of request in a body of 84.
  Bytes bytes = message(9, 84);
  const Bytes before = bytes;
  Bytes reply(116, 0x5a);
  answer(reply);
  EXPECT_EQ(send(bytes), 0u);

  const std::vector<std::uint8_t> sent = pair.arrived();
  Bytes expected(116);
  std::copy(before.begin(), before.begin() + 116, expected.begin());
  expected.at(4, {96, 0, 0, 0});   // the whole message's size where the body's is expected
  expected.at(20, {64, 0, 0, 0});  // the request's size
  EXPECT_EQ(sent, expected);

  EXPECT_TRUE(std::equal(reply.begin(), reply.end(), bytes.begin()));
  EXPECT_TRUE(std::equal(before.begin() + 116, before.end(), bytes.begin() + 116))
      << "nothing is received after the message";
}

TEST_F(TarnFWIOChannelSocket, TheCatalogueReachesFromOneToNinetyOne) {
  for (const auto& [command, request] : {std::pair{1, 1}, {91, 16}}) {
    Bytes bytes = message(command, 40);
    answer(Bytes(72));
    EXPECT_EQ(send(bytes), 0u) << command;
    const std::vector<std::uint8_t> sent = pair.arrived();
    ASSERT_EQ(sent.size(), static_cast<std::size_t>(request + 52)) << command;
    EXPECT_EQ(sent[4], request + 32) << command;
    EXPECT_EQ(sent[20], request) << command;
  }
}

TEST_F(TarnFWIOChannelSocket, TheSlackGoesOutAsItComesWhenTheRequestFillsTheBody) {
  Bytes bytes = message(7, 64);
  std::fill(bytes.begin() + 96, bytes.end(), std::uint8_t{0xc7});
  answer(Bytes(96));
  EXPECT_EQ(send(bytes), 0u);
  const std::vector<std::uint8_t> sent = pair.arrived();
  ASSERT_EQ(sent.size(), 116u);
  EXPECT_EQ(std::vector<std::uint8_t>(sent.begin() + 96, sent.end()), Bytes(20, 0xc7));
}

TEST_F(TarnFWIOChannelSocket, ARequestBeyondTheMessageIsPaddedWithZeros) {
  // Command 9 takes 64 bytes of request; a message that holds only 4 is filled up, not read past.
  Bytes bytes = message(9, 4);
  answer(Bytes(36));
  EXPECT_EQ(send(bytes), 0u);
  const std::vector<std::uint8_t> sent = pair.arrived();
  ASSERT_EQ(sent.size(), 116u);
  EXPECT_EQ(std::vector<std::uint8_t>(sent.begin() + 32, sent.begin() + 36),
            Bytes({0xb0, 0xb1, 0xb2, 0xb3}));
  EXPECT_EQ(std::vector<std::uint8_t>(sent.begin() + 36, sent.end()), Bytes(80));
}

TEST_F(TarnFWIOChannelSocket, ACommandNumberOutsideTheCatalogueKeepsItsLengths) {
  // The header's length and the 20 bytes of the header go out: the whole message as it stands.
  for (const int command : {0, 92, 65535}) {
    Bytes bytes = message(command, 8);
    const Bytes before = bytes;
    answer(Bytes(40));
    EXPECT_EQ(send(bytes), 0u) << command;
    EXPECT_EQ(pair.arrived(), std::vector<std::uint8_t>(before.begin(), before.begin() + 40));
  }
}

TEST_F(TarnFWIOChannelSocket, TheLengthsAreRestoredBeforeTheAnswerComes) {
  Bytes bytes = message(9, 84);
  const Bytes before = bytes;
  answer(Bytes(3, 0xee));
  ASSERT_EQ(::shutdown(pair.peer, SHUT_WR), 0);
  EXPECT_EQ(send(bytes), 11u) << "the peer closed after 3 bytes";
  Bytes expected = before;
  expected.at(0, {0xee, 0xee, 0xee});
  EXPECT_EQ(bytes, expected);
}

TEST_F(TarnFWIOChannelSocket, ALongBodyComesBackWithTheLowSixteenBitsOfItsLength) {
  const int body = 0x10004;
  Bytes bytes(static_cast<std::size_t>(32 + body + 20));
  bytes.text(0, "TARN").at(4, {0x10, 0x00, 0x01, 0x00}).at(12, {1, 1, 0, 1, 1, 0});
  bytes.at(20, {0x04, 0x00, 0x01, 0x00, 2, 0});
  ASSERT_EQ(::shutdown(pair.peer, SHUT_WR), 0);
  EXPECT_EQ(send(bytes), 11u);
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin() + 4, bytes.begin() + 8),
            Bytes({0x10, 0x00, 0x01, 0x00}));
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin() + 20, bytes.begin() + 24),
            Bytes({0x04, 0x00, 0x00, 0x00}));
}

TEST_F(TarnFWIOChannelSocket, AWrongSignatureIsRefused) {
  Bytes bytes = message(9, 84);
  bytes.text(0, "TARM");
  EXPECT_EQ(send(bytes), 72u);
  EXPECT_EQ(send(bytes, 3), 72u);
  EXPECT_EQ(channel.sendIOCTL(nullptr, nullptr, 116, nullptr), 72u);
  EXPECT_TRUE(pair.arrived().empty());
}

TEST_F(TarnFWIOChannelSocket, EverySizeUnderTheHeadersIsRefused) {
  Bytes bytes = message(9, 84);
  for (std::size_t size = 4; size < 20; ++size) EXPECT_EQ(send(bytes, size), 73u) << size;
  EXPECT_TRUE(pair.arrived().empty());
}

TEST_F(TarnFWIOChannelSocket, LengthsThatDoNotAgreeAreRefused) {
  Bytes bytes = message(9, 84);
  for (const std::size_t size : {20u, 31u, 115u, 117u}) EXPECT_EQ(send(bytes, size), 74u) << size;
  bytes.at(20, {83});
  EXPECT_EQ(send(bytes), 74u);
  EXPECT_TRUE(pair.arrived().empty());
}

TEST_F(TarnFWIOChannelSocket, AMessageTooShortForItsCommandIsRefused) {
  for (int body = 0; body < 12; ++body) {
    Bytes bytes(static_cast<std::size_t>(20 + body));
    bytes.text(0, "TARN").at(4, {body}).at(12, {1, 1, 0, 1, 1, 0});
    EXPECT_EQ(send(bytes, bytes.size()), 74u) << body;
    bytes.at(16, {0});
    EXPECT_EQ(send(bytes, bytes.size()), 7u) << "no command, " << body << " bytes";
  }
  EXPECT_TRUE(pair.arrived().empty());
}

TEST_F(TarnFWIOChannelSocket, AMessageWithTwoCommandsIsNotSupportedAndNotSent) {
  Bytes bytes = message(9, 84, 2);
  EXPECT_EQ(send(bytes), 7u);
  bytes.at(16, {0});
  EXPECT_EQ(send(bytes), 7u);
  EXPECT_TRUE(pair.arrived().empty());
}

TEST_F(TarnFWIOChannelSocket, LengthsAreJudgedBeforeTheCommandCountAndItBeforeTheCommandsLength) {
  Bytes bytes = message(9, 84, 2);
  bytes.at(20, {83});
  EXPECT_EQ(send(bytes), 7u);
  EXPECT_EQ(send(bytes, 115), 74u);
  EXPECT_EQ(send(bytes, 19), 73u);
  bytes.text(0, "TARM");
  EXPECT_EQ(send(bytes, 19), 72u);
  EXPECT_TRUE(pair.arrived().empty());
}

TEST_F(TarnFWIOChannelSocket, ThePeerDoesNotLearnWhichFilterIsMeant) {
  dvs_port_ port{};
  std::memset(&port, 'p', sizeof port);
  const dvs_port_ kept = port;
  int context = 5;
  Bytes plain = message(9, 84);
  answer(Bytes(116));
  EXPECT_EQ(send(plain), 0u);
  const std::vector<std::uint8_t> sent = pair.arrived();
  Bytes bytes = message(9, 84);
  answer(Bytes(116));
  EXPECT_EQ(channel.sendIOCTL(&port, bytes.data(), 116, &context), 0u);
  EXPECT_EQ(pair.arrived(), sent);
  EXPECT_EQ(std::memcmp(&port, &kept, sizeof port), 0);
  EXPECT_EQ(context, 5);
}

TEST_F(TarnFWIOChannelSocket, AnExchangeInPiecesIsTheSameExchange) {
  Bytes bytes = message(9, 84);
  const Bytes before = bytes;
  Bytes reply(116);
  for (std::size_t i = 0; i < reply.size(); ++i) reply[i] = static_cast<std::uint8_t>(i);
  answer(reply);
  {
    const LibcShim::ShortTransfers five(5);
    EXPECT_EQ(send(bytes), 0u);
  }
  Bytes expected(before.begin(), before.begin() + 116);
  expected.at(4, {96, 0, 0, 0}).at(20, {64, 0, 0, 0});
  EXPECT_EQ(pair.arrived(), expected);
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 116), reply);
}

TEST_F(TarnFWIOChannelSocket, WhatThePeerSaysBeyondTheMessageIsLeftForTheNextOne) {
  Bytes first = message(9, 84);
  Bytes second = message(9, 84);
  Bytes replies(232, 0x11);
  std::fill(replies.begin() + 116, replies.end(), std::uint8_t{0x22});
  answer(replies);
  EXPECT_EQ(send(first), 0u);
  EXPECT_EQ(send(second), 0u);
  EXPECT_EQ(Bytes(first.begin(), first.begin() + 116), Bytes(116, 0x11));
  EXPECT_EQ(Bytes(second.begin(), second.begin() + 116), Bytes(116, 0x22));
}

TEST_F(TarnFWIOChannelSocket, AFailingSendIsASocketError) {
  pair.closePeer();
  Bytes bytes = message(9, 84);
  EXPECT_EQ(send(bytes), 11u);
}

TEST(TarnFWIOChannelSocketFactory, MakesAConnectedChannelOfTypeTwo) {
  const LoopbackListener listener;
  const char* items[] = {"FWIOAddress", "127.0.0.1", "FWIOPort", listener.port()};
  const auto channel = create_io_channel(FW_IO_SOCKET, 4, items);
  EXPECT_NE(dynamic_cast<CTarnFWIOChannelSocket*>(channel.get()), nullptr);
}

TEST(TarnFWIOChannelSocketFactory, AChannelOfTypeThreeCanNeverBeMade) {
  const LoopbackListener listener;
  const char* items[] = {"FWIOAddress", "127.0.0.1", "FWIOPort", listener.port()};
  EXPECT_THROW_WITH(create_io_channel(FW_IO_RIBS, 4, items), CUnknownSocketTypeException, 11,
                    "unknown socket type: 1");
}
