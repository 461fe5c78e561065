// Requests and replies of the commands on address sets and containers.

#include "CommandFamily.h"
#include "TarnFWAddressFactory.h"
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

using namespace TarnFirewall;

namespace {

// A name that fills its field, so that its last byte is seen.
const std::string kAddresses = std::string(37, 'a') + 'A';

CommandPtr createAddrSet() {
  auto list = std::make_unique<CTarnFWAddressList>(false);
  list->addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "10.1.2.3"));
  list->addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "2001:db8::1/64"));
  return std::make_unique<CTarnFWCmdCreateAddrSet>(nullptr, addrSet(kAddresses), FW_ADDRSET_IP,
                                                   std::move(list));
}

CommandPtr createContainer() {
  auto command =
      std::make_unique<CTarnFWCmdCreateContainer>(nullptr, "box", FW_CONTAINER_ATTR_PROFILE);
  EXPECT_TRUE(command->addElement(
      std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_TLS_VERSION, std::string("TLS_V12"))));
  return command;
}

CommandPtr setAddrSetCfg() {
  FWAddrSetCfg_ configuration{};
  configuration.name = addrSet(kAddresses);
  configuration.operation = 0x14131211;
  configuration.component = 0x24232221;
  for (std::uint8_t i = 0; i < 16; ++i) {
    configuration.address[i] = static_cast<std::uint8_t>(0xa0 + i);
  }
  configuration.first = 0x34333231;
  configuration.second = 0x44434241;
  return std::make_unique<CTarnFWCmdSetAddrSetCfg>(nullptr, configuration);
}

CommandPtr addrSetConfiguration(const std::string& name) {
  FWAddrSetCfg_ configuration{};
  configuration.name = addrSet(name);
  return std::make_unique<CTarnFWCmdSetAddrSetCfg>(nullptr, configuration);
}

template <typename Class, auto... arguments>
CommandPtr ofAddrSet() {
  return std::make_unique<Class>(nullptr, addrSet(kAddresses), arguments...);
}

template <typename Class, auto... arguments>
CommandPtr ofWeb() {
  return std::make_unique<Class>(nullptr, addrSet("web"), arguments...);
}

std::string statLine(int first) {
  std::string text = "addrset " + std::string(1, static_cast<char>('a' + first)) + ":\n";
  for (const char* const way : {"in + pass  :", "in + drop  :", "out + pass :", "out + drop :"}) {
    text += std::string("    ") + way + " packets = 0                 bytes = 0               \n";
  }
  return text +
         "    match = 0                 no_match = 0                 uptime = 0               \n";
}

