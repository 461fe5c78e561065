// Requests and replies of the commands on settings.

#include "CommandFamily.h"
#include "TarnFWAddrSetID.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWAddressList.h"
#include "TarnFWCmdCheckSpoofGuard.h"
#include "TarnFWCmdClearKifStat.h"
#include "TarnFWCmdConfigICMPErrPktDrop.h"
#include "TarnFWCmdConfigTCPStrict.h"
#include "TarnFWCmdCreateSpoofGuard.h"
#include "TarnFWCmdDebugComponent.h"
#include "TarnFWCmdDebugStatus.h"
#include "TarnFWCmdDeleteSpoofGuard.h"
#include "TarnFWCmdEnableVerbose.h"
#include "TarnFWCmdGetFailPolicy.h"
#include "TarnFWCmdGetFloodStat.h"
#include "TarnFWCmdGetKifFlags.h"
#include "TarnFWCmdGetKifStat.h"
#include "TarnFWCmdGetSkifferExportver.h"
#include "TarnFWCmdGetSpoofGuardStat.h"
#include "TarnFWCmdGetTCPStrict.h"
#include "TarnFWCmdGetTimeout.h"
#include "TarnFWCmdKifFp.h"
#include "TarnFWCmdSetFailPolicy.h"
#include "TarnFWCmdSetFloodCfg.h"
#include "TarnFWCmdSetKifFlags.h"
#include "TarnFWCmdSetSkifferExportver.h"
#include "TarnFWCmdSetTimeout.h"

using namespace TarnFirewall;

namespace {

constexpr fw_ether_ kMac{{0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5}};

CommandPtr createSpoofGuard() {
  auto list = std::make_unique<CTarnFWAddressList>(false);
  list->addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "10.1.2.3"));
  list->addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "2001:db8::1/64"));
  return std::make_unique<CTarnFWCmdCreateSpoofGuard>(nullptr, std::move(list),
                                                      CTarnFWAddressEther(kMac, false));
}

CommandPtr deleteSpoofGuard() {
  const CTarnFWAddressEther mac(kMac, false);
  return std::make_unique<CTarnFWCmdDeleteSpoofGuard>(nullptr, &mac);
}

CommandPtr setKifFlag() {
  return std::make_unique<CTarnFWCmdSetKifFlags>(nullptr, std::string(45, 'k').c_str(), 0x105);
}

/// A record of timeouts whose ends are seen.
FWInstTimeout_ timeouts() {
  FWInstTimeout_ record{};
  record.values[0] = 0x14131211;
  record.values[21] = 0x24232221;
  record.marks[0] = 1;
  record.marks[21] = 0xff;
  record.reserved[1] = 0x31;
  return record;
}

Bytes timeoutBody() {
  return Bytes(112)
      .at(0, {0x11, 0x12, 0x13, 0x14})
      .at(84, {0x21, 0x22, 0x23, 0x24})
      .at(88, {1})
      .at(109, {0xff})
      .at(111, {0x31});
}

CommandPtr setFloodCfg() {
  FWFloodCfg_ configuration;
  configuration.udpLimit = 1;
  configuration.icmpLimit = 2;
  configuration.tcpLimit = 3;
  configuration.otherLimit = 4;
  configuration.syncache = 5;
  configuration.hashSize = 6;
  configuration.reserved = -1;
  configuration.rstSpoofing = 8;
  configuration.zeroCounters = 0x44434241;
  return std::make_unique<CTarnFWCmdSetFloodCfg>(nullptr, configuration);
}

CommandPtr getFloodStat() {
  FWFloodStat_ stat{};
  stat.zeroCounters = 1;
  stat.rowSize = 24;
  stat.rowCount = 512;
  stat.rows[511].notFound = 0x1817161514131211;
  return std::make_unique<CTarnFWCmdGetFloodStat>(nullptr, stat);
}

