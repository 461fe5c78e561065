#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "Locks.h"

TEST(LockException, CarriesTheNumberAndTheSystemsText) {
  const Locks::LockException e(EINVAL);
  EXPECT_EQ(e.error(), EINVAL);
  EXPECT_EQ(std::string(e.what()), std::string("LockException: ") + std::strerror(EINVAL));
}

TEST(Mutex, AGuardKeepsOtherThreadsOutForItsScope) {
  Locks::Mutex mutex;
  int inside = 0;
  int count = 0;
  bool met = false;
  const auto work = [&] {
    for (int i = 0; i < 2000; ++i) {
      const Locks::Guard guard(mutex);
      met = met || inside != 0;
      ++inside;
      ++count;
      std::this_thread::yield();
      --inside;
    }
  };
  std::thread one(work);
  std::thread two(work);
  one.join();
  two.join();
  EXPECT_FALSE(met);
  EXPECT_EQ(count, 4000);
}
