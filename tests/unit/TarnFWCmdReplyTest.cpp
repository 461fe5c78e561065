#include <gtest/gtest.h>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWCmdReply.h"

using namespace TarnFirewall;

TEST(TarnFWCmdReply, ReadsUpToItsEndAndNotPast) {
  const Bytes bytes({1, 2, 3, 4, 5, 6, 7, 8});
  const CTarnFWCmdReply reply(bytes.data(), bytes.size());
  EXPECT_EQ(reply.word(4), 0x08070605u);
  EXPECT_EQ(reply.longWord(0), 0x0807060504030201u);
  EXPECT_EQ(reply.byte(7), 8);
  EXPECT_TRUE(reply.rest(8).empty());
  EXPECT_THROW_WITH((void)reply.word(5), CInsufficientMsgBufException, 9,
                    "expect 9 byte in message buffer, but only get 8 bytes");
  EXPECT_THROW_WITH((void)reply.byte(8), CInsufficientMsgBufException, 9,
                    "expect 9 byte in message buffer, but only get 8 bytes");
  EXPECT_THROW((void)reply.rest(9), CInsufficientMsgBufException);
  EXPECT_THROW((void)reply.part(~std::size_t{0}, 2), CInsufficientMsgBufException);
  EXPECT_THROW((void)reply.part(2, ~std::size_t{0}), CInsufficientMsgBufException);
}

TEST(TarnFWCmdReply, TextEndsAtItsNulOrItsField) {
  const Bytes bytes = Bytes(8).text(0, "abcdefg");
  const CTarnFWCmdReply reply(bytes.data(), bytes.size());
  EXPECT_EQ(reply.text(0, 4), "abcd");
  EXPECT_EQ(reply.text(4, 4), "efg");
}

TEST(TarnFWCmdReply, AnAbsentReplyIsEmpty) { EXPECT_EQ(CTarnFWCmdReply(nullptr, 8).size(), 0u); }

TEST(TarnFWCmdReply, ACountIsCutToWhatWasAskedForAndWhatIsThere) {
  LogCapture log;
  const Bytes bytes(40);
  const CTarnFWCmdReply reply(bytes.data(), bytes.size());
  EXPECT_EQ(reply.fitting(0, 10, 8, 8), 0u);
  EXPECT_EQ(reply.fitting(4, 10, 8, 8), 4u);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(reply.fitting(5, 10, 8, 8), 4u);
  EXPECT_EQ(reply.fitting(0xffffffff, 0xffffffff, 8, 8), 4u);
  EXPECT_EQ(reply.fitting(3, 2, 8, 8), 2u);
  EXPECT_EQ(reply.fitting(1, 1, 40, 8), 0u);
  EXPECT_EQ(reply.fitting(1, 1, 999, 8), 0u);
  EXPECT_TRUE(log.has(4, "reply tells 5 entries, only 4 can be read\n"));
  EXPECT_EQ(log.lines().size(), 5u);
}
