#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "Expect.h"
#include "TarnFWAddress.h"

/// A field of `size` bytes that begins with these and goes on with zeros.
inline std::vector<int> field(std::size_t size, std::vector<int> bytes) {
  bytes.resize(size, 0);
  return bytes;
}

/// The record of one address as it must come out of the wire form, written by hand from the layout.
struct AddressGolden {
  int type;
  bool negated;
  std::vector<std::pair<std::size_t, std::vector<int>>> fields;  // offset and bytes

  /// The record over a buffer that held `fill`: what is no field stays.
  Bytes over(std::uint8_t fill) const {
    Bytes bytes(144, fill);
    bytes[0] = static_cast<std::uint8_t>(type);
    bytes[1] = 0;
    bytes[2] = static_cast<std::uint8_t>((fill & 0xfe) | (negated ? 1 : 0));
    for (const auto& [offset, values] : fields) {
      std::size_t place = offset;
      for (const int value : values) bytes[place++] = static_cast<std::uint8_t>(value);
    }
    return bytes;
  }

  TarnFirewall::FWAddress_ record() const {
    return TarnFirewall::loadRecord<TarnFirewall::FWAddress_>(over(0).data());
  }
};

/// Expects the golden bytes over buffers of several contents, and that no byte is written into a
/// buffer that is too small, whatever its size.
inline void expectWire(TarnFirewall::CTarnFWAddress& address, const AddressGolden& golden) {
  EXPECT_EQ(address.getMsgSize(), 144u);
  for (const int pattern : {0x00, 0xff, 0x5a}) {
    const auto fill = static_cast<std::uint8_t>(pattern);
    Bytes buffer(150, fill);
    unsigned int written = 7;
    EXPECT_TRUE(address.toMessage(buffer.data(), 150, &written));
    EXPECT_EQ(written, 144u);
    EXPECT_EQ(Bytes(150 - 144, fill), Bytes(buffer.begin() + 144, buffer.end()));
    buffer.resize(144);
    EXPECT_EQ(buffer, golden.over(fill)) << "over " << pattern;

    Bytes again(144, fill);
    EXPECT_TRUE(address.toMessage(again.data(), 144, nullptr));
    EXPECT_EQ(again, buffer);
  }
  for (unsigned int size = 0; size < 144; ++size) {
    Bytes buffer(size, 0x5a);
    unsigned int written = 7;
    EXPECT_FALSE(address.toMessage(buffer.data(), size, &written)) << size;
    EXPECT_EQ(buffer, Bytes(size, 0x5a)) << size;
    EXPECT_EQ(written, 7u) << size;
  }
}
