#include <gtest/gtest.h>

#include "Expect.h"
#include "LogCapture.h"
#include "Message.h"
#include "TarnFWLog.h"
#include "TarnFWProtocolSpecDSCP.h"
#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecList.h"
#include "TarnFWProtocolSpecSloppy.h"
#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWProtocolSpecTCPOptions.h"

using namespace TarnFirewall;

namespace {

template <typename Spec, typename... Arguments>
void add(CTarnFWProtocolSpecList& list, Arguments... arguments) {
  list.addSpec(std::make_unique<Spec>(arguments...));
}

CTarnFWProtocolSpecList portList(unsigned char dir) {
  CTarnFWProtocolSpecList list(dir);
  list.setPortMode(true);
  return list;
}

}  // namespace

TEST(TarnFWProtocolSpecList, HasKindZeroAndASizeByItsMode) {
  CTarnFWProtocolSpecList list(1);
  EXPECT_EQ(list.getSpecType(), FW_SPEC_NONE);
  EXPECT_EQ(list.getType(), 127);
  EXPECT_EQ(list.getMsgSize(), 56u);
  list.setPortMode(true);
  EXPECT_EQ(list.getMsgSize(), 38u);
}

TEST(TarnFWProtocolSpecList, TextOfOneMemberHasNoBraces) {
  CTarnFWProtocolSpecList list(0);
  EXPECT_EQ(list.toString(), "");
  add<CTarnFWProtocolSpecStrict>(list);
  EXPECT_EQ(list.toString(), "strict");
  add<CTarnFWProtocolSpecTCPFlags>(list, 0, 2, true);
  EXPECT_EQ(list.toString(), "with {strict, not flag 0x0002}");
  add<CTarnFWProtocolSpecDSCP>(list, 8);
  EXPECT_EQ(list.toString(), "with {strict, not flag 0x0002, dscp 8}");
}

