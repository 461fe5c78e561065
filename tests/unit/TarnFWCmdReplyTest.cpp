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
  const Bytes bytes = Bytes(40).at(8, {1}).at(16, {2}).at(24, {3}).at(32, {4});
  const CTarnFWCmdReply reply(bytes.data(), bytes.size());
  EXPECT_EQ(reply.records<host64>(8, 0, 10).checkedSize(), 0u);
  EXPECT_EQ(reply.records<host64>(8, 4, 10).checkedSize(), 4u);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(reply.records<host64>(8, 5, 10).size(), 4u);
  EXPECT_TRUE(log.lines().empty()) << "the line is for the command alone, not for each that reads";
  EXPECT_EQ(reply.records<host64>(8, 5, 10).checkedSize(), 4u);
  EXPECT_EQ(reply.records<host64>(8, 0xffffffff, 0xffffffff).checkedSize(), 4u);
  EXPECT_EQ(reply.records<host64>(8, 3, 2).checkedSize(), 2u);
  EXPECT_EQ(reply.records<host64>(40, 1, 1).checkedSize(), 0u);
  EXPECT_EQ(reply.records<host64>(999, 1, 1).checkedSize(), 0u);
  EXPECT_TRUE(log.has(4, "reply tells 5 entries, only 4 can be read\n"));
  EXPECT_EQ(log.lines().size(), 5u);
}

TEST(TarnFWCmdReply, RecordsAreWalkedAndCopiedUpToTheirEnd) {
  const Bytes bytes = Bytes(39).at(8, {1}).at(16, {2}).at(24, {3}).at(32, {4});
  const CTarnFWCmdReply reply(bytes.data(), bytes.size());
  const CTarnFWReplyRecords<host64> records = reply.records<host64>(8, 4, 4);
  std::vector<std::uint64_t> values;
  for (const host64& value : records) values.push_back(value);
  EXPECT_EQ(values, (std::vector<std::uint64_t>{1, 2, 3}));
  EXPECT_EQ(std::uint64_t{records[2]}, 3u);
  host64 copies[4] = {};
  copies[3] = 77;
  records.copyTo(copies);
  EXPECT_EQ(std::uint64_t{copies[2]}, 3u);
  EXPECT_EQ(std::uint64_t{copies[3]}, 77u);
  reply.records<host64>(8, 4, 0).copyTo(nullptr);
}

TEST(TarnFWCmdReply, ReportsTheKernelsCountWhenMoreThanWasAskedForWouldHaveCome) {
  const Bytes bytes(40);
  const CTarnFWCmdReply reply(bytes.data(), bytes.size());
  EXPECT_EQ(reply.records<host64>(0, 0, 1).reported(), 0u);
  EXPECT_EQ(reply.records<host64>(0, 1, 1).reported(), 1u);
  EXPECT_EQ(reply.records<host64>(0, 2, 1).reported(), 2u);
  EXPECT_EQ(reply.records<host64>(0, 0xffffffff, 1).reported(), 0xffffffffu);
  EXPECT_EQ(reply.records<host64>(0, 2, 5).reported(), 2u);
  EXPECT_EQ(reply.records<host64>(0, 6, 5).reported(), 6u);
  // What is not there did not come, whatever the count.
  EXPECT_EQ(reply.records<host64>(0, 7, 6).reported(), 5u);
  EXPECT_EQ(reply.records<host64>(36, 2, 1).reported(), 0u);
}
