// The commands about settings of a filter: their texts, what they refuse, and what they print for
// every reply.

#include <gtest/gtest.h>

#include "CommandTest.h"
#include "TarnFWAddrSetID.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWAddressIPList.h"
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
#include "TarnFWUtilTimeout.h"

using namespace TarnFirewall;

using TarnFWCmdSettings = CommandTest<FWAddrSetID_t>;

namespace {

const CTarnFWAddressEther kMac(fw_ether_{{0, 0x11, 0x22, 0x33, 0x44, 0x5f}}, false);

std::unique_ptr<CTarnFWAddressList> listOf(std::initializer_list<const char*> texts) {
  auto list = std::make_unique<CTarnFWAddressList>(false);
  for (const char* text : texts) {
    EXPECT_TRUE(list->addAddress(CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, text)));
  }
  return list;
}

/// A spoof guard's reply with its count; the guard is on.
Bytes guardReply(std::uint32_t count) {
  Bytes reply(147468);
  reply.at(0, {0, 0x11, 0x22, 0x33, 0x44, 0x5f, 1});
  return put32(reply, 8, count);
}

constexpr const char* kMacLine = "MAC = 00:11:22:33:44:5f\n";

}  // namespace

TEST_F(TarnFWCmdSettings, FailPoliciesHaveTheirTexts) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdSetFailPolicy(&port, FW_FAIL_OPEN), 31, 1, " failure policy: fail open");
  expectIdentity(CTarnFWCmdSetFailPolicy(&port, FW_FAIL_CLOSE), 31, 1,
                 " failure policy: fail close");
  expectIdentity(CTarnFWCmdGetFailPolicy(&port), 35, 1, "describe failure policy of filter nic-1");
}

TEST_F(TarnFWCmdSettings, AFailPolicyAboveOneIsRefused) {
  for (const std::uint32_t policy : {2u, 256u, 257u, 0xffffffffu}) {
    EXPECT_THROW_WITH(CTarnFWCmdSetFailPolicy(nullptr, static_cast<FWFailPolicy_t>(policy)),
                      CUnsupportedException, 7, "invalid fail policy");
  }
}

TEST_F(TarnFWCmdSettings, AnyFailPolicyOfTheKernelIsPrinted) {
  CTarnFWCmdGetFailPolicy command(nullptr);
  EXPECT_EQ(printedFor(command, Bytes({0})), "filter fail policy: fail open\n");
  EXPECT_EQ(printedFor(command, Bytes({1})), "filter fail policy: fail close\n");
  EXPECT_EQ(printedFor(command, Bytes({2})), "filter fail policy: undefined\n");
  EXPECT_EQ(printedFor(command, Bytes({255})), "filter fail policy: undefined\n");
}

// --- Verbosity

TEST_F(TarnFWCmdSettings, DebugCommandsNameTheirComponentAndLevel) {
  expectIdentity(CTarnFWCmdEnableVerbose(nullptr, 1, 0), 32, 4, "debug dp 0");
  expectIdentity(CTarnFWCmdEnableVerbose(nullptr, 2, 15), 32, 4, "debug cp 15");
  expectIdentity(CTarnFWCmdDebugComponent(nullptr, 0, 3), 33, 4, "debug fastpath 3");
  expectIdentity(CTarnFWCmdDebugComponent(nullptr, 20, 15), 33, 4, "debug lb 15");
  expectIdentity(CTarnFWCmdDebugComponent(nullptr, 255, 1), 33, 4, "debug invalid component 1");
  expectIdentity(CTarnFWCmdDebugStatus(nullptr), 34, 23, "debug status");
}

TEST_F(TarnFWCmdSettings, AComponentOrALevelThatIsUnknownIsRefusedInThisOrder) {
  for (const unsigned int component : {0u, 3u, 257u, ~0u}) {
    EXPECT_THROW_WITH(CTarnFWCmdEnableVerbose(nullptr, component, 16), CUnsupportedException, 7,
                      "unsupported debug component");
  }
  for (const unsigned int component : {21u, 254u, 256u, ~0u}) {
    EXPECT_THROW_WITH(CTarnFWCmdDebugComponent(nullptr, component, 16), CUnsupportedException, 7,
                      "unsupported debug component");
  }
  for (const unsigned int level : {16u, 256u, ~0u}) {
    EXPECT_THROW_WITH(CTarnFWCmdEnableVerbose(nullptr, 1, level), CUnsupportedException, 7,
                      "unsupported debug level");
    EXPECT_THROW_WITH(CTarnFWCmdDebugComponent(nullptr, 255, level), CUnsupportedException, 7,
                      "unsupported debug level");
  }
}

