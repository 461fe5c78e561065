// The processes of the host that programs talk to over sockets: the host daemon and the inspection
// process.
#ifndef TARNLAB_PEER_H
#define TARNLAB_PEER_H

#include "LabDevice.h"
#include "LabHost.h"
#include "LabJournal.h"
#include "LabPeerManner.h"

namespace TarnLab {

/// What a peer is asked. The lab's lock is held.
struct PeerRequest {
  const Store& store;
  const Host& host;
  ConstBytes sent;
  JournalEntry& entry;

  /// Fails the request, with a line in the log that says why, and returns the text for it.
  std::string refuse(const std::string& why) const;
};

/// The host daemon. A request is a message of fixed size, the answer a text that ends with the
/// stream.
namespace Trace {
inline constexpr std::size_t messageSize = 260;
std::string answer(const PeerRequest& request);

/// What it is set to, a line each.
std::string state(const Store& store, const Host& host);

/// A request in words, for the log: "C: set process log level(level 5)".
std::string asked(ConstBytes message);
}  // namespace Trace

/// The inspection process. Numbers and texts follow their lengths; some commands have no answer.
namespace Inspection {
inline constexpr std::uint32_t matchName = 71, commandSize = 4, nameLimit = 1024;

/// Nothing for a command without an answer.
std::optional<std::string> answer(const PeerRequest& request);
std::string state(const Store& store, const Host& host);
std::string asked(ConstBytes sent);
}  // namespace Inspection

/// Both peers, as the preload library and the program use them.
namespace Peer {

/// How the peer treats a program that connects now; one that it does not let in gets an errno.
/// Counts ordered faults.
int admit(const Store& store, Device peer, PeerManner& manner);

/// Serves one connection to its end. The descriptor stays the caller's.
void serve(const Store& store, Device peer, const PeerManner& manner, int fd);

std::string state(const Store& store, const Host& host, Device peer);

/// An exchange as a line of the log, without the answer; the answer's lines.
std::string asked(const JournalEntry& entry);
std::string answerLines(const JournalEntry& entry);

}  // namespace Peer

}  // namespace TarnLab

#endif
