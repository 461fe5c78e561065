#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnFWScanner.h"
#include "TarnFWText.h"
#include "tarnfw.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

static_assert(sizeof(YYSTYPE) <= 256);
static_assert(sizeof(YYLTYPE) == 4 * sizeof(int));
static_assert(sizeof(fw_lex_extra_::message) == 256);
static_assert(TK_COMMENT == 258 && TK_CREATE == 259 && TK_NUMBER_RANGE == 255 + 153);

namespace {

std::string etherText(const fw_ether_& ether) {
  return formatText("%02x%02x%02x%02x%02x%02x", ether.octet[0], ether.octet[1], ether.octet[2],
                    ether.octet[3], ether.octet[4], ether.octet[5]);
}

std::string addressText(int family, const void* address) {
  char text[INET6_ADDRSTRLEN];
  return inet_ntop(family, address, text, sizeof text);
}

/// A token as "NAME(value)"; keywords and punctuation as "#code".
std::string tokenText(int token, const YYSTYPE& value) {
  const auto text = [&](const char* name) {
    EXPECT_EQ(std::strlen(value.text->data), value.text->length);
    return std::string(name) + "(" + value.text->data + ")";
  };
  switch (token) {
    case TK_STRING:
      return text("STRING");
    case TK_IPV4:
      return text("IPV4");
    case TK_IPV4_CIDR:
      return text("IPV4_CIDR");
    case TK_IPV4_MASK:
      return text("IPV4_MASK");
    case TK_IPV4_PORT:
      return text("IPV4_PORT");
    case TK_ANY_PORT:
      return text("ANY_PORT");
    case TK_IPV6:
      return text("IPV6");
    case TK_IPV6_CIDR:
      return text("IPV6_CIDR");
    case TK_NUMBER:
      return "NUMBER(" + std::to_string(value.number) + ")";
    case TK_NUMBER_RANGE:
      return formatText("RANGE(%u %u)", value.numberRange.low, value.numberRange.high);
    case TK_IPV4_RANGE:
      return "IPV4_RANGE(" + addressText(AF_INET, &value.ipv4Range.first) + " " +
             addressText(AF_INET, &value.ipv4Range.last) + ")";
    case TK_IPV6_RANGE:
      return "IPV6_RANGE(" + addressText(AF_INET6, &value.ipv6Range->first) + " " +
             addressText(AF_INET6, &value.ipv6Range->last) + ")";
    case TK_ETHER:
      return "ETHER(" + etherText(value.ether) + ")";
    case TK_ETHER_RANGE:
      return "ETHER_RANGE(" + etherText(value.etherPair->first) + " " +
             etherText(value.etherPair->second) + ")";
    case TK_ETHER_MASK:
      return "ETHER_MASK(" + etherText(value.etherPair->first) + " " +
             etherText(value.etherPair->second) + ")";
    case TK_ID_PORT:
      return formatText("ID_PORT(%s %u)", value.idPort->text, value.idPort->port);
    default:
      return "#" + std::to_string(token);
  }
}

/// One scan of a text or a stream, with its record.
class Scan {
 public:
  explicit Scan(const std::string& text) : Scan() {
    buffer_ = yy_scan_string(text.c_str(), scanner_);
    yyset_lineno(1, scanner_);
  }
  explicit Scan(std::FILE* stream) : Scan() { yyset_in(stream, scanner_); }
  ~Scan() {
    if (buffer_ != nullptr) yy_delete_buffer(buffer_, scanner_);
    yylex_destroy(scanner_);
  }
  Scan(const Scan&) = delete;
  Scan& operator=(const Scan&) = delete;

  int next() { return yylex(&value, &location_, scanner_); }
  int line() const { return yyget_lineno(scanner_); }

  std::vector<std::string> all() {
    std::vector<std::string> tokens;
    while (const int token = next()) tokens.push_back(tokenText(token, value));
    return tokens;
  }

  fw_lex_extra_ extra;
  YYSTYPE value = {};

 private:
  Scan() {
    EXPECT_EQ(yylex_init(&scanner_), 0);
    yyset_extra(&extra, scanner_);
    EXPECT_EQ(yyget_extra(scanner_), &extra);
  }

