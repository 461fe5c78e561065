// The commands about names, users and attributes of connections: their texts, what they refuse, and
// what they print and log for every reply.

#include <gtest/gtest.h>

#include "CommandTest.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWCmdAddDomain2IPMapping.h"
#include "TarnFWCmdDeleteFqdnTree.h"
#include "TarnFWCmdGetConnAttrInfo.h"
#include "TarnFWCmdGetConnectionDPIInfo.h"
#include "TarnFWCmdGetFqdnCount.h"
#include "TarnFWCmdGetFqdnEntries.h"
#include "TarnFWCmdGetUid2SidMapping.h"
#include "TarnFWCmdGetUid2SidMappingSize.h"
#include "TarnFWCmdGetUuid.h"
#include "TarnFWCmdSetConnAttr.h"
#include "TarnFWCmdSetUid2SidMapping.h"
#include "TarnFWSid.h"

using namespace TarnFirewall;

using TarnFWCmdIdentity = CommandTest<FWAddrSetID_t>;

namespace {

fwattr_sid sid(const char* text) {
  fwattr_sid record{};
  EXPECT_TRUE(sid_str2bin(text, &record)) << text;
  return record;
}

std::unique_ptr<CTarnFWL7Attribute> tls(const char* version) {
  return std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_TLS_VERSION, std::string(version));
}

std::unique_ptr<CTarnFWL7Attribute> domain(const char* name) {
  return std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_FQDN, CTarnFWL7Attribute::Uuid{1}, name);
}

/// Where the users of a listing begin.
constexpr std::size_t kUsers = 84;

/// One user at an offset: 88 bytes and 72 for each identifier that is put there.
Bytes& putUser(Bytes& bytes, std::size_t at, int active, std::uint32_t sids,
               std::uint32_t connections, int last) {
  bytes.at(at, {active, 0xee, 0xee, 0xee});
  put32(put32(put32(bytes, at + 4, sids), at + 8, 0xeeeeeeee), at + 12, connections);
  return bytes.at(at + 20, {1, 2, 0, 0, 0, 0, 0, 5, 21, 0, 0, 0, last});
}

Bytes& putSid(Bytes& bytes, std::size_t at, int last) {
  return bytes.at(at + 4, {1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, last});
}

}  // namespace

TEST_F(TarnFWCmdIdentity, CommandsHaveTheirTexts) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdDeleteFqdnTree(&port), 69, 4, "clear fqdn of filter nic-1");
  expectIdentity(CTarnFWCmdGetFqdnCount(&port), 70, 8, "describe count of fqdn of filter nic-1");
  expectIdentity(CTarnFWCmdGetFqdnEntries(&port, FWAddress_{}, 0), 71, 170,
                 "describe fqdn of filter nic-1");
  expectIdentity(CTarnFWCmdGetUuid(&port, FWAddress_{}, 3), 72, 3717,
                 "describe uuid of fqdn of filter nic-1");
  expectIdentity(CTarnFWCmdGetConnAttrInfo(&port, std::uint64_t{1}), 74, 60,
                 "describe connattr of filter nic-1");
  expectIdentity(CTarnFWCmdGetConnectionDPIInfo(&port), 77, 8, "describe dpi of filter nic-1");
  expectIdentity(CTarnFWCmdGetUid2SidMapping(&port, 1, 16), 81, 100,
                 "describe uid2sidmap of filter nic-1");
  expectIdentity(CTarnFWCmdGetUid2SidMappingSize(&port), 82, 84,
                 "describe size of uid2sidmap of filter nic-1");
}

// --- Fully qualified names

TEST_F(TarnFWCmdIdentity, TheFamilyDecidesHowMuchOfAnAddressIsSent) {
  FWAddress_ before{};
  for (std::uint8_t i = 0; i < 140; ++i) before.value[i] = static_cast<std::uint8_t>(i + 1);
  before.type = 1;
  for (const int family : {0, 2}) {
    CTarnFWCmdGetFqdnEntries command(nullptr, before, static_cast<std::uint8_t>(family));
    EXPECT_EQ(requestOf(command), Bytes(170).at(4, {1, 2, 3, 4}).at(144, {family}));
  }
  for (const int family : {1, 3, 10, 28, 255}) {
    CTarnFWCmdGetFqdnEntries command(nullptr, before, static_cast<std::uint8_t>(family));
    EXPECT_EQ(requestOf(command),
              Bytes(170)
                  .at(4, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16})
                  .at(144, {family}));
  }
}

