// The folder that holds the state of one lab.
#ifndef TARNLAB_STORE_H
#define TARNLAB_STORE_H

#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "LabBytes.h"

namespace TarnLab {

/// The folder cannot be used: what was tried, and errno.
class StoreError : public std::runtime_error {
 public:
  StoreError(const std::string& what, int error);
  int error() const { return error_; }

 private:
  int error_;
};

/// A descriptor that is closed at the end of its scope.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();
  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }

 private:
  int fd_;
};

/// The folder of one lab, shared by every program of that lab.
///
/// A file is only ever replaced whole: the new content goes into the file "next", which is then
/// renamed. Only the holder of the lock writes, so that one name is enough and a writer that was
/// killed leaves nothing but a "next" that the following writer empties.
class Store {
 public:
  explicit Store(std::string folder) : folder_(std::move(folder)) {}

  /// The folder that TARNLAB_HOME names, or ".tarnlab" in the current folder.
  static std::string defaultFolder();

  const std::string& folder() const { return folder_; }
  std::string path(std::string_view relative) const;

  /// Whether a host was made here.
  bool exists() const;

  /// Whether there is such a file or folder.
  bool exists(std::string_view relative) const;

  /// Makes the folder itself, where it is missing.
  void create() const;

  /// The whole file, or nothing when there is none. Throws StoreError on any other failure, and for
  /// a file larger than `limit`, which is none that the lab has written.
  std::optional<ByteVector> read(std::string_view relative, std::uint64_t limit) const;

  /// Opens a file for reading; an invalid descriptor when there is none. Throws StoreError for what
  /// is no plain file.
  Descriptor open(std::string_view relative) const;

  /// Puts the parts, one after the other, in place of the file. The folder of the file is made
  /// when it is missing. Hold the lock. On StoreError the old file is as it was.
  void replace(std::string_view relative, std::initializer_list<ConstBytes> parts) const;

  /// Removes a file; true when there was one. Hold the lock.
  bool remove(std::string_view relative) const;

  /// Removes a folder and what is in it, so that other programs see all of it or nothing. Hold the
  /// lock.
  void removeTree(std::string_view relative) const;

  /// Names in a folder, sorted by byte; empty when there is no such folder. Throws StoreError when
  /// there is one that cannot be read.
  std::vector<std::string> list(std::string_view relative) const;

 private:
  std::string folder_;
};

/// Holds the lab's lock. Threads of one program exclude each other too, as each opens the file.
class StoreLock {
 public:
  /// Waits for the lock. Throws StoreError when the folder is missing.
  explicit StoreLock(const Store& store);

  /// Gives the lock back, also when a child that was forked meanwhile has the file open still.
  ~StoreLock();
  StoreLock(const StoreLock&) = delete;
  StoreLock& operator=(const StoreLock&) = delete;

 private:
  Descriptor file_;
};

/// Reads all `size` bytes at `offset` of a file; false when they are not there.
bool readAt(int fd, Bytes into, std::uint64_t offset);

}  // namespace TarnLab

#endif
