#include "LabSettings.h"

#include <cerrno>

namespace TarnLab {

namespace {

constexpr std::size_t size = 64, atShared = 0, atStatistics = 1;

}  // namespace

Settings Settings::load(const Store& store, const std::string& folder) {
  Settings settings;
  const auto content = store.read(folder + "/settings", size);
  if (!content) return settings;
  if (content->size() != size) {
    throw StoreError("damaged file " + store.path(folder + "/settings"), EINVAL);
  }
  settings.sharedAddrSets = get8(*content, atShared) != 0;
  settings.addrSetStatistics = get8(*content, atStatistics) != 0;
  return settings;
}

void Settings::save(const Store& store, const std::string& folder) const {
  ByteVector content(size);
  put8(content, atShared, sharedAddrSets ? 1 : 0);
  put8(content, atStatistics, addrSetStatistics ? 1 : 0);
  store.replace(folder + "/settings", {content});
}

}  // namespace TarnLab
