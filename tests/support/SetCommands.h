#pragma once

/// getaddrsets and getcontainers, which are one but for their words, against a scripted kernel.

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "AddrSetDisplay.h"
#include "HandlerKernel.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace SetCommands {

using Body = HandlerKernel::Body;

inline constexpr char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
inline constexpr char kSharedFilter[] = "shared-addrset-filter-";

/// Numbers of the commands.
enum : unsigned int {
  kSize = 15,
  kInfo = 16,
  kAddresses = 17,
  kEntryStats = 19,
  kCount = 20,
  kList = 21,
  kTableStats = 22,
  kShared = 45,
  kElements = 56,
};

inline const char* statusText(unsigned int status) { return FW_StatusToString(status); }

inline Bytes ipv4(int last) { return Bytes(144).at(0, {1}).at(4, {10, 0, 0, last}); }

/// An element of a chain: the security identifier S-1-5-LAST.
inline Bytes sid(int last) {
  return Bytes(90)
      .at(0, {1, 0, 0, 0, 82})
      .at(8, {8, 0, 4, 0, 82})
      .at(22, {1, 1, 0, 0, 0, 0, 0, 5, last});
}

struct Set {
  std::string name;
  std::uint32_t type = kAddrSetType;
  std::vector<Bytes> members{};
};
using Table = std::vector<Set>;

inline Set container(const std::string& name, std::vector<Bytes> elements = {}) {
  return {name, kContainerType, std::move(elements)};
}

/// What the filter holds, and what the filters of its agent share.
class SetKernel : public HandlerKernel {
 public:
  SetKernel() {
    on(kShared, [this](Body& body) {
      EXPECT_STREQ(body.port.identifier, kFilter);
      body.at[0] = sharing ? 1 : 0;
      return 0;
    });
    on(kCount, [this](Body& body) {
      EXPECT_EQ(body.at[0], 0) << "of every type";
      body.put32(4, static_cast<std::uint32_t>(table(body).size()));
      return 0;
    });
    on(kList, [this](Body& body) {
      const Table& sets = table(body);
      EXPECT_EQ(body.at[0], 0) << "of every type";
      EXPECT_EQ(body.word(4), sets.size());
      EXPECT_EQ(body.word(8), 0u);
      body.put32(12, static_cast<std::uint32_t>(sets.size()));
      for (std::size_t i = 0; i < sets.size(); ++i) body.putText(16 + 38 * i, sets[i].name);
      return 0;
    });
    on(kTableStats, [this](Body& body) {
      const Table& sets = table(body);
      EXPECT_EQ(body.at[0], 0) << "of every type";
      EXPECT_EQ(body.word(4), sets.size());
      EXPECT_EQ(body.word(8), 0u);
      body.put32(12, static_cast<std::uint32_t>(sets.size()));
      for (std::size_t i = 0; i < sets.size(); ++i) {
        const std::size_t record = 16 + 130 * i;
        body.putText(record, sets[i].name);
        for (std::size_t counter = 0; counter < 11; ++counter)
          body.put64(record + 38 + 8 * counter, 100 * (i + 1) + counter);
        body.put32(record + 126, static_cast<std::uint32_t>(7 + i));
      }
      return 0;
    });
    on(kSize, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      if (set == nullptr) return 29;
      body.put32(38, static_cast<std::uint32_t>(set->members.size()));
      body.put32(42, set->type);
      body.put32(46, static_cast<std::uint32_t>(12 + 90 * set->members.size()));
      return 0;
    });
    on(kInfo, [this](Body& body) -> FWStatus_t {
      if (find(body) == nullptr) return 29;
      body.put32(38, 3);
      body.put64(42, 1000);
      body.put64(50, 42);
      return 0;
    });
    on(kAddresses, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      EXPECT_EQ(body.word(42), set->members.size());
      EXPECT_EQ(body.word(46), 0u);
      body.put32(50, static_cast<std::uint32_t>(set->members.size()));
      for (std::size_t i = 0; i < set->members.size(); ++i) body.put(70 + 144 * i, set->members[i]);
      return 0;
    });
    on(kEntryStats, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      EXPECT_EQ(body.word(42), set->members.size());
      EXPECT_EQ(body.word(46), 0u);
      clears.push_back(body.word(50));
      body.put32(54, static_cast<std::uint32_t>(set->members.size()));
      for (std::size_t i = 0; i < set->members.size(); ++i) {
        const std::size_t record = 58 + 80 * i;
        for (std::size_t counter = 0; counter < 8; ++counter)
          body.put64(record + 8 * counter, 10 * (i + 1) + counter);
        body.put32(record + 64, static_cast<std::uint32_t>(-1));
        body.put32(record + 68, 99);
        body.put64(record + 72, 1234567890123);
      }
      return 0;
    });
    on(kElements, [this](Body& body) -> FWStatus_t {
      const Set* const set = find(body);
      EXPECT_EQ(body.word(42), set->members.size());
      EXPECT_EQ(body.size, 70 + 12 + 90 * set->members.size());
      putChain(body, set->members);
      return 0;
    });
  }

  static void putChain(Body& body, const std::vector<Bytes>& elements) {
    body.put32(70, 2);
    body.put32(74, static_cast<std::uint32_t>(elements.size()));
    body.put32(78, static_cast<std::uint32_t>(90 * elements.size()));
    for (std::size_t i = 0; i < elements.size(); ++i) body.put(82 + 90 * i, elements[i]);
  }

  Table own;
  Table shared;
  bool sharing = false;
  std::vector<std::uint32_t> clears;  // flags of the entry statistics

 private:
  const Table& table(const Body& body) const {
    const std::string name = body.port.identifier;
    if (name == kSharedFilter) return shared;
    EXPECT_EQ(name, kFilter);
    return own;
  }
  const Set* find(const Body& body) const {
    for (const Set& set : table(body)) {
      if (set.name == body.text(0, 38)) return &set;
    }
    return nullptr;
  }
};

