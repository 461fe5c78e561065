#include "LabFaults.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "LabText.h"

namespace TarnLab {

namespace {

// The file "faults": 20 bytes for each fault.
constexpr std::size_t recordSize = 20, fileLimit = recordSize << 20;
constexpr std::size_t atKind = 0, atDevice = 1, atHasOnly = 2, atPeer = 3, atValue = 4,
                      atRemaining = 8, atOnly = 12, atSkipped = 16;

/// Whether "tarnlab fault" could have ordered it.
bool isPossible(const Fault& fault) {
  switch (fault.kind) {
    case Fault::Kind::status:
      return true;
    case Fault::Kind::error:
      return fault.value >= 1 && fault.value <= Fault::errnoLimit &&
             fault.device <= Device::serviceInsertion;
    case Fault::Kind::delay:
      return fault.value <= Fault::delayLimit;
    case Fault::Kind::absent:
      return fault.device != Device::none && fault.device <= Device::serviceInsertion;
    case Fault::Kind::peer:
      return (fault.device == Device::none || fault.device == Device::trace ||
              fault.device == Device::inspection) &&
             peerFaultKind(fault.peer) != nullptr &&
             fault.only.value_or(PeerLength::exact) <= PeerLength::less &&
             (fault.peer != PeerFault::slow || fault.value <= Fault::delayLimit);
    case Fault::Kind::signal:
      return fault.value >= 1 && fault.value <= Fault::signalLimit;
  }
  return false;
}

/// A fault of a peer in words, without the peer.
std::string sentenceOf(const Fault& fault) {
  const PeerFaultKind& kind = *peerFaultKind(fault.peer);
  std::string value = format("%u", fault.value);
  if (kind.value == PeerFaultKind::Value::length) {
    static constexpr const char* words[] = {" bytes", " bytes more", " bytes less"};
    value += words[fault.only.value_or(PeerLength::exact)];
  }
  std::string text = kind.sentence;
  if (const std::size_t at = text.find("%s"); at != std::string::npos) text.replace(at, 2, value);
  return text;
}

}  // namespace

std::string Fault::toString() const {
  std::string text;
  switch (kind) {
    case Kind::status:
      text = format("messages are answered with status %u", value);
      if (only) text += format(", those with command %u only", *only);
      break;
    case Kind::error: {
      const char* name = ::strerrorname_np(static_cast<int>(value));
      text = format("requests fail with %s", name != nullptr ? name : format("%u", value).c_str());
      if (device != Device::none) text += " on the device " + std::string(deviceName(device));
      if (only) text += format(", request %u only", *only);
      break;
    }
    case Kind::delay:
      text = format("requests are held up for %u ms", value);
      break;
    case Kind::signal: {
      const char* name = ::sigabbrev_np(static_cast<int>(value));
      text = "programs get " +
             (name != nullptr ? "SIG" + std::string(name) : format("signal %u", value)) +
             " with the answer to a request";
      break;
    }
    case Kind::absent:
      return "the device " + std::string(deviceName(device)) + " is absent";
    case Kind::peer:
      text = device == Device::none ? "every peer" : "the peer " + std::string(deviceName(device));
      text += " " + sentenceOf(*this);
      break;
  }
  if (skipped > 0) text += format(", after %u more", skipped);
  return text +
         (remaining == 0 ? std::string(", until cleared") : format(", the next %u", remaining));
}

Faults Faults::load(const Store& store) {
  Faults faults;
  const auto content = store.read("faults", fileLimit);
  if (!content) return faults;
  if (content->size() % recordSize != 0) {
    throw StoreError("damaged file " + store.path("faults"), EINVAL);
  }
  for (ConstBytes rest = *content; !rest.empty(); rest = rest.subspan(recordSize)) {
    Fault fault;
    fault.kind = static_cast<Fault::Kind>(get8(rest, atKind));
    fault.device = static_cast<Device>(get8(rest, atDevice));
    fault.peer = static_cast<PeerFault>(get8(rest, atPeer));
    fault.value = get32(rest, atValue);
    fault.remaining = get32(rest, atRemaining);
    fault.skipped = get32(rest, atSkipped);
    if (get8(rest, atHasOnly) != 0) fault.only = get32(rest, atOnly);
    if (!isPossible(fault)) throw StoreError("damaged file " + store.path("faults"), EINVAL);
    faults.faults_.push_back(fault);
  }
  return faults;
}

void Faults::save(const Store& store) const {
  if (faults_.empty()) {
    store.remove("faults");
    return;
  }
  ByteVector content(faults_.size() * recordSize);
  Bytes rest = content;
  for (const Fault& fault : faults_) {
    put8(rest, atKind, static_cast<std::uint8_t>(fault.kind));
    put8(rest, atDevice, static_cast<std::uint8_t>(fault.device));
    put8(rest, atHasOnly, fault.only ? 1 : 0);
    put8(rest, atPeer, static_cast<std::uint8_t>(fault.peer));
    put32(rest, atValue, fault.value);
    put32(rest, atRemaining, fault.remaining);
    put32(rest, atOnly, fault.only.value_or(0));
    put32(rest, atSkipped, fault.skipped);
    rest = rest.subspan(recordSize);
  }
  store.replace("faults", {content});
}

bool Faults::absent(Device device) const {
  return std::any_of(faults_.begin(), faults_.end(), [device](const Fault& fault) {
    return fault.kind == Fault::Kind::absent && fault.device == device;
  });
}

std::uint32_t Faults::strike(std::size_t index) {
  Fault& fault = faults_[index];
  const std::uint32_t value = fault.value;
  if (fault.remaining > 0) {
    changed_ = true;
    if (--fault.remaining == 0) faults_.erase(faults_.begin() + static_cast<std::ptrdiff_t>(index));
  }
  return value;
}

bool Faults::skips(std::size_t index) {
  Fault& fault = faults_[index];
  if (fault.skipped == 0) return false;
  --fault.skipped;
  changed_ = true;
  return true;
}

std::uint32_t Faults::takeNext(Fault::Kind kind) {
  for (std::size_t i = 0; i < faults_.size(); ++i) {
    if (faults_[i].kind == kind && !skips(i)) return strike(i);
  }
  return 0;
}

std::uint32_t Faults::takeDelay() { return takeNext(Fault::Kind::delay); }

std::uint32_t Faults::takeSignal() { return takeNext(Fault::Kind::signal); }

std::optional<std::uint32_t> Faults::takeError(Device device, std::uint32_t request) {
  for (std::size_t i = 0; i < faults_.size(); ++i) {
    const Fault& fault = faults_[i];
    if (fault.kind == Fault::Kind::error && fault.only.value_or(request) == request &&
        (fault.device == Device::none || fault.device == device) && !skips(i)) {
      return strike(i);
    }
  }
  return std::nullopt;
}

std::optional<std::uint32_t> Faults::takeStatus(const std::vector<std::uint16_t>& commands) {
  for (std::size_t i = 0; i < faults_.size(); ++i) {
    const Fault& fault = faults_[i];
    if (fault.kind != Fault::Kind::status) continue;
    const bool isMeant =
        !fault.only || std::find(commands.begin(), commands.end(), *fault.only) != commands.end();
    if (isMeant && !skips(i)) return strike(i);
  }
  return std::nullopt;
}

bool Faults::takeOne(PeerFault wanted, Device peer, PeerManner& manner) {
  for (std::size_t i = 0; i < faults_.size(); ++i) {
    const Fault fault = faults_[i];
    if (!fault.strikes(peer) || fault.peer != wanted) continue;
    strike(i);
    manner.note += (manner.note.empty() ? "ordered fault: " : ", ") + sentenceOf(fault);
    if (wanted == PeerFault::cut) manner.cut = fault.value;
    if (wanted == PeerFault::slow) manner.slow = fault.value;
    if (wanted == PeerFault::length) {
      manner.length = {fault.value, fault.only.value_or(PeerLength::exact)};
    }
    return true;
  }
  return false;
}

PeerManner Faults::takePeer(Device peer) {
  PeerManner manner;
  // Whoever does not get as far as an answer leaves the faults of answers in force.
  manner.absent = takeOne(PeerFault::absent, peer, manner);
  manner.refuses = !manner.absent && takeOne(PeerFault::refuse, peer, manner);
  manner.closes = !manner.absent && !manner.refuses && takeOne(PeerFault::close, peer, manner);
  if (manner.absent || manner.refuses || manner.closes) return manner;
  for (const PeerFault fault : {PeerFault::cut, PeerFault::slow, PeerFault::length}) {
    takeOne(fault, peer, manner);
  }
  manner.bytewise = takeOne(PeerFault::bytes, peer, manner);
  manner.unterminated = takeOne(PeerFault::unterminated, peer, manner);
  manner.silent = takeOne(PeerFault::silent, peer, manner);
  manner.endless = takeOne(PeerFault::endless, peer, manner);
  return manner;
}

}  // namespace TarnLab
