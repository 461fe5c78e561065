#pragma once

/// What a filter of this host holds, read by the library's flat functions. What the kernel answers
/// is untrusted: counts are bounds that may be wrong, names may hold anything.

#include <memory>
#include <string>

#include "State.h"
#include "tarnfw.h"

namespace TarnFirewall {
class CTarnFWLibHandle;
}

/// The library on the control device, while it lives. `StateError` when there is none.
class FilterLibrary {
 public:
  FilterLibrary();
  ~FilterLibrary();
  FilterLibrary(const FilterLibrary&) = delete;
  FilterLibrary& operator=(const FilterLibrary&) = delete;

  fwlibhandle_* handle() const;

 private:
  std::unique_ptr<TarnFirewall::CTarnFWLibHandle> library_;
};

/// A filter's name as an option or operand gives it. Throws `CallError` for one that is empty or
/// too long.
std::string givenFilter(const char* text);

/// The selector of a filter by its name, as `-f` of `tarnioctl` takes it. Throws `StateError` for a
/// name that is too long.
dvs_port_ filterSelector(const std::string& name);

/// Why the library or the kernel failed, for the end of a sentence.
std::string statusReason(TarnFirewall::FWStatus_t status);

/// Most entries that are read from one filter; one that says it has more is not believed.
inline constexpr std::uint32_t kMostSets = 1000000;
inline constexpr std::uint32_t kMostRules = 4000000;
inline constexpr std::uint32_t kMostAddresses = 16000000;
inline constexpr std::uint32_t kMostElementBytes = 64u << 20;

/// What becomes of a rule set that the kernel is purging, or whose state it does not say: it is not
/// there, or no state can be told without it.
enum class PurgedRuleSets { leaveOut, refuse };

/// Everything that the filter holds. A filter that changes while it is read is read again, three
/// times in all. Throws `StateError` with the question that failed and why; `name` stands in it.
State stateOfFilter(fwlibhandle_* library, const dvs_port_& port, const std::string& name,
                    PurgedRuleSets purged = PurgedRuleSets::leaveOut);

/// The same by name.
State stateOfFilter(const std::string& name);
