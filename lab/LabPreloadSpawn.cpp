// The part of the preload library that starts programs: it stands in front of the C library's
// calls, so that the host's list of machines is the lab's, and is the host's own spawn call.
#include <spawn.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "LabPreloadNext.h"

using TarnLab::Next;

namespace {

constexpr const char* listOfMachines = "/bin/tarn_vm_list.sh";

using ExecFunction = int(const char*, char* const[]);
using ExecWithFunction = int(const char*, char* const[], char* const[]);
using SpawnFunction = int(pid_t*, const char*, const posix_spawn_file_actions_t*,
                          const posix_spawnattr_t*, char* const[], char* const[]);

constinit Next<ExecFunction> nextExecv("execv"), nextExecvp("execvp");
constinit Next<ExecWithFunction> nextExecve("execve"), nextExecvpe("execvpe");
constinit Next<SpawnFunction> nextSpawn("posix_spawn"), nextSpawnp("posix_spawnp");

/// Looks the functions up early: a child that starts a program may not do more than that.
[[gnu::constructor]] void start() {
  for (Next<ExecFunction>* next : {&nextExecv, &nextExecvp}) next->get();
  for (Next<ExecWithFunction>* next : {&nextExecve, &nextExecvpe}) next->get();
  for (Next<SpawnFunction>* next : {&nextSpawn, &nextSpawnp}) next->get();
}

/// What is run when a program is wanted: the program itself or, for the list of machines, tarnlab.
/// Takes no memory, since it may be made in a child of vfork. The lab is named by its folder, as
/// the list may be run without the environment of its caller.
class Wanted {
 public:
  Wanted(const char* path, char* const* arguments) : path_(path), arguments_(arguments) {
    const char* tarnlab = std::getenv("TARNLAB_PROGRAM");
    if (path == nullptr || std::strcmp(path, listOfMachines) != 0 || tarnlab == nullptr) return;
    const char* home = std::getenv("TARNLAB_HOME");
    path_ = tarnlab;
    const char* const words[] = {tarnlab, "--home",
                                 home != nullptr && *home != '\0' ? home : ".tarnlab", "machines",
                                 nullptr};
    for (std::size_t i = 0; i < std::size(words); ++i) own_[i] = const_cast<char*>(words[i]);
    arguments_ = own_;
  }
  Wanted(const Wanted&) = delete;
  Wanted& operator=(const Wanted&) = delete;

  const char* path() const { return path_; }
  char* const* arguments() const { return arguments_; }

 private:
  const char* path_;
  char* const* arguments_;
  char* own_[5] = {};
};

/// The actions that make descriptors a child's standard streams and close all others. They are
/// moved out of the way first, so that none is overwritten before it was copied.
class StandardStreams {
 public:
  StandardStreams() { error_ = ::posix_spawn_file_actions_init(&actions_); }
  ~StandardStreams() { ::posix_spawn_file_actions_destroy(&actions_); }
  StandardStreams(const StandardStreams&) = delete;
  StandardStreams& operator=(const StandardStreams&) = delete;

  /// Returns 0 or an errno.
  int take(const int* descriptors, int count) {
    const int free = std::max(count, 1 + *std::max_element(descriptors, descriptors + count));
    for (int i = 0; i < count; ++i) copy(descriptors[i], free + i);
    for (int i = 0; i < count; ++i) copy(free + i, i);
    if (error_ == 0) error_ = ::posix_spawn_file_actions_addclosefrom_np(&actions_, count);
    return error_;
  }

  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  void copy(int from, int to) {
    if (error_ == 0) error_ = ::posix_spawn_file_actions_adddup2(&actions_, from, to);
  }

  posix_spawn_file_actions_t actions_{};
  int error_ = 0;
};

}  // namespace

TARNLAB_EXPORT int execv(const char* path, char* const* arguments) noexcept {
  const Wanted wanted(path, arguments);
  return nextExecv.get()(wanted.path(), wanted.arguments());
}

TARNLAB_EXPORT int execvp(const char* path, char* const* arguments) noexcept {
  const Wanted wanted(path, arguments);
  return nextExecvp.get()(wanted.path(), wanted.arguments());
}

TARNLAB_EXPORT int execve(const char* path, char* const* arguments,
                          char* const* environment) noexcept {
  const Wanted wanted(path, arguments);
  return nextExecve.get()(wanted.path(), wanted.arguments(), environment);
}

TARNLAB_EXPORT int execvpe(const char* path, char* const* arguments,
                           char* const* environment) noexcept {
  const Wanted wanted(path, arguments);
  return nextExecvpe.get()(wanted.path(), wanted.arguments(), environment);
}

TARNLAB_EXPORT int posix_spawn(pid_t* process, const char* path,
                               const posix_spawn_file_actions_t* actions,
                               const posix_spawnattr_t* attributes, char* const* arguments,
                               char* const* environment) {
  const Wanted wanted(path, arguments);
  return nextSpawn.get()(process, wanted.path(), actions, attributes, wanted.arguments(),
                         environment);
}

TARNLAB_EXPORT int posix_spawnp(pid_t* process, const char* path,
                                const posix_spawn_file_actions_t* actions,
                                const posix_spawnattr_t* attributes, char* const* arguments,
                                char* const* environment) {
  const Wanted wanted(path, arguments);
  return nextSpawnp.get()(process, wanted.path(), actions, attributes, wanted.arguments(),
                          environment);
}

/// The spawn call of the host's library. The child has the descriptors as its standard streams, in
/// the order input, output, error, and no others. What the other arguments could ask for, the lab
/// does not have: they are as every caller passes them. Returns 0, or an errno.
TARNLAB_EXPORT int RudderCompat_ForkExec(const char* path, char* const* arguments, int flags,
                                         int group, const int* descriptors, int count, int user,
                                         int other, int options, int* process) {
  if (path == nullptr || arguments == nullptr || descriptors == nullptr || process == nullptr ||
      count != 3 || flags != 0 || group != -1 || user != -1 || other != -1 || options != 0) {
    return EINVAL;
  }
  if (*std::min_element(descriptors, descriptors + count) < 0) return EBADF;
  StandardStreams streams;
  if (const int error = streams.take(descriptors, count)) return error;
  pid_t child = -1;
  const int error = ::posix_spawn(&child, path, streams.get(), nullptr, arguments, environ);
  if (error == 0) *process = child;
  return error;
}
