#include <gtest/gtest.h>

#include <algorithm>

#include "Expect.h"
#include "Message.h"
#include "TarnFWRuleActionFactory.h"

using namespace TarnFirewall;

namespace {

std::unique_ptr<CTarnFWRuleAction> read(const Bytes& bytes) {
  const auto record = loadRecord<fw_rule_action_>(bytes.data());
  return CTarnFWRuleActionFactory::newFromMsgBuf(&record);
}

Bytes record(int code, int flags = 0) {
  return Bytes(330).at(290, {code, flags & 0xff, flags >> 8});
}

Bytes withAddress(int code) { return record(code).at(0, {1, 0, 0, 0, 10, 0, 0, 1}); }

const std::string kPolicy = "01234567-89ab-cdef-0123-456789abcdef";

}  // namespace

TEST(TarnFWRuleActionFactory, ReadsEachKindAndWritesItBack) {
  const struct {
    Bytes bytes;
    const char* text;
  } rows[] = {
      {record(1), "accept"},
      {record(2), "drop"},
      {record(3), "reject"},
      {record(4).text(0, "web"), "jumpto web"},
      {record(5), "punt"},
      {record(6), "divert"},
      {withAddress(7), "snat ip 10.0.0.1"},
      {withAddress(8), "dnat ip 10.0.0.1"},
      {withAddress(8).at(282, {0x0c, 0, 5, 0}), "dnat ip 10.0.0.1 poolopt source-hash 5"},
      {withAddress(8).at(144, {0, 80}).at(282, {0x01}), "dnat ip 10.0.0.1 port 80"},
      {withAddress(8).at(144, {0, 80, 0, 90}).at(282, {0x13}),
       "dnat ip 10.0.0.1 port 80-90 poolopt round-robin"},
      {withAddress(8).at(282, {0x3c}), "dnat ip 10.0.0.1 unknown"},
      {record(9).at(0, {0, 10, 1, 2, 3, 4}), "macrewrite 0:a:1:2:3:4"},
      {record(10), "copy"},
      {record(11).text(293, kPolicy), "encrypt keypolicy 01234567-89ab-cdef-0123-456789abcdef"},
      {record(12), "clear"},
      {record(13).at(148, {1, 0, 30, 0, 8, 0}).text(154, "a=b").at(282, {0x40}),
       "lb  lbtype L7 lbidletimeout 30 lbclosetimeout 8 lboptions a=b"},
      {record(14).text(293, kPolicy), "pbr keypolicy 01234567-89ab-cdef-0123-456789abcdef"},
      {record(14).text(293, "ffffffff-ffff-ffff-ffff-ffffffffffff"), "pbr pass-through"},
  };
  for (const auto& row : rows) {
    const auto action = read(row.bytes);
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->getAction(), row.bytes[290]);
    EXPECT_EQ(action->toString(), row.text);
    EXPECT_EQ(messageOf(*action), row.bytes) << row.text;
  }
}

TEST(TarnFWRuleActionFactory, ADNATWithOnlyALastPortHasNone) {
  const auto action = read(withAddress(8).at(144, {0, 80, 0, 90}).at(282, {0x02}));
  EXPECT_EQ(action->toString(), "dnat ip 10.0.0.1");
  EXPECT_EQ(messageOf(*action), withAddress(8));
}

TEST(TarnFWRuleActionFactory, AnLBReadFromARecordAlwaysHasOptions) {
  const auto action = read(record(13));
  EXPECT_EQ(action->toString(), "lb  lbtype L4 lboptions ");
  EXPECT_EQ(messageOf(*action), record(13).at(282, {0x40}));
}

TEST(TarnFWRuleActionFactory, ReadsEachFlag) {
  EXPECT_EQ(read(record(2, 0x001))->toString(), "drop with log");
  EXPECT_EQ(read(record(2, 0x002))->toString(), "drop with copy");
  EXPECT_EQ(read(record(2, 0x008))->toString(), "drop with noflow");
  EXPECT_EQ(read(record(2, 0x010))->toString(), "drop with rtt");
  EXPECT_EQ(read(record(2, 0x100))->toString(), "drop with lbrule");
  EXPECT_EQ(read(record(2, 0x11f).at(288, {0x10}))->toString(),
            "drop with {log,copy,noflow,rtt,lbrule} as ftp");
}

TEST(TarnFWRuleActionFactory, EveryKindCarriesEveryFlag) {
  const Bytes kinds[] = {record(1),
                         record(2),
                         record(3),
                         record(4).text(0, "web"),
                         record(5),
                         record(6),
                         withAddress(7),
                         withAddress(8),
                         record(9),
                         record(10),
                         record(11).text(293, kPolicy),
                         record(12),
                         record(13).at(282, {0x40}),
                         record(14).text(293, kPolicy)};
  const struct {
    int low, high;
    const char* text;
  } flags[] = {{0x01, 0, " with log"},
               {0x02, 0, " with copy"},
               {0x08, 0, " with noflow"},
               {0x10, 0, " with rtt"},
               {0x00, 1, " with lbrule"},
               {0x04, 0, " as ftp"},
               {0x1f, 1, " with {log,copy,noflow,rtt,lbrule} as ftp"}};
  for (const Bytes& kind : kinds) {
    const std::string plain = read(kind)->toString();
    // A key policy stands after the flags, all other data in front of them.
    const std::size_t place = std::min(plain.find(" keypolicy "), plain.size());
    for (const auto& flag : flags) {
      Bytes bytes = Bytes(kind).at(291, {flag.low, flag.high});
      if ((flag.low & 0x04) != 0) bytes.at(288, {0x13});
      const auto action = read(bytes);
      EXPECT_EQ(action->toString(), std::string(plain).insert(place, flag.text));
      EXPECT_EQ(messageOf(*action), bytes);
    }
  }
}

