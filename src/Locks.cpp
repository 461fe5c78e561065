#include "Locks.h"

#include <cstring>

namespace Locks {

LockException::LockException(int error)
    : error_(error), message_("LockException: " + std::string(std::strerror(error))) {}

Mutex::Mutex() {
  if (const int error = pthread_mutex_init(&mutex_, nullptr); error != 0) {
    throw LockException(error);
  }
}

Mutex::~Mutex() { pthread_mutex_destroy(&mutex_); }

void StaticMutex::lock() {
  if (const int error = pthread_mutex_lock(&mutex_); error != 0) throw LockException(error);
}

void StaticMutex::unlock() {
  if (const int error = pthread_mutex_unlock(&mutex_); error != 0) throw LockException(error);
}

Guard::~Guard() {
  try {
    mutex_.unlock();
  } catch (const LockException&) {
    // Nothing can be done here: the scope ends either way.
  }
}

}  // namespace Locks
