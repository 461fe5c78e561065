// Requests and replies of the commands on identities and attributes.

#include "CommandFamily.h"
#include "SidRecord.h"
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

using namespace TarnFirewall;

namespace {

/// A connection whose every field differs, and its 40 bytes.
FWConnection_ connection() {
  FWConnection_ record{};
  for (std::uint8_t i = 0; i < 16; ++i) {
    record.sourceAddress[i] = static_cast<std::uint8_t>(0x10 + i);
    record.destinationAddress[i] = static_cast<std::uint8_t>(0x30 + i);
  }
  record.sourcePort = 0x5152;
  record.destinationPort = 0x5354;
  record.flags = 0x05;
  record.protocol = 0x61;
  return record;
}

Bytes& putConnection(Bytes& bytes, std::size_t at) {
  bytes.at(at, {0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17});
  bytes.at(at + 8, {0x18, 0x19, 0x1a, 0x1b, 0x1c, 0x1d, 0x1e, 0x1f});
  bytes.at(at + 16, {0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37});
  bytes.at(at + 24, {0x38, 0x39, 0x3a, 0x3b, 0x3c, 0x3d, 0x3e, 0x3f});
  return bytes.at(at + 32, {0x51, 0x52, 0x53, 0x54, 0x05, 0, 0, 0x61});
}

Bytes& putSid(Bytes& bytes, std::size_t at, int last) {
  return bytes.at(at + 4, {1, 2, 0, 0, 0, 0, 0, 5, 21, 0, 0, 0, last});
}

FWAddress_ address() {
  FWAddress_ record{};
  record.type = 0x0102;
  record.flags = 0x77;
  for (std::uint8_t i = 0; i < 20; ++i) record.value[i] = static_cast<std::uint8_t>(0x80 + i);
  return record;
}

CommandPtr getFqdnEntries() {
  return std::make_unique<CTarnFWCmdGetFqdnEntries>(nullptr, address(), 28);
}

CommandPtr getUuid() { return std::make_unique<CTarnFWCmdGetUuid>(nullptr, address(), 2); }

/// A TLS version and the user, added in the other order: the container sorts by key.
CommandPtr setConnAttr() {
  auto command =
      std::make_unique<CTarnFWCmdSetConnAttr>(nullptr, connection(), FWAttrOpType{0x0a0b0c0d});
  command->addAttribute(
      std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_USER_SID, std::string("S-1-5-21-7")));
  command->addAttribute(
      std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_TLS_VERSION, std::string("TLS_V12")));
  return command;
}

CommandPtr getConnAttrInfo() {
  return std::make_unique<CTarnFWCmdGetConnAttrInfo>(nullptr, connection());
}

CommandPtr addDomain2IPMapping() {
  const CTarnFWL7Attribute::Uuid uuid = {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7,
                                         0xa8, 0xa9, 0xaa, 0xab, 0xac, 0xad, 0xae, 0xaf};
  auto command = std::make_unique<CTarnFWCmdAddDomain2IPMapping>(
      nullptr, std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_FQDN, uuid, "a.b"));
  // In the order of adding, which is not that of the addresses.
  for (const char* text : {"10.1.2.3", "10.0.0.1"}) {
    command->addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, text), 100);
  }
  return command;
}

CommandPtr getConnectionDPIInfo() {
  auto command = std::make_unique<CTarnFWCmdGetConnectionDPIInfo>(nullptr);
  command->addStateID(0x0807060504030201);
  command->addStateID(0x1817161514131211);
  return command;
}

CommandPtr setUid2SidMapping() {
  auto command =
      std::make_unique<CTarnFWCmdSetUid2SidMapping>(nullptr, Uid2SidOp_t{0x0a0b0c0d}, sid(7));
  const fwattr_sid sids[] = {sid(9), sid(8)};
  command->addSid(sids, 2);
  return command;
}

