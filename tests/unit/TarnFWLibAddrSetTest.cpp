// The flat functions about address sets and containers: what they hand out, and what they refuse.

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "LibraryTest.h"
#include "TarnFWAddress.h"
#include "TarnFWCmdCreateContainer.h"
#include "TarnFWL7Attribute.h"

using namespace TarnFirewall;

namespace {

FWAddrSetID_t id(const std::string& name) {
  FWAddrSetID_t result{};
  name.copy(result.text, sizeof result.text);
  return result;
}

class TarnFWLibAddrSet : public LibraryTest {
 protected:
  const FWAddrSetID_t web = id("web");
};

}  // namespace

TEST_F(TarnFWLibAddrSet, RequestsWithoutResultsReachTheKernelWithSelectorAndContext) {
  int context = 0;
  const FWAddress_ address = ipv4(1);
  const std::vector<std::pair<int, std::function<FWStatus_t()>>> calls = {
      {13,
       [&] { return FW_CreateAddrSet(handle, &port, &context, &web, FW_ADDRSET_IP, &address, 1); }},
      {14, [&] { return FW_DestroyAddrSet(handle, &port, &context, &web); }},
      {65, [&] { return FW_DestroyAllAddrSet(handle, &port, &context); }},
      {64, [&] { return FW_ClearAddrSet(handle, &port, &context, &web); }},
      {44, [&] { return FW_ConfigSharedAddrSet(handle, &port, &context, 1); }},
  };
  for (const auto& [number, call] : calls) {
    EXPECT_EQ(call(), 0u) << number;
    EXPECT_EQ(command(), number);
    EXPECT_EQ(kernel.last().context, &context);
    ASSERT_TRUE(kernel.last().port.has_value());
    kernel.answer(29);
    EXPECT_EQ(call(), 29u) << number;
  }
}

TEST_F(TarnFWLibAddrSet, EveryArgumentStandsInItsPlaceOfTheRequest) {
  const FWAddress_ address = ipv4(1);
  Bytes creation(86 + 144);
  creation.text(0, "web").at(46, {1, 0, 0, 0, 1, 0, 0, 0, 144, 0, 0, 0, 3});
  creation.at(86, {1}).at(90, {10, 0, 0, 1});
  FWAddrSetID_t names[2] = {};
  FWAddrSetStat_ stats[2] = {};
  FWAddress_ addresses[2] = {};
  FWAddressValid_ valid[2] = {};
  FWAddressStat_ addressStats[2] = {};
  char* elements[3] = {};
  unsigned int n = 0;
  std::uint64_t large = 0;
  FWAddrSetCfg_ configuration{};
  configuration.name = web;
  configuration.operation = 4;
  const std::vector<std::pair<std::function<FWStatus_t()>, Bytes>> calls = {
      {[&] { return FW_CreateAddrSet(handle, &port, nullptr, &web, FW_ADDRSET_IP, &address, 1); },
       creation},
      {[&] { return FW_DestroyAddrSet(handle, &port, nullptr, &web); }, Bytes(42).text(0, "web")},
      {[&] { return FW_ClearAddrSet(handle, &port, nullptr, &web); }, Bytes(46).text(0, "web")},
      {[&] { return FW_GetAddrSetCount(handle, &port, nullptr, FW_ADDRSET_MAC, &n); },
       Bytes(8).at(0, {2})},
      {[&] { return FW_GetAddrSetList(handle, &port, nullptr, FW_ADDRSET_MAC, 2, 7, names, &n); },
       Bytes(16 + 2 * 38).at(0, {2, 0, 0, 0, 2, 0, 0, 0, 7})},
      {[&] {
         return FW_GetAddrSetStatList(handle, &port, nullptr, FW_ADDRSET_ATTRIBUTE, 2, 7, stats,
                                      &n);
       },
       Bytes(16 + 2 * 130).at(0, {4, 0, 0, 0, 2, 0, 0, 0, 7})},
      {[&] { return FW_GetAddrSetTypeAndSize(handle, &port, nullptr, &web, &n, &n, &n); },
       Bytes(50).text(0, "web")},
      {[&] { return FW_GetAddrSetInfo(handle, &port, nullptr, &web, &n, &large, &large); },
       Bytes(58).text(0, "web")},
      {[&] { return FW_GetAddressOfAddrSet(handle, &port, nullptr, &web, 2, 7, addresses, &n); },
       Bytes(70 + 2 * 144).text(0, "web").at(38, {1, 0, 0, 0, 2, 0, 0, 0, 7})},
      {[&] { return FW_GetAddrValidOfAddrSet(handle, &port, nullptr, &web, 2, 7, valid, &n); },
       Bytes(54 + 2 * 145).text(0, "web").at(42, {2, 0, 0, 0, 7})},
      {[&] {
         return FW_GetAddressStatOfAddrSet(handle, &port, nullptr, &web, 2, 7, 9, addressStats, &n);
       },
       Bytes(58 + 2 * 80).text(0, "web").at(42, {2, 0, 0, 0, 7, 0, 0, 0, 9})},
      {[&] {
         return FW_GetElementsOfContainer(handle, &port, nullptr, "box", FW_CONTAINER_ATTR_PROFILE,
                                          3, 20, elements, &n);
       },
       Bytes(70 + 20).text(0, "box").at(42, {3})},
      {[&] { return FW_ConfigSharedAddrSet(handle, &port, nullptr, 2); }, Bytes(4).at(0, {1})},
      {[&] { return FW_ConfigSharedAddrSet(handle, &port, nullptr, 0); }, Bytes(4)},
      {[&] { return FW_SetAddrSetCfg(handle, &port, nullptr, &configuration); },
       Bytes(194).at(0, {4}).text(4, "web")},
  };
  for (const auto& [call, body] : calls) {
    // A container's reply begins with its type; in the others, nothing looks at these bytes.
    const bool elementsWanted = body.size() == 90;
    if (elementsWanted) kernel.answer(0, Bytes(90).at(70, {2}));
    EXPECT_EQ(call(), 0u);
    EXPECT_EQ(kernel.last().body(), body) << "command " << command();
    ASSERT_TRUE(kernel.last().port.has_value()) << "command " << command();
    EXPECT_STREQ(kernel.last().port->identifier, "nic-1");
  }
}

