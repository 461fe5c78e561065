#include "LabBench.h"
#include "LabFamily.h"
#include "LabSid.h"
#include "LabTable.h"

namespace TarnLab {
namespace {

constexpr Table table{"things", 2};

class LabTable : public LabBench {
 protected:
  void writeFile(const ByteVector& content) {
    const StoreLock lock(store);
    store.replace("filters/0/things", {content});
  }
};

TEST_F(LabTable, RecordsOfDifferentSizesComeBackAsTheyWere) {
  const Table::Records records{Record().u16(7), Record().u32(8).u64(9), Record().u8(1).u8(2)};
  const StoreLock lock(store);
  table.save(store, "filters/0", records);
  EXPECT_EQ(table.load(store, "filters/0"), records);
  EXPECT_EQ(bytesOf(records), 16u);
  EXPECT_TRUE(table.load(store, "filters/1").empty());
}

TEST_F(LabTable, ATableWithoutRecordsHasNoFile) {
  const StoreLock lock(store);
  table.save(store, "filters/0", {Record().u16(7)});
  EXPECT_TRUE(store.exists("filters/0/things"));
  table.save(store, "filters/0", {});
  EXPECT_FALSE(store.exists("filters/0/things"));
  EXPECT_TRUE(table.load(store, "filters/0").empty());
}

TEST_F(LabTable, ADamagedFileIsRefusedByItsPath) {
  const ByteVector damaged[] = {Record().u8(1),                       // less than a size
                                Record().u32(1).u8(1),                // a record below the least
                                Record().u32(3).u16(1),               // a record that is cut off
                                Record().u32(0xffffffff).u16(1),      // a size that wraps
                                Record().u32(2).u16(1).u32(2).u8(1),  // the second one is cut off
                                Record().u32(2).u16(1).u16(1)};  // something after the last one
  for (const ByteVector& content : damaged) {
    writeFile(content);
    try {
      table.load(store, "filters/0");
      ADD_FAILURE() << "a file of " << content.size() << " bytes was taken";
    } catch (const StoreError& error) {
      EXPECT_NE(std::string(error.what()).find("filters/0/things"), std::string::npos);
    }
  }
}

TEST_F(LabTable, ADamagedTableFailsTheCommandsThatReadIt) {
  {
    const StoreLock lock(store);
    store.replace("filters/0/names", {ByteVector(7)});
  }
  ByteVector sent = message(70, Record().u64(0));
  EXPECT_EQ(send(sent, filterSelector(web)), EIO);
}

TEST_F(LabTable, NoTwoTablesHaveTheSameName) {
  std::vector<std::string_view> names;
  for (const Family* family : families()) {
    for (const Table& each : family->tables) {
      for (const std::string_view before : names) EXPECT_NE(each.name, before);
      EXPECT_NE(each.text, nullptr) << each.name;
      EXPECT_GT(each.least, 0u) << each.name;
      names.push_back(each.name);
    }
  }
  EXPECT_EQ(names.size(), 6u);
}

TEST_F(LabTable, NoTwoTablesOfTheHostHaveTheSameName) {
  std::vector<std::string_view> names;
  for (const Family* family : families()) {
    for (const Table& each : family->hostTables) {
      for (const std::string_view before : names) EXPECT_NE(each.name, before);
      EXPECT_NE(each.text, nullptr) << each.name;
      EXPECT_GT(each.least, 0u) << each.name;
      names.push_back(each.name);
    }
  }
  EXPECT_EQ(names.size(), 7u);
}

TEST_F(LabTable, OnlyTheFirstFilterOfTheUsualHostIsFilled) {
  const StoreLock lock(store);
  fillHost(store, Host::sample());
  for (const char* file : {"discovered", "names", "users", "inspections"}) {
    EXPECT_TRUE(store.exists(std::string("filters/0/") + file)) << file;
    EXPECT_FALSE(store.exists(std::string("filters/2/") + file)) << file;
  }
}

TEST(LabSid, ASidIsCheckedFieldByField) {
  const ByteVector good = Record().u32(0).u8(1).u8(2).u32(0).u8(0).u8(5).u32(21).u32(7).to(72);
  EXPECT_EQ(Sid::fault(good), "");
  EXPECT_EQ(Sid::text(good), "S-1-5-21-7");
  EXPECT_EQ(good, Sid::make(5, {21, 7}));
  EXPECT_EQ(Sid::fault(ByteVector(71)), "sid of 71 bytes");
  EXPECT_EQ(Sid::fault((const ByteVector&)Record().bytes(good).set(0, 1)),
            "sid with reserved bytes set");
  EXPECT_EQ(Sid::fault((const ByteVector&)Record().bytes(good).set(4, 2)), "sid of revision 2");
  EXPECT_EQ(Sid::fault((const ByteVector&)Record().bytes(good).set(5, 16)),
            "sid with 16 sub-authorities");
  EXPECT_EQ(Sid::fault((const ByteVector&)Record().bytes(good).set(5, 1)),
            "sid with bytes after its last sub-authority");
  EXPECT_EQ(Sid::text((const ByteVector&)Record().bytes(good).set(4, 0)), "no sid");
}

TEST(LabSid, EverySubAuthorityAndTheWholeAuthorityAreRead) {
  Record sid;
  sid.u32(0).u8(1).u8(15).u8(1).u8(2).u8(3).u8(4).u8(5).u8(6);
  for (unsigned i = 1; i <= 15; ++i) sid.u32(i);
  EXPECT_EQ(Sid::fault(sid), "");
  EXPECT_EQ(Sid::text(sid), "S-1-1108152157446-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15");
}

}  // namespace
}  // namespace TarnLab
