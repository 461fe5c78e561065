#include "CheckParse.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "CheckGrammar.h"
#include "CheckMistakes.h"
#include "CheckWords.h"
#include "ShownText.h"
#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

namespace {

/// Expected words that a message names.
constexpr std::size_t kExpectedShown = 12;

/// Whether the word begins statements and stands nowhere else in them.
bool isFirstWord(int code) {
  switch (code) {
    case TK_CREATE:
    case TK_ADD:
    case TK_DELETE:
    case TK_DESCRIBE:
    case TK_DESTROY:
    case TK_ENABLE:
    case TK_DISABLE:
    case TK_SET:
    case TK_DEBUG:
      return true;
    default:
      return false;
  }
}

/// Whether the text begins with a line such as "[section one]".
bool isSectionHead(std::string_view text) {
  const std::size_t end = text.find_first_of("]\"{\n");
  return text.size() > 1 && text[0] == '[' &&
         std::isalpha(static_cast<unsigned char>(text[1])) != 0 && end < text.size() &&
         text[end] == ']' && text.find_first_not_of(" \t\r", end + 1) == text.find('\n', end);
}

/// What a file of another kind begins with, or nothing. Configuration text begins with a word.
std::string foreignKind(std::string_view text) {
  struct Mark {
    std::string_view bytes;
    const char* kind;
  };
  using namespace std::string_view_literals;
  constexpr Mark kMarks[] = {
      {"\x7f"
       "ELF"sv,
       "a program"},
      {"\x1f\x8b"sv, "a compressed file (gzip)"},
      {"\xfd"
       "7zXZ"sv,
       "a compressed file (xz)"},
      {"BZh"sv, "a compressed file (bzip2)"},
      {"PK\x03\x04"sv, "an archive (zip)"},
      {"#!"sv, "a script"},
      {"\xff\xfe"sv, "text in UTF-16; save it as UTF-8"},
      {"\xfe\xff"sv, "text in UTF-16; save it as UTF-8"},
      {"<"sv, "XML or HTML"},
      {"{"sv, "JSON"},
      {"["sv, "JSON"},
      {"---\n"sv, "YAML"},
  };
  const std::size_t begin = std::min(text.find_first_not_of(" \t\r\n"), text.size());
  if (isSectionHead(text.substr(begin))) return "an INI file";
  for (const Mark& mark : kMarks) {
    if (text.substr(begin).starts_with(mark.bytes)) return mark.kind;
  }
  if (text.substr(0, 4096).find('\0') != text.npos) return "binary data";
  return {};
}

class TextParse final : public GrammarClient {
 public:
  TextParse(const SourceText& source, std::uint32_t file, TextListener& listener,
            Diagnostics& diagnostics)
      : source_(source),
        file_(file),
        listener_(listener),
        diagnostics_(diagnostics),
        reader_(source, *this,
                [this](std::uint32_t begin, std::uint32_t end) { reportStray(begin, end); }) {}
  ~TextParse();
  TextParse(const TextParse&) = delete;
  TextParse& operator=(const TextParse&) = delete;

  void run();

 private:
  int nextToken(void* value) override;
  void unexpected(const std::vector<int>& expected) override;
  void refused(bool lookedAhead) override;

  void readOne();
  /// Hands the word read last to the listener.
  void settle() {
    if (unsettled_ && token_.code != 0) listener_.word(token_);
    unsettled_ = false;
  }
  void forget();
  void endStatement();
  void skipStatement();
  void resumeAtRule();
  bool isRuleSet() const;
  bool atNewStatement() const;

  void report(Check check, const Token& token, std::string message,
              std::vector<std::string> expected = {}, std::string help = {});
  void reportStray(std::uint32_t begin, std::uint32_t end);
  void reportMissing(int code, const char* help);
  void reportFailure();
  bool reportMisspelling(const std::vector<int>& expected);
  std::string unexpectedText() const;
  std::string failureText() const;
  const char* failureHelp() const;
  std::string helpFor(const std::vector<int>& expected) const;

  const SourceText& source_;
  std::uint32_t file_;
  TextListener& listener_;
  Diagnostics& diagnostics_;
  TokenReader reader_;
  CTarnFWCmdList* list_ = nullptr;
  CTarnFWCmdConfig* config_ = nullptr;

