#include <gtest/gtest.h>

#include <cerrno>

#include "LabBench.h"

namespace TarnLab {
namespace {

class LabFilterTables : public LabBench {
 protected:
  int ask(std::uint32_t number, ByteVector& frame) {
    return model.request(Device::filterTables, number,
                         reinterpret_cast<std::uintptr_t>(frame.data()));
  }
  static ByteVector entryFrame(const std::string& agent, ByteVector& room) {
    return Record()
        .text(agent, 40)
        .u64(reinterpret_cast<std::uintptr_t>(room.data()))
        .u32(room.size());
  }
};

TEST_F(LabFilterTables, TheFirewallsAgentIncludesTheHost) {
  ByteVector frame = Record().text("kelpco-sfw", 40).u32(0);
  ASSERT_EQ(ask(8, frame), 0);
  EXPECT_EQ(get32(frame, 40), 47u);
  ByteVector room(50, std::byte{0xee});
  frame = entryFrame("kelpco-sfw", room);
  ASSERT_EQ(ask(9, frame), 0);
  EXPECT_EQ(get32(frame, 48), 47u);
  const ByteVector table = Record()
                               .u8(4)
                               .u16(29)
                               .u64(0x2a631ac23a1f2e50)  // 50 2e 1f 3a c2 1a 63 2a
                               .u64(0x26b699565000e14a)  // 4a e1 00 50 56 99 b6 26
                               .u8(0)
                               .u32(2)
                               .zero(8)
                               .u8(6)
                               .u16(12)
                               .u32(2)
                               .zero(8);
  EXPECT_EQ(ByteVector(room.begin(), room.begin() + 47), table);
  EXPECT_EQ(room[47], std::byte{0xee}) << "nothing after the entries is written";
}

TEST_F(LabFilterTables, AHostWhoseFirewallIsOffHasNoEntryForTheHost) {
  Host host = Host::load(store);
  host.setFirewallOff(true);
  host.save(store);
  ByteVector frame = Record().text("kelpco-sfw", 40).u32(0);
  ASSERT_EQ(ask(8, frame), 0);
  EXPECT_EQ(get32(frame, 40), 32u);
  EXPECT_TRUE(Host::load(store).firewallOff());
}

TEST_F(LabFilterTables, OtherAgentsHaveEmptyTablesOrNone) {
  ByteVector frame = Record().text("kelpco-inspect", 40).u32(9);
  ASSERT_EQ(ask(8, frame), 0);
  EXPECT_EQ(get32(frame, 40), 0u);
  ByteVector room(1);
  frame = entryFrame("kelpco-inspect", room);
  ASSERT_EQ(ask(9, frame), 0);
  EXPECT_EQ(get32(frame, 48), 0u);
  frame = Record().text("nobody", 40).u32(0);
  EXPECT_EQ(ask(8, frame), ENOENT);
  EXPECT_EQ(note(), "no agent nobody");
}

TEST_F(LabFilterTables, WhatIsWrongIsRefused) {
  ByteVector room(46);
  ByteVector frame = entryFrame("kelpco-sfw", room);
  EXPECT_EQ(ask(9, frame), EINVAL);
  EXPECT_EQ(note(), "room of 46 bytes for 47");
  frame = Record().text("kelpco-sfw", 40).u64(8).u32(47);
  EXPECT_EQ(ask(9, frame), EFAULT);
  frame = Record().text(std::string(40, 'a'), 40).u32(0);
  EXPECT_EQ(ask(8, frame), EINVAL);
  frame = Record().text("kelpco-sfw", 40).set(20, 1).u32(0);
  EXPECT_EQ(ask(8, frame), EINVAL);
}

}  // namespace
}  // namespace TarnLab
