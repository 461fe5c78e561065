#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

class LabDiscovery : public FilledLabBench {
 protected:
  /// Operation 2 or 3, with room for so many bytes.
  int read(unsigned operation, std::size_t room) {
    entries.assign(room, std::byte{0xee});
    body = Record()
               .text(web, 100)
               .u8(operation)
               .to(137)
               .u32(room)
               .u64(reinterpret_cast<std::uintptr_t>(entries.data()))
               .to(161);
    return direct(31, body);
  }

  int count(const std::string& filter = web) {
    body = Record().text(filter, 100).u8(4).to(161);
    return direct(31, body);
  }

  int configure(unsigned features, unsigned arp, unsigned others, unsigned timeout) {
    body = Record().text(web, 100).u8(5).to(109).u32(features).to(149).u32(arp).u32(others).u32(
        timeout);
    return direct(32, body);
  }

  ByteVector body, entries;
};

TEST_F(LabDiscovery, CountsComeWithTheStatisticsAndTheLimits) {
  ASSERT_EQ(count(), 0) << note();
  EXPECT_EQ(get32(body, 101), 4u);
  EXPECT_EQ(get32(body, 105), 3u);
  EXPECT_EQ(get32(body, 109), 0xfu);
  EXPECT_EQ(get64(body, 113), 19u);
  EXPECT_EQ(get64(body, 121), 12u);
  EXPECT_EQ(get64(body, 113) - get64(body, 121), get32(body, 101) + get32(body, 105));
  EXPECT_EQ(get64(body, 129), 5400u);
  EXPECT_EQ(get32(body, 149), 32u);
  EXPECT_EQ(get32(body, 153), 96u);
  EXPECT_EQ(get32(body, 157), 7200u);
  EXPECT_TRUE(isZero(part(ConstBytes(body), 137, 12)));
}

TEST_F(LabDiscovery, EveryFamilyHasEachOfItsSourcesAndAStrangeOne) {
  ASSERT_EQ(read(2, 7 * 26), 0) << note();
  EXPECT_EQ(ByteVector(entries.begin(), entries.begin() + 26), (const ByteVector&)Record()
                                                                   .u16(101)
                                                                   .u8(0)
                                                                   .u8(0x50)
                                                                   .u8(0x56)
                                                                   .u8(0x99)
                                                                   .u8(0x2b)
                                                                   .u8(0x26)
                                                                   .u8(1)
                                                                   .u8(10)
                                                                   .u8(20)
                                                                   .u8(1)
                                                                   .u8(40)
                                                                   .zero(12)
                                                                   .u8(1));
  EXPECT_EQ(ByteVector(entries.begin() + 4 * 26, entries.begin() + 5 * 26),
            (const ByteVector&)Record()
                .u16(105)
                .u8(0)
                .u8(0x50)
                .u8(0x56)
                .u8(0x99)
                .u8(0x2b)
                .u8(0x26)
                .u8(0)
                .u8(0xfd)
                .u16(0)
                .u8(0x20)
                .u8(0)
                .u8(1)
                .zero(9)
                .u8(0x40)
                .u8(3));
  std::vector<std::pair<unsigned, unsigned>> forms;
  for (std::size_t at = 0; at < entries.size(); at += 26) {
    forms.emplace_back(get8(entries, at + 8), get8(entries, at + 25));
  }
  EXPECT_EQ(forms, (std::vector<std::pair<unsigned, unsigned>>{
                       {1, 1}, {1, 2}, {1, 2}, {1, 3}, {0, 3}, {0, 4}, {0, 1}}));
  EXPECT_EQ(get32(body, 149), 0u) << "the limits are not asked for";
  ASSERT_EQ(read(3, 7 * 26), 0) << note();
  EXPECT_EQ(get32(body, 149), 32u);
  EXPECT_EQ(get64(body, 113), 19u);
}

TEST_F(LabDiscovery, NoMoreEntriesAreWrittenThanThereIsRoomFor) {
  ASSERT_EQ(read(2, 5 * 26), 0) << note();
  EXPECT_EQ(get32(body, 101), 4u);
  EXPECT_EQ(get32(body, 105), 1u);
  ASSERT_EQ(read(2, 9 * 26), 0);
  EXPECT_EQ(get32(body, 101) + get32(body, 105), 7u);
  EXPECT_EQ(get8(entries, 7 * 26), 0xeeu) << "nothing after the last entry";
  ASSERT_EQ(read(2, 0), 0);
  EXPECT_EQ(get32(body, 101) + get32(body, 105), 0u);
  EXPECT_EQ(read(2, 27), EINVAL);
  EXPECT_EQ(note(), "buffer of 27 bytes");
}

