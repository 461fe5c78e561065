#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "PolicyText.h"

namespace {

/// The blocks of a page: of each section the text with a find, and the one without.
struct Section {
  std::string found;
  std::string clean;
};

std::map<std::string, Section> sectionsOf(const char* path) {
  std::ifstream page(path);
  std::map<std::string, Section> sections;
  std::string line, section;
  std::string* block = nullptr;
  while (std::getline(page, line)) {
    if (line.starts_with("## ")) section = line.substr(3);
    if (line == "```") {
      block = nullptr;
    } else if (line == "```tarn-found") {
      block = &sections[section].found;
    } else if (line == "```tarn-clean") {
      block = &sections[section].clean;
    } else if (block != nullptr) {
      *block += line + "\n";
    }
  }
  return sections;
}

TEST(PolicyChecksDocument, HasASectionForEveryCheckAndNoOther) {
  const auto sections = sectionsOf(TARNFW_CHECKS_PAGE);
  EXPECT_EQ(sections.size(), checkRows().size());
  for (const CheckRow& row : checkRows()) EXPECT_TRUE(sections.contains(row.name)) << row.name;
}

TEST(PolicyChecksDocument, EachFindIsMadeOnceInTheFirstTextAndNotInTheSecond) {
  for (const auto& [name, section] : sectionsOf(TARNFW_CHECKS_PAGE)) {
    EXPECT_EQ(foundOf(name, section.found).size(), 1u) << name << "\n" << section.found;
    EXPECT_NE(section.clean, "") << name;
    EXPECT_EQ(found(section.clean), std::vector<std::string>{}) << name;
  }
}

TEST(PolicyChecksDocument, RowsStandInTheOrderOfTheirNumbers) {
  for (std::size_t i = 0; i < checkRows().size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(checkRows()[i].check), i);
  }
}

}  // namespace
