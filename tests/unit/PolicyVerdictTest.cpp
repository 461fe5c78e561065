#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "LibraryVerdict.h"
#include "PolicyText.h"

namespace {

/// Every text of a folder, by its name.
std::vector<std::pair<std::string, std::string>> textsOf(const std::string& folder) {
  std::vector<std::pair<std::string, std::string>> texts;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    texts.emplace_back(entry.path().string(),
                       std::string(std::istreambuf_iterator<char>(file), {}));
  }
  return texts;
}

void expectSameVerdict(const std::string& name, const std::string& text) {
  const Diagnostics diagnostics = checked({text});
  testing::internal::CaptureStderr();  // the scanner names there what it skips
  const bool accepted = libraryAccepts(text);
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(diagnostics.errors() == 0, accepted) << name;
}

TEST(PolicyVerdict, IsTheLibrarysForEveryTextOfTheCorpus) {
  const auto texts = textsOf(TARNFW_CORPUS "/ConfigText");
  EXPECT_GT(texts.size(), 90u);
  for (const auto& [name, text] : texts) expectSameVerdict(name, text);
}

TEST(PolicyVerdict, IsTheLibrarysForTheBytesOfOtherCorpora) {
  const auto texts = textsOf(TARNFW_CORPUS);
  EXPECT_GT(texts.size(), 500u);
  for (const auto& [name, text] : texts) expectSameVerdict(name, text);
}

TEST(PolicyVerdict, IsTheLibrarysForEveryBeginningOfAText) {
  const std::string text =
      "create addrset \"a\" { 10.0.0.1-9, 2001:db8::/32 }; # c\n"
      "create ruleset \"w\" with {\n rule 1 in protocol tcp from any to \"a\" port { 80, 90-99 } "
      "accept with log tag 't';\n rule 2 out protocol any from 10.0.0.1-9 to any snat ip 1.2.3.4; "
      "/* x */ };\nset root ruleset \"w\" and \"\";";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    expectSameVerdict(text.substr(0, length), text.substr(0, length));
    std::string without = text;
    without.erase(length, 3);
    expectSameVerdict(without, without);
  }
}

TEST(PolicyVerdict, IsTheLibrarysWhereTheTextIsNotReadToItsEnd) {
  const std::string longName(300, 'n');
  for (const std::string& text : {
           std::string("create addrset a; ") + longName + "; nonsense",
           std::string("create addrset ") + longName + "; create addrset b;",
           std::string("create addrset a; '") + longName + "'; nonsense",
           std::string("create addrset a; '") + longName + "; nonsense",
           std::string("create addrset '") + longName + "'; nonsense",
           std::string("create addrset a /* ; nonsense"),
           std::string("create addrset a; /* ; nonsense"),
           std::string("create addrset \"a\"; \" create addrset b;"),
           std::string("99999999999999999999; nonsense"),
           std::string("rule 99999999999999999999"),
           std::string("create addrset a\0; create addrset b;", 35),
           std::string(),
           std::string(";"),
       }) {
    expectSameVerdict(text, text);
  }
}

}  // namespace
