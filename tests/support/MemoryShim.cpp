#include "MemoryShim.h"

#include <cstddef>
#include <cstdlib>
#include <limits>

namespace {

constexpr unsigned int kNone = std::numeric_limits<unsigned int>::max();

/// Allocations up to the one that fails.
thread_local unsigned int t_left = kNone;
thread_local bool t_noMemory = false;
thread_local bool t_onwards = false;

void* allocate(std::size_t size) noexcept {
  if (MemoryShim::nextFails()) return nullptr;
  // Not `malloc`, which a program may count by itself.
  void* memory = nullptr;
  return ::posix_memalign(&memory, alignof(std::max_align_t), size) == 0 ? memory : nullptr;
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

bool nextFails() {
  if (t_noMemory) return true;
  if (t_left == kNone || t_left-- != 0) return false;
  // One failure: kNone is what is left.
  t_noMemory = t_onwards;
  return true;
}

FailingAllocation::FailingAllocation(unsigned int number, Range range) {
  t_left = number;
  t_onwards = range == kFromThereOn;
}
FailingAllocation::~FailingAllocation() {
  t_left = kNone;
  t_noMemory = false;
}
bool FailingAllocation::reached() const { return t_left == kNone; }

NoMemory::NoMemory() { t_noMemory = true; }
NoMemory::~NoMemory() { t_noMemory = false; }

}  // namespace MemoryShim