TEST_F(TarnFWCmdIdentity, MoreIdentifiersThanAMessageHoldsAreRefused) {
  EXPECT_EQ(CTarnFWCmdGetUuid(nullptr, FWAddress_{}, 3466478).getMsgSize(), 4294966242u);
  EXPECT_THROW_WITH(CTarnFWCmdGetUuid(nullptr, FWAddress_{}, 3466479), CIntegerOverflowException,
                    17, "number of uuids: 3466479");
  EXPECT_THROW_WITH(CTarnFWCmdGetUuid(nullptr, FWAddress_{}, ~0u), CIntegerOverflowException, 17,
                    "number of uuids: -1");
}

TEST_F(TarnFWCmdIdentity, TheNumberOfIdentifiersHasFourBytes) {
  CTarnFWCmdGetUuid command(nullptr, FWAddress_{}, 0x102);
  const Bytes request = requestOf(command);
  EXPECT_EQ(request, Bytes(0x102 * 1239).at(1235, {2, 1}));
}

TEST_F(TarnFWCmdIdentity, NoIdentifiersAskForNothing) {
  CTarnFWCmdGetUuid command(nullptr, FWAddress_{}, 0);
  EXPECT_EQ(requestOf(command), Bytes(0));
  EXPECT_EQ(printedFor(command, Bytes(0)), "uuid : EMPTY\n");
}

TEST_F(TarnFWCmdIdentity, IdentifiersEndWithTheFirstWithoutAText) {
  CTarnFWCmdGetUuid command(nullptr, FWAddress_{}, 3);
  Bytes reply(3 * 1239);
  EXPECT_EQ(printedFor(command, reply), "uuid : EMPTY\n");
  reply.text(145, "one").text(2 * 1239 + 145, "three");
  EXPECT_EQ(command.entries(CTarnFWCmdReply(reply.data(), reply.size())).size(), 1u);
  reply.text(1239 + 145, "two");
  EXPECT_EQ(command.entries(CTarnFWCmdReply(reply.data(), reply.size())).size(), 3u);
  EXPECT_EQ(printedFor(command, reply), "");
  // A reply that ends early has the whole ones only.
  for (const std::size_t size : {0u, 1238u, 1239u, 2478u, 3716u}) {
    EXPECT_EQ(command.entries(CTarnFWCmdReply(reply.data(), size)).size(), size / 1239);
  }
}

// --- Attributes of connections

TEST_F(TarnFWCmdIdentity, AConnectionWithoutAttributesSendsAnEmptyChain) {
  CTarnFWCmdSetConnAttr command(nullptr, 0x1817161514131211, FW_ATTR_OP_SET);
  expectIdentity(command, 73, 80, "set connattr with { }");
  EXPECT_EQ(
      requestOf(command),
      Bytes(80).at(52, {0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18}).at(64, {12}).at(68, {2}));
}

TEST_F(TarnFWCmdIdentity, AnAttributeThatIsThereAlreadyIsDropped) {
  CTarnFWCmdSetConnAttr command(nullptr, 1, FW_ATTR_OP_SET);
  EXPECT_TRUE(command.addAttribute(tls("TLS_V12")));
  EXPECT_FALSE(command.addAttribute(tls("TLS_V12")));
  expectIdentity(command, 73, 80 + 26, "set connattr with {TLS_VERSION : TLS_V12 }");
  EXPECT_TRUE(command.addAttribute(tls("TLS_V13")));
  EXPECT_EQ(command.getMsgSize(), 80u + 52u);
}

