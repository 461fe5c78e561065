#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

#include "TarnFWCmdCatalogue.h"

/// Classes of the catalogue that are built: those with a header of their own among the library's
/// sources. Tests that must know every command compare their tables with this set.
inline std::set<std::string> builtCommandClasses() {
  std::set<std::string> built;
  for (const TarnFirewall::FWCmdRow_& row : TarnFirewall::kCmdCatalogue) {
    for (const TarnFirewall::FWCmdForm_& form : row.forms) {
      if (form.className == nullptr) continue;
      // A file is named after its class, without the leading C.
      const std::string header = std::string(TARNFW_SOURCES) + '/' + (form.className + 1) + ".h";
      if (std::filesystem::exists(header)) built.insert(form.className);
    }
  }
  return built;
}

/// Final command classes that the library's headers declare, whether the catalogue has them or not.
inline std::set<std::string> declaredCommandClasses() {
  std::set<std::string> declared;
  const std::regex declaration("class (CTarnFWCmd\\w+) final");
  for (const auto& file : std::filesystem::directory_iterator(TARNFW_SOURCES)) {
    if (file.path().extension() != ".h") continue;
    std::ifstream in(file.path());
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_FALSE(text.empty()) << file.path();
    for (std::sregex_iterator at(text.begin(), text.end(), declaration), end; at != end; ++at) {
      declared.insert((*at)[1]);
    }
  }
  return declared;
}
