// exclusion_cost KIND: setflowexclusion with 1024 definitions that all differ; of kind "short" they
// have an address, a protocol and a port, of kind "full" every field. The kernel is a function in
// this program. exclusion-cost counts what SetFlowExclusion spends.

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "FlowExclusionRecords.h"
#include "Handlers.h"
#include "TarnFWDirectRequest.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

std::uint32_t g_length = 0;

std::string textOf(bool full, unsigned index) {
  char text[512];
  const unsigned high = index >> 8;
  const unsigned low = index & 0xff;
  if (!full) {
    std::snprintf(text, sizeof text, "|||10.20.%u.%u||tcp||%u||", high, low, 1024 + index);
  } else {
    std::snprintf(text, sizeof text,
                  "00:50:56:99:%02x:%02x/ff:ff:ff:ff:ff:ff|!01:00:5e:00:%02x:%02x|0x0800,0x86dd|"
                  "10.20.%u.%u/24|10.30.%u.1-10.30.%u.200|tcp,17|1024-%u|443|"
                  "502e1f3a-c21a-7011-4ae1-00505699%02x%02x.003|"
                  "50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 %02x %02x",
                  high, low, high, low, high, low, high, high, 2048 + index, high, low, high, low);
  }
  return text;
}

}  // namespace

extern "C" {

// The linker sends the handler's call of this function here.
int __wrap_FW_Ioctl(int request, void* argument);
int __wrap_FW_Ioctl(int, void* argument) {
  const auto frame = loadRecord<FWIoctlFrame>(argument);
  const auto query =
      loadRecord<FWFlowExclusionQuery_>(reinterpret_cast<const void*>(std::uintptr_t{frame.body}));
  g_length = query.length;
  return 0;
}

}  // extern "C"

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: exclusion_cost short|full\n");
    return 2;
  }
  std::vector<std::string> texts{"-Override"};
  for (unsigned i = 0; i < kMaxFlowExclusions; ++i) {
    texts.emplace_back("-F");
    texts.push_back(textOf(std::strcmp(arguments[1], "full") == 0, i));
  }
  std::vector<char*> words;
  for (std::string& text : texts) words.push_back(text.data());
  words.push_back(nullptr);
  const int status =
      SetFlowExclusion("setflowexclusion", static_cast<int>(texts.size()), words.data());
  return status == 0 && g_length == kMaxFlowExclusions * sizeof(FWFlowExclusion_) ? 0 : 1;
}
