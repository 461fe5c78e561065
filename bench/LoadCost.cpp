// load_cost [-w FILE] TEXT: a configuration from its text to the messages that the kernel would
// get, the way tarnfwcli goes, with a channel that takes the messages and answers success. Prints
// the messages' bytes and the program's peak memory in kilobytes; -w writes the last message into a
// file.

#include <cstdio>
#include <cstring>

#include "Tell.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

const char* g_output = nullptr;
std::size_t g_bytes = 0;

FWStatus_t begin(void*, void** context) {
  *context = nullptr;
  return 0;
}
void end(void*) {}

FWStatus_t take(void*, void* message, unsigned int size, void*) {
  g_bytes += size;
  return g_output == nullptr || writeWhole(g_output, message, size) ? 0 : 1;
}

bool check(const char* what, FWStatus_t status) {
  if (status != 0) std::fprintf(stderr, "load_cost: %s: %s\n", what, FW_StatusToString(status));
  return status == 0;
}

}  // namespace

int main(int count, char** arguments) {
  int next = 1;
  if (count > 2 && std::strcmp(arguments[1], "-w") == 0) {
    g_output = arguments[2];
    next = 3;
  }
  if (next + 1 != count) {
    std::fprintf(stderr, "usage: load_cost [-w FILE] TEXT\n");
    return 2;
  }
  const FWLibGenericIO_ kernel = {begin, end, take, nullptr};
  const char* items[] = {"FWIOGenericIO", reinterpret_cast<const char*>(&kernel)};
  int reserved = 0;
  fwlibhandle_* library = nullptr;
  fwconfigfile_* config = nullptr;
  if (!check("channel",
             FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_GENERIC, 2, items, &library)) ||
      !check("load", FW_LoadConfigFile(arguments[next], &library, &config)) ||
      !check("evaluate", FW_EvaluateConfigFile(library, config, nullptr, nullptr)) ||
      !check("free", FW_FreeConfigFile(config))) {
    return 1;
  }
  tell(g_bytes);
  return 0;
}
