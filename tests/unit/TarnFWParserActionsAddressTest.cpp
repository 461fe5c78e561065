#include <arpa/inet.h>
#include <gtest/gtest.h>

#include "Expect.h"
#include "LogCapture.h"
#include "ParseText.h"
#include "TarnFWAddressAttr.h"
#include "TarnFWLog.h"
#include "TarnFWParserActionsAddress.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

const std::string k37(37, 'n');
const std::string k38(38, 'n');

/// Types of the members of the set that a statement creates, as one text.
std::string memberTypes(const std::string& list) {
  const ParseText parse("create addrset a " + list + ";");
  EXPECT_EQ(parse.failure(), "") << list;
  if (parse.count() != 1) return "(no command)";
  const auto body = parse.body();
  std::string types;
  for (std::size_t at = 86; at < body.size(); at += 144) {
    types += (types.empty() ? "" : " ") + std::to_string(body[at]);
  }
  EXPECT_EQ(parse.word(46), (body.size() - 86) / 144);
  return types;
}

/// Command number of the only command of a statement.
int number(const std::string& statement) {
  const ParseText parse(statement);
  EXPECT_EQ(parse.failure(), "") << statement;
  return parse.count() == 1 ? parse.command().getCommand() : -1;
}

}  // namespace

TEST(TarnFWParserActionsAddress, ReadsEveryKindOfMember) {
  EXPECT_EQ(memberTypes("10.0.0.1"), "1");
  EXPECT_EQ(memberTypes("::1"), "2");
  EXPECT_EQ(memberTypes("10.0.0.0/8"), "5");
  EXPECT_EQ(memberTypes("10.0.0.0/255.0.0.0"), "5");
  EXPECT_EQ(memberTypes("2001:db8::/32"), "6");
  EXPECT_EQ(memberTypes("any"), "0");
  EXPECT_EQ(memberTypes("00:11:22:33:44:55"), "7");
  EXPECT_EQ(memberTypes("00:11:22:33:44:55-00:11:22:33:44:66"), "8");
  EXPECT_EQ(memberTypes("00:11:22:33:44:55/ff:ff:ff:00:00:00"), "9");
  EXPECT_EQ(memberTypes("{ 10.0.0.1, ::1, 10.0.0.0/8, }"), "1 2 5");
  EXPECT_EQ(memberTypes("with { 00:11:22:33:44:55, 00:11:22:33:44:55-00:11:22:33:44:66, }"), "7 8");
}

TEST(TarnFWParserActionsAddress, KeepsARangeWithoutBracesAndSplitsOneInsideThem) {
  EXPECT_EQ(memberTypes("10.0.0.1-9"), "3");
  // 10.0.0.1, 10.0.0.2/31, 10.0.0.4/30, 10.0.0.8/31
  EXPECT_EQ(memberTypes("{ 10.0.0.1-9 }"), "1 5 5 5");
  EXPECT_EQ(memberTypes("::1-::5"), "4");
  EXPECT_EQ(memberTypes("{ ::1-::5 }"), "2 6 6");
  const ParseText parse("create addrset a { 10.0.0.1-9, ::1-::5 };");
  EXPECT_TRUE(parse.log.has(6, "replaced ip range ip 10.0.0.1-10.0.0.9 to cidr list\n"));
  EXPECT_TRUE(parse.log.has(6, "replaced ipv6 range ip ::1-::5 to cidr list\n"));
}

TEST(TarnFWParserActionsAddress, ABlockOfARangeBecomesAnAddressOrABlock) {
  CTarnFWAddressList list(false);
  EXPECT_TRUE(IPv4Range2CIDR_Callback(&list, in_addr{htonl(0x0a000001)}, 32));
  EXPECT_TRUE(IPv4Range2CIDR_Callback(&list, in_addr{htonl(0x0a000002)}, 31));
  in6_addr address{};
  address.s6_addr[0] = 0x20;
  EXPECT_TRUE(IPv6Range2CIDR_Callback(&list, address, 128));
  EXPECT_TRUE(IPv6Range2CIDR_Callback(&list, address, 127));
  EXPECT_EQ(list.toString(), "{ip 10.0.0.1, ip 10.0.0.2/31, ip 2000::, ip 2000::/127}");
  for (const auto& member : list.getAddresses()) EXPECT_FALSE(member->isNegated());
}