TEST_F(TarnFWLibAddrSet, ANullHandleIsStatusTwoBeforeAnythingElse) {
  EXPECT_EQ(FW_CreateAddrSet(nullptr, &port, nullptr, nullptr, FW_ADDRSET_IP, nullptr, 0), 2u);
  EXPECT_EQ(FW_DestroyAddrSet(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_DestroyAllAddrSet(nullptr, &port, nullptr), 2u);
  EXPECT_EQ(FW_ClearAddrSet(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAddrSetCount(nullptr, &port, nullptr, FW_ADDRSET_ANY, nullptr), 2u);
  EXPECT_EQ(FW_GetAddrSetList(nullptr, &port, nullptr, FW_ADDRSET_ANY, 1, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAddrSetStatList(nullptr, &port, nullptr, FW_ADDRSET_ANY, 1, 0, nullptr, nullptr),
            2u);
  EXPECT_EQ(FW_GetAddrSetTypeAndSize(nullptr, &port, nullptr, &web, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAddrSetInfo(nullptr, &port, nullptr, &web, nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAddressOfAddrSet(nullptr, &port, nullptr, &web, 1, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAddrValidOfAddrSet(nullptr, &port, nullptr, &web, 1, 0, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_GetAddressStatOfAddrSet(nullptr, &port, nullptr, &web, 1, 0, 0, nullptr, nullptr),
            2u);
  EXPECT_EQ(FW_GetElementsOfContainer(nullptr, &port, nullptr, "x", FW_CONTAINER_ATTR_PROFILE, 1, 1,
                                      nullptr, nullptr),
            2u);
  EXPECT_EQ(FW_ConfigSharedAddrSet(nullptr, &port, nullptr, 1), 2u);
  EXPECT_EQ(FW_GetSharedAddrSet(nullptr, &port, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_SetAddrSetCfg(nullptr, &port, nullptr, nullptr), 2u);
}

TEST_F(TarnFWLibAddrSet, ANullArgumentIsStatusThreeAndSendsNothing) {
  unsigned int n = 0;
  std::uint64_t large = 0;
  char* elements[1] = {};
  EXPECT_EQ(FW_CreateAddrSet(handle, &port, nullptr, nullptr, FW_ADDRSET_IP, nullptr, 0), 3u);
  EXPECT_EQ(FW_CreateAddrSet(handle, &port, nullptr, &web, FW_ADDRSET_IP, nullptr, 1), 3u);
  EXPECT_EQ(FW_DestroyAddrSet(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_ClearAddrSet(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_GetAddrSetCount(handle, &port, nullptr, FW_ADDRSET_ANY, nullptr), 3u);
  EXPECT_EQ(FW_GetAddrSetList(handle, &port, nullptr, FW_ADDRSET_ANY, 1, 0, nullptr, &n), 3u);
  EXPECT_EQ(FW_GetAddrSetStatList(handle, &port, nullptr, FW_ADDRSET_ANY, 1, 0, nullptr, &n), 3u);
  EXPECT_EQ(FW_GetAddrSetTypeAndSize(handle, &port, nullptr, &web, &n, &n, nullptr), 3u);
  EXPECT_EQ(FW_GetAddrSetInfo(handle, &port, nullptr, &web, &n, &large, nullptr), 3u);
  EXPECT_EQ(FW_GetAddressOfAddrSet(handle, &port, nullptr, &web, 1, 0, nullptr, &n), 3u);
  EXPECT_EQ(FW_GetAddrValidOfAddrSet(handle, &port, nullptr, &web, 1, 0, nullptr, &n), 3u);
  EXPECT_EQ(FW_GetAddressStatOfAddrSet(handle, &port, nullptr, &web, 1, 0, 0, nullptr, &n), 3u);
  EXPECT_EQ(FW_GetElementsOfContainer(handle, &port, nullptr, nullptr, FW_CONTAINER_ATTR_PROFILE, 1,
                                      1, elements, &n),
            3u);
  EXPECT_EQ(FW_GetSharedAddrSet(handle, &port, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_SetAddrSetCfg(handle, &port, nullptr, nullptr), 3u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibAddrSet, NumbersComeBack) {
  unsigned int type = 0;
  unsigned int count = 0;
  unsigned int size = 0;
  std::uint64_t time = 0;
  std::uint64_t generation = 0;
  kernel.answer(0, Bytes(8).at(4, {5}));
  EXPECT_EQ(FW_GetAddrSetCount(handle, &port, nullptr, FW_ADDRSET_ANY, &count), 0u);
  EXPECT_EQ(count, 5u);
  kernel.answer(0, Bytes(50).at(38, {3, 0, 0, 0, 1, 0, 0, 0, 0xb0, 1}));
  EXPECT_EQ(FW_GetAddrSetTypeAndSize(handle, &port, nullptr, &web, &type, &count, &size), 0u);
  EXPECT_EQ(type, 1u);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(size, 432u);
  kernel.answer(0, Bytes(58).at(38, {7, 0, 0, 0, 8, 0, 0, 0, 0, 0, 0, 0, 9}));
  EXPECT_EQ(FW_GetAddrSetInfo(handle, &port, nullptr, &web, &count, &time, &generation), 0u);
  EXPECT_EQ(count, 7u);
  EXPECT_EQ(time, 8u);
  EXPECT_EQ(generation, 9u);
  unsigned int enabled = 77;
  kernel.answer(0, Bytes({2, 0, 0, 0}));
  EXPECT_EQ(FW_GetSharedAddrSet(handle, &port, nullptr, &enabled), 0u);
  EXPECT_EQ(enabled, 0u);
  kernel.answer(0, Bytes({3, 0, 0, 0}));
  EXPECT_EQ(FW_GetSharedAddrSet(handle, &port, nullptr, &enabled), 0u);
  EXPECT_EQ(enabled, 1u);
}

TEST_F(TarnFWLibAddrSet, RecordsComeBackUpToWhatWasAskedFor) {
  const std::string full(38, 'f');
  unsigned int returned = 0;
  FWAddrSetID_t names[2] = {};
  kernel.answer(0, Bytes(54).at(12, {9}).text(16, full));
  EXPECT_EQ(FW_GetAddrSetList(handle, &port, nullptr, FW_ADDRSET_ANY, 1, 0, names, &returned), 0u);
  EXPECT_EQ(returned, 9u) << "not one came";
  EXPECT_EQ(std::string(names[0].text), full.substr(0, 37)) << "closed with a NUL";
  EXPECT_STREQ(names[1].text, "");
  FWAddrSetStat_ stats[1] = {};
  kernel.answer(0, Bytes(146).at(12, {9}).text(16, full).at(54, {1}).at(142, {4}));
  EXPECT_EQ(FW_GetAddrSetStatList(handle, &port, nullptr, FW_ADDRSET_ANY, 1, 0, stats, &returned),
            0u);
  EXPECT_EQ(returned, 9u) << "not one came";
  EXPECT_EQ(std::string(stats[0].name.text), full.substr(0, 37));
  EXPECT_EQ(stats[0].packetsOutPass, 1u);
  EXPECT_EQ(stats[0].anchorReferences, 4u);
  FWAddress_ addresses[1] = {};
  kernel.answer(0, Bytes(214).at(50, {9}).at(70, {1}).at(74, {10, 0, 0, 1}));
  EXPECT_EQ(FW_GetAddressOfAddrSet(handle, &port, nullptr, &web, 1, 0, addresses, &returned), 0u);
  EXPECT_EQ(returned, 9u) << "not one came";
  const FWAddress_ expected = ipv4(1);
  EXPECT_EQ(std::memcmp(&addresses[0], &expected, sizeof expected), 0);
  FWAddressValid_ valid[1] = {};
  kernel.answer(0, Bytes(199).at(50, {9}).at(198, {0xa5}));
  EXPECT_EQ(FW_GetAddrValidOfAddrSet(handle, &port, nullptr, &web, 1, 0, valid, &returned), 0u);
  EXPECT_EQ(returned, 9u) << "not one came";
  EXPECT_EQ(valid[0].validCount, 0xa5);
  FWAddressStat_ addressStats[1] = {};
  kernel.answer(0, Bytes(138).at(54, {9}).at(58, {1}).at(122, {0xff, 0xff, 0xff, 0xff}));
  EXPECT_EQ(
      FW_GetAddressStatOfAddrSet(handle, &port, nullptr, &web, 1, 0, 1, addressStats, &returned),
      0u);
  EXPECT_EQ(returned, 9u) << "not one came";
  EXPECT_EQ(addressStats[0].packetsInDrop, 1u);
  EXPECT_EQ(addressStats[0].connections, -1);
  EXPECT_EQ(kernel.last().body()[50], 1) << "the clear flag";
}

TEST_F(TarnFWLibAddrSet, AnAddressOfAnUnknownTypeIsRefusedBeforeSending) {
  FWAddress_ address = ipv4(1);
  address.type = 0xeeee;
  EXPECT_EQ(FW_CreateAddrSet(handle, &port, nullptr, &web, FW_ADDRSET_IP, &address, 1), 33u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibAddrSet, ElementsComeBackAsTexts) {
  const CTarnFWL7Attribute attribute(FW_ATTR_KEY_WIN_SID, std::string("S-1-5-18"));
  CTarnFWCmdCreateContainer create(nullptr, "box", FW_CONTAINER_ATTR_PROFILE);
  EXPECT_TRUE(create.addElement(std::make_unique<CTarnFWL7Attribute>(attribute)));
  const Bytes request = requestOf(create);
  const std::size_t chain = request.size() - 86;
  Bytes reply(70 + chain);
  std::copy(request.begin() + 86, request.end(), reply.begin() + 70);
  char* elements[2] = {};
  unsigned int returned = 0;
  kernel.answer(0, reply);
  EXPECT_EQ(FW_GetElementsOfContainer(handle, &port, nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 2,
                                      static_cast<unsigned int>(chain), elements, &returned),
            0u);
  ASSERT_EQ(returned, 1u);
  EXPECT_EQ(elements[0], attribute.toString());
  std::free(elements[0]);
}

TEST_F(TarnFWLibAddrSet, AChainThatCannotBeDecodedIsAnInternalError) {
  char* elements[2] = {};
  unsigned int returned = 77;
  kernel.answer(0, Bytes(90).at(70, {2}).at(74, {1}));
  EXPECT_EQ(FW_GetElementsOfContainer(handle, &port, nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 2,
                                      20, elements, &returned),
            6u);
  EXPECT_EQ(returned, 77u);
  EXPECT_EQ(elements[0], nullptr);
  kernel.answer(0, Bytes(90).at(70, {2}));
  EXPECT_EQ(FW_GetElementsOfContainer(handle, &port, nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 2,
                                      20, elements, &returned),
            0u);
  EXPECT_EQ(returned, 0u);
  EXPECT_EQ(FW_GetElementsOfContainer(handle, &port, nullptr, std::string(38, 'n').c_str(),
                                      FW_CONTAINER_ATTR_PROFILE, 2, 20, elements, &returned),
            69u);
}

TEST_F(TarnFWLibAddrSet, AConfigurationBringsTheOldAndTheNewValueBack) {
  FWAddrSetCfg_ configuration{};
  configuration.operation = 5;
  kernel.answer(0, Bytes(194).at(0, {5}).at(186, {1, 2, 0, 0, 3, 4}));
  EXPECT_EQ(FW_SetAddrSetCfg(handle, &port, nullptr, &configuration), 0u);
  EXPECT_EQ(configuration.first, 0x201u);
  EXPECT_EQ(configuration.second, 0x403u);
}

TEST(TarnFWLibText, AddressesPrintOneAfterTheOther) {
  LogCapture log;
  const FWAddress_ addresses[2] = {ipv4(1), ipv4(2)};
  char text[64];
  EXPECT_EQ(FW_GetAddressString(addresses, 2, text, sizeof text), 0u);
  EXPECT_STREQ(text, "ip 10.0.0.1ip 10.0.0.2");
  EXPECT_EQ(FW_GetAddressString(addresses, 2, text, 23), 0u);
  EXPECT_EQ(FW_GetAddressString(addresses, 2, text, 22), 9u);
  EXPECT_STREQ(text, "ip 10.0.0.1");
}
