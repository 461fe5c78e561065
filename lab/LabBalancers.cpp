// Commands 86 to 90: the load balancer's services on a filter, with their virtual servers, pools
// and members, and the statistics of these.
#include <algorithm>

#include "LabFamily.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

// --- What there is

struct Pool {
  std::uint32_t members;
};

struct Service {
  bool active;
  std::uint32_t virtualServers;
  std::vector<Pool> pools;
};

/// The services of the filter that has one of everything; no other has any. Active ones come first.
std::vector<Service> servicesOf(Context context) {
  if (!context.host.isShowpiece(context.target.index)) return {};
  return {{true, 2, {{3}, {1}}}, {true, 1, {{2}}}, {false, 1, {}}};
}

/// Identifiers are made of what they name: the service's number, and the place in it.
enum class What : unsigned { service = 0, virtualServer = 1, pool = 2, member = 3 };

std::string uuidOf(std::size_t service, What what = What::service, std::size_t place = 0) {
  return format("1b0a7c50-5e41-4d%02x-a0%02x-0000632a%04x", static_cast<unsigned>(service) + 1,
                static_cast<unsigned>(what), static_cast<unsigned>(place));
}

/// The number that a service is known by.
std::uint32_t idOf(std::size_t service) { return 4001 + static_cast<std::uint32_t>(service); }

std::uint32_t membersOf(const Service& service) {
  std::uint32_t members = 0;
  for (const Pool& pool : service.pools) members += pool.members;
  return members;
}

// --- Commands 86 and 87: the configuration

constexpr std::uint32_t uuidSize = 64;
constexpr unsigned activeOnly = 1, activeAndStale = 2, byUuid = 8, byId = 16, knownConfigFlags = 31;
constexpr std::size_t blockHead = 85, virtualServerBlock = 90, poolBlock = 24, memberBlock = 74;

std::size_t blockSize(const Service& service) {
  return blockHead + virtualServerBlock * service.virtualServers +
         poolBlock * service.pools.size() + memberBlock * membersOf(service);
}

/// The services that a request chooses.
struct Choice {
  unsigned flags = 0;
  std::uint32_t id = 0;
  std::string_view uuid;

  bool takes(const Service& service, std::size_t number) const {
    if (!service.active && (flags & (activeAndStale | byUuid | byId)) == 0) return false;
    if (!service.active && (flags & activeOnly) != 0) return false;
    if ((flags & byId) != 0 && id != idOf(number)) return false;
    return (flags & byUuid) == 0 || uuid == uuidOf(number);
  }

  std::string fault() const {
    if ((flags & ~knownConfigFlags) != 0) return format("flags 0x%x", flags);
    if ((flags & byId) == 0 && id != 0) return "an id that does not count";
    return (flags & byUuid) == 0 && !uuid.empty() ? "a uuid that does not count" : "";
  }
};

struct Chosen {
  std::size_t number;
  Service service;
};

std::vector<Chosen> choose(Context context, const Choice& choice) {
  std::vector<Chosen> chosen;
  const std::vector<Service> all = servicesOf(context);
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (choice.takes(all[i], i)) chosen.push_back({i, all[i]});
  }
  return chosen;
}

std::uint32_t activeAmong(const std::vector<Chosen>& chosen) {
  return static_cast<std::uint32_t>(std::count_if(
      chosen.begin(), chosen.end(), [](const Chosen& each) { return each.service.active; }));
}

namespace Sizes {
constexpr std::size_t size = 12077, servicesAt = 77, serviceSize = 12;
constexpr U32 active{0, "active"}, stale{4, "stale"}, id{8, "id"};
constexpr Name uuid{12, uuidSize, "uuid", "service uuid"};
constexpr U8 flags{76, "flags"};
}  // namespace Sizes

std::uint32_t readSizes(Context context, Body& body) {
  const Choice choice{Sizes::flags.get(body), Sizes::id.get(body), Sizes::uuid.get(body)};
  if (const std::string wrong = choice.fault(); !wrong.empty()) {
    return context.refuse(Status::invalidArgument, wrong);
  }
  const std::vector<Chosen> chosen = choose(context, choice);
  const std::uint32_t active = activeAmong(chosen);
  std::size_t at = Sizes::servicesAt;
  for (const Chosen& each : chosen) {
    const Bytes place = body.reply(at, Sizes::serviceSize);
    put32(place, 0, each.service.virtualServers);
    put32(place, 4, static_cast<std::uint32_t>(each.service.pools.size()));
    put32(place, 8, membersOf(each.service));
    at += Sizes::serviceSize;
  }
  Sizes::active.put(body, active);
  Sizes::stale.put(body, static_cast<std::uint32_t>(chosen.size()) - active);
  return Status::ok;
}

