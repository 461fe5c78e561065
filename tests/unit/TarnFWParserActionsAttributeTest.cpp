#include <gtest/gtest.h>

#include <cstring>

#include "Expect.h"
#include "ParseText.h"
#include "TarnFWLog.h"
#include "TarnFWParserActionsAttribute.h"

using namespace TarnFirewall;

namespace {

const std::string kUuid = "00010203-0405-0607-0809-0a0b0c0d0e0f";
const std::string kOther = "10010203-0405-0607-0809-0a0b0c0d0e0f";

/// Attributes of the profile that a statement creates, as its text has them.
std::string attributes(const std::string& list) {
  const ParseText parse("create attrprofile p of filter f with { " + list + " };");
  EXPECT_EQ(parse.failure(), "") << list;
  if (parse.count() != 1) return "(no command)";
  EXPECT_EQ(parse.command().getCommand(), 75);
  EXPECT_STREQ(parse.command().currentPort().identifier, "f");
  const std::string text = parse.text();
  return text.substr(text.find(" with ") + 6);
}

std::string attributesFailure(const std::string& list) {
  return parseFailure("create attrprofile p with { " + list + " };");
}

}  // namespace

TEST(TarnFWParserActionsAttribute, MakesOneAttributeOfEachValue) {
  const ParseText parse(
      "create attrprofile \"web apps\" with { [ TLS_VERSION : TLS_V12 ], "
      "[ TLS_VERSION : 770 ] };");
  ASSERT_EQ(parse.failure(), "");
  const std::vector<std::uint8_t> body = parse.body();
  // The head of 86 bytes, the chain's head of 12, and for each attribute 8 and its record of 18.
  Bytes golden(86 + 12 + 2 * 26);
  golden.text(0, "web apps").at(46, {2}).at(50, {2}).at(54, {64}).at(58, {3});
  golden.at(86, {2, 0, 0, 0, 2, 0, 0, 0, 52, 0, 0, 0});
  golden.at(98, {1, 0, 0, 0, 18, 0, 0, 0, 1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 0x02, 3});
  golden.at(124, {1, 0, 0, 0, 18, 0, 0, 0, 1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 0x03, 3});
  EXPECT_EQ(Bytes(body.begin(), body.end()), golden);
}

TEST(TarnFWParserActionsAttribute, TakesTextsNumbersAndIdentifiers) {
  EXPECT_EQ(attributes("[ APP_ID : APP_HTTP ]"), attributes("[ \"APP_ID\" : \"APP_HTTP\" ]"));
  EXPECT_EQ(attributes("[ TLS_VERSION : 771 ]"), attributes("[ TLS_VERSION : TLS_V12 ]"));
  EXPECT_EQ(attributes("[ FQDN : www.example.com uuid " + kUuid + " ]"),
            "p with {\n[ FQDN : www.example.com]\n}");
  EXPECT_EQ(attributes("[ WIN_SID : \"S-1-5-21-1\" ]"), "p with {\n[ WIN_SID : S-1-5-21-1]\n}");
}

TEST(TarnFWParserActionsAttribute, JoinsTheListsInTheirOrderAndDropsDuplicates) {
  EXPECT_EQ(attributes("[ TLS_VERSION : TLS_V12, TLS_V11 ], [ TLS_VERSION : TLS_V13 ], "
                       "[ FTP_COMMAND : 1 ], [ TLS_VERSION : 771 ]"),
            attributes("[ FTP_COMMAND : 1 ], [ TLS_VERSION : TLS_V11, TLS_V12, TLS_V13 ]"));
}

TEST(TarnFWParserActionsAttribute, LogsEveryElementThatAProfileGets) {
  for (const int level : {0, 1}) {
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_PARSER].level = level;
    auto list = std::make_unique<FWL7Attributes>();
    for (const long version : {769L, 770L}) {
      list->push_back(std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_TLS_VERSION, version));
    }
    createAttrProfile(nullptr, {"p", 1}, std::move(list));
    const std::string line =
        "7|tarnfw:parser tarnfw_parser:createAttrProfile():N adding element\n";
    EXPECT_EQ(log.normalized(), std::vector<std::string>(level == 0 ? 0 : 2, line));
  }
}