// --- Interface

TEST_F(TarnFWCmdSettings, CommandsOfTheInterfaceHaveTheirTexts) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdGetKifStat(&port), 29, 1642, "describe stat of kif");
  expectIdentity(CTarnFWCmdClearKifStat(&port), 30, 1642, "clear stat of kif");
  expectIdentity(CTarnFWCmdGetKifFlags(&port), 39, 1316, "describe kif flags");
  expectIdentity(CTarnFWCmdSetKifFlags(&port, "fast", 1), 40, 1316, "set kif flags");
  expectIdentity(CTarnFWCmdKifFp(&port, 1, 0), 68, 8, "Set/show kif fast flag of filter nic-1");
  expectIdentity(CTarnFWCmdKifFp(nullptr, 1, 0), 68, 8, "Set/show kif fast flag");
}

TEST_F(TarnFWCmdSettings, CountersThatAreAllZeroPrintTheHeadingAlone) {
  CTarnFWCmdGetKifStat command(nullptr);
  EXPECT_EQ(printedFor(command, Bytes(1642)),
            "PACKETS                       IN                OUT\n"
            "-------                       --                ---\n");
}

TEST_F(TarnFWCmdSettings, CountersAndNamesOfAllOnesArePrintedWithinTheirFields) {
  CTarnFWCmdGetKifStat command(nullptr);
  const std::string text = printedFor(command, Bytes(1642, 0xff));
  EXPECT_EQ(lines(text), 42);
  const std::string row = std::string(25, '\xff') + "1844674407370955161518446744073709551615\n";
  EXPECT_EQ(text.substr(104, row.size()), row);
  EXPECT_EQ(text.size(), 104 + 40 * row.size());
}

TEST_F(TarnFWCmdSettings, AFlagNameIsCutAndClosed) {
  CTarnFWCmdSetKifFlags shortest(nullptr, "", 256);
  EXPECT_EQ(requestOf(shortest), Bytes(1316));
  CTarnFWCmdSetKifFlags longest(nullptr, std::string(39, 'n').c_str(), 255);
  EXPECT_EQ(requestOf(longest), Bytes(1316).text(4, std::string(39, 'n')).at(1284, {255}));
  CTarnFWCmdSetKifFlags cut(nullptr, std::string(40, 'n').c_str(), 1);
  EXPECT_EQ(requestOf(cut), Bytes(1316).text(4, std::string(39, 'n')).at(1284, {1}));
}

TEST_F(TarnFWCmdSettings, FlagNamesWithoutANulEndWithTheirField) {
  CTarnFWCmdGetKifFlags command(nullptr);
  EXPECT_EQ(printedFor(command, Bytes(1316)), "kif flags: (0x0)\n");
  const std::string text = printedFor(command, Bytes(1316, 0xff));
  const std::string row = "    " + std::string(40, '\xff') + " 255\n";
  EXPECT_EQ(text.substr(0, 24), "kif flags: (0xffffffff)\n");
  EXPECT_EQ(lines(text), 33);
  EXPECT_EQ(text.substr(24, row.size()), row);
  EXPECT_EQ(text.size(), 24 + 32 * row.size());
}

TEST_F(TarnFWCmdSettings, TheFastPathPrintsTheSameWhateverTheKernelHas) {
  CTarnFWCmdKifFp command(nullptr, 0, 1);
  for (const std::uint8_t fill : {std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{0xff}}) {
    EXPECT_EQ(printedFor(command, Bytes(8, fill)), "Kif flag not set\n");
  }
}

// --- Timeouts

TEST_F(TarnFWCmdSettings, TimeoutsHaveTheirTexts) {
  expectIdentity(CTarnFWCmdSetTimeout(nullptr, FWInstTimeout_{}), 41, 112, "unimplemented");
  expectIdentity(CTarnFWCmdGetTimeout(nullptr), 42, 112, "describe timeout");
}

TEST_F(TarnFWCmdSettings, ATimeoutByNameSetsOneValueAndItsMark) {
  CTarnFWCmdSetTimeout set(nullptr, "dfw.tcp.closing", 0x04030201);
  EXPECT_EQ(requestOf(set), Bytes(112).at(12, {1, 2, 3, 4}).at(91, {1}));
  CTarnFWCmdSetTimeout last(nullptr, "DFW.Invalid_L7", 7);
  EXPECT_EQ(requestOf(last), Bytes(112).at(84, {7}).at(109, {1}));
  CTarnFWCmdGetTimeout get(nullptr, "dfw.tcp.first_packet");
  EXPECT_EQ(requestOf(get), Bytes(112).at(88, {1}));
  CTarnFWCmdGetTimeout byNumber(nullptr, 21u);
  EXPECT_EQ(requestOf(byNumber), Bytes(112).at(109, {1}));
}

