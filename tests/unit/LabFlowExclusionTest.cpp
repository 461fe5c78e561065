#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

class LabFlowExclusion : public LabBench {
 protected:
  LabFlowExclusion() {
    const StoreLock lock(store);
    fillHost(store, Host::sample());
  }

  static constexpr const char* storage = "nic-1003044-eth1-kelpco-sfw.2";
  static constexpr const char* host = "";

  int set(const std::string& filter, std::uint32_t flags, ByteVector definitions) {
    body = Record()
               .text(filter, 100)
               .u32(flags)
               .u32(definitions.size())
               .u64(reinterpret_cast<std::uintptr_t>(definitions.data()));
    return direct(25, body);
  }

  /// Reads with room for so many definitions.
  int get(const std::string& filter, std::size_t most = 1024) {
    records.assign(most * 162, std::byte{0xee});
    body = Record()
               .text(filter, 100)
               .u32(0)
               .u32(records.size())
               .u64(reinterpret_cast<std::uintptr_t>(records.data()));
    const int error = direct(26, body);
    if (error == 0) records.resize(get32(body, 104));
    return error;
  }

  static Record ethertype(unsigned type) {
    return Record().u32(0x100).u32(0).u8(0).u8(1).zero(8).u8(type >> 8).u8(type & 0xff).to(162);
  }

  /// Refuses the definition with this note.
  void expectRefused(const Record& definition, const std::string& why) {
    EXPECT_EQ(set(host, 0, definition), EINVAL) << why;
    EXPECT_EQ(note(), "definition 0: " + why);
  }

  ByteVector body, records;
};

TEST_F(LabFlowExclusion, TheHostCollectsMostFlowsAtFirst) {
  ASSERT_EQ(get(host), 0) << note();
  EXPECT_EQ(get32(body, 100), 2u);
  EXPECT_EQ(get32(body, 104), 0u);
  ASSERT_EQ(get(web), 0);
  EXPECT_EQ(get32(body, 100), 0u);
  EXPECT_EQ(get32(body, 104), 0u);
}

TEST_F(LabFlowExclusion, OneFilterHasDefinitionsOfEveryKind) {
  ASSERT_EQ(get(storage), 0) << note();
  ASSERT_EQ(records.size(), 6u * 162u);
  std::uint32_t fields = 0, negated = 0;
  for (std::size_t at = 0; at < records.size(); at += 162) {
    fields |= get32(records, at);
    negated |= get32(records, at + 4);
  }
  EXPECT_EQ(fields, 0x80003fffu);
  EXPECT_EQ(negated, 0xf91u);
  EXPECT_EQ(ByteVector(records.begin() + 162, records.begin() + 324), (const ByteVector&)Record()
                                                                          .u32(0x2f4)
                                                                          .u32(0)
                                                                          .u8(2)
                                                                          .u8(0)
                                                                          .u8(6)
                                                                          .u8(17)
                                                                          .to(50)
                                                                          .u8(10)
                                                                          .u8(20)
                                                                          .u8(7)
                                                                          .u8(0)
                                                                          .u8(255)
                                                                          .u8(255)
                                                                          .u8(255)
                                                                          .u8(0)
                                                                          .to(82)
                                                                          .u8(10)
                                                                          .u8(20)
                                                                          .u8(7)
                                                                          .u8(16)
                                                                          .u8(10)
                                                                          .u8(20)
                                                                          .u8(7)
                                                                          .u8(23)
                                                                          .to(114)
                                                                          .u8(4)
                                                                          .u8(0)
                                                                          .u8(255)
                                                                          .u8(255)
                                                                          .u8(8)
                                                                          .u8(1)
                                                                          .to(162));
}

