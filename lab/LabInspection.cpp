// The inspection process: answers the commands of its statistics socket.
#include <algorithm>
#include <set>

#include "LabFamily.h"
#include "LabFlowFile.h"
#include "LabHoldings.h"
#include "LabHostFiles.h"
#include "LabNames.h"
#include "LabPeer.h"
#include "LabText.h"

namespace TarnLab {

namespace {

using Request = const PeerRequest&;

constexpr FlagSetting tracing{"inspection.tracing", "the inspection process traces"};

constexpr std::string_view written = "/var/run/kelpco/vdpi_fqdn_config";
constexpr std::string_view configured = "/etc/kelpco/vdpi_fqdn_config";
constexpr std::size_t configLimit = std::size_t{1} << 20;

/// Names that were loaded from a file, beside those that filters know: "identifier name" each.
constexpr std::size_t leastName = 3;
std::string nameText(ConstBytes record) {
  return printable({reinterpret_cast<const char*>(record.data()), record.size()});
}
constexpr Table loadedNames{"inspection-names", leastName, nameText};

std::string_view textOf(ConstBytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::optional<DomainName> nameOfLine(std::string_view line) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos || blank == 0 || blank + 1 == line.size()) {
    return std::nullopt;
  }
  return DomainName{std::string(line.substr(0, blank)), std::string(line.substr(blank + 1))};
}

/// Every name once, in the order of the identifiers.
std::set<DomainName> allNames(const Store& store, const Host& host) {
  std::set<DomainName> all;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    for (DomainName& each : domainNames(store, host.folderOf(i))) all.insert(std::move(each));
  }
  for (const ByteVector& record : loadedNames.load(store, hostTableFolder)) {
    if (auto name = nameOfLine(textOf(record))) all.insert(std::move(*name));
  }
  return all;
}

std::size_t countOf(const Store& store, const std::string& folder, std::string_view name) {
  const Table* table = Holdings::findTable(name);
  return table == nullptr ? 0 : table->load(store, folder).size();
}

std::size_t flowsOf(const Store& store, const std::string& folder) {
  const auto file = FlowFile::open(store, folder);
  if (!file) return 0;
  std::size_t count = 0;
  for (std::size_t group = 0; group < flowGroups; ++group) count += file->count(group);
  return count;
}

/// What was inspected, in all and by filter.
struct Counts {
  std::size_t flows = 0, inspected = 0, attributed = 0, names = 0;

  static Counts of(const Store& store, const std::string& folder) {
    return {flowsOf(store, folder), countOf(store, folder, "inspections"),
            countOf(store, folder, "attributes"), domainNames(store, folder).size()};
  }
  void add(const Counts& other) {
    flows += other.flows;
    inspected += other.inspected;
    attributed += other.attributed;
    names += other.names;
  }
  std::string text() const {
    return format("%zu flows, %zu inspected, %zu with attributes, %zu names", flows, inspected,
                  attributed, names);
  }
};

const char* tracingText(Request request) {
  return Settings::load(request.store, Settings::ofHost).get(tracing) ? "on" : "off";
}

std::string statistics(Request request) {
  std::string filters;
  Counts total;
  for (std::size_t i = 0; i < request.host.filterCount(); ++i) {
    const Counts counts = Counts::of(request.store, request.host.folderOf(i));
    total.add(counts);
    filters += "  " + printable(request.host.name(i)) + ": " + counts.text() + "\n";
  }
  return format("filters: %zu, tracing: %s\n", request.host.filterCount(), tracingText(request)) +
         "total: " + total.text() + "\n" + filters;
}

std::string threads(Request request) {
  std::string text =
      format("thread 0 dispatcher: waits, %zu filters\n", request.host.filterCount());
  constexpr std::size_t workers = 2;
  for (std::size_t worker = 0; worker < workers; ++worker) {
    Counts counts;
    for (std::size_t i = worker; i < request.host.filterCount(); i += workers) {
      counts.add(Counts::of(request.store, request.host.folderOf(i)));
    }
    text += format("thread %zu worker: waits, ", worker + 1) + counts.text() + "\n";
  }
  return text + format("thread 3 trace: %s\n", tracingText(request));
}

std::string setTracing(Request request, bool on) {
  Settings settings = Settings::load(request.store, Settings::ofHost);
  settings.set(tracing, on);
  settings.save(request.store, Settings::ofHost);
  return "";
}

std::string enableTracing(Request request) { return setTracing(request, true); }
std::string disableTracing(Request request) { return setTracing(request, false); }

