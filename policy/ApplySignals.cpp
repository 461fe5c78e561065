#include "ApplySignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace {

constexpr std::array kNoted = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
constexpr std::array kIgnored = {SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU};
constexpr std::size_t kAll = kNoted.size() + kIgnored.size();

/// Whichever thread a signal comes to, another one may ask.
std::atomic<int> firstSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free);
int wake[2] = {-1, -1};
std::array<struct sigaction, kAll> before;

void note(int number) {
  const int saved = errno;
  int none = 0;
  firstSignal.compare_exchange_strong(none, number);
  const char byte = 0;
  // When the pipe is full it is readable, which is all that it is for.
  [[maybe_unused]] const ssize_t written = write(wake[1], &byte, 1);
  errno = saved;
}

void take(int number, void (*handler)(int), struct sigaction& earlier) {
  sigaction(number, nullptr, &earlier);
  if (earlier.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(number, &action, nullptr);
}

}  // namespace

ApplySignals::ApplySignals() {
  if (pipe2(wake, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "can't make a pipe");
  }
  firstSignal = 0;
  std::size_t at = 0;
  for (const int number : kNoted) take(number, note, before[at++]);
  for (const int number : kIgnored) take(number, SIG_IGN, before[at++]);
}

ApplySignals::~ApplySignals() {
  std::size_t at = 0;
  for (const int number : kNoted) sigaction(number, &before[at++], nullptr);
  for (const int number : kIgnored) sigaction(number, &before[at++], nullptr);
  for (int& end : wake) {
    close(end);
    end = -1;
  }
}

int ApplySignals::seen() { return firstSignal; }

int ApplySignals::descriptor() { return wake[0]; }

const char* signalName(int number) {
  switch (number) {
    case SIGINT:
      return "SIGINT";
    case SIGTERM:
      return "SIGTERM";
    case SIGHUP:
      return "SIGHUP";
    case SIGQUIT:
      return "SIGQUIT";
    default:
      return "a signal";
  }
}
