#include <gtest/gtest.h>

#include "LabBench.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

class LabSpoofGuard : public LabBench {
 protected:
  static constexpr const char* watched = "nic-998214-eth0-kelpco-spoof.guard.1";
  static constexpr const char* old = "nic-998214-eth0-kelpco-sfw.2";

  static ByteVector mac(unsigned last) {
    return Record().u8(2).u8(0).u8(0xa).u8(0xb).u8(0xc).u8(last);
  }
  static Record guard(unsigned count, const std::vector<ByteVector>& addresses) {
    Record body = Record().bytes(mac(1)).u16(0).u32(count);
    for (const ByteVector& address : addresses) body.bytes(address);
    if (addresses.empty()) body.zero(144);
    return body;
  }
  static ByteVector set(const std::string& name) { return Record().u32(11).text(name, 38).to(144); }
  static ByteVector ipv6() { return Record().u32(2).u8(0xfd).zero(14).u8(7).to(144); }
  static Record asked() { return Record().zero(8).u32(1).to(147468); }

  std::string macOfReply() const {
    std::string text;
    for (std::size_t i = 0; i < 6; ++i) text += format("%02x", get8(reply, i));
    return text;
  }
};

TEST_F(LabSpoofGuard, AFilterWithoutOneHasTheAddressOfItsNic) {
  ASSERT_EQ(command(27, asked()), 0u);
  EXPECT_EQ(macOfReply(), "00505699b626");
  EXPECT_EQ(get8(reply, 6), 0u);
  EXPECT_EQ(get32(reply, 8), 0u);
  ASSERT_EQ(command(27, asked(), filterSelector("nic-1003044-eth0-kelpco-sfw.2")), 0u);
  EXPECT_EQ(macOfReply(), "005056991077");
  ASSERT_EQ(command(27, asked(), filterSelector("nic-1003044-eth1-kelpco-sfw.2")), 0u);
  EXPECT_EQ(macOfReply(), "005056991078") << "the second NIC of the same machine";
}

TEST_F(LabSpoofGuard, IsCreatedReadAndDeleted) {
  const std::vector<ByteVector> addresses = {ipv4("10.0.0.7"), ipv6(), set("hosts")};
  ASSERT_EQ(command(25, guard(3, addresses)), 0u);
  ASSERT_EQ(command(27, asked()), 0u);
  EXPECT_EQ(macOfReply(), "02000a0b0c01");
  EXPECT_EQ(get8(reply, 6), 1u);
  ASSERT_EQ(get32(reply, 8), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    const ConstBytes entry = part(ConstBytes(reply), 12 + 144 * i, 144);
    EXPECT_EQ(ByteVector(entry.begin(), entry.end()), addresses[i]);
  }
  EXPECT_EQ(command(26, Record().bytes(mac(2)).u16(0)), 30u);
  EXPECT_EQ(note(), "the spoof guard is of 02:00:0a:0b:0c:01");
  ASSERT_EQ(command(26, Record().bytes(mac(1)).u16(0)), 0u);
  ASSERT_EQ(command(27, asked()), 0u);
  EXPECT_EQ(get8(reply, 6), 0u);
  EXPECT_EQ(get32(reply, 8), 0u);
  EXPECT_EQ(command(26, Record().zero(8)), 30u);
  EXPECT_EQ(note(), "there is no spoof guard");
}

TEST_F(LabSpoofGuard, AGuardWithoutAddressesHasTheRoomOfOne) {
  ASSERT_EQ(command(25, guard(0, {})), 0u);
  ASSERT_EQ(command(27, asked()), 0u);
  EXPECT_EQ(get8(reply, 6), 1u);
  EXPECT_EQ(get32(reply, 8), 0u);
  EXPECT_EQ(command(26, Record().zero(8)), 0u) << "no address means the filter's guard";
}

TEST_F(LabSpoofGuard, RefusesWhatIsWrong) {
  EXPECT_EQ(command(25, guard(2, {ipv4("10.0.0.7")})), 25u);
  EXPECT_EQ(note(), "2 addresses in 144 bytes");
  EXPECT_EQ(command(25, guard(0, {ipv4("10.0.0.7")})), 25u);
  EXPECT_EQ(note(), "an address that is not counted");
  EXPECT_EQ(command(25, guard(1, {ipv4Block("10.0.0.0", 8)})), 33u);
  EXPECT_EQ(note(), "address 0: neither one IP address nor an address set");
  EXPECT_EQ(command(25, guard(1, {}).set(12, 99)), 33u);
  EXPECT_EQ(command(25, guard(1, {ipv4("10.0.0.7")}).set(6, 1)), 25u);
  EXPECT_EQ(command(25, guard(1025, std::vector<ByteVector>(1025, ipv4("10.0.0.7")))), 3u);
  EXPECT_EQ(command(27, Record().zero(8).u32(2).to(147468)), 25u);
  EXPECT_EQ(command(27, asked().set(0, 1)), 25u);
  EXPECT_EQ(command(26, Record().zero(7).u8(1)), 25u);
  EXPECT_EQ(command(28, Record().zero(55)), 25u);
}

TEST_F(LabSpoofGuard, AnAnswerWithoutRoomIsRefused) {
  ASSERT_EQ(command(25, guard(2, {ipv4("10.0.0.7"), ipv4("10.0.0.8")})), 0u);
  EXPECT_EQ(command(27, Record().zero(8).u32(1).to(12 + 287)), 25u);
  EXPECT_EQ(command(27, Record().zero(8).u32(1).to(12 + 288)), 0u);
}

TEST_F(LabSpoofGuard, CountsTheTrafficOfAFilterThatItGuards) {
  ASSERT_EQ(command(28, Record().zero(56)), 0u);
  EXPECT_TRUE(isZero(reply));
  ASSERT_EQ(command(25, guard(0, {})), 0u);
  ASSERT_EQ(command(28, Record().zero(56)), 0u);
  const std::uint64_t expected[] = {1200, 720, 240, 480, 1680, 2640, 24240};
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(get64(reply, 8 * i), expected[i]) << i;
}

TEST_F(LabSpoofGuard, TheOldMachineOfANewHostIsGuarded) {
  {
    const StoreLock lock(store);
    fillHost(store, Host::load(store));
  }
  ASSERT_EQ(command(27, asked(), filterSelector(watched, "kelpco-spoof.guard")), 0u);
  EXPECT_EQ(get8(reply, 6), 1u);
  ASSERT_EQ(get32(reply, 8), 3u);
  EXPECT_EQ(get16(reply, 12), 1u);
  EXPECT_EQ(get16(reply, 12 + 144), 2u);
  EXPECT_EQ(get16(reply, 12 + 288), 11u);
  const std::string name(getText(reply, 12 + 288 + 4, 38));
  ASSERT_EQ(
      command(15, Record().text(name, 38).zero(12), filterSelector(watched, "kelpco-spoof.guard")),
      0u)
      << "the set that it refers to is there";
  EXPECT_EQ(get32(reply, 38), 2u);
  ASSERT_EQ(command(27, asked(), filterSelector(old)), 0u);
  EXPECT_EQ(get8(reply, 6), 0u);
  EXPECT_EQ(get32(reply, 8), 3u);
  EXPECT_EQ(command(26, Record().zero(8), filterSelector(old)), 0u) << "what it knows is forgotten";
}

}  // namespace
}  // namespace TarnLab
