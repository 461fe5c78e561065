// The commands about address sets and containers: their bodies byte by byte, what they print for a
// reply, and replies that lie.

#include <gtest/gtest.h>

#include <cstdlib>

#include "CommandTest.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWAttrProfile.h"
#include "TarnFWCmdClearAddrSet.h"
#include "TarnFWCmdConfigSharedAddrSet.h"
#include "TarnFWCmdCreateAddrSet.h"
#include "TarnFWCmdCreateContainer.h"
#include "TarnFWCmdDestroyAddrSet.h"
#include "TarnFWCmdDestroyAllAddrSet.h"
#include "TarnFWCmdGetAddrSetCount.h"
#include "TarnFWCmdGetAddrSetInfo.h"
#include "TarnFWCmdGetAddrSetList.h"
#include "TarnFWCmdGetAddrSetStatList.h"
#include "TarnFWCmdGetAddrSetTypeAndSize.h"
#include "TarnFWCmdGetAddrValidOfAddrSet.h"
#include "TarnFWCmdGetAddressOfAddrSet.h"
#include "TarnFWCmdGetAddressStatOfAddrSet.h"
#include "TarnFWCmdGetElementsOfContainer.h"
#include "TarnFWCmdGetSharedAddrSet.h"
#include "TarnFWCmdSetAddrSetCfg.h"
#include "TarnFWL7Attribute.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

using TarnFWCmdAddrSet = CommandTest<FWAddrSetID_t>;

namespace {

/// 144 bytes of an IPv4 address.
Bytes ipv4(int a, int b, int c, int d) { return Bytes(144).at(0, {1}).at(4, {a, b, c, d}); }

std::unique_ptr<CTarnFWAddressList> listOf(std::initializer_list<const char*> texts) {
  auto list = std::make_unique<CTarnFWAddressList>(false);
  for (const char* text : texts) {
    EXPECT_TRUE(list->addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, text)));
  }
  return list;
}

}  // namespace

TEST_F(TarnFWCmdAddrSet, CommandsWithAName) {
  expectCommand(CTarnFWCmdDestroyAddrSet(nullptr, id("web")), 14, "destroy addrset web",
                Bytes(42).text(0, "web"));
  expectCommand(CTarnFWCmdClearAddrSet(nullptr, id(full())), 64,
                "delete all from addrset " + full(), Bytes(46).text(0, full()));
  expectCommand(CTarnFWCmdGetAddrSetTypeAndSize(nullptr, id("web")), 15,
                "describe size of addrset web", Bytes(50).text(0, "web"));
  expectCommand(CTarnFWCmdGetAddrSetInfo(nullptr, id("web")), 16, "describe info of addrset web",
                Bytes(58).text(0, "web"));
}

TEST_F(TarnFWCmdAddrSet, CommandsOfTheWholeFilter) {
  const dvs_port_ port = filterPort("nic-1");
  expectCommand(CTarnFWCmdDestroyAllAddrSet(&port), 65, "destroy all addrset of filter nic-1",
                Bytes(4));
  expectCommand(CTarnFWCmdGetSharedAddrSet(nullptr), 45, "describe shared addrset", Bytes(4));
  expectCommand(CTarnFWCmdConfigSharedAddrSet(nullptr, true), 44, "enable shared addrset",
                Bytes(4).at(0, {1}));
  expectCommand(CTarnFWCmdConfigSharedAddrSet(nullptr, false), 44, "disable shared addrset",
                Bytes(4));
}

TEST_F(TarnFWCmdAddrSet, ACountSendsItsTypeAndTypeZeroCountsEveryKind) {
  expectCommand(CTarnFWCmdGetAddrSetCount(nullptr, FW_ADDRSET_ANY), 20, "describe count of addrset",
                Bytes(8));
  CTarnFWCmdGetAddrSetCount sids(nullptr, FW_ADDRSET_SID);
  EXPECT_EQ(requestOf(sids), Bytes(8).at(0, {5}));
  EXPECT_EQ(printedFor(sids, Bytes(8).at(4, {9, 1})), "addrset count : 265\n");
}

