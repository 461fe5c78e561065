#include "LabSetFile.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>
#include <utility>

#include "LabAddressRecord.h"
#include "LabChain.h"
#include "LabRuleRecord.h"

namespace TarnLab {

namespace {

constexpr std::string_view magic = "TARNSET1";
constexpr std::size_t atWhat = 8, atCounts = 12, atType = 24, atAddressType = 28, atStatistics = 32,
                      atCleared = 36, atEntryBytes = 40, atRealized = 48, atGeneration = 56,
                      atJump = 64, jumpSize = 64;

/// How many bytes of marks follow the entries.
std::uint64_t markBytes(const SetHead& head) {
  return head.what == SetHead::addrSet && head.type == 1 ? head.counts[0] : 0;
}

/// Whether the entries are as many as the head says. Those of a container say themselves how many
/// they are.
bool countsAgree(const SetHead& head) {
  std::uint64_t count = 0;
  for (const std::uint32_t each : head.counts) count += each;
  if (head.what == SetHead::ruleSet) return head.entryBytes == count * RuleRecord::size;
  if (head.what != SetHead::addrSet) return false;
  if (head.type == 1) return head.entryBytes == count * AddressRecord::size;
  return head.entryBytes >= Chain::headSize;
}

}  // namespace

std::uint64_t bootSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<std::uint64_t>(now.tv_sec);
}

void SetHead::touch() {
  ++generation;
  realized = bootSeconds();
}

ByteVector SetHead::encode() const {
  ByteVector head(size);
  std::memcpy(head.data(), magic.data(), magic.size());
  put32(head, atWhat, what);
  for (std::size_t i = 0; i < 3; ++i) put32(head, atCounts + 4 * i, counts[i]);
  put32(head, atType, type);
  put32(head, atAddressType, addressType);
  put32(head, atStatistics, statistics);
  put32(head, atCleared, cleared);
  put64(head, atEntryBytes, entryBytes);
  put64(head, atRealized, realized);
  put64(head, atGeneration, generation);
  putText(head, atJump, jumpSize, jump);
  return head;
}

SetHead SetHead::decode(ConstBytes bytes) {
  SetHead head;
  head.what = get32(bytes, atWhat);
  for (std::size_t i = 0; i < 3; ++i) head.counts[i] = get32(bytes, atCounts + 4 * i);
  head.type = get32(bytes, atType);
  head.addressType = get32(bytes, atAddressType);
  head.statistics = get32(bytes, atStatistics);
  head.cleared = get32(bytes, atCleared);
  head.entryBytes = get64(bytes, atEntryBytes);
  head.realized = get64(bytes, atRealized);
  head.generation = get64(bytes, atGeneration);
  head.jump = getText(bytes, atJump, jumpSize);
  return head;
}

std::optional<SetFile> SetFile::open(const Store& store, const std::string& file) {
  const Descriptor opened = store.open(file);
  if (!opened.valid()) return std::nullopt;
  struct stat status;
  if (::fstat(opened.get(), &status) != 0) throw StoreError("cannot read " + file, errno);
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size < SetHead::size) throw StoreError("damaged file " + store.path(file), EINVAL);
  void* map = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, opened.get(), 0);
  if (map == MAP_FAILED) throw StoreError("cannot read " + store.path(file), errno);
  const ConstBytes bytes(static_cast<const std::byte*>(map), size);
  SetFile set(SetHead::decode(bytes), bytes.data(), size);
  const std::uint64_t rest = size - SetHead::size;
  if (getText(bytes, 0, magic.size()) != magic || set.head_.entryBytes > rest ||
      markBytes(set.head_) != rest - set.head_.entryBytes || !countsAgree(set.head_)) {
    throw StoreError("damaged file " + store.path(file), EINVAL);
  }
  return set;
}

SetFile::SetFile(SetFile&& other) noexcept
    : head_(std::move(other.head_)), map_(std::exchange(other.map_, nullptr)), size_(other.size_) {}

SetFile& SetFile::operator=(SetFile&& other) noexcept {
  std::swap(head_, other.head_);
  std::swap(map_, other.map_);
  std::swap(size_, other.size_);
  return *this;
}

SetFile::~SetFile() {
  if (map_ != nullptr) ::munmap(const_cast<std::byte*>(map_), size_);
}

ConstBytes SetFile::entries() const {
  return {map_ + SetHead::size, static_cast<std::size_t>(head_.entryBytes)};
}

ConstBytes SetFile::marks() const {
  return {map_ + SetHead::size + head_.entryBytes, static_cast<std::size_t>(markBytes(head_))};
}

void SetFile::save(const Store& store, const std::string& file, const SetHead& head,
                   ConstBytes entries, ConstBytes marks) {
  ByteVector none;
  if (marks.size() != markBytes(head)) {
    none.resize(static_cast<std::size_t>(markBytes(head)));
    marks = none;
  }
  store.replace(file, {head.encode(), entries, marks});
}

}  // namespace TarnLab
