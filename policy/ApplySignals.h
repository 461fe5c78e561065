#pragma once

/// Signals that end a program, kept until it is ready for them.

/// While it lives, SIGINT, SIGTERM, SIGHUP and SIGQUIT are noted and end nothing, those that would
/// stop the program for its terminal's sake are ignored, and so is SIGPIPE: who cuts a connection
/// must not leave half of the work. A signal that was ignored before, as `nohup` does, stays so.
/// One at a time.
class ApplySignals {
 public:
  ApplySignals();
  ~ApplySignals();
  ApplySignals(const ApplySignals&) = delete;
  ApplySignals& operator=(const ApplySignals&) = delete;

  /// The first signal that came, 0 before it.
  static int seen();

  /// A descriptor that is readable once a signal has come.
  static int descriptor();
};

/// "SIGHUP".
const char* signalName(int number);
