// The lab's log: what every program asked of the devices and peers, what it was answered, and what
// it wrote to the system log.
#ifndef TARNLAB_JOURNAL_H
#define TARNLAB_JOURNAL_H

#include <functional>
#include <string>

#include "LabDevice.h"
#include "LabStore.h"

namespace TarnLab {

/// One request. Of a big one only the first megabyte is kept; trailing zeros are never kept.
struct JournalEntry {
  std::uint64_t time = 0;  // nanoseconds since 1970
  std::uint32_t process = 0;
  std::uint32_t thread = 0;
  std::string program;
  Device device = Device::none;
  std::uint32_t request = 0;
  int error = 0;             // the errno of a request that failed
  std::uint32_t status = 0;  // of a direct request, in its frame
  int result = 0;            // what ioctl returned without an errno; bytes of a peer's answer
  std::string note;          // why it was refused, or what else is worth a line; of a message for
                             // the system log, whose it is
  ByteVector selector;
  std::uint64_t size = 0;  // of the message or body, as it was sent
  ByteVector sent;
  ByteVector answered;

  static constexpr std::size_t keptLimit = std::size_t{1} << 20;

  /// Fills in the time and the program that asks.
  void stamp();

  /// What is kept of the bytes.
  static ByteVector kept(ConstBytes bytes);
};

/// The files "log" and, when that has grown past its limit, the one before it, "log.old".
class Journal {
 public:
  explicit Journal(const Store& store) : store_(store) {}

  /// Adds an entry whole or, on StoreError, not at all. Hold the lock. One that a killed program
  /// left half is skipped in reading.
  void append(const JournalEntry& entry) const;

  /// Hands over every entry, oldest first, until the reader returns false.
  void read(const std::function<bool(const JournalEntry&)>& reader) const;

  /// Forgets all entries. Hold the lock.
  void clear() const;

  static constexpr std::uint64_t fileLimit = std::uint64_t{512} << 20;

 private:
  const Store& store_;
};

}  // namespace TarnLab

#endif
