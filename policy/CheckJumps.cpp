#include "CheckJumps.h"

#include <set>
#include <string>

#include "ShownText.h"

namespace {

/// Names at each end of a longer circle that a message shows.
constexpr std::size_t kShownAtAnEnd = 4;

/// The place of a rule set whose jumps have all been followed.
constexpr std::size_t kDone = static_cast<std::size_t>(-1);

}  // namespace

void JumpCheck::setOfRules(std::string_view from, std::vector<PlacedName> targets) {
  const auto place = jumps_.find(from);
  if (place != jumps_.end()) {
    place->second.ofRules = std::move(targets);
  } else if (!targets.empty()) {
    jumps_[from].ofRules = std::move(targets);
  }
}

void JumpCheck::set(std::string_view from, const PlacedName& target) { jumps_[from].own = target; }

void JumpCheck::clear(std::string_view from) {
  if (const auto place = jumps_.find(from); place != jumps_.end()) place->second.own.reset();
}

void JumpCheck::destroy(std::string_view from) { jumps_.erase(from); }

void JumpCheck::destroyAll() {
  // An empty table keeps its room, which clearing it would go through each time.
  if (!jumps_.empty()) jumps_ = {};
}

const PlacedName* JumpCheck::Jumps::at(std::size_t number) const {
  if (number < ofRules.size()) return &ofRules[number];
  return number == ofRules.size() && own ? &*own : nullptr;
}

/// The names on the way from `begin` on, and the first of them once more.
std::string JumpCheck::circleText(const std::vector<Step>& way, std::size_t begin) {
  std::string text;
  for (std::size_t i = begin; i < way.size(); ++i) {
    if (i == begin + kShownAtAnEnd && way.size() - i > kShownAtAnEnd) {
      text += "..., ";
      i = way.size() - kShownAtAnEnd;
    }
    text += quotedWord(way[i].name) + ", ";
  }
  return text + quotedWord(way[begin].name);
}

/// Follows the jumps from each rule set; each is gone through once.
void JumpCheck::finish(Diagnostics& diagnostics) const {
  std::unordered_map<std::string_view, std::size_t> places;  // on the way, or done
  std::set<std::string_view> starts;
  for (const auto& [name, jumps] : jumps_) starts.insert(name);
  for (const std::string_view start : starts) {
    if (!places.emplace(start, 0).second) continue;
    std::vector<Step> way = {{start}};
    while (!way.empty()) {
      Step& step = way.back();
      const auto jumps = jumps_.find(step.name);
      const PlacedName* const jump =
          jumps == jumps_.end() ? nullptr : jumps->second.at(step.next++);
      if (jump == nullptr) {
        places[step.name] = kDone;
        way.pop_back();
        continue;
      }
      const auto [place, isNew] = places.emplace(jump->text, way.size());
      if (isNew) {
        way.push_back({jump->text});
      } else if (place->second != kDone) {
        diagnostics.add(
            {.check = Check::jumpCircle,
             .range = jump->range,
             .message = "the jumps lead in a circle: " + circleText(way, place->second)});
      }
    }
  }
}
