#include "TarnFWProtocol.h"

#include <netdb.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <vector>

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

/// The host's name of a protocol number, empty when it has none.
std::string lookUpName(int number) {
  std::vector<char> buffer(1024);
  protoent entry{};
  protoent* found = nullptr;
  while (getprotobynumber_r(number, &entry, buffer.data(), buffer.size(), &found) == ERANGE)
    buffer.resize(buffer.size() * 2);
  return found != nullptr ? found->p_name : std::string();
}

/// Appends the name as `lookUpName` gives it; false when there is none. A look-up opens the host's
/// protocol database, so each number of the 8-bit range is looked up once a process.
bool appendName(std::string& text, unsigned short number) {
  static std::array<std::atomic<const char*>, 256> names;
  static std::mutex lock;
  if (number >= names.size()) {
    const std::string name = lookUpName(number);
    text += name;
    return !name.empty();
  }
  const char* name = names[number].load(std::memory_order_acquire);
  if (name == nullptr) {
    const std::lock_guard<std::mutex> guard(lock);
    name = names[number].load(std::memory_order_relaxed);
    if (name == nullptr) {
      const std::string found = lookUpName(number);
      char* const kept = new char[found.size() + 1];  // lives as long as the process
      std::memcpy(kept, found.c_str(), found.size() + 1);
      names[number].store(kept, std::memory_order_release);
      name = kept;
    }
  }
  text += name;
  return *name != '\0';
}

}  // namespace

CTarnFWProtocolMatch::CTarnFWProtocolMatch(bool defined, unsigned short number,
                                           FWProtocolLayer layer, bool negated)
    : number_(number), layer_(layer), negated_(negated), defined_(defined) {
  if (!defined && negated)
    throw CUnsupportedException("protocol is not defined but not protocol flag is set");
}

void CTarnFWProtocolMatch::setProtocol(unsigned short number, bool negated) {
  number_ = number;
  negated_ = negated;
  defined_ = true;
}

void CTarnFWProtocolMatch::appendWith(std::string& text, const char* protocolWord,
                                      const char* ethertypeWord) const {
  if (negated_) text += "not ";
  text += isLayer3() ? protocolWord : ethertypeWord;
  if (!defined_) {
    text += " any";
  } else if (isLayer3()) {
    text += ' ';
    if (!appendName(text, number_)) appendDecimal(text, number_);
  } else {
    text += " 0x";
    appendHex(text, number_, 4);
  }
}

void CTarnFWProtocolMatch::appendTo(std::string& text) const {
  appendWith(text, "protocol", "ethertype");
}

std::string CTarnFWProtocol::toString() const {
  std::string text;
  appendTo(text);
  return text;
}

std::string CTarnFWProtocolMatch::toString2() const {
  std::string text;
  appendWith(text, "Protocol :", "Ethertype :");
  return text;
}

bool CTarnFWProtocol::toMessage(void*, unsigned int, unsigned int* written) {
  if (written != nullptr) *written = 0;
  return true;
}

}  // namespace TarnFirewall