TEST(TarnFWParserActionsAddress, ABlockThatTheListRefusesDoesNotEndTheWalk) {
  LogCapture log;
  CTarnFWAddressList list(false);
  list.setSetType(FW_ADDRSET_MAC);
  EXPECT_TRUE(IPv4Range2CIDR_Callback(&list, in_addr{htonl(0x0a000001)}, 32));
  EXPECT_TRUE(IPv6Range2CIDR_Callback(&list, in6_addr{}, 64));
  EXPECT_EQ(list.toString(), "{}");
  EXPECT_TRUE(log.has(4, "cannot add non-MAC address of type 1 into a MAC set\n"));
  EXPECT_TRUE(log.has(4, "cannot add non-MAC address of type 6 into a MAC set\n"));
}

TEST(TarnFWParserActionsAddress, SplitsTheBlockOfAllAddresses) {
  EXPECT_EQ(memberTypes("0.0.0.0/0"), "5 5");
  EXPECT_EQ(memberTypes("{ 0.0.0.0/0, 10.0.0.1 }"), "5 5 1");
}

TEST(TarnFWParserActionsAddress, RefusesARangeThatNoBlocksCover) {
  EXPECT_EQ(parseFailure("create addrset a { 1::-2::1 };"),
            "16|failed to replace ip range ip 1::-2::1 to cidr list");
  EXPECT_EQ(parseFailure("create addrset a { ::1, 1::-2::1 };"),
            "16|failed to replace ip range ip 1::-2::1 to cidr list");
  EXPECT_EQ(memberTypes("1::-2::1"), "4");
}

TEST(TarnFWParserActionsAddress, PassesTheFailuresOfAddressesOn) {
  EXPECT_EQ(parseFailure("create addrset a 999.1.1.1;"), "33|999.1.1.1");
  EXPECT_EQ(parseFailure("create addrset a 1.2.3.4/33;"), "33|1.2.3.4/33");
  EXPECT_EQ(parseFailure("create addrset a 1.2.3.4/255.0.255.0;"), "33|1.2.3.4/255.0.255.0");
  EXPECT_EQ(parseFailure("create addrset a ::1/129;"), "33|::1/129");
  EXPECT_EQ(parseFailure("create addrset a 10.0.0.5-5;"),
            "33|invalid IPv4 range: 10.0.0.5 - 10.0.0.5");
  EXPECT_EQ(parseFailure("create addrset a { 10.0.0.1, 999.1.1.1 };"), "33|999.1.1.1");
}

TEST(TarnFWParserActionsAddress, CreatesAnEmptySet) {
  for (const char* statement :
       {"create addrset a;", "create addrset a { };", "create addrset a of filter f with { };"}) {
    const ParseText parse(statement);
    EXPECT_EQ(parse.failure(), "");
    EXPECT_EQ(parse.command().getCommand(), 13);
    EXPECT_EQ(parse.body().size(), 86u);
    EXPECT_EQ(parse.field(0), "a");
  }
}

TEST(TarnFWParserActionsAddress, TakesNamesOf37Bytes) {
  const ParseText parse("create addrset " + k37 + " 10.0.0.1;");
  EXPECT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.field(0), k37);
}

TEST(TarnFWParserActionsAddress, RefusesNamesOf38BytesInEveryStatement) {
  for (const std::string& statement :
       {"create addrset " + k38 + ";", "create addrset " + k38 + " 10.0.0.1;",
        "create addrset " + k38 + " with { 10.0.0.1 };",
        "create addrset " + k38 + " 00:11:22:33:44:55;",
        "create addrset " + k38 + " with 00:11:22:33:44:55;", "create APP_ID attrset " + k38 + ";",
        "delete all from addrset " + k38 + ";", "destroy addrset " + k38 + ";",
        "describe size of addrset " + k38 + ";", "describe info of addrset " + k38 + ";",
        "describe address of addrset " + k38 + ";",
        "describe address of addrset " + k38 + " from 4294967296;"}) {
    EXPECT_EQ(parseFailure(statement), "32|addrset name (" + k38 + ") is too long") << statement;
  }
}

