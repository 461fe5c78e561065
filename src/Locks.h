#pragma once

#include <pthread.h>

#include <exception>
#include <memory>
#include <string>

namespace Locks {

/// A failed mutex call. `what()` is "LockException: " and the system's text of the error number.
class LockException : public std::exception {
 public:
  explicit LockException(int error);
  const char* what() const noexcept override { return message_.c_str(); }
  int error() const noexcept { return error_; }

 private:
  int error_;
  std::string message_;
};

/// A plain, non-recursive mutex of the process itself: the compiler makes it, and nothing destroys
/// it, so that it costs a start of the program nothing. Every operation that fails throws
/// `LockException`.
class StaticMutex {
 public:
  constexpr StaticMutex() = default;
  StaticMutex(const StaticMutex&) = delete;
  StaticMutex& operator=(const StaticMutex&) = delete;

  void lock();
  void unlock();

 protected:
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
};

/// The same in an object that comes and goes.
class Mutex : public StaticMutex {
 public:
  Mutex();
  ~Mutex();
};

/// Holds a mutex for a scope. A failing unlock on the way out is ignored, since a destructor must
/// not throw.
class Guard {
 public:
  explicit Guard(StaticMutex& mutex) : mutex_(mutex) { mutex_.lock(); }
  ~Guard();
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;

 private:
  StaticMutex& mutex_;
};

/// The process's only object of a class, which `make` makes on first use; the lock is held
/// meanwhile. When `make` throws, the next call tries again.
template <typename Object, typename Make>
Object* onlyInstance(const Make& make) {
  static Mutex mutex;
  static std::unique_ptr<Object> instance;
  const Guard lock(mutex);
  if (instance == nullptr) instance.reset(make());
  return instance.get();
}

}  // namespace Locks
