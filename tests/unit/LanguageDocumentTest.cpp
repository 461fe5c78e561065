/// Loads every example of docs/language.md, so that the page can't rot. Its commands are run by
/// tests/cli/run-document.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "ParseText.h"
#include "TarnFWParserActionsSelector.h"

namespace {

struct Example {
  int line;  // of its fence
  std::string text;
};

/// The fenced blocks of this kind.
std::vector<Example> examples(const std::string& kind) {
  std::ifstream page(TARNFW_LANGUAGE_PAGE);
  EXPECT_TRUE(page.is_open()) << TARNFW_LANGUAGE_PAGE;
  std::vector<Example> found;
  bool inside = false;
  int number = 0;
  for (std::string line; std::getline(page, line);) {
    ++number;
    if (!inside && line == "```" + kind) {
      inside = true;
      found.push_back({number, ""});
    } else if (inside && line == "```") {
      inside = false;
    } else if (inside) {
      found.back().text += line + "\n";
    }
  }
  EXPECT_FALSE(inside);
  return found;
}

/// The examples' page sets a default selector; it must not outlive the test.
class LanguageDocument : public testing::Test {
 protected:
  ~LanguageDocument() override { TarnFirewall::g_tarnfw_default_dvsport = {}; }
};

}  // namespace

TEST_F(LanguageDocument, LoadsEveryExample) {
  const auto found = examples("tarn");
  EXPECT_GE(found.size(), 20u);
  for (const Example& example : found) {
    const ParseText parse(example.text);
    EXPECT_EQ(parse.failure(), "") << "example at line " << example.line;
    EXPECT_GE(parse.count(), 1u) << "example at line " << example.line;
    EXPECT_EQ(parse.config, nullptr) << "example at line " << example.line;
  }
}

TEST_F(LanguageDocument, ChoosesAChannelByEveryStatementAboutChannels) {
  const auto found = examples("tarn-channel");
  ASSERT_EQ(found.size(), 1u);
  std::istringstream lines(found[0].text);
  int statements = 0;
  for (std::string line; std::getline(lines, line); ++statements) {
    const ParseText parse(line);
    EXPECT_EQ(parse.failure(), "") << line;
    EXPECT_NE(parse.config, nullptr) << line;
  }
  EXPECT_EQ(statements, 4);
}

TEST_F(LanguageDocument, EndsTheLoadSilentlyAtEveryStatementThatItSaysSo) {
  const auto found = examples("tarn-silent");
  ASSERT_EQ(found.size(), 1u);
  std::istringstream lines(found[0].text);
  int statements = 0;
  for (std::string line; std::getline(lines, line); ++statements) {
    const ParseText parse(line);
    EXPECT_EQ(parse.failure(), "0|") << line;
  }
  EXPECT_EQ(statements, 3);
}

TEST_F(LanguageDocument, HasNoOtherKindOfExample) {
  std::ifstream page(TARNFW_LANGUAGE_PAGE);
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("```", 0) != 0) continue;
    inside = !inside;
    if (inside) {
      EXPECT_TRUE(line == "```tarn" || line == "```tarn-channel" || line == "```tarn-silent" ||
                  line == "```text")
          << line;
    }
  }
}
