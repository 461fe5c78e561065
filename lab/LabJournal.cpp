#include "LabJournal.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <iterator>
#include <optional>

namespace TarnLab {

namespace {

// Head of an entry; note, selector, sent and answered bytes follow it, and a tail that an entry
// which was cut off does not have: the head's check once more, inverted. Its last byte is 0, so
// that no head that follows an entry which was cut off in its tail completes it.
constexpr std::uint32_t magic = 0x324f4c54;
constexpr std::size_t headSize = 96, tailSize = 4;
constexpr std::size_t atMagic = 0, atCheck = 4, atTime = 8, atProcess = 16, atThread = 20,
                      atProgram = 24, programSize = 16, atDevice = 40, atRequest = 44, atError = 48,
                      atNote = 52, atSelector = 56, atSent = 60, atAnswered = 64, atStatus = 68,
                      atSize = 72, atResult = 80;

/// Fowler, Noll and Vo's FNV-1a over the head after the check itself.
std::uint32_t check(ConstBytes head) {
  std::uint32_t hash = 2166136261u;
  for (const std::byte b : head.subspan(atTime)) {
    hash = (hash ^ static_cast<std::uint32_t>(b)) * 16777619u;
  }
  return hash;
}

std::uint32_t tailOf(ConstBytes head) { return ~get32(head, atCheck) & 0x00ffffff; }

ByteVector take(ConstBytes& rest, std::size_t size) {
  const ConstBytes piece = part(rest, 0, size);
  rest = rest.subspan(size);
  return {piece.begin(), piece.end()};
}

/// The bytes between head and tail of the entry at `at`, or nothing when no whole entry is there.
std::optional<ByteVector> readBody(int file, ConstBytes head, std::uint64_t at) {
  if (get32(head, atMagic) != magic || get32(head, atCheck) != check(head)) return std::nullopt;
  const std::uint64_t size = std::uint64_t{get32(head, atNote)} + get32(head, atSelector) +
                             get32(head, atSent) + get32(head, atAnswered);
  if (size > 4 * JournalEntry::keptLimit) return std::nullopt;
  ByteVector body(static_cast<std::size_t>(size) + tailSize);
  if (!readAt(file, body, at + headSize)) return std::nullopt;
  if (get32(body, static_cast<std::size_t>(size)) != tailOf(head)) return std::nullopt;
  body.resize(static_cast<std::size_t>(size));
  return body;
}

/// Where the next entry may begin, from `at` on; the end of the file when nowhere.
std::uint64_t findHead(int file, std::uint64_t at, std::uint64_t end) {
  std::byte wanted[4];
  put32(wanted, 0, magic);
  ByteVector piece(std::size_t{1} << 16);
  while (end - at > headSize) {
    const Bytes now = part(Bytes(piece), 0, std::min<std::uint64_t>(piece.size(), end - at));
    if (!readAt(file, now, at)) break;
    const auto found = std::search(now.begin(), now.end(), std::begin(wanted), std::end(wanted));
    if (found != now.end()) return at + static_cast<std::uint64_t>(found - now.begin());
    at += now.size() - (sizeof wanted - 1);  // an entry may begin at the end of this piece
  }
  return end;
}

bool isSame(const Descriptor& file, const Descriptor& other) {
  struct stat status {
  }, otherStatus{};
  return file.valid() && other.valid() && ::fstat(file.get(), &status) == 0 &&
         ::fstat(other.get(), &otherStatus) == 0 && status.st_ino == otherStatus.st_ino &&
         status.st_dev == otherStatus.st_dev;
}

/// Reads the entries of one file; false when the reader wants no more.
bool readFile(const std::string& path, const Descriptor& file,
              const std::function<bool(const JournalEntry&)>& reader) {
  if (!file.valid()) return true;
  struct stat status;
  if (::fstat(file.get(), &status) != 0) throw StoreError("cannot read " + path, errno);
  const auto end = static_cast<std::uint64_t>(status.st_size);
  std::uint64_t at = 0;
  ByteVector head(headSize);
  while (at < end && readAt(file.get(), head, at)) {
    const std::optional<ByteVector> body = readBody(file.get(), head, at);
    if (!body) {
      at = findHead(file.get(), at + 1, end);
      continue;
    }
    JournalEntry entry;
    entry.time = get64(head, atTime);
    entry.process = get32(head, atProcess);
    entry.thread = get32(head, atThread);
    entry.program = getText(head, atProgram, programSize);
    entry.device = static_cast<Device>(get8(head, atDevice));
    entry.request = get32(head, atRequest);
    entry.error = static_cast<int>(get32(head, atError));
    entry.status = get32(head, atStatus);
    entry.result = static_cast<int>(get32(head, atResult));
    entry.size = get64(head, atSize);
    ConstBytes rest = *body;
    const ByteVector note = take(rest, get32(head, atNote));
    entry.note.assign(reinterpret_cast<const char*>(note.data()), note.size());
    entry.selector = take(rest, get32(head, atSelector));
    entry.sent = take(rest, get32(head, atSent));
    entry.answered = take(rest, get32(head, atAnswered));
    if (!reader(entry)) return false;
    at += headSize + body->size() + tailSize;
  }
  return true;
}

}  // namespace

void JournalEntry::stamp() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  time = static_cast<std::uint64_t>(now.tv_sec) * 1000000000u +
         static_cast<std::uint64_t>(now.tv_nsec);
  process = static_cast<std::uint32_t>(::getpid());
  thread = static_cast<std::uint32_t>(::gettid());
  char name[17] = {};
  ::prctl(PR_GET_NAME, name);
  program = name;
}

