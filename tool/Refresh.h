#pragma once

/// The option `-t` of commands that show something again and again.

#include "HandlerForm.h"

struct Refresh {
  bool repeats = false;  // until a signal ends the program
  int interval = 0;      // seconds

  /// The option: a whole number of seconds; an error line and status 1 for anything else.
  OwnOption option();

  /// Waits the interval. What was printed is written before.
  void wait() const { pause(interval); }

  static void pause(int seconds);
};

/// Lines of usage texts.
#define USAGE_REFRESH "    -t <number> : refresh interval in seconds\n"