TEST(TarnFWParserActionsAttribute, RefusesANameThatIsNoKey) {
  EXPECT_EQ(attributesFailure("[ nonesuch : a ]"), "16|invalid key nonesuch");
  EXPECT_EQ(attributesFailure("[ nonesuch : 1 ]"), "16|invalid key nonesuch");
  EXPECT_EQ(attributesFailure("[ \"\" : uuid " + kUuid + " ]"), "16|invalid key ");
  EXPECT_EQ(attributesFailure("[ app_id : APP_HTTP ]"), "16|invalid key app_id");
  EXPECT_EQ(attributesFailure("[ APP_ID : APP_HTTP ], [ nonesuch : a ]"),
            "16|invalid key nonesuch");
}

TEST(TarnFWParserActionsAttribute, RefusesAValueThatItsKeyDoesNotTake) {
  EXPECT_EQ(attributesFailure("[ TLS_VERSION : TLS_V9 ]"),
            "67|invalid attribute value TLS_VERSION : TLS_V9");
  EXPECT_EQ(attributesFailure("[ TLS_VERSION : TLS_V12, 1 ]").substr(0, 26),
            "16|syntax error, unexpecte");
  EXPECT_EQ(attributesFailure("[ WIN_SID : a ]"), "67|invalid attribute value WIN_SID : a");
  EXPECT_EQ(attributesFailure("[ FQDN : a ]"),
            "67|invalid attribute value invalid type for key: FQDN value: a");
  EXPECT_EQ(attributesFailure("[ PROCESS_HASH : 1 ]"),
            "67|invalid attribute value invalid type for PROCESS_HASH : 1");
  EXPECT_EQ(attributesFailure("[ APP_ID : uuid " + kUuid + " ]").substr(0, 34),
            "67|invalid attribute value APP_ID ");
}

TEST(TarnFWParserActionsAttribute, RefusesANumberThatNamesNothing) {
  // The second is 771 in its low 32 bits. The table of the key has logged it before.
  for (const std::string number : {"5", "4294968067", "-1"}) {
    const ParseText parse("create attrprofile p with { [ TLS_VERSION : " + number + " ] };");
    EXPECT_EQ(parse.result, 1);
    EXPECT_EQ(parse.status, 67u);
    EXPECT_EQ(parse.list, nullptr);
    EXPECT_TRUE(parse.log.has(3, "TLS_VERSION : failed to find value\n\n"));
    EXPECT_TRUE(
        parse.log.has(3, "[name:1] invalid attribute value TLS_VERSION : " + number + "\n"));
  }
}

TEST(TarnFWParserActionsAttribute, RefusesATextThatIsNoIdentifier) {
  EXPECT_EQ(attributesFailure("[ FQDN : uuid nonesuch ]"), "16|invalid uuid value nonesuch");
  EXPECT_EQ(attributesFailure("[ FQDN : a uuid \"\" ]"), "16|invalid uuid value ");
  EXPECT_EQ(attributesFailure("[ FQDN : uuid " + kUuid + ", b uuid x ]"),
            "16|invalid uuid value x");
}

TEST(TarnFWParserActionsAttribute, LeavesNothingOfAListThatASyntaxErrorEnds) {
  for (const std::string& text :
       {std::string("[ APP_ID : a, b"), std::string("[ APP_ID : 1, 2"),
        "[ FQDN : uuid " + kUuid + ", uuid " + kOther, std::string("[ APP_ID : APP_HTTP ]"),
        "[ APP_ID : APP_HTTP ], [ FQDN : a uuid " + kUuid + " ], ["}) {
    EXPECT_EQ(parseFailure("create attrprofile p with { " + text + ";").substr(0, 16),
              "16|syntax error,")
        << text;
  }
}

