// The flat functions for attributes of connections and for domains: commands that are built in
// steps, by handles that stand for them.

#include <functional>
#include <set>
#include <thread>
#include <vector>

#include "LibraryTest.h"
#include "SidRecord.h"

using namespace TarnFirewall;

namespace {

const std::uint8_t kUuid[16] = {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7,
                                0xa8, 0xa9, 0xaa, 0xab, 0xac, 0xad, 0xae, 0xaf};

class TarnFWLibAttribute : public LibraryTest {
 protected:
  fwconnattr_* newAttributes() {
    fwconnattr_* made = nullptr;
    EXPECT_EQ(FW_CreateConnectionAttr(handle, &port, nullptr, nullptr, 7, FW_ATTR_OP_SET, &made),
              0u);
    return made;
  }

  fwdomain2ip_* newDomain(const char* name) {
    fwdomain2ip_* made = nullptr;
    EXPECT_EQ(FW_CreateDomain2IPHandle(handle, &port, nullptr, kUuid, name, &made), 0u);
    return made;
  }

  unsigned int count = 77;
  unsigned int size = 78;
};

}  // namespace

TEST_F(TarnFWLibAttribute, AConnectionIsAskedAboutByItsDescriptionOrItsId) {
  FWConnection_ connection{};
  connection.protocol = 6;
  kernel.answer(0, Bytes(60).at(52, {1, 2, 0, 0, 3, 4}));
  ASSERT_EQ(FW_GetConnAttrInfo(handle, &port, nullptr, &connection, 0x55, &count, &size), 0u);
  EXPECT_EQ(kernel.last().body(), Bytes(60).at(0, {2}).at(43, {6}));
  EXPECT_EQ(count, 0x201u);
  EXPECT_EQ(size, 0x403u);
  ASSERT_EQ(FW_GetConnAttrInfo(handle, &port, nullptr, nullptr, 0x55, &count, &size), 0u);
  EXPECT_EQ(kernel.last().body(), Bytes(60).at(44, {0x55}));
  EXPECT_STREQ(kernel.last().port->identifier, "nic-1");
  count = 77;
  kernel.answer(29);
  EXPECT_EQ(FW_GetConnAttrInfo(handle, &port, nullptr, nullptr, 0x55, &count, &size), 29u);
  EXPECT_EQ(count, 77u);
  const std::size_t sent = kernel.messages().size();
  EXPECT_EQ(FW_GetConnAttrInfo(nullptr, &port, nullptr, nullptr, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetConnAttrInfo(handle, &port, nullptr, nullptr, 0, nullptr, &size), 3u);
  EXPECT_EQ(FW_GetConnAttrInfo(handle, &port, nullptr, &connection, 0, &count, nullptr), 3u);
  EXPECT_EQ(kernel.messages().size(), sent);
}

TEST_F(TarnFWLibAttribute, EveryKindOfAttributeIsSentAsItIsAdded) {
  fwconnattr_* const command = newAttributes();
  const fwattr_sid sids[] = {sid(1), sid(2), sid(1)};
  EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_TLS_VERSION, "TLS_V12"), 0u);
  EXPECT_EQ(FW_AddAttrINT(command, FW_ATTR_KEY_TLS_VERSION, 772), 0u);
  EXPECT_EQ(FW_AddAttrUUID(command, FW_ATTR_KEY_FQDN, kUuid, "a.b"), 0u);
  EXPECT_EQ(FW_AddAttrUUID(command, FW_ATTR_KEY_CTX_PROFILE_ID, kUuid, nullptr), 0u);
  EXPECT_EQ(FW_AddAttrSID(command, sids), 0u);
  EXPECT_EQ(FW_AddAttrMultiSID(command, sids, 3), 0u) << "one that is there is dropped";
  EXPECT_EQ(FW_AddAttrMultiSID(command, sids, 0), 0u);
  EXPECT_EQ(FW_AddAttrUserSID(command, sids), 0u);
  EXPECT_EQ(FW_AddAttrProcessHash(command, 0x1817161514131211), 0u);
  EXPECT_TRUE(kernel.messages().empty());

  int context = 0;
  ASSERT_EQ(FW_SetConnectionAttr(handle, nullptr, &context, command), 0u);
  const Bytes body = kernel.last().body();
  EXPECT_EQ(kernel.last().context, &context);
  EXPECT_STREQ(kernel.last().port->identifier, "nic-1");
  // Ordered by key: 2 TLS versions, the name, 2 groups, the user, the hash, the profile.
  const std::size_t values = 26 + 26 + 40 + 90 + 90 + 90 + 26 + 36;
  ASSERT_EQ(body.size(), 80 + values);
  EXPECT_EQ(body[60], 8);
  EXPECT_EQ(body[72], 8);
  EXPECT_EQ(
      Bytes(body.begin() + 80, body.begin() + 106),
      Bytes({1, 0, 0, 0, 18, 0, 0, 0, 1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 3, 3, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(body[106 + 18], 4) << "772 is the second";
  std::size_t at = 132;
  for (const int key : {7, 8, 8, 9, 10, 11}) {
    EXPECT_EQ(body[at + 8], key) << at;
    at += 8u + body[at + 4];
  }
  EXPECT_EQ(at, body.size());

  // It may be sent again, to another filter too, and what is added later is there then.
  const dvs_port_ other = filterPort("nic-2");
  EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_TLS_VERSION, "TLS_V10"), 0u);
  kernel.answer(0, Bytes({70, 0, 0, 0}));
  EXPECT_EQ(FW_SetConnectionAttr(handle, &other, nullptr, command), 70u);
  EXPECT_STREQ(kernel.last().port->identifier, "nic-2");
  EXPECT_EQ(kernel.last().body().size(), 80 + values + 26);
  kernel.answer(0, Bytes({1, 0, 0, 0}));
  EXPECT_EQ(FW_SetConnectionAttr(handle, nullptr, nullptr, command), 19u);
  EXPECT_EQ(FW_ReleaseConnectionAttr(command), 0u);
}

