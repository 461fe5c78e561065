#include "ApplyProgress.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr std::chrono::milliseconds kQuiet(500);
constexpr std::chrono::milliseconds kPause(100);

}  // namespace

ProgressLine::ProgressLine(std::string what)
    : what_(std::move(what)),
      next_(Clock::now() + kQuiet),
      isTerminal_(isatty(STDERR_FILENO) == 1) {}

void ProgressLine::show(std::size_t done, std::size_t all) {
  if (!isTerminal_ || Clock::now() < next_) return;
  std::fprintf(stderr, "\r\033[K%s: %zu of %zu statements", what_.c_str(), done, all);
  next_ = Clock::now() + kPause;
  isShown_ = true;
}

void ProgressLine::clear() {
  if (isShown_) std::fputs("\r\033[K", stderr);
  isShown_ = false;
}
