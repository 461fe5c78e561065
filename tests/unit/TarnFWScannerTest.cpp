// The scanner on keywords, punctuation and comments.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ScannedTokens.h"

using namespace ScannedTokens;

static_assert(sizeof(YYSTYPE) <= 256);
static_assert(sizeof(YYLTYPE) == 4 * sizeof(int));
static_assert(sizeof(fw_lex_extra_::message) == 256);
static_assert(TK_COMMENT == 258 && TK_CREATE == 259 && TK_NUMBER_RANGE == 255 + 153);

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
