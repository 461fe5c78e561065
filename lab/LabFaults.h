// Failures that a tester has ordered, with "tarnlab fault".
#ifndef TARNLAB_FAULTS_H
#define TARNLAB_FAULTS_H

#include <optional>
#include <string>
#include <vector>

#include "LabDevice.h"
#include "LabPeerManner.h"
#include "LabStore.h"

namespace TarnLab {

struct Fault {
  enum class Kind : std::uint8_t { status, error, delay, absent, peer, signal };
  static constexpr std::uint32_t errnoLimit = 4095, delayLimit = 3600000, signalLimit = 64;
  Kind kind = Kind::status;
  std::uint32_t value = 0;            // status, errno, milliseconds, bytes or signal
  std::uint32_t remaining = 0;        // how often it still strikes; 0 until it is cleared
  std::optional<std::uint32_t> only;  // the one command or request that it strikes;
                                      // of an announced length, its relation
  Device device = Device::none;       // of `absent`, `error` and `peer`; none is every one
  PeerFault peer = PeerFault::absent;
  std::uint32_t skipped = 0;  // how many it still lets pass before it strikes; 0 for `peer`

  /// Whether it is one of that peer.
  bool strikes(Device which) const {
    return kind == Kind::peer && (device == Device::none || device == which) &&
           !(which == Device::trace && isOfLengths(peer));
  }

  /// One line as "tarnlab fault" lists it.
  std::string toString() const;
};

/// The faults in force, oldest first. Kept in the file "faults".
class Faults {
 public:
  /// Reads the lab's faults; there are none without a file. Throws StoreError for a damaged one.
  static Faults load(const Store& store);

  /// Replaces the lab's faults. Hold the lock.
  void save(const Store& store) const;

  const std::vector<Fault>& all() const { return faults_; }
  void add(const Fault& fault) { faults_.push_back(fault); }
  void clear() { faults_.clear(); }

  bool absent(Device device) const;

  /// The milliseconds by which the next request is held up. Counts.
  std::uint32_t takeDelay();

  /// The signal that the program gets once the next request is answered; 0 for none. Counts.
  std::uint32_t takeSignal();

  /// The errno with which this request is to fail. Counts.
  std::optional<std::uint32_t> takeError(Device device, std::uint32_t request);

  /// The status with which this message is to be answered. Counts. `commands` are its commands.
  std::optional<std::uint32_t> takeStatus(const std::vector<std::uint16_t>& commands);

  /// How the peer treats this connection. Counts.
  PeerManner takePeer(Device peer);

  /// Whether a fault has struck since load, so that the file must be replaced.
  bool changed() const { return changed_; }

 private:
  /// What the first fault of the kind does, which needs nothing to strike; 0 for none. Counts.
  std::uint32_t takeNext(Fault::Kind kind);

  std::uint32_t strike(std::size_t index);

  /// Whether the fault lets what it is for pass this time. Counts.
  bool skips(std::size_t index);
  bool takeOne(PeerFault fault, Device peer, PeerManner& manner);

  std::vector<Fault> faults_;
  bool changed_ = false;
};

}  // namespace TarnLab

#endif