TEST(TarnFWParserActionsAttribute, TakesProfileNamesOf37Characters) {
  const std::string name(37, 'n');
  EXPECT_EQ(parseFailure("create attrprofile " + name + " with { [ APP_ID : APP_HTTP ] };"), "");
  EXPECT_EQ(parseFailure("create attrprofile " + name + "n with { [ APP_ID : APP_HTTP ] };")
                .substr(0, 29),
            "69|invalid container name: nn");
}

TEST(TarnFWParserActionsAttribute, DeletesAProfileAsAnAddressSet) {
  const ParseText parse("delete attrprofile \"web apps\" of filter f;");
  ASSERT_EQ(parse.failure(), "");
  EXPECT_EQ(parse.command().getCommand(), 14);
  EXPECT_EQ(parse.field(0), "web apps");
  EXPECT_EQ(parse.body().size(), 42u);
  EXPECT_EQ(parse.text(), "destroy addrset web apps of filter f");
  const std::string name(38, 'n');
  EXPECT_EQ(parseFailure("delete attrprofile " + name + ";"),
            "32|addrset name (" + name + ") is too long");
}

namespace {

Bytes bodyOf(const std::string& statement) {
  const ParseText parse(statement + ";");
  EXPECT_EQ(parse.failure(), "") << statement;
  if (parse.count() != 1) return {};
  const std::vector<std::uint8_t> body = parse.body();
  return Bytes(body.begin(), body.end());
}

void putUuid(Bytes& bytes, std::size_t offset, int first) {
  for (int i = 0; i < 16; ++i) {
    bytes.at(offset + static_cast<std::size_t>(i), {i == 0 ? first : i});
  }
}

}  // namespace

TEST(TarnFWParserActionsAttribute, BindsADomainToItsAddresses) {
  EXPECT_EQ(numberAndText("add domain2ip of filter f ab uuid " + kUuid + " with { 10.1.2.3 }")
                .substr(0, 3),
            "76|");
  // 8, the attribute with its head of 8, and 144 for each address.
  Bytes golden(8 + 8 + 31 + 2 * 144);
  golden.at(0, {2, 0, 0, 0, 71, 1, 0, 0});
  golden.at(8, {1, 0, 0, 0, 31, 0, 0, 0});
  golden.at(16, {7, 0, 3, 0, 31, 0, 0, 0, 0, 0});
  putUuid(golden, 26, 0);
  golden.at(42, {3, 0}).text(44, "ab");
  golden.at(47, {1}).at(51, {10, 1, 2, 3});
  golden.at(191, {2}).at(195, {0x20, 1, 0x0d, 0xb8}).at(210, {1});
  EXPECT_EQ(bodyOf("add domain2ip ab uuid " + kUuid + " with { { 10.1.2.3, 2001:db8::1 } }"),
            golden);
}

TEST(TarnFWParserActionsAttribute, ADomainNeedsNeitherANameNorAddresses) {
  Bytes golden(8 + 8 + 28);
  golden.at(4, {36}).at(8, {1, 0, 0, 0, 28, 0, 0, 0}).at(16, {7, 0, 3, 0, 28});
  putUuid(golden, 26, 0x10);
  EXPECT_EQ(bodyOf("add domain2ip uuid " + kOther + " with { { } }"), golden);
}

TEST(TarnFWParserActionsAttribute, AddressesOfADomainAreJudgedAsThoseOfASet) {
  // A range without braces of its own stays one; inside them it becomes its blocks.
  EXPECT_EQ(bodyOf("add domain2ip uuid " + kUuid + " with { 10.0.0.1-9 }")[0], 1);
  EXPECT_EQ(bodyOf("add domain2ip uuid " + kUuid + " with { { 10.0.0.1-9 } }")[0], 4);
  EXPECT_EQ(parseFailure("add domain2ip uuid " + kUuid + " with { 999.0.0.1 };"), "33|999.0.0.1");
  EXPECT_EQ(parseFailure("add domain2ip uuid nonesuch with { 10.0.0.1 };"),
            "16|invalid uuid value nonesuch");
}

