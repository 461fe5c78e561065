// The flows of a filter as the lab keeps them: one file, with the flows in the groups in which they
// are fetched.
#ifndef TARNLAB_FLOW_FILE_H
#define TARNLAB_FLOW_FILE_H

#include <array>
#include <optional>

#include "LabFlowRecord.h"
#include "LabMappedFile.h"

namespace TarnLab {

/// Active flows are the connections of the filter. What has passed on layer 2 is kept with the
/// inactive flows, what was dropped there with the dropped ones.
inline constexpr std::size_t flowGroups = 3;
inline constexpr std::size_t activeGroup = 0, inactiveGroup = 1, dropGroup = 2;

constexpr std::size_t groupOfKind(unsigned kind) {
  if (kind == FlowRecord::active) return activeGroup;
  return kind == FlowRecord::drop || kind == FlowRecord::layer2Drop ? dropGroup : inactiveGroup;
}

/// Records of a group, without attributes, ordered by their ids.
using FlowGroups = std::array<ByteVector, flowGroups>;

class FlowFile {
 public:
  /// Nothing when the filter has no flows. Throws StoreError for a damaged file.
  static std::optional<FlowFile> open(const Store& store, const std::string& folder);

  /// Replaces the flows of a filter. Hold the lock.
  static void save(const Store& store, const std::string& folder, const FlowGroups& groups);

  std::uint32_t count(std::size_t group) const { return counts_[group]; }
  ConstBytes records(std::size_t group) const;
  ConstBytes record(std::size_t group, std::size_t place) const {
    return part(records(group), place * FlowRecord::size, FlowRecord::size);
  }

  /// The place of the first connection whose id is not below that one.
  std::size_t placeOfId(std::uint64_t id) const;

  /// A copy, to be changed and saved.
  FlowGroups copy() const;

 private:
  FlowFile(MappedFile file, std::array<std::uint32_t, flowGroups> counts)
      : file_(std::move(file)), counts_(counts) {}

  MappedFile file_;
  std::array<std::uint32_t, flowGroups> counts_;
};

/// Makes the flows of a filter of a fresh host: so many, the same for the same filter and number.
FlowGroups makeFlows(std::size_t filter, std::uint32_t count);

/// The rules that flows name. They are taken from the rules that the filter has at the time.
class FlowRules {
 public:
  /// Flows that no rule of the filter can have decided name this one.
  static constexpr std::uint32_t otherwise = 4095;

  FlowRules(const Store& store, const std::string& folder);

  std::uint32_t ruleOf(ConstBytes flow) const;

 private:
  std::array<std::vector<std::uint32_t>, 4> ids_;  // by what they decide, and on which layer
};

}  // namespace TarnLab

#endif