  YYLTYPE location_ = {};
  void* scanner_ = nullptr;
  yy_buffer_state* buffer_ = nullptr;
};

using Tokens = std::vector<std::string>;

Tokens scan(const std::string& text) { return Scan(text).all(); }

/// What a scan that fails leaves: "status|message".
std::string failure(const std::string& text) {
  Scan scan(text);
  scan.all();
  return std::to_string(scan.extra.status) + "|" + scan.extra.message;
}

const std::vector<std::pair<const char*, int>> kKeywords = {
    {"create", 259},
    {"add", 260},
    {"delete", 261},
    {"replace", 262},
    {"describe", 263},
    {"destroy", 264},
    {"enable", 265},
    {"shared", 275},
    {"disable", 266},
    {"set", 267},
    {"reorder", 268},
    {"clear", 269},
    {"ruleset", 270},
    {"address", 274},
    {"addrset", 271},
    {"attribute", 273},
    {"attrset", 272},
    {"rule", 276},
    {"dvswitch", 277},
    {"port", 278},
    {"root", 279},
    {"default", 280},
    {"agent", 281},
    {"dvsport", 282},
    {"inet", 283},
    {"inet6", 284},
    {"ip", 285},
    {"mac", 286},
    {"vnic", 287},
    {"filter", 288},
    {"vif", 289},
    {"size", 290},
    {"info", 291},
    {"stat", 292},
    {"revision", 293},
    {"checksum", 294},
    {"at", 295},
    {"inout", 296},
    {"in", 297},
    {"out", 298},
    {"of", 299},
    {"to", 300},
    {"as", 301},
    {"with", 302},
    {"keypolicy", 365},
    {"and", 303},
    {"into", 304},
    {"from", 305},
    {"all", 306},
    {"pass", 307},
    {"encrypt", 308},
    {"accept", 307},
    {"drop", 309},
    {"deny", 310},
    {"reject", 310},
    {"jumpto", 311},
    {"punt", 312},
    {"pbr", 313},
    {"snat", 314},
    {"dnat", 315},
    {"rbe", 317},
    {"lb", 316},
    {"poolopt", 366},
    {"lbtype", 367},
    {"lbidletimeout", 369},
    {"lbclosetimeout", 370},
    {"lboptions", 368},
    {"random", 374},
    {"round-robin", 373},
    {"l4", 371},
    {"l7", 372},
    {"tcp-conn-balance", 375},
    {"stateless", 323},
    {"dscp", 325},
    {"rtt", 321},
    {"log", 318},
    {"noflow", 319},
    {"lbrule", 320},
    {"tag", 322},
    {"FTP", 326},
    {"ORACLE", 327},
    {"DCERPC", 328},
    {"SUNRPC", 329},
    {"divert", 330},
    {"macrewrite", 331},
    {"copy", 332},
    {"NOT", 333},
    {"ethertype", 334},
    {"protocol", 335},
    {"flag", 336},
    {"flags", 337},
    {"SYN", 338},
    {"FIN", 339},
    {"RST", 340},
    {"PSH", 341},
    {"ACK", 342},
    {"URG", 343},
    {"ECE", 344},
    {"CWR", 345},
    {"NS", 346},
    {"option", 347},
    {"options", 347},
    {"icmptype", 348},
    {"typecode", 349},
    {"list", 350},
    {"connection", 351},
    {"connections", 351},
    {"exportver", 376},
    {"count", 352},
    {"spoofguard", 353},
    {"kif", 354},
    {"ANY", 355},
    {"config", 356},
    {"device", 357},
    {"socket", 359},
    {"save", 361},
    {"file", 358},
    {"ribs", 360},
    {"debug", 362},
    {"strict", 363},
    {"sloppy", 324},
    {"timeout", 364},
    {"extsrcprofile", 377},
    {"attrprofile", 378},
    {"uuid", 382},
    {"mapped", 383},
    {"connattr", 379},
    {"domain2ip", 380},
    {"uid2sidmap", 381},
};

const char* const kUuid = "12345678-9abc-def0-1234-56789abcdef0";
const char* const kGfy = "12 34 56 78 9a bc de f0-12 34 56 78 9a bc de f0";

}  // namespace

TEST(TarnFWScanner, GivesEveryKeywordItsToken) {
  for (const auto& [word, code] : kKeywords) {
    EXPECT_EQ(scan(word), Tokens{"#" + std::to_string(code)}) << word;
  }
}

TEST(TarnFWScanner, TakesAKeywordWithMoreLettersAsAnIdentifier) {
  for (const auto& [word, code] : kKeywords) {
    const std::string longer = std::string(word) + "1";
    EXPECT_EQ(scan(longer), Tokens{"STRING(" + longer + ")"});
  }
}

TEST(TarnFWScanner, ComparesKeywordsExactlyButForTheSixThatIgnoreCase) {
  for (const char* word : {"FTP", "fTp", "ftp"}) {
    EXPECT_EQ(scan(word), Tokens{"#" + std::to_string(TK_FTP)}) << word;
  }
  EXPECT_EQ(scan("oracle DceRpc sunRPC"),
            (Tokens{"#" + std::to_string(TK_ORACLE), "#" + std::to_string(TK_DCERPC),
                    "#" + std::to_string(TK_SUNRPC)}));
  EXPECT_EQ(scan("Not aNy"), (Tokens{"#" + std::to_string(TK_NOT), "#" + std::to_string(TK_ANY)}));
  EXPECT_EQ(scan("Create syn Fin"), (Tokens{"STRING(Create)", "STRING(syn)", "STRING(Fin)"}));
}

