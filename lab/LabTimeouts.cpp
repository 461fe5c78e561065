// Timeouts of a filter's connections: commands 41 and 42.
#include <array>

#include "LabFamily.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

// In the order of the record, with their usual seconds; the two of "adaptive" are numbers of
// connections.
constexpr std::array timeouts = {NumberSetting{"dfw.tcp.first_packet", 120},
                                 NumberSetting{"dfw.tcp.opening", 30},
                                 NumberSetting{"dfw.tcp.established", 43200},
                                 NumberSetting{"dfw.tcp.closing", 125},
                                 NumberSetting{"dfw.tcp.fin_wait", 45},
                                 NumberSetting{"dfw.tcp.closed", 20},
                                 NumberSetting{"dfw.udp.first_packet", 60},
                                 NumberSetting{"dfw.udp.single", 35},
                                 NumberSetting{"dfw.udp.multiple", 65},
                                 NumberSetting{"dfw.icmp.first_packet", 15},
                                 NumberSetting{"dfw.icmp.error_reply", 10},
                                 NumberSetting{"dfw.other.first_packet", 62},
                                 NumberSetting{"dfw.other.single", 32},
                                 NumberSetting{"dfw.other.multiple", 67},
                                 NumberSetting{"dfw.ip.frag", 31},
                                 NumberSetting{"dfw.interval", 11},
                                 NumberSetting{"dfw.adaptive_start", 60000},
                                 NumberSetting{"dfw.adaptive_end", 120000},
                                 NumberSetting{"dfw.src_node", 5},
                                 NumberSetting{"dfw.ts_diff", 33},
                                 NumberSetting{"dfw.invalid_state", 40},
                                 NumberSetting{"dfw.invalid_l7", 50}};
static_assert(timeouts.size() == 22);

constexpr std::size_t recordSize = 112;
constexpr Blob values{0, 4 * timeouts.size(), "values"};
constexpr Blob marks{88, timeouts.size(), "marks"};

bool marked(ConstBytes record, std::size_t id) { return get8(marks.get(record), id) != 0; }

std::uint32_t set(Context context, Body& body) {
  return changeSettings(context, [&](Settings& settings) {
    for (std::size_t id = 0; id < timeouts.size(); ++id) {
      if (marked(body, id)) settings.set(timeouts[id], get32(values.get(body), 4 * id));
    }
    return Status::ok;
  });
}

/// The marks come back as they were sent.
std::uint32_t get(Context context, Body& body) {
  const Settings settings = settingsOf(context);
  const Bytes reply = body.reply(0, recordSize);
  for (std::size_t id = 0; id < timeouts.size(); ++id) {
    const std::uint64_t value = marked(body, id) ? settings.get(timeouts[id]) : 0;
    put32(reply, values.offset + 4 * id, static_cast<std::uint32_t>(value));
  }
  return Status::ok;
}

std::vector<std::string> markedLines(ConstBytes record) {
  std::vector<std::string> lines;
  for (std::size_t id = 0; id < timeouts.size(); ++id) {
    if (!marked(record, id)) continue;
    lines.push_back(std::string(timeouts[id].name) +
                    format(" %u", get32(values.get(record), 4 * id)));
  }
  return lines;
}

constexpr RecordKind record{.lines = markedLines};

constexpr CommandKind commands[] = {
    {.number = 41,
     .least = recordSize,
     .answer = set,
     .request = {marks, Reserved{110, 2}},
     .list = {.record = &record, .inRequest = true}},
    {.number = 42,
     .least = recordSize,
     .answer = get,
     .request = {Reserved{0, 88}, marks, Reserved{110, 2}},
     .list = {.record = &record}},
};

constexpr auto settings = settingsIn(timeouts);

}  // namespace

constinit const Family timeoutFamily{.commands = commands, .settings = settings};

}  // namespace TarnLab
