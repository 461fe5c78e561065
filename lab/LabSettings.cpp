#include "LabSettings.h"

#include <cerrno>

#include "LabFamily.h"
#include "LabText.h"

namespace TarnLab {

namespace {

std::string fileOf(const std::string& folder) {
  return folder.empty() ? "settings" : folder + "/settings";
}

std::string digitsOf(ConstBytes bytes) {
  std::string text;
  for (const std::byte byte : bytes) text += format("%02x", static_cast<unsigned>(byte));
  return text;
}

/// The bytes that hexadecimal digits stand for; nothing for anything else.
std::optional<ByteVector> bytesOf(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  ByteVector bytes;
  for (; !digits.empty(); digits.remove_prefix(2)) {
    const auto value = parseNumber("0x" + std::string(digits.substr(0, 2)), 0xff);
    if (!value) return std::nullopt;
    bytes.push_back(static_cast<std::byte>(*value));
  }
  return bytes;
}

/// The text that printable() has written so; nothing when it did not.
std::optional<std::string> textOf(std::string_view written) {
  std::string text;
  while (!written.empty()) {
    std::size_t taken = 1;
    text += written[0];
    if (written[0] == '\\') {
      const auto byte = parseNumber("0" + std::string(written.substr(1, 3)), 0xff);
      if (written.size() < 4 || written[1] != 'x' || !byte) return std::nullopt;
      text.back() = static_cast<char>(*byte);
      taken = 4;
    }
    written.remove_prefix(taken);
  }
  return text;
}

bool isValueOf(const Setting& setting, std::string_view value) {
  switch (setting.kind) {
    case Setting::Kind::flag:
      return value == "on" || value == "off";
    case Setting::Kind::number:
      return parseNumber(value, ~0ull).has_value();
    case Setting::Kind::text: {
      const auto text = textOf(value);
      return text && printable(*text) == value;
    }
    case Setting::Kind::bytes:
      return bytesOf(value).has_value();
  }
  return false;
}

}  // namespace

Settings Settings::load(const Store& store, const std::string& folder,
                        const Setting* (*known)(std::string_view name)) {
  Settings settings;
  const auto content = store.read(fileOf(folder), fileLimit);
  if (!content) return settings;
  const StoreError damaged("damaged file " + store.path(fileOf(folder)), EINVAL);
  std::string_view rest(reinterpret_cast<const char*>(content->data()), content->size());
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    if (end == std::string_view::npos) throw damaged;
    const std::string_view line = rest.substr(0, end);
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) throw damaged;
    const Setting* setting = known(line.substr(0, blank));
    const std::string_view value = line.substr(blank + 1);
    if (setting == nullptr || !isValueOf(*setting, value) ||
        !settings.values_.emplace(setting->name, value).second) {
      throw damaged;
    }
    rest.remove_prefix(end + 1);
  }
  return settings;
}

void Settings::save(const Store& store, const std::string& folder) const {
  if (values_.empty()) {
    store.remove(fileOf(folder));
    return;
  }
  std::string text;
  for (const auto& [name, value] : values_) text += name + " " + value + "\n";
  const auto bytes = std::as_bytes(std::span<const char>(text));
  store.replace(fileOf(folder), {bytes});
}

void Settings::put(const Setting& setting, const std::string& value, bool usual) {
  values_.erase(std::string(setting.name));
  if (!usual) values_.emplace(setting.name, value);
}

std::uint64_t Settings::number(const Setting& setting) const {
  const auto found = values_.find(setting.name);
  if (found == values_.end()) return setting.number;
  if (setting.kind == Setting::Kind::flag) return found->second == "on" ? 1 : 0;
  return parseNumber(found->second, ~0ull).value_or(setting.number);
}

void Settings::setNumber(const Setting& setting, std::uint64_t value) {
  const bool flag = setting.kind == Setting::Kind::flag;
  put(setting,
      flag ? (value != 0 ? "on" : "off") : format("%llu", static_cast<unsigned long long>(value)),
      value == setting.number);
}

std::string Settings::get(const TextSetting& setting) const {
  const auto found = values_.find(setting.name);
  return found == values_.end() ? std::string(setting.text) : textOf(found->second).value_or("");
}

void Settings::set(const TextSetting& setting, std::string_view value) {
  put(setting, printable(value), value == setting.text);
}

ByteVector Settings::get(const BytesSetting& setting) const {
  const auto found = values_.find(setting.name);
  return found == values_.end() ? ByteVector() : bytesOf(found->second).value_or(ByteVector());
}

void Settings::set(const BytesSetting& setting, ConstBytes value) {
  put(setting, digitsOf(value), value.empty());
}

namespace {

/// A setting and its value as the file has it, as one line.
std::string lineOf(const Setting& setting, const std::string& value) {
  constexpr std::size_t shownDigits = 64;
  if (setting.sentence != nullptr && value == "on") return setting.sentence;
  std::string shown = value;
  if (setting.kind == Setting::Kind::text) shown = "\"" + value + "\"";
  if (setting.kind == Setting::Kind::bytes && value.empty()) {
    shown = "none";
  } else if (setting.words != nullptr) {
    shown = setting.words(bytesOf(value).value_or(ByteVector()));
  } else if (setting.kind == Setting::Kind::bytes && value.size() > shownDigits) {
    shown = value.substr(0, shownDigits) + format("... (%zu bytes)", value.size() / 2);
  }
  return std::string(setting.name) + ": " + shown;
}

/// The usual value of a setting, as the file would have it; the number of those that have none of
/// their own is the largest one.
std::string usualValue(const Setting& setting) {
  switch (setting.kind) {
    case Setting::Kind::flag:
      return setting.number != 0 ? "on" : "off";
    case Setting::Kind::number:
      if (setting.number == ~0ull) return "as made";
      return format("%llu", static_cast<unsigned long long>(setting.number));
    case Setting::Kind::text:
      return printable(setting.text);
    case Setting::Kind::bytes:
      break;
  }
  return "";
}

}  // namespace

std::vector<std::string> Settings::lines() const {
  std::vector<std::string> shown;
  for (const Family* family : families()) {
    for (const Setting& setting : family->settings) {
      const auto found = values_.find(setting.name);
      if (found != values_.end()) shown.push_back(lineOf(setting, found->second));
    }
  }
  return shown;
}

std::vector<std::string> Settings::linesOf(std::string_view beginning) const {
  std::vector<std::string> shown;
  for (const Family* family : families()) {
    for (const Setting& setting : family->settings) {
      if (!setting.name.starts_with(beginning)) continue;
      const auto found = values_.find(setting.name);
      shown.push_back(
          lineOf(setting, found != values_.end() ? found->second : usualValue(setting)));
    }
  }
  return shown;
}

}  // namespace TarnLab
