#include "Refresh.h"

#include <unistd.h>

#include <cstdio>

OwnOption Refresh::option() {
  return {'t', [this](const char* value, const Target&) {
            if (!decimalOption(value, &interval) || interval < 0)
              return error("ERROR: Invalid refresh interval %s\n", value);
            repeats = true;
            return kGoOn;
          }};
}

void Refresh::pause(int seconds) {
  std::fflush(stdout);
  if (seconds != 0) sleep(static_cast<unsigned int>(seconds));
}
