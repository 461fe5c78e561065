#include "StateText.h"

#include <syslog.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <new>

#include "LanguageText.h"
#include "TarnFWAddrSetHead.h"
#include "TarnFWCmdConfig.h"
#include "TarnFWRuleSetCreateCmd.h"
#include "TarnFWScanner.h"
#include "TarnFWStatus.h"
#include "TarnFWText.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

namespace {

thread_local LibraryLines* currentLines = nullptr;

/// Characters of a line of the library that are kept, at most.
constexpr std::size_t kLibraryLine = 1024;

// ---- parsing

/// The result of a parser that has no memory for its stack, and the end of the line about an
/// exception that is none of the library's, which is that of memory.
constexpr int kNoStack = 2;
constexpr std::string_view kOtherException = "] internal error";

/// One parse of a text: scanner and results, all of which end with it.
class Parse {
 public:
  Parse() {
    if (yylex_init_extra(&extra_, &scanner_) != 0) throw std::bad_alloc();
  }
  ~Parse() {
    if (buffer_ != nullptr) yy_delete_buffer(buffer_, scanner_);
    yylex_destroy(scanner_);
    delete list_;
    delete channel_;
  }
  Parse(const Parse&) = delete;
  Parse& operator=(const Parse&) = delete;

  void read(std::FILE* stream) { yyset_in(stream, scanner_); }

  void read(const std::string& text) {
    // The scanner counts its buffer in an int.
    if (text.size() > INT_MAX - 2) throw std::bad_alloc();
    buffer_ = yy_scan_string(text.c_str(), scanner_);
    yyset_lineno(1, scanner_);
  }

  std::unique_ptr<CTarnFWCmdList> run(const char* name) {
    const LibraryLines lines;
    FWStatus_t status = FW_STATUS_OK;
    const int result = yyparse(&status, scanner_, name, &list_, &channel_);
    if (result == kNoStack || status == FW_STATUS_OUT_OF_MEMORY ||
        extra_.status == FW_STATUS_OUT_OF_MEMORY || lines.error().ends_with(kOtherException)) {
      throw std::bad_alloc();
    }
    if (result != 0 || list_ == nullptr) {
      // Some values that no statement takes end a parse without a line and a status.
      if (lines.error().empty()) throw StateError(place(name) + "a statement can't be carried out");
      throw StateError(lines.error());
    }
    // A literal that can't be read ends a text between two statements, and the library goes on with
    // what came before it. Half a policy is none.
    if (extra_.status != FW_STATUS_OK) throw StateError(place(name) + extra_.message);
    return std::unique_ptr<CTarnFWCmdList>(std::exchange(list_, nullptr));
  }

 private:
  std::string place(const char* name) const {
    return formatText("[%s:%d] ", name, yyget_lineno(scanner_));
  }

  fw_lex_extra_ extra_;
  void* scanner_ = nullptr;
  yy_buffer_state* buffer_ = nullptr;
  CTarnFWCmdList* list_ = nullptr;
  CTarnFWCmdConfig* channel_ = nullptr;  // named by the text, and never made
};

template <typename Input>
std::unique_ptr<CTarnFWCmdList> parse(Input& input, const char* name) {
  Parse one;
  one.read(input);
  return one.run(name);
}

// ---- carrying out

/// The body of a statement's message, as it would be sent.
class Body {
 public:
  explicit Body(CTarnFWCmd& command) : bytes_(command.getMsgSize()) {
    unsigned int written = 0;
    const auto room = static_cast<unsigned int>(bytes_.size());
    if (!command.writeCmdBody(bytes_.data(), room, &written, 0)) {
      throw StateError("it makes no message");
    }
  }

  CTarnFWCmdReply view() const { return {bytes_.data(), bytes_.size()}; }
  std::string ruleSet(std::size_t offset = 0) const {
    return view().text(offset, sizeof(FWRuleSetID_t));
  }
  std::string set() const { return view().text(0, sizeof(FWAddrSetID_t)); }

