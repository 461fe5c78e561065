// The trace of the scanner.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "ScannedTokens.h"
#include "TarnFWLog.h"

using namespace ScannedTokens;

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
