// What a filter writes to the kernel's log: commands 32 to 34.
#include <array>

#include "LabFamily.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

constexpr NumberSetting dataPath{"verbose.dp"}, controlPath{"verbose.cp"};

// The level of each component, in the order of their numbers.
constexpr std::array components = {
    NumberSetting{"debug.fastpath"}, NumberSetting{"debug.rule"},     NumberSetting{"debug.table"},
    NumberSetting{"debug.icmp"},     NumberSetting{"debug.tcp"},      NumberSetting{"debug.udp"},
    NumberSetting{"debug.ioctl"},    NumberSetting{"debug.norm"},     NumberSetting{"debug.rpc"},
    NumberSetting{"debug.ftp"},      NumberSetting{"debug.oracle"},   NumberSetting{"debug.tftp"},
    NumberSetting{"debug.ospf"},     NumberSetting{"debug.msg2pf"},   NumberSetting{"debug.layer7"},
    NumberSetting{"debug.layer4"},   NumberSetting{"debug.layer3"},   NumberSetting{"debug.layer2"},
    NumberSetting{"debug.skiffer"},  NumberSetting{"debug.syncache"}, NumberSetting{"debug.lb"}};
static_assert(components.size() == 21);
constexpr std::uint32_t all = 255;

constexpr U16 component{0, "component"};
constexpr Bits level{3, 0x0f, "level"};
constexpr FieldList request{component, Reserved{2, 1}, level, Reserved{3, 1, nullptr, 0xf0}};

std::uint32_t refuseComponent(Context context, const Body& body) {
  return context.refuse(Status::invalidArgument, format("component %u", component.get(body)));
}

std::uint32_t setVerbose(Context context, Body& body) {
  const unsigned which = component.get(body);
  if (which != 1 && which != 2) return refuseComponent(context, body);
  return changeSettings(context, [&](Settings& settings) {
    settings.set(which == 1 ? dataPath : controlPath, level.get(body));
    return Status::ok;
  });
}

std::uint32_t setLevel(Context context, Body& body) {
  const unsigned which = component.get(body);
  if (which >= components.size() && which != all) return refuseComponent(context, body);
  return changeSettings(context, [&](Settings& settings) {
    for (std::size_t i = 0; i < components.size(); ++i) {
      if (which == all || which == i) settings.set(components[i], level.get(body));
    }
    return Status::ok;
  });
}

// One byte for each component, and how many there are.
constexpr std::size_t statusSize = 23;
constexpr Blob levels{0, components.size(), "levels"};
constexpr U8 count{21, "components"};

std::uint32_t getLevels(Context context, Body& body) {
  if (count.get(body) != components.size()) {
    return context.refuse(Status::badMessage, format("%u components", count.get(body)));
  }
  const Settings settings = settingsOf(context);
  const Bytes reply = placeOf(body, levels);
  for (std::size_t i = 0; i < components.size(); ++i) {
    put8(reply, i, static_cast<std::uint8_t>(settings.get(components[i])));
  }
  return Status::ok;
}

constexpr CommandKind commands[] = {
    {.number = 32, .least = 4, .answer = setVerbose, .request = request},
    {.number = 33, .least = 4, .answer = setLevel, .request = request},
    {.number = 34,
     .least = statusSize,
     .answer = getLevels,
     .request = {Reserved{0, 21}, count, Reserved{22, 1}},
     .reply = {levels}},
};

constexpr auto settings = settingsIn(std::array{dataPath, controlPath}, components);

}  // namespace

constinit const Family debugFamily{.commands = commands, .settings = settings};

}  // namespace TarnLab
