#pragma once

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>

#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"
#include "TarnFWLog.h"
#include "TarnFWParserActionsSelector.h"
#include "TarnFWScanner.h"
#include "tarnfw_parser.h"

/// Whether the library's parser accepts a text, read from a stream as a file is. No channel is made
/// and nothing is logged; the default selector is as it was.
inline bool libraryAccepts(std::string_view text) {
  using namespace TarnFirewall;
  // A stream of no bytes is none to the C library.
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      text.empty() ? std::fopen("/dev/null", "r")
                   : fmemopen(const_cast<char*>(text.data()), text.size(), "r"),
      &std::fclose);
  const dvs_port_ selector = g_tarnfw_default_dvsport;
  const FWLogger_ logger = gTarnFWLogger.load();
  gTarnFWLogger.store({[](int, const char*, va_list) {}, 0});
  fw_lex_extra_ extra{};
  void* scanner = nullptr;
  if (yylex_init_extra(&extra, &scanner) != 0) return false;
  yyset_in(file.get(), scanner);
  errno = 0;
  FWStatus_t status = FW_STATUS_OK;
  CTarnFWCmdList* list = nullptr;
  CTarnFWCmdConfig* config = nullptr;
  const int result = yyparse(&status, scanner, "input", &list, &config);
  yylex_destroy(scanner);
  delete list;
  delete config;
  gTarnFWLogger.store(logger);
  g_tarnfw_default_dvsport = selector;
  return result == 0;
}