TEST_F(LabFlowExclusion, WhatIsSetIsReadBack) {
  ByteVector two = ethertype(0x88cc);
  const ByteVector second = ethertype(0x8906);
  two.insert(two.end(), second.begin(), second.end());
  ASSERT_EQ(set(host, 0xd, two), 0) << note();
  ASSERT_EQ(set(web, 0x8003c700, second), 0) << note();
  ASSERT_EQ(get(host), 0);
  EXPECT_EQ(get32(body, 100), 0xdu);
  EXPECT_EQ(records, two);
  ASSERT_EQ(get(web), 0);
  EXPECT_EQ(get32(body, 100), 0x8003c700u);
  EXPECT_EQ(records, second);
  ASSERT_EQ(get(other), 0);
  EXPECT_EQ(get32(body, 104), 0u) << "another filter keeps its own";
  ASSERT_EQ(set(host, 0, {}), 0);
  ASSERT_EQ(get(host), 0);
  EXPECT_EQ(get32(body, 100), 0u);
  EXPECT_EQ(get32(body, 104), 0u);
}

TEST_F(LabFlowExclusion, NoMoreDefinitionsAreWrittenThanThereIsRoomFor) {
  ASSERT_EQ(get(storage, 2), 0);
  EXPECT_EQ(records.size(), 324u);
  ASSERT_EQ(get(storage, 0), 0);
  EXPECT_EQ(get32(body, 104), 0u);
  body = Record().text(web, 100).u32(0).u32(161).u64(8);
  EXPECT_EQ(direct(26, body), EINVAL);
  EXPECT_EQ(note(), "buffer of 161 bytes");
  body = Record().text(storage, 100).u32(0).u32(162).u64(8);
  EXPECT_EQ(direct(26, body), EFAULT);
}

TEST_F(LabFlowExclusion, AsManyAs1024CanBeSet) {
  ByteVector most;
  for (unsigned i = 0; i < 1024; ++i) {
    const ByteVector one = ethertype(i);
    most.insert(most.end(), one.begin(), one.end());
  }
  ASSERT_EQ(set(web, 0, most), 0) << note();
  ASSERT_EQ(get(web), 0);
  EXPECT_EQ(records, most);
  most.resize(most.size() + 162);
  EXPECT_EQ(set(web, 0, most), EINVAL);
  EXPECT_EQ(note(), "buffer of 166050 bytes");
}

TEST_F(LabFlowExclusion, RequestsThatMakeNoSenseAreRefused) {
  EXPECT_EQ(set("nowhere", 0, {}), ENOENT);
  EXPECT_EQ(note(), "there is no filter nowhere");
  EXPECT_EQ(get("nowhere"), ENOENT);
  EXPECT_EQ(set(web, 1, {}), EINVAL);
  EXPECT_EQ(note(), "flags 0x1");
  EXPECT_EQ(set(host, 0x10, {}), EINVAL);
  EXPECT_EQ(set(host, 0x8003c400, {}), EINVAL);
  EXPECT_EQ(note(), "flags 0x8003c400");
  EXPECT_EQ(set(host, 0x100, {}), EINVAL);
  EXPECT_EQ(set(host, 0, ByteVector(161)), EINVAL);
  EXPECT_EQ(note(), "definitions of 161 bytes");
  body = Record().zero(104).u32(162).u64(8);
  EXPECT_EQ(direct(25, body), EFAULT);
  body = Record().zero(100).u32(1).u32(162).u64(8);
  EXPECT_EQ(direct(26, body), EINVAL) << "flags are asked for, not given";
  body = Record().zero(116).set(99, 'x');
  EXPECT_EQ(direct(25, body), EINVAL);
  body = Record().zero(115);
  EXPECT_EQ(direct(25, body), EINVAL);
  ASSERT_EQ(get(host), 0);
  EXPECT_EQ(get32(body, 100), 2u) << "what was refused changed nothing";
}

TEST_F(LabFlowExclusion, DefinitionsThatMakeNoSenseAreRefused) {
  expectRefused(Record().zero(162), "no field");
  expectRefused(Record().u32(0x80000000).to(162), "no field");
  expectRefused(Record().u32(0x4100).to(162), "fields 0x4100");
  expectRefused(Record().u32(0x108).to(162), "fields 0x108");
  expectRefused(Record().u32(0x1400).to(162), "fields 0x1400");
  expectRefused(ethertype(1).set(4, 1), "negated 0x1");
  expectRefused(Record().u32(0x4).u32(0x80000000).to(162), "negated 0x80000000");
  expectRefused(Record().u32(0x40).to(162), "source port without a protocol");
  expectRefused(Record().u32(0x80).to(162), "destination port without a protocol");
  expectRefused(ethertype(1).set(9, 5), "0 protocols and 5 ethertypes");
  expectRefused(Record().u32(0x200).u32(0).u8(9).to(162), "9 protocols and 0 ethertypes");
  for (const std::size_t at : {std::size_t{8}, std::size_t{10}, std::size_t{26}, std::size_t{50},
                               std::size_t{66}, std::size_t{114}, std::size_t{158}}) {
    expectRefused(ethertype(1).set(at, 1), "bytes of a field that is not named");
  }
  expectRefused(Record().u32(0x4).to(66).u8(1).to(162), "bytes of a field that is not named");
  expectRefused(Record().u32(0x1000).to(138).u8(1).to(162), "bytes of a field that is not named");
}