/// The commands, by number. Offsets are those of the body.
std::vector<Golden> goldens() {
  std::vector<Golden> rows;
  rows.push_back({"CTarnFWCmdCreateSpoofGuard", 25, 48, "CreateSpoofGuard", 156, 20, 156,
                  createSpoofGuard,
                  Bytes(300)  // 12 and 144 for each of 2 addresses
                      .at(0, {0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5})
                      .at(8, {2, 0, 0, 0})
                      .at(12, {1, 0, 0})  // IPv4
                      .at(16, {10, 1, 2, 3})
                      .at(156, {6, 0, 0})              // IPv6 with a prefix
                      .at(160, {0x20, 1, 0x0d, 0xb8})  // the address under its mask
                      .at(176, {64})});                // length of the prefix

  rows.push_back({"CTarnFWCmdDeleteSpoofGuard", 26, 49, "DeleteSpoofGuard", 8, 6, 8,
                  deleteSpoofGuard, Bytes({0xa0, 0xa1, 0xa2, 0xa3, 0xa4, 0xa5, 0, 0})});

  rows.push_back({"CTarnFWCmdCheckSpoofGuard", 27, 50, "CheckSpoofGuard", 1, 9, 147468,
                  plain<CTarnFWCmdCheckSpoofGuard>, Bytes(147468).at(8, {1, 0, 0, 0})});

  rows.push_back({"CTarnFWCmdGetSpoofGuardStat", 28, 51, "GetSpoofGuardStat", 56, 0, 56,
                  plain<CTarnFWCmdGetSpoofGuardStat>, Bytes(56)});

  rows.push_back({"CTarnFWCmdGetKifStat", 29, 52, "GetKifStat", 1642, 0, 1642,
                  plain<CTarnFWCmdGetKifStat>, Bytes(1642)});

  rows.push_back({"CTarnFWCmdClearKifStat", 30, 53, "SetKifStat", 1642, 0, 1642,
                  plain<CTarnFWCmdClearKifStat>, Bytes(1642)});

  rows.push_back({"CTarnFWCmdSetFailPolicy", 31, 54, "SetFailPolicy", 1, 1, 1,
                  plain<CTarnFWCmdSetFailPolicy, FW_FAIL_CLOSE>, Bytes({1})});

  rows.push_back({"CTarnFWCmdEnableVerbose", 32, 55, "EnableVerbose", 4, 4, 4,
                  plain<CTarnFWCmdEnableVerbose, 2u, 15u>, Bytes({2, 0, 0, 15})});

  rows.push_back({"CTarnFWCmdDebugComponent", 33, 56, "DebugComponent", 4, 4, 4,
                  plain<CTarnFWCmdDebugComponent, 255u, 3u>, Bytes({255, 0, 0, 3})});

  rows.push_back({"CTarnFWCmdDebugStatus", 34, 57, "DebugStatus", 23, 22, 23,
                  plain<CTarnFWCmdDebugStatus>, Bytes(23).at(21, {21})});

  rows.push_back({"CTarnFWCmdGetFailPolicy", 35, 58, "GetFailPolicy", 1, 0, 1,
                  plain<CTarnFWCmdGetFailPolicy>, Bytes(1)});

  rows.push_back({"CTarnFWCmdGetKifFlags", 39, 62, "GetKifFlags", 1316, 0, 1316,
                  plain<CTarnFWCmdGetKifFlags>, Bytes(1316)});

  rows.push_back({"CTarnFWCmdSetKifFlags", 40, 63, "ModifyKifFlags", 1316, 1285, 1316, setKifFlag,
                  Bytes(1316).text(4, std::string(39, 'k')).at(1284, {5})});

  rows.push_back(
      {"CTarnFWCmdSetTimeout", 41, 64, "SetTimeout", 112, 112, 112,
       [] { return CommandPtr(std::make_unique<CTarnFWCmdSetTimeout>(nullptr, timeouts())); },
       timeoutBody()});

  rows.push_back(
      {"CTarnFWCmdGetTimeout", 42, 65, "GetTimeout", 112, 112, 112,
       [] { return CommandPtr(std::make_unique<CTarnFWCmdGetTimeout>(nullptr, timeouts())); },
       timeoutBody()});

  rows.push_back({"CTarnFWCmdConfigICMPErrPktDrop", 49, 72, "ConfigICMPErrPktDrop", 4, 4, 4,
                  plain<CTarnFWCmdConfigICMPErrPktDrop, -2>, Bytes({0xfe, 0xff, 0xff, 0xff})});

  rows.push_back({"CTarnFWCmdSetSkifferExportver", 54, 77, "SetSkifferExportVer", 4, 4, 4,
                  plain<CTarnFWCmdSetSkifferExportver, kFrom>, Bytes({1, 2, 3, 4})});

  rows.push_back({"CTarnFWCmdGetSkifferExportver", 55, 78, "GetSkifferExportVer", 4, 0, 4,
                  plain<CTarnFWCmdGetSkifferExportver>, Bytes(4)});

  rows.push_back({"CTarnFWCmdConfigTCPStrict", 58, 81, "ConfigTCPStrict", 4, 1, 4,
                  plain<CTarnFWCmdConfigTCPStrict, true>, Bytes({1, 0, 0, 0})});

  rows.push_back({"CTarnFWCmdGetTCPStrict", 59, 82, "GetTCPStrict", 4, 0, 4,
                  plain<CTarnFWCmdGetTCPStrict>, Bytes(4)});

  rows.push_back({"CTarnFWCmdKifFp", 68, 91, "KifFastPathFlag", 4, 8, 8,
                  plain<CTarnFWCmdKifFp, kFrom, 0x08070605u>, Bytes({1, 2, 3, 4, 5, 6, 7, 8})});

  rows.push_back({"CTarnFWCmdSetFloodCfg", 78, 101, "SetFloodCfg", 36, 36, 36, setFloodCfg,
                  Bytes(36)
                      .at(0, {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0})  // limits
                      .at(16, {5, 0, 0, 0, 6, 0, 0, 0})              // syncache, hash size
                      .at(24, {0xff, 0xff, 0xff, 0xff, 8, 0, 0, 0})  // rst spoofing
                      .at(32, {0x41, 0x42, 0x43, 0x44})});           // zero counters

  rows.push_back({"CTarnFWCmdGetFloodStat", 79, 102, "GetFloodStat", 12424, 12424, 12424,
                  getFloodStat,
                  Bytes(12424)
                      .at(0, {1, 0, 0, 0})
                      .at(128, {24, 0, 0, 0, 0, 2, 0, 0})  // size and number of rows
                      .at(12416, {0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18})});
  return rows;
}