namespace Config {
constexpr std::size_t servicesAt = 81;
constexpr U32 size{0, "bytes"}, active{4, "active"}, stale{8, "stale"}, id{12, "id"};
constexpr Name uuid{16, uuidSize, "uuid", "service uuid"};
constexpr U8 flags{80, "flags"};
constexpr U32 blockVirtualServers{68, "virtual servers"}, blockPools{72, "pools"},
    blockMembers{76, "members"};
}  // namespace Config

/// The identifiers of a service's parts, at the start of each part's bytes as far as these take
/// one, and the service's own at the start of its block.
void putBlock(Bytes block, const Chosen& chosen) {
  const Service& service = chosen.service;
  putText(block, 0, uuidSize, uuidOf(chosen.number));
  put32(block, uuidSize, idOf(chosen.number));
  std::size_t at = blockHead;
  const auto putPart = [&](std::size_t size, What what, std::size_t place) {
    putText(block, at, std::min<std::size_t>(size, uuidSize), uuidOf(chosen.number, what, place));
    at += size;
  };
  for (std::size_t i = 0; i < service.virtualServers; ++i) {
    putPart(virtualServerBlock, What::virtualServer, i);
  }
  for (std::size_t i = 0; i < service.pools.size(); ++i) putPart(poolBlock, What::pool, i);
  for (std::size_t i = 0; i < membersOf(service); ++i) putPart(memberBlock, What::member, i);
}

/// Whether the request's block has the counts of the service.
bool hasCounts(ConstBytes block, const Service& service) {
  return Config::blockVirtualServers.get(block) == service.virtualServers &&
         Config::blockPools.get(block) == service.pools.size() &&
         Config::blockMembers.get(block) == membersOf(service);
}

/// A request without services asks for their numbers only.
std::uint32_t readConfig(Context context, Body& body) {
  const Choice choice{Config::flags.get(body), Config::id.get(body), Config::uuid.get(body)};
  if (const std::string wrong = choice.fault(); !wrong.empty()) {
    return context.refuse(Status::invalidArgument, wrong);
  }
  if (Config::size.get(body) != body.size()) {
    return context.refuse(Status::badMessage,
                          format("%u bytes, %zu are there", Config::size.get(body), body.size()));
  }
  const std::vector<Chosen> chosen = choose(context, choice);
  const std::uint32_t active = activeAmong(chosen);
  const std::uint32_t stale = static_cast<std::uint32_t>(chosen.size()) - active;
  const bool numbersOnly = Config::active.get(body) == 0 && Config::stale.get(body) == 0;
  if (!numbersOnly && (Config::active.get(body) != active || Config::stale.get(body) != stale)) {
    return context.refuse(Status::badMessage,
                          format("%u and %u services, there are %u and %u",
                                 Config::active.get(body), Config::stale.get(body), active, stale));
  }
  std::size_t at = Config::servicesAt;
  for (const Chosen& each : chosen) {
    if (numbersOnly) break;
    const std::size_t size = blockSize(each.service);
    if (size > body.size() - at || !hasCounts(part(body.bytes(), at, size), each.service)) {
      return context.refuse(Status::badMessage,
                            format("service %zu with other counts", each.number));
    }
    putBlock(body.reply(at, size), each);
    at += size;
  }
  if (at != body.size()) {
    return context.refuse(Status::badMessage, format("%zu bytes too many", body.size() - at));
  }
  Config::active.put(body, active);
  Config::stale.put(body, stale);
  return Status::ok;
}

// --- Commands 88 to 90: the statistics

constexpr NumberSetting clearedStatistics{"balancer.cleared"};

namespace Stat {
constexpr std::size_t size = 4141, membersAt = 141;
constexpr std::size_t virtualServerBlock = 200, poolBlock = 49, memberBlock = 183;
constexpr U32 bytes{0, "bytes"}, virtualServers{4, "virtual servers"}, pools{8, "pools"};
constexpr Name service{12, uuidSize, "service", "service uuid"};
constexpr Name uuid{76, uuidSize, "uuid", "uuid"};
constexpr U8 flags{140, "flags"};
constexpr unsigned byService = 1, byUuid = 2, ofVirtualServers = 4, ofPools = 8, noService = 64,
                   noEntry = 128;
}  // namespace Stat

