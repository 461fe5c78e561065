#include "MemoryShim.h"

#include <cstdlib>
#include <limits>

namespace {

constexpr unsigned int kNone = std::numeric_limits<unsigned int>::max();

/// Allocations up to the one that fails.
thread_local unsigned int t_left = kNone;
thread_local bool t_noMemory = false;

void* allocate(std::size_t size) noexcept {
  if (t_noMemory) return nullptr;
  if (t_left != kNone && t_left-- == 0) return nullptr;  // one failure: kNone is what is left
  return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(std::size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

// All forms that the library uses, so that no memory of one kind is freed as another.
void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

namespace MemoryShim {

FailingAllocation::FailingAllocation(unsigned int number) { t_left = number; }
FailingAllocation::~FailingAllocation() { t_left = kNone; }

NoMemory::NoMemory() { t_noMemory = true; }
NoMemory::~NoMemory() { t_noMemory = false; }

}  // namespace MemoryShim
