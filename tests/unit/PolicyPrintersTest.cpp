#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "CheckTexts.h"
#include "DiagnosticPrinter.h"

namespace {

/// What a printer writes.
std::string printed(const std::function<void(std::FILE*)>& print) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = open_memstream(&text, &size);
  print(stream);
  std::fclose(stream);
  std::string result(text, size);
  std::free(text);
  return result;
}

std::string printedFor(const std::string& text,
                       void (*print)(std::FILE*, const SourceTexts&, const Diagnostics&)) {
  SourceTexts sources;
  sources.emplace_back("1.conf", text);
  const Diagnostics diagnostics = checkTexts(sources);
  return printed([&](std::FILE* stream) { print(stream, sources, diagnostics); });
}

void printPlain(std::FILE* stream, const SourceTexts& sources, const Diagnostics& diagnostics) {
  printForPeople(stream, sources, diagnostics, false);
}

/// The numbers after a key, in their order.
std::vector<unsigned long> numbersOf(const std::string& json, const std::string& key) {
  std::vector<unsigned long> numbers;
  const std::string mark = "\"" + key + "\": ";
  for (std::size_t at = json.find(mark); at != json.npos; at = json.find(mark, at + 1)) {
    numbers.push_back(std::strtoul(json.c_str() + at + mark.size(), nullptr, 10));
  }
  return numbers;
}

TEST(PolicyPrinters, ColumnsOfSarifAreCharactersAlsoInLongLines) {
  // Characters of one to four bytes, a byte that is none, and a mistake after each of them.
  const std::string letters[] = {"a", "\xc3\xa4", "\xe4\xb8\xad", "\xf0\x9f\x98\x80", "\xff"};
  std::string text;
  std::vector<unsigned long> columns;
  unsigned long column = 1;
  for (int i = 0; i < 2000; ++i) {
    if (i == 1000) {
      text += "\n";
      column = 1;
    }
    text += "/*" + letters[i % 5] + "*/";
    column += 5;
    columns.push_back(column);
    text += "x;";
    column += 2;
  }
  EXPECT_EQ(numbersOf(printedFor(text, printSarif), "startColumn"), columns);
  for (unsigned long& one : columns) ++one;
  EXPECT_EQ(numbersOf(printedFor(text, printSarif), "endColumn"), columns);
}

TEST(PolicyPrinters, ManyFindsInOneLineCostNoMoreThanInMany) {
  std::string text;
  for (int i = 0; i < 50000; ++i) text += "+ ";
  text = std::string(2000000, ' ') + text + std::string(2000000, ' ') + ";";
  EXPECT_EQ(numbersOf(printedFor(text, printSarif), "startColumn").size(), 50001u);
  const std::string lines = printedFor(text, printPlain);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '^'), 50001);
}

TEST(PolicyPrinters, ALongLineIsShownAroundThePlace) {
  const std::string blanks(100, ' ');
  EXPECT_EQ(printedFor(blanks + "x;" + std::string(97, 'a') + "\xe4\xb8\xad\r\n", printPlain)
                .substr(0, 300)
                .find("..."),
            std::string("1.conf:1:101: error: unexpected `x` [syntax]\n    ").size());
  // What does not fit ends with a whole character.
  const std::string line =
      printedFor("x; #" + std::string(95, 'a') + "\xe4\xb8\xad" + "bbb", printPlain);
  EXPECT_NE(line.find("x; #" + std::string(95, 'a') + "\n"), line.npos) << line;
  const std::string whole =
      printedFor("x; #" + std::string(93, 'a') + "\xe4\xb8\xad" + "bbb", printPlain);
  EXPECT_NE(whole.find("x; #" + std::string(93, 'a') + "\xe4\xb8\xad\n"), whole.npos) << whole;
  const std::string crlf = printedFor("x; #" + std::string(95, 'a') + "\r\nbbb", printPlain);
  EXPECT_NE(crlf.find("x; #" + std::string(95, 'a') + "\n"), crlf.npos) << crlf;
}

}  // namespace
