// The interface of a filter: its flags, the fast path, strict TCP and its counters. Commands 29,
// 30, 39, 40, 58, 59 and 68.
#include <array>

#include "LabFamily.h"
#include "LabStatistics.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

constexpr FlagSetting fastPath{"kif.fast-path", nullptr, true};
constexpr FlagSetting tcpStrict{"kif.tcp-strict", "TCP is followed strictly"};

// The flags by name. They stand in a record where their places say, and nothing between them.
struct KifFlag {
  std::size_t place;
  const char* name;
  FlagSetting setting;
};
constexpr KifFlag flags[] = {
    {0, "fast_path", fastPath},
    {1, "tcp_strict", tcpStrict},
    {2, "export_flows", FlagSetting{"kif.export-flows", nullptr, true}},
    {4, "log_invalid", FlagSetting{"kif.log-invalid"}},
    {5, "reassemble", FlagSetting{"kif.reassemble", nullptr, true}},
    {31, "drop_ip_options", FlagSetting{"kif.drop-ip-options"}},
};

// The record of the flags, 1316 bytes.
constexpr std::size_t flagPlaces = 32, nameSize = 40, recordSize = 1316;
constexpr Hex32 mask{0, "flags"};
constexpr Blob names{4, flagPlaces* nameSize, "names"};
constexpr Blob values{1284, flagPlaces, "values"};

// A request to set one has it in the first place.
constexpr Name flagName{4, nameSize, "flag", "kif flag"};
constexpr U8 flagValue{1284, "value"};

std::uint32_t getFlags(Context context, Body& body) {
  const Settings settings = settingsOf(context);
  const Bytes reply = body.reply(0, recordSize);
  std::uint32_t bits = 0;
  for (const KifFlag& flag : flags) {
    const bool on = settings.get(flag.setting);
    if (on) bits |= 1u << flag.place;
    putText(reply, names.offset + flag.place * nameSize, nameSize, flag.name);
    put8(reply, values.offset + flag.place, on ? 1 : 0);
  }
  mask.put(body, bits);
  return Status::ok;
}

std::uint32_t setFlag(Context context, Body& body) {
  const unsigned wanted = flagValue.get(body);
  if (wanted > 1) return context.refuse(Status::invalidArgument, format("value %u", wanted));
  for (const KifFlag& flag : flags) {
    if (flagName.get(body) != flag.name) continue;
    return changeSettings(context, [&](Settings& settings) {
      settings.set(flag.setting, wanted == 1);
      return Status::ok;
    });
  }
  return context.refuse(Status::invalidArgument,
                        "there is no flag " + printable(flagName.get(body)));
}

std::vector<std::string> flagLines(ConstBytes record) {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < flagPlaces; ++i) {
    const std::string_view name = getText(record, names.offset + i * nameSize, nameSize);
    if (name.empty()) continue;
    lines.push_back(std::string(name) + format(" %u", get8(record, values.offset + i)));
  }
  return lines;
}

// The fast path: mode 1 reads it, mode 0 sets it.
constexpr U32 fast{0, "value"}, mode{4, "mode"};

std::uint32_t fastPathFlag(Context context, Body& body) {
  if (mode.get(body) > 1) {
    return context.refuse(Status::invalidArgument, format("mode %u", mode.get(body)));
  }
  if (mode.get(body) == 1) {
    fast.put(body, settingsOf(context).get(fastPath) ? 1u : 0u);
    return Status::ok;
  }
  const std::uint32_t wanted = fast.get(body);
  if (wanted > 1) return context.refuse(Status::invalidArgument, format("value %u", wanted));
  return changeSettings(context, [&](Settings& settings) {
    settings.set(fastPath, wanted == 1);
    fast.put(body, wanted);
    return Status::ok;
  });
}

constexpr U32 strict{0, "strict"};

std::uint32_t setStrict(Context context, Body& body) {
  const std::uint32_t wanted = strict.get(body);
  if (wanted > 1) return context.refuse(Status::invalidArgument, format("strict %u", wanted));
  return changeSettings(context, [&](Settings& settings) {
    settings.set(tcpStrict, wanted == 1);
    return Status::ok;
  });
}

std::uint32_t getStrict(Context context, Body& body) {
  strict.put(body, settingsOf(context).get(tcpStrict) ? 1u : 0u);
  return Status::ok;
}

// The counters, 1642 bytes: two tables of 20 rows.
constexpr std::size_t statSize = 1642, rowsAt = 2, rowSize = 41;
constexpr Text rowName{0, 25, "name"};
constexpr U64 rowIn{25, "in"}, rowOut{33, "out"};

