#include "LabJournal.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace TarnLab {

namespace {

// Head of an entry; note, selector, sent and answered bytes follow it.
constexpr std::uint32_t magic = 0x474f4c54;
constexpr std::size_t headSize = 96;
constexpr std::size_t atMagic = 0, atCheck = 4, atTime = 8, atProcess = 16, atThread = 20,
                      atProgram = 24, programSize = 16, atDevice = 40, atRequest = 44, atError = 48,
                      atNote = 52, atSelector = 56, atSent = 60, atAnswered = 64, atSize = 72;

/// Fowler, Noll and Vo's FNV-1a over the head behind the check itself.
std::uint32_t check(ConstBytes head) {
  std::uint32_t hash = 2166136261u;
  for (const std::byte b : head.subspan(atTime)) {
    hash = (hash ^ static_cast<std::uint32_t>(b)) * 16777619u;
  }
  return hash;
}

ByteVector take(ConstBytes& rest, std::size_t size) {
  const ConstBytes piece = part(rest, 0, size);
  rest = rest.subspan(size);
  return {piece.begin(), piece.end()};
}

/// Reads the entries of one file; false when the reader wants no more.
bool readFile(const Store& store, const char* name,
              const std::function<bool(const JournalEntry&)>& reader) {
  const Descriptor file = store.open(name);
  if (!file.valid()) return true;
  std::uint64_t at = 0;
  ByteVector head(headSize);
  ByteVector body;
  while (readAt(file.get(), head, at)) {
    const std::uint64_t size = std::uint64_t{get32(head, atNote)} + get32(head, atSelector) +
                               get32(head, atSent) + get32(head, atAnswered);
    if (get32(head, atMagic) != magic || get32(head, atCheck) != check(head) ||
        size > 4 * JournalEntry::keptLimit) {
      ++at;  // the end of an entry cut off: look for the next one
      continue;
    }
    body.resize(static_cast<std::size_t>(size));
    if (!readAt(file.get(), body, at + headSize)) return true;
    JournalEntry entry;
    entry.time = get64(head, atTime);
    entry.process = get32(head, atProcess);
    entry.thread = get32(head, atThread);
    entry.program = getText(head, atProgram, programSize);
    entry.device = static_cast<Device>(get8(head, atDevice));
    entry.request = get32(head, atRequest);
    entry.error = static_cast<int>(get32(head, atError));
    entry.size = get64(head, atSize);
    ConstBytes rest = body;
    const ByteVector note = take(rest, get32(head, atNote));
    entry.note.assign(reinterpret_cast<const char*>(note.data()), note.size());
    entry.selector = take(rest, get32(head, atSelector));
    entry.sent = take(rest, get32(head, atSent));
    entry.answered = take(rest, get32(head, atAnswered));
    if (!reader(entry)) return false;
    at += headSize + size;
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
  const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  if (!file.valid()) throw StoreError("cannot write " + path, errno);
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
  put64(head, atSize, entry.size);
  put32(head, atCheck, check(head));
  const auto piece = [](const auto& bytes) {
    return iovec{const_cast<void*>(static_cast<const void*>(bytes.data())), bytes.size()};
  };
  const iovec pieces[] = {piece(head), piece(entry.note), piece(entry.selector), piece(entry.sent),
                          piece(entry.answered)};
  if (::writev(file.get(), pieces, 5) < 0) throw StoreError("cannot write " + path, errno);

  struct stat status;
  if (::fstat(file.get(), &status) == 0 && static_cast<std::uint64_t>(status.st_size) > fileLimit) {
    ::rename(path.c_str(), store_.path("log.old").c_str());
  }
}

void Journal::read(const std::function<bool(const JournalEntry&)>& reader) const {
  if (readFile(store_, "log.old", reader)) readFile(store_, "log", reader);
}

void Journal::clear() const {
  store_.remove("log.old");
  store_.remove("log");
}

}  // namespace TarnLab
