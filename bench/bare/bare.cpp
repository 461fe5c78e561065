// bare_load [-w FILE] TEXT: the records of a text, as the kernel takes them. Prints their bytes and
// the program's peak memory in kilobytes; -w writes the records into a file.

#include "bare.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../Tell.h"

extern std::FILE* yyin;

namespace {

constexpr unsigned int kRuleSize = 892;
constexpr unsigned int kAddressSize = 144;

unsigned char* g_records = nullptr;
std::size_t g_used = 0;
std::size_t g_capacity = 0;

void put16(unsigned char* at, unsigned int value) {
  const auto stored = static_cast<std::uint16_t>(value);
  std::memcpy(at, &stored, sizeof stored);
}

void put32(unsigned char* at, std::uint32_t value) { std::memcpy(at, &value, sizeof value); }

void putNetwork16(unsigned char* at, unsigned int value) {
  put16(at, __builtin_bswap16(static_cast<std::uint16_t>(value)));
}

void putNetwork32(unsigned char* at, std::uint32_t value) { put32(at, __builtin_bswap32(value)); }

}  // namespace

void yyerror(const char* message) {
  std::fprintf(stderr, "bare_load: %s\n", message);
  std::exit(1);
}

unsigned char* nextRecord(unsigned int size) {
  if (size > g_capacity - g_used) {
    g_capacity = g_capacity == 0 ? 65536 : 2 * g_capacity;
    g_records = static_cast<unsigned char*>(std::realloc(g_records, g_capacity));
    if (g_records == nullptr) yyerror("out of memory");
  }
  unsigned char* record = g_records + g_used;
  g_used += size;
  std::memset(record, 0, size);
  return record;
}

void writeRule(std::uint32_t id, std::uint32_t source, BareBlock destination, unsigned int port) {
  unsigned char* record = nextRecord(kRuleSize);
  put32(record, id);
  put16(record + 12, 1);  // IPv4 address
  putNetwork32(record + 16, source);
  put16(record + 156, 5);  // IPv4 block
  const std::uint32_t mask =
      destination.prefix == 0 ? 0 : ~std::uint32_t{0} << (32 - destination.prefix);
  putNetwork32(record + 160, destination.address & mask);
  record[164] = static_cast<unsigned char>(destination.prefix);
  put16(record + 338, 2 | 1 << 3);  // destination, one port
  putNetwork16(record + 340, port);
  record[460 + 290] = 1;                           // accept
  record[790] = 0x01 | 0x02 | 0x04 | 0x10 | 0x80;  // both addresses, protocol, layer 3, IPv4
  record[793] = 0x10;                              // the family is derived
  put16(record + 794, 6);                          // TCP
  put32(record + 884, 1);                          // no profile
}

void writeAddress(std::uint32_t address) {
  unsigned char* record = nextRecord(kAddressSize);
  put16(record, 1);
  putNetwork32(record + 4, address);
}

int main(int count, char** arguments) {
  const char* output = nullptr;
  int next = 1;
  if (count > 2 && std::strcmp(arguments[1], "-w") == 0) {
    output = arguments[2];
    next = 3;
  }
  if (next + 1 != count) {
    std::fprintf(stderr, "usage: bare_load [-w FILE] TEXT\n");
    return 2;
  }
  yyin = std::fopen(arguments[next], "r");
  if (yyin == nullptr) yyerror("no such text");
  if (yyparse() != 0) return 1;
  if (output != nullptr && !writeWhole(output, g_records, g_used)) yyerror("cannot write");
  std::free(g_records);
  std::fclose(yyin);
  tell(g_used);
  return 0;
}
