// The entries of include and exclude tables: which virtual NICs an agent has filters on.
#ifndef TARNLAB_TABLE_ENTRY_H
#define TARNLAB_TABLE_ENTRY_H

#include <optional>
#include <string>

#include "LabHost.h"

namespace TarnLab {

/// One entry, which stands in a table: a byte of type, two of the value's length, and the value.
struct TableEntry {
  enum Type : unsigned {
    excludedSwitch,
    excludedNic,
    includedPort,
    includedDvs,
    includedNic,
    includedSwitch,
    includedHost
  };
  static constexpr std::size_t headSize = 3;

  unsigned type = 0;
  ConstBytes value;
  ConstBytes bytes;  // the head and the value

  /// Whether both are about the same NICs; the slot is not looked at.
  bool isAbout(const TableEntry& other) const;

  bool covers(const Nic& nic) const;

  /// The slot of a filter that is made for this entry: its own, or 2 for one that has none.
  std::uint32_t slot() const;

  /// Such as "vnic 502e1f3a-c21a-632a-4ae1-00505699b626.000, slot 2".
  std::string text() const;
};

/// The entries up to the first one that is cut off. They live as long as the table.
std::vector<TableEntry> entriesOf(ConstBytes table);

/// What is wrong with the entries; empty when nothing is.
std::string entriesFault(ConstBytes table, bool include);

/// A line for each entry, and one for what is cut off.
std::vector<std::string> entryLines(ConstBytes table);

/// The identifier of 16 bytes with four dashes; and of a NIC, with its index after it.
std::string idText(ConstBytes id);
std::string vnicText(ConstBytes machine, std::uint32_t index);

/// The 16 bytes of an identifier in the form "50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26".
ByteVector idOf(std::string_view text);

/// Writes a table entry by entry.
class TableMaker {
 public:
  TableMaker& excludedSwitch(std::string_view name);
  TableMaker& excludedNic(const Nic& nic);
  TableMaker& port(std::string_view switchId, std::uint32_t number);
  TableMaker& dvs(std::string_view switchId);
  TableMaker& nic(const Nic& nic, std::uint32_t slot);
  TableMaker& includedSwitch(std::string_view name);
  TableMaker& host(std::uint32_t slot);
  ByteVector bytes() const { return table_; }

 private:
  Bytes append(unsigned type, std::size_t length);
  Bytes appendId(unsigned type, std::string_view id);
  TableMaker& appendText(unsigned type, std::string_view text);
  ByteVector table_;
};

}  // namespace TarnLab

#endif
