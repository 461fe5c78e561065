// A stretch of a thread's work that nothing breaks off.
#ifndef TARNLAB_UNDISTURBED_H
#define TARNLAB_UNDISTURBED_H

#include <signal.h>

namespace TarnLab {

/// While it lives, signals of this thread wait and the thread is not cancelled: a request holds the
/// lab's lock, which a handler with a request of its own, a stop from the terminal or an end of the
/// thread would keep from all others. Signals for a fault of the thread itself still come.
class Undisturbed {
 public:
  Undisturbed() noexcept;
  ~Undisturbed();
  Undisturbed(const Undisturbed&) = delete;
  Undisturbed& operator=(const Undisturbed&) = delete;

  /// The signals that waited already before.
  const sigset_t& before() const { return before_; }

 private:
  sigset_t before_{};
  int cancelState_ = 0;
};

}  // namespace TarnLab

#endif
