// A path that a program names, and where it is in the lab.
#ifndef TARNLAB_PRELOAD_PATH_H
#define TARNLAB_PRELOAD_PATH_H

#include <climits>

namespace TarnLab {

/// The path itself, or for one of the host's files the path in the lab's folder. Takes no memory,
/// as it may be made in a child of vfork. One that is too long in the lab's folder is too long for
/// the kernel.
class HostPath {
 public:
  explicit HostPath(const char* path) noexcept;
  HostPath(const HostPath&) = delete;
  HostPath& operator=(const HostPath&) = delete;

  const char* get() const { return path_; }
  bool isMoved() const { return path_ == own_; }

 private:
  const char* path_;
  char own_[PATH_MAX + 1];
};

}  // namespace TarnLab

#endif