  YYSTYPE value_{};            // of the word read last
  Token token_;                // the word read last
  Token before_;               // the word before it
  bool unread_ = false;        // it is to be given once more
  bool unsettled_ = false;     // it has not gone to the listener yet
  bool failed_ = false;        // it is none: the scanner failed there
  int depth_ = 0;              // braces that are open
  int depthBefore_ = 0;        // the same before the word read last
  int prefix_ = 0;             // words that are still to be made up for a rule set that goes on
  std::vector<Token> words_;   // of the statement, up to its first brace, then of the last rule
  std::size_t headSize_ = 0;   // of those up to the first brace
  bool ended_ = false;         // the statement's semicolon has been read
  bool broken_ = false;        // the statement has a mistake
  bool anyStatement_ = false;  // one has been read without a mistake
  bool lookAgain_ = false;     // the mistake is at the word read last, not before it
  bool startsNew_ = false;     // that word begins the next statement
  bool stopped_ = false;       // nothing more is to be read
};

TextParse::~TextParse() {
  delete list_;
  delete config_;
}

void TextParse::run() {
  // A hexadecimal number is refused when earlier work has left an error there.
  errno = 0;
  for (;;) {
    const bool good = runGrammar(sizeof(YYSTYPE), reader_.scanner(), &list_, &config_);
    delete std::exchange(list_, nullptr);
    delete std::exchange(config_, nullptr);
    if (good || stopped_) break;
    skipStatement();
    if (stopped_) break;
    arena.release({});
  }
}

void TextParse::readOne() {
  depthBefore_ = depth_;
  if (std::exchange(unread_, false)) {
    unsettled_ = true;
    return;
  }
  before_ = token_;
  reader_.read(&value_, token_);
  failed_ = status != FW_STATUS_OK;
  unsettled_ = true;
}

/// Takes the word read last back: it is given once more, to whom it belongs.
void TextParse::forget() {
  if (unsettled_ && !words_.empty() && words_.back().begin == token_.begin) words_.pop_back();
  depth_ = depthBefore_;
  unsettled_ = ended_ = false;
  unread_ = true;
}

bool TextParse::isRuleSet() const {
  return headSize_ >= 3 && words_[0].code == TK_CREATE && words_[1].code == TK_RULESET;
}

int TextParse::nextToken(void* value) {
  static_assert(std::is_trivially_copyable_v<YYSTYPE>);
  if (prefix_ > 0) {
    constexpr int kPrefix[] = {TK_LBRACE, TK_STRING, TK_RULESET, TK_CREATE};
    YYSTYPE made{};
    static constexpr FWParserText kName = {"x", 1};
    made.text = &kName;
    std::memcpy(value, &made, sizeof made);
    return kPrefix[--prefix_];
  }
  settle();
  if (ended_) endStatement();
  readOne();
  std::memcpy(value, &value_, sizeof value_);
  switch (token_.code) {
    case TK_RULE:
      if (isRuleSet()) words_.resize(headSize_);
      break;
    case TK_LBRACE:
      ++depth_;
      break;
    case TK_RBRACE:
      --depth_;
      break;
    case TK_SEMICOLON:
      ended_ = depth_ <= 0;
      break;
    default:
      break;
  }
  if (token_.code != 0) {
    words_.push_back(token_);
    if (token_.code == TK_LBRACE && headSize_ == 0) headSize_ = words_.size();
  } else if (failed_ && words_.empty()) {
    // Between two statements the library takes a failure for the end of the text.
    report(Check::ignoredText, token_, "the text is not read from here on: " + failureText());
    stopped_ = true;
  }
  return token_.code;
}

void TextParse::endStatement() {
  CTarnFWCmdList commands;
  if (list_ != nullptr) commands.mergeCmdList(*list_);
  if (!broken_) anyStatement_ = true;
  listener_.statement(broken_ ? nullptr : &commands);
  words_.clear();
  headSize_ = 0;
  depth_ = 0;
  ended_ = broken_ = false;
}

/// Whether the word read last begins the next statement, though this one is not at its end.
bool TextParse::atNewStatement() const {
  if (startsNew_) return true;
  const bool first = source_.isFirstInLine(token_.begin);
  if (isFirstWord(token_.code)) return first;
  return first && depth_ <= 0 && before_.code == TK_SEMICOLON &&
         (token_.code == TK_CLEAR || token_.code == TK_CONFIG);
}

/// Goes on with the rule set at the word read last, which is `rule`.
void TextParse::resumeAtRule() {
  forget();
  words_.resize(headSize_);
  depth_ = 1;
  prefix_ = 4;
}

/// After a mistake: skips to where the text can be understood again.
void TextParse::skipStatement() {
  broken_ = true;
  const bool rules = isRuleSet();
  bool again = std::exchange(lookAgain_, false);
  if (again) {
    depth_ = depthBefore_;
    ended_ = false;
  } else if (token_.code == TK_SEMICOLON && ended_) {
    settle();
    endStatement();
    return;
  }
  bool afterRule = !again && rules && token_.code == TK_SEMICOLON;
  for (;;) {
    if (!again) {
      settle();
      readOne();
    }
    again = false;
    if (failed_) {
      reader_.skipFailed(token_);
      failed_ = unsettled_ = false;
      continue;
    }
    if (token_.code == 0) {
      unsettled_ = false;
      stopped_ = true;
      break;
    }
    if (atNewStatement()) {
      startsNew_ = false;
      forget();
      break;
    }
    if (rules && token_.code == TK_RULE && (afterRule || source_.isFirstInLine(token_.begin))) {
      resumeAtRule();
      return;
    }
    afterRule = false;
    if (token_.code == TK_LBRACE) ++depth_;
    if (token_.code == TK_RBRACE && depth_ > 0) --depth_;
    if (token_.code == TK_SEMICOLON) {
      if (depth_ <= 0) {
        settle();
        break;
      }
      afterRule = rules;
    }
  }
  startsNew_ = false;
  endStatement();
}

void TextParse::report(Check check, const Token& token, std::string text,
                       std::vector<std::string> expected, std::string help) {
  diagnostics_.add({.check = check,
                    .range = {file_, token.begin, token.end},
                    .message = std::move(text),
                    .expected = std::move(expected),
                    .help = std::move(help)});
}

void TextParse::reportStray(std::uint32_t begin, std::uint32_t end) {
  const std::string_view stray = source_.text(begin, end);
  const bool quote = stray[0] == '"' || stray[0] == '\'';
  report(Check::strayCharacter, {begin, end, 0},
         quotedWord(stray) + " belongs to nothing and is skipped", {},
         quote ? "a quoted text begins here that is not closed" : "");
}

/// A word that is missing after the last one that was right.
void TextParse::reportMissing(int code, const char* help) {
  const Token& last = before_;
  const std::string word = expectedWord(code);
  report(Check::syntax, {last.end, last.end, code},
         word + " is missing after " + quotedWord(source_.text(last.begin, last.end)), {word},
         help);
}

/// The scanner's message, with what it is about kept short.
std::string TextParse::failureText() const {
  const std::string_view text = message;
  const std::size_t end = text.find(" - ");
  if (end == text.npos) return printableText(text);
  return printableText(text.substr(0, end)) + ": " + quotedWord(text.substr(end + 3));
}

const char* TextParse::failureHelp() const {
  if (status == FW_STATUS_NAME_TOO_LONG) return "names have at most 255 bytes";
  if (status == FW_STATUS_INVALID_ADDRESS) {
    return "each number of an IPv4 address goes from 0 to 255, each group of an IPv6 address to "
           "ffff";
  }
  const std::string_view text = message;
  if (text.find("overflows") == text.npos) return "";
  if (before_.code == TK_PORT) return "ports go from 0 to 65535";
  if (before_.code == TK_RULE) return "ids go from 0 to 4294967295";
  return "no number here is that large";
}

void TextParse::reportFailure() { report(Check::value, token_, failureText(), {}, failureHelp()); }

/// Some statements have a name as their second word, which a misspelled keyword is taken for: the
/// word after it is what has no place then. False when the second word is no such keyword.
bool TextParse::reportMisspelling(const std::vector<int>& expected) {
  constexpr int kSecond[] = {TK_RULESET, TK_ADDRSET,   TK_ATTRPROFILE, TK_SPOOFGUARD, TK_ROOT,
                             TK_JUMPTO,  TK_RULE,      TK_SNAT,        TK_DNAT,       TK_INFO,
                             TK_STAT,    TK_COUNT,     TK_LIST,        TK_CONNECTION, TK_SIZE,
                             TK_ADDRESS, TK_EXPORTVER, TK_TIMEOUT,     TK_SHARED,     TK_CONFIG};
  const bool isName =
      expected.size() == 1 && (expected[0] == TK_ATTRSET || expected[0] == TK_STRICT);
  if (!isName || before_.code != TK_STRING) return false;
  const std::string_view word = source_.text(before_.begin, before_.end);
  const std::string nearest = nearestKeyword(word, kSecond);
  if (nearest.empty()) return false;
  report(Check::syntax, before_, "unexpected " + quotedWord(word), {},
         "did you mean `" + nearest + "`?");
  return true;
}

std::string TextParse::unexpectedText() const {
  if (token_.code == 0) return "the text ends inside of a statement";
  const std::string word = quotedWord(source_.text(token_.begin, token_.end));
  return "unexpected " + std::string(isKeyword(token_.code) ? "keyword " : "") + word;
}

std::string TextParse::helpFor(const std::vector<int>& expected) const {
  const std::string_view word = source_.text(token_.begin, token_.end);
  const auto expects = [&](int code) {
    return std::find(expected.begin(), expected.end(), code) != expected.end();
  };
  if (source_.text().substr(token_.begin).starts_with("/*")) {
    return "a comment begins here that is not closed";
  }
  if (isKeyword(token_.code) && expects(TK_STRING)) {
    return "`" + std::string(word) +
           "` is a keyword; a name of that spelling stands in quotes: \"" + std::string(word) +
           "\"";
  }
  if (expects(TK_STRING) && token_.code >= TK_IPV4_CIDR && token_.code != TK_STRING) {
    return "a name that looks like a number or an address stands in quotes";
  }
  if (token_.code == TK_STRING && word[0] != '"' && word[0] != '\'') {
    const std::string nearest = nearestKeyword(word, expected);
    if (!nearest.empty()) return "did you mean `" + nearest + "`?";
  }
  if (isKeyword(token_.code)) {
    const std::string nearest = nearestKeyword(word, expected);
    if (!nearest.empty()) return "did you mean `" + nearest + "`?";
  }
  if (words_.size() <= 1 && (token_.code == TK_RULE || token_.code == TK_RBRACE)) {
    return "more rules than one stand in braces: create ruleset \"NAME\" with { ... };";
  }
  if (words_.size() <= 1 && !anyStatement_ && token_.code != 0) {
    return "a text begins with a statement, such as: create addrset \"NAME\" { 10.0.0.1 };";
  }
  return {};
}

void TextParse::unexpected(const std::vector<int>& expected) {
  lookAgain_ = true;
  if (failed_) {
    reportFailure();
    return;
  }
  if (!anyStatement_ && diagnostics_.errors() == 0) {
    if (const std::string kind = foreignKind(source_.text()); !kind.empty()) {
      report(Check::syntax, token_, unexpectedText() + ": this is no configuration text", {},
             "the file looks like " + kind);
      stopped_ = true;
      return;
    }
  }
  const auto expects = [&](int code) {
    return std::find(expected.begin(), expected.end(), code) != expected.end();
  };
  if (reportMisspelling(expected)) return;
  const bool newLine = source_.isFirstInLine(token_.begin) || token_.code == 0;
  const bool rule = token_.code == TK_RULE || token_.code == TK_RBRACE;
  if (expects(TK_SEMICOLON) && (isFirstWord(token_.code) || rule || token_.code == 0 || newLine) &&
      before_.code != 0 && helpFor(expected).empty()) {
    startsNew_ = isFirstWord(token_.code) && depthBefore_ <= 0;
    reportMissing(TK_SEMICOLON, rule || depthBefore_ > 0 ? "each rule ends with `;`"
                                                         : "each statement ends with `;`");
    return;
  }
  if (expects(TK_RBRACE) && expects(TK_COMMA) && token_.code >= TK_IPV4_CIDR) {
    reportMissing(TK_COMMA, "what stands in braces is separated by `,`");
    return;
  }
  if (expects(TK_RBRACE) &&
      (token_.code == 0 || (isFirstWord(token_.code) && newLine) || token_.code == TK_SEMICOLON)) {
    reportMissing(TK_RBRACE, "what a brace opens is closed by `}`");
    return;
  }
  report(Check::syntax, token_, unexpectedText(), expectedWords(expected, kExpectedShown),
         helpFor(expected));
}

void TextParse::refused(bool lookedAhead) {
  std::span<const Token> words = words_;
  if (lookedAhead && token_.code != 0 && !words.empty()) words = words.first(words.size() - 1);
  if (words.empty()) words = {&token_, 1};
  lookAgain_ = lookedAhead;
  Refusal refusal;
  try {
    throw;
  } catch (const SilentParseFailure&) {
    refusal = explainSilence(words);
  } catch (const CTarnFWException& e) {
    refusal = explainRefusal(source_, e.what(), words);
  }
  report(Check::value, refusal.token, std::move(refusal.message), {}, std::move(refusal.help));
}

}  // namespace

void readText(const SourceText& source, std::uint32_t file, TextListener& listener,
              Diagnostics& diagnostics) {
  TextParse(source, file, listener, diagnostics).run();
}
