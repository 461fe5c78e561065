#include <syslog.h>

#include "PolicyProgram.h"
#include "StandardOutput.h"

/// tarnpolicy SUBCOMMAND ...: checks, keeps and changes whole policies. The exit status is the
/// subcommand's, and at least 2 when output was lost.
int main(int argc, char** argv) {
  openlog("tarnpolicy", LOG_CONS, LOG_AUTHPRIV);
  TarnFirewall::fillStandardStreams();
  static TarnFirewall::StandardOutput output("tarnpolicy", kTroubleStatus);
  return output.finish(runPolicyProgram(argc, argv));
}
