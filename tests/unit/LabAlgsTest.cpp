#include <set>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabFlowFile.h"

namespace TarnLab {
namespace {

class LabAlgs : public FilledLabBench {
 protected:
  /// Asks for the numbers: bytes of a record, and how many there are.
  void count(unsigned number) {
    ASSERT_EQ(command(number, Record().zero(8)), 0u) << note();
    size = get32(reply, 0);
    records = get32(reply, 4);
  }
  std::uint32_t fetch(unsigned number, std::uint32_t bytes, std::uint32_t wanted) {
    return command(number, Record().u32(bytes).u32(wanted).to(8 + bytes));
  }

  std::uint32_t size = 0, records = 0;
};

TEST_F(LabAlgs, AGatewayStandsOnceForAllItsControlFlows) {
  count(47);
  EXPECT_EQ(size, 6u);
  ASSERT_EQ(fetch(47, 6 * records, records), 0u) << note();
  EXPECT_EQ(get32(reply, 4), records);
  std::set<std::string> seen;
  std::set<unsigned> types, families, protocols, directions;
  for (std::size_t at = 8; at < reply.size(); at += 6) {
    const ConstBytes record = part(ConstBytes(reply), at, 6);
    EXPECT_TRUE(seen.insert(std::string(reinterpret_cast<const char*>(record.data()), 6)).second);
    types.insert(get8(record, 0));
    families.insert(get8(record, 1));
    directions.insert(get8(record, 4));
    protocols.insert(get8(record, 5));
  }
  EXPECT_EQ(types, (std::set<unsigned>{0, 1, 2, 3, 4, 5, 7}));
  EXPECT_EQ(families, (std::set<unsigned>{2, 28}));
  EXPECT_EQ(directions, (std::set<unsigned>{1, 2}));
  EXPECT_EQ(protocols, (std::set<unsigned>{1, 2, 3}));
}

TEST_F(LabAlgs, AnOpenedPortIsThatOfADataFlow) {
  count(48);
  EXPECT_EQ(size, 40u);
  ASSERT_EQ(fetch(48, 40 * records, records), 0u) << note();
  const auto file = FlowFile::open(store, Host::load(store).folderOf(0));
  ASSERT_TRUE(file);
  std::set<unsigned> flags;
  for (std::size_t at = 8; at < reply.size(); at += 40) {
    const ConstBytes record = part(ConstBytes(reply), at, 40);
    const std::uint64_t control = Net64{32, ""}.get(record);
    const ConstBytes flow = file->record(activeGroup, file->placeOfId(control));
    ASSERT_EQ(FlowRecord::id.get(flow), control) << "the control flow is a connection";
    EXPECT_EQ(FlowRecord::shapeOf(flow).algPort.get(flow), getNet16(record, 16))
        << "which announced the port";
    EXPECT_EQ(FlowRecord::shapeOf(flow).destinationPort.get(flow), getNet16(record, 18));
    EXPECT_EQ(FlowRecord::shapeOf(flow).algType.get(flow), get8(record, 23));
    flags.insert(get8(record, 20));
  }
  EXPECT_EQ(flags, (std::set<unsigned>{8, 10, 12, 14})) << "both families, active and not";
}

TEST_F(LabAlgs, FewerRecordsThanThereAre) {
  count(47);
  ASSERT_EQ(fetch(47, 13, 2), 0u);
  EXPECT_EQ(get32(reply, 4), 2u);
  EXPECT_FALSE(isZero(part(ConstBytes(reply), 14, 6)));
  EXPECT_EQ(get8(reply, 20), 0u);
  ASSERT_EQ(fetch(47, 18, 2), 0u);
  EXPECT_EQ(get32(reply, 4), 2u) << "as many as are asked for, not as have room";
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 20, 6)));
  ASSERT_EQ(fetch(47, 6 * (records + 1), records + 1), 0u);
  EXPECT_EQ(get32(reply, 4), records);
}

TEST_F(LabAlgs, RefusesRecordsThatHaveNoRoom) {
  EXPECT_EQ(fetch(47, 12, 3), 25u);
  EXPECT_EQ(note(), "3 records in 12 bytes of room");
  EXPECT_EQ(command(48, Record().u32(0).u32(1)), 25u);
  EXPECT_EQ(command(48, Record().u32(40).u32(1)), 25u);
  EXPECT_EQ(note(), "40 bytes of records, 0 are there");
  EXPECT_EQ(command(47, Record().zero(7)), 25u);
}

TEST_F(LabAlgs, AFilterWithoutConnectionsHasNone) {
  for (const unsigned number : {47u, 48u}) {
    ASSERT_EQ(command(number, Record().zero(8), filterSelector("nic-1003120-eth0-kelpco-sfw.2")),
              0u);
    EXPECT_EQ(get32(reply, 4), 0u);
  }
}

TEST_F(LabAlgs, TheLogHasALineForEachRecordThatCame) {
  ASSERT_EQ(fetch(47, 12, 2), 0u);
  const std::string lines = decodeRecords(journal().back());
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 2);
  ASSERT_EQ(fetch(47, 18, 2), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), lines) << "none for the room that is left";
  ASSERT_EQ(command(47, Record().zero(8)), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), "");
}

}  // namespace
}  // namespace TarnLab
