// Configuration text, from the scanner to compiled messages: refused with a status and no list, or
// a list whose every command writes its message into the memory of a channel.

#include <string>

#include "Fuzz.h"
#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"
#include "TarnFWScanner.h"
#include "tarnfw.h"
#include "tarnfw_parser.h"

using namespace TarnFirewall;

namespace {

/// A handle on a channel that copies messages into memory.
fwlibhandle_* memoryHandle() {
  static unsigned char memory[1 << 16];
  static unsigned int length = sizeof memory;
  static fwlibhandle_* handle = [] {
    const char* items[] = {"FWIOMemory", reinterpret_cast<const char*>(memory), "FWIOLength",
                           reinterpret_cast<const char*>(&length)};
    int reserved = 0;
    fwlibhandle_* made = nullptr;
    require(FW_Initialize(65536, &reserved, FW_IO_MEMORY, 4, items, &made) == FW_STATUS_OK);
    return made;
  }();
  return handle;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  fw_lex_extra_ extra{};
  void* scanner = nullptr;
  require(yylex_init_extra(&extra, &scanner) == 0);
  yy_buffer_state* buffer = yy_scan_string(text.c_str(), scanner);
  require(buffer != nullptr);
  yyset_lineno(1, scanner);
  FWStatus_t status = FW_STATUS_OK;
  CTarnFWCmdList* list = nullptr;
  CTarnFWCmdConfig* config = nullptr;
  const int result = yyparse(&status, scanner, "input", &list, &config);
  yy_delete_buffer(buffer, scanner);
  yylex_destroy(scanner);
  if (result != 0) {
    require(list == nullptr && config == nullptr);
    return 0;
  }
  require(list != nullptr);
  list->toString();
  // A channel statement is parsed and not carried out: it would write where the text says.
  list->eval(memoryHandle(), nullptr, nullptr);
  delete list;
  delete config;
  return 0;
}