TEST_F(TarnFWCmdSettings, WithoutAnyTimeoutNothingIsMarked) {
  CTarnFWCmdGetTimeout none(nullptr);
  EXPECT_EQ(requestOf(none), Bytes(112));
  FWInstTimeout_ all{};
  for (std::uint8_t& mark : all.marks) mark = 1;
  CTarnFWCmdGetTimeout command(nullptr, all);
  Bytes body(112);
  for (std::size_t i = 88; i < 110; ++i) body.at(i, {1});
  EXPECT_EQ(requestOf(command), body);
}

TEST_F(TarnFWCmdSettings, AnUnknownTimeoutIsRefused) {
  EXPECT_THROW_WITH(CTarnFWCmdSetTimeout(nullptr, "dfw.tcp", 1), CInvalidTimeoutException, 58,
                    "unrecognized timeout dfw.tcp");
  EXPECT_THROW_WITH(CTarnFWCmdGetTimeout(nullptr, ""), CInvalidTimeoutException, 58,
                    "unrecognized timeout ");
  for (const unsigned int id : {22u, 23u, ~0u}) {
    EXPECT_THROW_WITH(CTarnFWCmdGetTimeout(nullptr, id), CInvalidTimeoutException, 58,
                      "unrecognized timeout id " + std::to_string(id));
  }
}

TEST_F(TarnFWCmdSettings, MarkedTimeoutsArePrintedAndNoOthers) {
  CTarnFWCmdGetTimeout command(nullptr);
  Bytes reply(112, 0xff);
  EXPECT_EQ(printedFor(command, Bytes(112)), "Connection Timeouts:\n");
  std::string all = "Connection Timeouts:\n";
  for (unsigned int i = 0; i < kTimeouts; ++i) {
    std::string name = g_tarnfw_timeout_name[i];
    all += "   " + name + std::string(22 - name.size(), ' ') + ": " + std::to_string(i + 1) + "\n";
    put32(reply, 4 * i, i + 1);
  }
  EXPECT_EQ(printedFor(command, reply), all);
}

// --- Floods

TEST_F(TarnFWCmdSettings, FloodCommandsHaveTheirTexts) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdSetFloodCfg(&port, FWFloodCfg_{}), 78, 36,
                 "set flood config of filter nic-1");
  expectIdentity(CTarnFWCmdGetFloodStat(&port, FWFloodStat_{}), 79, 12424,
                 "describe stat of flood of filter nic-1");
}

TEST_F(TarnFWCmdSettings, FloodRowsAreCountedUpToWhatThereIsRoomFor) {
  for (const auto& [claimed, counted] :
       {std::pair{0u, 0u}, std::pair{511u, 511u}, std::pair{512u, 512u}, std::pair{513u, 512u},
        std::pair{~0u, 512u}}) {
    Bytes reply(12424);
    put32(reply, 132, claimed);
    const CTarnFWCmdReply view(reply.data(), reply.size());
    EXPECT_EQ(CTarnFWCmdGetFloodStat::stat(view).rowCount, counted);
    EXPECT_EQ(
        log.has(4, "reply tells " + std::to_string(claimed) + " entries, only 512 can be read\n"),
        claimed > 512);
  }
}

TEST_F(TarnFWCmdSettings, AFloodStateThatEndsEarlyIsRefused) {
  const Bytes reply(12424);
  EXPECT_THROW_WITH(CTarnFWCmdGetFloodStat::stat(CTarnFWCmdReply(reply.data(), 12423)),
                    CInsufficientMsgBufException, 9,
                    "expect 12424 byte in message buffer, but only get 12423 bytes");
}

// --- Numbers

TEST_F(TarnFWCmdSettings, SettingsOfOneNumberHaveTheirTexts) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdSetSkifferExportver(&port, ~0u), 54, 4, "set exportver  4294967295");
  expectIdentity(CTarnFWCmdGetSkifferExportver(&port), 55, 4, "describe exportver");
  expectIdentity(CTarnFWCmdConfigICMPErrPktDrop(&port, 1), 49, 4,
                 "enable icmp error drop of filter nic-1");
  expectIdentity(CTarnFWCmdConfigICMPErrPktDrop(&port, 0), 49, 4,
                 "disable icmp error drop of filter nic-1");
  expectIdentity(CTarnFWCmdConfigTCPStrict(&port, true), 58, 4,
                 "enable tcp strict of filter nic-1");
  expectIdentity(CTarnFWCmdConfigTCPStrict(&port, false), 58, 4,
                 "disable tcp strict of filter nic-1");
  expectIdentity(CTarnFWCmdGetTCPStrict(&port), 59, 4, "describe tcp strict of filter nic-1");
}

