// Every command that is built, as the whole message of a request: its bytes are written here from
// the layout. A command class that is added without a row fails this test.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "CommandClasses.h"
#include "CommandMakers.h"
#include "Expect.h"
#include "FakeKernel.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWL7Attribute.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWRuleActionDrop.h"

using namespace TarnFirewall;

namespace {

/// One command and its golden request.
struct Golden {
  const char* className;
  int number;
  int type;
  const char* name;       // as logs print it
  std::uint32_t request;  // bytes of the body that really are request
  std::uint32_t filled;   // end of the last byte in them that this object sets
  std::uint32_t entries;  // where a creation's entries begin, the body's size for all others
  CommandPtr (*make)();
  Bytes body;
};

// Names that fill their fields, so that the last byte of a name is seen.
const std::string kRules = std::string(63, 'r') + 'R';
const std::string kOther = std::string(63, 'o') + 'O';
const std::string kRoot = std::string(62, 't') + 'T';  // a jump target ends with a NUL
const std::string kAddresses = std::string(37, 'a') + 'A';

constexpr unsigned int kFrom = 0x04030201;

/// A message with one command: header, envelope, body. Lengths in host order.
Bytes message(int number, const Bytes& body, int sequence) {
  Bytes bytes(32 + body.size());
  bytes.text(0, "TARN");
  put32(bytes, 4, static_cast<std::uint32_t>(12 + body.size()));  // what is behind the header
  bytes.at(8, {sequence, 0, 0, 0});
  bytes.at(12, {1, 1});  // version 1.1
  bytes.at(14, {0, 1});  // a request, to the firewall
  bytes.at(16, {1, 0});  // one command
  bytes.at(18, {0, 0});
  put32(bytes, 20, static_cast<std::uint32_t>(body.size()));
  bytes.at(24, {number, 0});
  bytes.at(26, {0, 0});        // reserved
  bytes.at(28, {0, 0, 0, 0});  // status
  std::copy(body.begin(), body.end(), bytes.begin() + 32);
  return bytes;
}

/// Where and how two byte strings differ; empty when they don't.
std::string difference(const Bytes& is, const Bytes& golden) {
  if (is.size() != golden.size()) {
    return std::to_string(is.size()) + " bytes, not " + std::to_string(golden.size());
  }
  for (std::size_t i = 0; i < is.size(); ++i) {
    if (is[i] != golden[i]) {
      return "byte " + std::to_string(i) + " is " + std::to_string(is[i]) + ", not " +
             std::to_string(golden[i]);
    }
  }
  return "";
}

CommandPtr createRuleSet() {
  CTarnFWProtocolSpecList port(FW_SPEC_DIR_DESTINATION);
  port.addSpec(std::make_unique<CTarnFWProtocolSpecL4Port>(
      static_cast<unsigned char>(2), static_cast<unsigned short>(443), false));
  auto drop = std::make_unique<CTarnFWRuleActionDrop>();
  drop->enableLogPacket();
  auto rule = std::make_unique<CTarnFWRule>(
      0x01020304, 5, FW_DIRECTION_IN, CTarnFWProtocol(true, static_cast<unsigned short>(6), false),
      CTarnFWProtocolSpecList(FW_SPEC_DIR_BOTH),
      std::make_unique<CTarnFWAddressIPv4>("10.1.2.3", true),
      CTarnFWProtocolSpecList(FW_SPEC_DIR_SOURCE), nullptr, std::move(port), std::move(drop),
      nullptr, nullptr);
  rule->setTag("seen");
  auto list = std::make_unique<CTarnFWRuleList>(false);
  list->addRule(std::move(rule));
  return std::make_unique<CTarnFWCmdCreateRuleSet>(nullptr, ruleSet(kRules), ruleSet(kOther),
                                                   std::move(list));
}

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

template <typename Class, auto... arguments>
CommandPtr ofRuleSet() {
  return std::make_unique<Class>(nullptr, ruleSet(kRules), arguments...);
}

template <typename Class, auto... arguments>
CommandPtr ofAddrSet() {
  return std::make_unique<Class>(nullptr, addrSet(kAddresses), arguments...);
}

/// The commands, by number. Offsets are those of the body.
std::vector<Golden> goldens() {
  std::vector<Golden> rows;
  rows.push_back({"CTarnFWCmdGetRuleSetCount", 1, 24, "GetRuleSetCount", 1, 0, 4,
                  plain<CTarnFWCmdGetRuleSetCount>, Bytes(4)});

  rows.push_back({"CTarnFWCmdGetRuleSetList", 2, 25, "GetRuleSetList", 8, 8, 140,
                  plain<CTarnFWCmdGetRuleSetList, 2u, kFrom>,
                  Bytes(140)                   // 12 and 64 for each of 2 names
                      .at(0, {2, 0, 0, 0})     // max
                      .at(4, {1, 2, 3, 4})});  // from

  rows.push_back(
      {"CTarnFWCmdCreateRuleSet", 3, 26, "CreateRuleSet", 144, 141, 168, createRuleSet,
       Bytes(1060)                     // 168 and 892
           .text(64, kRules)           // the jump target is not sent
           .at(136, {1, 0, 0, 0})      // rules
           .at(140, {0x03})            // flags
           .at(168 + 0, {4, 3, 2, 1})  // rule id
           .at(168 + 4, {5, 0, 0, 0})  // position
           .at(168 + 12, {1, 0, 1})    // source: IPv4, negated
           .at(168 + 16, {10, 1, 2, 3})
           .at(168 + 338, {0x0a, 0})           // destination port: direction 2, kind 1
           .at(168 + 340, {0x01, 0xbb})        // 443, high byte first
           .at(168 + 750, {2})                 // action: drop
           .at(168 + 751, {0x01, 0})           // log
           .at(168 + 790, {0xb5, 0, 0, 0x10})  // source, protocol, layer 3, in, inet by the address
           .at(168 + 794, {6, 0})              // tcp
           .text(168 + 852, "seen")            // tag
           .at(168 + 884, {1, 0, 0, 0})});     // no profile

  rows.push_back({"CTarnFWCmdSetRootRuleSet", 3, 28, "CreateRuleSet", 144, 141, 168,
                  [] {
                    return CommandPtr(std::make_unique<CTarnFWCmdSetRootRuleSet>(
                        nullptr, ruleSet(kRoot), ruleSet("l2")));
                  },
                  Bytes(1952)                           // 168 and 892 for each of 2 rules
                      .at(136, {2, 0, 0, 0})            // rules; the name at 64 is empty
                      .at(140, {0x03})                  // flags
                      .at(168 + 0, {1, 0, 0, 0})        // rule id
                      .at(168 + 4, {1, 0, 0, 0})        // position
                      .text(168 + 460, kRoot)           // jump target
                      .at(168 + 750, {4})               // action: jumpto
                      .at(168 + 790, {0x10})            // layer 3, inout, any protocol
                      .at(168 + 796, {0x01})            // stateless
                      .at(168 + 884, {1, 0, 0, 0})      // no profile
                      .at(168 + 892 + 0, {2, 0, 0, 0})  // the same for layer 2
                      .at(168 + 892 + 4, {2, 0, 0, 0})
                      .text(168 + 892 + 460, "l2")
                      .at(168 + 892 + 750, {4})
                      .at(168 + 892 + 796, {0x01})
                      .at(168 + 892 + 884, {1, 0, 0, 0})});

  rows.push_back({"CTarnFWCmdGetRootRuleSet", 4, 27, "GetRootRuleSet", 1, 0, 132,
                  plain<CTarnFWCmdGetRootRuleSet>, Bytes(132)});

  rows.push_back({"CTarnFWCmdClearRuleSet", 6, 29, "ClearRuleSet", 64, 64, 72,
                  ofRuleSet<CTarnFWCmdClearRuleSet>, Bytes(72).text(0, kRules)});

  rows.push_back({"CTarnFWCmdDestroyRuleSet", 7, 30, "DestroyRuleSet", 64, 64, 64,
                  ofRuleSet<CTarnFWCmdDestroyRuleSet>, Bytes(64).text(0, kRules)});

  rows.push_back({"CTarnFWCmdGetRuleCountOfRuleSet", 8, 31, "GetRuleCountOfRuleSet", 68, 65, 72,
                  ofRuleSet<CTarnFWCmdGetRuleCountOfRuleSet, 2u>,
                  Bytes(72).text(0, kRules).at(64, {2})});  // kind: dnat

  rows.push_back({"CTarnFWCmdGetRuleSetInfo", 9, 32, "GetRuleSetInfo", 64, 64, 84,
                  ofRuleSet<CTarnFWCmdGetRuleSetInfo>, Bytes(84).text(0, kRules)});

  rows.push_back({"CTarnFWCmdGetRuleOfRuleSet", 10, 33, "GetRuleOfRuleSet", 76, 75, 1888,
                  ofRuleSet<CTarnFWCmdGetRuleOfRuleSet, 2u, kFrom, 1u>,
                  Bytes(1888)  // 96 and 896 for each of 2 rules
                      .text(0, kRules)
                      .at(64, {2, 0, 0, 0})  // max
                      .at(68, {1, 2, 3, 4})  // from
                      .at(72, {1, 0})        // by index
                      .at(74, {1})});        // kind: snat

  rows.push_back({"CTarnFWCmdGetStatOfRuleSet", 11, 34, "GetStatOfRuleSet", 76, 75, 216,
                  ofRuleSet<CTarnFWCmdGetStatOfRuleSet, 2u, kFrom, 2u>,
                  Bytes(216)  // 80 and 68 for each of 2 rules
                      .text(0, kRules)
                      .at(64, {2, 0, 0, 0, 1, 2, 3, 4, 1, 0, 2})});

  rows.push_back({"CTarnFWCmdGetDlbOfRuleSet", 12, 35, "GetDlbOfRuleSet", 76, 75, 408,
                  ofRuleSet<CTarnFWCmdGetDlbOfRuleSet, 2u, kFrom, 3u>,
                  Bytes(408)  // 80 and 164 for each of 2 rules
                      .text(0, kRules)
                      .at(64, {2, 0, 0, 0, 1, 2, 3, 4, 1, 0, 3})});

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

  rows.push_back({"CTarnFWCmdClearRootRuleSet", 36, 59, "ClearRootRuleSet", 1, 0, 4,
                  plain<CTarnFWCmdClearRootRuleSet>, Bytes(4)});

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

  rows.push_back({"CTarnFWCmdDestroyAllRuleSet", 60, 83, "DestroyAllRuleSet", 1, 0, 4,
                  plain<CTarnFWCmdDestroyAllRuleSet>, Bytes(4)});

  rows.push_back({"CTarnFWCmdSetRuleSetJump", 61, 84, "SetRuleSetJump", 128, 128, 128,
                  [] {
                    return CommandPtr(std::make_unique<CTarnFWCmdSetRuleSetJump>(
                        nullptr, ruleSet(kRules), ruleSet(kOther)));
                  },
                  Bytes(128).text(0, kRules).text(64, kOther)});

  rows.push_back({"CTarnFWCmdGetRuleSetJump", 62, 85, "GetRuleSetJump", 64, 64, 128,
                  ofRuleSet<CTarnFWCmdGetRuleSetJump>, Bytes(128).text(0, kRules)});

  rows.push_back({"CTarnFWCmdClearRuleSetJump", 63, 86, "ClearRuleSetJump", 64, 64, 64,
                  ofRuleSet<CTarnFWCmdClearRuleSetJump>, Bytes(64).text(0, kRules)});

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

/// Commands whose classes are not built yet. Whoever builds one moves its name into the rows above.
const std::set<std::string> kLater = {
    "CTarnFWCmdGetConnectionCount",     // 23
    "CTarnFWCmdGetConnectionStat",      // 24
    "CTarnFWCmdCreateSpoofGuard",       // 25
    "CTarnFWCmdDeleteSpoofGuard",       // 26
    "CTarnFWCmdCheckSpoofGuard",        // 27
    "CTarnFWCmdGetSpoofGuardStat",      // 28
    "CTarnFWCmdGetKifStat",             // 29
    "CTarnFWCmdClearKifStat",           // 30
    "CTarnFWCmdSetFailPolicy",          // 31
    "CTarnFWCmdEnableVerbose",          // 32
    "CTarnFWCmdDebugComponent",         // 33
    "CTarnFWCmdDebugStatus",            // 34
    "CTarnFWCmdGetFailPolicy",          // 35
    "CTarnFWCmdSetConnectionByList",    // 37
    "CTarnFWCmdGetKifFlags",            // 39
    "CTarnFWCmdSetKifFlags",            // 40
    "CTarnFWCmdSetTimeout",             // 41
    "CTarnFWCmdGetTimeout",             // 42
    "CTarnFWCmdClearAllConnection",     // 43
    "CTarnFWCmdGetAlgCount",            // 47
    "CTarnFWCmdGetAlgs",                // 47
    "CTarnFWCmdGetAlgPortCount",        // 48
    "CTarnFWCmdGetAlgPorts",            // 48
    "CTarnFWCmdConfigICMPErrPktDrop",   // 49
    "CTarnFWCmdSetSkifferExportver",    // 54
    "CTarnFWCmdGetSkifferExportver",    // 55
    "CTarnFWCmdConfigTCPStrict",        // 58
    "CTarnFWCmdGetTCPStrict",           // 59
    "CTarnFWCmdSetConnectionByFilter",  // 66
    "CTarnFWCmdSetAllConnection",       // 67
    "CTarnFWCmdKifFp",                  // 68
    "CTarnFWCmdDeleteFqdnTree",         // 69
    "CTarnFWCmdGetFqdnCount",           // 70
    "CTarnFWCmdGetFqdnEntries",         // 71
    "CTarnFWCmdGetUuid",                // 72
    "CTarnFWCmdSetConnAttr",            // 73
    "CTarnFWCmdGetConnAttrInfo",        // 74
    "CTarnFWCmdAddDomain2IPMapping",    // 76
    "CTarnFWCmdGetConnectionDPIInfo",   // 77
    "CTarnFWCmdSetFloodCfg",            // 78
    "CTarnFWCmdGetFloodStat",           // 79
    "CTarnFWCmdSetUid2SidMapping",      // 80
    "CTarnFWCmdGetUid2SidMapping",      // 81
    "CTarnFWCmdGetUid2SidMappingSize",  // 82
    "CTarnFWCmdSetDnsConfigProfile",    // 83
    "CTarnFWCmdGetDnsConfigProfile",    // 84
    "CTarnFWCmdConfigL7CopyMode",       // 85
    "CTarnFWCmdGetLBConfig",            // 86
    "CTarnFWCmdGetLBConfigSize",        // 87
    "CTarnFWCmdGetLBStat",              // 88
    "CTarnFWCmdGetLBStatSize",          // 89
    "CTarnFWCmdClearLBStat",            // 90
};

/// Numbers that the kernel understands and no command object sends.
const std::set<int> kKernelsOwn = {0, 5, 38, 50, 51, 52, 53, 57, 91};

std::set<std::string> goldenClasses() {
  std::set<std::string> names;
  for (const Golden& golden : goldens()) {
    EXPECT_TRUE(names.insert(golden.className).second) << golden.className << " stands twice";
  }
  return names;
}

}  // namespace

TEST(TarnFWCmdGolden, EveryNumberHasItsGoldenBytesOrWaitsForItsClass) {
  const std::set<std::string> golden = goldenClasses();
  std::set<int> neither;
  std::set<std::string> all;
  for (int number = 0; number < kCmdCount; ++number) {
    if (kCmdCatalogue[number].forms[0].className == nullptr) neither.insert(number);
    for (const FWCmdForm_& form : kCmdCatalogue[number].forms) {
      if (form.className == nullptr) continue;
      EXPECT_TRUE(all.insert(form.className).second) << form.className;
      EXPECT_EQ(golden.count(form.className) + kLater.count(form.className), 1u)
          << number << ' ' << form.className << " stands in one of the two lists";
    }
  }
  EXPECT_EQ(neither, kKernelsOwn);
  EXPECT_EQ(all.size(), golden.size() + kLater.size()) << "a list has a class of no number";
}

TEST(TarnFWCmdGolden, EveryClassThatIsBuiltHasGoldenBytes) {
  EXPECT_EQ(goldenClasses(), builtCommandClasses());
}

TEST(TarnFWCmdGolden, EveryClassThatIsDeclaredStandsInTheCatalogue) {
  std::set<std::string> known = goldenClasses();
  // These two send nothing of their own.
  known.insert("CTarnFWCmdConfig");
  known.insert("CTarnFWCmdList");
  EXPECT_EQ(declaredCommandClasses(), known);
}

TEST(TarnFWCmdGolden, NumberNameTypeAndSizesAreTheCatalogues) {
  for (const Golden& golden : goldens()) {
    SCOPED_TRACE(golden.className);
    const CommandPtr command = golden.make();
    EXPECT_EQ(command->getCommand(), golden.number);
    EXPECT_EQ(command->getType(), golden.type);
    EXPECT_STREQ(command->cmdName(), golden.name);
    EXPECT_EQ(command->getMsgSize(), golden.body.size());

    const FWCmdRow_& row = kCmdCatalogue[golden.number];
    EXPECT_STREQ(row.name, golden.name);
    EXPECT_EQ(row.request, golden.request);
    std::uint32_t body = 0;
    for (const FWCmdForm_& form : row.forms) {
      if (form.className != nullptr && form.className == std::string(golden.className)) {
        body = form.body;
      }
    }
    EXPECT_TRUE(body == kVaries || body == golden.body.size()) << body;
  }
}

TEST(TarnFWCmdGolden, EveryMessageIsItsGoldenBytes) {
  for (const Golden& golden : goldens()) {
    SCOPED_TRACE(golden.className);
    FakeKernel kernel;
    const CommandPtr command = golden.make();
    ASSERT_EQ(executeOnce(kernel, *command), 0u);
    // A second time, since a command holds nothing of an earlier run.
    ASSERT_EQ(executeOnce(kernel, *command), 0u);
    ASSERT_EQ(kernel.messages().size(), 2u);
    EXPECT_EQ(difference(kernel.messages()[0].bytes, message(golden.number, golden.body, 0)), "");
    EXPECT_EQ(difference(kernel.messages()[1].bytes, message(golden.number, golden.body, 1)), "");
  }
}

TEST(TarnFWCmdGolden, AClassWritesWhatTheCatalogueCallsItsRequest) {
  for (const Golden& golden : goldens()) {
    SCOPED_TRACE(golden.className);
    // What a peer on a socket gets of the body holds all that the class writes before its entries.
    const Bytes body = requestOf(*golden.make());
    ASSERT_EQ(body.size(), golden.body.size());
    std::uint32_t end = golden.entries;
    while (end > 0 && body[end - 1] == 0) --end;
    EXPECT_EQ(end, golden.filled);
    EXPECT_LE(golden.filled, golden.request);
    EXPECT_LE(golden.request, golden.entries);
    EXPECT_LE(golden.entries, body.size());
  }
}
