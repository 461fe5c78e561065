#include "LabModel.h"

#include <poll.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <new>

#include "LabFamily.h"

namespace TarnLab {

namespace {

constexpr std::int64_t second = 1000000000;  // in nanoseconds

std::int64_t nanosecondsNow() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * second + now.tv_nsec;
}

/// Sleeps for so long, also when signals come meanwhile.
void sleepFor(std::uint32_t milliseconds, const sigset_t* mask) {
  const std::int64_t whole = std::int64_t{milliseconds} * 1000000;
  const std::int64_t end = nanosecondsNow() + whole;
  for (std::int64_t left = whole; left > 0; left = end - nanosecondsNow()) {
    const timespec pause{left / second, left % second};
    if (::ppoll(nullptr, 0, &pause, mask) == 0 || errno != EINTR) return;
  }
}

/// Holds a request up, before it takes the lock, so that other programs go on. A damaged file of
/// faults is reported when the request is answered.
void delay(const Store& store, const sigset_t* mask) {
  std::uint32_t milliseconds = 0;
  try {
    if (Faults::load(store).all().empty()) return;
    const StoreLock lock(store);
    Faults faults = Faults::load(store);
    milliseconds = faults.takeDelay();
    if (faults.changed()) faults.save(store);
  } catch (const StoreError&) {
    return;
  }
  sleepFor(milliseconds, mask);
}

}  // namespace

int Model::openDevice(Device device) const {
  try {
    if (!store_.exists()) return ENOENT;
    return Faults::load(store_).absent(device) ? ENOENT : 0;
  } catch (const StoreError& failure) {
    return failure.error();
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

int Model::request(Device device, std::uint32_t number, std::uint64_t argument,
                   const sigset_t* duringDelay, int* result) const {
  try {
    delay(store_, duringDelay);

    std::uint32_t signal = 0;
    const int error = answer(device, number, argument, result, signal);
    // After the lock is given back, which the program may not live to do then.
    if (signal != 0) ::raise(static_cast<int>(signal));
    return error;
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  } catch (const std::exception&) {
    return EIO;
  }
}

int Model::answer(Device device, std::uint32_t number, std::uint64_t argument, int* result,
                  std::uint32_t& signal) const {
  const StoreLock lock(store_);
  Faults faults;
  JournalEntry entry;
  entry.stamp();
  entry.device = device;
  entry.request = number;
  try {
    faults = Faults::load(store_);
    signal = faults.takeSignal();
    if (const auto error = faults.takeError(device, entry.request)) {
      entry.error = static_cast<int>(*error);
      entry.note = "ordered fault";
    } else {
      entry.error = answerDirect(findDirect(device, number), store_, faults, entry, argument);
    }
  } catch (const StoreError& failure) {
    entry.error = EIO;
    entry.note = failure.what();
  } catch (const std::bad_alloc&) {
    entry.error = ENOMEM;
    entry.note = "out of memory";
  } catch (const std::exception& failure) {
    entry.error = EINVAL;
    entry.note = failure.what();
  }
  if (faults.changed()) faults.save(store_);
  Journal(store_).append(entry);
  if (result != nullptr) *result = entry.result;
  return entry.error;
}

}  // namespace TarnLab
