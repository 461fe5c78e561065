// A rule set, an address set or a container as the lab keeps it: one file each.
#ifndef TARNLAB_SET_FILE_H
#define TARNLAB_SET_FILE_H

#include <optional>
#include <string>

#include "LabMappedFile.h"

namespace TarnLab {

/// What is known of a set beside its entries.
struct SetHead {
  static constexpr std::size_t size = 192;
  static constexpr unsigned ruleSet = 1, addrSet = 2;

  std::uint32_t what = ruleSet;
  std::uint32_t counts[3] = {0, 0, 0};  // rules of each kind; for an address set, its entries
  std::uint32_t type = 0;               // 1 for an address set, a container's own type
  std::uint32_t addressType = 0;        // 1 IP, 2 Ethernet, 4 attributes
  std::uint32_t statistics = 0;         // 0 never set, 1 on, 2 off
  std::uint32_t cleared = 0;            // the entries' counters were set back
  std::uint64_t entryBytes = 0;
  std::uint64_t realized = 0;    // seconds since boot
  std::uint64_t generation = 0;  // how often the set was changed
  std::string jump;              // of a rule set

  std::uint32_t total() const { return counts[0] + counts[1] + counts[2]; }

  /// Another change: the next generation, realized now.
  void touch();

  ByteVector encode() const;
  static SetHead decode(ConstBytes head);
};

/// A set opened for reading. Nothing but what is asked for is read from the disk.
class SetFile {
 public:
  /// Nothing when there is no such set. Throws StoreError for a damaged file.
  static std::optional<SetFile> open(const Store& store, const std::string& file);

  const SetHead& head() const { return head_; }

  /// Rules or addresses one after the other, or a container's chain.
  ConstBytes entries() const;

  /// One byte for each entry of an address set.
  ConstBytes marks() const;

  /// Replaces the set. Hold the lock. The marks of an address set are all zero when left out.
  static void save(const Store& store, const std::string& file, const SetHead& head,
                   ConstBytes entries, ConstBytes marks = {});

 private:
  SetFile(SetHead head, MappedFile file) : head_(std::move(head)), file_(std::move(file)) {}

  SetHead head_;
  MappedFile file_;
};

/// Seconds since the machine was started, as realization times count.
std::uint64_t bootSeconds();

}  // namespace TarnLab

#endif
