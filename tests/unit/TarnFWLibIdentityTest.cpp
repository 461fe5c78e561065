// The flat functions for fully qualified names, users and deep inspection: what they send and hand
// out, and what they refuse.

#include <functional>
#include <string>
#include <vector>

#include "LibraryTest.h"

using namespace TarnFirewall;

namespace {

class TarnFWLibIdentity : public LibraryTest {
 protected:
  int result = -77;
  unsigned int count = 77;
  unsigned int size = 78;
  FWAddress_ address{};
  FWFqdnEntry_ entry{};
  FWUuidItem_ items[3] = {};
  fwattr_sid sid{};
  FWDPIInfo_ records[3] = {};
  std::uint64_t ids[102] = {0x0102, 0x0304};
};

}  // namespace

TEST_F(TarnFWLibIdentity, EveryArgumentStandsInItsPlaceOfTheRequest) {
  address.type = 1;
  address.value[0] = 10;
  address.value[15] = 15;
  sid.revision = 1;
  const fwattr_sid sids[] = {sid, sid};
  Bytes mapping(228);
  mapping.at(8, {2}).at(16, {1}).at(88, {1}).at(160, {1});
  Bytes deletion(84);
  deletion.at(4, {1}).at(16, {1});
  expectRequests({
      {69, [&](void* c) { return FW_DeleteFqdnTree(handle, &port, c, &result); }, Bytes(4)},
      {70, [&](void* c) { return FW_GetFqdnCount(handle, &port, c, &count, &size); }, Bytes(8)},
      {71, [&](void* c) { return FW_GetFqdnEntriesV4(handle, &port, c, address, 2, &entry); },
       Bytes(170).at(4, {10}).at(144, {2})},
      {71, [&](void* c) { return FW_GetFqdnEntriesV6(handle, &port, c, address, 10, &entry); },
       Bytes(170).at(4, {10}).at(19, {15}).at(144, {10})},
      {72, [&](void* c) { return FW_GetUuid(handle, &port, c, &address, 3, items, &count); },
       Bytes(3717).at(0, {1}).at(4, {10}).at(19, {15}).at(1235, {3})},
      {80, [&](void* c) { return FW_AddAttrUid2MultiSid(handle, &port, c, &sid, sids, 2); },
       mapping},
      {80, [&](void* c) { return FW_DelAttrUid2Sid(handle, &port, c, &sid, nullptr, 0); },
       deletion},
      {82, [&](void* c) { return FW_GetUid2SidMapSize(handle, &port, c, &count, &size); },
       Bytes(84)},
      {81, [&](void* c) { return FW_GetUid2SidMap(handle, &port, c, 0x0102, 16); },
       Bytes(100).at(4, {2, 1, 0, 0, 16})},
      {77, [&](void* c) { return FW_GetConnectionDPIInfo(handle, &port, c, ids, 2, records, 3); },
       Bytes(40).at(0, {2}).at(8, {2, 1}).at(24, {4, 3})},
  });
}

