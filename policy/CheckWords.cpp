#include "CheckWords.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "CheckGrammar.h"
#include "tarnfw_parser.h"

namespace {

constexpr std::string_view kKeyword = "keyword ";

/// How the keyword of a token is written; nothing for tokens that are none.
std::string_view spelling(int code) {
  switch (code) {
    case TK_ACCEPT:
      return "accept";
    case TK_REJECT:
      return "reject";
    case TK_LB_L4:
      return "l4";
    case TK_LB_L7:
      return "l7";
    default:
      break;
  }
  const std::string_view name = grammarName(code);
  return name.starts_with(kKeyword) ? name.substr(kKeyword.size()) : std::string_view();
}

/// Other spellings of a token's keyword.
std::string_view otherSpelling(int code) {
  switch (code) {
    case TK_ACCEPT:
      return "pass";
    case TK_REJECT:
      return "deny";
    case TK_OPTION:
      return "options";
    case TK_CONNECTION:
      return "connections";
    default:
      return {};
  }
}

/// Number of single changes (a letter more, less or other, two letters swapped) between two words;
/// more than `limit` is `limit + 1`.
std::size_t distance(std::string_view a, std::string_view b, std::size_t limit) {
  constexpr std::size_t kLongest = 20;
  if (a.size() > kLongest || b.size() > kLongest) return limit + 1;
  std::array<std::array<std::size_t, kLongest + 1>, kLongest + 1> d;
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  const auto same = [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) ==
           std::tolower(static_cast<unsigned char>(y));
  };
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = same(a[i - 1], b[j - 1]) ? 0 : 1;
      d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + change});
      if (i > 1 && j > 1 && same(a[i - 1], b[j - 2]) && same(a[i - 2], b[j - 1])) {
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
      }
    }
  }
  return std::min(d[a.size()][b.size()], limit + 1);
}

}  // namespace

bool isKeyword(int code) { return !spelling(code).empty(); }

std::string expectedWord(int code) {
  switch (code) {
    case 0:
      return "the end of the text";
    case TK_IPV4_CIDR:
    case TK_IPV4_MASK:
    case TK_IPV4_RANGE:
    case TK_IPV4:
    case TK_IPV6:
    case TK_IPV6_CIDR:
    case TK_IPV6_RANGE:
      return "an IP address";
    case TK_IPV4_PORT:
      return "an IPv4 address with a port";
    case TK_ANY_PORT:
      return "`any:` with a port";
    case TK_ETHER:
    case TK_ETHER_RANGE:
    case TK_ETHER_MASK:
      return "an Ethernet address";
    case TK_ID_PORT:
      return "an identifier with a port";
    case TK_STRING:
      return "a name";
    case TK_NUMBER:
      return "a number";
    case TK_NUMBER_RANGE:
      return "a range of numbers";
    default:
      break;
  }
  const std::string_view keyword = spelling(code);
  return "`" + std::string(keyword.empty() ? grammarName(code) : keyword) + "`";
}

std::vector<std::string> expectedWords(std::span<const int> codes, std::size_t limit) {
  std::vector<std::string> words;
  for (const int code : codes) {
    std::string word = expectedWord(code);
    if (std::find(words.begin(), words.end(), word) != words.end()) continue;
    if (words.size() == limit) {
      words.emplace_back("...");
      break;
    }
    words.push_back(std::move(word));
  }
  return words;
}

Nearest::Nearest(std::string_view word)
    : word_(word),
      limit_(word.size() < 3   ? 1
             : word.size() < 6 ? 2
                               : 3),
      least_(std::min(limit_, word.size() - std::min<std::size_t>(word.size(), 1)) + 1) {}

void Nearest::compare(std::string_view text) {
  if (text.empty()) return;
  const std::size_t difference = distance(word_, text, limit_);
  // A word that shares too little with the text is another word.
  if (difference > least_ || difference * 2 > text.size()) return;
  if (difference == least_ && (nearest_.empty() || nearest_ <= text)) return;
  least_ = difference;
  nearest_ = text;
}

std::string nearestKeyword(std::string_view word, std::span<const int> codes) {
  Nearest nearest(word);
  for (const int code : codes) {
    nearest.compare(spelling(code));
    nearest.compare(otherSpelling(code));
  }
  return std::string(nearest.text());
}
