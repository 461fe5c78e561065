#include "TarnFWProtocolSpecL4PortSet.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "TarnFWException.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

namespace {

constexpr char kSeparators[] = " \t,";

struct Release {
  void operator()(char* text) const { std::free(text); }
};

}  // namespace

CTarnFWProtocolSpecL4PortSet::CTarnFWProtocolSpecL4PortSet(unsigned char dir, const char* text)
    : CTarnFWProtocolSpec(dir, false) {
  const std::unique_ptr<char, Release> copy(text != nullptr ? strdup(text) : nullptr);
  if (!copy) throw CInvalidL4PortException(text != nullptr ? text : "");
  unsigned int count = 0;
  char* rest = nullptr;
  char* token = strtok_r(copy.get(), kSeparators, &rest);
  // The count is of what the text names, repetitions included. A range that makes it 16 ends the
  // reading without an error, and what follows is not read: stored configurations with
  // more ports are taken so.
  while (token != nullptr && count < kMaxEntries) {
    long low = 0;
    long high = 0;
    if (std::strchr(token, '-') != nullptr) {
      if (!Str2PortRange(token, &low, &high)) throw CInvalidL4PortException(text);
      addPortRange(static_cast<unsigned short>(low), static_cast<unsigned short>(high));
      count += 2;
    } else {
      if (!Str2Port(token, &low)) throw CInvalidL4PortException(text);
      addPort(static_cast<unsigned short>(low));
      ++count;
    }
    token = strtok_r(nullptr, kSeparators, &rest);
  }
  if (count == kMaxEntries && token != nullptr) throw CTooManyL4PortException(kMaxEntries + 1);
}

CTarnFWProtocolSpecL4PortSet::CTarnFWProtocolSpecL4PortSet(unsigned char dir,
                                                           std::span<const unsigned int> keys,
                                                           bool negated)
    : CTarnFWProtocolSpec(dir, negated) {
  if (keys.size() > kMaxRanges) throw CTooManyL4PortException(static_cast<int>(keys.size()));
  for (const unsigned int key : keys) addPortRange(key);
}

CTarnFWProtocolSpecL4PortSet::CTarnFWProtocolSpecL4PortSet(unsigned char dir,
                                                           std::span<const net16> entries,
                                                           unsigned short ranges, bool negated)
    : CTarnFWProtocolSpec(dir, negated) {
  if (entries.size() > kMaxEntries) throw CTooManyL4PortException(static_cast<int>(entries.size()));
  const auto startsRange = [ranges](std::size_t i) { return ((ranges >> i) & 1) != 0; };
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::uint16_t port = entries[i];
    if (!startsRange(i)) {
      addPort(port);
      continue;
    }
    if (startsRange(i + 1) || i + 1 >= entries.size() || port >= entries[i + 1])
      throw CInvalidL4PortException(port);
    addPortRange(port, entries[i + 1]);
    ++i;
  }
}

CTarnFWProtocolSpecL4PortSet::CTarnFWProtocolSpecL4PortSet(unsigned char dir, const Body& body,
                                                           bool negated)
    : CTarnFWProtocolSpecL4PortSet(dir, std::span(body.entries, body.count & 0x0fu), body.ranges,
                                   negated) {}

void CTarnFWProtocolSpecL4PortSet::requireRoom(unsigned int entries) const {
  const unsigned int needed = ports_.size() + 2 * ranges_.size() + entries;
  if (needed > kMaxEntries) throw CTooManyL4PortException(static_cast<int>(needed));
}

void CTarnFWProtocolSpecL4PortSet::addPort(unsigned short port) {
  requireRoom(1);
  ports_.insert(port);
}

void CTarnFWProtocolSpecL4PortSet::addPortRange(unsigned int key) {
  requireRoom(2);
  ranges_.insert(key);
}

void CTarnFWProtocolSpecL4PortSet::addPortRange(unsigned short low, unsigned short high) {
  addPortRange((static_cast<unsigned int>(high) << 16) | low);
}

void CTarnFWProtocolSpecL4PortSet::appendTo(CTarnFWText& text) const {
  if (ports_.size() == 0 && ranges_.size() == 0) return;
  appendNegation(text);
  text += "port {";
  const char* separator = "";
  for (const std::uint32_t key : ranges_) {
    text += separator;
    appendDecimal(text, key & 0xffff);
    text += '-';
    appendDecimal(text, key >> 16);
    separator = ", ";
  }
  for (const std::uint16_t port : ports_) {
    text += separator;
    appendDecimal(text, port);
    separator = ", ";
  }
  text += '}';
}

bool CTarnFWProtocolSpecL4PortSet::toMessage(void* buffer, unsigned int size,
                                             unsigned int* written) {
  Body body{};
  unsigned int count = 0;
  unsigned int ranges = 0;
  for (const std::uint32_t key : ranges_) {
    ranges |= 1u << count;
    body.entries[count++] = static_cast<std::uint16_t>(key & 0xffff);
    body.entries[count++] = static_cast<std::uint16_t>(key >> 16);
  }
  for (const std::uint16_t port : ports_) body.entries[count++] = port;
  body.count = static_cast<std::uint8_t>(count);
  body.ranges = static_cast<std::uint16_t>(ranges);
  return writeBody(body, buffer, size, written);
}

}  // namespace TarnFirewall