/// Writes the names out, since the command has no answer.
std::string dumpNames(Request request) {
  std::string text;
  for (const DomainName& each : allNames(request.store, request.host)) {
    text += each.identifier + " " + each.name + "\n";
  }
  if (const int error = HostFiles::save(request.store, written, text); error != 0) {
    return request.refuse("cannot write " + std::string(written) + ": " + std::strerror(error));
  }
  request.entry.note = "written to " + std::string(written);
  return "";
}

/// Takes the names of a file in the place of those that were loaded before.
std::string loadNames(Request request) {
  const auto content = request.store.read(HostFiles::fileOf(configured), configLimit);
  if (!content) return request.refuse("there is no " + std::string(configured));
  Table::Records records;
  for (std::string_view rest = textOf(*content); !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = rest.substr(0, end);
    if (nameOfLine(line)) {
      const ConstBytes bytes = std::as_bytes(std::span(line));
      records.emplace_back(bytes.begin(), bytes.end());
    }
    rest.remove_prefix(std::min(rest.size(), end + 1));
  }
  loadedNames.save(request.store, hostTableFolder, records);
  request.entry.note = format("%zu names from ", records.size()) + std::string(configured);
  return "";
}

/// Whether a name is what a pattern says: the same, or what ends as "*." and the rest of it.
bool matches(std::string_view pattern, std::string_view name) {
  if (equalIgnoringCase(pattern, name)) return true;
  if (!pattern.starts_with("*.")) return false;
  const std::string_view ending = pattern.substr(1);
  return name.size() > ending.size() &&
         equalIgnoringCase(name.substr(name.size() - ending.size()), ending);
}

std::string_view nameOf(ConstBytes sent) {
  constexpr std::size_t head = 12;
  return sent.size() < head ? "" : getText(sent, head, sent.size() - head);
}

std::string matchingNames(Request request) {
  const std::string_view wanted = nameOf(request.sent);
  std::string text;
  for (const DomainName& each : allNames(request.store, request.host)) {
    if (!matches(wanted, each.name) && !matches(each.name, wanted)) continue;
    text += printable(each.identifier) + " " + printable(each.name) + "\n";
  }
  return text.empty() ? "no uuid matches " + printable(wanted) + "\n" : text;
}

struct Command {
  std::uint32_t number;
  const char* text;
  bool answers;
  std::string (*answer)(Request request);
};

constexpr Command commands[] = {
    {65, "stats", true, statistics},
    {66, "enable tracing", false, enableTracing},
    {67, "disable tracing", false, disableTracing},
    {68, "thread status", true, threads},
    {69, "dump FQDN config", false, dumpNames},
    {70, "load FQDN config", false, loadNames},
    {Inspection::matchName, "get uuids matching FQDN", true, matchingNames},
};

const Command* find(std::uint32_t number) {
  const auto* found = std::find_if(std::begin(commands), std::end(commands),
                                   [&](const Command& each) { return each.number == number; });
  return found == std::end(commands) ? nullptr : found;
}

constexpr Setting settings[] = {tracing};
constexpr Table ofHost[] = {loadedNames};

}  // namespace

std::optional<std::string> Inspection::answer(const PeerRequest& request) {
  const std::uint32_t number = get32(request.sent, 4);
  const Command* command = find(number);
  if (command == nullptr) {
    request.refuse(format("there is no command %u", number));
    return std::nullopt;
  }
  std::string text = command->answer(request);
  return command->answers ? std::optional(text) : std::nullopt;
}

std::string Inspection::state(const Store& store, const Host& host) {
  const bool on = Settings::load(store, Settings::ofHost).get(tracing);
  return format("tracing: %s\n", on ? "on" : "off") +
         format("names: %zu, %zu of them loaded\n", allNames(store, host).size(),
                loadedNames.load(store, hostTableFolder).size());
}

std::string Inspection::asked(ConstBytes sent) {
  if (sent.size() < 8) return format("%u: no command", sent.size() < 5 ? 0u : get8(sent, 4));
  const std::uint32_t number = get32(sent, 4);
  const Command* command = find(number);
  std::string text = format("%u: ", number) + (command != nullptr ? command->text : "unknown");
  if (number == matchName) text += "(name \"" + printable(nameOf(sent)) + "\")";
  return text;
}

constinit const Family inspectionFamily{.settings = settings, .hostTables = ofHost};

}  // namespace TarnLab