/// The levels of components 0 to 20.
ReplyRow debugStatus() {
  ReplyRow row{"CTarnFWCmdDebugStatus", plain<CTarnFWCmdDebugStatus>, Bytes(23), {}, {}};
  row.fields = {{0, "Filter debug status:\n    comp       level \n"},
                {1, "    fastpath   0     \n"},
                {2, "    rule       1     \n"},
                {3, "    table      2     \n"},
                {4, "    icmp       3     \n"},
                {5, "    tcp        4     \n"},
                {6, "    udp        5     \n"},
                {7, "    ioctl      6     \n"},
                {8, "    norm       7     \n"},
                {9, "    rpc        8     \n"},
                {10, "    ftp        9     \n"},
                {11, "    oracle     10    \n"},
                {12, "    tftp       11    \n"},
                {13, "    ospf       12    \n"},
                {14, "    msg2pf     13    \n"},
                {15, "    layer7     14    \n"},
                {16, "    layer4     15    \n"},
                {17, "    layer3     16    \n"},
                {18, "    layer2     17    \n"},
                {19, "    skiffer    18    \n"},
                {20, "    syncache   19    \n"},
                {21, "    lb         255   \n"}};
  for (int i = 0; i < 21; ++i) row.reply.at(static_cast<std::size_t>(i), {i});
  row.reply.at(20, {255});
  return row;
}

/// Counters in the first and the last row of either table; the names of two fill their field.
ReplyRow kifStat() {
  ReplyRow row{"CTarnFWCmdGetKifStat", plain<CTarnFWCmdGetKifStat>, Bytes(1642), {}, {}};
  put64(row.reply.text(2, "passed"), 2 + 25, 12345678);
  put64(row.reply.text(2 + 19 * 41, std::string(25, 'n')), 2 + 19 * 41 + 33, 1);
  put64(row.reply.text(2 + 20 * 41, "dropped"), 2 + 20 * 41 + 25, 7);
  put64(row.reply, 2 + 20 * 41 + 33, 8);
  row.reply.text(2 + 38 * 41, "nothing counted");
  put64(row.reply.text(2 + 39 * 41, std::string(25, 'z')), 2 + 39 * 41 + 33, ~0ull);
  row.fields.push_back({0,
                        "PACKETS                       IN                OUT\n"
                        "-------                       --                ---\n"});
  for (std::size_t i = 0; i < 40; ++i) row.fields.push_back({2 + (i + 1) * 41, ""});
  row.fields[1].text = "passed                  12345678                  0\n";
  row.fields[20].text = std::string(25, 'n') + "       0                  1\n";
  row.fields[21].text = "dropped                        7                  8\n";
  row.fields[40].text = std::string(25, 'z') + "       018446744073709551615\n";
  return row;
}

