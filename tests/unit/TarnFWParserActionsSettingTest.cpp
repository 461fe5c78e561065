#include <gtest/gtest.h>

#include "Expect.h"
#include "ParseText.h"
#include "TarnFWParserActionsSetting.h"
#include "TarnFWUtilTimeout.h"

using namespace TarnFirewall;

namespace {

const std::string kMac = "00:11:22:33:44:5f";

/// What a statement makes for filter f: "number|text|body", the body in hexadecimal up to the last
/// byte that is not zero.
std::string made(const std::string& statement) {
  const ParseText parse(statement + " of filter f;");
  EXPECT_EQ(parse.failure(), "") << statement;
  if (parse.count() != 1) return "(no command)";
  EXPECT_STREQ(parse.command().currentPort().identifier, "f");
  std::vector<std::uint8_t> body = parse.body();
  while (!body.empty() && body.back() == 0) body.pop_back();
  std::string text = std::to_string(parse.command().getCommand()) + "|" + parse.text() + "|";
  for (const std::uint8_t byte : body) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

std::string zeros(int bytes) { return std::string(static_cast<std::size_t>(2 * bytes), '0'); }

std::string repeated(const std::string& text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

}  // namespace

TEST(TarnFWParserActionsSetting, AsksForTheExportVersionAndSetsIt) {
  EXPECT_EQ(made("describe exportver"), "55|describe exportver|");
  EXPECT_EQ(made("set exportver 1000"), "54|set exportver  1000|e803");
  EXPECT_EQ(made("set exportver 0"), "54|set exportver  0|");
  EXPECT_EQ(made("set exportver 4294967295"), "54|set exportver  4294967295|ffffffff");
}

TEST(TarnFWParserActionsSetting, RefusesAnExportVersionOfMoreThan32Bits) {
  for (const char* version : {"-1", "4294967296", "9223372036854775807"}) {
    EXPECT_EQ(parseFailure(std::string("set exportver ") + version + ";"),
              "17|export version value overflows");
  }
  // The version is judged where it stands, before the selector.
  EXPECT_EQ(parseFailure("set exportver -1 of vif x;"), "17|export version value overflows");
}

TEST(TarnFWParserActionsSetting, GuardsAMacAddressByAddresses) {
  const std::string mac = "00112233445f0000";
  EXPECT_EQ(made("create spoofguard with ip 10.1.2.3 and mac " + kMac),
            "25|create spoofguard with {ip 10.1.2.3} and mac 00:11:22:33:44:5f|" + mac +
                "01000000"
                "010000000a010203");
  EXPECT_EQ(made("create spoofguard with ip { 10.1.2.3, 10.1.2.4, } and mac " + kMac),
            "25|create spoofguard with {ip 10.1.2.3, ip 10.1.2.4} and mac 00:11:22:33:44:5f|" +
                mac +
                "02000000"
                "010000000a010203" +
                zeros(136) + "010000000a010204");
  EXPECT_EQ(made("create spoofguard with ip { } and mac " + kMac),
            "25|create spoofguard with {} and mac 00:11:22:33:44:5f|" + mac.substr(0, 12));
  EXPECT_EQ(made("create spoofguard with ip any and mac " + kMac),
            "25|create spoofguard with {any} and mac 00:11:22:33:44:5f|" + mac + "01");
}

TEST(TarnFWParserActionsSetting, GuardsAMacAddressByASet) {
  EXPECT_EQ(made("create spoofguard with addrset ab and mac " + kMac),
            "25|create spoofguard with addrset ab and mac 00:11:22:33:44:5f|00112233445f0000"
            "01000000"
            "0b0000006162");
  EXPECT_EQ(parseFailure("create spoofguard with addrset " + std::string(38, 'n') + " and mac " +
                         kMac + ";"),
            "32|id is too long: " + std::string(38, 'n'));
}

TEST(TarnFWParserActionsSetting, JudgesTheAddressesOfASpoofGuard) {
  EXPECT_EQ(parseFailure("create spoofguard with ip 999.1.1.1 and mac " + kMac + ";"),
            "33|999.1.1.1");
  EXPECT_EQ(parseFailure("create spoofguard with ip 10.0.0.1 and mac " + kMac + " of vif x;"),
            "63|invalid vif uuid (x)");
}

TEST(TarnFWParserActionsSetting, DeletesOneSpoofGuardOrTheFilters) {
  EXPECT_EQ(made("delete spoofguard"), "26|delete spoofguard|");
  EXPECT_EQ(made("delete spoofguard with mac " + kMac), "26|delete spoofguard|00112233445f");
}

TEST(TarnFWParserActionsSetting, AsksForSpoofGuardAndCounters) {
  EXPECT_EQ(made("describe spoofguard"), "27|describe spoofguard|" + zeros(8) + "01");
  EXPECT_EQ(made("describe stat of spoofguard"), "28|describe stat of spoofguard|");
  EXPECT_EQ(made("describe stat of kif"), "29|describe stat of kif|");
  EXPECT_EQ(made("clear stat of kif"), "30|clear stat of kif|");
}

TEST(TarnFWParserActionsSetting, AsksForTheLoadBalancer) {
  EXPECT_EQ(made("describe config of lb"), "86|describe config of lb of filter f|51");
  EXPECT_EQ(made("describe stat of lb"), "88|describe stat of lb of filter f|");
}

TEST(TarnFWParserActionsSetting, SwitchesStrictTCPInAnyCase) {
  for (const std::string tcp : {"tcp", "TCP", "Tcp", "\"tcp\""}) {
    EXPECT_EQ(made("enable " + tcp + " strict"), "58|enable tcp strict of filter f|01");
    EXPECT_EQ(made("disable " + tcp + " strict"), "58|disable tcp strict of filter f|");
    EXPECT_EQ(made("describe " + tcp + " strict"), "59|describe tcp strict of filter f|");
  }
}

TEST(TarnFWParserActionsSetting, KnowsNoOtherProtocolThatIsStrict) {
  for (const std::string word : {"udp", "tc", "tcpx", "\"\"", "\"tcp \""}) {
    for (const char* verb : {"enable", "disable", "describe"}) {
      EXPECT_EQ(parseFailure(verb + (" " + word) + " strict;"), "16|expecting keyword tcp");
    }
  }
}

TEST(TarnFWParserActionsSetting, SetsOneTimeoutByItsName) {
  EXPECT_EQ(made("set timeout dfw.tcp.first_packet to 30"),
            "41|unimplemented|1e" + zeros(87) + "01");
  EXPECT_EQ(made("set timeout \"DFW.invalid_L7\" to 168496141"),
            "41|unimplemented|" + zeros(84) + "0d0c0b0a" + zeros(21) + "01");
  EXPECT_EQ(made("set timeout dfw.tcp.opening to 4294967295"),
            "41|unimplemented|" + zeros(4) + "ffffffff" + zeros(81) + "01");
}

TEST(TarnFWParserActionsSetting, JudgesTheValueOfATimeoutBeforeItsName) {
  for (const char* value : {"4294967296", "-1"}) {
    EXPECT_EQ(parseFailure(std::string("set timeout nonesuch to ") + value + ";"),
              "17|invalid timeout value");
  }
  EXPECT_EQ(parseFailure("set timeout nonesuch to 1;"), "58|unrecognized timeout nonesuch");
  EXPECT_EQ(parseFailure("describe timeout nonesuch;"), "58|unrecognized timeout nonesuch");
}

TEST(TarnFWParserActionsSetting, SetsAllTimeoutsByAList) {
  std::string list;
  std::string values;
  for (unsigned int i = 1; i <= kTimeouts; ++i) {
    list += std::to_string(i) + ",";
    values += std::string{"0123456789abcdef"[i >> 4], "0123456789abcdef"[i & 15]} + "000000";
  }
  list.pop_back();
  EXPECT_EQ(made("set timeout to \"" + list + "\""),
            "41|unimplemented|" + values + repeated("01", 22));
  EXPECT_EQ(made("set timeout to '" + repeated("0 ", 21) + "4294967295'"),
            "41|unimplemented|" + zeros(84) + "ffffffff" + repeated("01", 22));
}

TEST(TarnFWParserActionsSetting, WantsExactly22ValuesOfTimeouts) {
  for (const std::string& list :
       {std::string("\"\""), std::string("\"1\""), "\"" + repeated("1 ", 21) + "\"",
        "\"" + repeated("1 ", 23) + "\"", "\"" + repeated("1 ", 21) + "x\"",
        "\"" + repeated("1 ", 21) + "-1\""}) {
    const ParseText parse("set timeout to " + list + ";");
    EXPECT_EQ(parse.failure(), "16|invalid timeouts") << list;
  }
  const ParseText parse("set timeout to \"1,2\";");
  EXPECT_TRUE(parse.log.has(4, "missing 20 timeout values\n\n"));
}

TEST(TarnFWParserActionsSetting, AsksForOneTimeoutOrAll) {
  EXPECT_EQ(made("describe timeout dfw.udp.single"), "42|describe timeout|" + zeros(95) + "01");
  EXPECT_EQ(made("describe timeout"), "42|describe timeout|" + zeros(88) + repeated("01", 22));
}

TEST(TarnFWParserActionsSetting, SetsTheDebugLevelOfAHalfByItsWord) {
  EXPECT_EQ(made("debug dp 1"), "32|debug dp 1|01000001");
  EXPECT_EQ(made("debug \"DP\" 15"), "32|debug dp 15|0100000f");
  EXPECT_EQ(made("debug pf 2"), "32|debug dp 2|01000002");
  EXPECT_EQ(made("debug Cp 0"), "32|debug cp 0|02");
}

TEST(TarnFWParserActionsSetting, AddsNoCommandForAnUnknownHalf) {
  const ParseText parse("debug xx 1; debug \"\" 15; destroy all ruleset; debug dpx 0;");
  EXPECT_EQ(parse.failure(), "");
  ASSERT_EQ(parse.count(), 1u);
  EXPECT_EQ(parse.command().getCommand(), 60);
  EXPECT_TRUE(parse.log.lines().empty());
}

TEST(TarnFWParserActionsSetting, RefusesADebugLevelAbove15OfAnyHalf) {
  for (const char* statement : {"debug dp 16;", "debug cp -1;", "debug xx 16;",
                                "debug DP 4294967296;", "debug pf 9223372036854775807;"}) {
    EXPECT_EQ(parseFailure(statement), "17|debug level value overflows") << statement;
  }
}
