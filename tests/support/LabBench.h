// A lab in a folder of its own, and requests to its model written byte by byte.
#ifndef TARNLAB_BENCH_H
#define TARNLAB_BENCH_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "LabHost.h"
#include "LabJournal.h"
#include "LabModel.h"

namespace TarnLab {

/// Bytes put down one field after the other, in the host's order.
class Record {
 public:
  Record& u8(unsigned value) { return integer(value, 1); }
  Record& u16(unsigned value) { return integer(value, 2); }
  Record& u32(std::uint64_t value) { return integer(value, 4); }
  Record& u64(std::uint64_t value) { return integer(value, 8); }
  Record& zero(std::size_t size) {
    bytes_.resize(bytes_.size() + size);
    return *this;
  }
  Record& text(const std::string& value, std::size_t size);
  Record& bytes(const ByteVector& value);

  /// Zeros up to an offset from the start.
  Record& to(std::size_t offset) {
    bytes_.resize(offset);
    return *this;
  }
  /// Overwrites the byte at an offset.
  Record& set(std::size_t offset, unsigned value) {
    bytes_.at(offset) = static_cast<std::byte>(value);
    return *this;
  }
  operator const ByteVector&() const { return bytes_; }
  operator ConstBytes() const { return bytes_; }

 private:
  Record& integer(std::uint64_t value, std::size_t size);
  ByteVector bytes_;
};

/// The selector of a filter by name and agent.
ByteVector filterSelector(const std::string& name, const std::string& agent = "kelpco-sfw");

/// A record of an address, and of a rule in the making.
ByteVector ipv4(const std::string& address, bool negated = false);
ByteVector ipv4Block(const std::string& address, unsigned prefix);
ByteVector ruleRecord(unsigned id, unsigned actionCode = 1);

class LabBench : public ::testing::Test {
 protected:
  LabBench();
  ~LabBench() override;

  static constexpr const char* web = "nic-1002672-eth0-kelpco-sfw.2";
  static constexpr const char* other = "nic-1002731-eth0-kelpco-sfw.2";

  /// A request with a frame, as the firewall device gets it. Returns 0 or an errno.
  int direct(std::uint32_t number, ByteVector& body);

  /// A message as it stands. Returns 0 or an errno; the message is as it was answered.
  int send(ByteVector& message, const ByteVector& selector);

  /// A message of one command for the filter `web`: its status, with the reply in `reply`.
  std::uint32_t command(unsigned number, const ByteVector& body) {
    return command(number, body, filterSelector(web));
  }
  std::uint32_t command(unsigned number, const ByteVector& body, const ByteVector& selector);

  /// A message of one command, header included.
  static ByteVector message(unsigned number, const ByteVector& body);

  /// Creates a rule set, or an address set, and returns the status.
  std::uint32_t createRuleSet(const std::string& name, const std::vector<ByteVector>& rules);
  std::uint32_t createAddrSet(const std::string& name, const std::vector<ByteVector>& addresses);

  std::vector<JournalEntry> journal() const;

  /// The note of the last entry of the log.
  std::string note() const;

  std::string folder;
  Store store;
  Model model;
  ByteVector reply;
};

/// A bench whose filters hold what those of a new lab hold.
class FilledLabBench : public LabBench {
 protected:
  FilledLabBench();

  /// The record of a user, S-1-5-21-1004336348-1177238915-LAST.
  static ByteVector usualSid(unsigned last);
};

}  // namespace TarnLab

#endif
