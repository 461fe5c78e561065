#pragma once

/// What `apply` keeps on the host while it changes filters, in a folder that no other user can read
/// or write: the earlier state of each filter as configuration text, a lock for each filter, and
/// the sockets that `confirm` talks to.

#include <string>
#include <vector>

/// The folder, made where it is not there: the one that the environment variable
/// TARNPOLICY_RUNTIME names, else /run/tarnpolicy for the superuser and /tmp/tarnpolicy-UID for any
/// other user. It does not depend on the session, which may end before the work does. Throws
/// `StateError` for one that is another user's or open to others.
std::string journalFolder();

/// The file with the earlier state of a filter. It stays after a crash, and is removed by `remove`
/// only.
class JournalFile {
 public:
  JournalFile() = default;

  /// Writes the text, whole and on the disk: until then it has another name. Throws `StateError`.
  void write(const std::string& filter, const std::string& text);
  void remove();

  /// Empty before `write` and after `remove`.
  const std::string& path() const { return path_; }

  /// The path, of a file that stays.
  std::string takePath() { return std::move(path_); }

 private:
  std::string path_;
};

/// Removes the files with earlier states of a filter that calls before this one left, and gives
/// their paths, sorted. Hold the filter's lock. A folder that can't be read has none.
std::vector<std::string> removeLeftFiles(const std::string& filter);

/// Keeps other calls of `apply` from a filter while it lives. Throws `StateError` when one of them
/// has it. Its file goes with it.
class JournalLock {
 public:
  explicit JournalLock(const std::string& filter);
  ~JournalLock();
  JournalLock(const JournalLock&) = delete;
  JournalLock& operator=(const JournalLock&) = delete;

 private:
  /// False when the file is not the one of that name any more.
  bool take();
  bool hasName() const;

  std::string path_;
  int descriptor_ = -1;
};