TEST_F(TarnFWCmdIdentity, TheResultOfAttributesIsAStatus) {
  CTarnFWCmdSetConnAttr command(nullptr, 1, FW_ATTR_OP_SET);
  FakeKernel kernel;
  kernel.answer(0, Bytes({0, 0, 0, 0, 0xff}));
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  kernel.answer(0, Bytes({70, 0, 0, 0}));
  EXPECT_EQ(executeOnce(kernel, command), 70u);
  EXPECT_TRUE(log.has(4, "missing uid to sid mapping\n"));
  for (const int result : {1, 5, 65, 69, 71, 255}) {
    kernel.answer(0, Bytes({static_cast<std::uint8_t>(result), 0, 0, 0}));
    EXPECT_EQ(executeOnce(kernel, command), 19u) << result;
  }
  kernel.answer(0, Bytes({70, 0, 0, 1}));
  EXPECT_EQ(executeOnce(kernel, command), 19u);
  EXPECT_TRUE(log.has(4, "unknown error\n"));
  EXPECT_EQ(kernel.messages().size(), 9u);
}

TEST_F(TarnFWCmdIdentity, AConnectionIsAskedAboutByItsId) {
  CTarnFWCmdGetConnAttrInfo command(nullptr, std::uint64_t{0x1817161514131211});
  EXPECT_EQ(requestOf(command), Bytes(60).at(44, {0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18}));
}

// --- Domains

TEST_F(TarnFWCmdIdentity, ADomainHasItsAddressesInTheOrderOfAdding) {
  const dvs_port_ port = filterPort("nic-1");
  CTarnFWCmdAddDomain2IPMapping command(&port, domain("a.b"));
  expectIdentity(command, 76, 48, "add domain2ip of filter nic-1 a.b with {}");
  for (const char* text : {"10.0.0.2", "10.0.0.1", "2001:db8::1"}) {
    command.addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, text), 100);
  }
  expectIdentity(command, 76, 48 + 3 * 144,
                 "add domain2ip of filter nic-1 a.b with {ip 10.0.0.2, ip 10.0.0.1, "
                 "ip 2001:db8::1}");
  const Bytes request = requestOf(command);
  EXPECT_EQ(request[0], 3);
  EXPECT_EQ(request[4], (48 + 3 * 144 - 8) % 256);
  EXPECT_EQ(request[5], (48 + 3 * 144 - 8) / 256);
}

// --- Deep inspection

TEST_F(TarnFWCmdIdentity, TheTwoBoundsOfStateIdsDifferByOne) {
  const std::vector<std::uint64_t> ids(102, 7);
  CTarnFWCmdGetConnectionDPIInfo oneByOne(nullptr);
  for (int i = 0; i < 101; ++i) EXPECT_TRUE(oneByOne.addStateID(ids[0])) << i;
  EXPECT_FALSE(oneByOne.addStateID(ids[0]));
  EXPECT_EQ(oneByOne.getMsgSize(), 8u + 101 * 16);
  EXPECT_FALSE(oneByOne.addStateID(ids.data(), 1));
  EXPECT_TRUE(oneByOne.addStateID(ids.data(), 0));

  CTarnFWCmdGetConnectionDPIInfo atOnce(nullptr);
  EXPECT_TRUE(atOnce.addStateID(nullptr, 0));
  EXPECT_FALSE(atOnce.addStateID(nullptr, 1));
  EXPECT_FALSE(atOnce.addStateID(ids.data(), 101));
  EXPECT_FALSE(atOnce.addStateID(ids.data(), ~0u));
  EXPECT_EQ(atOnce.getMsgSize(), 8u);
  EXPECT_TRUE(atOnce.addStateID(ids.data(), 100));
  EXPECT_EQ(atOnce.getMsgSize(), 8u + 100 * 16);
  EXPECT_FALSE(atOnce.addStateID(ids.data(), 2));
  EXPECT_EQ(atOnce.getMsgSize(), 8u + 100 * 16);
  EXPECT_TRUE(atOnce.addStateID(ids.data(), 1));
}