TEST_F(TarnFWCmdAddrSet, ListsSendTypeMaxAndFrom) {
  CTarnFWCmdGetAddrSetList names(nullptr, FW_ADDRSET_MAC, 3, 260);
  expectIdentity(names, 21, 16 + 3 * 38, "describe list of addrset from 260");
  EXPECT_EQ(requestOf(names), Bytes(130).at(0, {2}).at(4, {3, 0, 0, 0, 4, 1}));
  CTarnFWCmdGetAddrSetStatList stats(nullptr, FW_ADDRSET_ANY, 2, 0);
  expectIdentity(stats, 22, 16 + 2 * 130, "describe stat of addrset");
  EXPECT_EQ(requestOf(stats), Bytes(276).at(4, {2}));
  EXPECT_THROW_WITH(CTarnFWCmdGetAddrSetList(nullptr, FW_ADDRSET_ANY, 113025456, 0),
                    CIntegerOverflowException, 17,
                    "integer overflow for the number of addrsets: 113025456");
}

TEST_F(TarnFWCmdAddrSet, MembersAreAskedForByNameMaxAndFrom) {
  CTarnFWCmdGetAddressOfAddrSet addresses(nullptr, id("web"), 2, 260);
  expectIdentity(addresses, 17, 70 + 2 * 144, "describe address of addrset web from 260");
  EXPECT_EQ(requestOf(addresses), Bytes(358).text(0, "web").at(38, {1, 0, 0, 0, 2, 0, 0, 0, 4, 1}));
  CTarnFWCmdGetAddrValidOfAddrSet valid(nullptr, id("web"), 2, 260);
  expectIdentity(valid, 18, 54 + 2 * 145, "describe valid address of addrset web");
  EXPECT_EQ(requestOf(valid), Bytes(344).text(0, "web").at(42, {2, 0, 0, 0, 4, 1}));
  CTarnFWCmdGetAddressStatOfAddrSet stats(nullptr, id("web"), 2, 260, 1);
  expectIdentity(stats, 19, 58 + 2 * 80, "describe address stat of addrset web");
  EXPECT_EQ(requestOf(stats), Bytes(218).text(0, "web").at(42, {2, 0, 0, 0, 4, 1, 0, 0, 1}));
  EXPECT_THROW_WITH(CTarnFWCmdGetAddressOfAddrSet(nullptr, id("web"), 29826162, 0),
                    CIntegerOverflowException, 17,
                    "integer overflow for the number of addresses: 29826162");
}

TEST_F(TarnFWCmdAddrSet, PrintsTypeSizeAndInfo) {
  CTarnFWCmdGetAddrSetTypeAndSize size(nullptr, id("web"));
  EXPECT_EQ(printedFor(size, Bytes(50).at(38, {3, 0, 0, 0, 1, 0, 0, 0, 0xb0, 1})),
            "addrset type : 1\naddrset elements count : 3\naddrset serialize size : 432\n");
  CTarnFWCmdGetAddrSetInfo info(nullptr, id("web"));
  Bytes reply(58);
  put64(put64(put32(reply, 38, 3), 42, 60), 50, 9);
  EXPECT_EQ(maskTime(printedFor(info, reply), 60),
            "address count    : 3\ngeneration number: 9\nrealization time : TIME\n");
}

TEST_F(TarnFWCmdAddrSet, CountsOfAllOnesArePrintedAsTheyAre) {
  CTarnFWCmdGetAddrSetTypeAndSize size(nullptr, id("web"));
  EXPECT_EQ(printedFor(size, Bytes(50, 0xff)),
            "addrset type : -1\naddrset elements count : -1\naddrset serialize size : -1\n");
  CTarnFWCmdGetAddrSetInfo info(nullptr, id("web"));
  const std::string ones = printedFor(info, Bytes(58, 0xff));
  EXPECT_EQ(ones.substr(0, ones.find("realization")),
            "address count    : 4294967295\ngeneration number: 18446744073709551615\n");
  CTarnFWCmdGetAddrSetCount count(nullptr, FW_ADDRSET_ANY);
  EXPECT_EQ(printedFor(count, Bytes(8)), "addrset count : 0\n");
  EXPECT_EQ(printedFor(count, Bytes(8, 0xff)), "addrset count : -1\n");
}

TEST_F(TarnFWCmdAddrSet, PrintsWhetherSetsAreShared) {
  CTarnFWCmdGetSharedAddrSet command(nullptr);
  EXPECT_EQ(printedFor(command, Bytes({1, 0, 0, 0})), "shared addrset: enabled\n");
  EXPECT_EQ(printedFor(command, Bytes({2, 1, 1, 1})), "shared addrset: disabled\n");
}

TEST_F(TarnFWCmdAddrSet, PrintsTheNamesOfAList) {
  CTarnFWCmdGetAddrSetList command(nullptr, FW_ADDRSET_ANY, 2, 0);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(printedFor(command, Bytes(92).at(12, {2}).text(16, full()).text(54, "b")),
            full() + "\nb\n");
  EXPECT_TRUE(log.has(7, "retrieved 2 addrsets\n"));
}

