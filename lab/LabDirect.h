// One direct request of a control device, as its family declares it.
#ifndef TARNLAB_DIRECT_H
#define TARNLAB_DIRECT_H

#include <string>

#include "LabFaults.h"
#include "LabField.h"
#include "LabHost.h"
#include "LabJournal.h"

namespace TarnLab {

/// What an answer gets beside the body of its request.
struct Request {
  const Store& store;
  const Host& host;
  Faults& faults;
  JournalEntry& entry;
  std::uint32_t bodyLength = 0;  // as the frame has it, for a request that takes its own body
  std::uint64_t bodyAddress = 0;
  std::uint32_t status = 0;  // for the frame of the firewall device; 0 when all went well
  int result = 0;            // what ioctl returns when the answer is no errno
  ByteVector output = {};    // of the insertion device: as much as the caller has room for, zero

  /// Fails the request, with a line in the log.
  int refuse(int error, const std::string& why) const {
    entry.note = why;
    return error;
  }

  /// Reads what a body points to, up to `limit` bytes, or writes it. Returns 0, or an errno with
  /// its line in the log. The log keeps what was read or written after the body.
  int readBuffer(std::uint64_t address, std::uint64_t size, std::uint64_t limit, ByteVector& into);
  int writeBuffer(std::uint64_t address, ConstBytes bytes);

  ByteVector readBytes = {}, writtenBytes = {};  // for the log
};

/// A direct request. It is answered after these checks: the frame is right for the device, the body
/// has `size` bytes, what is reserved in it is zero and its names are padded; each of them fails
/// with EINVAL. The body is, by device:
///
/// - firewall: what the frame of 20 bytes points to
/// - tables: the frame itself
/// - insertion: the input that the frame of 32 bytes points to
///
/// `answer` returns 0 or an errno. What it writes over the body goes back to the caller; on the
/// insertion device that is `Request::output` instead.
struct DirectKind {
  Device device = Device::none;
  std::uint32_t number = 0;
  const char* title = nullptr;  // in the log
  std::size_t size = 0;
  int (*answer)(Request& request, Body& body) = nullptr;
  FieldList request = {};
  FieldList reply = {};          // in the body; of the insertion device, in the output
  List list = {};                // in the body or output, with the buffer after it
  std::size_t output = 0;        // bytes of output that the answer needs at least
  std::uint32_t sentStatus = 0;  // what callers put into the frame's status
  std::string (*asked)(ConstBytes body) = nullptr;  // the request in the log, in its own words
  int (*whole)(Request& request) = nullptr;         // answers without the checks of the body
};

/// Answers the request that `entry` names, whose frame is at an address of this process, as the
/// kind says; a null one is not known. Returns 0 or an errno; what came of it is in the entry then.
int answerDirect(const DirectKind* kind, const Store& store, Faults& faults, JournalEntry& entry,
                 std::uint64_t argument);

}  // namespace TarnLab

#endif
