// What the model answers, family by family. A family is one file that declares its commands, its
// direct requests and its settings; the list below names it.
#ifndef TARNLAB_FAMILY_H
#define TARNLAB_FAMILY_H

#include "LabCommand.h"
#include "LabDirect.h"
#include "LabSettings.h"
#include "LabTable.h"

namespace TarnLab {

struct Family {
  std::span<const CommandKind> commands = {};
  std::span<const DirectKind> requests = {};
  std::span<const Setting> settings = {};

  /// Gives a filter of a new host what it does not have as usual; most have nothing such.
  void (*fill)(const CommandContext& context) = nullptr;

  std::span<const Table> tables = {};
  std::span<const Table> hostTables = {};  // of the host instead of a filter
};

// Every family, one line each.
#define TARNLAB_FAMILIES(FAMILY)    \
  FAMILY(addrSetConfigFamily)       \
  FAMILY(addrSetFamily)             \
  FAMILY(addrSetReadingFamily)      \
  FAMILY(agentFamily)               \
  FAMILY(algFamily)                 \
  FAMILY(balancerFamily)            \
  FAMILY(connectionAttributeFamily) \
  FAMILY(connectionFamily)          \
  FAMILY(debugFamily)               \
  FAMILY(discoveryFamily)           \
  FAMILY(filterCreationFamily)      \
  FAMILY(filterFeatureFamily)       \
  FAMILY(filterListFamily)          \
  FAMILY(filterSettingsFamily)      \
  FAMILY(filterTableFamily)         \
  FAMILY(floodFamily)               \
  FAMILY(flowExclusionFamily)       \
  FAMILY(flowFamily)                \
  FAMILY(greFamily)                 \
  FAMILY(inspectionFamily)          \
  FAMILY(kifFamily)                 \
  FAMILY(memoryFamily)              \
  FAMILY(messageFamily)             \
  FAMILY(nameFamily)                \
  FAMILY(ployFamily)                \
  FAMILY(revalidationFamily)        \
  FAMILY(roundTripFamily)           \
  FAMILY(ruleReadingFamily)         \
  FAMILY(ruleSetFamily)             \
  FAMILY(serviceInsertionFamily)    \
  FAMILY(spoofGuardFamily)          \
  FAMILY(thresholdFamily)           \
  FAMILY(timeoutFamily)             \
  FAMILY(traceFamily)               \
  FAMILY(userFamily)

#define TARNLAB_DECLARE_FAMILY(name) extern const Family name;
TARNLAB_FAMILIES(TARNLAB_DECLARE_FAMILY)
#undef TARNLAB_DECLARE_FAMILY

/// The families in the order of the list.
std::span<const Family* const> families();

/// The command of that number, or the direct request of that device and number; null when the model
/// does not know it.
const CommandKind* findCommand(std::uint32_t number);
const DirectKind* findDirect(Device device, std::uint32_t number);

/// Fills every filter of a new host, or of one that is to be as new. Hold the lock.
void fillHost(const Store& store, const Host& host);

/// What the filter of a command, or the agent's shared sets, or without a filter the host, is set
/// to.
inline Settings settingsOf(const CommandContext& context) {
  return Settings::load(context.store, context.target.folder);
}

/// Hands these settings to `change`, for a status, and saves them when that is 0.
template <typename Change>
std::uint32_t changeSettings(const CommandContext& context, Change change) {
  Settings settings = settingsOf(context);
  const std::uint32_t status = change(settings);
  if (status == Status::ok) settings.save(context.store, context.target.folder);
  return status;
}

}  // namespace TarnLab

#endif