TEST_F(TarnFWCmdSettings, TcpStrictnessIsReadAndNotPrinted) {
  CTarnFWCmdGetTCPStrict command(nullptr);
  const Bytes reply({1, 2, 3, 4});
  EXPECT_EQ(printedFor(command, reply), "");
  EXPECT_EQ(command.strict(CTarnFWCmdReply(reply.data(), 4)), 0x04030201u);
}

// --- Spoof guard

TEST_F(TarnFWCmdSettings, ASpoofGuardReadsAsItsStatement) {
  expectIdentity(CTarnFWCmdCreateSpoofGuard(nullptr, listOf({"10.0.0.1", "10.0.0.2"}), kMac), 25,
                 300,
                 "create spoofguard with {ip 10.0.0.1, ip 10.0.0.2} and mac 00:11:22:33:44:5f");
  expectIdentity(
      CTarnFWCmdCreateSpoofGuard(nullptr, std::make_unique<CTarnFWAddrSetID>("web", false), kMac),
      25, 156, "create spoofguard with addrset web and mac 00:11:22:33:44:5f");
  expectIdentity(CTarnFWCmdDeleteSpoofGuard(nullptr, &kMac), 26, 8, "delete spoofguard");
  expectIdentity(CTarnFWCmdCheckSpoofGuard(nullptr), 27, 147468, "describe spoofguard");
  expectIdentity(CTarnFWCmdGetSpoofGuardStat(nullptr), 28, 56, "describe stat of spoofguard");
}

TEST_F(TarnFWCmdSettings, AListOfOneAndOneOfNoneHaveTheSameSize) {
  CTarnFWCmdCreateSpoofGuard none(nullptr, listOf({}), kMac);
  EXPECT_EQ(requestOf(none), Bytes(156).at(0, {0, 0x11, 0x22, 0x33, 0x44, 0x5f}));
  CTarnFWCmdCreateSpoofGuard one(nullptr, listOf({"10.0.0.1"}), kMac);
  EXPECT_EQ(requestOf(one), Bytes(156)
                                .at(0, {0, 0x11, 0x22, 0x33, 0x44, 0x5f, 0, 0, 1})
                                .at(12, {1, 0, 0, 0, 10, 0, 0, 1}));
}

TEST_F(TarnFWCmdSettings, ASetByNameIsOneAddress) {
  CTarnFWCmdCreateSpoofGuard command(nullptr, std::make_unique<CTarnFWAddrSetID>("web", false),
                                     kMac);
  EXPECT_EQ(
      requestOf(command),
      Bytes(156).at(0, {0, 0x11, 0x22, 0x33, 0x44, 0x5f, 0, 0, 1}).at(12, {11}).text(16, "web"));
}

TEST_F(TarnFWCmdSettings, WhatIsNeitherAListNorASetIsRefused) {
  EXPECT_THROW_WITH(
      CTarnFWCmdCreateSpoofGuard(
          nullptr, CTarnFWAddressFactory::newFromString(FW_ADDRSET_IP, "10.0.0.1"), kMac),
      CUnsupportedException, 7, "unsupported address type1");
  EXPECT_THROW_WITH(
      CTarnFWCmdCreateSpoofGuard(nullptr, std::make_unique<CTarnFWAddressEther>(kMac), kMac),
      CUnsupportedException, 7, "unsupported address type7");
  EXPECT_THROW_WITH(
      CTarnFWCmdCreateSpoofGuard(
          nullptr, std::make_unique<CTarnFWAddressIPList>(FWAddrSetID_t{}, nullptr, 0), kMac),
      CUnsupportedException, 7, "unsupported address type16");
}

TEST_F(TarnFWCmdSettings, ASpoofGuardIsDeletedWithAndWithoutItsAddress) {
  CTarnFWCmdDeleteSpoofGuard any(nullptr, nullptr);
  EXPECT_EQ(requestOf(any), Bytes(8));
  CTarnFWCmdDeleteSpoofGuard one(nullptr, &kMac);
  EXPECT_EQ(requestOf(one), Bytes({0, 0x11, 0x22, 0x33, 0x44, 0x5f, 0, 0}));
}