ByteVector JournalEntry::kept(ConstBytes bytes) {
  bytes = bytes.first(std::min(bytes.size(), keptLimit));
  while (!bytes.empty() && bytes.back() == std::byte{0}) bytes = bytes.first(bytes.size() - 1);
  return {bytes.begin(), bytes.end()};
}

void Journal::append(const JournalEntry& entry) const {
  const std::string path = store_.path("log");
  const Descriptor file(
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0644));
  struct stat status;
  if (!file.valid() || ::fstat(file.get(), &status) != 0) {
    throw StoreError("cannot write " + path, errno);
  }
  ByteVector head(headSize);
  const auto length = [](const auto& bytes) { return static_cast<std::uint32_t>(bytes.size()); };
  put32(head, atMagic, magic);
  put64(head, atTime, entry.time);
  put32(head, atProcess, entry.process);
  put32(head, atThread, entry.thread);
  putText(head, atProgram, programSize, entry.program);
  put8(head, atDevice, static_cast<std::uint8_t>(entry.device));
  put32(head, atRequest, entry.request);
  put32(head, atError, static_cast<std::uint32_t>(entry.error));
  put32(head, atNote, length(entry.note));
  put32(head, atSelector, length(entry.selector));
  put32(head, atSent, length(entry.sent));
  put32(head, atAnswered, length(entry.answered));
  put32(head, atStatus, entry.status);
  put32(head, atResult, static_cast<std::uint32_t>(entry.result));
  put64(head, atSize, entry.size);
  put32(head, atCheck, check(head));
  ByteVector tail(tailSize);
  put32(tail, 0, tailOf(head));
  const auto piece = [](const auto& bytes) {
    return iovec{const_cast<void*>(static_cast<const void*>(bytes.data())), bytes.size()};
  };
  const iovec pieces[] = {piece(head),       piece(entry.note),     piece(entry.selector),
                          piece(entry.sent), piece(entry.answered), piece(tail)};
  std::size_t size = 0;
  for (const iovec& each : pieces) size += each.iov_len;
  const ssize_t written = ::writev(file.get(), pieces, static_cast<int>(std::size(pieces)));
  if (written != static_cast<ssize_t>(size)) {
    const int error = written < 0 ? errno : ENOSPC;
    if (::ftruncate(file.get(), status.st_size) != 0) {
      // What is left is skipped in reading.
    }
    throw StoreError("cannot write " + path, error);
  }
  if (static_cast<std::uint64_t>(status.st_size) + size > fileLimit) {
    ::rename(path.c_str(), store_.path("log.old").c_str());
  }
}

void Journal::read(const std::function<bool(const JournalEntry&)>& reader) const {
  // The newer one first, since without the lock it may become the older one at any time: while that
  // is read, or before it is opened.
  const Descriptor newer = store_.open("log");
  const Descriptor older = store_.open("log.old");
  if (!isSame(newer, older) && !readFile(store_.path("log.old"), older, reader)) return;
  readFile(store_.path("log"), newer, reader);
}

void Journal::clear() const {
  store_.remove("log.old");
  store_.remove("log");
}

}  // namespace TarnLab