TEST_F(TarnFWLibAttribute, AConnectionIsNamedByItsDescription) {
  FWConnection_ connection{};
  connection.protocol = 17;
  fwconnattr_* command = nullptr;
  ASSERT_EQ(FW_CreateConnectionAttr(handle, nullptr, nullptr, &connection, 7,
                                    static_cast<FWAttrOpType>(3), &command),
            0u);
  ASSERT_EQ(FW_SetConnectionAttr(handle, nullptr, nullptr, command), 0u);
  EXPECT_EQ(kernel.last().body(), Bytes(80).at(4, {3}).at(47, {17, 1}).at(64, {12}).at(68, {2}));
  EXPECT_FALSE(kernel.last().port.has_value());
  EXPECT_EQ(FW_ReleaseConnectionAttr(command), 0u);
}

TEST_F(TarnFWLibAttribute, AnAttributeThatIsRefusedLeavesTheCommandAsItWas) {
  fwconnattr_* const command = newAttributes();
  fwattr_sid bad = sid(3);
  bad.count = 16;
  const fwattr_sid sids[] = {sid(1), bad};
  EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_TLS_VERSION, nullptr), 3u);
  EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_NONE, "x"), 66u);
  EXPECT_EQ(FW_AddAttrSTR(command, static_cast<FWAttrKeyID>(-1), "x"), 66u);
  EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_TLS_VERSION, "TLS_V99"), 67u);
  EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_FQDN, "a.b"), 67u);
  EXPECT_EQ(FW_AddAttrINT(command, FW_ATTR_KEY_PROCESS_HASH, 1), 67u);
  EXPECT_EQ(FW_AddAttrINT(command, FW_ATTR_KEY_TLS_VERSION, 1), 67u);
  EXPECT_EQ(FW_AddAttrUUID(command, FW_ATTR_KEY_FQDN, nullptr, "a.b"), 3u);
  EXPECT_EQ(FW_AddAttrUUID(command, FW_ATTR_KEY_APP_ID, kUuid, "a.b"), 67u);
  EXPECT_EQ(FW_AddAttrUUID(command, FW_ATTR_KEY_FQDN, kUuid, std::string(70000, 'a').c_str()), 67u);
  EXPECT_EQ(FW_AddAttrSID(command, nullptr), 3u);
  EXPECT_EQ(FW_AddAttrSID(command, &bad), 67u);
  EXPECT_EQ(FW_AddAttrMultiSID(command, nullptr, 1), 3u);
  EXPECT_EQ(FW_AddAttrMultiSID(command, sids, 2), 67u);
  EXPECT_EQ(FW_AddAttrUserSID(command, nullptr), 3u);
  EXPECT_EQ(FW_AddAttrUserSID(command, &bad), 67u);
  ASSERT_EQ(FW_SetConnectionAttr(handle, nullptr, nullptr, command), 0u);
  EXPECT_EQ(kernel.last().body(), Bytes(80).at(52, {7}).at(64, {12}).at(68, {2}));
  EXPECT_EQ(FW_ReleaseConnectionAttr(command), 0u);
}

