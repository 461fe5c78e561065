#include <gtest/gtest.h>

#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabTableEntry.h"

namespace TarnLab {
namespace {

constexpr unsigned addExclude = 0, clearExclude = 1, deleteExclude = 2, excludeSize = 3,
                   readExclude = 4, addInclude = 5, clearInclude = 6, deleteInclude = 7,
                   includeSize = 8, readInclude = 9;

// Entries, byte by byte. The identifiers are 50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26, the
// first web server's, and 50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 03, the switch's.
Record webId() { return Record().u64(0x2a631ac23a1f2e50).u64(0x26b699565000e14a); }
Record switchId() { return Record().u64(0x5a4b3f90117c2e50).u64(0x031f776b0ed4218c); }

Record switchName(unsigned type, const std::string& name) {
  const auto size = static_cast<unsigned>(name.size() + 1);
  return Record().u8(type).u16(size).text(name, size);
}
ByteVector excludedSwitch(const std::string& name) { return switchName(0, name); }
ByteVector excludedWeb(unsigned index = 0) {
  return Record().u8(1).u16(20).bytes(webId()).u32(index);
}
ByteVector includedPort(unsigned port) {
  return Record().u8(2).u16(20).bytes(switchId()).u32(port);
}
ByteVector includedDvs() { return Record().u8(3).u16(16).bytes(switchId()); }
ByteVector includedWeb(unsigned slot, unsigned index = 0) {
  return Record().u8(4).u16(29).bytes(webId()).u8(index).u32(slot).zero(8);
}
ByteVector includedSwitch(const std::string& name) { return switchName(5, name); }
ByteVector includedHost(unsigned slot) { return Record().u8(6).u16(12).u32(slot).zero(8); }

class LabFilterTables : public LabBench {
 protected:
  int ask(std::uint32_t number, ByteVector& frame) {
    return model.request(Device::filterTables, number,
                         reinterpret_cast<std::uintptr_t>(frame.data()));
  }

  static ByteVector entryFrame(const std::string& agent, const ByteVector& buffer) {
    return Record()
        .text(agent, 40)
        .u64(reinterpret_cast<std::uintptr_t>(buffer.data()))
        .u32(buffer.size());
  }

  int change(std::uint32_t number, const ByteVector& entries,
             const std::string& agent = "kelpco-inspect") {
    ByteVector frame = entryFrame(agent, entries);
    return ask(number, frame);
  }

  int clear(std::uint32_t number, const std::string& agent) {
    ByteVector frame = Record().text(agent, 40).u64(0).u32(0);
    return ask(number, frame);
  }

  unsigned size(std::uint32_t number, const std::string& agent) {
    ByteVector frame = Record().text(agent, 40).u32(0xffffffff);
    EXPECT_EQ(ask(number, frame), 0) << note();
    return get32(frame, 40);
  }

  ByteVector table(std::uint32_t number, const std::string& agent = "kelpco-inspect") {
    ByteVector room(1000, std::byte{0xee});
    ByteVector frame = entryFrame(agent, room);
    EXPECT_EQ(ask(number, frame), 0) << note();
    room.resize(get32(frame, 48));
    return room;
  }

  int revalidate(unsigned world, const ByteVector& id) {
    ByteVector record = Record().u32(world).bytes(id);
    return ask(10, record);
  }

