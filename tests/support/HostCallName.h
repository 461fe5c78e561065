#pragma once

/// Whether a program looks for the host's own call that starts programs. A sanitizer's functions
/// are looked up by the same call, before any other function can be called: no library function
/// here.
static inline bool isHostCall(const char* name) {
  const char* expected = "RudderCompat_ForkExec";
  while (*name != '\0' && *name == *expected) ++name, ++expected;
  return *name == *expected;
}
