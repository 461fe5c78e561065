#include <syslog.h>

#include "PolicyProgram.h"

/// tarnpolicy SUBCOMMAND ...: checks, keeps and changes whole policies. The exit status is the
/// subcommand's, and 2 when it was called wrongly or its output was lost.
int main(int argc, char** argv) {
  openlog("tarnpolicy", LOG_CONS, LOG_AUTHPRIV);
  return runPolicyProgram(argc, argv);
}