  /// Filters of the host, those that are disconnected in brackets.
  std::vector<std::string> filters(const std::string& agent) const {
    const Host host = Host::load(store);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < host.filterCount(); ++i) {
      if (host.agent(i) != agent) continue;
      const std::string name(host.name(i));
      names.push_back(host.isConnected(i) ? name : "[" + name + "]");
    }
    return names;
  }
  using Names = std::vector<std::string>;
};

TEST_F(LabFilterTables, TheFirewallsAgentIncludesTheHost) {
  ByteVector frame = Record().text("kelpco-sfw", 40).u32(0);
  ASSERT_EQ(ask(includeSize, frame), 0);
  EXPECT_EQ(get32(frame, 40), 47u);
  ByteVector room(50, std::byte{0xee});
  frame = entryFrame("kelpco-sfw", room);
  ASSERT_EQ(ask(readInclude, frame), 0);
  EXPECT_EQ(get32(frame, 48), 47u);
  const ByteVector table = Record().bytes(includedWeb(2)).bytes(includedHost(2));
  EXPECT_EQ(ByteVector(room.begin(), room.begin() + 47), table);
  EXPECT_EQ(room[47], std::byte{0xee}) << "nothing after the entries is written";
  EXPECT_EQ(size(excludeSize, "kelpco-sfw"), 0u);
}

TEST_F(LabFilterTables, AHostWhoseFirewallIsOffHasNoEntryForTheHost) {
  Host::make({.firewallOff = true}).save(store);
  EXPECT_EQ(size(includeSize, "kelpco-sfw"), 32u);
}

TEST_F(LabFilterTables, TheUsualHostHasEntriesOfEveryKind) {
  const ByteVector otherDvs =
      Record().u8(3).u16(16).u64(0x5a4b3f90117c2e50).u64(0x2c1f776b0ed4218c);
  const ByteVector include = Record()
                                 .bytes(includedWeb(4))
                                 .bytes(includedPort(0x632b * 10))
                                 .bytes(otherDvs)
                                 .bytes(includedSwitch("office"));
  EXPECT_EQ(table(readInclude), include);
  const ByteVector second = Record()
                                .u8(1)
                                .u16(20)
                                .u64(0x2b631ac23a1f2e50)
                                .u64(0x2db699565000e14a)  // ... b6 2d
                                .u32(0);
  EXPECT_EQ(table(readExclude),
            (const ByteVector&)Record().bytes(excludedSwitch("office")).bytes(second));
  EXPECT_EQ(size(includeSize, "kelpco-inspect"), include.size());
  EXPECT_EQ(size(excludeSize, "kelpco-inspect"), 10u + 23u);
}

TEST_F(LabFilterTables, AnEntryIsAddedOnceAndDeletedAgain) {
  ASSERT_EQ(clear(clearInclude, "kelpco-inspect"), 0);
  ASSERT_EQ(clear(clearExclude, "kelpco-inspect"), 0);
  EXPECT_EQ(size(includeSize, "kelpco-inspect"), 0u);
  EXPECT_EQ(size(excludeSize, "kelpco-inspect"), 0u);
  const ByteVector all[] = {includedPort(7), includedDvs(), includedWeb(3), includedSwitch("a"),
                            includedHost(4)};
  ByteVector whole;
  for (const ByteVector& each : all) {
    for (int turn = 0; turn < 2; ++turn) ASSERT_EQ(change(addInclude, each), 0) << note();
    whole.insert(whole.end(), each.begin(), each.end());
  }
  EXPECT_EQ(table(readInclude), whole);
  ASSERT_EQ(change(deleteInclude, Record().bytes(all[4]).bytes(all[0]).bytes(all[2])), 0);
  EXPECT_EQ(table(readInclude), (const ByteVector&)Record().bytes(all[1]).bytes(all[3]));
  ASSERT_EQ(change(addExclude, excludedSwitch("b")), 0);
  ASSERT_EQ(change(addExclude, excludedWeb(1)), 0);
  ASSERT_EQ(change(addExclude, excludedWeb(0)), 0);
  ASSERT_EQ(change(deleteExclude, excludedWeb(1)), 0);
  EXPECT_EQ(table(readExclude),
            (const ByteVector&)Record().bytes(excludedSwitch("b")).bytes(excludedWeb()));
}

TEST_F(LabFilterTables, AnEntryTakesThePlaceOfOneWithAnotherSlot) {
  ASSERT_EQ(change(addInclude, includedHost(9), "kelpco-sfw"), 0);
  EXPECT_EQ(table(readInclude, "kelpco-sfw"),
            (const ByteVector&)Record().bytes(includedWeb(2)).bytes(includedHost(9)));
  ASSERT_EQ(change(deleteInclude, includedHost(1), "kelpco-sfw"), 0) << "the slot does not count";
  ASSERT_EQ(change(addInclude, includedWeb(5), "kelpco-sfw"), 0);
  EXPECT_EQ(table(readInclude, "kelpco-sfw"), includedWeb(5));
}

TEST_F(LabFilterTables, DeletingTakesAllOfTheEntriesOrNone) {
  const ByteVector before = table(readInclude, "kelpco-sfw");
  EXPECT_EQ(
      change(deleteInclude, Record().bytes(includedHost(2)).bytes(includedDvs()), "kelpco-sfw"),
      ENOENT);
  EXPECT_EQ(note(), "no entry dvs 502e7c11-903f-4b5a-8c21-d40e6b771f03");
  EXPECT_EQ(table(readInclude, "kelpco-sfw"), before);
}

TEST_F(LabFilterTables, OnlyAnAgentHasTables) {
  const ByteVector entry = includedHost(2);
  for (unsigned number = 0; number <= 9; ++number) {
    ByteVector frame = entryFrame("nobody", entry);
    EXPECT_EQ(ask(number, frame), ENOENT) << number;
    EXPECT_EQ(note(), "no agent nobody");
  }
  ByteVector frame = Record().text("nobody", 40).u64(0).u32(0);
  EXPECT_EQ(ask(11, frame), ENOENT);
}

TEST_F(LabFilterTables, AFrameHasToBePaddedAndInItsPlace) {
  for (unsigned number = 0; number <= 11; ++number) {
    EXPECT_EQ(model.request(Device::filterTables, number, 8), EFAULT) << number;
    if (number == 10) continue;
    ByteVector frame = Record().text(std::string(40, 'a'), 40).zero(12);
    EXPECT_EQ(ask(number, frame), EINVAL) << number;
    frame = Record().text("kelpco-sfw", 40).set(20, 1).zero(12);
    EXPECT_EQ(ask(number, frame), EINVAL) << number;
    EXPECT_EQ(note(), "agent name is not padded with zeros");
  }
}

TEST_F(LabFilterTables, RoomThatIsTooSmallIsRefused) {
  ByteVector room(46);
  ByteVector frame = entryFrame("kelpco-sfw", room);
  EXPECT_EQ(ask(readInclude, frame), EINVAL);
  EXPECT_EQ(note(), "room of 46 bytes for 47");
  frame = Record().text("kelpco-sfw", 40).u64(8).u32(47);
  EXPECT_EQ(ask(readInclude, frame), EFAULT);
}

TEST_F(LabFilterTables, ClearingTakesNoEntries) {
  for (const unsigned number : {clearExclude, clearInclude, 11u}) {
    EXPECT_EQ(change(number, includedHost(2)), EINVAL) << number;
    EXPECT_EQ(note(), "buffer of 15 bytes");
  }
}

TEST_F(LabFilterTables, EntriesAreCheckedBeforeATableChanges) {
  struct {
    unsigned number;
    ByteVector entries;
    const char* note;
  } const rows[] = {
      {addInclude, {}, "no entry"},
      {deleteInclude, {}, "no entry"},
      {addInclude, Record().bytes(includedHost(2)).bytes(includedWeb(2)), "2 entries"},
      {addInclude, excludedWeb(), "entry of type 1 in the include table"},
      {addInclude, excludedSwitch("a"), "entry of type 0 in the include table"},
      {addExclude, includedHost(2), "entry of type 6 in the exclude table"},
      {addInclude, Record().u8(7).u16(0), "entry of type 7 in the include table"},
      {addInclude, Record().u8(255).u16(0), "entry of type 255 in the include table"},
      {addInclude, Record().u8(6), "entry that is cut off"},
      {addInclude, Record().u8(6).u8(12), "entry that is cut off"},
      {addInclude, Record().u8(6).u16(12).zero(11), "entry that is cut off"},
      {addInclude, Record().u8(6).u16(0xffff).zero(12), "entry that is cut off"},
      {addInclude, Record().u8(6).u16(11).zero(11), "entry of type 6 with 11 bytes"},
      {addInclude, Record().u8(6).u16(13).zero(13), "entry of type 6 with 13 bytes"},
      {addInclude, Record().u8(4).u16(28).zero(28), "entry of type 4 with 28 bytes"},
      {addInclude, Record().u8(3).u16(15).zero(15), "entry of type 3 with 15 bytes"},
      {addInclude, Record().u8(2).u16(16).zero(16), "entry of type 2 with 16 bytes"},
      {addExclude, Record().u8(1).u16(17).zero(17), "entry of type 1 with 17 bytes"},
      {addExclude, Record().u8(0).u16(0), "entry of type 0 with 0 bytes"},
      {addExclude, Record().u8(0).u16(1).zero(1), "switch name without its one end"},
      {addExclude, Record().u8(0).u16(3).text("abc", 3), "switch name without its one end"},
      {addInclude, Record().u8(5).u16(5).text("abc", 5), "switch name without its one end"},
      {addInclude, Record().bytes(includedHost(2)).set(14, 1), "entry with reserved bytes set"},
      {addInclude, Record().bytes(includedWeb(2)).set(24, 1), "entry with reserved bytes set"},
      {deleteInclude, Record().bytes(includedHost(2)).u8(4), "entry that is cut off"},
  };
  const Host before = Host::load(store);
  for (const auto& row : rows) {
    EXPECT_EQ(change(row.number, row.entries), EINVAL) << row.note;
    EXPECT_EQ(note(), row.note);
  }
  ByteVector frame = Record().text("kelpco-sfw", 40).u64(8).u32(15);
  EXPECT_EQ(ask(addInclude, frame), EFAULT);
  EXPECT_EQ(note(), "buffer cannot be read");
  frame = Record().text("kelpco-sfw", 40).u64(8).u32(65537);
  EXPECT_EQ(ask(addInclude, frame), EINVAL);
  EXPECT_EQ(note(), "buffer of 65537 bytes");
  for (std::size_t i = 0; i < before.agents().size(); ++i) {
    EXPECT_EQ(Host::load(store).agents()[i].include, before.agents()[i].include);
    EXPECT_EQ(Host::load(store).agents()[i].exclude, before.agents()[i].exclude);
  }
}

TEST_F(LabFilterTables, ATableHasALimit) {
  const std::string name(64000, 'n');
  ASSERT_EQ(change(addExclude, excludedSwitch(name)), 0);
  EXPECT_EQ(change(addExclude, excludedSwitch(std::string(1500, 'm'))), ENOSPC);
  EXPECT_EQ(size(excludeSize, "kelpco-inspect"), 33u + 64004u);
}

TEST_F(LabFilterTables, ALongNameIsKnownByWhatAFrameHasRoomFor) {
  const std::string name(60, 'x');
  Host host = Host::load(store);
  host.agents().push_back({name});
  host.save(store);
  ASSERT_EQ(change(addInclude, includedHost(2), name.substr(0, 39)), 0) << note();
  EXPECT_EQ(Host::load(store).agents().back().include, includedHost(2));
}

TEST_F(LabFilterTables, AFreshHostIsAsItsTablesSay) {
  const Host host = Host::load(store);
  for (std::size_t i = 0; i < host.nicCount(); ++i) {
    ASSERT_EQ(revalidate(host.nic(i).world, idOf(host.nic(i).machine)), 0) << note();
    EXPECT_EQ(note(), "");
  }
  EXPECT_EQ(Host::load(store).filterCount(), 8u);
}

TEST_F(LabFilterTables, RevalidationMakesAndDisconnectsTheFiltersOfOneMachine) {
  ASSERT_EQ(clear(clearInclude, "kelpco-inspect"), 0);
  ASSERT_EQ(change(addInclude, includedHost(7)), 0);
  ASSERT_EQ(revalidate(1002672, webId()), 0);
  EXPECT_EQ(
      note(),
      "disconnected nic-1002672-eth0-kelpco-inspect.4, made nic-1002672-eth0-kelpco-inspect.7");
  const Host host = Host::load(store);
  ASSERT_EQ(revalidate(1003044, idOf(host.nic(2).machine)), 0);
  EXPECT_EQ(note(),
            "made nic-1003044-eth0-kelpco-inspect.7, made nic-1003044-eth1-kelpco-inspect.7");
  EXPECT_EQ(filters("kelpco-inspect"),
            (Names{"[nic-1002672-eth0-kelpco-inspect.4]", "nic-1002672-eth0-kelpco-inspect.7",
                   "nic-1003044-eth0-kelpco-inspect.7", "nic-1003044-eth1-kelpco-inspect.7"}));
  ASSERT_EQ(change(addInclude, includedWeb(4)), 0);
  ASSERT_EQ(clear(clearExclude, "kelpco-inspect"), 0);
  ASSERT_EQ(change(addExclude, excludedWeb()), 0);
  ASSERT_EQ(revalidate(1002672, webId()), 0);
  EXPECT_EQ(note(), "disconnected nic-1002672-eth0-kelpco-inspect.7")
      << "the exclude table comes first";
  ASSERT_EQ(change(deleteExclude, excludedWeb()), 0);
  ASSERT_EQ(revalidate(1002672, webId()), 0);
  EXPECT_EQ(note(), "connected nic-1002672-eth0-kelpco-inspect.7")
      << "the first entry of the include table decides";
}

TEST_F(LabFilterTables, EveryKindOfEntryCoversItsNics) {
  const Host fresh = Host::load(store);
  const ByteVector old = idOf(fresh.nic(5).machine);
  struct {
    ByteVector entry;
    Names made;
  } const rows[] = {
      {includedPort(0x0451 * 10), {"nic-998214-eth0-kelpco-inspect.2"}},
      {includedPort(0x0451 * 10 + 1), {}},
      {includedDvs(), {"nic-998214-eth0-kelpco-inspect.2"}},
      {includedWeb(6), {}},
      {includedSwitch("office"), {"nic-998214-eth0-kelpco-inspect.2"}},
      {includedSwitch("offic"), {}},
      {includedHost(6), {"nic-998214-eth0-kelpco-inspect.6"}},
  };
  for (const auto& row : rows) {
    Host host = fresh;
    host.agents()[1].include = row.entry;
    host.agents()[1].exclude.clear();
    host.removeFilter(1);
    host.save(store);
    ASSERT_EQ(revalidate(998214, old), 0) << note();
    EXPECT_EQ(filters("kelpco-inspect"), row.made);
    host.agents()[1].exclude = excludedSwitch("office");
    host.save(store);
    ASSERT_EQ(revalidate(998214, old), 0) << note();
    EXPECT_EQ(filters("kelpco-inspect"), Names{});
  }
}

TEST_F(LabFilterTables, AFilterThatRevalidationMakesIsEmpty) {
  Host::make({.bare = true}).save(store);
  Host host = Host::load(store);
  EXPECT_EQ(host.filterCount(), 0u);
  host.agents().push_back({"kelpco-sfw", includedHost(2)});
  host.save(store);
  ASSERT_EQ(revalidate(1002672, webId()), 0) << note();
  ByteVector records(866);
  ByteVector body =
      Record().zero(100).u32(1).u32(866).u64(reinterpret_cast<std::uintptr_t>(records.data()));
  ASSERT_EQ(direct(21, body), 0) << note();
  EXPECT_EQ(records, (const ByteVector&)Record()
                         .text("nic-1002672-eth0-kelpco-sfw.2", 204)
                         .text("kelpco-sfw", 100)
                         .text("50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26", 128)
                         .to(760)
                         .u16((1002672 * 31 + 2) & 0xffff)
                         .to(770)
                         .text("8d0c7a10-55f4-4c1e-9b02-0000632a0000", 48)
                         .text("c3b1f2e4-7a65-4d0f-8e11-0000632a0000", 48));
  EXPECT_EQ(createRuleSet("web", {ruleRecord(7)}), 0u);
}

TEST_F(LabFilterTables, RevalidationNeedsAMachineOfThisHost) {
  EXPECT_EQ(revalidate(5, webId()), ENOENT);
  EXPECT_EQ(note(), "no machine of world 5");
  EXPECT_EQ(revalidate(1002672, ByteVector(16)), ENOENT);
  EXPECT_EQ(note(), "world 1002672 is another machine");
}

TEST_F(LabFilterTables, DisconnectedFiltersStayUntilTheyAreDestroyed) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(7)}), 0u);
  ASSERT_EQ(clear(clearInclude, "kelpco-sfw"), 0);
  const Host host = Host::load(store);
  for (const std::size_t place : {std::size_t{0}, std::size_t{4}}) {
    ASSERT_EQ(revalidate(host.nic(place).world, idOf(host.nic(place).machine)), 0);
  }
  EXPECT_EQ(note(), "disconnected nic-1003120-eth0-kelpco-sfw.2");
  EXPECT_EQ(filters("kelpco-sfw").front(), std::string("[") + web + "]");
  EXPECT_EQ(createRuleSet("more", {}), 0u) << "it is there still";
  ASSERT_EQ(clear(11, "kelpco-inspect"), 0);
  EXPECT_EQ(note(), "") << "they are another agent's";
  const std::string gone = host.folderOf(0), kept = host.folderOf(2);
  EXPECT_TRUE(store.exists(gone));
  ASSERT_EQ(clear(11, "kelpco-sfw"), 0);
  EXPECT_EQ(note(),
            "destroyed nic-1002672-eth0-kelpco-sfw.2, destroyed nic-1003120-eth0-kelpco-sfw.2");
  EXPECT_FALSE(store.exists(gone));
  const Host after = Host::load(store);
  EXPECT_EQ(after.filterCount(), 6u);
  EXPECT_EQ(after.name(1), other);
  EXPECT_EQ(after.folderOf(1), kept) << "the others keep what is theirs";
}