TEST_F(TarnFWLibAttribute, AHandleThatIsNullForeignOrReleasedIsRefusedEverywhere) {
  fwconnattr_* const released = newAttributes();
  fwconnattr_* const live = newAttributes();
  fwdomain2ip_* const domain = newDomain("a.b");
  ASSERT_EQ(FW_ReleaseConnectionAttr(released), 0u);
  EXPECT_EQ(FW_ReleaseConnectionAttr(released), 3u) << "a second time";
  int elsewhere = 0;
  const fwattr_sid one = sid(1);
  for (fwconnattr_* const command :
       {static_cast<fwconnattr_*>(nullptr), released, reinterpret_cast<fwconnattr_*>(&elsewhere),
        reinterpret_cast<fwconnattr_*>(domain)}) {
    EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_TLS_VERSION, "TLS_V12"), 3u);
    EXPECT_EQ(FW_AddAttrSTR(command, FW_ATTR_KEY_NONE, nullptr), 3u);
    EXPECT_EQ(FW_AddAttrINT(command, FW_ATTR_KEY_TLS_VERSION, 772), 3u);
    EXPECT_EQ(FW_AddAttrUUID(command, FW_ATTR_KEY_FQDN, kUuid, "a.b"), 3u);
    EXPECT_EQ(FW_AddAttrSID(command, &one), 3u);
    EXPECT_EQ(FW_AddAttrMultiSID(command, &one, 1), 3u);
    EXPECT_EQ(FW_AddAttrUserSID(command, &one), 3u);
    EXPECT_EQ(FW_AddAttrProcessHash(command, 1), 3u);
    EXPECT_EQ(FW_SetConnectionAttr(handle, nullptr, nullptr, command), 3u);
    EXPECT_EQ(FW_ReleaseConnectionAttr(command), 3u);
  }
  EXPECT_EQ(FW_SetConnectionAttr(nullptr, nullptr, nullptr, live), 2u);
  EXPECT_TRUE(kernel.messages().empty());
  EXPECT_EQ(FW_ReleaseConnectionAttr(live), 0u);
  EXPECT_EQ(FW_ReleaseDomain2IPHandle(domain), 0u);
}

TEST_F(TarnFWLibAttribute, ADomainIsSentWithTheAddressesOfItsSteps) {
  fwdomain2ip_* const domain = newDomain("a.b");
  const FWAddress_ first = ipv4(2);
  const FWAddress_ second = ipv4(1);
  EXPECT_EQ(FW_AddIPAddress(domain, &first, 100), 0u);
  EXPECT_EQ(FW_AddIPAddress(domain, &second, 0), 0u);
  FWAddress_ mac{};
  mac.type = FW_ADDRESS_ETHER;
  EXPECT_EQ(FW_AddIPAddress(domain, &mac, 100), 33u);
  mac.type = 0x7777;
  EXPECT_EQ(FW_AddIPAddress(domain, &mac, 100), 33u);
  EXPECT_EQ(FW_AddIPAddress(domain, nullptr, 100), 3u);
  EXPECT_TRUE(kernel.messages().empty());
  ASSERT_EQ(FW_SetDomain2IP(handle, nullptr, nullptr, domain), 0u);
  EXPECT_STREQ(kernel.last().port->identifier, "nic-1");
  const Bytes body = kernel.last().body();
  ASSERT_EQ(body.size(), 8u + 40 + 2 * 144);
  EXPECT_EQ(body[0], 2);
  EXPECT_EQ(body[48 + 7], 2);
  EXPECT_EQ(body[192 + 7], 1);
  kernel.answer(65);
  EXPECT_EQ(FW_SetDomain2IP(handle, nullptr, nullptr, domain), 65u);
  EXPECT_EQ(FW_ReleaseDomain2IPHandle(domain), 0u);

  fwdomain2ip_* const nameless = newDomain(nullptr);
  ASSERT_EQ(FW_SetDomain2IP(handle, nullptr, nullptr, nameless), 0u);
  EXPECT_EQ(kernel.last().body().size(), 8u + 36);
  EXPECT_EQ(FW_ReleaseDomain2IPHandle(nameless), 0u);
}

