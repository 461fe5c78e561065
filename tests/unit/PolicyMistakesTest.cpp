#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "PolicyText.h"

namespace {

struct Mistake {
  const char* what;
  const char* text;
};

constexpr Mistake kMistakes[] = {
    {"misspelled keyword",
     "create ruleset \"w\" with rule 1 in protocl tcp from any to any accept;"},
    {"misspelled first word", "crate addrset \"a\";"},
    {"misspelled second word", "create rulset \"w\";"},
    {"keyword in capitals",
     "create ruleset \"w\" with rule 1 IN protocol tcp from any to any accept;"},
    {"missing `;`", "describe timeout"},
    {"missing `;` after a rule",
     "create ruleset \"w\" with { rule 1 in protocol tcp from any to any accept };"},
    {"missing `}`", "create addrset \"a\" { 10.0.0.1, 10.0.0.2;"},
    {"missing `{`",
     "create ruleset \"w\" with rule 1 in protocol tcp from any to any accept; rule 2;"},
    {"missing `,`", "create addrset \"a\" { 10.0.0.1 10.0.0.2 };"},
    {"missing quotation mark", "create addrset \"a;"},
    {"unknown set",
     "create ruleset \"w\" with rule 1 in protocol tcp from \"nets\" to any accept;"},
    {"misspelled name of a set",
     "create addrset \"nets\" 10.0.0.1; "
     "create ruleset \"w\" with rule 1 in protocol tcp from \"nets\" to \"nest\" accept;"},
    {"wrong prefix", "create addrset \"a\" 10.0.0.0/33;"},
    {"wrong mask", "create addrset \"a\" 10.0.0.0/255.0.255.0;"},
    {"wrong address", "create addrset \"a\" 10.0.0.256;"},
    {"reversed range of addresses", "create addrset \"a\" 10.0.0.9-10.0.0.1;"},
    {"reversed range of ports",
     "create ruleset \"w\" with rule 1 in protocol tcp from any to any port 90-80 accept;"},
    {"port above 65535",
     "create ruleset \"w\" with rule 1 in protocol tcp from any to any port 65536 accept;"},
    {"port without TCP or UDP",
     "create ruleset \"w\" with rule 1 in protocol any from any to any port 80 accept;"},
    {"unquoted keyword as a name", "create addrset port;"},
    {"number as a name", "create addrset 7;"},
    {"file of another kind", "{ \"rules\": [] }"},
    {"file of a kind that is not known", "name,address"},
};

/// The table's row of a mistake, from what a check finds first in its text.
std::string rowOfMistake(const Mistake& mistake) {
  SourceTexts sources;
  sources.emplace_back("x", mistake.text);
  const Diagnostics diagnostics = checkTexts(sources);
  const std::string row = std::string("| ") + mistake.what + " | `` " + mistake.text + " `` | ";
  if (diagnostics.all().empty()) return row + "nothing | |";
  const Diagnostic& first = diagnostics.all()[0];
  std::string remedy = first.help;
  return row + "column " + std::to_string(sources[0].place(first.range.begin).column) + ": " +
         first.message + " | " + remedy + " |";
}

TEST(PolicyMistakes, TheTableInTheDocumentsIsWhatIsFound) {
  std::ifstream page(TARNFW_CHECKS_PAGE);
  const std::string text(std::istreambuf_iterator<char>(page), {});
  std::string table = "| Mistake | Text | What is found | Remedy |\n|---|---|---|---|\n";
  for (const Mistake& mistake : kMistakes) table += rowOfMistake(mistake) + "\n";
  EXPECT_NE(text.find("\n" + table + "\n"), text.npos) << table;
}

TEST(PolicyMistakes, EachIsFoundAndHasARemedy) {
  for (const Mistake& mistake : kMistakes) {
    const Diagnostics diagnostics = checked({mistake.text});
    ASSERT_FALSE(diagnostics.all().empty()) << mistake.what;
    EXPECT_FALSE(diagnostics.all()[0].help.empty()) << mistake.what;
  }
}

}  // namespace
