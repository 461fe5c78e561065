// Rule sets and address sets by their names: what the commands of both have in common.
#ifndef TARNLAB_SETS_H
#define TARNLAB_SETS_H

#include "LabCommand.h"
#include "LabSetFile.h"

namespace TarnLab {

/// A kind of set that a filter has any number of, one file each.
struct SetKind {
  const char* folder;     // in that of the filter
  std::uint32_t missing;  // the status when there is no such set
  const char* what;       // in the log's line then

  std::string folderOf(const CommandContext& context) const;
  std::string fileOf(const CommandContext& context, std::string_view name) const;

  /// The sets that have a name, in the order of their names.
  std::vector<std::string> names(const CommandContext& context) const;

  std::optional<SetFile> open(const CommandContext& context, std::string_view name) const {
    return SetFile::open(context.store, fileOf(context, name));
  }

  /// Refuses for want of the set.
  std::uint32_t refuse(const CommandContext& context, std::string_view name) const;

  /// Replaces the set. The marks of an address set are all zero when left out.
  void save(const CommandContext& context, std::string_view name, const SetHead& head,
            ConstBytes entries, ConstBytes marks = {}) const {
    SetFile::save(context.store, fileOf(context, name), head, entries, marks);
  }
};

/// Calls `use` with the set of that name, for a status; refuses when there is none.
template <typename Use>
std::uint32_t withSet(const CommandContext& context, const SetKind& kind, std::string_view name,
                      Use use) {
  const auto set = kind.open(context, name);
  return set ? use(*set) : kind.refuse(context, name);
}

}  // namespace TarnLab

#endif
