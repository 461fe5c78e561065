#include <gtest/gtest.h>

#include "LabBench.h"

namespace TarnLab {
namespace {

class LabMessage : public LabBench {
 protected:
  /// Sends a message for no filter that has one byte changed.
  int changed(std::size_t offset, unsigned value) {
    ByteVector sent = message(1, ByteVector(4));
    sent.at(offset) = static_cast<std::byte>(value);
    return send(sent, ByteVector(100));
  }
};

TEST_F(LabMessage, AnswersWithAStatusAndMarksTheResponse) {
  ByteVector sent = message(250, ByteVector(4));
  ASSERT_EQ(send(sent, filterSelector(web)), 0);
  EXPECT_EQ(get8(sent, 14), 1u);
  EXPECT_EQ(get32(sent, 28), 7u);
  EXPECT_EQ(note(), "command 250 is not known");
}

TEST_F(LabMessage, RefusesEveryFieldOfTheHeaderThatIsWrong) {
  const std::pair<std::size_t, unsigned> fields[] = {{0, 'X'}, {3, 'n'}, {4, 17}, {12, 2},
                                                     {13, 7},  {14, 2},  {15, 2}, {16, 0},
                                                     {16, 2},  {18, 1},  {19, 1}};
  for (const auto& [offset, value] : fields) {
    EXPECT_EQ(changed(offset, value), EINVAL) << "byte " << offset;
    EXPECT_FALSE(note().empty());
  }
  EXPECT_EQ(changed(8, 77), 0) << "the sequence number is free";
}

TEST_F(LabMessage, RefusesAMessageWithoutACommand) {
  ByteVector sent = Record().text("TARN", 4).u32(0).u32(1).u8(1).u8(1).u8(0).u8(1).u16(0).u16(0);
  ASSERT_EQ(sent.size(), 20u);
  EXPECT_EQ(send(sent, ByteVector(100)), EINVAL);
  EXPECT_EQ(note(), "message without a command");
}

TEST_F(LabMessage, RefusesABodyLengthThatDoesNotAgree) {
  EXPECT_EQ(changed(20, 3), EINVAL);
  EXPECT_EQ(note(), "1 bytes after the last command");
  EXPECT_EQ(changed(20, 5), EINVAL);
  EXPECT_EQ(note(), "command 1 with a body of 5 bytes, 4 are left");
  EXPECT_EQ(changed(23, 0xff), EINVAL);
}

TEST_F(LabMessage, RefusesACommandThatWasSentWithAStatusUnlessItIsSentAgain) {
  ByteVector sent = message(1, ByteVector(4));
  put8(sent, 28, 26);
  EXPECT_EQ(send(sent, filterSelector(web)), EINVAL);
  put8(sent, 14, 1);
  EXPECT_EQ(send(sent, filterSelector(web)), 0);
  EXPECT_EQ(get32(sent, 28), 0u);
}

TEST_F(LabMessage, DoesNotLookAtTheReservedFieldOfTheEnvelope) {
  EXPECT_EQ(changed(26, 0), 0);
  EXPECT_EQ(changed(27, 0x5a), 0);
}

TEST_F(LabMessage, RefusesEveryTruncatedSize) {
  const ByteVector whole = message(1, ByteVector(4));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    ByteVector sent(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(send(sent, ByteVector(100)), EINVAL) << size;
  }
}

TEST_F(LabMessage, RefusesBadAddressesWithoutACrash) {
  ByteVector block = Record().zero(100).u32(36).u64(0);
  EXPECT_EQ(direct(15, block), EFAULT);
  block = Record().zero(100).u32(36).u64(0xffffffffffff0000ull);
  EXPECT_EQ(direct(15, block), EFAULT);
  block = Record().zero(100).u32(0xffffffff).u64(reinterpret_cast<std::uintptr_t>(block.data()));
  EXPECT_EQ(direct(15, block), E2BIG);
}

TEST_F(LabMessage, RefusesAnotherBlockSize) {
  for (const std::size_t size : {0u, 111u, 113u}) {
    ByteVector block(size);
    EXPECT_EQ(direct(15, block), EINVAL) << size;
  }
}

TEST_F(LabMessage, AnswersEveryCommandOfAMessageInItsOrder) {
  const ByteVector count = Record().u32(4).u16(1).u16(0).u32(0).u32(0);
  const ByteVector unknown = Record().u32(0).u16(200).u16(0).u32(0);
  ByteVector sent = Record()
                        .text("TARN", 4)
                        .u32(16 + 12 + 16)
                        .u32(5)
                        .u8(1)
                        .u8(1)
                        .u8(0)
                        .u8(1)
                        .u16(3)
                        .u16(0)
                        .bytes(count)
                        .bytes(unknown)
                        .bytes(count);
  ASSERT_EQ(createRuleSet("web", {}), 0u);
  ASSERT_EQ(send(sent, filterSelector(web)), 0);
  EXPECT_EQ(get32(sent, 20 + 8), 0u);
  EXPECT_EQ(get32(sent, 20 + 12), 1u);
  EXPECT_EQ(get32(sent, 36 + 8), 7u);
  EXPECT_EQ(get32(sent, 48 + 8), 0u);
  EXPECT_EQ(get32(sent, 48 + 12), 1u);
}

TEST_F(LabMessage, ANeedForAFilterIsStatus21AndAnUnknownFilterIsNoEntry) {
  EXPECT_EQ(command(1, ByteVector(4), ByteVector(100)), 21u);
  ByteVector sent = message(1, ByteVector(4));
  EXPECT_EQ(send(sent, filterSelector("nic-1-eth0-kelpco-sfw.2")), ENOENT);
  EXPECT_EQ(send(sent, filterSelector(web, "kelpco-inspect")), ENOENT);
  EXPECT_EQ(note(), std::string("there is no filter ") + web + " of kelpco-inspect");
}

TEST_F(LabMessage, FindsAFilterByEveryTypeOfSelector) {
  const auto select = [](const std::string& identifier, const std::string& agent, unsigned index,
                         unsigned type) {
    return Record().text(identifier, 64).text(agent, 32).u16(index).u8(0).u8(type);
  };
  const std::string uuid = "50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77";
  const std::string port = "50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 03";
  EXPECT_EQ(command(1, ByteVector(4), select(uuid, "", 1, 1)), 0u);
  EXPECT_EQ(
      command(1, ByteVector(4), Record().text(port, 64).zero(32).u32((0x7012u * 10u) | 2u << 24)),
      0u);
  EXPECT_EQ(
      command(1, ByteVector(4), select("8d0c7a10-55f4-4c1e-9b02-0000632a0000", "kelpco-sfw", 0, 8)),
      0u);
  EXPECT_EQ(command(1, ByteVector(4), select("8d0c7a10-55f4-4c1e-9b02-0000632a0000", "", 0, 0xf8)),
            0u)
      << "the high bits of the type are not looked at";
}

TEST_F(LabMessage, RefusesSelectorsThatMakeNoSense) {
  ByteVector sent = message(1, ByteVector(4));
  EXPECT_EQ(send(sent, Record().zero(99).u8(3)), EINVAL);
  EXPECT_EQ(send(sent, Record().text("web", 64).zero(36)), EINVAL);
  EXPECT_EQ(note(), "selector without a type is not zero");
}

TEST_F(LabMessage, WritesNoMoreThanTheReply) {
  ByteVector sent = message(1, Record().u32(0xaaaaaaaa).u32(0xbbbbbbbb));
  ASSERT_EQ(send(sent, filterSelector(web)), 0);
  EXPECT_EQ(get32(sent, 32), 0u);
  EXPECT_EQ(get32(sent, 36), 0xbbbbbbbbu);
}

TEST_F(LabMessage, RefusesReservedBytesOfACommandThatAreSet) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1)}), 0u);
  ASSERT_EQ(createAddrSet("set", {ipv4("10.0.0.1")}), 0u);
  const ByteVector rules = Record().text("web", 64).u32(1).u32(0).u16(1).to(96 + 896);
  const ByteVector creation = Record().zero(64).text("x", 64).u64(0).u32(0).u8(3).to(168);
  struct Row {
    unsigned number;
    ByteVector body;
    std::vector<std::size_t> reserved;
  };
  const Row rows[] = {{3, creation, {0, 63, 66, 127, 128, 135, 141, 143, 160, 167}},
                      {4, ByteVector(132), {128, 131}},
                      {6, Record().text("web", 72), {4, 63, 64, 71}},
                      {10, rules, {4, 63, 75}},
                      {11, rules, {4, 63, 75}},
                      {12, rules, {4, 63, 75}},
                      {64, Record().text("set", 46), {4, 37, 38, 45}},
                      {14, Record().text("set", 42), {4, 37, 38, 41}},
                      {36, ByteVector(4), {0, 3}},
                      {60, ByteVector(4), {0, 3}},
                      {65, ByteVector(4), {0, 3}}};
  for (const Row& row : rows) {
    for (const std::size_t at : row.reserved) {
      EXPECT_EQ(command(row.number, Record().bytes(row.body).set(at, 0x80)), 25u)
          << "command " << row.number << " byte " << at;
      EXPECT_FALSE(note().empty());
    }
    EXPECT_EQ(command(row.number, row.body), 0u) << "command " << row.number;
  }
  EXPECT_EQ(command(3, Record().bytes(creation).set(140, 0x83)), 25u) << "unknown flags";
  EXPECT_EQ(command(56, Record().text("none", 38).u8(1).to(82)), 25u);
}

TEST_F(LabMessage, ABodyTooShortForItsCommandIsABadMessage) {
  EXPECT_EQ(command(1, ByteVector(3)), 25u);
  EXPECT_EQ(note(), "command 1 with a body of 3 bytes, 4 needed");
}

}  // namespace
}  // namespace TarnLab
