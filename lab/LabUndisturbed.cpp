#include "LabUndisturbed.h"

#include <pthread.h>

#include <initializer_list>

namespace TarnLab {

Undisturbed::Undisturbed() noexcept {
  sigset_t waiting;
  ::sigfillset(&waiting);
  for (const int fault : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGSYS, SIGABRT}) {
    ::sigdelset(&waiting, fault);
  }
  ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancelState_);
  ::pthread_sigmask(SIG_BLOCK, &waiting, &before_);
}

Undisturbed::~Undisturbed() {
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  ::pthread_setcancelstate(cancelState_, nullptr);
}

}  // namespace TarnLab
