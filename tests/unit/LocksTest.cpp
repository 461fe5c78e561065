#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include "Locks.h"

TEST(LockException, CarriesTheNumberAndTheSystemsText) {
  const Locks::LockException e(EINVAL);
  EXPECT_EQ(e.error(), EINVAL);
  EXPECT_EQ(std::string(e.what()), std::string("LockException: ") + std::strerror(EINVAL));
}

TEST(Mutex, AGuardHoldsItForItsScope) {
  Locks::Mutex mutex;
  { const Locks::Guard guard(mutex); }
  mutex.lock();
  mutex.unlock();
  SUCCEED();
}