 private:
  std::vector<std::byte> bytes_;
};

StateRuleSet& ruleSetOf(State& state, const std::string& name) {
  const auto at = state.ruleSets.find(name);
  if (at == state.ruleSets.end()) throw StateError("there is no rule set " + shownName(name));
  return at->second;
}

/// The names that the jumps of a root's rules lead to.
void setRoot(State& state, const std::vector<FWRule_>& rules) {
  state.layer3.clear();
  state.layer2.clear();
  for (const FWRule_& rule : rules) {
    if (rule.action.action != FW_ACTION_JUMPTO) continue;
    std::string& root = (rule.flags & kRuleLayer3) != 0 ? state.layer3 : state.layer2;
    if (root.empty()) root = referencesOf(rule).jump;
  }
}

void createRuleSet(State& state, const Body& body) {
  const auto head = body.view().record<FWRuleSetHead_>(0);
  const std::string name = body.ruleSet(offsetof(FWRuleSetHead_, name));
  std::vector<FWRule_> rules(std::uint32_t{head.count});
  for (std::size_t i = 0; i < rules.size(); ++i) {
    rules[i] = body.view().record<FWRule_>(sizeof head + i * sizeof(FWRule_));
  }
  if (name.empty()) {
    setRoot(state, rules);
    return;
  }
  StateRuleSet& set = state.ruleSets[name];  // one that is there keeps its jump
  set.rules = {};
  addRules(set, std::move(rules));
}

void createAddrSet(State& state, const Body& body) {
  const auto head = body.view().record<FWAddrSetHead_>(0);
  StateSet set;
  set.addresses.resize(std::uint32_t{head.count});
  for (std::size_t i = 0; i < set.addresses.size(); ++i) {
    set.addresses[i] = body.view().record<FWAddress_>(sizeof head + i * sizeof(FWAddress_));
  }
  settleSet(set);
  state.sets.insert_or_assign(body.set(), std::move(set));
}

void createContainer(State& state, const Body& body) {
  const auto head = body.view().record<FWAddrSetHead_>(0);
  StateSet set;
  set.type = head.type;
  set.elements = chainElements(body.view().rest(sizeof head));
  settleSet(set);
  state.sets.insert_or_assign(body.set(), std::move(set));
}

/// What the numbers of statements do to a state; the statements that only ask.
constexpr std::uint16_t kCreateRuleSet = 3, kClearRuleSet = 6, kDestroyRuleSet = 7,
                        kCreateAddrSet = 13, kDestroyAddrSet = 14, kClearRoot = 36,
                        kDestroyAllRuleSets = 60, kSetJump = 61, kClearJump = 63,
                        kClearAddrSet = 64, kDestroyAllAddrSets = 65, kCreateContainer = 75,
                        kSetTimeout = 41;

/// Statements that change something which is not in a state; all that is left asks.
constexpr std::uint16_t kOthers[] = {
    25,  // create spoofguard
    26,  // delete spoofguard
    30,  // clear stat of kif
    33,  // debug
    37,  // set connection with a list
    kSetTimeout,
    43,  // clear all connection
    44,  // enable, disable shared addrset
    54,  // set exportver
    58,  // enable, disable tcp strict
    66,  // set connection
    67,  // set all connection
    73,  // set connattr
    76,  // add domain2ip
    80,  // set uid2sidmap
};

bool isOther(std::uint16_t number) {
  for (const std::uint16_t other : kOthers) {
    if (other == number) return true;
  }
  return false;
}

/// How a statement is named to people; one has no text of its own.
std::string shownStatement(CTarnFWCmd& statement) {
  return statement.getCommand() == kSetTimeout ? "set timeout" : statement.toString();
}

}  // namespace