TEST_F(TarnFWLibIdentity, ANullHandleIsStatusTwoBeforeAnythingElse) {
  EXPECT_EQ(FW_DeleteFqdnTree(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetFqdnCount(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetFqdnEntriesV4(nullptr, &port, nullptr, address, 3, nullptr), 2u);
  EXPECT_EQ(FW_GetFqdnEntriesV6(nullptr, &port, nullptr, address, 0, nullptr), 2u);
  EXPECT_EQ(FW_GetUuid(nullptr, &port, nullptr, nullptr, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_AddAttrUid2MultiSid(nullptr, &port, nullptr, nullptr, nullptr, 1), 2u);
  EXPECT_EQ(FW_DelAttrUid2Sid(nullptr, &port, nullptr, nullptr, nullptr, 1), 2u);
  EXPECT_EQ(FW_GetUid2SidMapSize(nullptr, &port, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetUid2SidMap(nullptr, &port, nullptr, 0, ~0u), 2u);
  EXPECT_EQ(FW_GetConnectionDPIInfo(nullptr, &port, nullptr, nullptr, 0, nullptr, 0), 2u);
}

TEST_F(TarnFWLibIdentity, WhatIsRefusedSendsNothing) {
  EXPECT_EQ(FW_DeleteFqdnTree(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetFqdnCount(handle, &port, nullptr, nullptr, &size), 3u);
  EXPECT_EQ(FW_GetFqdnCount(handle, &port, nullptr, &count, nullptr), 3u);
  EXPECT_EQ(FW_GetFqdnEntriesV4(handle, &port, nullptr, address, 0, nullptr), 3u);
  EXPECT_EQ(FW_GetFqdnEntriesV6(handle, &port, nullptr, address, 10, nullptr), 3u);
  for (const int family : {1, 3, 10, 28, 255}) {
    EXPECT_EQ(FW_GetFqdnEntriesV4(handle, &port, nullptr, address,
                                  static_cast<std::uint8_t>(family), &entry),
              57u);
  }
  EXPECT_EQ(FW_GetFqdnEntriesV6(handle, &port, nullptr, address, 0, &entry), 57u);
  EXPECT_EQ(FW_GetFqdnEntriesV6(handle, &port, nullptr, address, 2, &entry), 57u);
  EXPECT_EQ(FW_GetUuid(handle, &port, nullptr, nullptr, 1, items, &count), 3u);
  EXPECT_EQ(FW_GetUuid(handle, &port, nullptr, &address, 0, items, &count), 3u);
  EXPECT_EQ(FW_GetUuid(handle, &port, nullptr, &address, 1, nullptr, &count), 3u);
  EXPECT_EQ(FW_GetUuid(handle, &port, nullptr, &address, 1, items, nullptr), 3u);
  EXPECT_EQ(FW_GetUuid(handle, &port, nullptr, &address, 3466479, items, &count), 17u);
  EXPECT_EQ(FW_GetUuid(handle, &port, nullptr, &address, ~0u, items, &count), 17u);
  EXPECT_EQ(FW_AddAttrUid2MultiSid(handle, &port, nullptr, nullptr, nullptr, 0), 3u);
  EXPECT_EQ(FW_AddAttrUid2MultiSid(handle, &port, nullptr, &sid, nullptr, 1), 3u);
  EXPECT_EQ(FW_DelAttrUid2Sid(handle, &port, nullptr, &sid, nullptr, 1), 3u);
  EXPECT_EQ(FW_GetUid2SidMapSize(handle, &port, nullptr, nullptr, &size), 3u);
  EXPECT_EQ(FW_GetUid2SidMapSize(handle, &port, nullptr, &count, nullptr), 3u);
  EXPECT_EQ(FW_GetUid2SidMap(handle, &port, nullptr, 1, ~0u), 17u);
  EXPECT_EQ(FW_GetConnectionDPIInfo(handle, &port, nullptr, nullptr, 1, records, 1), 3u);
  EXPECT_EQ(FW_GetConnectionDPIInfo(handle, &port, nullptr, ids, 0, records, 1), 3u);
  EXPECT_EQ(FW_GetConnectionDPIInfo(handle, &port, nullptr, ids, 101, records, 1), 3u);
  EXPECT_EQ(FW_GetConnectionDPIInfo(handle, &port, nullptr, ids, 1, nullptr, 1), 3u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibIdentity, NumbersComeBackAsTheKernelHasThem) {
  kernel.answer(0, Bytes({0xfe, 0xff, 0xff, 0xff}));
  EXPECT_EQ(FW_DeleteFqdnTree(handle, &port, nullptr, &result), 0u);
  EXPECT_EQ(result, -2);
  kernel.answer(0, Bytes({1, 2, 0, 0, 3, 4, 0, 0xff}));
  EXPECT_EQ(FW_GetFqdnCount(handle, &port, nullptr, &count, &size), 0u);
  EXPECT_EQ(count, 0x201u);
  EXPECT_EQ(size, 0xff000403u);
  kernel.answer(0, Bytes({9, 9, 9, 9, 1, 2, 0, 0, 3, 4, 0, 0xff}));
  EXPECT_EQ(FW_GetUid2SidMapSize(handle, &port, nullptr, &count, &size), 0u);
  EXPECT_EQ(count, 0x201u);
  EXPECT_EQ(size, 0xff000403u);
}

TEST_F(TarnFWLibIdentity, AnEntryOfANameIsTheReplyWithGaps) {
  Bytes reply(170, 0xee);
  reply.at(0, {1, 0, 0, 0, 10, 1, 2, 3}).at(144, {2});
  put64(reply, 145, 0x0807060504030201);
  put32(reply, 161, 0x14131211);
  put32(reply.at(165, {1}), 166, 0x24232221);
  kernel.answer(0, reply);
  ASSERT_EQ(FW_GetFqdnEntriesV4(handle, &port, nullptr, address, 0, &entry), 0u);
  EXPECT_EQ(entry.address.type, 1u);
  EXPECT_EQ(entry.address.value[3], 3);
  EXPECT_EQ(entry.address.value[139], 0xee);
  EXPECT_EQ(entry.family, 2);
  EXPECT_EQ(entry.startTime, 0x0807060504030201u);
  EXPECT_EQ(entry.timeToLive, 0x14131211u);
  EXPECT_EQ(entry.infinite, 1);
  EXPECT_EQ(entry.uuidCount, 0x24232221u);
  for (const std::uint8_t gap : entry.reserved) EXPECT_EQ(gap, 0);
  for (const std::uint8_t gap : entry.reservedToo) EXPECT_EQ(gap, 0);
}

TEST_F(TarnFWLibIdentity, IdentifiersComeUpToTheRoomAndAreClosed) {
  items[2].text[0] = 'u';
  Bytes reply(2 * 1239, 0xee);
  reply.text(145, "one").at(148, {0}).text(1239 + 145, std::string(1090, 'i'));
  kernel.answer(0, reply);
  ASSERT_EQ(FW_GetUuid(handle, &port, nullptr, &address, 2, items, &count), 0u);
  EXPECT_EQ(count, 2u);
  EXPECT_STREQ(items[0].text, "one");
  EXPECT_EQ(items[1].text, std::string(1089, 'i'));
  EXPECT_EQ(items[2].text[0], 'u');
  kernel.answer(0, reply.at(145, {0}));
  ASSERT_EQ(FW_GetUuid(handle, &port, nullptr, &address, 2, items, &count), 0u);
  EXPECT_EQ(count, 0u);
}

TEST_F(TarnFWLibIdentity, StatesThatWereNotAnsweredAreCleared) {
  Bytes reply(40);
  reply.at(8, {1, 0, 0, 0, 0, 0, 0, 0, 1, 2}).at(24, {2, 0, 0, 0, 0, 0, 0, 0, 1, 3});
  for (const std::uint32_t reported : {0u, 1u, 2u, 3u, ~0u}) {
    for (FWDPIInfo_& record : records) record.id = 99;
    kernel.answer(0, put32(reply, 0, reported));
    ASSERT_EQ(FW_GetConnectionDPIInfo(handle, &port, nullptr, ids, 2, records, 3), 0u);
    EXPECT_EQ(records[0].id, reported > 0 ? 1u : 0u);
    EXPECT_EQ(records[0].state, reported > 0 ? 2u : 0u);
    EXPECT_EQ(records[1].id, reported > 1 ? 2u : 0u);
    EXPECT_EQ(records[2].id, 0u);
  }
  // Less room than was asked for.
  records[1].id = 99;
  kernel.answer(0, reply);
  ASSERT_EQ(FW_GetConnectionDPIInfo(handle, &port, nullptr, ids, 2, records, 1), 0u);
  EXPECT_EQ(records[0].id, 1u);
  EXPECT_EQ(records[1].id, 99u);
  EXPECT_EQ(FW_GetConnectionDPIInfo(handle, &port, nullptr, ids, 100, records, 0), 0u);
}

TEST_F(TarnFWLibIdentity, WhatTheKernelRefusesChangesNoResult) {
  for (const auto& call : std::vector<std::function<FWStatus_t()>>{
           [&] { return FW_DeleteFqdnTree(handle, &port, nullptr, &result); },
           [&] { return FW_GetFqdnCount(handle, &port, nullptr, &count, &size); },
           [&] { return FW_GetFqdnEntriesV4(handle, &port, nullptr, address, 0, &entry); },
           [&] { return FW_GetUuid(handle, &port, nullptr, &address, 1, items, &count); },
           [&] { return FW_GetUid2SidMapSize(handle, &port, nullptr, &count, &size); },
           [&] { return FW_GetConnectionDPIInfo(handle, &port, nullptr, ids, 1, records, 3); },
       }) {
    kernel.answer(21, Bytes(4, 0xff));
    EXPECT_EQ(call(), 21u);
    EXPECT_EQ(result, -77);
    EXPECT_EQ(count, 77u);
    EXPECT_EQ(size, 78u);
    EXPECT_EQ(entry.family, 0);
    EXPECT_EQ(items[0].text[0], '\0');
    EXPECT_EQ(records[0].id, 0u);
  }
}

TEST_F(TarnFWLibIdentity, SecurityIdentifiersAreReadAndWritten) {
  ASSERT_EQ(FW_SIDStringToBinary("s-1-5-21-1-2-3", &sid), 0u);
  EXPECT_EQ(sid.count, 4);
  EXPECT_EQ(sid.authority[5], 5);
  EXPECT_EQ(sid.subAuthorities[3], 3u);
  char text[184];
  ASSERT_EQ(FW_BinaryToSIDString(&sid, text, sizeof text), 0u);
  EXPECT_STREQ(text, "S-1-5-21-1-2-3");
  text[0] = '?';
  EXPECT_EQ(FW_BinaryToSIDString(&sid, text, 14), 9u);
  EXPECT_EQ(text[0], '?');
  EXPECT_EQ(FW_BinaryToSIDString(&sid, text, 15), 0u);

  for (const char* bad : {"", "S-2-5", "S-1", "x-1-5", "S-1-5-", "S-1-281474976710656"}) {
    EXPECT_EQ(FW_SIDStringToBinary(bad, &sid), 67u) << bad;
    EXPECT_EQ(sid.count, 4);
  }
  EXPECT_EQ(FW_SIDStringToBinary(nullptr, &sid), 3u);
  EXPECT_EQ(FW_SIDStringToBinary("S-1-5", nullptr), 3u);
  EXPECT_EQ(FW_BinaryToSIDString(nullptr, text, sizeof text), 3u);
  EXPECT_EQ(FW_BinaryToSIDString(&sid, nullptr, 184), 3u);
  EXPECT_EQ(FW_BinaryToSIDString(&sid, text, 0), 3u);
  sid.revision = 2;
  EXPECT_EQ(FW_BinaryToSIDString(&sid, text, sizeof text), 67u);

  // The longest text that there is.
  const std::string longest = "S-1-281474976710655" + [] {
    std::string subs;
    for (int i = 0; i < 15; ++i) subs += "-4294967295";
    return subs;
  }();
  ASSERT_EQ(FW_SIDStringToBinary(longest.c_str(), &sid), 0u);
  EXPECT_EQ(FW_BinaryToSIDString(&sid, text, sizeof text), 9u);
  char longer[185];
  ASSERT_EQ(FW_BinaryToSIDString(&sid, longer, sizeof longer), 0u);
  EXPECT_EQ(longer, longest);
}

TEST_F(TarnFWLibIdentity, StatesOfInspectionHaveNames) {
  EXPECT_STREQ(FW_DPIStateToString(0), "NONE");
  EXPECT_STREQ(FW_DPIStateToString(1), "PUNT");
  EXPECT_STREQ(FW_DPIStateToString(4), "UNKNOWN");
  EXPECT_STREQ(FW_DPIStateToString(~0u), "UNKNOWN");
}
