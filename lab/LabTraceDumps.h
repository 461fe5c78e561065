// What the host daemon writes out of what the host holds.
#ifndef TARNLAB_TRACE_DUMPS_H
#define TARNLAB_TRACE_DUMPS_H

#include <string>

#include "LabHost.h"

namespace TarnLab::TraceDumps {

// Texts.
std::string rules(const Store& store, const Host& host);
std::string spoofGuards(const Store& store, const Host& host);
std::string filters(const Store& store, const Host& host);
std::string flows(const Store& store, const Host& host);
std::string global(const Store& store, const Host& host);
std::string containers(const Store& store, const Host& host);
std::string serviceProfiles(const Store& store, const Host& host);
std::string serviceInstances(const Store& store, const Host& host);
std::string applications(const Store& store, const Host& host);
std::string monitors(const Store& store, const Host& host);
std::string timeouts(const Store& store, const Host& host);
std::string topics(const Store& store, const Host& host);
std::string ploy(const Store& store, const Host& host);
std::string machines(const Store& store, const Host& host);
std::string threads(const Store& store, const Host& host);

// Bytes: the records one after the other, as the kernel has them.
std::string storedRules(const Store& store, const Host& host);
std::string storedSpoofGuards(const Store& store, const Host& host);
std::string storedFilters(const Host& host);

/// The last message that the firewall device got; empty when there was none.
std::string lastMessage(const Store& store);

}  // namespace TarnLab::TraceDumps

#endif
