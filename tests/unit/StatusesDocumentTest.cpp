/// Compares the table of docs/statuses.md with the texts of the library, so that the page can't
/// rot.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "tarnfw.h"

namespace {

/// The cells of a table's line, without the blanks around them.
std::vector<std::string> cellsOf(const std::string& line) {
  std::vector<std::string> cells;
  for (std::size_t at = 2; at < line.size();) {
    const std::size_t end = std::min(line.find(" |", at), line.size());
    cells.push_back(line.substr(at, end - at));
    at = end + 3;
  }
  return cells;
}

/// The rows of the table of statuses.
std::vector<std::vector<std::string>> rows() {
  std::ifstream page(TARNFW_STATUSES_PAGE);
  EXPECT_TRUE(page.is_open()) << TARNFW_STATUSES_PAGE;
  std::vector<std::vector<std::string>> found;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.rfind("| Status | Text |", 0) == 0) {
      inside = std::getline(page, line).good();  // the line under the heading
    } else if (inside && line.empty()) {
      break;
    } else if (inside) {
      found.push_back(cellsOf(line));
    }
  }
  return found;
}

TEST(StatusesDocument, HasEveryStatusWithItsTextAndWhatToDoAboutIt) {
  const auto table = rows();
  ASSERT_EQ(table.size(), 71u);
  EXPECT_STREQ(FW_StatusToString(71), "unknown error code: 71");
  for (unsigned int status = 0; status < table.size(); ++status) {
    const auto& row = table[status];
    ASSERT_EQ(row.size(), 4u) << "status " << status;
    EXPECT_EQ(row[0], std::to_string(status));
    EXPECT_EQ(row[1], FW_StatusToString(status));
    EXPECT_GT(row[3].size(), 10u) << "status " << status;
    EXPECT_EQ(row[3].back(), '.') << "status " << status;
  }
}

}  // namespace
