// What the files of the preload library share.
#ifndef TARNLAB_PRELOAD_NEXT_H
#define TARNLAB_PRELOAD_NEXT_H

#include <dlfcn.h>

#include <atomic>

// The C library's own declarations of these take attributes along that differ between them.
#define TARNLAB_EXPORT extern "C" __attribute__((visibility("default")))

namespace TarnLab {

/// A function of the next library in line, looked up at its first use.
template <typename Function>
class Next {
 public:
  constexpr explicit Next(const char* name) : name_(name) {}
  Function* get() {
    void* found = found_.load(std::memory_order_acquire);
    if (found == nullptr) {
      found = ::dlsym(RTLD_NEXT, name_);
      found_.store(found, std::memory_order_release);
    }
    return reinterpret_cast<Function*>(found);
  }

 private:
  const char* name_;
  std::atomic<void*> found_{nullptr};
};

}  // namespace TarnLab

#endif