/// The commands, by number. Offsets are those of the body.
std::vector<Golden> goldens() {
  std::vector<Golden> rows;
  rows.push_back({"CTarnFWCmdCreateAddrSet", 13, 36, "CreateAddrSet", 62, 59, 86, createAddrSet,
                  Bytes(374)  // 86 and 144 for each of 2 addresses
                      .text(0, kAddresses)
                      .at(46, {2, 0, 0, 0})        // addresses
                      .at(50, {1, 0, 0, 0})        // an address set
                      .at(54, {0x20, 0x01, 0, 0})  // 288 bytes of addresses
                      .at(58, {0x0b})              // flags, IPv6 among the addresses
                      .at(86, {1, 0, 0})           // IPv4
                      .at(90, {10, 1, 2, 3})
                      .at(230, {6, 0, 0})              // IPv6 with a prefix
                      .at(234, {0x20, 1, 0x0d, 0xb8})  // the address under its mask
                      .at(250, {64})});                // length of the prefix

  rows.push_back({"CTarnFWCmdDestroyAddrSet", 14, 37, "DestroyAddrSet", 38, 38, 42,
                  ofAddrSet<CTarnFWCmdDestroyAddrSet>, Bytes(42).text(0, kAddresses)});

  rows.push_back({"CTarnFWCmdGetAddrSetTypeAndSize", 15, 38, "GetAddrSetTypeAndSize", 38, 38, 50,
                  ofAddrSet<CTarnFWCmdGetAddrSetTypeAndSize>, Bytes(50).text(0, kAddresses)});

  rows.push_back({"CTarnFWCmdGetAddrSetInfo", 16, 39, "GetAddrSetInfo", 38, 38, 58,
                  ofAddrSet<CTarnFWCmdGetAddrSetInfo>, Bytes(58).text(0, kAddresses)});

  rows.push_back({"CTarnFWCmdGetAddressOfAddrSet", 17, 40, "GetAddressOfAddrSet", 50, 50, 358,
                  ofAddrSet<CTarnFWCmdGetAddressOfAddrSet, 2u, kFrom>,
                  Bytes(358)  // 70 and 144 for each of 2 addresses
                      .text(0, kAddresses)
                      .at(38, {1, 0, 0, 0})     // form
                      .at(42, {2, 0, 0, 0})     // max
                      .at(46, {1, 2, 3, 4})});  // from

  rows.push_back({"CTarnFWCmdGetAddrValidOfAddrSet", 18, 41, "GetAddrValidOfAddrSet", 54, 50, 344,
                  ofAddrSet<CTarnFWCmdGetAddrValidOfAddrSet, 2u, kFrom>,
                  Bytes(344)  // 54 and 145 for each of 2 addresses
                      .text(0, kAddresses)
                      .at(38, {0, 0, 0, 0, 2, 0, 0, 0, 1, 2, 3, 4})});

  rows.push_back({"CTarnFWCmdGetAddressStatOfAddrSet", 19, 42, "GetAddressStatOfAddrSet", 54, 54,
                  218, ofAddrSet<CTarnFWCmdGetAddressStatOfAddrSet, 2u, kFrom, 0x08070605u>,
                  Bytes(218)  // 58 and 80 for each of 2 addresses
                      .text(0, kAddresses)
                      .at(38, {0, 0, 0, 0, 2, 0, 0, 0, 1, 2, 3, 4})
                      .at(50, {5, 6, 7, 8})});  // whether to clear

  rows.push_back({"CTarnFWCmdGetAddrSetCount", 20, 43, "GetAddrSetCount", 4, 1, 8,
                  plain<CTarnFWCmdGetAddrSetCount, FW_ADDRSET_SID>, Bytes(8).at(0, {5})});  // type

  rows.push_back({"CTarnFWCmdGetAddrSetList", 21, 44, "GetAddrSetList", 12, 12, 92,
                  plain<CTarnFWCmdGetAddrSetList, FW_ADDRSET_MAC, 2u, kFrom>,
                  Bytes(92)                    // 16 and 38 for each of 2 names
                      .at(0, {2})              // type
                      .at(4, {2, 0, 0, 0})     // max
                      .at(8, {1, 2, 3, 4})});  // from

  rows.push_back({"CTarnFWCmdGetAddrSetStatList", 22, 45, "GetAddrSetStatList", 12, 12, 276,
                  plain<CTarnFWCmdGetAddrSetStatList, FW_ADDRSET_ATTRIBUTE, 2u, kFrom>,
                  Bytes(276)  // 16 and 130 for each of 2 sets
                      .at(0, {4, 0, 0, 0, 2, 0, 0, 0, 1, 2, 3, 4})});

  rows.push_back({"CTarnFWCmdConfigSharedAddrSet", 44, 67, "ConfigSharedAddrSet", 4, 1, 4,
                  plain<CTarnFWCmdConfigSharedAddrSet, true>, Bytes({1, 0, 0, 0})});

  rows.push_back({"CTarnFWCmdGetSharedAddrSet", 45, 68, "GetSharedAddrSet", 4, 0, 4,
                  plain<CTarnFWCmdGetSharedAddrSet>, Bytes(4)});

  rows.push_back({"CTarnFWCmdSetAddrSetCfg", 46, 69, "SetAddrSetCfg", 194, 194, 194, setAddrSetCfg,
                  Bytes(194)
                      .at(0, {0x11, 0x12, 0x13, 0x14})  // operation
                      .text(4, kAddresses)
                      .at(42, {0x21, 0x22, 0x23, 0x24})  // component
                      .at(46, {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7})
                      .at(54, {0xa8, 0xa9, 0xaa, 0xab, 0xac, 0xad, 0xae, 0xaf})
                      .at(186, {0x31, 0x32, 0x33, 0x34})     // first value
                      .at(190, {0x41, 0x42, 0x43, 0x44})});  // second value

  rows.push_back({"CTarnFWCmdGetElementsOfContainer", 56, 79, "GetElementsOfContainer", 50, 46, 90,
                  [] {
                    return CommandPtr(std::make_unique<CTarnFWCmdGetElementsOfContainer>(
                        nullptr, std::string(37, 'n'), FW_CONTAINER_ATTR_PROFILE, kFrom, 20));
                  },
                  Bytes(90)                           // 70 and the 20 of the buffer
                      .text(0, std::string(37, 'n'))  // and its NUL
                      .at(42, {1, 2, 3, 4})});        // elements asked for

  rows.push_back({"CTarnFWCmdClearAddrSet", 64, 87, "ClearAddrSet", 38, 38, 46,
                  ofAddrSet<CTarnFWCmdClearAddrSet>, Bytes(46).text(0, kAddresses)});

  rows.push_back({"CTarnFWCmdDestroyAllAddrSet", 65, 88, "DestroyAllAddrSet", 1, 0, 4,
                  plain<CTarnFWCmdDestroyAllAddrSet>, Bytes(4)});

  rows.push_back({"CTarnFWCmdCreateContainer", 75, 98, "CreateAddrSet", 62, 59, 86, createContainer,
                  Bytes(124)  // 86, 12 of the chain's head, 26 of its element
                      .text(0, "box")
                      .at(46, {1, 0, 0, 0})                  // elements
                      .at(50, {2, 0, 0, 0})                  // an attribute profile
                      .at(54, {38, 0, 0, 0})                 // bytes of the chain
                      .at(58, {0x03})                        // flags
                      .at(86, {2, 0, 0, 0, 1, 0, 0, 0})      // chain: type, elements
                      .at(94, {26, 0, 0, 0})                 // bytes of its elements
                      .at(98, {1, 0, 0, 0, 18, 0, 0, 0})     // element: an attribute, 18 bytes
                      .at(106, {1, 0, 2, 0})                 // TLS version, an encoded number
                      .at(110, {18, 0, 0, 0, 0, 0})          // bytes of the attribute
                      .at(116, {3, 3, 0, 0, 0, 0, 0, 0})});  // TLS 1.2
  return rows;
}