/// The two commands, which are one but for their words.
struct Command {
  const char* name;
  const char* set;
  const char* statsOf;
  const char* none;
  const char* noSet;
  std::uint32_t type;

  /// An empty set of the command's type, and what is shown of it.
  Set empty(const std::string& id) const { return {id, type}; }
  std::string shown(const std::string& id) const {
    return type == kAddrSetType ? "addrset " + id + " {\n}\n"
                                : "container " + id + " (type 2, num 0 size 12) {\n}\n";
  }
  /// A set with one member.
  Set filled(const std::string& id) const {
    return {id, type, {type == kAddrSetType ? ipv4(1) : sid(1)}};
  }
  std::uint32_t otherType() const { return 3 - type; }
};
inline const Command kSetCommands[] = {
    {"getaddrsets", "addrset", "address set", "No address sets.\n", "No address sets.\n", 1},
    {"getcontainers", "container", "container", "No containers.\n", "No containers sets.\n", 2},
};

inline std::ostream& operator<<(std::ostream& to, const Command& command) {
  return to << command.name;
}

class SetCommand : public testing::TestWithParam<Command> {
 protected:
  CommandResult run(std::vector<std::string> options = {}) const {
    std::vector<std::string> words{command.name, "-f", kFilter};
    words.insert(words.end(), options.begin(), options.end());
    return runCommand(words);
  }

  const Command& command = GetParam();
  const std::string word = command.set;
  SetKernel kernel;
};

/// What the table statistics of the set at `index` print.
inline std::string tableText(const std::string& name, int index) {
  const auto number = [index](int counter) {
    const std::string text = std::to_string(100 * (index + 1) + counter);
    return std::string(16 - text.size(), ' ') + text;
  };
  return name + ":\n" +  //
         "    in+pass   : " + number(1) + "  " + number(5) +
         "\n"  //
         "    out+pass  : " +
         number(3) + "  " + number(7) +
         "\n"  //
         "    in+block  : " +
         number(0) + "  " + number(4) +
         "\n"  //
         "    out+block : " +
         number(2) + "  " + number(6) +
         "\n"  //
         "    match     : " +
         number(8) +
         "\n"  //
         "    nomatch   : " +
         number(9) +
         "\n"  //
         "    uptime    : " +
         number(10) +
         "\n"  //
         "    anchor_ref: " +
         std::to_string(7 + index) + "\n\n";
}

inline constexpr char kHeader[] =
    "                            addr :    pkt[in][pass]    pkt[in][drop]   pkt[out][pass]   "
    "pkt[out][drop] tcp curr  tcp hwm\n"
    "                                    bytes[in][pass]  bytes[in][drop] bytes[out][pass] "
    "bytes[out][drop] uptime\n";

/// What the entry statistics of the first member print, under this text.
inline std::string entryText(const std::string& text) {
  return std::string(32 - text.size(), ' ') + text +
         " :               11               10               13               12       -1"
         "       99\n" +
         std::string(32, ' ') +
         "                 15               14               17               16 1234567890123\n";
}

inline constexpr char kSid1[] = "WIN_SID : S-1-5-1";

inline std::string memberText(const Command& command) {
  return command.type == kAddrSetType ? "ip 10.0.0.1" : kSid1;
}

/// Lines about generation and time, which a container has after its open line.
inline std::string infoText(const Command& command) {
  return command.type == kAddrSetType ? "" : "# generation number: 42\n# realization time : TIME\n";
}

inline CommandResult masked(const Command& command, CommandResult result) {
  if (command.type == kContainerType) result.out = maskTime(result.out, 1000);
  return result;
}

/// The name of a row, for its test.
inline std::string nameOf(const testing::TestParamInfo<Command>& test) { return test.param.name; }

}  // namespace SetCommands
