#include "Journal.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "State.h"
#include "TarnFWText.h"

namespace {

[[noreturn]] void fail(const std::string& what) {
  throw StateError(what + ": " + std::strerror(errno));
}

/// The filter's name as a part of a file name; no two filters have the same.
std::string fileName(const std::string& filter) {
  std::string name;
  for (const char c : filter) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '-' || c == '_' || (c == '.' && !name.empty());
    name += plain ? std::string(1, c)
                  : TarnFirewall::formatText("%%%02x", static_cast<unsigned char>(c));
  }
  return name;
}

/// What stands between the filter's name and the end of the file's: `mkostemps` puts six letters
/// and digits there.
constexpr char kUnique[] = ".XXXXXX";
constexpr char kEnding[] = ".conf";
/// Of one that is being written, and as long. Who is killed then leaves no state that is cut short
/// under the name of a whole one.
constexpr char kPartEnding[] = ".part";
static_assert(sizeof kPartEnding == sizeof kEnding);

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
  std::string path = journalFolder() + "/" + fileName(filter) + kUnique + kEnding;
  std::string part = path;
  const std::size_t end = path.size() - (sizeof kEnding - 1);
  part.replace(end, std::string::npos, kPartEnding);
  const int descriptor = mkostemps(part.data(), sizeof kPartEnding - 1, O_CLOEXEC);
  if (descriptor < 0) fail("can't make a file for the earlier state, " + path);
  path.replace(0, end, part, 0, end);
  const bool written = writeAll(descriptor, text);
  const int reason = errno;
  if (close(descriptor) != 0 || !written || rename(part.c_str(), path.c_str()) != 0) {
    unlink(part.c_str());
    if (!written) errno = reason;
    fail("can't write the earlier state to " + path);
  }
  path_ = std::move(path);
}

void JournalFile::remove() {
  if (!path_.empty()) unlink(path_.c_str());
  path_.clear();
}

std::vector<std::string> removeLeftFiles(const std::string& filter) {
  const std::string folder = folderName();
  const std::string before = fileName(filter) + ".";
  const std::size_t length = before.size() + sizeof kUnique - 2 + sizeof kEnding - 1;
  std::vector<std::string> removed;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
  if (!entries) return removed;
  while (const dirent* const entry = readdir(entries.get())) {
    const std::string name = entry->d_name;
    if (name.size() != length || !name.starts_with(before)) continue;
    if (!name.ends_with(kEnding) && !name.ends_with(kPartEnding)) continue;
    const std::string path = folder + "/" + name;
    if (unlink(path.c_str()) == 0) removed.push_back(path);
  }
  std::sort(removed.begin(), removed.end());
  return removed;
}

JournalLock::JournalLock(const std::string& filter)
    : path_(journalFolder() + "/" + fileName(filter) + ".lock") {
  while (!take()) {
  }
}

bool JournalLock::take() {
  descriptor_ = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor_ < 0) fail("can't open " + path_);
  if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0) {
    // Who had it before may have removed the file since it was opened here: a lock of a file
    // without a name keeps nobody out.
    if (hasName()) return true;
    close(descriptor_);
    return false;
  }
  const int reason = errno;
  close(descriptor_);
  if (reason == EWOULDBLOCK) throw StateError("another tarnpolicy apply works on it");
  errno = reason;
  fail("can't lock " + path_);
}

bool JournalLock::hasName() const {
  struct stat held {
  }, named{};
  return fstat(descriptor_, &held) == 0 && lstat(path_.c_str(), &named) == 0 &&
         named.st_ino == held.st_ino && named.st_dev == held.st_dev;
}

JournalLock::~JournalLock() {
  // While it is locked: no other call takes the name then. Where somebody has tidied the file away,
  // the name may stand for the lock of a call that began since.
  if (hasName()) unlink(path_.c_str());
  close(descriptor_);
}
