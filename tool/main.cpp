#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include "CommandTable.h"
#include "Program.h"
#include "StandardOutput.h"

namespace {

/// Takes the places of standard streams that the caller has closed. The control device would get
/// the first of them otherwise, and the kernel what is printed. Reading and writing them still
/// fails.
void fillStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

}  // namespace

/// tarnioctl <cmd> <options>: the administration of the host's firewall filters. The exit status is
/// the handler's, or 1 when that is 0 and output was lost.
int main(int argc, char** argv) {
  // Opened on every run, also for help; the log is never closed.
  openlog(programName(argc > 0 ? argv[0] : "tarnioctl"), LOG_CONS, LOG_AUTHPRIV);
  fillStandardStreams();
  // Static, so that lost output is reported too where the library ends the process.
  static StandardOutput output;
  return output.finish(runProgram(argc, argv));
}
