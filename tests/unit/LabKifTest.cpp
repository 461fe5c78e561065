#include <gtest/gtest.h>

#include <set>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

class LabKif : public LabBench {
 protected:
  static Record flag(const std::string& name, unsigned value) {
    return Record().u32(0).text(name, 40).to(1284).u8(value).to(1316);
  }
  std::uint32_t flags() {
    EXPECT_EQ(command(39, Record().zero(1316)), 0u);
    return get32(reply, 0);
  }
};

TEST_F(LabKif, FlagsHaveNamesAndTheirBitsAgree) {
  const std::uint32_t mask = flags();
  std::set<std::string> names;
  for (std::size_t i = 0; i < 32; ++i) {
    const std::string name(getText(reply, 4 + 40 * i, 40));
    EXPECT_EQ(get8(reply, 1284 + i), mask >> i & 1) << i;
    EXPECT_TRUE(name.empty() || names.insert(name).second) << name;
  }
  EXPECT_EQ(names.size(), 6u);
  EXPECT_TRUE(getText(reply, 4 + 40 * 3, 40).empty()) << "some places have no flag";
  EXPECT_NE(mask, 0u);
}

TEST_F(LabKif, EveryFlagIsSetByItsName) {
  flags();
  const ByteVector before = reply;
  for (std::size_t i = 0; i < 32; ++i) {
    const std::string name(getText(before, 4 + 40 * i, 40));
    if (name.empty()) continue;
    for (const unsigned value : {1u, 0u}) {
      ASSERT_EQ(command(40, flag(name, value)), 0u) << name;
      EXPECT_EQ(flags() >> i & 1, value) << name;
    }
  }
  EXPECT_EQ(flags(), 0u);
}

TEST_F(LabKif, RefusesWhatIsNoFlag) {
  EXPECT_EQ(command(40, flag("nonesuch", 1)), 3u);
  EXPECT_EQ(note(), "there is no flag nonesuch");
  EXPECT_EQ(command(40, flag("", 1)), 3u);
  EXPECT_EQ(command(40, flag("fast_path", 2)), 3u);
  EXPECT_EQ(command(40, flag("fast_path", 1).set(50, 1)), 25u);
  EXPECT_EQ(command(40, flag("fast_path", 1).set(43, 'x')), 25u);
  EXPECT_EQ(command(40, flag("fast_path", 1).set(1285, 1)), 25u);
  EXPECT_EQ(command(39, Record().zero(1315)), 25u);
}

TEST_F(LabKif, TheFastPathIsAFlagToo) {
  ASSERT_EQ(command(68, Record().u32(0).u32(1)), 0u);
  EXPECT_EQ(get32(reply, 0), 1u);
  EXPECT_EQ(get32(reply, 4), 1u) << "the mode stays";
  ASSERT_EQ(command(68, Record().u32(0).u32(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  EXPECT_EQ(flags() & 1, 0u);
  ASSERT_EQ(command(40, flag("fast_path", 1)), 0u);
  ASSERT_EQ(command(68, Record().u32(9).u32(1)), 0u) << "a question's value is not looked at";
  EXPECT_EQ(get32(reply, 0), 1u);
  EXPECT_EQ(command(68, Record().u32(2).u32(0)), 3u);
  EXPECT_EQ(command(68, Record().u32(0).u32(2)), 3u);
  EXPECT_EQ(note(), "mode 2");
}

TEST_F(LabKif, StrictTcpIsAFlagToo) {
  ASSERT_EQ(command(59, Record().u32(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  ASSERT_EQ(command(58, Record().u32(1)), 0u);
  ASSERT_EQ(command(59, Record().u32(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 1u);
  EXPECT_EQ(flags() & 2, 2u);
  EXPECT_EQ(command(58, Record().u32(2)), 3u);
  EXPECT_EQ(command(59, Record().u32(1)), 25u);
}

TEST_F(LabKif, CountersDifferUntilTheyAreCleared) {
  ASSERT_EQ(command(29, Record().zero(1642)), 0u);
  EXPECT_EQ(get16(reply, 0), 0u);
  std::set<std::string> names;
  std::set<std::uint64_t> values;
  unsigned empty = 0;
  for (std::size_t at = 2; at < 1642; at += 41) {
    EXPECT_TRUE(names.insert(std::string(getText(reply, at, 25))).second) << at;
    const std::uint64_t in = get64(reply, at + 25);
    const std::uint64_t out = get64(reply, at + 33);
    if (in == 0 && out == 0) ++empty;
    for (const std::uint64_t value : {in, out}) {
      EXPECT_TRUE(value == 0 || values.insert(value).second) << at;
    }
  }
  EXPECT_EQ(names.size(), 40u);
  EXPECT_EQ(empty, 10u);
  ASSERT_EQ(command(30, Record().zero(1642)), 0u);
  ASSERT_EQ(command(29, Record().zero(1642)), 0u);
  for (std::size_t at = 2; at < 1642; at += 41) {
    EXPECT_EQ(get64(reply, at + 25) + get64(reply, at + 33), 0u) << at;
  }
  EXPECT_EQ(command(29, Record().zero(1642).set(1641, 1)), 25u);
  EXPECT_EQ(command(30, Record().zero(1642).set(0, 1)), 25u);
}

TEST_F(LabKif, TheLogHasALineForEachFlagAndEachCounterThatCounted) {
  ASSERT_EQ(command(39, Record().zero(1316)), 0u);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    fast_path 1\n    tcp_strict 0\n    export_flows 1\n    log_invalid 0\n"
            "    reassemble 1\n    drop_ip_options 0\n");
  ASSERT_EQ(command(29, Record().zero(1642)), 0u);
  const std::string lines = decodeRecords(journal().back());
  EXPECT_EQ(lines.substr(0, lines.find('\n')), "    name \\x22IPv4 TCP\\x22, in 19200, out 18960");
  ASSERT_EQ(command(30, Record().zero(1642)), 0u);
  ASSERT_EQ(command(29, Record().zero(1642)), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), "");
}

TEST_F(LabKif, TheOldMachineOfANewHostTakesTheSlowPath) {
  {
    const StoreLock lock(store);
    fillHost(store, Host::load(store));
  }
  ASSERT_EQ(command(68, Record().u32(0).u32(1), filterSelector("nic-998214-eth0-kelpco-sfw.2")),
            0u);
  EXPECT_EQ(get32(reply, 0), 0u);
}

}  // namespace
}  // namespace TarnLab
