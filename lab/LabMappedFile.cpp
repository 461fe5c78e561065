#include "LabMappedFile.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

namespace TarnLab {

std::optional<MappedFile> MappedFile::open(const Store& store, const std::string& file) {
  const Descriptor opened = store.open(file);
  if (!opened.valid()) return std::nullopt;
  struct stat status;
  if (::fstat(opened.get(), &status) != 0) {
    throw StoreError("cannot read " + store.path(file), errno);
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size == 0) return MappedFile(nullptr, 0);
  void* map = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, opened.get(), 0);
  if (map == MAP_FAILED) throw StoreError("cannot read " + store.path(file), errno);
  return MappedFile(static_cast<const std::byte*>(map), size);
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : map_(std::exchange(other.map_, nullptr)), size_(std::exchange(other.size_, 0)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
  std::swap(map_, other.map_);
  std::swap(size_, other.size_);
  return *this;
}

MappedFile::~MappedFile() {
  if (map_ != nullptr) ::munmap(const_cast<std::byte*>(map_), size_);
}

}  // namespace TarnLab
