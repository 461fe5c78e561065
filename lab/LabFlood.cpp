// Protection against floods: commands 78 and 79.
#include "LabFamily.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

// Limits of active flows, 0 for none, and the cache of connections that are not open yet.
constexpr NumberSetting udpMost{"flood.udp", 10000}, icmpMost{"flood.icmp", 2000},
    tcpMost{"flood.tcp", 4000}, otherMost{"flood.other", 3000};
constexpr FlagSetting caching{"flood.syncache", nullptr, true};
constexpr NumberSetting buckets{"flood.buckets", 16};
constexpr FlagSetting spoofing{"flood.rst-spoofing", nullptr, true};
constexpr FlagSetting cleared{"flood.cleared", "flood counters were cleared"};

constexpr std::uint32_t mostRows = 512, rowBytes = 24;
constexpr std::uint32_t depth = 8;  // connections in a bucket

// The configuration, 36 bytes; all ones leaves a setting as it is.
constexpr std::uint32_t unchanged = 0xffffffff;
constexpr U32 udp{0, "udp"}, icmp{4, "icmp"}, tcp{8, "tcp"}, other{12, "other"},
    syncacheOn{16, "syncache"}, hash{20, "buckets"}, ones{24, "unused"}, rstOn{28, "rst spoofing"},
    zeroed{32, "zero"};

bool isChoice(std::uint32_t value) { return value == unchanged || value <= 1; }

bool isPowerOfTwo(std::uint32_t value) { return value != 0 && (value & (value - 1)) == 0; }

std::string configurationFault(ConstBytes body) {
  for (const U32& limit : {udp, icmp, tcp, other}) {
    const std::uint32_t value = limit.get(body);
    if (value != unchanged && value > 0x7fffffff)
      return std::string("negative limit of ") + limit.name;
  }
  if (!isChoice(syncacheOn.get(body))) return format("syncache %u", syncacheOn.get(body));
  const std::uint32_t wanted = hash.get(body);
  if (wanted != unchanged && (!isPowerOfTwo(wanted) || wanted > mostRows)) {
    return format("%u buckets", wanted);
  }
  if (!isChoice(rstOn.get(body))) return format("rst spoofing %u", rstOn.get(body));
  return zeroed.get(body) > 1 ? format("zero %u", zeroed.get(body)) : "";
}

std::uint32_t configure(Context context, Body& body) {
  if (ones.get(body) != unchanged) {
    return context.refuse(Status::badMessage, "configuration with an unused field set");
  }
  const std::string fault = configurationFault(body);
  if (!fault.empty()) return context.refuse(Status::invalidArgument, fault);
  return changeSettings(context, [&](Settings& settings) {
    const auto number = [&](const NumberSetting& setting, const U32& field) {
      if (field.get(body) != unchanged) settings.set(setting, field.get(body));
    };
    const auto flag = [&](const FlagSetting& setting, const U32& field) {
      if (field.get(body) != unchanged) settings.set(setting, field.get(body) != 0);
    };
    number(udpMost, udp);
    number(icmpMost, icmp);
    number(tcpMost, tcp);
    number(otherMost, other);
    flag(caching, syncacheOn);
    number(buckets, hash);
    flag(spoofing, rstOn);
    if (zeroed.get(body) == 1) settings.set(cleared, true);
    return Status::ok;
  });
}

// The statistics, 12424 bytes.
constexpr U32 zero{0, "zero"}, udpLimit{4, "udp limit"}, udpActive{8, "udp"},
    icmpLimit{12, "icmp limit"}, icmpActive{16, "icmp"}, tcpLimit{20, "tcp limit"},
    tcpActive{24, "tcp"}, otherLimit{28, "other limit"}, otherActive{32, "other"},
    syncache{36, "syncache"}, syncacheFirst{40, "buckets"}, syncacheSecond{44, "depth"},
    rst{52, "rst spoofing"}, inUse{56, "in use"};
constexpr U64 purged{64, "purged"}, notFound{72, "not found"}, udpDenied{80, "udp denied"},
    icmpDenied{88, "icmp denied"}, tcpDenied{96, "tcp denied"}, otherDenied{104, "other denied"},
    rstSent{120, "rst sent"};
constexpr U32 rowSize{128, "row size"}, rowCount{132, "rows"};
constexpr std::size_t rowsAt = 136;

// A row: one bucket of the cache.
constexpr U32 rowInUse{0, "in use"};
constexpr U64 rowPurged{8, "purged"}, rowNotFound{16, "not found"};
constexpr RecordKind row{.size = rowBytes, .fields = {rowInUse, rowPurged, rowNotFound}};

/// Active flows, never more than their limit, and those that were denied for it.
void putFlows(Body& body, const U32& limit, const U32& active, const U64& denied,
              std::uint64_t most, std::uint64_t flows, std::uint64_t refused) {
  limit.put(body, static_cast<std::uint32_t>(most));
  active.put(body, static_cast<std::uint32_t>(most == 0 ? flows : std::min(flows, most)));
  denied.put(body, most == 0 ? 0 : refused);
}

