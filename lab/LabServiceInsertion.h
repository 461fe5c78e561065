// What the host inserts into traffic: services, and the profiles that attach them to filters.
#ifndef TARNLAB_SERVICE_INSERTION_H
#define TARNLAB_SERVICE_INSERTION_H

#include <string>

#include "LabHost.h"

namespace TarnLab {

/// The id of the service profile of the filter with that folder; empty when it has none.
std::string serviceProfileOf(const Store& store, const std::string& folder);

/// Counts again how many profiles use each service instance, and takes away those that are marked
/// for deletion and not used any more. To be called when filters or profiles have gone. Hold the
/// lock.
void settleServiceInstances(const Store& store, const Host& host);

}  // namespace TarnLab

#endif
