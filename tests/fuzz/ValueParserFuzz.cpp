// Every value parser over the same text: each takes or refuses it, and what it takes is in bounds.

#include <netinet/in.h>

#include <cstring>
#include <string>

#include "Fuzz.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

void numbers(const char* text) {
  long value = 0;
  unsigned long unsignedValue = 0;
  unsigned int word = 0;
  for (const int base : {0, 10, 16}) {
    Str2Long(text, base, &value);
    Str2ULong(text, base, &unsignedValue);
    Str2Uint(text, base, &word);
  }
  if (Str2Port(text, &value)) require(value >= 0 && value < 65536);
  if (Str2CIDR4(text, &value)) require(value >= 0 && value <= 32);
  if (Str2CIDR6(text, &value)) require(value >= 0 && value <= 128);
  long low = 0;
  long high = 0;
  if (Str2PortOrRange(text, &low, &high)) require(low <= high && high < 65536);
  if (Str2PortRange(text, &low, &high)) require(low < high && high < 65536);
}

void lists(const char* text) {
  std::uint16_t low = 0;
  std::uint16_t high = 0;
  if (ParsePortString(text, &low, &high) && high != 0) require(ntohs(low) < ntohs(high));
  unsigned int component = 0;
  if (ParseCompString(text, &component, hulld_comp_name, kHulldComponents)) {
    require(component < 64 || component == 255);
  }
  std::uint16_t types[4] = {};
  unsigned int count = 0;
  if (ParseEtherTypeString(text, types, 4, &count)) require(count <= 4);
  std::uint8_t protocols[4] = {};
  // A protocol's name is looked up in the host's database, which is slow: short texts only.
  if (std::strlen(text) < 24 && ParseProtocolString(text, protocols, 4, &count)) {
    require(count <= 4);
  }
  std::uint32_t timeouts[23] = {};
  ParseTimeoutList(text, timeouts, 23);
  require(TimeoutName2ID(text) <= 23);
}

void addresses(const char* text) {
  std::uint8_t address[6] = {};
  std::uint8_t mask[6] = {};
  if (ParseMACString(text, address, mask)) {
    for (int i = 0; i < 6; ++i) require((address[i] & ~mask[i]) == 0);
  }
  in_addr first4{};
  in_addr second4{};
  in6_addr first6{};
  in6_addr second6[2] = {};
  int isRange = 0;
  int isV6 = 0;
  if (ParseIPv4String(text, &first4, &second4, &isRange) && isRange != 0) {
    require(ntohl(first4.s_addr) < ntohl(second4.s_addr));
  }
  if (ParseIPv6String(text, &first6, &second6[0], &isRange) && isRange != 0) {
    require(std::memcmp(&first6, &second6[0], 8) == 0);
  }
  in_addr both4[2] = {};
  in6_addr both6[2] = {};
  ParseIPString(text, both4, both6, &isRange, &isV6);
}

void identifiers(const char* text) {
  std::uint8_t uuid[16] = {};
  int index = 0;
  int isVnic = 0;
  char buffer[64];
  if (ParseUUIDString(text, uuid, &index, &isVnic)) {
    require(index >= -99 && index <= 999);
    require(uuid2normalstr(uuid, buffer, sizeof buffer));
    std::uint8_t again[16] = {};
    require(normalstr2uuid(again, buffer) && std::memcmp(uuid, again, sizeof uuid) == 0);
  }
  gfystr2vnicstr(text, 3, buffer, sizeof buffer);
  char name[38] = {};
  if (normalizeContainerName(text, name)) require(std::memchr(name, 0, sizeof name) != nullptr);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  numbers(text.c_str());
  lists(text.c_str());
  addresses(text.c_str());
  identifiers(text.c_str());
  return 0;
}