/// The rows that were asked for, and their sums. Every fourth bucket was never used.
void putCache(Body& body, std::uint64_t load, std::uint32_t used, bool counting,
              std::uint32_t wanted) {
  std::uint64_t sums[3] = {};
  for (std::uint32_t i = 0; i < used; ++i) {
    const std::uint64_t busy = i % 4 == 3 ? 0 : load;
    const std::uint64_t values[3] = {busy * (i + 1) % (depth + 1), counting ? busy / (i + 1) : 0,
                                     counting ? busy * 2 / (i + 3) : 0};
    for (std::size_t k = 0; k < 3; ++k) sums[k] += values[k];
    if (i >= wanted) continue;
    const Bytes place = body.reply(rowsAt + i * rowBytes, rowBytes);
    rowInUse.put(place, static_cast<std::uint32_t>(values[0]));
    rowPurged.put(place, values[1]);
    rowNotFound.put(place, values[2]);
  }
  inUse.put(body, static_cast<std::uint32_t>(sums[0]));
  purged.put(body, sums[1]);
  notFound.put(body, sums[2]);
  rowCount.put(body, std::min(used, wanted));
}

/// Clearing follows the reading.
std::uint32_t statistics(Context context, Body& body) {
  const std::uint32_t wanted = rowCount.get(body);
  const std::uint32_t clears = zero.get(body);
  if (clears > 1) return context.refuse(Status::invalidArgument, format("zero %u", clears));
  if (rowSize.get(body) != (wanted == 0 ? 0 : rowBytes) || wanted > mostRows) {
    return context.refuse(Status::badMessage,
                          format("%u rows of %u bytes", wanted, rowSize.get(body)));
  }
  return changeSettings(context, [&](Settings& settings) {
    const std::uint64_t load = context.host.load(context.target.index);
    const bool counting = !settings.get(cleared);
    const std::uint64_t counted = counting ? load : 0;
    putFlows(body, udpLimit, udpActive, udpDenied, settings.get(udpMost), 7 * load, 3 * counted);
    putFlows(body, icmpLimit, icmpActive, icmpDenied, settings.get(icmpMost), 2 * load,
             4 * counted);
    putFlows(body, tcpLimit, tcpActive, tcpDenied, settings.get(tcpMost), 5 * load, 13 * counted);
    putFlows(body, otherLimit, otherActive, otherDenied, settings.get(otherMost), load,
             6 * counted);
    const bool on = settings.get(caching);
    const auto used = static_cast<std::uint32_t>(
        on ? std::min<std::uint64_t>(settings.get(buckets), mostRows) : 0);
    syncache.put(body, on ? 1 : 0);
    syncacheFirst.put(body, used);
    syncacheSecond.put(body, on ? depth : 0);
    putCache(body, load, used, counting, wanted);
    rst.put(body, settings.get(spoofing) ? 1 : 0);
    rstSent.put(body, settings.get(spoofing) ? 9 * counted : 0);
    if (clears == 1) settings.set(cleared, true);
    return Status::ok;
  });
}

/// Of the machine on a plain port group, one filter lets everything pass and the other one sends no
/// RST of its own.
void fill(Context context) {
  const std::size_t index = context.target.index;
  if (context.host.isLogical(index)) return;
  changeSettings(context, [&](Settings& settings) {
    settings.set(spoofing, false);
    if (context.host.agent(index) == "kelpco-spoof.guard") {
      settings.set(otherMost, 0);
      return Status::ok;
    }
    for (const NumberSetting& limit : {udpMost, icmpMost, tcpMost, otherMost}) {
      settings.set(limit, 0);
    }
    settings.set(caching, false);
    return Status::ok;
  });
}

constexpr List rows{.record = &row, .count = rowCount, .at = rowsAt};

constexpr CommandKind commands[] = {
    {.number = 78,
     .least = 36,
     .answer = configure,
     .request = {udp, icmp, tcp, other, syncacheOn, hash, rstOn, zeroed}},
    {.number = 79,
     .least = rowsAt + mostRows * rowBytes,
     .answer = statistics,
     .request = {zero, Reserved{4, 124}, rowSize, rowCount, Reserved{rowsAt, mostRows* rowBytes}},
     .reply = {udpLimit,    udpActive,   icmpLimit, icmpActive,    tcpLimit,       tcpActive,
               otherLimit,  otherActive, syncache,  syncacheFirst, syncacheSecond, rst,
               inUse,       purged,      notFound,  udpDenied,     icmpDenied,     tcpDenied,
               otherDenied, rstSent,     rowCount},
     .list = rows},
};

constexpr Setting settings[] = {udpMost, icmpMost, tcpMost,  otherMost,
                                caching, buckets,  spoofing, cleared};

}  // namespace

constinit const Family floodFamily{.commands = commands, .settings = settings, .fill = fill};

}  // namespace TarnLab