TEST_F(TarnFWCmdAddrSet, PrintsTheStatisticsOfSets) {
  CTarnFWCmdGetAddrSetStatList command(nullptr, FW_ADDRSET_ANY, 1, 0);
  Bytes reply = Bytes(146).at(12, {1}).text(16, "web");
  // Eleven counters, 1 to 11, in the order of the record.
  for (std::uint64_t i = 0; i < 11; ++i) put64(reply, 16 + 38 + 8 * i, i + 1);
  EXPECT_EQ(printedFor(command, reply),
            "addrset web:\n"
            "    in + pass  : packets = 3                 bytes = 7               \n"
            "    in + drop  : packets = 4                 bytes = 8               \n"
            "    out + pass : packets = 1                 bytes = 5               \n"
            "    out + drop : packets = 2                 bytes = 6               \n"
            "    match = 9                 no_match = 10                uptime = 11              "
            "\n");
}

TEST_F(TarnFWCmdAddrSet, PrintsAddressesAfterTheirHeader) {
  CTarnFWCmdGetAddressOfAddrSet command(nullptr, id("web"), 2, 0);
  Bytes reply(358);
  put64(put64(put32(reply, 50, 2), 54, 60), 62, 9);
  copyTo(reply, 70, ipv4(10, 0, 0, 1));
  copyTo(reply, 214, ipv4(10, 0, 0, 2));
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  const std::string text = maskTime(printedFor(command, reply), 60);
  EXPECT_EQ(text, "# generation number: 9\n# realization time : TIME\nip 10.0.0.1\nip 10.0.0.2\n");
  EXPECT_TRUE(log.has(7, "retrieved 2 addresses of addrset web\n"));
  reply.at(70, {0xee, 0xee});
  EXPECT_EQ(maskTime(printedFor(command, reply), 60),
            "# generation number: 9\n# realization time : TIME\n");
  EXPECT_TRUE(log.has(7, "failed to convert address #0: 33\n"));
}

TEST_F(TarnFWCmdAddrSet, PrintsAddressesWithTheirValidity) {
  CTarnFWCmdGetAddrValidOfAddrSet command(nullptr, id("web"), 2, 0);
  Bytes reply(344);
  put32(reply, 50, 2);
  copyTo(reply, 54, ipv4(10, 0, 0, 1));
  copyTo(reply, 199, ipv4(10, 0, 0, 2));
  reply.at(54 + 144, {0xa5}).at(199 + 144, {1});
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(printedFor(command, reply),
            "ip 10.0.0.1  dlb_valid_cnt = 0xa5\nip 10.0.0.2  dlb_valid_cnt = 0x01\n");
  EXPECT_TRUE(log.has(7, "retrieved 2 addresses of addrset web\n"));
  reply.at(199, {0xee, 0xee});
  EXPECT_EQ(printedFor(command, reply), "ip 10.0.0.1  dlb_valid_cnt = 0xa5\n");
  EXPECT_TRUE(log.has(7, "failed to convert address #1: 33\n"));
}

TEST_F(TarnFWCmdAddrSet, StatisticsOfAddressesStayInTheBuffer) {
  CTarnFWCmdGetAddressStatOfAddrSet command(nullptr, id("web"), 2, 0, 0);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(printedFor(command, Bytes(218).at(54, {2})), "");
  EXPECT_TRUE(log.has(7, "retrieved 2 stats of addrset web\n"));
}

TEST_F(TarnFWCmdAddrSet, UntrueNumbersAreCutToWhatWasAskedFor) {
  CTarnFWCmdGetAddrSetList names(nullptr, FW_ADDRSET_ANY, 2, 0);
  CTarnFWCmdGetAddrSetStatList stats(nullptr, FW_ADDRSET_ANY, 2, 0);
  CTarnFWCmdGetAddrValidOfAddrSet valid(nullptr, id("web"), 2, 0);
  CTarnFWCmdGetAddressOfAddrSet addresses(nullptr, id("web"), 2, 0);
  for (const auto& [claimed, shown] :
       {std::pair{0u, 0}, std::pair{2u, 2}, std::pair{3u, 2}, std::pair{0xffffffffu, 2}}) {
    EXPECT_EQ(lines(printedForWord(names, 12, claimed)), shown);
    EXPECT_EQ(lines(printedForWord(stats, 12, claimed)), 6 * shown);
    // An address of type 0 is "any", which converts.
    EXPECT_EQ(lines(printedForWord(valid, 50, claimed)), shown);
    EXPECT_EQ(lines(printedForWord(addresses, 50, claimed)), 2 + shown);
  }
}

