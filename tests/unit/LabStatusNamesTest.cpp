#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "LabStatusNames.h"

namespace TarnLab {
namespace {

TEST(LabStatusNames, AreThoseOfThePageOfStatuses) {
  std::ifstream page(TARNFW_STATUSES_PAGE);
  ASSERT_TRUE(page.is_open()) << TARNFW_STATUSES_PAGE;
  std::uint32_t status = 0;
  for (std::string line; std::getline(page, line);) {
    const std::string begin = "| " + std::to_string(status) + " | ";
    if (status == statusCount || line.compare(0, begin.size(), begin) != 0) continue;
    const std::string word = "| `" + std::string(statusName(status)) + "` |";
    EXPECT_NE(line.find(word), std::string::npos) << line;
    ++status;
  }
  EXPECT_EQ(status, statusCount);
}

TEST(LabStatusNames, AStatusIsFoundByItsWordOrItsNumber) {
  for (std::uint32_t status = 0; status < statusCount; ++status) {
    EXPECT_EQ(statusNumber(statusName(status)), status) << statusName(status);
  }
  EXPECT_EQ(statusNumber("No-RuleSet"), 28u);
  EXPECT_EQ(statusNumber("28"), 28u);
  EXPECT_EQ(statusNumber("0x1c"), 28u);
  EXPECT_EQ(statusNumber("4294967295"), 0xffffffffu);
  EXPECT_EQ(statusNumber("4294967296"), std::nullopt);
  EXPECT_EQ(statusNumber("no ruleset"), std::nullopt);
  EXPECT_EQ(statusNumber(""), std::nullopt);
}

}  // namespace
}  // namespace TarnLab