TEST(TarnFWScanner, GivesPunctuationItsTokens) {
  EXPECT_EQ(scan("[]{};,:"),
            (Tokens{"#" + std::to_string(TK_LBRACKET), "#" + std::to_string(TK_RBRACKET),
                    "#" + std::to_string(TK_LBRACE), "#" + std::to_string(TK_RBRACE),
                    "#" + std::to_string(TK_SEMICOLON), "#" + std::to_string(TK_COMMA),
                    "#" + std::to_string(TK_COLON)}));
}

TEST(TarnFWScanner, TakesALonePointForPunctuationAndOneWithLettersForAnIdentifier) {
  EXPECT_EQ(scan("."), Tokens{"#" + std::to_string(TK_DOT)});
  EXPECT_EQ(scan(".a"), Tokens{"STRING(.a)"});
}

TEST(TarnFWScanner, DropsBlockCommentsWithTheirNewlines) {
  Scan block("/* a * b\n** / c **/ x /**/ y");
  EXPECT_EQ(block.all(), (Tokens{"STRING(x)", "STRING(y)"}));
  EXPECT_EQ(block.line(), 2);
}

TEST(TarnFWScanner, EndsABlockCommentAtTheFirstClose) {
  EXPECT_EQ(scan("/* a */ b */"), (Tokens{"STRING(b)", "STRING(/)"}));
}

TEST(TarnFWScanner, TakesTheSlashOfAnUnclosedCommentForAnIdentifier) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(scan("/*a"), (Tokens{"STRING(/)", "STRING(a)"}));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unrecognized token:  *\n");
}

TEST(TarnFWScanner, DropsTheCommentsInFrontOfAnUnclosedOne) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(scan("/* a */ b /*/ c # d\n/** e /*"),
            (Tokens{"STRING(b)", "STRING(/)", "STRING(/)", "STRING(c)", "STRING(/)", "STRING(e)",
                    "STRING(/)"}));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Unrecognized token:  *\nUnrecognized token:  *\nUnrecognized token:  *\n"
            "Unrecognized token:  *\n");
  EXPECT_EQ(scan("/* a */ b"), Tokens{"STRING(b)"});
}

TEST(TarnFWScanner, SearchesOnceForTheCloseOfManyUnclosedComments) {
  constexpr int kLines = 40000;
  std::string text;
  std::string messages;
  for (int i = 0; i < kLines; ++i) {
    text += "/* a comment without an end\n";
    messages += "Unrecognized token:  *\n";
  }
  testing::internal::CaptureStderr();
  Scan unclosed(text);
  const Tokens tokens = unclosed.all();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), messages);
  const Tokens line = {"STRING(/)",       "STRING(a)",  "STRING(comment)",
                       "STRING(without)", "STRING(an)", "STRING(end)"};
  ASSERT_EQ(tokens.size(), kLines * line.size());
  for (std::size_t i = 0; i < tokens.size(); ++i) ASSERT_EQ(tokens[i], line[i % line.size()]);
  EXPECT_EQ(unclosed.line(), kLines + 1);
}

TEST(TarnFWScanner, DropsALineCommentWithItsCarriageReturnUpToTheLineFeed) {
  Scan line("a # b \r\nc #");
  EXPECT_EQ(line.all(), (Tokens{"STRING(a)", "STRING(c)"}));
  EXPECT_EQ(line.line(), 2);
}

TEST(TarnFWScanner, CountsALineForEachLineFeedAndNoneForACarriageReturn) {
  Scan lines("a\rb\r\nc\n\rd 'x\n\ny' \"\n\" e");
  lines.all();
  EXPECT_EQ(lines.line(), 6);
}

TEST(TarnFWScanner, TakesTwoNumbersWithAColonForARangeAndSixPairsForAnEthernetAddress) {
  EXPECT_EQ(scan("12:34"), Tokens{"RANGE(12 34)"});
  EXPECT_EQ(scan("12:34:56:78:9a:bc"), Tokens{"ETHER(123456789abc)"});
  EXPECT_EQ(scan("12:34:56"),
            (Tokens{"RANGE(12 34)", "#" + std::to_string(TK_COLON), "NUMBER(56)"}));
}

TEST(TarnFWScanner, ReadsEthernetForms) {
  EXPECT_EQ(scan("00:1A:2b:3C:4d:5E"), Tokens{"ETHER(001a2b3c4d5e)"});
  EXPECT_EQ(scan("00:11:22:33:44:55-00:11:22:33:44:66"),
            Tokens{"ETHER_RANGE(001122334455 001122334466)"});
  EXPECT_EQ(scan("00:11:22:33:44:55/ff:ff:ff:00:00:00"),
            Tokens{"ETHER_MASK(001122334455 ffffff000000)"});
}