TEST_F(TarnFWCmdAddrSet, AConfigurationIsWrittenInTheKernelsOrder) {
  FWAddrSetCfg_ configuration{};
  configuration.name = id("web");
  configuration.operation = 5;
  configuration.component = 0x01020304;
  for (int i = 0; i < 16; ++i) configuration.address[i] = static_cast<std::uint8_t>(0xa0 + i);
  configuration.first = 0x11;
  configuration.second = 0x22;
  CTarnFWCmdSetAddrSetCfg command(nullptr, configuration);
  expectIdentity(command, 46, 194, "set addrset config");
  Bytes expected = Bytes(194).at(0, {5}).text(4, "web").at(42, {4, 3, 2, 1});
  for (int i = 0; i < 16; ++i) expected.at(static_cast<std::size_t>(46 + i), {0xa0 + i});
  EXPECT_EQ(requestOf(command), expected.at(186, {0x11, 0, 0, 0, 0x22}));
}

TEST_F(TarnFWCmdAddrSet, AConfigurationPrintsWhatCameOfIt) {
  FWAddrSetCfg_ configuration{};
  CTarnFWCmdSetAddrSetCfg filter(nullptr, configuration);
  const auto reply = [](int operation, int first, int second) {
    return Bytes(194).at(0, {operation}).at(186, {first, 0, 0, 0, second});
  };
  for (const int operation : {5, 6}) {
    EXPECT_EQ(printedFor(filter, reply(operation, 0x1f, 0x20)),
              "kentry valid field changed from 0x1f to 0x20\n");
  }
  EXPECT_EQ(printedFor(filter, reply(4, 1, 0)), "kif stats = enabled\n");
  EXPECT_EQ(printedFor(filter, reply(1, 2, 0)), "kif stats = disabled\n");
  EXPECT_EQ(printedFor(filter, reply(4, 0, 0)), "kif stats = unset\n");
  configuration.name = id("web");
  CTarnFWCmdSetAddrSetCfg named(nullptr, configuration);
  EXPECT_EQ(printedFor(named, reply(4, 1, 0)), "kif stats = enabled, table stats = unset");
  EXPECT_EQ(printedFor(named, reply(4, 7, 1)), "kif stats = disabled, table stats = enabled");
}

// --- Creation

TEST_F(TarnFWCmdAddrSet, ASetWithoutAddressesSendsItsHead) {
  expectCommand(CTarnFWCmdCreateAddrSet(nullptr, "web", FW_ADDRSET_IP), 13, "create addrset web",
                Bytes(86).text(0, "web").at(50, {1}).at(58, {3}));
}

TEST_F(TarnFWCmdAddrSet, ThreeAddressesTakeFourHundredAndThirtyTwoBytes) {
  CTarnFWCmdCreateAddrSet command(nullptr, id("web"), FW_ADDRSET_IP,
                                  listOf({"10.0.0.1", "10.0.0.2", "10.0.0.3"}));
  EXPECT_EQ(command.getMsgSize(), 86u + 432);
  Bytes expected(86 + 432);
  expected.text(0, "web").at(46, {3, 0, 0, 0, 1, 0, 0, 0, 0xb0, 1, 0, 0, 3});
  for (int i = 0; i < 3; ++i) {
    copyTo(expected, static_cast<std::size_t>(86 + 144 * i), ipv4(10, 0, 0, i + 1));
  }
  EXPECT_EQ(requestOf(command), expected);
  EXPECT_EQ(command.toString(), "create addrset web with {ip 10.0.0.1, ip 10.0.0.2, ip 10.0.0.3}");
}

TEST_F(TarnFWCmdAddrSet, AnIPv6AddressMarksTheFlags) {
  CTarnFWCmdCreateAddrSet command(nullptr, "web", FW_ADDRSET_IP, listOf({"2001:db8::1"}));
  EXPECT_EQ(requestOf(command)[58], 0x0b);
}

