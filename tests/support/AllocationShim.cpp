// The linker sends the product's allocations by the C library through here, so that they are
// counted with those by `new`. What the C library allocates for itself is not.
#include <cerrno>
#include <cstddef>

#include "MemoryShim.h"

namespace {

bool fails() {
  if (!MemoryShim::nextFails()) return false;
  errno = ENOMEM;
  return true;
}

}  // namespace

extern "C" {

void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : __real_malloc(size); }

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : __real_calloc(count, size);
}

void* __real_realloc(void* memory, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size) {
  return fails() ? nullptr : __real_realloc(memory, size);
}

char* __real_strdup(const char* text);
char* __wrap_strdup(const char* text);
char* __wrap_strdup(const char* text) { return fails() ? nullptr : __real_strdup(text); }

}  // extern "C"