std::vector<ReplyRow> replies() {
  std::vector<ReplyRow> rows;
  Bytes guard(56);
  for (std::uint64_t i = 0; i < 7; ++i) put64(guard, 8 * i, i + 1);
  rows.push_back({"CTarnFWCmdGetSpoofGuardStat",
                  plain<CTarnFWCmdGetSpoofGuardStat>,
                  guard,
                  {{56,
                    "l2 drop count     : 2\nl3 drop count     : 1\ninvalid arp count : 3\n"
                    "unknown arp count : 4\nbad MAC arp count : 5\nbad IP arp count  : 6\n"
                    "good arp count    : 7\n"}},
                  {}});

  rows.push_back(kifStat());
  rows.push_back(debugStatus());

  rows.push_back({"CTarnFWCmdGetFailPolicy",
                  plain<CTarnFWCmdGetFailPolicy>,
                  Bytes({1}),
                  {{1, "filter fail policy: fail close\n"}},
                  {}});

  rows.push_back(
      {"CTarnFWCmdGetKifFlags",
       plain<CTarnFWCmdGetKifFlags>,
       Bytes(1316)
           .at(0, {0x21, 0x43, 0, 0x80})
           .text(4, "fast")
           .text(1244, std::string(40, 'f'))
           .at(1284, {1, 9})
           .at(1315, {0xff}),
       {{1316, "kif flags: (0x80004321)\n    fast                                     1\n" +
                   ("    " + std::string(40, 'f')) + " 255\n"}},
       {}});

  Bytes known = timeoutBody();
  rows.push_back({"CTarnFWCmdGetTimeout",
                  plain<CTarnFWCmdGetTimeout>,
                  put32(known, 84, 0xffffffff),
                  {{112,
                    "Connection Timeouts:\n   dfw.tcp.first_packet  : 336794129\n"
                    "   dfw.invalid_l7        : 4294967295\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdGetSkifferExportver",
                  plain<CTarnFWCmdGetSkifferExportver>,
                  Bytes({0xff, 0xff, 0xff, 0xff}),
                  {{4, "Current export version: 4294967295\n"}},
                  {}});

  rows.push_back({"CTarnFWCmdKifFp",
                  plain<CTarnFWCmdKifFp, 1u, 0u>,
                  Bytes(8, 0xff),
                  {{0, "Kif flag not set\n"}},
                  {}});

  readsNothing(rows, "CTarnFWCmdCreateSpoofGuard", createSpoofGuard);
  readsNothing(rows, "CTarnFWCmdDeleteSpoofGuard", deleteSpoofGuard);
  readsNothing(rows, "CTarnFWCmdClearKifStat", plain<CTarnFWCmdClearKifStat>);
  readsNothing(rows, "CTarnFWCmdSetFailPolicy", plain<CTarnFWCmdSetFailPolicy, FW_FAIL_OPEN>);
  readsNothing(rows, "CTarnFWCmdEnableVerbose", plain<CTarnFWCmdEnableVerbose, 1u, 1u>);
  readsNothing(rows, "CTarnFWCmdDebugComponent", plain<CTarnFWCmdDebugComponent, 0u, 1u>);
  readsNothing(rows, "CTarnFWCmdSetKifFlags", setKifFlag);
  readsNothing(rows, "CTarnFWCmdSetTimeout",
               [] { return std::make_unique<CTarnFWCmdSetTimeout>(nullptr, timeouts()); });
  readsNothing(rows, "CTarnFWCmdConfigICMPErrPktDrop", plain<CTarnFWCmdConfigICMPErrPktDrop, 1>);
  readsNothing(rows, "CTarnFWCmdSetSkifferExportver", plain<CTarnFWCmdSetSkifferExportver, 1u>);
  readsNothing(rows, "CTarnFWCmdConfigTCPStrict", plain<CTarnFWCmdConfigTCPStrict, false>);
  readsNothing(rows, "CTarnFWCmdGetTCPStrict", plain<CTarnFWCmdGetTCPStrict>);
  readsNothing(rows, "CTarnFWCmdSetFloodCfg", setFloodCfg);
  readsNothing(rows, "CTarnFWCmdGetFloodStat", getFloodStat);
  return rows;
}

}  // namespace

CommandFamily settingsCommands() {
  CommandFamily family;
  family.goldens = goldens();
  family.replies = replies();
  family.ownReplyTest = {"CTarnFWCmdCheckSpoofGuard"};
  family.cutRequest = {"CTarnFWCmdCheckSpoofGuard", "CTarnFWCmdKifFp"};
  return family;
}
