#include "LabPeer.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "LabFaults.h"
#include "LabText.h"

namespace TarnLab {

namespace {

/// The largest request of a peer.
constexpr std::size_t requestLimit = 12 + Inspection::nameLimit;

ConstBytes bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

/// The stream to one program. Every wait ends when the program goes.
class Stream {
 public:
  explicit Stream(int fd) : fd_(fd) {}

  /// Appends so many bytes; false when the stream ends before them.
  bool read(ByteVector& into, std::size_t size) {
    const std::size_t end = into.size() + size;
    while (into.size() < end) {
      std::byte piece[1024];
      const ssize_t got = ::recv(fd_, piece, std::min(sizeof piece, end - into.size()), 0);
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) return false;
      into.insert(into.end(), piece, piece + got);
    }
    return true;
  }

  bool send(ConstBytes bytes) {
    while (!bytes.empty()) {
      const ssize_t sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent < 0 && errno == EINTR) continue;
      if (sent < 0) return false;
      bytes = bytes.subspan(static_cast<std::size_t>(sent));
    }
    return true;
  }

  /// Waits so many milliseconds, or without an end with -1; false when the program has gone.
  bool wait(int milliseconds) {
    pollfd waiting{fd_, 0, 0};
    return ::poll(&waiting, 1, milliseconds) == 0;
  }

  /// Waits until the program has read everything, so that the next byte comes by itself; not for
  /// long, as it may read no more.
  void drain() {
    constexpr int most = 500;
    int left = 0;
    for (int turn = 0; turn < most; ++turn) {
      if (::ioctl(fd_, SIOCOUTQ, &left) != 0 || left == 0) return;
      const timespec pause{0, 20000};
      ::ppoll(nullptr, 0, &pause, nullptr);
    }
  }

 private:
  int fd_;
};

/// Sends the pieces of an answer as it was ordered.
class Answer {
 public:
  Answer(Stream& stream, const PeerManner& manner)
      : stream_(stream), manner_(manner), left_(manner.cut.value_or(0)) {}

  /// False when there is nothing more to be sent.
  bool send(ConstBytes bytes) {
    constexpr std::size_t usual = 1024;
    while (!bytes.empty()) {
      std::size_t size = std::min(bytes.size(), manner_.bytewise ? 1 : usual);
      if (manner_.cut) size = std::min(size, left_);
      if (size == 0) return false;
      if (manner_.slow > 0 && !stream_.wait(static_cast<int>(manner_.slow))) return false;
      if (!stream_.send(bytes.first(size))) return false;
      if (manner_.bytewise) stream_.drain();
      left_ -= std::min(left_, size);
      bytes = bytes.subspan(size);
    }
    return true;
  }

 private:
  Stream& stream_;
  const PeerManner& manner_;
  std::size_t left_;  // before the stream is cut
};

/// The words of a request: of the daemon one message, of the inspection process a command and, for
/// a query, a text, each after its length. Why it is none; empty when it is one.
std::string readRequest(Stream& stream, Device peer, ByteVector& sent) {
  const auto ended = [&] { return format("the stream ended after %zu bytes", sent.size()); };
  if (peer == Device::trace) return stream.read(sent, Trace::messageSize) ? "" : ended();
  if (!stream.read(sent, 4)) return ended();
  if (get32(sent, 0) != Inspection::commandSize) {
    return format("a command of %u bytes", get32(sent, 0));
  }
  if (!stream.read(sent, 4)) return ended();
  if (get32(sent, 4) != Inspection::matchName) return "";
  if (!stream.read(sent, 4)) return ended();
  const std::uint32_t length = get32(sent, 8);
  if (length == 0 || length > Inspection::nameLimit) return format("a name of %u bytes", length);
  return stream.read(sent, length) ? "" : ended();
}

/// What is sent for an answer: the daemon's text as it is, the other one's after its length and
/// with its NUL.
ByteVector wireOf(Device peer, const PeerManner& manner, const std::string& text) {
  const ConstBytes bytes = bytesOf(text);
  if (peer == Device::trace) return {bytes.begin(), bytes.end()};
  ByteVector wire(4);
  wire.insert(wire.end(), bytes.begin(), bytes.end());
  if (!manner.unterminated) wire.push_back(std::byte{0});
  const std::size_t size = wire.size() - 4;
  put32(wire, 0, manner.length ? manner.length->of(size) : static_cast<std::uint32_t>(size));
  return wire;
}

