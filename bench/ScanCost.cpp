// scan_cost TEXT: scans a configuration and does nothing else. Prints the number of its tokens; see
// load-cost.

#include <cstdio>

#include "TarnFWScanner.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: scan_cost TEXT\n");
    return 2;
  }
  std::FILE* const text = std::fopen(arguments[1], "r");
  fw_lex_extra_ extra;
  void* scanner = nullptr;
  if (text == nullptr || yylex_init_extra(&extra, &scanner) != 0) {
    std::fprintf(stderr, "scan_cost: no such text\n");
    return 1;
  }
  yyset_in(text, scanner);
  YYSTYPE value;
  unsigned long tokens = 0;
  while (const int token = yylex(&value, nullptr, scanner)) {
    ++tokens;
    // As the parser does, so that the memory of the words stays small.
    if (token == TK_SEMICOLON) extra.arena.release({});
  }
  yylex_destroy(scanner);
  std::fclose(text);
  std::printf("%lu\n", tokens);
  return extra.status == FW_STATUS_OK ? 0 : 1;
}
