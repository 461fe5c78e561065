// list_cost filters COUNT: getfilters -s on so many filters.
// list_cost containers COUNT ascending|random: getcontainers on one container of so many
// attributes, users with a name each, in the order of their identifiers or in none.
//
// The kernel is in this program. list-cost counts and measures what the handlers spend outside of
// it.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "Handlers.h"
#include "TarnFWAttrValue.h"
#include "TarnFWContainer.h"
#include "TarnFWFilter.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

std::uint32_t g_count = 0;
std::vector<std::uint32_t> g_order;
fwlibhandle_* g_library = nullptr;

constexpr std::size_t kBody = 32;   // after the message's header and the envelope
constexpr std::size_t kChain = 70;  // of the reply about a container
constexpr std::size_t kText = 14;   // "user-00000000" with its NUL
constexpr std::uint16_t kKey = 7;   // an identifier with a text
constexpr std::size_t kValue = sizeof(_FWAttrValue) + 16 + 2 + kText;
constexpr std::size_t kElement = sizeof(FWtlvChainElem) + kValue;

FWFilterRecord_ filterOf(std::uint32_t index) {
  FWFilterRecord_ filter{};
  std::snprintf(filter.name, sizeof filter.name, "nic-%u-eth0-kelpco-sfw.2", 1000000 + index);
  std::strcpy(filter.agent, "kelpco-sfw");
  std::snprintf(filter.vmUuid, sizeof filter.vmUuid,
                "50 2e 1f 3a c2 1a 70 11-4a e1 00 50 %02x %02x %02x %02x", index >> 24,
                index >> 16 & 255, index >> 8 & 255, index & 255);
  filter.vnicIndex = index % 4;
  filter.hash = static_cast<std::uint16_t>(index);
  filter.ruleConfig = 1;
  std::uint64_t counter = 1000 + index;
  for (auto& each : filter.counters) each = counter = counter * 3 % 1000000007;
  for (auto& each : filter.connectionRates) each = static_cast<std::int32_t>(index % 1000);
  return filter;
}

void writeElement(std::byte* to, std::uint32_t index) {
  FWtlvChainElem element;
  element.one = 1;
  element.type = FW_CONTAINER_ELEMENT_ATTRIBUTE;
  element.length = static_cast<std::uint32_t>(kValue);
  storeRecord(to, element);
  to += sizeof element;
  storeRecord(to, _FWAttrValue{host16(kKey), host16(3), host32(static_cast<std::uint32_t>(kValue)),
                               host16(0)});
  to += sizeof(_FWAttrValue);
  storeRecord(to, net64(0x502e1f3ac21a7011));
  storeRecord(to + 8, net64(index));
  storeRecord(to + 16, host16(static_cast<std::uint16_t>(kText)));
  char text[kText];
  std::snprintf(text, sizeof text, "user-%08u", index);
  std::memcpy(to + 18, text, sizeof text);
}

void writeContainer(std::byte* to) {
  FWtlvChain head;
  head.type = FW_CONTAINER_ATTR_PROFILE;
  head.count = g_count;
  head.size = static_cast<std::uint32_t>(kElement * g_count);
  storeRecord(to, head);
  to += sizeof head;
  for (const std::uint32_t index : g_order) {
    writeElement(to, index);
    to += kElement;
  }
}

void putWord(std::byte* at, std::size_t value) {
  storeRecord(at, host32(static_cast<std::uint32_t>(value)));
}

FWStatus_t begin(void*, void** context) {
  *context = nullptr;
  return 0;
}
void end(void*) {}

}  // namespace

extern "C" {

// The linker sends the handlers' calls of these functions here.
int __wrap_FW_Ioctl(int request, void* argument);
__attribute__((noinline)) int __wrap_FW_Ioctl(int, void* argument) {
  const auto frame = loadRecord<FWIoctlFrame>(argument);
  void* const body = reinterpret_cast<void*>(std::uintptr_t{frame.body});
  auto list = loadRecord<FWFilterList_>(body);
  list.count = g_count;
  if (list.buffer != 0) {
    auto* to = reinterpret_cast<std::byte*>(std::uintptr_t{list.buffer});
    for (std::uint32_t i = 0; i < g_count; ++i, to += sizeof(FWFilterRecord_))
      storeRecord(to, filterOf(i));
  }
  storeRecord(body, list);
  return 0;
}

fwlibhandle_* __wrap_FW_GetDefaultLibHandle();
fwlibhandle_* __wrap_FW_GetDefaultLibHandle() { return g_library; }

__attribute__((noinline)) FWStatus_t answer(void*, void* message, unsigned int, void*) {
  auto* const envelope = static_cast<std::byte*>(message) + 20;
  std::byte* const body = static_cast<std::byte*>(message) + kBody;
  switch (std::to_integer<int>(envelope[4])) {
    case 15:  // members, type and bytes
      putWord(body + 38, g_count);
      putWord(body + 42, 2);
      putWord(body + 46, sizeof(FWtlvChain) + kElement * g_count);
      break;
    case 16:  // state of a set
      break;
    case 56:  // elements
      writeContainer(body + kChain);
      break;
    default:
      return 1;
  }
  return 0;
}

}  // extern "C"

int main(int count, char** arguments) {
  const std::string kind = count > 2 ? arguments[1] : "";
  g_count = count > 2 ? static_cast<std::uint32_t>(std::strtoul(arguments[2], nullptr, 10)) : 0;
  g_order.resize(g_count);
  std::iota(g_order.begin(), g_order.end(), 0u);
  if (kind == "filters" && count == 3) {
    char command[] = "getfilters";
    char option[] = "-s";
    char* words[] = {command, option, nullptr};
    return GetFWFilters(command, 2, words);
  }
  if (kind != "containers" || count != 4) {
    std::fprintf(stderr,
                 "usage: list_cost filters COUNT\n"
                 "       list_cost containers COUNT ascending|random\n");
    return 2;
  }
  if (std::strcmp(arguments[3], "random") == 0)
    std::shuffle(g_order.begin(), g_order.end(), std::mt19937(1));
  const FWLibGenericIO_ kernel = {begin, end, answer, nullptr};
  const char* items[] = {"FWIOGenericIO", reinterpret_cast<const char*>(&kernel)};
  int reserved = 0;
  if (FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_GENERIC, 2, items, &g_library) != 0)
    return 1;
  char command[] = "getcontainers";
  char option[] = "-f";
  char filter[] = "nic-1002672-eth0-kelpco-sfw.2";
  char named[] = "-a";
  char name[] = "users";
  char* words[] = {command, option, filter, named, name, nullptr};
  return GetFWContainer(command, 5, words);
}
