// What a filter is set to, beside its rules and address sets.
#ifndef TARNLAB_SETTINGS_H
#define TARNLAB_SETTINGS_H

#include "LabStore.h"

namespace TarnLab {

/// Kept in the file "settings" of the filter's folder; a filter without one has these values.
struct Settings {
  bool sharedAddrSets = false;
  bool addrSetStatistics = false;

  static Settings load(const Store& store, const std::string& folder);

  /// Hold the lock.
  void save(const Store& store, const std::string& folder) const;
};

}  // namespace TarnLab

#endif
