#include "LabStore.h"

#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace TarnLab {

namespace {

/// Opens, again after an interruption; never left open across exec. A pipe that somebody put in
/// place of a file is no reason to wait.
int openFile(const std::string& path, int flags, mode_t mode = 0) {
  int fd;
  do {
    fd = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, mode);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

void makeFolders(const std::string& path) {
  for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
    ::mkdir(path.substr(0, at).c_str(), 0755);
  }
}

void writeAll(int fd, ConstBytes bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      throw StoreError("cannot write " + path, errno);
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
}

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
  ::remove(path);
  return 0;
}

}  // namespace

StoreError::StoreError(const std::string& what, int error)
    : std::runtime_error(what + ": " + std::strerror(error)), error_(error) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = other.fd_;
    other.fd_ = -1;
  }
  return *this;
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) ::close(fd_);
}

std::string Store::defaultFolder() {
  const char* home = std::getenv("TARNLAB_HOME");
  return home != nullptr && *home != '\0' ? home : ".tarnlab";
}

std::string Store::path(std::string_view relative) const {
  return folder_ + "/" + std::string(relative);
}

bool Store::exists() const { return exists("host"); }

bool Store::exists(std::string_view relative) const {
  return ::access(path(relative).c_str(), F_OK) == 0;
}

void Store::create() const {
  makeFolders(folder_);
  if (::mkdir(folder_.c_str(), 0755) != 0 && errno != EEXIST) {
    throw StoreError("cannot make folder " + folder_, errno);
  }
}

Descriptor Store::open(std::string_view relative) const {
  const std::string name = path(relative);
  Descriptor file(openFile(name, O_RDONLY));
  if (!file.valid() && errno != ENOENT && errno != ENOTDIR) {
    throw StoreError("cannot read " + name, errno);
  }
  struct stat status;
  if (file.valid() && (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) {
    throw StoreError("damaged file " + name, EINVAL);
  }
  return file;
}

std::optional<ByteVector> Store::read(std::string_view relative, std::uint64_t limit) const {
  const Descriptor file = open(relative);
  if (!file.valid()) return std::nullopt;
  struct stat status;
  if (::fstat(file.get(), &status) != 0) throw StoreError("cannot read " + path(relative), errno);
  if (static_cast<std::uint64_t>(status.st_size) > limit) {
    throw StoreError("damaged file " + path(relative), EINVAL);
  }
  ByteVector content(static_cast<std::size_t>(status.st_size));
  if (!readAt(file.get(), content, 0)) throw StoreError("cannot read " + path(relative), EIO);
  return content;
}

void Store::replace(std::string_view relative, std::initializer_list<ConstBytes> parts) const {
  const std::string target = path(relative);
  const std::string next = path("next");
  const Descriptor file(openFile(next, O_WRONLY | O_CREAT | O_TRUNC, 0644));
  if (!file.valid()) throw StoreError("cannot write " + next, errno);
  for (const ConstBytes bytes : parts) writeAll(file.get(), bytes, next);
  if (::rename(next.c_str(), target.c_str()) == 0) return;
  if (errno == ENOENT) makeFolders(target);
  if (::rename(next.c_str(), target.c_str()) != 0) {
    throw StoreError("cannot replace " + target, errno);
  }
}

bool Store::remove(std::string_view relative) const {
  if (::unlink(path(relative).c_str()) == 0) return true;
  if (errno == ENOENT || errno == ENOTDIR) return false;
  throw StoreError("cannot remove " + path(relative), errno);
}

void Store::removeTree(std::string_view relative) const {
  const std::string trash = path("trash");
  ::nftw(trash.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
  if (::rename(path(relative).c_str(), trash.c_str()) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return;
    throw StoreError("cannot remove " + path(relative), errno);
  }
  ::nftw(trash.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

std::vector<std::string> Store::list(std::string_view relative) const {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path(relative).c_str()), ::closedir);
  if (!folder) {
    if (errno == ENOENT || errno == ENOTDIR) return names;
    throw StoreError("cannot read " + path(relative), errno);
  }
  while (const dirent* entry = ::readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

StoreLock::StoreLock(const Store& store)
    : file_(openFile(store.path("lock"), O_RDWR | O_CREAT, 0644)) {
  if (!file_.valid()) throw StoreError("cannot lock " + store.folder(), errno);
  while (::flock(file_.get(), LOCK_EX) != 0) {
    if (errno != EINTR) throw StoreError("cannot lock " + store.folder(), errno);
  }
}

StoreLock::~StoreLock() { ::flock(file_.get(), LOCK_UN); }

bool readAt(int fd, Bytes into, std::uint64_t offset) {
  while (!into.empty()) {
    const ssize_t got = ::pread(fd, into.data(), into.size(), static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    into = into.subspan(static_cast<std::size_t>(got));
    offset += static_cast<std::uint64_t>(got);
  }
  return true;
}

}  // namespace TarnLab
