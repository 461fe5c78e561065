#include "FlowDpi.h"

#include <algorithm>

#include "TarnFWWire.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kRecord = 136;

}  // namespace

std::map<std::uint64_t, std::string>& attrmap() {
  static std::map<std::uint64_t, std::string> texts;
  return texts;
}

std::string DpiString(std::uint64_t flowId) {
  const auto& texts = attrmap();
  if (texts.empty()) return {};
  const auto place = texts.find(flowId);
  return place != texts.end() ? place->second : std::string();
}

void populateFlows(std::span<const std::byte> records, std::size_t count) {
  for (count = std::min(count, records.size() / kRecord); count != 0; --count) {
    const auto id = loadRecord<host64>(records.data());
    const auto* const field = reinterpret_cast<const char*>(records.data() + sizeof id);
    const std::string text(field, fieldLength(field, kRecord - sizeof id));
    std::string result;
    std::vector<std::uint32_t> numbers;
    std::vector<std::string> texts;
    getDPIString(true, text.c_str(), result, numbers, texts);
    attrmap()[id] = result;
    records = records.subspan(kRecord);
  }
}

int getDPIString(bool, const char*, std::string&, std::vector<std::uint32_t>&,
                 std::vector<std::string>&) {
  return 1;
}