/// The commands, by number. Offsets are those of the body.
std::vector<Golden> goldens() {
  std::vector<Golden> rows;
  rows.push_back({"CTarnFWCmdDeleteFqdnTree", 69, 92, "DeleteFqdnTree", 1, 0, 4,
                  plain<CTarnFWCmdDeleteFqdnTree>, Bytes(4)});

  rows.push_back({"CTarnFWCmdGetFqdnCount", 70, 93, "GetFqdnCount", 4, 0, 8,
                  plain<CTarnFWCmdGetFqdnCount>, Bytes(8)});

  rows.push_back({"CTarnFWCmdGetFqdnEntries", 71, 94, "GetFqdnEntry", 166, 145, 170, getFqdnEntries,
                  Bytes(170)
                      .at(4, {0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87})
                      .at(12, {0x88, 0x89, 0x8a, 0x8b, 0x8c, 0x8d, 0x8e, 0x8f})
                      .at(144, {28})});

  rows.push_back({"CTarnFWCmdGetUuid", 72, 95, "GetUuidEntry", 1235, 1236, 2478, getUuid,
                  Bytes(2478)
                      .at(0, {2, 1, 0x77, 0, 0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87})
                      .at(12, {0x88, 0x89, 0x8a, 0x8b, 0x8c, 0x8d, 0x8e, 0x8f})
                      .at(20, {0x90, 0x91, 0x92, 0x93})
                      .at(1235, {2, 0, 0, 0})});

  Bytes attributes(68 + 12 + 8 + 18 + 8 + 82);
  putConnection(attributes.at(4, {0x0d, 0x0c, 0x0b, 0x0a}), 8);
  attributes.at(48, {1, 0, 0, 0}).at(60, {2, 0, 0, 0, 128, 0, 0, 0});  // 2 in 128 bytes
  attributes.at(68, {2, 0, 0, 0, 2, 0, 0, 0, 116, 0, 0, 0});           // the chain's head
  attributes.at(80, {1, 0, 0, 0, 18, 0, 0, 0, 1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 3, 3});
  attributes.at(106, {1, 0, 0, 0, 82, 0, 0, 0, 9, 0, 4, 0, 82, 0, 0, 0, 0, 0});
  putSid(attributes, 124, 7);
  rows.push_back(
      {"CTarnFWCmdSetConnAttr", 73, 96, "SetConnAttr", 68, 65, 68, setConnAttr, attributes});

  Bytes info(60);
  putConnection(info.at(0, {2, 0, 0, 0}), 4);
  rows.push_back(
      {"CTarnFWCmdGetConnAttrInfo", 74, 97, "GetConnAttrInfo", 60, 44, 60, getConnAttrInfo, info});

  Bytes domain(8 + 8 + 32 + 2 * 144);
  domain.at(0, {2, 0, 0, 0, 0x48, 1, 0, 0});                         // 2 in 328 bytes
  domain.at(8, {1, 0, 0, 0, 32, 0, 0, 0, 7, 0, 3, 0, 32, 0, 0, 0});  // the domain's name
  domain.at(26, {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7});
  domain.at(34, {0xa8, 0xa9, 0xaa, 0xab, 0xac, 0xad, 0xae, 0xaf, 4, 0}).text(44, "a.b");
  domain.at(48, {1, 0, 0, 0, 10, 1, 2, 3}).at(192, {1, 0, 0, 0, 10, 0, 0, 1});
  rows.push_back({"CTarnFWCmdAddDomain2IPMapping", 76, 99, "AddDomain2IPMapping", 8, 6, 8,
                  addDomain2IPMapping, domain});

  rows.push_back({"CTarnFWCmdGetConnectionDPIInfo", 77, 100, "GetNConnDPIInfoByID", 8, 1, 8,
                  getConnectionDPIInfo,
                  Bytes(40)
                      .at(0, {2, 0, 0, 0})
                      .at(8, {1, 2, 3, 4, 5, 6, 7, 8})
                      .at(24, {0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18})});

  Bytes mapping(84 + 2 * 72);
  mapping.at(4, {0x0d, 0x0c, 0x0b, 0x0a, 2, 0, 0, 0});
  putSid(putSid(putSid(mapping, 12, 7), 84, 9), 156, 8);
  rows.push_back({"CTarnFWCmdSetUid2SidMapping", 80, 103, "SetUid2SidMapping", 84, 29, 84,
                  setUid2SidMapping, mapping});

  rows.push_back({"CTarnFWCmdGetUid2SidMapping", 81, 104, "GetUid2SidMapping", 84, 9, 84,
                  plain<CTarnFWCmdGetUid2SidMapping, kFrom, 160u>,
                  Bytes(244).at(4, {1, 2, 3, 4, 160, 0, 0, 0})});

  rows.push_back({"CTarnFWCmdGetUid2SidMappingSize", 82, 105, "GetUid2SidMappingSize", 84, 0, 84,
                  plain<CTarnFWCmdGetUid2SidMappingSize>, Bytes(84)});
  return rows;
}

std::vector<ReplyRow> replies() {
  std::vector<ReplyRow> rows;
  rows.push_back({"CTarnFWCmdDeleteFqdnTree",
                  plain<CTarnFWCmdDeleteFqdnTree>,
                  Bytes({0xfe, 0xff, 0xff, 0xff}),
                  {{4, "fqdn tree deleted return code -2\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetFqdnCount",
                  plain<CTarnFWCmdGetFqdnCount>,
                  Bytes({7, 1, 0, 0, 0xff, 0xff, 0xff, 0xff}),
                  {{4, ""}, {8, "fqdn count : 263 uuid count -1\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetFqdnEntries",
                  getFqdnEntries,
                  Bytes(170, 0xee).at(166, {9, 1, 0, 0}),
                  {{170, "domain count : 265\n"}},
                  {}});

  // The result, which must be 0, is looked at without a printer too.
  rows.push_back({"CTarnFWCmdSetConnAttr",
                  setConnAttr,
                  Bytes(196, 0xee).at(0, {0, 0, 0, 0}),
                  {{4, "", true}},
                  {}});

  rows.push_back({"CTarnFWCmdGetConnAttrInfo",
                  getConnAttrInfo,
                  Bytes(60, 0xee).at(52, {3, 1, 0, 0, 0xff, 0xff, 0xff, 0xff}),
                  {{56, "attribute count : 259\n"}, {60, "serialize size : 4294967295\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetUid2SidMappingSize",
                  plain<CTarnFWCmdGetUid2SidMappingSize>,
                  Bytes(84, 0xee).at(4, {2, 1, 0, 0, 0xff, 0xff, 0xff, 0xff}),
                  {{12, "uid2sid map size : 4294967295\nuid2sid map num entries : 258\n"}},
                  {}});

  readsNothing(rows, "CTarnFWCmdAddDomain2IPMapping", addDomain2IPMapping);
  readsNothing(rows, "CTarnFWCmdSetUid2SidMapping", setUid2SidMapping);
  return rows;
}

}  // namespace

CommandFamily identityCommands() {
  CommandFamily family;
  family.goldens = goldens();
  family.replies = replies();
  family.ownReplyTest = {"CTarnFWCmdGetUuid", "CTarnFWCmdGetConnectionDPIInfo",
                         "CTarnFWCmdGetUid2SidMapping"};
  family.cutRequest = {"CTarnFWCmdGetUuid"};
  return family;
}