TEST(TarnFWParserActionsAttribute, MapsAUserToSecurityIdentifiers) {
  EXPECT_EQ(
      numberAndText("set uid2sidmap of filter f \"S-1-5-21\" { \"S-1-5-32-544\" }").substr(0, 3),
      "80|");
  Bytes golden(84 + 2 * 72);
  golden.at(8, {2});
  golden.at(16, {1, 1, 0, 0, 0, 0, 0, 5, 21});
  golden.at(88, {1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2});
  golden.at(160, {1, 0, 0, 0, 0, 0, 0, 6});
  EXPECT_EQ(bodyOf("set uid2sidmap \"S-1-5-21\" { \"S-1-5-32-544\", \"s-1-6\" }"), golden);
}

TEST(TarnFWParserActionsAttribute, RefusesTextsThatAreNoSecurityIdentifiers) {
  EXPECT_EQ(parseFailure("set uid2sidmap \"S-2-5\" { a };"), "16|invalid uid");
  // The message has its own line end, which the log's readers know.
  EXPECT_EQ(parseFailure("set uid2sidmap \"S-1-5\" { \"S-1-5\", a, b };"), "16|invalid sid : a\n");
  EXPECT_EQ(parseFailure("set uid2sidmap \"S-1-5\" { \"\" };"), "16|invalid sid : \n");
}

TEST(TarnFWParserActionsAttribute, GivesAttributesToADescribedConnection) {
  EXPECT_EQ(numberAndText("set connattr of filter f 10.0.0.1 1 10.0.0.2 2 tcp dir_in with "
                          "{ [ TLS_VERSION : 771 ] }")
                .substr(0, 3),
            "73|");
  Bytes golden(68 + 12 + 26);
  golden.at(8, {10, 0, 0, 1}).at(24, {10, 0, 0, 2}).at(40, {0, 1, 0, 2}).at(44, {2, 0, 0, 6});
  golden.at(48, {1}).at(60, {1}).at(64, {38});
  golden.at(68, {2, 0, 0, 0, 1, 0, 0, 0, 26, 0, 0, 0});
  golden.at(80, {1, 0, 0, 0, 18, 0, 0, 0, 1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 3, 3});
  const std::string connection = "set connattr 10.0.0.1 1 10.0.0.2 2 tcp dir_in";
  EXPECT_EQ(bodyOf(connection + " with { [ TLS_VERSION : 771 ] }"), golden);
  // A description goes before a state.
  EXPECT_EQ(bodyOf(connection + " 77 with { [ TLS_VERSION : 771, 771 ] }"), golden);
}

TEST(TarnFWParserActionsAttribute, GivesAttributesToAConnectionByItsState) {
  Bytes golden(68 + 12 + 26);
  golden.at(55, {1, 2, 3, 4, 5}).at(60, {1}).at(64, {38});
  golden.at(68, {2, 0, 0, 0, 1, 0, 0, 0, 26, 0, 0, 0});
  golden.at(80, {1, 0, 0, 0, 18, 0, 0, 0, 1, 0, 2, 0, 18, 0, 0, 0, 0, 0, 3, 3});
  EXPECT_EQ(bodyOf("set connattr 4328719365 with { [ TLS_VERSION : 771 ] }"), golden);
}

TEST(TarnFWParserActionsAttribute, EndsSilentlyWithoutAConnection) {
  EXPECT_EQ(parseFailure("set connattr with { [ TLS_VERSION : 771 ] };"), "0|");
  EXPECT_EQ(
      parseFailure("set connattr 0 of filter f with { [ TLS_VERSION : 771 ] };").substr(0, 16),
      "16|syntax error,");
  EXPECT_EQ(parseFailure("set connattr of filter f 0 with { [ TLS_VERSION : 771 ] };"), "0|");
  EXPECT_EQ(parseFailure("set connattr 0 with { [ TLS_VERSION : TLS_V9 ] };"),
            "67|invalid attribute value TLS_VERSION : TLS_V9");
}