TEST_F(TarnFWLibAttribute, ADomainsHandleIsRefusedLikeThatOfAttributes) {
  fwdomain2ip_* const released = newDomain("a.b");
  fwconnattr_* const attributes = newAttributes();
  ASSERT_EQ(FW_ReleaseDomain2IPHandle(released), 0u);
  const FWAddress_ address = ipv4(1);
  int elsewhere = 0;
  for (fwdomain2ip_* const domain :
       {static_cast<fwdomain2ip_*>(nullptr), released, reinterpret_cast<fwdomain2ip_*>(&elsewhere),
        reinterpret_cast<fwdomain2ip_*>(attributes)}) {
    EXPECT_EQ(FW_AddIPAddress(domain, &address, 100), 3u);
    EXPECT_EQ(FW_SetDomain2IP(handle, nullptr, nullptr, domain), 3u);
    EXPECT_EQ(FW_ReleaseDomain2IPHandle(domain), 3u);
  }
  EXPECT_TRUE(kernel.messages().empty());
  EXPECT_EQ(FW_ReleaseConnectionAttr(attributes), 0u);
}

TEST_F(TarnFWLibAttribute, WhatIsNotMadeGivesNoHandle) {
  fwconnattr_* command = nullptr;
  fwdomain2ip_* domain = nullptr;
  EXPECT_EQ(FW_CreateConnectionAttr(nullptr, &port, nullptr, nullptr, 7, FW_ATTR_OP_SET, nullptr),
            2u);
  EXPECT_EQ(FW_CreateConnectionAttr(handle, &port, nullptr, nullptr, 7, FW_ATTR_OP_SET, nullptr),
            3u);
  EXPECT_EQ(FW_CreateDomain2IPHandle(nullptr, &port, nullptr, kUuid, "a.b", &domain), 2u);
  EXPECT_EQ(FW_CreateDomain2IPHandle(handle, &port, nullptr, nullptr, "a.b", &domain), 3u);
  EXPECT_EQ(FW_CreateDomain2IPHandle(handle, &port, nullptr, kUuid, "a.b", nullptr), 3u);
  EXPECT_EQ(FW_CreateDomain2IPHandle(handle, &port, nullptr, kUuid, std::string(70000, 'a').c_str(),
                                     &domain),
            67u);
  EXPECT_EQ(command, nullptr);
  EXPECT_EQ(domain, nullptr);
}

TEST_F(TarnFWLibAttribute, NoHandleIsGivenOutTwice) {
  std::set<void*> seen;
  for (int i = 0; i < 20; ++i) {
    fwconnattr_* const command = newAttributes();
    EXPECT_TRUE(seen.insert(command).second);
    EXPECT_EQ(FW_ReleaseConnectionAttr(command), 0u);
    fwdomain2ip_* const domain = newDomain("a.b");
    EXPECT_TRUE(seen.insert(domain).second);
    EXPECT_EQ(FW_ReleaseDomain2IPHandle(domain), 0u);
  }
}

TEST_F(TarnFWLibAttribute, ThreadsMakeAndReleaseTheirHandles) {
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int& failed : failures) {
    threads.emplace_back([this, &failed] {
      for (int i = 0; i < 200; ++i) {
        fwconnattr_* command = nullptr;
        failed += FW_CreateConnectionAttr(handle, &port, nullptr, nullptr, 7, FW_ATTR_OP_SET,
                                          &command) != 0;
        failed += FW_AddAttrProcessHash(command, static_cast<std::uint64_t>(i)) != 0;
        failed += FW_ReleaseConnectionAttr(command) != 0;
        failed += FW_ReleaseConnectionAttr(command) != 3;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<int>(4, 0));
}
