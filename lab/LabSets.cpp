#include "LabSets.h"

#include "LabSelector.h"

namespace TarnLab {

std::string SetKind::folderOf(const CommandContext& context) const {
  return context.target.folder + "/" + folder;
}

std::string SetKind::fileOf(const CommandContext& context, std::string_view name) const {
  return folderOf(context) + "/" + Selector::fileName(name);
}

std::vector<std::string> SetKind::names(const CommandContext& context) const {
  std::vector<std::string> found;
  for (const std::string& file : context.store.list(folderOf(context))) {
    if (std::string name = Selector::nameOfFile(file); !name.empty()) {
      found.push_back(std::move(name));
    }
  }
  return found;
}

std::uint32_t SetKind::refuse(const CommandContext& context, std::string_view name) const {
  return context.refuse(missing, "there is no " + std::string(what) + " " + printable(name));
}

}  // namespace TarnLab