TEST(TarnFWRuleActionFactory, TheFlagsOfADynamicApplicationInARecordAreNotRead) {
  for (const int inRecord : {0, 1, 4, 15}) {
    const auto action = read(record(1, 0x4).at(288, {0x30 | inRecord}));
    EXPECT_EQ(action->toString(), "accept as sunrpc");
    EXPECT_EQ(messageOf(*action), record(1, 0x4).at(288, {0x35}));
  }
}

TEST(TarnFWRuleActionFactory, AnUnknownDynamicApplicationIsRefused) {
  EXPECT_THROW_WITH(read(record(1, 0x4)), CUnsupportedException, 7, "unknown dynamic application");
  EXPECT_THROW_WITH(read(record(1, 0x4).at(288, {0x50})), CUnsupportedException, 7,
                    "unknown dynamic application");
  EXPECT_THROW_WITH(read(record(1, 0x4).at(288, {0x10, 0x01})), CUnsupportedException, 7,
                    "unknown dynamic application");
  // Without its flag the application is not looked at.
  EXPECT_EQ(read(record(1).at(288, {0x50}))->toString(), "accept");
}

TEST(TarnFWRuleActionFactory, UnknownFlagBitsAreRefusedWithTheActionCode) {
  for (const int bit : {5, 6, 7, 9, 10, 11, 12, 13, 14, 15}) {
    EXPECT_THROW_WITH(read(record(2, 1 << bit)), CInvalidRuleActionException, 37,
                      "invalid rule action: 2");
  }
}

TEST(TarnFWRuleActionFactory, CodesOfNoActionAreRefused) {
  for (const int code : {0, 15, 16, 255}) {
    EXPECT_THROW_WITH(read(record(code)), CInvalidRuleActionException, 37,
                      "invalid rule action: " + std::to_string(code));
  }
}

TEST(TarnFWRuleActionFactory, BadDataIsRefusedByTheActionsClass) {
  EXPECT_THROW_WITH(read(record(7).at(0, {8})), CInvalidAddressException, 33,
                    "unknown address type: 8");
  EXPECT_THROW_WITH(read(withAddress(8).at(144, {0, 81, 0, 80}).at(282, {3})),
                    CUnsupportedException, 7, "reversed port range");
  EXPECT_THROW_WITH(read(record(13).at(148, {3})), CUnsupportedException, 7, "Invalid LB Type");
  EXPECT_THROW_WITH(read(record(13).text(154, std::string(128, 'o'))), CUnsupportedException, 7,
                    "Invalid LB Options");
}

TEST(TarnFWRuleActionFactory, TheFirstOfSeveralFaultsIsReported) {
  Bytes bytes = record(8, 0x24).at(0, {8}).at(144, {0, 81, 0, 80}).at(282, {3}).at(288, {0x50});
  EXPECT_THROW_WITH(read(bytes), CInvalidRuleActionException, 37, "invalid rule action: 8");
  bytes.at(291, {0x04});
  EXPECT_THROW_WITH(read(bytes), CInvalidAddressException, 33, "unknown address type: 8");
  bytes.at(0, {1});
  EXPECT_THROW_WITH(read(bytes), CUnsupportedException, 7, "reversed port range");
  bytes.at(144, {0, 80});
  EXPECT_THROW_WITH(read(bytes), CUnsupportedException, 7, "unknown dynamic application");
}

TEST(TarnFWRuleActionFactory, TextsWithoutANulEndWithTheirField) {
  EXPECT_EQ(read(record(11).text(293, std::string(37, 'k')))->toString(),
            "encrypt keypolicy " + std::string(37, 'k'));
}

TEST(TarnFWRuleActionFactory, AJumpTargetWithoutANulIsRefused) {
  EXPECT_EQ(read(record(4).text(0, std::string(63, 'r')))->toString(),
            "jumpto " + std::string(63, 'r'));
  EXPECT_THROW_WITH(read(record(4).text(0, std::string(64, 'r'))), CIDTooLongException, 32,
                    "id is too long: " + std::string(64, 'r'));
}

TEST(TarnFWRuleActionFactory, ABufferHoldsARecordFrom330Bytes) {
  const Bytes bytes = record(2).at(291, {1});
  for (unsigned int size = 0; size < 330; ++size) {
    Bytes cut = bytes;
    cut.resize(size);
    cut.shrink_to_fit();
    unsigned int used = 99;
    EXPECT_EQ(CTarnFWRuleActionFactory::newFromMsgBuf(cut.data(), size, &used), nullptr);
    EXPECT_EQ(used, 0u);
  }
  unsigned int used = 0;
  const auto action = CTarnFWRuleActionFactory::newFromMsgBuf(bytes.data(), 330, &used);
  EXPECT_EQ(used, 330u);
  EXPECT_EQ(action->toString(), "drop with log");
}
