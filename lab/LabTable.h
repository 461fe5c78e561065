// What a filter has learnt or was given, one record after the other.
#ifndef TARNLAB_TABLE_H
#define TARNLAB_TABLE_H

#include <string>

#include "LabStore.h"

namespace TarnLab {

/// The folder of the tables that are the host's and not a filter's.
inline constexpr const char* hostTableFolder = "tables";

/// A table of records, each of its own size, as its family declares it: one file in the filter's
/// folder, in which every record follows its size. An empty table has no file.
struct Table {
  using Records = std::vector<ByteVector>;

  std::string_view name;  // of the file, and of the table for "tarnlab show"
  std::size_t least = 0;  // bytes that a record has at least
  std::string (*text)(ConstBytes record) = nullptr;  // lines without an end, parted by line ends

  /// Throws StoreError for a file that is none of the table.
  Records load(const Store& store, const std::string& folder) const;

  /// Hold the lock.
  void save(const Store& store, const std::string& folder, const Records& records) const;

  static constexpr std::uint64_t fileLimit = std::uint64_t{256} << 20;
};

/// All bytes of the records.
std::size_t bytesOf(const Table::Records& records);

}  // namespace TarnLab

#endif
