#include "LabBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

class LabUsers : public FilledLabBench {
 protected:
  /// S-1-5-21-LAST.
  static ByteVector sid(unsigned last) {
    return Record().u32(0).u8(1).u8(2).u32(0).u8(0).u8(5).u32(21).u32(last).to(72);
  }

  static ByteVector change(unsigned operation, const ByteVector& uid,
                           const std::vector<ByteVector>& sids) {
    Record bytes;
    bytes.u32(0).u32(operation).u32(sids.size()).bytes(uid);
    for (const ByteVector& each : sids) bytes.bytes(each);
    return bytes;
  }

  std::pair<unsigned, unsigned> count() {
    EXPECT_EQ(command(82, Record().zero(84)), 0u) << note();
    return {get32(reply, 4), get32(reply, 8)};
  }

  std::uint32_t read(unsigned users, std::size_t size) {
    return command(81, Record().u32(0).u32(users).u32(size).to(84 + size));
  }
};

TEST_F(LabUsers, UsersFollowEachOtherWithTheirSids) {
  EXPECT_EQ(count(), (std::pair{4u, 4 * 88u + 6 * 72u}));
  ASSERT_EQ(read(4, 4 * 88 + 6 * 72), 0u) << note();
  const ByteVector first = Record()
                               .u8(1)
                               .to(4)
                               .u32(3)
                               .u32(0)
                               .u32(7)
                               .bytes(usualSid(1101))
                               .bytes(usualSid(513))
                               .bytes(usualSid(514))
                               .bytes(usualSid(515));
  const ByteVector second = Record()
                                .u32(0)
                                .u32(2)
                                .u32(0)
                                .u32(0)
                                .bytes(usualSid(1102))
                                .bytes(usualSid(523))
                                .bytes(usualSid(524));
  EXPECT_EQ(ByteVector(reply.begin() + 84, reply.begin() + 84 + 304), first);
  EXPECT_EQ(ByteVector(reply.begin() + 84 + 304, reply.begin() + 84 + 304 + 232), second);
  const std::size_t last = reply.size() - 88;
  EXPECT_EQ(get32(reply, last + 4), 0u) << "the last one has no sids";
  EXPECT_EQ(ByteVector(reply.end() - 72, reply.end()), usualSid(1104));
}

TEST_F(LabUsers, OnlyWholeUsersAreAnswered) {
  ASSERT_EQ(read(4, 304 + 231), 0u) << note();
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 84 + 304, 231)));
  ASSERT_EQ(read(1, 304 + 232), 0u);
  EXPECT_EQ(get32(reply, 84 + 4), 3u);
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 84 + 304, 232)));
  ASSERT_EQ(read(4, 0), 0u);
  EXPECT_EQ(command(81, Record().u32(0).u32(4).u32(0xffffffff).to(100)), 25u);
  EXPECT_EQ(note(), "users of 4294967295 bytes, room for 16");
}

TEST_F(LabUsers, SidsAreAddedAndDeleted) {
  ASSERT_EQ(command(80, change(0, sid(1), {sid(7), sid(8), sid(7)})), 0u) << note();
  EXPECT_EQ(count(), (std::pair{5u, 5 * 88u + 8 * 72u})) << "a sid is kept once";
  ASSERT_EQ(command(80, change(0, sid(1), {sid(9)})), 0u);
  ASSERT_EQ(command(80, change(1, sid(1), {sid(7), sid(99)})), 0u);
  ASSERT_EQ(read(5, 5 * 88 + 8 * 72), 0u);
  const ByteVector added =
      Record().u32(0).u32(2).u32(0).u32(0).bytes(sid(1)).bytes(sid(8)).bytes(sid(9));
  EXPECT_EQ(ByteVector(reply.end() - 232, reply.end()), added);
  ASSERT_EQ(command(80, change(1, sid(1), {})), 0u);
  EXPECT_EQ(count().first, 4u) << "without sids the user goes";
  EXPECT_EQ(command(80, change(1, sid(1), {})), 70u);
  EXPECT_EQ(note(), "there is no user S-1-5-21-1");
}

TEST_F(LabUsers, EveryUserCanGo) {
  for (unsigned user = 1101; user <= 1104; ++user) {
    ASSERT_EQ(command(80, change(1, usualSid(user), {})), 0u) << user;
  }
  EXPECT_EQ(count(), (std::pair{0u, 0u}));
  ASSERT_EQ(read(0, 0), 0u);
}

TEST_F(LabUsers, ChangesThatMakeNoSenseAreRefused) {
  EXPECT_EQ(command(80, change(2, sid(1), {})), 3u);
  EXPECT_EQ(note(), "operation 2");
  EXPECT_EQ(command(80, Record().bytes(change(0, sid(1), {sid(2)})).set(8, 2)), 25u);
  EXPECT_EQ(note(), "2 sids in 72 bytes");
  EXPECT_EQ(command(80, Record().bytes(change(0, sid(1), {sid(2)})).set(11, 0xff)), 25u);
  EXPECT_EQ(command(80, Record().bytes(change(0, sid(1), {})).set(0, 1)), 25u);
  EXPECT_EQ(command(80, Record().bytes(change(0, sid(1), {})).set(16, 2)), 35u);
  EXPECT_EQ(note(), "uid: sid of revision 2");
  EXPECT_EQ(command(80, Record().bytes(change(0, sid(1), {sid(2)})).set(89, 16)), 35u);
  EXPECT_EQ(note(), "sid with 16 sub-authorities");
  EXPECT_EQ(command(82, Record().zero(84).set(83, 1)), 25u);
  EXPECT_EQ(command(81, Record().zero(84).set(12, 1)), 25u);
  EXPECT_EQ(command(80, Record().zero(83)), 25u);
  EXPECT_EQ(count().first, 4u);
}

TEST_F(LabUsers, TheLogShowsUsersAndSids) {
  ASSERT_EQ(read(2, 304 + 232), 0u);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    S-1-5-21-1004336348-1177238915-1101 active, 7 connections\n"
            "      S-1-5-21-1004336348-1177238915-513\n"
            "      S-1-5-21-1004336348-1177238915-514\n"
            "      S-1-5-21-1004336348-1177238915-515\n"
            "    S-1-5-21-1004336348-1177238915-1102 inactive, 0 connections\n"
            "      S-1-5-21-1004336348-1177238915-523\n"
            "      S-1-5-21-1004336348-1177238915-524\n");
  ASSERT_EQ(command(80, change(0, sid(1), {sid(7)})), 0u);
  EXPECT_NE(decodeRequest(journal().back())
                .find("SetUid2SidMapping(operation 0, sids 1, uid S-1-5-21-1) = ok"),
            std::string::npos);
  EXPECT_EQ(decodeRecords(journal().back()), "    S-1-5-21-7\n");
}

}  // namespace
}  // namespace TarnLab