TEST_F(TarnFWCmdIdentity, StatesAreLoggedAndBoundedByTheReply) {
  CTarnFWCmdGetConnectionDPIInfo command(nullptr);
  command.addStateID(1);
  command.addStateID(2);
  Bytes reply(40);
  reply.at(8, {1, 0, 0, 0, 0, 0, 0, 0, 1, 2}).at(24, {2, 0, 0, 0, 0, 0, 0, 0, 1, 3});
  for (const std::uint32_t reported : {0u, 1u, 2u, 3u, ~0u}) {
    put32(reply, 0, reported);
    const std::uint32_t whole = std::min(reported, 2u);
    for (std::size_t size = 4; size <= reply.size(); ++size) {
      const auto fits = static_cast<std::uint32_t>(size < 8 ? 0 : (size - 8) / 16);
      EXPECT_EQ(command.records(CTarnFWCmdReply(reply.data(), size)).size(), std::min(whole, fits));
    }
    EXPECT_EQ(printedFor(command, reply), "");
  }
  EXPECT_EQ(log.lines().size(), 0u);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  command.checkCmdReply(reply.data(), 40);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 0;
  EXPECT_TRUE(log.has(7, "responded state count : -1\n"));
  for (unsigned int size = 0; size < 4; ++size) {
    // The number itself is only read for the log, or by a caller.
    EXPECT_THROW_WITH(
        command.records(CTarnFWCmdReply(reply.data(), size)), CInsufficientMsgBufException, 9,
        "expect 4 byte in message buffer, but only get " + std::to_string(size) + " bytes");
  }
}

// --- Users

TEST_F(TarnFWCmdIdentity, AMappingNamesItsUserAndItsIdentifiers) {
  const dvs_port_ port = filterPort("nic-1");
  CTarnFWCmdSetUid2SidMapping command(&port, FW_UID2SID_ADD, sid("S-1-5-21-1"));
  expectIdentity(command, 80, 84, "set uid2sidmap of filter nic-1 S-1-5-21-1 { }");
  const fwattr_sid sids[] = {sid("S-1-5-32-544"), sid("S-1-1-0")};
  command.addSid(sids, 1);
  command.addSid(sids + 1, 1);
  expectIdentity(command, 80, 84 + 144,
                 "set uid2sidmap of filter nic-1 S-1-5-21-1 { S-1-5-32-544, S-1-1-0 }");
  command.addSid(nullptr, 0);
  EXPECT_EQ(command.getMsgSize(), 84u + 144u);
  EXPECT_THROW_WITH(command.addSid(nullptr, 59652324), CIntegerOverflowException, 17,
                    "number of sids: 59652324");
  EXPECT_EQ(command.getMsgSize(), 84u + 144u);
  EXPECT_EQ(CTarnFWCmdSetUid2SidMapping(nullptr, FW_UID2SID_DELETE, sid("S-1-5-21-1")).toString(),
            "delete uid2sidmap S-1-5-21-1 { }");
}

TEST_F(TarnFWCmdIdentity, AListingThatNoMessageHoldsIsRefused) {
  EXPECT_EQ(CTarnFWCmdGetUid2SidMapping(nullptr, 1, 0xffffffff - 84).getMsgSize(), 0xffffffffu);
  for (const unsigned int size : {0xffffffffu - 83, ~0u}) {
    EXPECT_THROW(CTarnFWCmdGetUid2SidMapping(nullptr, 1, size), CIntegerOverflowException);
  }
}

TEST_F(TarnFWCmdIdentity, UsersArePrintedWithTheirIdentifiers) {
  CTarnFWCmdGetUid2SidMapping command(nullptr, 3, 88 + 144 + 88 + 88 + 72);
  Bytes reply(kUsers + 88 + 144 + 88 + 88 + 72);
  putUser(reply, kUsers, 1, 2, 3, 100);
  putSid(putSid(reply, kUsers + 88, 1), kUsers + 160, 2);
  putUser(reply, kUsers + 232, 0, 0, ~0u, 101);
  putUser(reply, kUsers + 320, 255, 1, 0, 102);
  putSid(reply, kUsers + 408, 3);
  EXPECT_EQ(printedFor(command, reply),
            "User ID : S-1-5-21-100\nStatus : Active\nNoConn : 3\n{\n  S-1-5-32-1\n"
            "  S-1-5-32-2\n}\n"
            "User ID : S-1-5-21-101\nStatus : Inactive\nNoConn : 4294967295\n{\n}\n"
            "User ID : S-1-5-21-102\nStatus : Active\nNoConn : 0\n{\n  S-1-5-32-3\n}\n");
  EXPECT_EQ(log.lines().size(), 0u);
}