TEST(TarnFWProtocolSpecList, SetDirReachesTheListAndItsMembers) {
  CTarnFWProtocolSpecList list = portList(0);
  add<CTarnFWProtocolSpecL4Port>(list, 0, 80, false);
  list.setDir(2);
  EXPECT_EQ(list.getDir(), 2);
  EXPECT_EQ(messageOf(list), Bytes(38).at(0, {0x0a, 0, 0, 80}));
  EXPECT_THROW_WITH(list.setDir(3), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 3");
  EXPECT_EQ(list.getDir(), 2);
  EXPECT_EQ(messageOf(list), Bytes(38).at(0, {0x0a, 0, 0, 80}));
  EXPECT_THROW_WITH(CTarnFWProtocolSpecList(3), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 3");
}

TEST(TarnFWProtocolSpecList, ASecondSpecOfAKindIsRefusedByItsWord) {
  const auto text = [](const char* word) {
    return std::string("duplicate definition of protocol spec of ") + word;
  };
  CTarnFWProtocolSpecList list(0);
  add<CTarnFWProtocolSpecL4Port>(list, 0, 80, false);
  add<CTarnFWProtocolSpecL4PortRange>(list, 0, 80, 90, false);
  add<CTarnFWProtocolSpecL4PortSet>(list, 0, false);
  add<CTarnFWProtocolSpecTCPFlags>(list, 0, 2, false);
  add<CTarnFWProtocolSpecTCPOptions>(list, 0, "a", 1, false);
  add<CTarnFWProtocolSpecICMPType>(list, 0, 8, false);
  add<CTarnFWProtocolSpecStateless>(list);
  add<CTarnFWProtocolSpecDSCP>(list, 1);
  add<CTarnFWProtocolSpecStrict>(list);
  add<CTarnFWProtocolSpecSloppy>(list);
  EXPECT_EQ(list.getSpecCount(FW_SPEC_NONE), 10u);
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecL4Port>(list, 0, 81, false),
                    CDuplicateProtocolSpecException, 43, text("tcp/udp port"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecL4PortRange>(list, 0, 1, 2, false),
                    CDuplicateProtocolSpecException, 43, text("tcp/udp port range"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecL4PortSet>(list, 0, false),
                    CDuplicateProtocolSpecException, 43, text("/tcp/udp port set"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecTCPFlags>(list, 0, 2, false),
                    CDuplicateProtocolSpecException, 43, text("tcp flags"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecTCPOptions>(list, 0, "a", 1, false),
                    CDuplicateProtocolSpecException, 43, text("tcp options"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecICMPType>(list, 0, 8, false),
                    CDuplicateProtocolSpecException, 43, text("icmp type"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecDSCP>(list, 1), CDuplicateProtocolSpecException, 43,
                    text("dscp"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecStrict>(list), CDuplicateProtocolSpecException, 43,
                    text("tcp strict"));
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecSloppy>(list), CDuplicateProtocolSpecException, 43,
                    text("tcp sloppy"));
  EXPECT_EQ(list.getSpecCount(FW_SPEC_NONE), 10u);
}

TEST(TarnFWProtocolSpecList, TwoStatelessSpecsAreRefusedWithNoState) {
  CTarnFWProtocolSpecList list(0);
  add<CTarnFWProtocolSpecStateless>(list);
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecStateless>(list), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of no state");
}

TEST(TarnFWProtocolSpecList, CountsTheMembersOfAKind) {
  CTarnFWProtocolSpecList list(0);
  EXPECT_EQ(list.getSpecCount(FW_SPEC_NONE), 0u);
  add<CTarnFWProtocolSpecStrict>(list);
  add<CTarnFWProtocolSpecDSCP>(list, 1);
  EXPECT_EQ(list.getSpecCount(FW_SPEC_NONE), 2u);
  EXPECT_EQ(list.getSpecCount(FW_SPEC_STRICT), 1u);
  EXPECT_EQ(list.getSpecCount(FW_SPEC_SLOPPY), 0u);
}

TEST(TarnFWProtocolSpecList, ADeletedKindStillCountsAsPresentForAddSpec) {
  CTarnFWProtocolSpecList list(0);
  add<CTarnFWProtocolSpecStrict>(list);
  add<CTarnFWProtocolSpecDSCP>(list, 1);
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_PROTOCOL].level = 1;
  EXPECT_EQ(list.deleteSpec(FW_SPEC_SLOPPY), nullptr);
  EXPECT_TRUE(log.lines().empty());
  const auto removed = list.deleteSpec(FW_SPEC_STRICT);
  ASSERT_NE(removed, nullptr);
  EXPECT_EQ(removed->toString(), "strict");
  EXPECT_EQ(
      log.normalized(),
      std::vector<std::string>{
          "7|tarnfw:protocol TarnFWProtocolSpecList:deleteSpec():N Remove protocol spec 9\n\n"});
  EXPECT_EQ(list.toString(), "dscp 1");
  EXPECT_THROW_WITH(add<CTarnFWProtocolSpecStrict>(list), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of tcp strict");
}

TEST(TarnFWProtocolSpecList, DeletesTheFirstMemberAndOneInTheMiddle) {
  CTarnFWProtocolSpecList list(0);
  add<CTarnFWProtocolSpecStrict>(list);
  add<CTarnFWProtocolSpecDSCP>(list, 1);
  add<CTarnFWProtocolSpecSloppy>(list);
  EXPECT_EQ(list.getKinds(), 1u << FW_SPEC_STRICT | 1u << FW_SPEC_DSCP | 1u << FW_SPEC_SLOPPY);
  ASSERT_NE(list.deleteSpec(FW_SPEC_DSCP), nullptr);
  EXPECT_EQ(list.toString(), "with {strict, sloppy}");
  EXPECT_EQ(list.deleteSpec(FW_SPEC_DSCP), nullptr);
  ASSERT_NE(list.deleteSpec(FW_SPEC_STRICT), nullptr);
  EXPECT_EQ(list.toString(), "sloppy");
  EXPECT_EQ(list.getKinds(), 1u << FW_SPEC_SLOPPY);
  add<CTarnFWProtocolSpecStateless>(list);
  EXPECT_EQ(list.toString(), "with {sloppy, stateless}");
  list.clear();
  EXPECT_EQ(list.getKinds(), 0u);
  add<CTarnFWProtocolSpecDSCP>(list, 2);
  EXPECT_EQ(list.toString(), "dscp 2");
}

TEST(TarnFWProtocolSpecList, MergeMovesTheMembers) {
  CTarnFWProtocolSpecList list(0);
  CTarnFWProtocolSpecList other(1);
  add<CTarnFWProtocolSpecStrict>(list);
  add<CTarnFWProtocolSpecDSCP>(other, 1);
  add<CTarnFWProtocolSpecStateless>(other);
  list.mergeSpecList(other);
  EXPECT_EQ(list.toString(), "with {strict, dscp 1, stateless}");
  EXPECT_EQ(other.toString(), "");
  EXPECT_EQ(other.getSpecCount(FW_SPEC_NONE), 0u);
  for (CTarnFWProtocolSpecList* const both : {&list, &other}) {
    EXPECT_THROW_WITH(add<CTarnFWProtocolSpecDSCP>(*both, 1), CDuplicateProtocolSpecException, 43,
                      "duplicate definition of protocol spec of dscp");
  }
}

TEST(TarnFWProtocolSpecList, AMergeThatMeetsADuplicateLeavesItInTheOtherList) {
  CTarnFWProtocolSpecList list(0);
  CTarnFWProtocolSpecList other(0);
  add<CTarnFWProtocolSpecStrict>(list);
  add<CTarnFWProtocolSpecDSCP>(other, 1);
  add<CTarnFWProtocolSpecStrict>(other);
  add<CTarnFWProtocolSpecSloppy>(other);
  EXPECT_THROW_WITH(list.mergeSpecList(other), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of tcp strict");
  EXPECT_EQ(list.toString(), "with {strict, dscp 1}");
  EXPECT_EQ(other.toString(), "with {strict, sloppy}");
}

TEST(TarnFWProtocolSpecList, PortBlocksOfEachPortFormAndDirection) {
  for (const int dir : {0, 1, 2}) {
    for (const bool negated : {false, true}) {
      const auto direction = static_cast<unsigned char>(dir);
      const int low = dir | (negated ? 4 : 0);
      CTarnFWProtocolSpecList port = portList(direction);
      add<CTarnFWProtocolSpecL4Port>(port, direction, 0x1234, negated);
      EXPECT_EQ(messageOf(port), Bytes(38).at(0, {0x08 | low, 0, 0x12, 0x34}));

      CTarnFWProtocolSpecList range = portList(direction);
      add<CTarnFWProtocolSpecL4PortRange>(range, direction, 80, 90, negated);
      EXPECT_EQ(messageOf(range), Bytes(38).at(0, {0x10 | low, 0, 0, 80, 0, 90}));

      CTarnFWProtocolSpecList set = portList(direction);
      auto members = std::make_unique<CTarnFWProtocolSpecL4PortSet>(direction, negated);
      members->addPort(7);
      members->addPortRange(80, 90);
      set.addSpec(std::move(members));
      EXPECT_EQ(messageOf(set),
                Bytes(38).at(0, {0x18 | low, 0, 3, 0, 0, 80, 0, 90, 0, 7}).at(34, {1, 0}));
    }
  }
}

TEST(TarnFWProtocolSpecList, PortModeSkipsAllButPorts) {
  CTarnFWProtocolSpecList list = portList(1);
  EXPECT_EQ(messageOf(list), Bytes(38));
  add<CTarnFWProtocolSpecTCPFlags>(list, 1, 2, false);
  add<CTarnFWProtocolSpecStrict>(list);
  EXPECT_EQ(messageOf(list), Bytes(38));
  expectShortBuffersRefused(list);
}

TEST(TarnFWProtocolSpecList, TwoPortFormsInAPortListAreRefusedWhenWritten) {
  CTarnFWProtocolSpecList list = portList(1);
  add<CTarnFWProtocolSpecL4Port>(list, 1, 80, false);
  add<CTarnFWProtocolSpecL4PortRange>(list, 1, 80, 90, false);
  Bytes bytes(38, 0xee);
  EXPECT_THROW_WITH(list.toMessage(bytes.data(), 38, nullptr), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of min protocol spec placeholder");
  EXPECT_EQ(bytes, Bytes(38, 0xee));
}

TEST(TarnFWProtocolSpecList, SessionBlocksOfEachSpec) {
  CTarnFWProtocolSpecList empty(0);
  EXPECT_EQ(messageOf(empty), Bytes(56));
  expectShortBuffersRefused(empty);

  CTarnFWProtocolSpecList flags(0);
  add<CTarnFWProtocolSpecTCPFlags>(flags, 0, 0x112, true);
  EXPECT_EQ(messageOf(flags), Bytes(56).at(4, {0x24, 0, 0x12, 0x01}));

  CTarnFWProtocolSpecList options(0);
  add<CTarnFWProtocolSpecTCPOptions>(options, 0, "\x02\x04", 2, false);
  EXPECT_EQ(messageOf(options), Bytes(56).at(12, {0x28, 0, 2, 0, 0x02, 0x04}));

  CTarnFWProtocolSpecList type(0);
  add<CTarnFWProtocolSpecICMPType>(type, 0, 8, false);
  EXPECT_EQ(messageOf(type), Bytes(56).at(4, {0x30, 0, 1, 0, 0, 0, 8, 0}));

  CTarnFWProtocolSpecList code(0);
  add<CTarnFWProtocolSpecICMPType>(code, 2, 3, 1, true);
  EXPECT_EQ(messageOf(code), Bytes(56).at(4, {0x36, 0, 3, 0, 0, 0, 3, 1}));

  CTarnFWProtocolSpecList modes(0);
  add<CTarnFWProtocolSpecStateless>(modes);
  add<CTarnFWProtocolSpecDSCP>(modes, 0x21);
  add<CTarnFWProtocolSpecStrict>(modes);
  add<CTarnFWProtocolSpecSloppy>(modes);
  EXPECT_EQ(messageOf(modes), Bytes(56).at(0, {0x21, 0x1c}));

  CTarnFWProtocolSpecList all(0);
  add<CTarnFWProtocolSpecTCPOptions>(all, 0, std::string(40, 'o').data(), 40, true);
  add<CTarnFWProtocolSpecSloppy>(all);
  add<CTarnFWProtocolSpecTCPFlags>(all, 0, 2, false);
  Bytes expected(56);
  expected.at(0, {0x00, 0x10, 0, 0, 0x20, 0, 2}).at(12, {0x2c, 0, 40, 0});
  expected.text(16, std::string(40, 'o'));
  EXPECT_EQ(messageOf(all), expected);
}

TEST(TarnFWProtocolSpecList, SessionBlockSkipsPorts) {
  CTarnFWProtocolSpecList list(0);
  add<CTarnFWProtocolSpecL4Port>(list, 0, 80, false);
  EXPECT_EQ(messageOf(list), Bytes(56));
}

TEST(TarnFWProtocolSpecList, TCPFlagsAndICMPTypeAreRefusedWhenWrittenNotWhenAdded) {
  CTarnFWProtocolSpecList list(0);
  add<CTarnFWProtocolSpecTCPFlags>(list, 0, 2, false);
  add<CTarnFWProtocolSpecICMPType>(list, 0, 8, false);
  Bytes bytes(56, 0xee);
  EXPECT_THROW_WITH(list.toMessage(bytes.data(), 56, nullptr), CDuplicateProtocolSpecException, 43,
                    "duplicate definition of protocol spec of min protocol spec placeholder");
  EXPECT_EQ(bytes, Bytes(56, 0xee));
}

TEST(TarnFWProtocolSpecList, TracesEachSpecThatItWrites) {
  CTarnFWProtocolSpecList session(0);
  add<CTarnFWProtocolSpecTCPFlags>(session, 0, 2, false);
  add<CTarnFWProtocolSpecTCPOptions>(session, 0, "a", 1, false);
  add<CTarnFWProtocolSpecStateless>(session);
  add<CTarnFWProtocolSpecStrict>(session);
  add<CTarnFWProtocolSpecSloppy>(session);
  add<CTarnFWProtocolSpecDSCP>(session, 1);
  CTarnFWProtocolSpecList icmp(0);
  add<CTarnFWProtocolSpecICMPType>(icmp, 0, 8, false);
  CTarnFWProtocolSpecList port = portList(1);
  add<CTarnFWProtocolSpecL4Port>(port, 1, 80, false);
  CTarnFWProtocolSpecList range = portList(1);
  add<CTarnFWProtocolSpecL4PortRange>(range, 1, 80, 90, false);
  CTarnFWProtocolSpecList set = portList(1);
  add<CTarnFWProtocolSpecL4PortSet>(set, 1, false);
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_PROTOCOL].level = 1;
  for (CTarnFWProtocolSpecList* list : {&session, &icmp, &port, &range, &set}) messageOf(*list);
  const auto wrote = [](const char* word) {
    return std::string(
               "7|tarnfw:protocol TarnFWProtocolSpecList:toMessage():N     wrote protocol "
               "spec: ") +
           word + "\n";
  };
  EXPECT_EQ(
      log.normalized(),
      (std::vector<std::string>{wrote("tcp flags"), wrote("tcp options"), wrote("stateless"),
                                wrote("strict"), wrote("sloppy"), wrote("dscp"), wrote("icmp type"),
                                wrote("l4port"), wrote("l4port range"), wrote("l4port set")}));
}