TEST_F(LabFilterTables, AFilterThatIsMadeAgainHasNothingOfTheOneBefore) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(7)}), 0u);
  const ByteVector include = table(readInclude, "kelpco-sfw");
  ASSERT_EQ(clear(clearInclude, "kelpco-sfw"), 0);
  ASSERT_EQ(revalidate(1002672, webId()), 0);
  ASSERT_EQ(clear(11, "kelpco-sfw"), 0);
  ASSERT_EQ(change(addInclude, includedWeb(2), "kelpco-sfw"), 0);
  ASSERT_EQ(revalidate(1002672, webId()), 0);
  EXPECT_EQ(note(), std::string("made ") + web);
  const Host host = Host::load(store);
  EXPECT_EQ(host.name(host.filterCount() - 1), web);
  EXPECT_FALSE(store.exists(host.folderOf(host.filterCount() - 1)));
}

TEST_F(LabFilterTables, TheLogHasTheEntries) {
  const auto lines = [this] { return decodeRecords(journal().back()); };
  ASSERT_EQ(change(addInclude, includedWeb(4)), 0);
  EXPECT_EQ(decodeRequest(journal().back()),
            "tables 5: add to the include table(agent \"kelpco-inspect\", bytes 32) = ok");
  EXPECT_EQ(lines(), "    vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000, slot 4\n");
  ASSERT_EQ(change(addInclude, includedPort(0xffffffff)), 0);
  EXPECT_EQ(lines(), "    dvs 502e7c11-903f-4b5a-8c21-d40e6b771f03 port -1\n");
  ASSERT_EQ(change(addExclude, excludedWeb(1000)), 0);
  EXPECT_EQ(lines(), "    vnic 502e1f3a-c21a-632a-4ae1-00505699b626.1000\n");
  ASSERT_EQ(change(addExclude, excludedSwitch("a%s\n")), 0);
  EXPECT_EQ(lines(), "    switch a%s\\x0a\n");
  EXPECT_EQ(change(addInclude, Record().u8(6).u16(1).u8(0).u8(9).u16(0).u8(4)), EINVAL);
  EXPECT_EQ(lines(), "    ? type 6, 1 bytes\n    ? type 9, 0 bytes\n    ? cut off\n");
  EXPECT_EQ(table(readInclude, "kelpco-sfw").size(), 47u);
  EXPECT_EQ(decodeRequest(journal().back()),
            "tables 9: include table(agent \"kelpco-sfw\", room 1000) = ok {bytes 47}");
  EXPECT_EQ(lines(),
            "    vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000, slot 2\n    host, slot 2\n");
  ASSERT_EQ(clear(clearExclude, "kelpco-sfw"), 0);
  EXPECT_EQ(decodeRequest(journal().back()),
            "tables 1: clear the exclude table(agent \"kelpco-sfw\") = ok");
  ASSERT_EQ(revalidate(1002672, webId()), 0);
  EXPECT_EQ(decodeRequest(journal().back()),
            "tables 10: revalidate the machine of world 1002672, "
            "502e1f3a-c21a-632a-4ae1-00505699b626 = ok");
}

}  // namespace
}  // namespace TarnLab
