// The host daemon: answers the 33 commands of its trace socket.
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "LabFamily.h"
#include "LabHostFiles.h"
#include "LabPeer.h"
#include "LabText.h"
#include "LabThresholds.h"
#include "LabTraceDumps.h"

namespace TarnLab {

namespace {

using Request = const PeerRequest&;

// The message. Which of the arguments it has depends on the command.
constexpr Text mark{0, 2, "mark"};
constexpr U8 letter{2, "command"}, version{3, "version"};
constexpr Text level{4, 1, "level"};  // a digit
constexpr U8 feature{4, "on"}, threshold{4, "threshold"};
constexpr U8 component{5, "component"};
constexpr U32 seconds{4, "seconds"}, value{8, "value"};
constexpr Text file{4, 256, "file"};

constexpr unsigned versionTen = 10;

// The components of the library's log, as the daemon counts them.
constexpr std::array components = {
    "misc",     "api",  "library",  "lexer", "parser", "io",   "msgbuf", "cmd",  "address", "rule",
    "protocol", "util", "protobuf", "ploy",  "ipfix",  "flow", "filter", "trie", "cache"};
constexpr unsigned everyComponent = 255;
constexpr unsigned unset = 0xff;

std::string componentName(unsigned number) {
  return number < components.size() ? components[number] : format("%u", number);
}

std::string componentLevels(ConstBytes levels) {
  std::string text;
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const unsigned each = get8(levels, i);
    if (each == unset) continue;
    text +=
        (text.empty() ? "" : ", ") + componentName(static_cast<unsigned>(i)) + format(" %u", each);
  }
  return text;
}

/// A log of the daemon: a level for all components, and those of single ones.
struct Log {
  const char* name;
  NumberSetting all;
  BytesSetting each;
};

constexpr Log processLog{"process", NumberSetting{"hulld.process-level", 3},
                         BytesSetting{"hulld.process-components", componentLevels}};
constexpr Log libraryLog{"library", NumberSetting{"hulld.library-level", 2},
                         BytesSetting{"hulld.library-components", componentLevels}};

/// Something that is on or off.
struct Feature {
  const char* name;
  FlagSetting setting;
};

constexpr Feature layer2{"L2 rule optimization",
                         FlagSetting{"hulld.l2-optimization", nullptr, true}};
constexpr Feature layer3{"L3 rule optimization",
                         FlagSetting{"hulld.l3-optimization", nullptr, true}};
constexpr Feature sharedSets{"shared addrset", FlagSetting{"hulld.shared-addrset"}};
constexpr Feature cleaning{"clean protobuf", FlagSetting{"hulld.clean-protobuf"}};

/// A time in seconds.
struct Span {
  const char* name;
  NumberSetting setting;
};

constexpr Span aggregation{"addrset aggregation timeout",
                           NumberSetting{"hulld.addrset-timeout", 5}};
constexpr Span interval{"addrset aggregation interval",
                        NumberSetting{"hulld.addrset-interval", 10}};
constexpr std::uint32_t mostSeconds = 30;

constexpr std::string_view marker = "/etc/kelpco/hulld/enable_trace";
constexpr const char* words[] = {"off", "on"};

bool isTracing(const Store& store) { return store.exists(HostFiles::fileOf(marker)); }

/// Hands the daemon's settings to `change`, saves them and returns the text.
template <typename Change>
std::string changed(Request request, Change change) {
  Settings settings = Settings::load(request.store, Settings::ofHost);
  std::string text = change(settings);
  if (request.entry.error == 0) settings.save(request.store, Settings::ofHost);
  return text;
}

std::string levelsText(const Settings& settings, const Log& log) {
  const std::string single = componentLevels(settings.get(log.each));
  return std::string(log.name) +
         format(" log level: %u", static_cast<unsigned>(settings.get(log.all))) +
         (single.empty() ? "" : ", " + single) + "\n";
}

std::string status(Request request) { return Trace::state(request.store, request.host); }

std::string stopTracing(Request request) {
  return request.store.remove(HostFiles::fileOf(marker)) ? "tracing is stopped\n"
                                                         : "tracing was not on\n";
}

/// Without a component, which a message then has as 0, the level is that of all.
std::string setLevel(Request request, const Log& log) {
  const unsigned digit = get8(request.sent, level.offset) - unsigned{'0'};
  if (digit > 9) return request.refuse("log level is missing");
  const unsigned which = component.get(request.sent);
  const bool all = which == 0 || which == everyComponent;
  if (!all && which >= components.size()) {
    return request.refuse(format("there is no component %u", which));
  }
  return changed(request, [&](Settings& settings) {
    ByteVector each = settings.get(log.each);
    each.resize(components.size(), std::byte{unset});
    if (all) {
      settings.set(log.all, digit);
      each.clear();
    } else {
      put8(each, which, static_cast<std::uint8_t>(digit));
    }
    settings.set(log.each, each);
    return std::string(log.name) + " log level of " +
           (all ? "all components" : componentName(which)) + format(" is %u\n", digit);
  });
}

std::string setProcessLevel(Request request) { return setLevel(request, processLog); }
std::string setLibraryLevel(Request request) { return setLevel(request, libraryLog); }

std::string setFeature(Request request, const Feature& which, bool on) {
  return changed(request, [&](Settings& settings) {
    settings.set(which.setting, on);
    return std::string(which.name) + " is " + words[on] + "\n";
  });
}

bool wantsOn(Request request) { return feature.get(request.sent) == 1; }
std::string tuneLayer2(Request request) { return setFeature(request, layer2, wantsOn(request)); }
std::string tuneLayer3(Request request) { return setFeature(request, layer3, wantsOn(request)); }
std::string tuneSets(Request request) { return setFeature(request, sharedSets, wantsOn(request)); }

/// Turns over, but for an order to turn on.
std::string toggleCleaning(Request request) {
  const bool on = Settings::load(request.store, Settings::ofHost).get(cleaning.setting);
  return setFeature(request, cleaning, wantsOn(request) || !on);
}

std::string setSpan(Request request, const Span& which) {
  const std::uint32_t wanted = seconds.get(request.sent);
  if (wanted > mostSeconds) return request.refuse(format("%u seconds", wanted));
  return changed(request, [&](Settings& settings) {
    settings.set(which.setting, wanted);
    return std::string(which.name) + format(" is %u seconds\n", wanted);
  });
}

std::string setTimeout(Request request) { return setSpan(request, aggregation); }
std::string setInterval(Request request) { return setSpan(request, interval); }

std::string setThreshold(Request request) {
  const unsigned kind = threshold.get(request.sent);
  const std::uint32_t wanted = value.get(request.sent);
  if (kind >= eventThresholds.size())
    return request.refuse(format("there is no threshold %u", kind));
  const EventThreshold& which = eventThresholds[kind];
  if (wanted > which.most) {
    return request.refuse(format("%u %s of %s", wanted, which.unit, which.name));
  }
  return changed(request, [&](Settings& settings) {
    settings.set(which.setting, wanted);
    return format("threshold of %s is %u %s\n", which.name, wanted, which.unit);
  });
}

std::string dumpThresholds(Request request) {
  const Settings settings = Settings::load(request.store, Settings::ofHost);
  std::string text;
  for (const EventThreshold& each : eventThresholds) {
    text += format("threshold of %s: %llu %s\n", each.name,
                   static_cast<unsigned long long>(settings.get(each.setting)), each.unit);
  }
  return text;
}

/// Writes a text to the file that is named, or to one of the daemon's own.
std::string save(Request request, const char* name, const std::string& content) {
  std::string path(file.get(request.sent));
  if (path.empty() || path == "\x01") path = "/var/run/kelpco/" + std::string(name);
  const int error = HostFiles::save(request.store, path, content);
  if (error != 0) {
    return request.refuse("cannot save " + printable(path) + ": " + std::strerror(error));
  }
  return format("saved %zu bytes to %s\n", content.size(), printable(path).c_str());
}

std::string saveRules(Request request) {
  return save(request, "rules.bin", TraceDumps::storedRules(request.store, request.host));
}
std::string saveSpoofGuards(Request request) {
  return save(request, "spoofguard.bin",
              TraceDumps::storedSpoofGuards(request.store, request.host));
}
std::string saveFilters(Request request) {
  return save(request, "filters.bin", TraceDumps::storedFilters(request.host));
}
std::string saveFlows(Request request) {
  return save(request, "flows.txt", TraceDumps::flows(request.store, request.host));
}
std::string saveMessage(Request request) {
  return save(request, "message.bin", TraceDumps::lastMessage(request.store));
}
std::string saveGlobal(Request request) {
  return save(request, "global.txt", TraceDumps::global(request.store, request.host));
}

/// The command that writes out what the host holds.
template <std::string (*text)(const Store& store, const Host& host)>
std::string dump(Request request) {
  return text(request.store, request.host);
}

// The commands, from 'A' on without a gap.
struct Command {
  const char* text;
  std::string (*answer)(Request request);
  FieldList arguments = {};
};

constexpr char firstLetter = 'A';
constexpr Command commands[] = {
    {"tracing status", status},
    {"stop tracing", stopTracing},
    {"set process log level", setProcessLevel, {level, component}},
    {"set library log level", setLibraryLevel, {level, component}},
    {"save binary ruleset config", saveRules, {file}},
    {"dump ruleset config", dump<TraceDumps::rules>},
    {"save binary spoofguard config", saveSpoofGuards, {file}},
    {"dump spoofguard config", dump<TraceDumps::spoofGuards>},
    {"save binary filter config", saveFilters, {file}},
    {"dump filter config", dump<TraceDumps::filters>},
    {"save flow config", saveFlows, {file}},
    {"dump flow config", dump<TraceDumps::flows>},
    {"save threshold config", setThreshold, {threshold, value}},
    {"dump threshold config", dumpThresholds},
    {"save manager message", saveMessage, {file}},
    {"tune l2 rule optimization", tuneLayer2, {feature}},
    {"tune l3 rule optimization", tuneLayer3, {feature}},
    {"save global config", saveGlobal, {file}},
    {"dump global config", dump<TraceDumps::global>},
    {"tune shared addrset", tuneSets, {feature}},
    {"dump container service", dump<TraceDumps::containers>},
    {"dump service profile set", dump<TraceDumps::serviceProfiles>},
    {"dump service instance set", dump<TraceDumps::serviceInstances>},
    {"dump app mon config", dump<TraceDumps::applications>},
    {"dump filter monitor types", dump<TraceDumps::monitors>},
    {"dump timeout config", dump<TraceDumps::timeouts>},
    {"toggle clean protobuf", toggleCleaning, {feature}},
    {"set addrset aggregation timeout", setTimeout, {seconds}},
    {"dump client topics", dump<TraceDumps::topics>},
    {"dump ploy sync state", dump<TraceDumps::ploy>},
    {"vm container query", dump<TraceDumps::machines>},
    {"dump threads info", dump<TraceDumps::threads>},
    {"set addrset aggregation interval", setInterval, {seconds}},
};
static_assert(std::size(commands) == 33);

const Command* find(unsigned wanted) {
  const unsigned place = wanted - unsigned{firstLetter};
  return place < std::size(commands) ? &commands[place] : nullptr;
}

constexpr Setting settings[] = {
    processLog.all, processLog.each,    libraryLog.all,   libraryLog.each,     layer2.setting,
    layer3.setting, sharedSets.setting, cleaning.setting, aggregation.setting, interval.setting};

}  // namespace

