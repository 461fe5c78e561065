// Domain names that a filter knows.
#ifndef TARNLAB_NAMES_H
#define TARNLAB_NAMES_H

#include <compare>
#include <string>
#include <vector>

#include "LabStore.h"

namespace TarnLab {

struct DomainName {
  std::string identifier, name;
  auto operator<=>(const DomainName&) const = default;
};

/// The names of the filter with that folder, address by address.
std::vector<DomainName> domainNames(const Store& store, const std::string& folder);

}  // namespace TarnLab

#endif
