#include "Journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "State.h"

namespace {

[[noreturn]] void fail(const std::string& what) {
  throw StateError(what + ": " + std::strerror(errno));
}

/// The filter's name as a part of a file name.
std::string fileName(const std::string& filter) {
  std::string name;
  for (const char c : filter) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '-' || c == '_' || (c == '.' && !name.empty());
    name += plain ? c : '_';
  }
  return name;
}

std::string folderName() {
  if (const char* const given = std::getenv("TARNPOLICY_RUNTIME");
      given != nullptr && given[0] != '\0') {
    return given;
  }
  if (geteuid() == 0) return "/run/tarnpolicy";
  return "/tmp/tarnpolicy-" + std::to_string(geteuid());
}

bool writeAll(int descriptor, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t written = ::write(descriptor, text.data() + done, text.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    done += static_cast<std::size_t>(written);
  }
  return fsync(descriptor) == 0 || errno == EINVAL;
}

}  // namespace

std::string journalFolder() {
  const std::string folder = folderName();
  if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) fail("can't make " + folder);
  struct stat facts {};
  if (lstat(folder.c_str(), &facts) != 0) fail("can't read " + folder);
  if (!S_ISDIR(facts.st_mode) || facts.st_uid != geteuid() || (facts.st_mode & 077) != 0) {
    throw StateError(folder + " is not a folder of this user's alone (mode 0700)");
  }
  return folder;
}

void JournalFile::write(const std::string& filter, const std::string& text) {
  std::string path = journalFolder() + "/" + fileName(filter) + ".XXXXXX.conf";
  const int descriptor = mkostemps(path.data(), 5, O_CLOEXEC);
  if (descriptor < 0) fail("can't make a file for the earlier state, " + path);
  const bool written = writeAll(descriptor, text);
  const int reason = errno;
  if (close(descriptor) != 0 || !written) {
    unlink(path.c_str());
    if (!written) errno = reason;
    fail("can't write the earlier state to " + path);
  }
  path_ = path;
}

void JournalFile::remove() {
  if (!path_.empty()) unlink(path_.c_str());
  path_.clear();
}

JournalLock::JournalLock(const std::string& filter) {
  const std::string path = journalFolder() + "/" + fileName(filter) + ".lock";
  descriptor_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor_ < 0) fail("can't open " + path);
  if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return;
  const bool taken = errno == EWOULDBLOCK;
  const int reason = errno;
  close(descriptor_);
  if (taken) throw StateError("another tarnpolicy apply works on it");
  errno = reason;
  fail("can't lock " + path);
}

JournalLock::~JournalLock() { close(descriptor_); }
