#include "LabHostFiles.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "LabDevice.h"

namespace TarnLab::HostFiles {

namespace {

constexpr const char* moved[] = {"/var/run/kelpco", "/etc/kelpco"};
constexpr const char* folders[] = {"/var", "/var/run",    "/var/run/kelpco",
                                   "/etc", "/etc/kelpco", "/etc/kelpco/hulld"};

/// Whether one of the path's parts is "..".
bool goesUp(const char* path) {
  for (const char* at = std::strstr(path, "/.."); at != nullptr; at = std::strstr(at + 1, "/..")) {
    if (at[3] == '\0' || at[3] == '/') return true;
  }
  return false;
}

}  // namespace

bool isMoved(const char* path) {
  for (const char* folder : moved) {
    const std::size_t length = std::strlen(folder);
    if (std::strncmp(path, folder, length) != 0) continue;
    if (path[length] == '\0' || path[length] == '/') return !goesUp(path + length);
  }
  return false;
}

std::string fileOf(std::string_view path) { return root + std::string(path); }

void make(const Store& store) {
  ::mkdir(store.path(root).c_str(), 0755);
  for (const char* folder : folders) {
    const std::string path = store.path(fileOf(folder));
    if (::mkdir(path.c_str(), 0755) != 0 && errno != EEXIST) {
      throw StoreError("cannot make folder " + path, errno);
    }
  }
  // Nobody listens on these: whoever connects is answered by the model.
  for (const DeviceNode& peer : peerNodes) {
    const std::string path = store.path(fileOf(peer.path));
    if (::mknod(path.c_str(), S_IFSOCK | 0666, 0) != 0 && errno != EEXIST) {
      throw StoreError("cannot make socket " + path, errno);
    }
  }
}

int save(const Store& store, std::string_view path, std::string_view content) {
  const std::string whole = (path.starts_with('/') ? "" : "/") + std::string(path);
  if (goesUp(whole.c_str())) return EPERM;
  struct stat status;
  if (::lstat(store.path(fileOf(whole)).c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    return S_ISDIR(status.st_mode) ? EISDIR : EPERM;
  }
  try {
    store.replace(fileOf(whole), {std::as_bytes(std::span<const char>(content))});
  } catch (const StoreError& failure) {
    return failure.error();
  }
  return 0;
}

}  // namespace TarnLab::HostFiles
