// What a filter, or the host, is set to, beside its rules and address sets.
#ifndef TARNLAB_SETTINGS_H
#define TARNLAB_SETTINGS_H

#include <array>
#include <map>
#include <string>

#include "LabStore.h"

namespace TarnLab {

/// One setting as its family declares it, with the value that it has until it is set.
struct Setting {
  enum class Kind : std::uint8_t { flag, number, text, bytes };
  std::string_view name;  // letters, digits, dots, dashes and underlines
  Kind kind = Kind::flag;
  std::uint64_t number = 0;        // the usual value of a flag or a number
  std::string_view text = {};      // the usual value of a text; bytes are usually none
  const char* sentence = nullptr;  // for a flag that is on, as "tarnlab show" prints it
  std::string (*words)(ConstBytes bytes) = nullptr;  // for bytes, in the place of their digits
};

struct FlagSetting : Setting {
  constexpr FlagSetting(std::string_view called, const char* shown = nullptr, bool usually = false)
      : Setting{called, Kind::flag, usually ? 1u : 0u, {}, shown} {}
};

struct NumberSetting : Setting {
  constexpr explicit NumberSetting(std::string_view called, std::uint64_t usually = 0)
      : Setting{called, Kind::number, usually} {}
};

struct TextSetting : Setting {
  constexpr explicit TextSetting(std::string_view called, std::string_view usually = {})
      : Setting{called, Kind::text, 0, usually} {}
};

struct BytesSetting : Setting {
  constexpr explicit BytesSetting(std::string_view called,
                                  std::string (*toText)(ConstBytes bytes) = nullptr)
      : Setting{called, Kind::bytes, 0, {}, nullptr, toText} {}
};

/// The settings of one table after the other, as a family declares them.
template <typename... Kinds, std::size_t... counts>
constexpr auto settingsIn(const std::array<Kinds, counts>&... tables) {
  std::array<Setting, (counts + ...)> all{};
  std::size_t count = 0;
  const auto append = [&](const auto& table) {
    for (const Setting& setting : table) all[count++] = setting;
  };
  (append(tables), ...);
  return all;
}

/// The setting of that name; null when no family has it.
const Setting* findSetting(std::string_view name);

/// Kept in the file "settings" of the filter's folder, or of the lab's own for the host: a line for
/// each setting that has another value than usually, its name, a blank and the value.
class Settings {
 public:
  /// The folder of those that are the host's.
  static constexpr const char* ofHost = "";

  /// Throws StoreError for a file with a setting that is not known, or with a value that is none of
  /// its kind.
  static Settings load(const Store& store, const std::string& folder,
                       const Setting* (*known)(std::string_view name) = findSetting);

  /// Hold the lock.
  void save(const Store& store, const std::string& folder) const;

  bool get(const FlagSetting& setting) const { return number(setting) != 0; }
  std::uint64_t get(const NumberSetting& setting) const { return number(setting); }
  std::string get(const TextSetting& setting) const;
  ByteVector get(const BytesSetting& setting) const;

  void set(const FlagSetting& setting, bool value) { setNumber(setting, value ? 1 : 0); }
  void set(const NumberSetting& setting, std::uint64_t value) { setNumber(setting, value); }
  void set(const TextSetting& setting, std::string_view value);
  void set(const BytesSetting& setting, ConstBytes value);

  /// A line for each that has another value than usually, as "tarnlab show" prints them.
  std::vector<std::string> lines() const;

  /// A line for each whose name begins so, whatever its value.
  std::vector<std::string> linesOf(std::string_view beginning) const;

  static constexpr std::uint64_t fileLimit = std::uint64_t{16} << 20;

 private:
  std::uint64_t number(const Setting& setting) const;
  void setNumber(const Setting& setting, std::uint64_t value);
  void put(const Setting& setting, const std::string& value, bool usual);

  std::map<std::string, std::string, std::less<>> values_;  // as the file has them
};

}  // namespace TarnLab

#endif
