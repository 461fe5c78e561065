// The frames of direct requests, by device, and the checks that come before every answer.
#include "LabDirect.h"

#include <algorithm>
#include <cerrno>

#include "LabCallerMemory.h"
#include "LabText.h"

namespace TarnLab {

namespace {

// The frame of the firewall device.
namespace Frame {
constexpr std::size_t size = 20;
constexpr U32 command{0, "command"}, status{4, "status"}, bodyLength{8, "length"};
constexpr U64 bodyAddress{12, "address"};
}  // namespace Frame

// The frame of the insertion device. The four bytes after the command are never written by a
// caller.
namespace InsertionFrame {
constexpr std::size_t size = 32;
constexpr U32 command{0, "command"}, inputLength{8, "input"}, outputLength{12, "output"};
constexpr U64 input{16, "input"}, output{24, "output"};
}  // namespace InsertionFrame

// A larger output is refused rather than made.
constexpr std::uint32_t outputLimit = std::uint32_t{1} << 30;

/// The bytes, and after them those of a buffer, as the log keeps them.
ByteVector withBuffer(ConstBytes body, const ByteVector& buffer) {
  ByteVector all(body.begin(), body.end());
  all.insert(all.end(), buffer.begin(), buffer.end());
  return all;
}

/// Answers with a body of the caller's, which has been read and is kept in the log both ways.
int answerBody(Request& request, const DirectKind& kind, Body& body) {
  JournalEntry& entry = request.entry;
  entry.size = body.size();
  entry.sent = JournalEntry::kept(body);
  const ByteVector asked(body.bytes().begin(), body.bytes().end());
  if (std::string fault = reservedFault(kind.request, body, kind.title); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  if (std::string fault = nameFault(kind.request, body); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  const int error = kind.answer(request, body);
  entry.size = body.size() + std::max(request.readBytes.size(), request.writtenBytes.size());
  if (!request.readBytes.empty()) {
    entry.sent = JournalEntry::kept(withBuffer(asked, request.readBytes));
  }
  if (error == 0) entry.answered = JournalEntry::kept(withBuffer(body, request.writtenBytes));
  return error;
}

/// Writes back what an answer has written over a body that came from `address`.
bool writeBack(const Body& body, std::uint64_t address) {
  return body.writtenSize() == 0 ||
         writeCaller(address + body.writtenAt(),
                     part(body.bytes(), body.writtenAt(), body.writtenSize()));
}

int answerFirewall(Request& request, const DirectKind& kind, std::uint64_t argument) {
  std::byte frame[Frame::size];
  if (!readCaller(argument, frame)) return request.refuse(EFAULT, "frame cannot be read");
  if (Frame::command.get(frame) != request.entry.request) {
    return request.refuse(EINVAL, format("frame has command %u", Frame::command.get(frame)));
  }
  const std::uint32_t sentStatus = Frame::status.get(frame);
  if (sentStatus != kind.sentStatus) {
    return request.refuse(EINVAL, format("frame has status %u", sentStatus));
  }
  request.bodyLength = Frame::bodyLength.get(frame);
  request.bodyAddress = Frame::bodyAddress.get(frame);
  int error = 0;
  if (kind.whole != nullptr) {
    error = kind.whole(request);
  } else {
    if (request.bodyLength != kind.size) {
      return request.refuse(
          EINVAL, format("body of %u bytes in place of %zu", request.bodyLength, kind.size));
    }
    ByteVector bytes(kind.size);
    if (!readCaller(request.bodyAddress, bytes)) {
      return request.refuse(EFAULT, "body cannot be read");
    }
    Body body(bytes);
    error = answerBody(request, kind, body);
    if (error == 0 && !writeBack(body, request.bodyAddress)) {
      return request.refuse(EFAULT, "body cannot be written");
    }
  }
  if (error != 0 || request.status == sentStatus) return error;
  Frame::status.put(Bytes(frame), request.status);
  const ConstBytes status = part(ConstBytes(frame), Frame::status.offset, Frame::status.size);
  return writeCaller(argument + Frame::status.offset, status) ? 0 : EFAULT;
}

int answerTables(Request& request, const DirectKind& kind, std::uint64_t argument) {
  ByteVector bytes(kind.size);
  if (!readCaller(argument, bytes)) return request.refuse(EFAULT, "frame cannot be read");
  Body body(bytes);
  const int error = answerBody(request, kind, body);
  if (error != 0 || writeBack(body, argument)) return error;
  return request.refuse(EFAULT, "frame cannot be written");
}

int answerInsertion(Request& request, const DirectKind& kind, std::uint64_t argument) {
  std::byte frame[InsertionFrame::size];
  if (!readCaller(argument, frame)) return request.refuse(EFAULT, "frame cannot be read");
  if (const auto command = InsertionFrame::command.get(frame); command != request.entry.request) {
    return request.refuse(EINVAL, format("frame has command %u", command));
  }
  const std::uint32_t length = InsertionFrame::inputLength.get(frame);
  const std::uint32_t room = InsertionFrame::outputLength.get(frame);
  if (length != kind.size) {
    return request.refuse(EINVAL, format("input of %u bytes in place of %zu", length, kind.size));
  }
  if (room < kind.output || room > outputLimit) {
    return request.refuse(EINVAL, format("output of %u bytes, %zu needed", room, kind.output));
  }
  ByteVector bytes(kind.size);
  if (!readCaller(InsertionFrame::input.get(frame), bytes)) {
    return request.refuse(EFAULT, "input cannot be read");
  }
  request.output.resize(room);
  Body body(bytes);
  if (const int error = answerBody(request, kind, body); error != 0) return error;
  request.entry.size = std::max(bytes.size(), request.output.size());
  request.entry.answered = JournalEntry::kept(request.output);
  if (writeCaller(InsertionFrame::output.get(frame), request.output)) return 0;
  return request.refuse(EFAULT, "output cannot be written");
}

}  // namespace

int Request::readBuffer(std::uint64_t address, std::uint64_t size, std::uint64_t limit,
                        ByteVector& into) {
  if (size > limit) {
    return refuse(EINVAL, format("buffer of %llu bytes", static_cast<unsigned long long>(size)));
  }
  into.resize(static_cast<std::size_t>(size));
  if (!readCaller(address, into)) return refuse(EFAULT, "buffer cannot be read");
  readBytes = into;
  return 0;
}

int Request::writeBuffer(std::uint64_t address, ConstBytes bytes) {
  if (!writeCaller(address, bytes)) return refuse(EFAULT, "buffer cannot be written");
  writtenBytes.assign(bytes.begin(), bytes.end());
  return 0;
}

int answerDirect(const DirectKind* kind, const Store& store, Faults& faults, JournalEntry& entry,
                 std::uint64_t argument) {
  if (kind == nullptr) {
    entry.note = "no such request on this device";
    return ENOTTY;
  }
  const Host host = Host::load(store);
  Request request{store, host, faults, entry};
  int error = 0;
  switch (entry.device) {
    case Device::filterTables:
      error = answerTables(request, *kind, argument);
      break;
    case Device::serviceInsertion:
      error = answerInsertion(request, *kind, argument);
      break;
    default:
      error = answerFirewall(request, *kind, argument);
  }
  entry.status = request.status;
  entry.result = request.result;
  return error;
}

}  // namespace TarnLab
