#include "LabSetFile.h"

#include <cerrno>
#include <ctime>

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
  auto mapped = MappedFile::open(store, file);
  if (!mapped) return std::nullopt;
  const ConstBytes bytes = mapped->bytes();
  const StoreError damaged("damaged file " + store.path(file), EINVAL);
  if (bytes.size() < SetHead::size) throw damaged;
  SetHead head = SetHead::decode(bytes);
  const std::uint64_t rest = bytes.size() - SetHead::size;
  if (getText(bytes, 0, magic.size()) != magic || head.entryBytes > rest ||
      markBytes(head) != rest - head.entryBytes || !countsAgree(head)) {
    throw damaged;
  }
  return SetFile(std::move(head), std::move(*mapped));
}

ConstBytes SetFile::entries() const {
  return part(file_.bytes(), SetHead::size, static_cast<std::size_t>(head_.entryBytes));
}

ConstBytes SetFile::marks() const {
  return file_.bytes().subspan(SetHead::size + static_cast<std::size_t>(head_.entryBytes));
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