std::vector<ReplyRow> replies() {
  std::vector<ReplyRow> rows;
  rows.push_back({"CTarnFWCmdGetAddrSetTypeAndSize",
                  ofWeb<CTarnFWCmdGetAddrSetTypeAndSize>,
                  Bytes(50).at(38, {3, 0, 0, 0, 1, 0, 0, 0, 0xb0, 1}),
                  {{46, "addrset type : 1\n"},
                   {42, "addrset elements count : 3\n"},
                   {50, "addrset serialize size : 432\n"}},
                  {}});

  Bytes info = Bytes(58).at(38, {3});
  rows.push_back({"CTarnFWCmdGetAddrSetInfo",
                  ofWeb<CTarnFWCmdGetAddrSetInfo>,
                  at(info, 50, 42),
                  {{42, "address count    : 3\n"}, {58, "generation number: 42\n"}, {50, kTime}},
                  {}});

  Bytes addresses = Bytes(358).at(50, {2}).at(70, {1, 0, 0, 0, 10, 0, 0, 1}).at(214, {1, 0, 1, 0});
  rows.push_back({"CTarnFWCmdGetAddressOfAddrSet",
                  ofWeb<CTarnFWCmdGetAddressOfAddrSet, 2u, 0u>,
                  at(addresses, 62, 54),
                  {{54, "", true}, {70, "# generation number: 42\n"}, {62, kHashTime}},
                  {70, 144, {"ip 10.0.0.1\n", "not ip 0.0.0.0\n"}, "addresses of addrset web"}});

  rows.push_back(
      {"CTarnFWCmdGetAddrValidOfAddrSet",
       ofWeb<CTarnFWCmdGetAddrValidOfAddrSet, 2u, 0u>,
       Bytes(344).at(50, {2}).at(54, {1, 0, 0, 0, 10, 0, 0, 1}).at(198, {0xa5}).at(343, {1}),
       {{54, "", true}},
       {54,
        145,
        {"ip 10.0.0.1  dlb_valid_cnt = 0xa5\n", "any  dlb_valid_cnt = 0x01\n"},
        "addresses of addrset web"}});

  rows.push_back({"CTarnFWCmdGetAddressStatOfAddrSet",
                  ofWeb<CTarnFWCmdGetAddressStatOfAddrSet, 2u, 0u, 0u>,
                  Bytes(218).at(54, {2}),
                  {{58, "", true}},
                  {58, 80, {"", ""}, "stats of addrset web"}});

  rows.push_back({"CTarnFWCmdGetAddrSetCount",
                  plain<CTarnFWCmdGetAddrSetCount, FW_ADDRSET_ANY>,
                  Bytes(8).at(4, {9, 1}),
                  {{8, "addrset count : 265\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetAddrSetList",
                  plain<CTarnFWCmdGetAddrSetList, FW_ADDRSET_ANY, 2u, 0u>,
                  Bytes(92).at(12, {2}).text(16, std::string(38, 'f')).text(54, "b"),
                  {{16, "", true}},
                  {16, 38, {std::string(38, 'f') + "\n", "b\n"}, "addrsets"}});

  rows.push_back({"CTarnFWCmdGetAddrSetStatList",
                  plain<CTarnFWCmdGetAddrSetStatList, FW_ADDRSET_ANY, 2u, 0u>,
                  Bytes(276).at(12, {2}).text(16, "a").text(146, "b"),
                  {{16, "", true}},
                  {16, 130, {statLine(0), statLine(1)}, ""}});

  rows.push_back({"CTarnFWCmdGetSharedAddrSet",
                  plain<CTarnFWCmdGetSharedAddrSet>,
                  Bytes({1, 0, 0, 0}),
                  {{1, "shared addrset: enabled\n"}},
                  {}});

  // The values are read together, whatever of them is printed.
  const Bytes values = Bytes(194).at(186, {1, 0, 0, 0, 2});
  rows.push_back({"CTarnFWCmdSetAddrSetCfg",
                  [] { return addrSetConfiguration(""); },
                  Bytes(values).at(0, {5}),
                  {{4, ""}, {190, ""}, {194, "kentry valid field changed from 0x1 to 0x2\n"}},
                  {}});
  rows.push_back({"CTarnFWCmdSetAddrSetCfg",
                  [] { return addrSetConfiguration(""); },
                  Bytes(values).at(0, {4}),
                  {{4, ""}, {190, ""}, {194, "kif stats = enabled\n"}},
                  {}});
  rows.push_back({"CTarnFWCmdSetAddrSetCfg",
                  [] { return addrSetConfiguration("web"); },
                  Bytes(values).at(0, {4}),
                  {{4, ""}, {190, ""}, {194, "kif stats = enabled, table stats = disabled"}},
                  {}});

  readsNothing(rows, "CTarnFWCmdDestroyAddrSet", ofWeb<CTarnFWCmdDestroyAddrSet>);
  readsNothing(rows, "CTarnFWCmdConfigSharedAddrSet", plain<CTarnFWCmdConfigSharedAddrSet, true>);
  readsNothing(rows, "CTarnFWCmdClearAddrSet", ofWeb<CTarnFWCmdClearAddrSet>);
  readsNothing(rows, "CTarnFWCmdDestroyAllAddrSet", plain<CTarnFWCmdDestroyAllAddrSet>);
  return rows;
}

std::vector<Creation> creations() {
  return {
      {"CTarnFWCmdCreateAddrSet",
       [] { return std::make_unique<CTarnFWCmdCreateAddrSet>(nullptr, "web", FW_ADDRSET_IP); }, 58,
       62},
      {"CTarnFWCmdCreateContainer",
       [] {
         return std::make_unique<CTarnFWCmdCreateContainer>(nullptr, "web",
                                                            FW_CONTAINER_ATTR_PROFILE);
       },
       58, 62},
  };
}

}  // namespace

CommandFamily addrSetCommands() {
  return {.goldens = goldens(),
          .replies = replies(),
          .creations = creations(),
          .ownReplyTest = {"CTarnFWCmdGetElementsOfContainer"},
          .later = {}};
}
