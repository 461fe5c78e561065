#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "CheckTexts.h"
#include "Diagnostic.h"

/// What a check finds in these texts, which are one policy.
inline Diagnostics checked(std::vector<std::string> texts) {
  SourceTexts sources;
  for (std::string& text : texts) {
    sources.emplace_back(std::to_string(sources.size() + 1) + ".conf", std::move(text));
  }
  return checkTexts(sources);
}

/// A find as "LINE:COLUMN check: message", with "N.conf:" in front for a second file and later
/// ones.
inline std::vector<std::string> found(const std::vector<std::string>& texts) {
  SourceTexts sources;
  for (const std::string& text : texts) {
    sources.emplace_back(std::to_string(sources.size() + 1) + ".conf", text);
  }
  const Diagnostics diagnostics = checkTexts(sources);
  std::vector<std::string> lines;
  for (const Diagnostic& diagnostic : diagnostics.all()) {
    const auto [line, column] = sources[diagnostic.range.file].place(diagnostic.range.begin);
    std::string text = diagnostic.range.file > 0 ? sources[diagnostic.range.file].name() + ":" : "";
    text += std::to_string(line) + ":" + std::to_string(column) + " " +
            rowOf(diagnostic.check).name + ": " + diagnostic.message;
    lines.push_back(std::move(text));
  }
  return lines;
}
inline std::vector<std::string> found(const std::string& text) {
  return found(std::vector<std::string>{text});
}

/// Its finds of one kind.
inline std::vector<std::string> foundOf(const std::string& check, const std::string& text) {
  std::vector<std::string> lines;
  for (std::string& line : found(text)) {
    if (line.find(" " + check + ": ") != line.npos) lines.push_back(std::move(line));
  }
  return lines;
}