LibraryLines::LibraryLines() : before_(gTarnFWLogger.load()), outer_(currentLines) {
  error_.reserve(kLibraryLine);
  currentLines = this;
  gTarnFWLogger.store({take, LOG_INFO});
}

LibraryLines::~LibraryLines() {
  gTarnFWLogger.store(before_);
  currentLines = outer_;
}

/// Throws nothing, since it may be called from inside of a parser, whose stack nobody else frees.
void LibraryLines::take(int priority, const char* format, va_list arguments) {
  LibraryLines* const lines = currentLines;
  if (lines == nullptr || priority > LOG_ERR || !lines->error_.empty()) return;
  char line[kLibraryLine];
  std::vsnprintf(line, sizeof line, format, arguments);
  const char* const place = std::strstr(line, " [");
  std::string& error = lines->error_;
  error = place != nullptr ? place + 1 : line;
  while (!error.empty() && error.back() == '\n') error.pop_back();
}

std::unique_ptr<CTarnFWCmdList> parseStatements(std::FILE* stream, const char* name) {
  return parse(stream, name);
}

std::unique_ptr<CTarnFWCmdList> parseStatements(const std::string& text, const char* name) {
  return parse(text, name);
}

bool applyStatement(State& state, CTarnFWCmd& command) {
  switch (command.getCommand()) {
    case kCreateRuleSet:
      createRuleSet(state, Body(command));
      return true;
    case kClearRuleSet:
      if (const auto at = state.ruleSets.find(Body(command).ruleSet());
          at != state.ruleSets.end()) {
        at->second.rules = {};
      }
      return true;
    case kDestroyRuleSet:
      state.ruleSets.erase(Body(command).ruleSet());
      return true;
    case kDestroyAllRuleSets:
      state.ruleSets.clear();
      [[fallthrough]];
    case kClearRoot:
      state.layer3.clear();
      state.layer2.clear();
      return true;
    case kSetJump: {
      const Body body(command);
      ruleSetOf(state, body.ruleSet()).jump = body.ruleSet(sizeof(FWRuleSetID_t));
      return true;
    }
    case kClearJump:
      ruleSetOf(state, Body(command).ruleSet()).jump.clear();
      return true;
    case kCreateAddrSet:
      createAddrSet(state, Body(command));
      return true;
    case kCreateContainer:
      createContainer(state, Body(command));
      return true;
    case kDestroyAddrSet:
      state.sets.erase(Body(command).set());
      return true;
    case kClearAddrSet:
      if (const auto at = state.sets.find(Body(command).set()); at != state.sets.end()) {
        at->second.addresses.clear();
        at->second.elements.clear();
      }
      return true;
    case kDestroyAllAddrSets:
      state.sets.clear();
      return true;
    default:
      return false;
  }
}

StateText stateOfStatements(CTarnFWCmdList& statements) {
  StateText made;
  for (std::size_t i = 0; i < statements.size(); ++i) {
    CTarnFWCmd& statement = statements.at(i);
    try {
      if (!applyStatement(made.state, statement) && isOther(statement.getCommand())) {
        made.others.push_back(shownStatement(statement));
      }
    } catch (const StateError& e) {
      std::string text = shownStatement(statement);
      constexpr std::size_t kShown = 200;
      if (text.size() > kShown) text = text.substr(0, kShown) + "...";
      throw StateError("`" + text + "' can't be carried out: " + e.what());
    }
  }
  return made;
}

StateText stateOfFile(const char* path) {
  const bool isStandardInput = std::strcmp(path, "-") == 0;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(nullptr, &std::fclose);
  if (!isStandardInput) {
    file.reset(std::fopen(path, "re"));
    if (file == nullptr) {
      throw StateError(std::string("can't open ") + path + ": " + std::strerror(errno));
    }
  }
  return stateOfStatements(*parseStatements(isStandardInput ? stdin : file.get(), path));
}

StateText stateOfText(const std::string& text, const char* name) {
  return stateOfStatements(*parseStatements(text, name));
}
