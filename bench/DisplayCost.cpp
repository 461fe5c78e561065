// display_cost MESSAGE: getrules on the rules of a message that creates a rule set, as load_cost
// writes it. The kernel is a function in this program, `answer`, that gives back the message's
// records; load-cost counts what GetFWRules spends outside of it. The text is compiled by another
// process, since this one's heap would remember it.

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "Handlers.h"
#include "TarnFWRuleRecord.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kBody = 32;   // after the message's header and the envelope
constexpr std::size_t kHead = 168;  // of the rules in the message that creates a set

std::vector<FWRule_> g_rules;
fwlibhandle_* g_library = nullptr;

FWStatus_t begin(void*, void** context) {
  *context = nullptr;
  return 0;
}
void end(void*) {}

unsigned int wordAt(const std::uint8_t* at) { return loadRecord<host32>(at); }
void putWord(std::uint8_t* at, std::size_t value) {
  storeRecord(at, host32(static_cast<std::uint32_t>(value)));
}
void putName(std::uint8_t* at) { std::memcpy(at, "large", sizeof "large"); }

bool readRules(const char* name) {
  std::FILE* file = std::fopen(name, "rb");
  if (file == nullptr) return false;
  FWRule_ rule;
  bool good = std::fseek(file, kBody + kHead, SEEK_SET) == 0;
  while (good && std::fread(&rule, 1, sizeof rule, file) == sizeof rule) g_rules.push_back(rule);
  good = good && std::ferror(file) == 0 && !g_rules.empty();
  std::fclose(file);
  return good;
}

}  // namespace

extern "C" {

// The linker sends the handler's call of this function here.
fwlibhandle_* __wrap_FW_GetDefaultLibHandle();
fwlibhandle_* __wrap_FW_GetDefaultLibHandle() { return g_library; }

__attribute__((noinline)) FWStatus_t answer(void*, void* message, unsigned int, void*) {
  auto* const envelope = static_cast<std::uint8_t*>(message) + 20;
  std::uint8_t* const body = static_cast<std::uint8_t*>(message) + kBody;
  switch (envelope[4]) {
    case 1:  // number of rule sets
      putWord(body, 1);
      break;
    case 2:  // their names
      putWord(body + 8, 1);
      putName(body + 12);
      break;
    case 4:  // the root
      putName(body);
      break;
    case 8:  // number of rules of a kind
      putWord(body + 68, body[64] == 0 ? g_rules.size() : 0);
      break;
    case 9:  // state of a rule set
      putWord(body + 64, g_rules.size());
      break;
    case 10: {  // one rule by its index
      const unsigned int index = wordAt(body + 68);
      putWord(body + 64, 0);
      putWord(body + 76, 1);
      storeRecord(body + 96, g_rules.at(index));
      break;
    }
    default:
      return 1;
  }
  return 0;
}

}  // extern "C"

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: display_cost MESSAGE\n");
    return 2;
  }
  const FWLibGenericIO_ kernel = {begin, end, answer, nullptr};
  const char* items[] = {"FWIOGenericIO", reinterpret_cast<const char*>(&kernel)};
  int reserved = 0;
  if (!readRules(arguments[1]) ||
      FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_GENERIC, 2, items, &g_library) != 0) {
    std::fprintf(stderr, "display_cost: no rules in %s\n", arguments[1]);
    return 1;
  }
  char command[] = "getrules";
  char option[] = "-f";
  char filter[] = "nic-1002672-eth0-kelpco-sfw.2";
  char* words[] = {command, option, filter, nullptr};
  return GetFWRules(command, 3, words);
}
