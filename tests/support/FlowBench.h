// A lab with flows: its flows by request 22, its connections by commands 23 and 24.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "LabBench.h"

namespace TarnLab {

inline constexpr const char* noInactive = "nic-1003044-eth0-kelpco-sfw.2";
inline constexpr const char* noLayer2 = "nic-1003044-eth1-kelpco-sfw.2";
inline constexpr const char* noTraffic = "nic-1003120-eth0-kelpco-sfw.2";
inline constexpr const char* noFlows = "nic-998214-eth0-kelpco-spoof.guard.1";

inline std::uint64_t net64(ConstBytes bytes, std::size_t at) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < 8; ++i) value = value << 8 | get8(bytes, at + i);
  return value;
}

inline std::uint64_t idOf(ConstBytes flow) { return net64(flow, 3); }
inline unsigned kindOf(ConstBytes flow) { return get8(flow, 87); }
inline unsigned protocolOf(ConstBytes flow) { return get8(flow, 89); }
inline unsigned familyOf(ConstBytes flow) { return get8(flow, 90); }

/// Bytes by their hexadecimal digits; blanks are for the reader.
inline ByteVector hex(const std::string& digits) {
  ByteVector bytes;
  std::string pair;
  for (const char c : digits) {
    if (c == ' ') continue;
    pair += c;
    if (pair.size() < 2) continue;
    bytes.push_back(static_cast<std::byte>(std::stoul(pair, nullptr, 16)));
    pair.clear();
  }
  return bytes;
}

/// What a reply of request 22 says of one group of flows.
struct Amounts {
  std::uint32_t records, attributes, attributeBytes, bytes;
};

struct Fetch {
  unsigned flush = 0, resetRtt = 0, withAttributes = 1;
};

class FlowBench : public FilledLabBench {
 protected:
  static ByteVector query(unsigned operation, const std::string& filter, const Fetch& fetch,
                          const std::string& agent = "kelpco-sfw") {
    return Record()
        .text(agent, 100)
        .text(filter, 64)
        .to(199)
        .u8(7)
        .u8(operation)
        .u8(fetch.flush)
        .u8(fetch.resetRtt)
        .u8(fetch.withAttributes)
        .to(264);
  }

  static Amounts amounts(ConstBytes body, std::size_t group) {
    const std::size_t at = 216 + 16 * group;
    return {get32(body, at), get32(body, at + 4), get32(body, at + 8), get32(body, at + 12)};
  }

  /// Asks for the counts of a filter.
  ByteVector counts(const std::string& filter = web, const std::string& agent = "kelpco-sfw") {
    ByteVector body = query(1, filter, {}, agent);
    EXPECT_EQ(direct(22, body), 0) << note();
    return body;
  }

  /// Reads flows as the counts in a body say, or those of one group. The buffer is as it came.
  int read(const ByteVector& counted, const Fetch& fetch, const std::string& filter = web,
           int onlyGroup = -1) {
    query_ = query(2, filter, fetch);
    std::size_t room = 32;
    for (std::size_t group = 0; group < 3; ++group) {
      if (onlyGroup >= 0 && group != static_cast<std::size_t>(onlyGroup)) continue;
      const std::size_t at = 216 + 16 * group;
      std::copy_n(counted.begin() + static_cast<std::ptrdiff_t>(at), 16,
                  query_.begin() + static_cast<std::ptrdiff_t>(at));
      room += get32(counted, at + 12);
    }
    buffer.assign(room, std::byte{0xee});
    put32(query_, 204, static_cast<std::uint32_t>(room));
    put64(query_, 208, reinterpret_cast<std::uintptr_t>(buffer.data()));
    return direct(22, query_);
  }

  /// The records of the buffer, each with its attributes.
  std::vector<ByteVector> records() const {
    std::vector<ByteVector> all;
    ConstBytes rest = ConstBytes(buffer).subspan(32);
    std::size_t left = 0;
    for (std::size_t group = 0; group < 3; ++group) left += amounts(query_, group).records;
    for (; left > 0; --left) {
      const std::size_t length = get16(rest, 0);
      const ConstBytes record = part(rest, 0, length);
      all.emplace_back(record.begin(), record.end());
      rest = rest.subspan(length);
    }
    return all;
  }

  /// All flows of a filter, without a change to them.
  std::vector<ByteVector> allFlows(const std::string& filter = web) {
    EXPECT_EQ(read(counts(filter), {}, filter), 0) << note();
    return records();
  }

  static ByteVector pageBody(std::uint64_t cursor, std::uint32_t max) {
    Record body;
    body.u32(1);
    for (int shift = 56; shift >= 0; shift -= 8) body.u8(cursor >> shift & 0xff);
    return body.u32(max).zero(12).u32(32 + 251 * max).zero(std::size_t{251} * max);
  }

  /// A page of connections; what the reply has of them.
  std::vector<ByteVector> page(std::uint64_t cursor, std::uint32_t max,
                               const std::string& filter = web) {
    EXPECT_EQ(command(24, pageBody(cursor, max), filterSelector(filter)), 0u) << note();
    std::vector<ByteVector> all;
    for (std::size_t i = 0; i < get32(reply, 16); ++i) {
      const ConstBytes record = part(ConstBytes(reply), 32 + 251 * i, 251);
      all.emplace_back(record.begin(), record.end());
    }
    return all;
  }

  std::uint32_t connectionCount(const std::string& filter = web) {
    EXPECT_EQ(command(23, Record().zero(16), filterSelector(filter)), 0u) << note();
    return get32(reply, 4);
  }

  /// The flow of that number among those of the filter `web`.
  ByteVector flow(unsigned number) {
    for (const ByteVector& each : allFlows()) {
      if (idOf(each) == 0x5c1e000100001001 + 3 * std::uint64_t{number}) return each;
    }
    ADD_FAILURE() << "there is no flow " << number;
    return ByteVector(251);
  }

  ByteVector query_;
  ByteVector buffer;
};

}  // namespace TarnLab
