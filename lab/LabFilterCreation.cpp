// Request 1000 of the firewall device: creates a filter, or destroys one, whatever the tables say.
#include <cerrno>

#include "LabFailPolicy.h"
#include "LabFamily.h"
#include "LabServiceInsertion.h"
#include "LabTableEntry.h"

namespace TarnLab {

namespace {

// The body, 4284 bytes: a configuration with 16 parameters, and the filter.
constexpr std::size_t bodySize = 4284, parametersAt = 48, parameterSize = 260;
constexpr std::uint32_t mostParameters = 16;
constexpr std::size_t agentSize = 40;
constexpr Name agent{0, agentSize, "agent", "agent"};
constexpr U32 parameterCount{40, "parameters"}, policy{44, "policy"};
constexpr U32 world{4208, "world"}, slot{4212, "slot"};
constexpr Name vnic{4216, 64, "vnic", "vnic"};
constexpr U32 add{4280, "add"};

namespace Parameter {
constexpr U32 number{0, "number"};
constexpr Name text{4, 256, "text", "parameter"};
}  // namespace Parameter

constexpr TextSetting parameters[mostParameters] = {
    TextSetting("parameter.0"),  TextSetting("parameter.1"),  TextSetting("parameter.2"),
    TextSetting("parameter.3"),  TextSetting("parameter.4"),  TextSetting("parameter.5"),
    TextSetting("parameter.6"),  TextSetting("parameter.7"),  TextSetting("parameter.8"),
    TextSetting("parameter.9"),  TextSetting("parameter.10"), TextSetting("parameter.11"),
    TextSetting("parameter.12"), TextSetting("parameter.13"), TextSetting("parameter.14"),
    TextSetting("parameter.15")};

ConstBytes parameterAt(ConstBytes body, std::size_t place) {
  return part(body, parametersAt + place * parameterSize, parameterSize);
}

/// What is wrong with the configuration; empty when nothing is. The parameters fill the first
/// slots, each the one of its number.
std::string configurationFault(ConstBytes body) {
  const std::uint32_t count = parameterCount.get(body);
  if (count > mostParameters) return format("%u parameters", count);
  if (policy.get(body) > 1) return format("policy %u", policy.get(body));
  for (std::size_t i = 0; i < mostParameters; ++i) {
    const ConstBytes each = parameterAt(body, i);
    if (i >= count) {
      if (!isZero(each)) return format("a parameter in slot %zu of %u", i, count);
      continue;
    }
    if (Parameter::number.get(each) != i) {
      return format("parameter %u in slot %zu", Parameter::number.get(each), i);
    }
    if (std::string fault = nameFault({Parameter::text}, each); !fault.empty()) return fault;
    if (Parameter::text.get(each).empty()) return format("parameter %zu without a text", i);
  }
  return "";
}

/// The filter in question: its agent, whose name may be longer than the configuration has room for,
/// its NIC and, when it is there, its index.
struct Subject {
  std::string owner = {};
  std::size_t nic = 0;
  std::optional<std::size_t> filter = {};
};

/// Answers with the status, and a line in the log that says why.
int answerWith(Request& request, std::uint32_t status, const std::string& why) {
  request.status = status;
  return request.refuse(0, why);
}

/// Finds the filter; false after an answer that there is no such NIC or agent.
bool findSubject(Request& request, ConstBytes body, Subject& subject) {
  const Host& host = request.host;
  const std::string_view wanted = agent.get(body);
  const auto found = host.findAgent(wanted, agentSize - 1);
  if (!found) {
    answerWith(request, Status::invalidArgument, "no agent " + std::string(wanted));
    return false;
  }
  subject.owner = host.agents()[*found].name;
  for (std::size_t place = 0; place < host.nicCount(); ++place) {
    const Nic nic = host.nic(place);
    if (vnicText(idOf(nic.machine), nic.index) != vnic.get(body)) continue;
    if (nic.world != world.get(body)) {
      answerWith(request, Status::noVnic, format("this vnic is one of world %u", nic.world));
      return false;
    }
    subject.nic = place;
    for (std::size_t i = 0; i < host.filterCount(); ++i) {
      if (host.nicOf(i) == place && host.agent(i) == subject.owner &&
          host.slotOf(i) == slot.get(body)) {
        subject.filter = i;
      }
    }
    return true;
  }
  answerWith(request, Status::noVnic, "no such vnic");
  return false;
}

int create(Request& request, ConstBytes body, const Subject& subject) {
  if (subject.filter) {
    return answerWith(request, Status::badState,
                      std::string(request.host.name(*subject.filter)) + " is there");
  }
  Host host = request.host;
  const std::size_t index = host.addFilter(subject.nic, subject.owner, slot.get(body));
  Settings settings;
  settings.set(failClose, policy.get(body) == 1);
  for (std::size_t i = 0; i < parameterCount.get(body); ++i) {
    settings.set(parameters[i], Parameter::text.get(parameterAt(body, i)));
  }
  host.save(request.store);
  settings.save(request.store, host.folderOf(index));
  request.entry.note = "made " + std::string(host.name(index));
  return 0;
}

int destroy(Request& request, const Subject& subject) {
  if (!subject.filter) return answerWith(request, Status::noFilter, "no such filter");
  Host host = request.host;
  const std::string folder = host.folderOf(*subject.filter);
  request.entry.note = "destroyed " + std::string(host.name(*subject.filter));
  host.removeFilter(*subject.filter);
  host.save(request.store);
  request.store.removeTree(folder);
  settleServiceInstances(request.store, host);
  return 0;
}

int createOrDestroy(Request& request, Body& body) {
  if (const std::string fault = configurationFault(body); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  if (add.get(body) > 1) return request.refuse(EINVAL, format("add %u", add.get(body)));
  Subject subject;
  if (!findSubject(request, body, subject)) return 0;
  return add.get(body) == 1 ? create(request, body, subject) : destroy(request, subject);
}

std::string parameterText(ConstBytes record) {
  return format("parameter %u: ", Parameter::number.get(record)) +
         std::string(Parameter::text.get(record));
}

constexpr RecordKind parameterRecords{.size = parameterSize, .text = parameterText};

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 1000,
     .title = "create or destroy a filter",
     .size = bodySize,
     .answer = createOrDestroy,
     .request = {agent, parameterCount, policy, world, slot, vnic, add},
     .list = {.record = &parameterRecords,
              .inRequest = true,
              .count = parameterCount,
              .at = parametersAt}},
};

constexpr auto settings = [] {
  std::array<Setting, mostParameters> all{};
  for (std::size_t i = 0; i < mostParameters; ++i) all[i] = parameters[i];
  return all;
}();

}  // namespace

constinit const Family filterCreationFamily{.requests = requests, .settings = settings};

}  // namespace TarnLab
