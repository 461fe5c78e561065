#include <syslog.h>

#include "CommandTable.h"
#include "Program.h"
#include "StandardOutput.h"

/// tarnioctl <cmd> <options>: the administration of the host's firewall filters. The exit status is
/// the handler's, or 1 when that is 0 and output was lost.
int main(int argc, char** argv) {
  // Opened on every run, also for help; the log is never closed.
  openlog(programName(argc > 0 ? argv[0] : "tarnioctl"), LOG_CONS, LOG_AUTHPRIV);
  TarnFirewall::fillStandardStreams();
  // Static, so that lost output is reported too where the library ends the process.
  static TarnFirewall::StandardOutput output("ERROR", 1);
  return output.finish(runProgram(argc, argv));
}