TEST_F(LabFlowExclusion, TheLogShowsTheDefinitions) {
  ASSERT_EQ(set(web, 0x8003cc00, ethertype(0x88cc).set(5, 1)), 0);
  EXPECT_EQ(decodeRequest(journal().back()),
            "firewall 25: set flow exclusion(filter \"nic-1002672-eth0-kelpco-sfw.2\", "
            "flags 0x8003cc00, length 162) = ok");
  EXPECT_EQ(decodeRecords(journal().back()), "    not ethertypes 0x88cc\n");
  ASSERT_EQ(get(storage), 0);
  EXPECT_EQ(decodeRequest(journal().back()),
            "firewall 26: flow exclusion(filter \"nic-1003044-eth1-kelpco-sfw.2\", "
            "room 165888) = ok {flags 0x0, length 972}");
  EXPECT_EQ(decodeRecords(journal().back()),
            "    not source mac 00:50:56:99:10:78 mask ff:ff:ff:ff:ff:ff, destination mac "
            "01:00:5e:00:00:00 mask ff:ff:ff:80:00:00, ethertypes 0x88cc 0x8906\n"
            "    source 10.20.7.0 mask 255.255.255.0, source port 1024 to 65535, destination "
            "10.20.7.16 to 10.20.7.23, destination port 2049, protocols 6 17\n"
            "    source fe80::1 to fe80::1f, not destination fd00:20:7:: mask ffff:ffff:ffff::, "
            "not protocols 1 58 253\n"
            "    not source vnic 502e1f3ac21a70114ae1005056991077 index 1, destination machine "
            "502e1f3ac21a70114ae1005056991077\n"
            "    source machine 502e1f3ac21a70114ae1005056991077, not destination vnic "
            "502e1f3ac21a70114ae1005056991077 index 1\n"
            "    not destination port 3260 to 3261, protocols 6, not ethertypes 0x0800\n");
}

TEST_F(LabFlowExclusion, IsShownWithWhatItIsSetTo) {
  const auto lines = [&](const std::string& where) { return Settings::load(store, where).lines(); };
  const auto contains = [&](const std::string& where, const std::string& line) {
    const std::vector<std::string> all = lines(where);
    return std::find(all.begin(), all.end(), line) != all.end();
  };
  EXPECT_TRUE(lines(Settings::ofHost).empty());
  ASSERT_EQ(set(host, 0x8003ec05, ethertype(0x88cc)), 0) << note();
  EXPECT_TRUE(contains(Settings::ofHost,
                       "flow-exclusion.flags: no flows, no L2 flows, protocols together, "
                       "destination ports together"));
  EXPECT_TRUE(contains(Settings::ofHost,
                       "flow-exclusion.definitions: 1 definition\n    ethertypes 0x88cc"));
  ASSERT_EQ(set(host, 0, {}), 0);
  EXPECT_TRUE(contains(Settings::ofHost, "flow-exclusion.flags: everything"));
  ByteVector many;
  std::string text = "flow-exclusion.definitions: 18 definitions";
  for (unsigned i = 0; i < 18; ++i) {
    const ByteVector one = ethertype(0x1000 + i);
    many.insert(many.end(), one.begin(), one.end());
    if (i < 16) text += format("\n    ethertypes 0x%04x", 0x1000 + i);
  }
  ASSERT_EQ(set(web, 0, many), 0);
  EXPECT_TRUE(contains(Host::load(store).folderOf(0), text + "\n    and 2 more"));
}

}  // namespace
}  // namespace TarnLab
