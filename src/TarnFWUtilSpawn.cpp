#include "TarnFWUtilSpawn.h"

#include <dlfcn.h>
#include <spawn.h>
#include <unistd.h>

namespace TarnFirewall {

namespace {

/// The host's call. What the numbers between the arguments and the process's id mean besides the
/// three descriptors and their count is the host's; they are always the same.
using ForkExec = int(const char* path, char* const* arguments, int, int, const int* descriptors,
                     int count, int, int, int, int* pid);

constexpr char kForkExec[] = "RudderCompat_ForkExec";
constexpr char kHostLibrary[] = "librudder.so.0";
constexpr int kDescriptors = 3;

/// The host's call in what is loaded already, else in its library, which stays loaded. Null on a
/// host that has none.
ForkExec* findForkExec() {
  void* call = dlsym(RTLD_DEFAULT, kForkExec);
  if (call == nullptr) {
    if (void* const library = dlopen(kHostLibrary, RTLD_NOW); library != nullptr)
      call = dlsym(library, kForkExec);
  }
  return reinterpret_cast<ForkExec*>(call);
}

/// The program has the descriptors as its standard streams, and no others: the control devices are
/// not closed when a program is started.
int spawn(const char* path, char* const* arguments, const int* descriptors, int* pid) {
  posix_spawn_file_actions_t actions;
  if (const int error = posix_spawn_file_actions_init(&actions)) return error;
  int error = 0;
  for (int stream = 0; stream < kDescriptors && error == 0; ++stream)
    error = posix_spawn_file_actions_adddup2(&actions, descriptors[stream], stream);
  if (error == 0) error = posix_spawn_file_actions_addclosefrom_np(&actions, kDescriptors);
  if (error == 0) error = posix_spawn(pid, path, &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  return error;
}

}  // namespace

int spawnOnHost(const char* path, char* const* arguments, const int (&descriptors)[3], int* pid) {
  static ForkExec* const forkExec = findForkExec();
  if (forkExec == nullptr) return spawn(path, arguments, descriptors, pid);
  return forkExec(path, arguments, 0, -1, descriptors, kDescriptors, -1, -1, 0, pid);
}

}  // namespace TarnFirewall
