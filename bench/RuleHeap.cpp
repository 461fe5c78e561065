// Prints the heap that one rule with two blocks and a port holds, before and after it was written.

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "RuleParts.h"

using namespace TarnFirewall;

namespace {
std::size_t g_heap = 0;
}  // namespace

void* operator new(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  g_heap += malloc_usable_size(memory);
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) g_heap -= malloc_usable_size(memory);
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

int main() {
  const std::size_t before = g_heap;
  const auto rule = buildRule(7);
  std::printf("%zu bytes of heap for a rule that was not written\n", g_heap - before);
  FWRule_ record;
  unsigned int written = 0;
  rule->toMessage(&record, sizeof record, &written);
  std::printf("%zu bytes of heap for a rule that was written\n", g_heap - before);
  return 0;
}
