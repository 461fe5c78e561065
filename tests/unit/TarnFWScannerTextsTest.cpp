// The scanner on identifiers and quoted texts, on input of every length and on streams.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "ScannedTokens.h"

using namespace ScannedTokens;

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
