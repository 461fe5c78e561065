/// Compares the commands of docs/commands.md with the program's table: each command
/// stands there with an example. The examples are run by tests/cli/run-document.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "CommandTable.h"

namespace {

/// The command lines below each heading "### `command`", each with a blank at its end.
std::map<std::string, std::string> examples() {
  std::ifstream page(TARNFW_COMMANDS_PAGE);
  EXPECT_TRUE(page.is_open()) << TARNFW_COMMANDS_PAGE;
  constexpr std::string_view heading = "### `";
  std::map<std::string, std::string> found;
  std::string* lines = nullptr;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with(heading)) {
      const std::string word =
          line.substr(heading.size(), line.find('`', heading.size()) - heading.size());
      EXPECT_FALSE(found.contains(word)) << word << " stands there twice";
      lines = &found[word];
    } else if (line.starts_with('#')) {
      lines = nullptr;
    } else if (lines != nullptr && (line.starts_with("    $ ") || line.starts_with("    > "))) {
      *lines += line + " \n";
    }
  }
  return found;
}

}  // namespace

TEST(CommandsDocument, HasAnExampleOfEachCommand) {
  const auto page = examples();
  for (const FWCommand_& command : g_cmd_table) {
    const std::string word = command.name;
    const auto example = page.find(word);
    if (example == page.end()) {
      ADD_FAILURE() << word << " does not stand in docs/commands.md";
    } else {
      EXPECT_NE(example->second.find(" tarnioctl " + word + " "), std::string::npos)
          << "docs/commands.md does not run " << word << ":\n"
          << example->second;
    }
  }
}

TEST(CommandsDocument, HasNoOtherCommands) {
  for (const auto& [word, lines] : examples())
    EXPECT_NE(findCommand(word.c_str()), nullptr) << word;
}
