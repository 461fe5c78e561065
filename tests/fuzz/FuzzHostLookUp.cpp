// The search for the host's own call that starts programs. It is no part of what is instrumented:
// see HostCallName.h.

#include "HostCallName.h"

extern "C" {

int fuzzHostStart(const char* path, char* const* arguments, int, int, const int* descriptors,
                  int count, int, int, int, int* pid);

void* __real_dlsym(void* library, const char* name);
void* __wrap_dlsym(void* library, const char* name);
void* __wrap_dlsym(void* library, const char* name) {
  if (isHostCall(name)) return reinterpret_cast<void*>(fuzzHostStart);
  return __real_dlsym(library, name);
}

}  // extern "C"
