#include "StateSource.h"

#include <cstdio>
#include <string_view>

#include "LanguageText.h"
#include "ShownText.h"
#include "StateFilter.h"
#include "StateText.h"

namespace {

constexpr std::string_view kFilter = "filter:";

}  // namespace

State stateOfSource(const std::string& source) {
  if (std::string_view(source).substr(0, kFilter.size()) == kFilter) {
    return stateOfFilter(givenFilter(source.c_str() + kFilter.size()));
  }
  StateText text = stateOfFile(source.c_str());
  if (!text.others.empty()) {
    std::fprintf(stderr, "%s: %zu %s no part of a policy, the first is `%s'\n",
                 shownLine(source, kLongestMessage).c_str(), text.others.size(),
                 text.others.size() == 1 ? "statement is" : "statements are",
                 escapedText(text.others.front()).c_str());
  }
  return std::move(text.state);
}
