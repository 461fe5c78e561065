#include "LabFamily.h"

namespace TarnLab {

std::span<const Family* const> families() {
#define TARNLAB_LIST_FAMILY(name) &(name),
  static constexpr const Family* all[] = {TARNLAB_FAMILIES(TARNLAB_LIST_FAMILY)};
#undef TARNLAB_LIST_FAMILY
  return all;
}

const CommandKind* findCommand(std::uint32_t number) {
  for (const Family* family : families()) {
    for (const CommandKind& kind : family->commands) {
      if (kind.number == number) return &kind;
    }
  }
  return nullptr;
}

const DirectKind* findDirect(Device device, std::uint32_t number) {
  for (const Family* family : families()) {
    for (const DirectKind& kind : family->requests) {
      if (kind.device == device && kind.number == number) return &kind;
    }
  }
  return nullptr;
}

void fillHost(const Store& store, const Host& host) {
  JournalEntry unwritten;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    const SelectedFilter target{SelectorMatch::filter, i, host.folderOf(i)};
    for (const Family* family : families()) {
      if (family->fill != nullptr) family->fill({store, host, target, unwritten});
    }
  }
}

const Setting* findSetting(std::string_view name) {
  for (const Family* family : families()) {
    for (const Setting& setting : family->settings) {
      if (setting.name == name) return &setting;
    }
  }
  return nullptr;
}

}  // namespace TarnLab