TEST(TarnFWScanner, LeavesTheMeaningOfAnIPv4AddressToOthers) {
  EXPECT_EQ(scan("999.1.1.1"), Tokens{"IPV4(999.1.1.1)"});
  EXPECT_EQ(scan("1.2.3.4/33"), Tokens{"IPV4_CIDR(1.2.3.4/33)"});
  EXPECT_EQ(scan("1.2.3.4/100"), (Tokens{"IPV4_CIDR(1.2.3.4/10)", "NUMBER(0)"}));
  EXPECT_EQ(scan("1.2.3.4/255.255.0.0"), Tokens{"IPV4_MASK(1.2.3.4/255.255.0.0)"});
}

TEST(TarnFWScanner, ReadsAtMostFiveDigitsOfAPort) {
  EXPECT_EQ(scan("1.2.3.4:80"), Tokens{"IPV4_PORT(1.2.3.4:80)"});
  EXPECT_EQ(scan("1.2.3.4:123456"), (Tokens{"IPV4_PORT(1.2.3.4:12345)", "NUMBER(6)"}));
  EXPECT_EQ(scan("any:65535"), Tokens{"ANY_PORT(any:65535)"});
}

TEST(TarnFWScanner, TakesAnyWithAPortInLowerCaseOnly) {
  EXPECT_EQ(scan("ANY:80"),
            (Tokens{"#" + std::to_string(TK_ANY), "#" + std::to_string(TK_COLON), "NUMBER(80)"}));
}

TEST(TarnFWScanner, ReadsIPv4Ranges) {
  EXPECT_EQ(scan("10.0.0.5-9"), Tokens{"IPV4_RANGE(10.0.0.5 10.0.0.9)"});
  EXPECT_EQ(scan("10.0.0.5-250"), Tokens{"IPV4_RANGE(10.0.0.5 10.0.0.250)"});
  EXPECT_EQ(scan("10.0.0.5-10.0.1.6"), Tokens{"IPV4_RANGE(10.0.0.5 10.0.1.6)"});
}

TEST(TarnFWScanner, RefusesIPv4RangesWithTheBadPartInTheMessage) {
  EXPECT_EQ(failure("10.0.0.256-9"), "33|invalid ip address - 10.0.0.256");
  EXPECT_EQ(failure("10.0.0.5-256"), "33|invalid ip address - 10.0.0.256");
  EXPECT_EQ(failure("10.0.0.5-010"), "33|invalid ip address - 10.0.0.010");
  EXPECT_EQ(failure("300.0.0.1-10.0.0.2"), "33|invalid ip address - 300.0.0.1");
  EXPECT_EQ(failure("10.0.0.1-10.0.0.999"), "33|invalid ip address - 10.0.0.999");
}

TEST(TarnFWScanner, ReadsEveryShapeOfAnIPv6Address) {
  for (const char* text : {"1:2:3:4:5:6:7:8",
                           "1:2:3:4:5:6:1.2.3.4",
                           "::",
                           "::1",
                           "::1:2:3:4:5:6:7",
                           "::1.2.3.4",
                           "::1:2:3:4:5:1.2.3.4",
                           "1::",
                           "1::2:3:4:5:6:7",
                           "1::2:3:4:5:1.2.3.4",
                           "1:2::",
                           "1:2::3:4:5:6:7",
                           "1:2::3:4:5:1.2.3.4",
                           "1:2:3::4:5:6:7",
                           "1:2:3::4:5:1.2.3.4",
                           "1:2:3:4::5:6:7",
                           "1:2:3:4::5:1.2.3.4",
                           "1:2:3:4:5::6:7",
                           "1:2:3:4:5::1.2.3.4",
                           "1:2:3:4:5:6::7",
                           "1:2:3:4:5:6::",
                           "1:2:3:4:5:6:7::",
                           "abcd::",
                           "fe80::ABCD"}) {
    EXPECT_EQ(scan(text), Tokens{std::string("IPV6(") + text + ")"});
    in6_addr address;
    EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  }
}

TEST(TarnFWScanner, TakesAGroupOfFiveDigitsForAnIdentifier) {
  EXPECT_EQ(scan("abcde::1"), (Tokens{"STRING(abcde)", "IPV6(::1)"}));
}

TEST(TarnFWScanner, ReadsIPv6PrefixesMasksAndRanges) {
  EXPECT_EQ(scan("2001:db8::/32"), Tokens{"IPV6_CIDR(2001:db8::/32)"});
  EXPECT_EQ(scan("2001:db8::/999"), Tokens{"IPV6_CIDR(2001:db8::/999)"});
  EXPECT_EQ(scan("2001:db8::/ffff:ffff::"), Tokens{"IPV6_CIDR(2001:db8::/ffff:ffff::)"});
  EXPECT_EQ(scan("2001:db8::1-2001:db8::1.2.3.4"),
            Tokens{"IPV6_RANGE(2001:db8::1 2001:db8::102:304)"});
}

