#include "CheckGrammar.h"

#include <cstdlib>
#include <new>
#include <utility>

#include "TarnFWParserActions.h"
#include "TarnFWScanner.h"

// The generated names, as the instance has them.
union POLICY_STYPE;
struct POLICY_LTYPE;
int policy_lex(POLICY_STYPE* value, POLICY_LTYPE* location, void* scanner);

namespace TarnFirewall {

namespace {

GrammarClient& clientOf(void* scanner) {
  return *static_cast<GrammarClient*>(yyget_extra(scanner));
}

/// The parser must come to its end by itself, since nothing else frees what is on its stack. What
/// the client throws is thrown again after it.
template <typename Call>
void keepingFailure(GrammarClient& client, Call call) {
  try {
    call();
  } catch (...) {
    client.failure = std::current_exception();
  }
}

/// Takes the place of `reportParseFailure` in the actions: what fails goes to the client.
void reportToClient(bool lookedAhead, const FWParse& parse) {
  GrammarClient& client = clientOf(parse.scanner);
  keepingFailure(client, [&] { client.refused(lookedAhead); });
  dropParseResults(parse);
}

}  // namespace

}  // namespace TarnFirewall

#define reportParseFailure(parse) reportToClient(yychar != TK_POLICY_EMPTY, parse)

#include <policy_grammar.inc>

#undef reportParseFailure

int policy_lex(POLICY_STYPE* value, POLICY_LTYPE*, void* scanner) {
  GrammarClient& client = clientOf(scanner);
  int code = TK_POLICY_error;  // ends the parse without a report
  keepingFailure(client, [&] { code = client.nextToken(value); });
  return code;
}

/// Called by the generated parser. 0: the message has been made.
static int yyreport_syntax_error(const yypcontext_t* context, const FWParse& parse) {
  // Kinds of symbols are numbered as the tokens are; 0 is the end of the text in both.
  constexpr int kFirstToken = 255;
  yysymbol_kind_t kinds[YYNTOKENS];
  const int count = yypcontext_expected_tokens(context, kinds, YYNTOKENS);
  GrammarClient& client = clientOf(parse.scanner);
  keepingFailure(client, [&] {
    std::vector<int> expected;
    for (int i = 0; i < count; ++i) {
      expected.push_back(kinds[i] == YYSYMBOL_YYEOF ? 0 : kinds[i] + kFirstToken);
    }
    client.unexpected(expected);
  });
  return 0;
}

const char* grammarName(int code) {
  constexpr int kFirstToken = 255;
  return yysymbol_name(code == 0 ? YYSYMBOL_YYEOF
                                 : static_cast<yysymbol_kind_t>(code - kFirstToken));
}

bool runGrammar(std::size_t valueSize, void* scanner, CTarnFWCmdList** list,
                CTarnFWCmdConfig** config) {
  // The type has two names, made from the same lines.
  if (valueSize != sizeof(POLICY_STYPE)) std::abort();
  FWStatus_t status = FW_STATUS_OK;
  const int result = policy_parse(&status, scanner, "", list, config);
  FWStatus_t ignored = status;
  if (result != 0) dropParseResults({&ignored, scanner, "", list, config});
  if (const std::exception_ptr failure = std::exchange(clientOf(scanner).failure, nullptr)) {
    std::rethrow_exception(failure);
  }
  // Lists grow to the left, so that no text fills the stack; only memory for it may be missing.
  if (result == 2) throw std::bad_alloc();
  return result == 0;
}