TEST(TarnFWParserActionsAddress, MakesTheCommandOfEachStatement) {
  EXPECT_EQ(number("delete all from addrset a;"), 64);
  EXPECT_EQ(number("destroy addrset a;"), 14);
  EXPECT_EQ(number("destroy all addrset;"), 65);
  EXPECT_EQ(number("describe size of addrset a;"), 15);
  EXPECT_EQ(number("describe info of addrset a;"), 16);
  EXPECT_EQ(number("describe stat of addrset;"), 22);
  EXPECT_EQ(number("describe address of addrset a;"), 17);
  EXPECT_EQ(number("describe count of addrset;"), 20);
  EXPECT_EQ(number("describe list of addrset;"), 21);
  EXPECT_EQ(number("enable shared addrset;"), 44);
  EXPECT_EQ(number("disable shared addrset;"), 44);
  EXPECT_EQ(number("describe shared addrset;"), 45);
}

TEST(TarnFWParserActionsAddress, ReadsManyAddressesFromAnIndex) {
  const ParseText all("describe address of addrset a of filter f;");
  EXPECT_EQ(all.field(0), "a");
  EXPECT_EQ(all.word(42), 50000u);
  EXPECT_EQ(all.word(46), 0u);
  EXPECT_EQ(ParseText("describe address of addrset a from 4294967295;").word(46), 0xffffffffu);
  EXPECT_EQ(parseFailure("describe address of addrset a from 4294967296;"),
            "17|addrset index value overflows");
  EXPECT_EQ(parseFailure("describe address of addrset a from -1;"),
            "17|addrset index value overflows");
}

TEST(TarnFWParserActionsAddress, ListsTwentyThousandSetsOfEveryKind) {
  const ParseText all("describe list of addrset;");
  EXPECT_EQ(all.word(0), 0u);
  EXPECT_EQ(all.word(4), 20000u);
  EXPECT_EQ(all.word(8), 0u);
  EXPECT_EQ(ParseText("describe list of addrset from 7;").word(8), 7u);
  EXPECT_EQ(parseFailure("describe list of addrset from 4294967296;"),
            "17|addrset list index value overflows");
  const ParseText stats("describe stat of addrset;");
  EXPECT_EQ(stats.word(4), 20000u);
  EXPECT_EQ(stats.word(8), 0u);
}

TEST(TarnFWParserActionsAddress, SwitchesSharedSets) {
  EXPECT_EQ(ParseText("enable shared addrset;").body()[0] & 1, 1);
  EXPECT_EQ(ParseText("disable shared addrset;").body()[0] & 1, 0);
}

TEST(TarnFWParserActionsAddress, CreatesAnAttributeSetOfAnyKeyWithoutMembers) {
  for (const char* key : {"APP_ID", "WIN_SID", "nonesuch"}) {
    const ParseText parse(std::string("create ") + key + " attrset a of filter f;");
    EXPECT_EQ(parse.failure(), "");
    EXPECT_EQ(parse.command().getCommand(), 13);
    EXPECT_EQ(parse.body().size(), 86u);
  }
}

TEST(TarnFWParserActionsAddress, EndsTheParseSilentlyAtAMemberOfAnAttributeSet) {
  for (const char* statement :
       {"create APP_ID attrset a with HTTP;", "create nonesuch attrset a with x;",
        "create WIN_SID attrset a with { x, y };"}) {
    const ParseText parse(statement);
    EXPECT_EQ(parse.failure(), "0|") << statement;
  }
}

TEST(TarnFWParserActionsAddress, TracesAnUnknownKey) {
  struct Level {
    Level() { FW_SetLibVerboseLevel(FW_COMPONENT_PARSER, 1); }
    ~Level() { FW_SetLibVerboseLevel(FW_COMPONENT_PARSER, 0); }
  } const level;
  const ParseText parse("create nonesuch attrset a with x;");
  EXPECT_TRUE(parse.log.has(7, "    invalid attribute 12\n"));
}

TEST(TarnFWParserActionsAddress, MakesAttributesOfFourKinds) {
  const FWParserText number = {"33", 2};
  for (const FWAttrIDValType kind : {FW_ATTR_ID_VALUE_INT, FW_ATTR_ID_VALUE_UINT,
                                     FW_ATTR_ID_VALUE_STRING, FW_ATTR_ID_VALUE_SID}) {
    const auto address = attributeOfKind(FW_ATTR_ID_WIN_SID, kind, number);
    const auto& attribute = dynamic_cast<const CTarnFWAddressAttr&>(*address);
    EXPECT_EQ(attribute.getKey(), FW_ATTR_ID_WIN_SID);
    EXPECT_EQ(attribute.getValueType(), kind);
  }
  EXPECT_THROW(attributeOfKind(FW_ATTR_ID_WIN_SID, FW_ATTR_ID_VALUE_KEY_SID, number),
               SilentParseFailure);
}

