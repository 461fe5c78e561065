// A file of the lab's folder, mapped for reading.
#ifndef TARNLAB_MAPPED_FILE_H
#define TARNLAB_MAPPED_FILE_H

#include <optional>

#include "LabStore.h"

namespace TarnLab {

/// Nothing but what is looked at is read from the disk. A file that is replaced meanwhile stays as
/// it was.
class MappedFile {
 public:
  /// Nothing when there is no such file. Throws StoreError when it cannot be read.
  static std::optional<MappedFile> open(const Store& store, const std::string& file);

  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&& other) noexcept;
  ~MappedFile();

  ConstBytes bytes() const { return {map_, size_}; }

 private:
  MappedFile(const std::byte* map, std::size_t size) : map_(map), size_(size) {}

  const std::byte* map_;
  std::size_t size_;
};

}  // namespace TarnLab

#endif