/// What a request chooses: entries of one service, by their places.
struct Counted {
  std::size_t number = 0;
  Service service{};
  bool virtualServers = false;
  std::vector<std::size_t> places = {};
  unsigned missing = 0;  // the flag of a reply without it

  /// The bit of the setting that says that these were cleared.
  std::uint64_t bit() const { return std::uint64_t{1} << (2 * number + (virtualServers ? 0 : 1)); }
};

std::string faultOfStatistics(const Body& body) {
  const unsigned flags = Stat::flags.get(body);
  const unsigned kinds = flags & (Stat::ofVirtualServers | Stat::ofPools);
  if ((flags & (Stat::noService | Stat::noEntry)) != 0) return format("flags 0x%x", flags);
  if (kinds != Stat::ofVirtualServers && kinds != Stat::ofPools) {
    return "statistics of neither virtual servers nor pools, or of both";
  }
  if ((flags & Stat::byService) == 0) return "statistics of no service";
  return (flags & Stat::byUuid) == 0 && !Stat::uuid.get(body).empty() ? "a uuid that does not count"
                                                                      : "";
}

Counted count(Context context, const Body& body) {
  const unsigned flags = Stat::flags.get(body);
  const std::vector<Service> all = servicesOf(context);
  Counted counted{.virtualServers = (flags & Stat::ofVirtualServers) != 0};
  while (counted.number < all.size() && Stat::service.get(body) != uuidOf(counted.number)) {
    ++counted.number;
  }
  if (counted.number == all.size()) {
    counted.missing = Stat::noService;
    return counted;
  }
  counted.service = all[counted.number];
  const std::size_t entries =
      counted.virtualServers ? counted.service.virtualServers : counted.service.pools.size();
  const What what = counted.virtualServers ? What::virtualServer : What::pool;
  for (std::size_t i = 0; i < entries; ++i) {
    if ((flags & Stat::byUuid) == 0 || Stat::uuid.get(body) == uuidOf(counted.number, what, i)) {
      counted.places.push_back(i);
    }
  }
  if ((flags & Stat::byUuid) != 0 && counted.places.empty()) counted.missing = Stat::noEntry;
  return counted;
}

/// Writes the numbers of what is counted. A reply about what is not there has none.
void putNumbers(Body& body, const Counted& counted) {
  const auto entries = static_cast<std::uint32_t>(counted.places.size());
  Stat::virtualServers.put(body, counted.virtualServers ? entries : 0);
  Stat::pools.put(body, counted.virtualServers ? 0 : entries);
  for (std::size_t i = 0; i < entries && !counted.virtualServers; ++i) {
    put32(body.reply(Stat::membersAt + 4 * i, 4), 0,
          counted.service.pools[counted.places[i]].members);
  }
  Stat::flags.put(body, static_cast<std::uint8_t>(Stat::flags.get(body) | counted.missing));
}

std::uint32_t sizeStatistics(Context context, Body& body) {
  if (const std::string wrong = faultOfStatistics(body); !wrong.empty()) {
    return context.refuse(Status::invalidArgument, wrong);
  }
  putNumbers(body, count(context, body));
  return Status::ok;
}

/// An entry's identifier, and after it five counters that no other entry has. Members are numbered
/// through all pools of their service.
void putCounters(Bytes block, const Counted& counted, What what, std::size_t place,
                 std::uint64_t load) {
  const std::string uuid = uuidOf(counted.number, what, place);
  constexpr std::size_t counters = 5;
  const std::size_t atCounters = block.size() - 8 * counters;
  putText(block, 0, std::min<std::size_t>(uuidSize, atCounters), uuid);
  for (std::size_t i = 0; i < counters; ++i) {
    const std::uint64_t weight =
        1000 * (counted.number + 1) + 100 * static_cast<unsigned>(what) + 10 * place + i;
    put64(block, atCounters + 8 * i, load * weight);
  }
}

std::size_t statisticsSize(const Counted& counted) {
  if (counted.missing != 0) return Stat::size;
  std::size_t size = Stat::size;
  for (const std::size_t place : counted.places) {
    size += counted.virtualServers
                ? Stat::virtualServerBlock
                : Stat::poolBlock + Stat::memberBlock * counted.service.pools[place].members;
  }
  return size;
}