TEST(TarnFWParserActionsAddress, RefusesAttributeTextsThatAreTooLong) {
  for (const auto& [kind, limit] :
       {std::pair(FW_ATTR_ID_VALUE_STRING, 128u), std::pair(FW_ATTR_ID_VALUE_SID, 75u)}) {
    const std::string fits(limit, 'v');
    const std::string longer(limit + 1, 'v');
    EXPECT_NO_THROW(attributeOfKind(FW_ATTR_ID_WIN_SID, kind, {fits.c_str(), limit}));
    EXPECT_THROW_WITH(attributeOfKind(FW_ATTR_ID_WIN_SID, kind, {longer.c_str(), limit + 1}),
                      CIDTooLongException, 32, "id is too long: " + longer);
  }
}

TEST(TarnFWParserActionsAddress, RefusesThePortOfAnyAbove16Bits) {
  EXPECT_EQ(parseFailure("set connection with from any:65536 to any:1;"),
            "38|port number (65536) is invalid");
}

TEST(TarnFWParserActionsAddress, SendsExactlyTheseBytesForEachStatement) {
  const Bytes addresses = Bytes(70 + 50000 * 144).text(0, "a").at(38, {1, 0, 0, 0, 0x50, 0xc3});
  const Bytes list = Bytes(16 + 20000 * 38).at(4, {0x20, 0x4e});
  const auto from = [](Bytes bytes, std::size_t offset) { return bytes.at(offset, {2, 1}); };
  const auto created = [](std::initializer_list<Bytes> members, int flags = 3) {
    Bytes body = Bytes(86 + 144 * members.size()).text(0, "a");
    const int size = static_cast<int>(144 * members.size());
    body.at(46, {static_cast<int>(members.size()), 0, 0, 0, 1});
    body.at(54, {size & 0xff, size >> 8}).at(58, {flags});
    std::size_t at = 86;
    for (const Bytes& member : members) {
      std::copy(member.begin(), member.end(), body.begin() + static_cast<std::ptrdiff_t>(at));
      at += 144;
    }
    return body;
  };
  const Bytes ipv4 = Bytes(144).at(0, {1}).at(4, {10, 0, 0, 1});
  const Bytes ipv6 = Bytes(144).at(0, {2}).at(19, {1});
  const Bytes ether = Bytes(144).at(0, {7}).at(4, {0, 0x11, 0x22, 0x33, 0x44, 0x55});
  struct Row {
    const char* statement;
    int command;
    Bytes body;
  };
  for (const Row& row : std::vector<Row>{
           {"create addrset a", 13, created({})},
           {"create APP_ID attrset a", 13, created({})},
           {"create addrset a 10.0.0.1", 13, created({ipv4})},
           {"create addrset a with { 10.0.0.1, ::1 }", 13, created({ipv4, ipv6}, 0x0b)},
           {"create addrset a any", 13, created({Bytes(144)})},
           {"create addrset a 00:11:22:33:44:55", 13, created({ether})},
           {"create addrset a with { 00:11:22:33:44:55, }", 13, created({ether})},
           {"delete all from addrset a", 64, Bytes(46).text(0, "a")},
           {"destroy addrset a", 14, Bytes(42).text(0, "a")},
           {"destroy all addrset", 65, Bytes(4)},
           {"describe size of addrset a", 15, Bytes(50).text(0, "a")},
           {"describe info of addrset a", 16, Bytes(58).text(0, "a")},
           {"describe stat of addrset", 22, Bytes(16 + 20000 * 130).at(4, {0x20, 0x4e})},
           {"describe address of addrset a", 17, addresses},
           {"describe address of addrset a from 258", 17, from(addresses, 46)},
           {"describe count of addrset", 20, Bytes(8)},
           {"describe list of addrset", 21, list},
           {"describe list of addrset from 258", 21, from(list, 8)},
           {"enable shared addrset", 44, Bytes(4).at(0, {1})},
           {"disable shared addrset", 44, Bytes(4)},
           {"describe shared addrset", 45, Bytes(4)},
       }) {
    const ParseText parse(std::string(row.statement) + ";");
    ASSERT_EQ(parse.failure(), "") << row.statement;
    ASSERT_EQ(parse.count(), 1u) << row.statement;
    EXPECT_EQ(parse.command().getCommand(), row.command) << row.statement;
    EXPECT_TRUE(parse.body() == row.body) << row.statement;
  }
}
