#include "LabFlowFile.h"

#include <cerrno>

namespace TarnLab {

namespace {

// The head: a magic text, and the number of records in each group. The records follow it.
constexpr std::string_view magic = "TARNFLW1";
constexpr std::size_t headSize = 64, headCounts = 8;

std::string fileOf(const std::string& folder) { return folder + "/flows"; }

}  // namespace

std::optional<FlowFile> FlowFile::open(const Store& store, const std::string& folder) {
  auto mapped = MappedFile::open(store, fileOf(folder));
  if (!mapped) return std::nullopt;
  const ConstBytes bytes = mapped->bytes();
  const StoreError damaged("damaged file " + store.path(fileOf(folder)), EINVAL);
  if (bytes.size() < headSize || getText(bytes, 0, magic.size()) != magic) throw damaged;
  std::array<std::uint32_t, flowGroups> counts{};
  std::uint64_t size = headSize;
  for (std::size_t group = 0; group < flowGroups; ++group) {
    counts[group] = get32(bytes, headCounts + 4 * group);
    size += std::uint64_t{counts[group]} * FlowRecord::size;
  }
  if (size != bytes.size()) throw damaged;
  return FlowFile(std::move(*mapped), counts);
}

void FlowFile::save(const Store& store, const std::string& folder, const FlowGroups& groups) {
  ByteVector head(headSize);
  std::memcpy(head.data(), magic.data(), magic.size());
  for (std::size_t group = 0; group < flowGroups; ++group) {
    put32(head, headCounts + 4 * group,
          static_cast<std::uint32_t>(groups[group].size() / FlowRecord::size));
  }
  store.replace(fileOf(folder), {head, groups[0], groups[1], groups[2]});
}

ConstBytes FlowFile::records(std::size_t group) const {
  std::size_t before = 0;
  for (std::size_t i = 0; i < group; ++i) before += counts_[i];
  return part(file_.bytes(), headSize + before * FlowRecord::size,
              std::size_t{counts_[group]} * FlowRecord::size);
}

std::size_t FlowFile::placeOfId(std::uint64_t id) const {
  std::size_t low = 0;
  std::size_t high = count(activeGroup);
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    if (FlowRecord::id.get(record(activeGroup, middle)) < id) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

FlowGroups FlowFile::copy() const {
  FlowGroups groups;
  for (std::size_t group = 0; group < flowGroups; ++group) {
    const ConstBytes bytes = records(group);
    groups[group].assign(bytes.begin(), bytes.end());
  }
  return groups;
}

}  // namespace TarnLab