TEST(TarnFWScanner, RefusesIPv6RangesWithTheBadPartInTheMessage) {
  EXPECT_EQ(failure("::1.2.3.400-::1"), "33|invalid ip address - ::1.2.3.400");
  EXPECT_EQ(failure("::1-::999.1.1.1"), "33|invalid ip address - ::999.1.1.1");
}

TEST(TarnFWScanner, TakesAUuidForAString) {
  EXPECT_EQ(scan(kUuid), Tokens{std::string("STRING(") + kUuid + ")"});
  EXPECT_EQ(scan("12345678-1234-1234-1234-123456789012"),
            Tokens{"STRING(12345678-1234-1234-1234-123456789012)"});
  EXPECT_EQ(scan("12345678-1234"), Tokens{"RANGE(12345678 1234)"});
}

TEST(TarnFWScanner, WritesAUuidWithAPortInTheFormOfTheHostsFiles) {
  for (const char* port : {":7", ".007"}) {
    EXPECT_EQ(scan(kUuid + std::string(port)), Tokens{std::string("ID_PORT(") + kGfy + " 7)"});
  }
  EXPECT_EQ(scan(kUuid + std::string(".1234")),
            (Tokens{std::string("ID_PORT(") + kGfy + " 123)", "NUMBER(4)"}));
  EXPECT_EQ(scan("12345678-9ABC-DEF0-1234-56789ABCDEF0:9"),
            Tokens{std::string("ID_PORT(") + kGfy + " 9)"});
}

TEST(TarnFWScanner, ReadsDecimalsWithASignAndIgnoredSuffixes) {
  EXPECT_EQ(scan("0 12 -7 5u 5U 5l 5L 5uL"),
            (Tokens{"NUMBER(0)", "NUMBER(12)", "NUMBER(-7)", "NUMBER(5)", "NUMBER(5)", "NUMBER(5)",
                    "NUMBER(5)", "NUMBER(5)"}));
  EXPECT_EQ(scan("-1-2"), (Tokens{"NUMBER(-1)", "NUMBER(-2)"}));
}

TEST(TarnFWScanner, ReadsDecimalsOfSixtyFourBitsAndRefusesMore) {
  EXPECT_EQ(scan("9223372036854775807 -9223372036854775808"),
            (Tokens{"NUMBER(9223372036854775807)", "NUMBER(-9223372036854775808)"}));
  EXPECT_EQ(failure("9223372036854775808"), "16|decimal integer overflows - 9223372036854775808");
  EXPECT_EQ(failure("-9223372036854775809u"),
            "16|decimal integer overflows - -9223372036854775809u");
}

TEST(TarnFWScanner, ReadsHexadecimalsWithOneSuffixOfEachKind) {
  errno = 0;
  EXPECT_EQ(scan("0x10 0xfFuL"), (Tokens{"NUMBER(16)", "NUMBER(255)"}));
  EXPECT_EQ(scan("0x1fLL"), (Tokens{"NUMBER(31)", "STRING(L)"}));
  EXPECT_EQ(failure("0x8000000000000000"), "16|hex integer overflows - 0x8000000000000000");
}

TEST(TarnFWScanner, FailsAGoodHexadecimalOnAnErrorThatEarlierWorkLeft) {
  errno = ENOENT;
  EXPECT_EQ(failure("0x10"), "16|hex integer overflows - 0x10");
}

TEST(TarnFWScanner, ClearsAnEarlierErrorBeforeDecimalsAndRanges) {
  errno = ENOENT;
  EXPECT_EQ(failure("10 0x10"), "0|");
  errno = ENOENT;
  EXPECT_EQ(failure("1-2 0x10"), "0|");
}

TEST(TarnFWScanner, CutsTheBoundsOfARangeToThirtyTwoBitsAndLeavesTheirOrder) {
  EXPECT_EQ(scan("9-1 80-80 4294967297:4294967298"),
            (Tokens{"RANGE(9 1)", "RANGE(80 80)", "RANGE(1 2)"}));
}

TEST(TarnFWScanner, RefusesBoundsOfMoreThanSixtyFourBits) {
  EXPECT_EQ(failure("9223372036854775808-1"),
            "16|low bound of decimal range overflows - 9223372036854775808-1");
  EXPECT_EQ(failure("1:9223372036854775808"),
            "16|high bound of decimal range overflows - 1:9223372036854775808");
}

