#pragma once

#include <new>

/// Replaces `new` and `delete` in the program it is linked into, so that a test can let one
/// allocation fail, or all.
namespace MemoryShim {

/// Whether the next allocation is one that fails, and counts it. For allocations of other kinds
/// that a program counts with these.
bool nextFails();

/// How many allocations fail: one, or all from that one on.
enum Range { kOne, kFromThereOn };

/// While it lives, the allocation of this number by this thread throws `std::bad_alloc`; the first
/// has the number 0.
class FailingAllocation {
 public:
  explicit FailingAllocation(unsigned int number, Range range = kOne);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// Whether that allocation was made.
  bool reached() const;
};

/// While it lives, every allocation by this thread throws `std::bad_alloc`.
class NoMemory {
 public:
  NoMemory();
  ~NoMemory();
  NoMemory(const NoMemory&) = delete;
  NoMemory& operator=(const NoMemory&) = delete;
};

/// Calls `body` with its first allocation failing, then with its second, and so on, until none
/// fails any more. `afterwards` is called after each failure. The result is their number.
template <typename Body, typename Afterwards>
unsigned int failEachAllocation(Body body, Afterwards afterwards) {
  for (unsigned int number = 0;; ++number) {
    try {
      const FailingAllocation failing(number);
      body();
      return number;
    } catch (const std::bad_alloc&) {
      // The guard is gone, so that what follows may allocate.
    }
    afterwards();
  }
}

}  // namespace MemoryShim
