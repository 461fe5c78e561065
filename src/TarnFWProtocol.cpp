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
bool appendName(CTarnFWText& text, unsigned short number) {
  static std::array<std::atomic<const std::string*>, 256> names;
  static std::mutex lock;
  if (number >= names.size()) {
    const std::string name = lookUpName(number);
    text += name;
    return !name.empty();
  }
  const std::string* name = names[number].load(std::memory_order_acquire);
  if (name == nullptr) {
    const std::lock_guard<std::mutex> guard(lock);
    name = names[number].load(std::memory_order_relaxed);
    if (name == nullptr) {
      name = new std::string(lookUpName(number));  // lives as long as the process
      names[number].store(name, std::memory_order_release);
    }
  }
  text += *name;
  return !name->empty();
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

void CTarnFWProtocolMatch::appendNumber(CTarnFWText& text) const {
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

void CTarnFWProtocolMatch::appendTo(CTarnFWText& text) const {
  if (negated_) text += "not ";
  if (isLayer3()) {
    text += "protocol";
  } else {
    text += "ethertype";
  }
  appendNumber(text);
}

std::string CTarnFWProtocol::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

std::string CTarnFWProtocolMatch::toString2() const {
  CTarnFWText text;
  if (negated_) text += "not ";
  text += isLayer3() ? "Protocol :" : "Ethertype :";
  appendNumber(text);
  return text.str();
}

bool CTarnFWProtocol::toMessage(void*, unsigned int, unsigned int* written) {
  if (written != nullptr) *written = 0;
  return true;
}

}  // namespace TarnFirewall
