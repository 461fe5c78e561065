#pragma once

/// Commands that callers of the flat functions build in steps: make one, add to it, send it, give
/// it back.

#include <cstdint>
#include <map>
#include <memory>

#include "Locks.h"

namespace TarnFirewall {

/// A number that no other handle of the process has or had, so that a handle that was given back
/// never stands for a later command.
std::uintptr_t nextStepHandle();

/// The live commands of one class, by the handles that stand for them outside. A handle is no
/// address: what a caller passes is looked up, and one that is null, of another kind or given back
/// finds nothing. Any thread may call these functions; one command is used by one thread at a time.
template <typename Command, typename Handle>
class CTarnFWLibSteps {
 public:
  static CTarnFWLibSteps& GetInstance() {
    return *Locks::onlyInstance<CTarnFWLibSteps>([] { return new CTarnFWLibSteps; });
  }

  /// Keeps the command until its handle is released.
  Handle* add(std::shared_ptr<Command> command) {
    const std::uintptr_t handle = nextStepHandle();
    const Locks::Guard lock(mutex_);
    commands_.emplace(handle, std::move(command));
    return reinterpret_cast<Handle*>(handle);
  }

  /// The command of a handle, null when there is none. It lives as long as the caller holds it,
  /// also when another thread releases the handle meanwhile.
  std::shared_ptr<Command> find(const Handle* handle) {
    const Locks::Guard lock(mutex_);
    const auto at = commands_.find(reinterpret_cast<std::uintptr_t>(handle));
    return at == commands_.end() ? nullptr : at->second;
  }

  /// False when there is no such command.
  bool release(const Handle* handle) {
    const Locks::Guard lock(mutex_);
    return commands_.erase(reinterpret_cast<std::uintptr_t>(handle)) != 0;
  }

 private:
  CTarnFWLibSteps() = default;

  Locks::Mutex mutex_;
  std::map<std::uintptr_t, std::shared_ptr<Command>> commands_;
};

}  // namespace TarnFirewall
