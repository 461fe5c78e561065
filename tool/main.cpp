#include <syslog.h>

#include "CommandTable.h"

/// tarnioctl <cmd> <options>: the administration of the host's firewall filters. The exit status is
/// the handler's.
int main(int argc, char** argv) {
  // Opened on every run, also for help; the log is never closed.
  openlog(programName(argc > 0 ? argv[0] : "tarnioctl"), LOG_CONS, LOG_AUTHPRIV);
  return runCommand(argc, argv);
}
