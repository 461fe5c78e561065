// The part of the preload library that puts the lab's files in the place of the host's own, for the
// calls that look at files, make and remove them. What opens them stands with the devices.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "LabHostFiles.h"
#include "LabPreloadNext.h"
#include "LabPreloadPath.h"

using TarnLab::HostPath;
using TarnLab::Next;

namespace TarnLab {

HostPath::HostPath(const char* path) noexcept : path_(path) {
  // What is no address of a text is for the kernel to refuse.
  if (reinterpret_cast<std::intptr_t>(path) < 4096 || path[0] != '/' || !HostFiles::isMoved(path)) {
    return;
  }
  const char* home = std::getenv("TARNLAB_HOME");
  if (home == nullptr || *home == '\0') home = ".tarnlab";
  const std::size_t length = std::strlen(home);
  // The lab itself may be in one of the host's folders.
  if (std::strncmp(path, home, length) == 0 && (path[length] == '\0' || path[length] == '/'))
    return;
  path_ = own_;
  const int needed = std::snprintf(own_, sizeof own_, "%s/%s%s", home, HostFiles::root, path);
  if (needed < 0 || needed >= PATH_MAX) {
    std::memset(own_, 'x', PATH_MAX);
    own_[PATH_MAX] = '\0';
  }
}

}  // namespace TarnLab

// A call whose first argument, or whose second one, is a path.
#define TARNLAB_PATH(result, name, PARAMETERS, exception, ...) \
  namespace {                                                  \
  constinit Next<result PARAMETERS> next_##name(#name);        \
  }                                                            \
  TARNLAB_EXPORT result name PARAMETERS exception { return next_##name.get()(__VA_ARGS__); }

#undef stat
#undef stat64
#undef lstat
#undef lstat64
#undef fstatat
#undef fstatat64
#undef fopen
#undef fopen64
#undef freopen
#undef freopen64

#define MOVED HostPath(path).get()

TARNLAB_PATH(int, access, (const char* path, int mode), noexcept, MOVED, mode)
TARNLAB_PATH(int, eaccess, (const char* path, int mode), noexcept, MOVED, mode)
TARNLAB_PATH(int, euidaccess, (const char* path, int mode), noexcept, MOVED, mode)
TARNLAB_PATH(int, faccessat, (int folder, const char* path, int mode, int flags), noexcept, folder,
             MOVED, mode, flags)
TARNLAB_PATH(int, stat, (const char* path, struct stat* status), noexcept, MOVED, status)
TARNLAB_PATH(int, stat64, (const char* path, struct stat64* status), noexcept, MOVED, status)
TARNLAB_PATH(int, lstat, (const char* path, struct stat* status), noexcept, MOVED, status)
TARNLAB_PATH(int, lstat64, (const char* path, struct stat64* status), noexcept, MOVED, status)
TARNLAB_PATH(int, fstatat, (int folder, const char* path, struct stat* status, int flags), noexcept,
             folder, MOVED, status, flags)
TARNLAB_PATH(int, fstatat64, (int folder, const char* path, struct stat64* status, int flags),
             noexcept, folder, MOVED, status, flags)
TARNLAB_PATH(int, statx,
             (int folder, const char* path, int flags, unsigned mask, struct statx* status),
             noexcept, folder, MOVED, flags, mask, status)
TARNLAB_PATH(std::FILE*, fopen, (const char* path, const char* mode), , MOVED, mode)
TARNLAB_PATH(std::FILE*, fopen64, (const char* path, const char* mode), , MOVED, mode)
TARNLAB_PATH(std::FILE*, freopen, (const char* path, const char* mode, std::FILE* stream), , MOVED,
             mode, stream)
TARNLAB_PATH(std::FILE*, freopen64, (const char* path, const char* mode, std::FILE* stream), ,
             MOVED, mode, stream)
TARNLAB_PATH(DIR*, opendir, (const char* path), , MOVED)
TARNLAB_PATH(int, unlink, (const char* path), noexcept, MOVED)
TARNLAB_PATH(int, unlinkat, (int folder, const char* path, int flags), noexcept, folder, MOVED,
             flags)
TARNLAB_PATH(int, remove, (const char* path), noexcept, MOVED)
TARNLAB_PATH(int, mkdir, (const char* path, mode_t mode), noexcept, MOVED, mode)
TARNLAB_PATH(int, mkdirat, (int folder, const char* path, mode_t mode), noexcept, folder, MOVED,
             mode)
TARNLAB_PATH(int, rmdir, (const char* path), noexcept, MOVED)
TARNLAB_PATH(int, chmod, (const char* path, mode_t mode), noexcept, MOVED, mode)
TARNLAB_PATH(int, truncate, (const char* path, off_t size), noexcept, MOVED, size)
TARNLAB_PATH(int, utimensat, (int folder, const char* path, const timespec* times, int flags),
             noexcept, folder, MOVED, times, flags)
TARNLAB_PATH(int, rename, (const char* path, const char* to), noexcept, MOVED, HostPath(to).get())
TARNLAB_PATH(int, renameat, (int folder, const char* path, int toFolder, const char* to), noexcept,
             folder, MOVED, toFolder, HostPath(to).get())
TARNLAB_PATH(int, renameat2,
             (int folder, const char* path, int toFolder, const char* to, unsigned flags), noexcept,
             folder, MOVED, toFolder, HostPath(to).get(), flags)