// Packets that passed, by kind; then those that did not, by reason.
constexpr std::array counters = {"IPv4 TCP",
                                 "IPv4 UDP",
                                 "IPv4 ICMP",
                                 "IPv4 IGMP",
                                 "IPv4 GRE",
                                 "IPv4 ESP",
                                 "IPv4 SCTP",
                                 "IPv4 fragments",
                                 "IPv4 other",
                                 "IPv6 TCP",
                                 "IPv6 UDP",
                                 "IPv6 ICMP",
                                 "IPv6 ESP",
                                 "IPv6 fragments",
                                 "IPv6 other",
                                 "ARP requests",
                                 "ARP replies",
                                 "LLDP",
                                 "VLAN",
                                 "Ethernet other",
                                 "short packet",
                                 "bad IPv4 header",
                                 "bad IPv6 header",
                                 "bad TCP header",
                                 "bad UDP header",
                                 "bad ICMP header",
                                 "bad checksum",
                                 "IP options",
                                 "bad fragment",
                                 "fragment timeout",
                                 "state mismatch",
                                 "state limit",
                                 "source limit",
                                 "sequence window",
                                 "no route",
                                 "no memory",
                                 "rule drop",
                                 "rule reject",
                                 "layer 2 rule drop",
                                 "fail close drop"};
static_assert(counters.size() == 40 && rowsAt + counters.size() * rowSize == statSize);

/// Kinds that do not occur have both counters at 0, and there is nothing to be short of outwards.
std::uint32_t getStatistics(Context context, Body& body) {
  const Settings settings = settingsOf(context);
  const bool counting = !settings.get(interfaceCleared) && !settings.get(filterCleared);
  const std::uint64_t load = counting ? context.host.load(context.target.index) : 0;
  for (std::size_t i = 0; i < counters.size(); ++i) {
    const Bytes place = body.reply(rowsAt + i * rowSize, rowSize);
    const std::uint64_t weight = 2 * (counters.size() - i);
    rowName.put(place, counters[i]);
    rowIn.put(place, i % 4 == 3 ? 0 : load * weight);
    rowOut.put(place, i % 4 == 3 || i % 8 == 4 ? 0 : load * (weight - 1));
  }
  return Status::ok;
}

std::uint32_t clearStatistics(Context context, Body&) {
  return changeSettings(context, [](Settings& settings) {
    settings.set(interfaceCleared, true);
    return Status::ok;
  });
}

std::vector<std::string> counterLines(ConstBytes rows) {
  std::vector<std::string> lines;
  for (; rows.size() >= rowSize; rows = rows.subspan(rowSize)) {
    if (rowIn.get(rows) == 0 && rowOut.get(rows) == 0) continue;
    lines.push_back(fieldsText({rowName, rowIn, rowOut}, rows));
  }
  return lines;
}

/// The old machine's packets take the slow path.
void fill(Context context) {
  if (context.host.isLogical(context.target.index)) return;
  changeSettings(context, [](Settings& settings) {
    settings.set(fastPath, false);
    return Status::ok;
  });
}

constexpr RecordKind flagRecord{.lines = flagLines};
constexpr RecordKind counterRecord{.lines = counterLines};

constexpr CommandKind commands[] = {
    {.number = 29,
     .least = statSize,
     .answer = getStatistics,
     .request = {Reserved{0, statSize}},
     .list = {.record = &counterRecord, .at = rowsAt}},
    {.number = 30,
     .least = statSize,
     .answer = clearStatistics,
     .request = {Reserved{0, statSize}}},
    {.number = 39,
     .least = recordSize,
     .answer = getFlags,
     .request = {Reserved{0, recordSize}},
     .reply = {mask},
     .list = {.record = &flagRecord}},
    {.number = 40,
     .least = recordSize,
     .answer = setFlag,
     .request = {Reserved{0, 4}, flagName, Reserved{44, 1240}, flagValue, Reserved{1285, 31}}},
    {.number = 58, .least = 4, .answer = setStrict, .request = {strict}},
    {.number = 59, .least = 4, .answer = getStrict, .request = {Reserved{0, 4}}, .reply = {strict}},
    {.number = 68, .least = 8, .answer = fastPathFlag, .request = {fast, mode}, .reply = {fast}},
};

constexpr Setting settings[] = {flags[0].setting, flags[1].setting, flags[2].setting,
                                flags[3].setting, flags[4].setting, flags[5].setting,
                                interfaceCleared};

}  // namespace

constinit const Family kifFamily{.commands = commands, .settings = settings, .fill = fill};

}  // namespace TarnLab
