// What the parts of the model share while one request is answered.
#ifndef TARNLAB_REQUEST_H
#define TARNLAB_REQUEST_H

#include <string>

#include "LabFaults.h"
#include "LabHost.h"
#include "LabJournal.h"

namespace TarnLab {

/// The frame that every request on the firewall device comes in: command, status, body length and
/// body address, 20 bytes.
struct Frame {
  static constexpr std::size_t size = 20;
  static constexpr std::size_t command = 0, status = 4, bodyLength = 8, bodyAddress = 12;
};

struct Request {
  const Store& store;
  const Host& host;
  Faults& faults;
  JournalEntry& entry;
  std::uint32_t number;
  std::uint64_t frameAddress;
  std::uint32_t bodyLength;
  std::uint64_t bodyAddress;

  /// Fails the request, with a line in the log.
  int refuse(int error, const std::string& why) const {
    entry.note = why;
    return error;
  }
};

/// Request 15: a message with commands. Returns 0 or an errno.
int answerMessage(Request& request);

/// Requests 20 and 21: the number of filters, and the filters. Returns 0 or an errno.
int answerFilterList(Request& request);

}  // namespace TarnLab

#endif