/// Answers what was asked, and writes it to the log. Nothing when there is no answer.
std::optional<ByteVector> answer(const Store& store, Device peer, const PeerManner& manner,
                                 const std::string& fault, JournalEntry& entry,
                                 const ByteVector& sent) {
  const StoreLock lock(store);
  std::optional<std::string> text;
  entry.error = fault.empty() ? 0 : EPROTO;
  entry.note = fault;
  if (fault.empty()) {
    try {
      const Host host = Host::load(store);
      const PeerRequest request{store, host, sent, entry};
      text = peer == Device::trace ? Trace::answer(request) : Inspection::answer(request);
    } catch (const std::exception& failure) {
      entry.error = EIO;
      entry.note = failure.what();
      text = "ERROR: " + entry.note + "\n";
    }
  }
  std::optional<ByteVector> wire;
  if (text) wire = wireOf(peer, manner, *text);
  if (!manner.note.empty()) entry.note += (entry.note.empty() ? "" : "; ") + manner.note;
  entry.size = sent.size();
  entry.sent = JournalEntry::kept(sent);
  if (wire) {
    entry.result = static_cast<int>(wire->size());
    entry.answered = JournalEntry::kept(*wire);
  }
  Journal(store).append(entry);
  return wire;
}

}  // namespace

std::string PeerRequest::refuse(const std::string& why) const {
  entry.error = EINVAL;
  entry.note = why;
  return "ERROR: " + why + "\n";
}

namespace Peer {

int admit(const Store& store, Device peer, PeerManner& manner) {
  manner = {};
  try {
    if (!store.exists()) return ENOENT;
    if (!Faults::load(store).all().empty()) {
      const StoreLock lock(store);
      Faults faults = Faults::load(store);
      manner = faults.takePeer(peer);
      if (faults.changed()) faults.save(store);
    }
    if (manner.absent) return ENOENT;
    if (manner.refuses) return ECONNREFUSED;
    if (manner.closes) {
      const StoreLock lock(store);
      JournalEntry entry;
      entry.stamp();
      entry.device = peer;
      entry.error = EPROTO;
      entry.note = manner.note;
      Journal(store).append(entry);
    }
    return 0;
  } catch (const StoreError& failure) {
    return failure.error();
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

void serve(const Store& store, Device peer, const PeerManner& manner, int fd) {
  try {
    Stream stream(fd);
    JournalEntry entry;
    entry.stamp();
    entry.device = peer;
    ByteVector sent;
    const std::string fault = readRequest(stream, peer, sent);
    if (peer == Device::trace) {
      entry.request = sent.size() > 2 ? get8(sent, 2) : 0;
    } else {
      entry.request = sent.size() >= 8 ? get32(sent, 4) : 0;
    }
    const auto wire = answer(store, peer, manner, fault, entry, sent);
    if (manner.silent) {
      stream.wait(-1);
      return;
    }
    Answer pieces(stream, manner);
    if (!wire || !pieces.send(*wire) || !manner.endless) return;
    // The same text again and again, without the length that stands in front of it.
    const ConstBytes again = ConstBytes(*wire).subspan(peer == Device::trace ? 0 : 4);
    while (!again.empty() && pieces.send(again)) {
    }
  } catch (const std::exception&) {
    // A lab that is not there any more: the program sees the end of the stream.
  }
}

std::string state(const Store& store, const Host& host, Device peer) {
  return peer == Device::trace ? Trace::state(store, host) : Inspection::state(store, host);
}

std::string asked(const JournalEntry& entry) {
  ByteVector sent = entry.sent;
  sent.resize(static_cast<std::size_t>(std::min<std::uint64_t>(entry.size, requestLimit)));
  return entry.device == Device::trace ? Trace::asked(sent) : Inspection::asked(sent);
}

std::string answerLines(const JournalEntry& entry) {
  const std::size_t head = entry.device == Device::trace ? 0 : 4;
  std::string_view rest(reinterpret_cast<const char*>(entry.answered.data()),
                        entry.answered.size());
  rest.remove_prefix(std::min(rest.size(), head));
  std::string text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    text += "    " + printable(rest.substr(0, end)) + "\n";
    rest.remove_prefix(std::min(rest.size(), end + 1));
  }
  return text;
}

}  // namespace Peer

}  // namespace TarnLab