TEST(TarnFWScanner, TakesDashesInsideIdentifiersAndDropsThemInFront) {
  EXPECT_EQ(scan("aa-bb-cc-dd-ee-ff"), Tokens{"STRING(aa-bb-cc-dd-ee-ff)"});
  EXPECT_EQ(scan("a.b-c/d_1"), Tokens{"STRING(a.b-c/d_1)"});
  testing::internal::CaptureStderr();
  EXPECT_EQ(scan("-a"), Tokens{"STRING(a)"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unrecognized token:  -\n");
}

TEST(TarnFWScanner, DropsUnrecognizedCharactersAndGoesOn) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(scan("+5 \xff"), Tokens{"NUMBER(5)"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Unrecognized token:  +\nUnrecognized token:  \xff\n");
}

TEST(TarnFWScanner, TakesNoBlanksButBlanksAndTabs) {
  testing::internal::CaptureStderr();
  Scan blanks(
      "\xef\xbb\xbf"
      "a\tb\vc\fd\xc2\xa0"
      "e\r\nf");
  EXPECT_EQ(blanks.all(),
            (Tokens{"STRING(a)", "STRING(b)", "STRING(c)", "STRING(d)", "STRING(e)", "STRING(f)"}));
  EXPECT_EQ(blanks.line(), 2);
  std::string messages;
  for (const char byte : {'\xef', '\xbb', '\xbf', '\v', '\f', '\xc2', '\xa0'})
    messages += std::string("Unrecognized token:  ") + byte + "\n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(), messages);
}

TEST(TarnFWScanner, DropsANulOfAStreamAndEndsAQuotedTextAtOne) {
  using namespace std::string_literals;
  std::string text = "a\0b # c\0\n/* \0 */ 'd\0e' \0"s;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(
      fmemopen(text.data(), text.size(), "r"), &std::fclose);
  testing::internal::CaptureStderr();
  Scan scan(stream.get());
  EXPECT_EQ(scan.all(), (Tokens{"STRING(a)", "STRING(b)", "STRING(d)"}));
  EXPECT_EQ(scan.line(), 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Unrecognized token:  \0\nUnrecognized token:  \0\n"s);
}

TEST(TarnFWScanner, ReadsQuotedTextsWithoutEscapes) {
  EXPECT_EQ(scan("\"a 'b'\" 'c \"d\"' \"\""),
            (Tokens{"STRING(a 'b')", "STRING(c \"d\")", "STRING()"}));
  EXPECT_EQ(scan("\"two\nlines\""), Tokens{"STRING(two\nlines)"});
  testing::internal::CaptureStderr();
  EXPECT_EQ(scan("\"a\\\"b\""), (Tokens{"STRING(a\\)", "STRING(b)"}));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unrecognized token:  \"\n");
}

TEST(TarnFWScanner, DropsTheQuoteOfAnUnterminatedText) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(scan("\"abc"), Tokens{"STRING(abc)"});
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unrecognized token:  \"\n");
}

TEST(TarnFWScanner, TakesQuotedTextsOf255BytesAndRefusesLongerOnes) {
  const std::string limit(255, 'a');
  EXPECT_EQ(scan("\"" + limit + "\""), Tokens{"STRING(" + limit + ")"});
  EXPECT_EQ(scan("'" + limit + "'"), Tokens{"STRING(" + limit + ")"});
  // The message is cut to its field of 255 characters.
  const std::string message = "31|identifier too long - ";
  EXPECT_EQ(failure("\"" + limit + "a\""), message + "\"" + std::string(232, 'a'));
  EXPECT_EQ(failure("'" + limit + "a'"), message + "'" + std::string(232, 'a'));
}

TEST(TarnFWScanner, TakesIdentifiersOf255BytesAndRefusesLongerOnes) {
  const std::string limit(255, 'a');
  EXPECT_EQ(scan(limit), Tokens{"STRING(" + limit + ")"});
  EXPECT_EQ(failure(limit + "a"), "31|identifier is too long - " + std::string(230, 'a'));
}

TEST(TarnFWScanner, TakesALongTextWithoutItsCloseForWords) {
  const std::string words(300, ' ');
  for (const char quote : {'"', '\''}) {
    testing::internal::CaptureStderr();
    Scan scan("a\n" + (quote + words) + "b\nc");
    EXPECT_EQ(scan.all(), (Tokens{"STRING(a)", "STRING(b)", "STRING(c)"}));
    EXPECT_EQ(scan.line(), 3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string("Unrecognized token:  ") + quote + "\n");
  }
}

TEST(TarnFWScanner, FindsUnclosedTextsInsideOfOneAnother) {
  const std::string words(300, ' ');
  testing::internal::CaptureStderr();
  Scan scan("a \"" + words + "b\n'" + words + "c\n/*" + words + "d\n/* e # f");
  EXPECT_EQ(scan.all(), (Tokens{"STRING(a)", "STRING(b)", "STRING(c)", "STRING(/)", "STRING(d)",
                                "STRING(/)", "STRING(e)"}));
  EXPECT_EQ(scan.line(), 4);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Unrecognized token:  \"\nUnrecognized token:  '\nUnrecognized token:  *\n"
            "Unrecognized token:  *\n");
}