TEST_F(TarnFWCmdAddrSet, TheTypeServesTheTextOnly) {
  const dvs_port_ port = filterPort("nic-1");
  EXPECT_EQ(CTarnFWCmdCreateAddrSet(&port, "web", FW_ADDRSET_ATTRIBUTE).toString(),
            "create attrset web for filter nic-1");
  CTarnFWCmdCreateAddrSet mac(nullptr, "web", FW_ADDRSET_MAC);
  CTarnFWCmdCreateAddrSet ip(nullptr, "web", FW_ADDRSET_IP);
  EXPECT_EQ(requestOf(mac), requestOf(ip));
}

TEST_F(TarnFWCmdAddrSet, AddressesAreAddedFromTheirRecords) {
  CTarnFWCmdCreateAddrSet command(nullptr, "web", FW_ADDRSET_IP);
  EXPECT_TRUE(command.addAddress(nullptr, 0));
  const Bytes records[2] = {ipv4(10, 0, 0, 1), ipv4(10, 0, 0, 2)};
  FWAddress_ addresses[2];
  for (int i = 0; i < 2; ++i) addresses[i] = loadRecord<FWAddress_>(records[i].data());
  EXPECT_TRUE(command.addAddress(addresses, 2));
  EXPECT_EQ(command.getMsgSize(), 86u + 288);
  EXPECT_EQ(requestOf(command)[46], 2);
}

TEST_F(TarnFWCmdAddrSet, ANameFillsItsFieldAsAnIdentifierButNotAsText) {
  CTarnFWCmdCreateAddrSet command(nullptr, id(full()), FW_ADDRSET_IP);
  EXPECT_EQ(requestOf(command), Bytes(86).text(0, full()).at(50, {1}).at(58, {3}));
  EXPECT_THROW_WITH(CTarnFWCmdCreateAddrSet(nullptr, full().c_str(), FW_ADDRSET_IP),
                    CIDTooLongException, 32, "id is too long: " + full());
}

TEST_F(TarnFWCmdAddrSet, TheTransactionIdIsKeptUnlessBothFlagsComeBack) {
  FakeKernel kernel;
  CTarnFWCmdCreateAddrSet command(nullptr, "web", FW_ADDRSET_IP);
  Bytes reply(86);
  for (int i = 0; i < 16; ++i) reply.at(static_cast<std::size_t>(62 + i), {i + 1});
  kernel.answer(0, reply.at(58, {1}));
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  EXPECT_EQ(command.transactionID()[15], 16);
  kernel.answer(0, reply.at(58, {0x0b}));
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  EXPECT_EQ(command.transactionID()[15], 0);
}

TEST_F(TarnFWCmdAddrSet, AContainerSendsItsChainAfterTheHead) {
  CTarnFWCmdCreateContainer command(nullptr, "box", static_cast<FWContainerType>(7));
  expectIdentity(command, 75, 86 + 12, "create container box");
  EXPECT_EQ(requestOf(command),
            Bytes(98).text(0, "box").at(50, {7, 0, 0, 0, 12, 0, 0, 0, 3}).at(86, {7}));
}

TEST_F(TarnFWCmdAddrSet, TypeTwoIsAnAttributeProfileAndAnyOtherAPlainContainer) {
  const CTarnFWCmdCreateContainer profile(nullptr, "p", FW_CONTAINER_ATTR_PROFILE);
  EXPECT_EQ(profile.toString(), "create attrprofile p");
  const CTarnFWContainer& made = profile.container();
  EXPECT_TRUE(typeid(made) == typeid(CTarnFWAttrProfile));
  const CTarnFWCmdCreateContainer plain(nullptr, "p", FW_CONTAINER_ADDRSET);
  EXPECT_EQ(plain.toString(), "create container p");
  const CTarnFWContainer& other = plain.container();
  EXPECT_TRUE(typeid(other) == typeid(CTarnFWContainer));
}

TEST_F(TarnFWCmdAddrSet, TheTransactionIdOfAContainerIsKeptAlike) {
  FakeKernel kernel;
  CTarnFWCmdCreateContainer command(nullptr, "box", FW_CONTAINER_ATTR_PROFILE);
  Bytes reply(98);
  for (int i = 0; i < 16; ++i) reply.at(static_cast<std::size_t>(62 + i), {i + 1});
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  kernel.answer(0, reply.at(58, {2}));
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  EXPECT_EQ(command.transactionID()[15], 16);
  EXPECT_TRUE(log.has(7, "transaction id: 0x04030201, 0x08070605, 0x0c0b0a09, 0x100f0e0d\n"));
  kernel.answer(0, reply.at(58, {3}));
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  EXPECT_EQ(command.transactionID()[15], 0);
}