std::string Trace::answer(const PeerRequest& request) {
  if (mark.get(request.sent) != "tc" || version.get(request.sent) != versionTen) {
    return request.refuse("no trace message");
  }
  const Command* command = find(letter.get(request.sent));
  if (command == nullptr) {
    return request.refuse(format("there is no command %u", letter.get(request.sent)));
  }
  return command->answer(request);
}

std::string Trace::state(const Store& store, const Host& host) {
  const Settings now = Settings::load(store, Settings::ofHost);
  std::string text = format("tracing: %s\n", words[isTracing(store)]);
  for (const Log* log : {&processLog, &libraryLog}) text += levelsText(now, *log);
  for (const Feature* each : {&layer2, &layer3, &sharedSets, &cleaning}) {
    text += std::string(each->name) + ": " + words[now.get(each->setting)] + "\n";
  }
  for (const Span* each : {&aggregation, &interval}) {
    text += std::string(each->name) +
            format(": %u seconds\n", static_cast<unsigned>(now.get(each->setting)));
  }
  return text + format("filters: %zu, agents: %zu\n", host.filterCount(), host.agents().size());
}

std::string Trace::asked(ConstBytes message) {
  ByteVector whole(message.begin(), message.end());
  whole.resize(messageSize);
  const unsigned wanted = letter.get(whole);
  const Command* command = find(wanted);
  if (command == nullptr) return format("%u: unknown", wanted);
  return format("%c: %s", static_cast<char>(wanted), command->text) + "(" +
         fieldsText(command->arguments, whole) + ")";
}

constinit const Family traceFamily{.settings = settings};

}  // namespace TarnLab