TEST_F(TarnFWCmdIdentity, UsersAreReadAsFarAsTheReplyGoes) {
  // Two users with one identifier each, cut everywhere.
  const std::string first = "User ID : S-1-5-21-100\nStatus : Active\nNoConn : 3\n{\n";
  const std::string second = "User ID : S-1-5-21-101\nStatus : Inactive\nNoConn : 4\n{\n";
  CTarnFWCmdGetUid2SidMapping command(nullptr, 2, 320);
  Bytes reply(kUsers + 320);
  putSid(putUser(reply, kUsers, 1, 1, 3, 100), kUsers + 88, 1);
  putSid(putUser(reply, kUsers + 160, 0, 1, 4, 101), kUsers + 248, 2);
  for (unsigned int size = 0; size <= reply.size(); ++size) {
    std::string expected;
    if (size >= kUsers + 88)
      expected = first + (size >= kUsers + 160 ? "  S-1-5-32-1\n}\n" : "}\n");
    if (size >= kUsers + 248)
      expected += second + (size == reply.size() ? "  S-1-5-32-2\n}\n" : "}\n");
    log.clear();
    const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[size]);
    std::copy_n(reply.begin(), size, block.get());
    const Printed printed;
    command.checkCmdReply(block.get(), size);
    ASSERT_EQ(printed.text(), expected) << size;
    ASSERT_EQ(log.lines().size(), size == reply.size() ? 0u : 1u) << size;
  }
}

TEST_F(TarnFWCmdIdentity, CountsOfUsersAndIdentifiersAreBounded) {
  CTarnFWCmdGetUid2SidMapping command(nullptr, ~0u, 160);
  Bytes reply(kUsers + 160);
  putSid(putUser(reply, kUsers, 1, ~0u, 3, 100), kUsers + 88, 1);
  EXPECT_EQ(printedFor(command, reply),
            "User ID : S-1-5-21-100\nStatus : Active\nNoConn : 3\n{\n  S-1-5-32-1\n}\n");
  EXPECT_TRUE(log.has(4, "reply tells 4294967295 entries, only 1 can be read\n"));
  EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(TarnFWCmdIdentity, AUserWithoutATextEndsTheListing) {
  CTarnFWCmdGetUid2SidMapping command(nullptr, 2, 176);
  Bytes reply(kUsers + 176);
  putUser(reply, kUsers, 1, 0, 3, 100).at(kUsers + 20, {2});
  putUser(reply, kUsers + 88, 1, 0, 3, 101);
  EXPECT_EQ(printedFor(command, reply), "");
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{"3|tarnfw: TarnFWCmdGetUid2SidMapping:checkCmdReply():N "
                                     "checkCmdReply : failed to convert uid to string\n"});
}

TEST_F(TarnFWCmdIdentity, AnIdentifierWithoutATextIsLeftOut) {
  CTarnFWCmdGetUid2SidMapping command(nullptr, 1, 232);
  Bytes reply(kUsers + 232);
  putUser(reply, kUsers, 1, 2, 3, 100);
  putSid(putSid(reply, kUsers + 88, 1).at(kUsers + 93, {16}), kUsers + 160, 2);
  EXPECT_EQ(printedFor(command, reply),
            "User ID : S-1-5-21-100\nStatus : Active\nNoConn : 3\n{\n  S-1-5-32-2\n}\n");
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{"3|tarnfw: TarnFWCmdGetUid2SidMapping:checkCmdReply():N "
                                     "checkCmdReply : failed to convert sid to string\n"});
}