/// The place of a pool's first member among all members of its service.
std::size_t firstMember(const Service& service, std::size_t pool) {
  std::size_t first = 0;
  for (std::size_t i = 0; i < pool; ++i) first += service.pools[i].members;
  return first;
}

void putStatistics(Context context, Body& body, const Counted& counted) {
  const bool cleared = (settingsOf(context).get(clearedStatistics) & counted.bit()) != 0;
  const std::uint64_t load = cleared ? 0 : context.host.load(context.target.index);
  std::size_t at = Stat::size;
  const auto put = [&](std::size_t size, What what, std::size_t place) {
    putCounters(body.reply(at, size), counted, what, place, load);
    at += size;
  };
  for (const std::size_t place : counted.places) {
    if (counted.virtualServers) {
      put(Stat::virtualServerBlock, What::virtualServer, place);
    } else {
      put(Stat::poolBlock, What::pool, place);
    }
  }
  for (const std::size_t place : counted.places) {
    if (counted.virtualServers) break;
    const std::size_t first = firstMember(counted.service, place);
    for (std::size_t i = 0; i < counted.service.pools[place].members; ++i) {
      put(Stat::memberBlock, What::member, first + i);
    }
  }
}

/// A request without what a service's statistics are asked by has no record, and gets no numbers.
std::uint32_t readStatistics(Context context, Body& body) {
  if (isZero(body.bytes())) return Status::ok;
  const unsigned missing = Stat::flags.get(body) & (Stat::noService | Stat::noEntry);
  Stat::flags.put(body, static_cast<std::uint8_t>(Stat::flags.get(body) & ~missing));
  if (const std::string wrong = faultOfStatistics(body); !wrong.empty()) {
    return context.refuse(Status::invalidArgument, wrong);
  }
  const Counted counted = count(context, body);
  if (body.size() != statisticsSize(counted)) {
    return context.refuse(Status::badMessage, format("%zu bytes in place of %zu", body.size(),
                                                     statisticsSize(counted)));
  }
  putNumbers(body, counted);
  if (counted.missing == 0) putStatistics(context, body, counted);
  return Status::ok;
}

std::uint32_t clearStatistics(Context context, Body& body) {
  if (Stat::bytes.get(body) != Stat::size) {
    return context.refuse(Status::badMessage, format("size %u", Stat::bytes.get(body)));
  }
  if (const std::string wrong = faultOfStatistics(body); !wrong.empty()) {
    return context.refuse(Status::invalidArgument, wrong);
  }
  const Counted counted = count(context, body);
  putNumbers(body, counted);
  if (counted.missing != 0) return Status::ok;
  return changeSettings(context, [&](Settings& settings) {
    settings.set(clearedStatistics, settings.get(clearedStatistics) | counted.bit());
    return Status::ok;
  });
}

constexpr CommandKind commands[] = {
    {.number = 86,
     .least = Config::servicesAt,
     .answer = readConfig,
     .request = {Config::size, Config::active, Config::stale, Config::id, Config::uuid,
                 Config::flags},
     .reply = {Config::active, Config::stale}},
    {.number = 87,
     .least = Sizes::size,
     .answer = readSizes,
     .request = {Reserved{0, 8}, Sizes::id, Sizes::uuid, Sizes::flags, Reserved{77, 12000}},
     .reply = {Sizes::active, Sizes::stale}},
    {.number = 88,
     .least = Stat::size,
     .answer = readStatistics,
     .request = {Stat::bytes, Stat::virtualServers, Stat::pools, Stat::service, Stat::uuid,
                 Stat::flags},
     .reply = {Stat::virtualServers, Stat::pools, Stat::flags}},
    {.number = 89,
     .least = Stat::size,
     .answer = sizeStatistics,
     .request = {Reserved{0, 12}, Stat::service, Stat::uuid, Stat::flags, Reserved{141, 4000}},
     .reply = {Stat::virtualServers, Stat::pools, Stat::flags}},
    {.number = 90,
     .least = Stat::size,
     .answer = clearStatistics,
     .request = {Stat::bytes, Reserved{4, 8}, Stat::service, Stat::uuid, Stat::flags,
                 Reserved{141, 4000}},
     .reply = {Stat::flags}},
};

constexpr Setting settings[] = {clearedStatistics};

}  // namespace

constinit const Family balancerFamily{.commands = commands, .settings = settings};

}  // namespace TarnLab