TEST(TarnFWScanner, RefusesALongQuotedTextOnTheLineOfItsClose) {
  Scan scan("a\n\"" + std::string(300, 'x') + "\n\n\" b");
  EXPECT_EQ(scan.all(), Tokens{"STRING(a)"});
  EXPECT_EQ(scan.extra.status, FW_STATUS_NAME_TOO_LONG);
  EXPECT_EQ(scan.line(), 4);
}

TEST(TarnFWScanner, DropsCommentsAndBlanksOfEveryLength) {
  for (const std::size_t length :
       {0u, 1u, 63u, 64u, 65u, 127u, 128u, 129u, 255u, 256u, 257u, 20000u}) {
    const std::string stars(length, '*');
    EXPECT_EQ(scan("a /*" + stars + "*/b"), (Tokens{"STRING(a)", "STRING(b)"})) << length;
    EXPECT_EQ(scan("a /*" + std::string(length, 'x') + "*/b"), (Tokens{"STRING(a)", "STRING(b)"}));
    EXPECT_EQ(scan("a" + std::string(length, ' ') + "\tb"), (Tokens{"STRING(a)", "STRING(b)"}));
    Scan line("a #" + std::string(length, '#') + "\nb");
    EXPECT_EQ(line.all(), (Tokens{"STRING(a)", "STRING(b)"}));
    EXPECT_EQ(line.line(), 2);
  }
}

TEST(TarnFWScanner, RefusesTheRestOfACommentThatIsNotClosedAndTooLongToBeWords) {
  Scan scan("a\n/*" + std::string(CTarnFWScannerInput::kHeldLimit, '\n'));
  EXPECT_EQ(scan.all(), (Tokens{"STRING(a)", "STRING(/)"}));
  EXPECT_EQ(scan.extra.status, FW_STATUS_PARSING_ERROR);
  EXPECT_STREQ(scan.extra.message, "comment is not closed");
  EXPECT_EQ(scan.line(), 2);
  Scan closed("a /*" + std::string(CTarnFWScannerInput::kHeldLimit, '\n') + "*/ b");
  EXPECT_EQ(closed.all(), (Tokens{"STRING(a)", "STRING(b)"}));
}

TEST(TarnFWScanner, RefusesAQuotedTextThatIsTooLongToBeHeldWithoutItsClose) {
  Scan scan("a '" + std::string(CTarnFWScannerInput::kHeldLimit, 'x') + " b");
  EXPECT_EQ(scan.all(), Tokens{"STRING(a)"});
  EXPECT_EQ(scan.extra.status, FW_STATUS_NAME_TOO_LONG);
  EXPECT_EQ(std::string(scan.extra.message), "identifier too long - '" + std::string(232, 'x'));
}

TEST(TarnFWScanner, EndsTheInputAtAFailure) {
  Scan scan("a 10.0.0.256-9 b");
  EXPECT_EQ(scan.all(), Tokens{"STRING(a)"});
  EXPECT_EQ(scan.extra.status, FW_STATUS_INVALID_ADDRESS);
}

TEST(TarnFWScanner, KeepsItsFirstFailure) {
  Scan scan("10.0.0.256-9 10.0.0.257-9");
  EXPECT_EQ(scan.next(), 0);
  EXPECT_EQ(scan.next(), 0);
  EXPECT_STREQ(scan.extra.message, "invalid ip address - 10.0.0.256");
}

TEST(TarnFWScanner, ReadsAStreamWithATokenLongerThanItsBuffer) {
  std::string text = "/*" + std::string(100000, 'x') + "*/ a\n";
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(fmemopen(text.data(), text.size(), "r"),
                                                         &std::fclose);
  Scan scan(stream.get());
  EXPECT_EQ(scan.all(), Tokens{"STRING(a)"});
  EXPECT_EQ(scan.line(), 2);
}

TEST(TarnFWScanner, ScansACopyOfTheString) {
  std::string text = "before";
  Scan scan(text);
  text.assign("after!");
  EXPECT_EQ(scan.all(), Tokens{"STRING(before)"});
}

TEST(TarnFWScanner, KeepsTheStateOfTwoScansApart) {
  Scan first("a\nb");
  Scan second("c d");
  first.next();
  second.next();
  first.next();
  EXPECT_STREQ(first.value.text->data, "b");
  EXPECT_STREQ(second.value.text->data, "c");
  EXPECT_EQ(first.line(), 2);
  EXPECT_EQ(second.line(), 1);
}

TEST(TarnFWScanner, GivesTheKeywordRuleThePlaceWhereItsTextsBegin) {
  Scan scan("a rule b");
  scan.next();
  scan.next();
  const auto mark = scan.value.mark;
  scan.next();
  const FWParserText* text = scan.value.text;
  scan.extra.arena.release(mark);
  EXPECT_EQ(scan.extra.arena.copy("c", 1), text);
}