TEST_F(TarnFWCmdSettings, ASpoofGuardPrintsItsAddressesOnOneLine) {
  CTarnFWCmdCheckSpoofGuard command(nullptr);
  EXPECT_EQ(printedFor(command, guardReply(0)), std::string("enabled : ") + kMacLine)
      << "only an address ends the line";
  EXPECT_EQ(printedFor(command, guardReply(0).at(6, {0})), std::string("disabled : ") + kMacLine);
  Bytes reply = guardReply(1).at(6, {0xfe}).at(12, {1, 0, 0, 0, 10, 0, 0, 1});
  EXPECT_EQ(printedFor(command, reply), std::string("disabled : ip 10.0.0.1\n") + kMacLine);
  put32(reply, 8, 3)
      .at(6, {0xff})
      .at(156, {11})
      .text(160, "web")
      .at(300, {1, 0, 0, 0, 10, 0, 0, 3});
  EXPECT_EQ(printedFor(command, reply),
            std::string("enabled : ip 10.0.0.1, addrset web, ip 10.0.0.3\n") + kMacLine);
}

TEST_F(TarnFWCmdSettings, AnAddressWithoutATextIsLoggedAndLeftOut) {
  CTarnFWCmdCheckSpoofGuard command(nullptr);
  Bytes reply = guardReply(3).at(12, {1, 0, 0, 0, 10, 0, 0, 1});
  reply.at(156, {0xee, 0xee}).at(300, {1, 0, 0, 0, 10, 0, 0, 3});
  EXPECT_EQ(printedFor(command, reply),
            std::string("enabled : ip 10.0.0.1, ip 10.0.0.3\n") + kMacLine);
  const std::string place = "3|tarnfw: TarnFWCmdCheckSpoofGuard:checkCmdReply():N ";
  const auto fails = [&](const char* what) {
    const std::vector<std::string> lines = log.normalized();
    return std::count(lines.begin(), lines.end(),
                      place + "Failed to parse " + what + ": invalid network address\n\n");
  };
  EXPECT_EQ(fails("1 ip address"), 1);
  EXPECT_EQ(fails("ip address"), 0);
  reply.at(300, {0xee, 0xee});
  EXPECT_EQ(printedFor(command, reply), std::string("enabled : ip 10.0.0.1, ") + kMacLine);
  EXPECT_EQ(fails("1 ip address"), 2);
  EXPECT_EQ(fails("ip address"), 1);
}

TEST_F(TarnFWCmdSettings, ACountOfAddressesIsBoundedByTheReply) {
  CTarnFWCmdCheckSpoofGuard command(nullptr);
  // An address of type 0 is "any", which has a text.
  std::string all = "enabled : ";
  for (int i = 0; i < 1023; ++i) all += "any, ";
  all += std::string("any\n") + kMacLine;
  EXPECT_EQ(printedFor(command, guardReply(1024)), all);
  EXPECT_FALSE(log.has(4, "reply tells 1024 entries, only 1024 can be read\n"));
  EXPECT_EQ(printedFor(command, guardReply(1025)), all);
  EXPECT_TRUE(log.has(4, "reply tells 1025 entries, only 1024 can be read\n"));
  EXPECT_EQ(printedFor(command, guardReply(~0u)), all);
  EXPECT_TRUE(log.has(4, "reply tells 4294967295 entries, only 1024 can be read\n"));
}

TEST_F(TarnFWCmdSettings, ASpoofGuardsReplyMayEndAnywhere) {
  const Bytes whole = guardReply(2);
  for (const std::size_t size : {0u, 1u, 6u, 7u, 11u, 12u, 155u, 156u, 299u, 300u}) {
    const Bytes reply(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    CTarnFWCmdCheckSpoofGuard command(nullptr);
    const Printed printed;
    if (size < 12) {
      EXPECT_THROW_WITH(
          command.checkCmdReply(reply.data(), static_cast<unsigned int>(size)),
          CInsufficientMsgBufException, 9,
          "expect 12 byte in message buffer, but only get " + std::to_string(size) + " bytes");
      EXPECT_EQ(printed.text(), "");
    } else {
      command.checkCmdReply(reply.data(), static_cast<unsigned int>(size));
      const std::string text = size < 156 ? "" : size < 300 ? "any\n" : "any, any\n";
      EXPECT_EQ(printed.text(), "enabled : " + text + kMacLine) << size;
    }
  }
}