TEST_F(TarnFWCmdAddrSet, AContainersNameHasItsNulWithinItsField) {
  const std::string longest(37, 'n');
  CTarnFWCmdCreateContainer command(nullptr, longest, FW_CONTAINER_ADDRSET);
  EXPECT_EQ(requestOf(command)[36], 'n');
  EXPECT_EQ(requestOf(command)[37], 0);
  EXPECT_THROW(CTarnFWCmdCreateContainer(nullptr, full(), FW_CONTAINER_ADDRSET),
               CInvalidContainerNameException);
}

TEST_F(TarnFWCmdAddrSet, ATooSmallBufferForAContainerIsLogged) {
  CTarnFWCmdCreateContainer command(nullptr, "box", FW_CONTAINER_ADDRSET);
  Bytes body(97);
  unsigned int written = 0;
  EXPECT_FALSE(command.writeCmdBody(body.data(), 97, &written, 0));
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{
                "3|tarnfw: TarnFWCmdCreateContainer:writeCmdBody():N failed to write command body "
                "buffer size: 97 required size: 98\n\n"});
}

// --- Elements

TEST_F(TarnFWCmdAddrSet, ElementsAreAskedForByNameAndCount) {
  expectCommand(CTarnFWCmdGetElementsOfContainer(nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 3, 40),
                56, "describe elements of container box", Bytes(110).text(0, "box").at(42, {3}));
}

TEST_F(TarnFWCmdAddrSet, AnEmptyChainHasNoElements) {
  FakeKernel kernel;
  CTarnFWCmdGetElementsOfContainer command(nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 3, 12);
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  unsigned int count = 77;
  char* none[1] = {nullptr};
  EXPECT_TRUE(command.elementsToCharArray(none, 0, &count));
  EXPECT_EQ(count, 0u);
}

TEST_F(TarnFWCmdAddrSet, AChainWithUntrueNumbersIsRefused) {
  // The security identifier S-1-5-18 in a chain of one.
  Bytes reply(70 + 12 + 90);
  put32(put32(put32(reply, 70, 2), 74, 1), 78, 90);
  reply.at(82, {1, 0, 0, 0, 82}).at(90, {8, 0, 4, 0, 82}).at(104, {1, 1, 0, 0, 0, 0, 0, 5, 18});
  CTarnFWCmdGetElementsOfContainer command(nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 2, 102);
  const auto read = [&](const Bytes& bytes) {
    command.checkCmdReply(bytes.data(), static_cast<unsigned int>(bytes.size()));
    char* texts[2] = {};
    unsigned int count = 77;
    const bool good = command.elementsToCharArray(texts, 2, &count);
    const std::string first = texts[0] == nullptr ? "" : texts[0];
    std::free(texts[0]);
    return std::to_string(good) + " " + std::to_string(count) + " " + first;
  };
  EXPECT_EQ(read(reply), "1 1 WIN_SID : S-1-5-18");
  // The number of elements, their bytes, and the bytes of the first one.
  for (const auto& [field, value] :
       std::vector<std::pair<std::size_t, std::uint32_t>>{{74, 2},
                                                          {74, 0xffffffff},
                                                          {78, 103},
                                                          {78, 0x80000000},
                                                          {78, 0xffffffff},
                                                          {86, 0},
                                                          {86, 83},
                                                          {86, 0x80000000},
                                                          {86, 0xffffffff}}) {
    Bytes lie = reply;
    EXPECT_EQ(read(put32(lie, field, value)), "0 77 ") << field << " " << value;
  }
  Bytes none = reply;
  EXPECT_EQ(read(put32(none, 74, 0)), "1 0 ");
}

TEST_F(TarnFWCmdAddrSet, AChainThatCannotBeDecodedIsReported) {
  FakeKernel kernel;
  unsigned int count = 77;
  for (const std::uint32_t elements : {1u, 2u, 0xffffffffu}) {
    CTarnFWCmdGetElementsOfContainer command(nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 3, 12);
    Bytes reply(82);
    put32(reply, 74, elements);
    kernel.answer(0, reply);
    EXPECT_EQ(executeOnce(kernel, command), 0u);
    EXPECT_FALSE(command.elementsToCharArray(nullptr, 3, &count));
  }
  CTarnFWCmdGetElementsOfContainer none(nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 3, 0);
  EXPECT_EQ(executeOnce(kernel, none), 0u);
  EXPECT_FALSE(none.elementsToCharArray(nullptr, 3, &count));
  EXPECT_EQ(count, 77u);
  EXPECT_TRUE(log.has(3, "failed to convert tlv elements into a char array\n"));
}