TEST(TarnFWScanner, TracesEveryActionWhenItsComponentIsOn) {
  LogCapture log;
  FW_SetLibVerboseLevel(FW_COMPONENT_LEXER, 1);
  log.clear();
  errno = 0;
  scan(
      "create lboptions domain2ip lbrule dscp l4 l7 round-robin FTP # c\n"
      "1.2.3.4/8 1.2.3.4/255.0.0.0 1.2.3.4-9 1.2.3.4 1.2.3.4:80 ::1 ::1/64 ::1-::2 any:80 "
      "'s' 1 1-2 0x1 id 00:11:22:33:44:55 00:11:22:33:44:55/ff:ff:ff:ff:ff:ff "
      "00:11:22:33:44:55-00:11:22:33:44:66");
  scan(std::string(kUuid) + " " + kUuid + ".5");
  const std::vector<std::string> words = {"*CREATE*",
                                          "*LBPOTIONS*",
                                          "*DOMAIP2IP*",
                                          "*LB*",
                                          "*dscp*",
                                          "*l4*",
                                          "*l7*",
                                          "*ROUND-ROBIN*",
                                          "*FTP*",
                                          "*COMMENT*",
                                          "IPv4_CIDR(1.2.3.4/8)",
                                          "IPv4_MASK(1.2.3.4/255.0.0.0)",
                                          "IPv4_RANGE(1.2.3.4-9)",
                                          "IPv4(1.2.3.4)",
                                          "IPv4:port(1.2.3.4:80)",
                                          "IPv6(::1)",
                                          "IPv6_CIDR(::1/64)",
                                          "IPv6_RANGE(::1-::2)",
                                          "any:port(any:80)",
                                          "string('s')",
                                          "INT<1>",
                                          "INT_Range<1-2>",
                                          "HEX<0x1>",
                                          "ID(id)",
                                          "Ethernet(00:11:22:33:44:55)",
                                          "Ethernet_Mask(00:11:22:33:44:55/ff:ff:ff:ff:ff:ff)",
                                          "Ethernet_Range(00:11:22:33:44:55-00:11:22:33:44:66)",
                                          std::string("UUID(") + kUuid + ")",
                                          std::string("UUID.port(") + kUuid + ".5)",
                                          std::string("  gfy UUID.port(") + kGfy + ":5)"};
  ASSERT_EQ(log.lines().size(), words.size());
  const auto lines = log.normalized();
  for (std::size_t i = 0; i < words.size(); ++i) {
    EXPECT_EQ(lines[i], "7|tarnfw:lexer tarnfw_scanner:yylex():N " + words[i] + " \n");
  }
}

TEST(TarnFWScanner, TracesEveryKeywordByItsWordInCapitalsButForSixOddOnes) {
  // The words of the six are kept as they are.
  const std::map<std::string, std::string> odd = {{"lboptions", "LBPOTIONS"},
                                                  {"domain2ip", "DOMAIP2IP"},
                                                  {"lbrule", "LB"},
                                                  {"dscp", "dscp"},
                                                  {"l4", "l4"},
                                                  {"l7", "l7"}};
  LogCapture log;
  FW_SetLibVerboseLevel(FW_COMPONENT_LEXER, 1);
  for (const auto& [word, code] : kKeywords) {
    std::string shown = word;
    std::transform(shown.begin(), shown.end(), shown.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (const auto found = odd.find(word); found != odd.end()) shown = found->second;
    log.clear();
    scan(word);
    EXPECT_EQ(
        log.normalized(),
        std::vector<std::string>{"7|tarnfw:lexer tarnfw_scanner:yylex():N *" + shown + "* \n"})
        << word;
  }
}

TEST(TarnFWScanner, GivesATokenThatNoParseAcceptsWhenTheInputCannotBeRead) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> folder(std::fopen("/", "r"), &std::fclose);
  Scan scan(folder.get());
  EXPECT_EQ(scan.next(), TK_YYUNDEF);
  EXPECT_EQ(scan.extra.status, FW_STATUS_CANNOT_LOAD_FILE);
  EXPECT_STREQ(scan.extra.message, "cannot read the configuration");
}

TEST(TarnFWScanner, TracesTheSlashOfAnUnclosedCommentAsAnIdentifier) {
  LogCapture log;
  FW_SetLibVerboseLevel(FW_COMPONENT_LEXER, 1);
  log.clear();
  testing::internal::CaptureStderr();
  scan("/* a */ /*");
  testing::internal::GetCapturedStderr();
  ASSERT_EQ(log.lines().size(), 2u);
  EXPECT_EQ(log.normalized()[0], "7|tarnfw:lexer tarnfw_scanner:yylex():N *COMMENT* \n");
  EXPECT_EQ(log.normalized()[1], "7|tarnfw:lexer tarnfw_scanner:yylex():N ID(/) \n");
}