TEST_F(LabDiscovery, ABufferHasToBeThere) {
  body = Record().text(web, 100).u8(2).to(137).u32(26).u64(8).to(161);
  EXPECT_EQ(direct(31, body), EFAULT);
  EXPECT_EQ(note(), "buffer cannot be written");
}

TEST_F(LabDiscovery, WhatIsSetIsReadBack) {
  ASSERT_EQ(configure(3, 40, 88, 600), 0) << note();
  ASSERT_EQ(count(), 0);
  EXPECT_EQ(get32(body, 109), 3u);
  EXPECT_EQ(get32(body, 149), 40u);
  EXPECT_EQ(get32(body, 153), 88u);
  EXPECT_EQ(get32(body, 157), 600u);
  EXPECT_EQ(get32(body, 101), 4u) << "what was discovered stays";
  ASSERT_EQ(count(other), 0);
  EXPECT_EQ(get32(body, 109), 0xfu) << "another filter keeps its own";
  EXPECT_EQ(get32(body, 101) + get32(body, 105), 0u);
}

TEST_F(LabDiscovery, ClearingTakesTheEntriesAndCountsThem) {
  body = Record().text(web, 100).u8(34).to(161);
  ASSERT_EQ(direct(34, body), 0) << note();
  ASSERT_EQ(count(), 0);
  EXPECT_EQ(get32(body, 101), 0u);
  EXPECT_EQ(get32(body, 105), 0u);
  EXPECT_EQ(get64(body, 113), 19u);
  EXPECT_EQ(get64(body, 121), 19u);
  EXPECT_NE(get64(body, 129), 5400u);
}

TEST_F(LabDiscovery, RequestsThatMakeNoSenseAreRefused) {
  EXPECT_EQ(count("nowhere"), ENOENT);
  EXPECT_EQ(note(), "there is no filter nowhere");
  for (const auto& [request, operation] :
       {std::pair{31u, 5u}, {31u, 1u}, {31u, 34u}, {32u, 4u}, {34u, 5u}}) {
    body = Record().text(web, 100).u8(operation).to(161);
    EXPECT_EQ(direct(request, body), EINVAL) << request;
    EXPECT_EQ(note(), "operation " + std::to_string(operation));
  }
  EXPECT_EQ(configure(0x10, 1, 127, 7200), EINVAL);
  EXPECT_EQ(note(), "features 0x10");
  EXPECT_EQ(configure(1, 129, 0xffffffff, 7200), EINVAL);
  EXPECT_EQ(configure(1, 1, 126, 7200), EINVAL);
  EXPECT_EQ(note(), "1 entries by ARP and 126 others");
  body = Record().text(web, 100).u8(34).to(161).set(130, 1);
  EXPECT_EQ(direct(34, body), EINVAL);
  body = Record().text(web, 100).u8(4).to(161).set(99, 'x');
  EXPECT_EQ(direct(31, body), EINVAL);
  body = Record().text(web, 100).u8(4).to(160);
  EXPECT_EQ(direct(31, body), EINVAL);
  ASSERT_EQ(count(), 0);
  EXPECT_EQ(get32(body, 101), 4u) << "what was refused changed nothing";
  EXPECT_EQ(get32(body, 149), 32u);
}

TEST_F(LabDiscovery, TheLogShowsTheEntries) {
  ASSERT_EQ(read(3, 2 * 26), 0) << note();
  const JournalEntry entry = journal().back();
  EXPECT_EQ(decodeRequest(entry),
            "firewall 31: discovered addresses(filter \"nic-1002672-eth0-kelpco-sfw.2\", "
            "operation 3, room 52) = ok {ipv4 2, ipv6 0, features 0xf, adds 19, deletes 12, "
            "updated 5400, arp entries 32, other entries 96, arp timeout 7200}");
  EXPECT_EQ(decodeRecords(entry),
            "    ip 10.20.1.40 vlan 101, mac 00:50:56:99:2b:26, source 1\n"
            "    ip 10.20.1.41 vlan 102, mac 00:50:56:99:2b:27, source 2\n");
  ASSERT_EQ(configure(3, 40, 88, 600), 0);
  EXPECT_EQ(decodeRequest(journal().back()),
            "firewall 32: discovery of addresses(filter \"nic-1002672-eth0-kelpco-sfw.2\", "
            "operation 5, features 0x3, arp entries 40, other entries 88, arp timeout 600) = ok");
  ASSERT_EQ(count(), 0);
  EXPECT_EQ(decodeRecords(journal().back()), "");
}

}  // namespace
}  // namespace TarnLab
