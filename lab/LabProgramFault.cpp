// tarnlab fault: orders failures, so that a program's handling of them can be tried.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "LabCommandNames.h"
#include "LabFaults.h"
#include "LabProgram.h"
#include "LabStatusNames.h"
#include "LabText.h"

namespace TarnLab {

namespace {

constexpr std::uint32_t countLimit = 0xffffffff;

/// The number of an errno by its name or as a number.
std::optional<std::uint32_t> parseErrno(std::string_view text) {
  if (const auto number = parseNumber(text, Fault::errnoLimit); number && *number > 0) {
    return static_cast<std::uint32_t>(*number);
  }
  for (int error = 1; error < 134; ++error) {
    const char* name = ::strerrorname_np(error);
    if (name != nullptr && text == name) return static_cast<std::uint32_t>(error);
  }
  return std::nullopt;
}

/// The number of a signal by its name or as a number.
std::optional<std::uint32_t> parseSignal(std::string_view text) {
  if (const auto number = parseNumber(text, Fault::signalLimit); number && *number > 0) {
    return static_cast<std::uint32_t>(*number);
  }
  for (std::uint32_t number = 1; number <= Fault::signalLimit; ++number) {
    const char* name = ::sigabbrev_np(static_cast<int>(number));
    if (name != nullptr && text == "SIG" + std::string(name)) return number;
  }
  return std::nullopt;
}

/// What a fault does: a status, an errno, a signal or a number of milliseconds.
std::optional<std::uint32_t> parseValue(Fault::Kind kind, std::string_view text) {
  if (kind == Fault::Kind::status) return statusNumber(text);
  if (kind == Fault::Kind::error) return parseErrno(text);
  if (kind == Fault::Kind::signal) return parseSignal(text);
  const auto milliseconds = parseNumber(text, Fault::delayLimit);
  if (!milliseconds) return std::nullopt;
  return static_cast<std::uint32_t>(*milliseconds);
}

Device parseDevice(std::string_view text) {
  for (const DeviceNode& node : deviceNodes) {
    if (text == node.name || text == node.path) return node.device;
  }
  return Device::none;
}

Device parsePeer(std::string_view text) {
  for (const DeviceNode& node : peerNodes) {
    if (text == node.name || text == node.path) return node.device;
  }
  return Device::none;
}

int listFaults(const Store& store) {
  const Faults faults = Faults::load(store);
  if (faults.all().empty()) std::puts("no faults");
  for (const Fault& fault : faults.all()) std::puts(fault.toString().c_str());
  return exitOk;
}

int clearFaults(const Store& store) {
  const StoreLock lock(store);
  Faults().save(store);
  return exitOk;
}

/// Reads "--after N", "--count N", "--only WHAT", "--device DEVICE" and "--peer PEER"; 0 or the
/// exit status of a mistake.
int readOptions(Fault& fault, Arguments arguments) {
  for (; !arguments.empty(); arguments = arguments.subspan(2)) {
    const std::string option = arguments[0];
    if (option != "--after" && option != "--count" && option != "--only" && option != "--device" &&
        option != "--peer") {
      return misused("fault", "unknown argument " + printable(option));
    }
    if (arguments.size() < 2) return misused("fault", option + " needs a value");
    const std::string value = arguments[1];
    if (option == "--count") {
      const auto count = parseNumber(value, countLimit);
      if (!count || *count == 0) return misused("fault", "bad count " + printable(value));
      fault.remaining = static_cast<std::uint32_t>(*count);
    } else if (option == "--after" && fault.kind != Fault::Kind::peer) {
      const auto skipped = parseNumber(value, countLimit);
      if (!skipped) return misused("fault", "bad number to skip " + printable(value));
      fault.skipped = static_cast<std::uint32_t>(*skipped);
    } else if (option == "--only" && fault.kind == Fault::Kind::status) {
      const auto command = commandNumber(value);
      if (!command) return misused("fault", "unknown command " + printable(value));
      fault.only = *command;
    } else if (option == "--only" && fault.kind == Fault::Kind::error) {
      const auto number = parseNumber(value, 0xffffffff);
      if (!number) return misused("fault", "bad request number " + printable(value));
      fault.only = static_cast<std::uint32_t>(*number);
    } else if (option == "--device" && fault.kind == Fault::Kind::error) {
      fault.device = parseDevice(value);
      if (fault.device == Device::none)
        return misused("fault", "unknown device " + printable(value));
    } else if (option == "--peer" && fault.kind == Fault::Kind::peer) {
      fault.device = parsePeer(value);
      if (fault.device == Device::none) return misused("fault", "unknown peer " + printable(value));
    } else {
      return misused("fault", option + " does not go with this fault");
    }
  }
  return 0;
}

int orderAbsence(const Store& store, Arguments devices) {
  std::vector<Fault> ordered;
  static char firewall[] = "firewall";
  static char* const usual[] = {firewall};
  if (devices.empty()) devices = usual;
  for (const char* name : devices) {
    Fault fault;
    fault.kind = Fault::Kind::absent;
    fault.device = parseDevice(name);
    if (fault.device == Device::none) return misused("fault", "unknown device " + printable(name));
    ordered.push_back(fault);
  }
  const StoreLock lock(store);
  Faults faults = Faults::load(store);
  for (const Fault& fault : ordered) {
    if (!faults.absent(fault.device)) faults.add(fault);
  }
  faults.save(store);
  return exitOk;
}

int order(const Store& store, const Fault& fault) {
  const StoreLock lock(store);
  Faults faults = Faults::load(store);
  faults.add(fault);
  faults.save(store);
  return exitOk;
}

const PeerFaultKind* findPeerFault(std::string_view name) {
  for (const PeerFaultKind& kind : peerFaultKinds) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

/// The value of a peer's fault: a number, or for an announced length one with a sign in front,
/// which is so much more or less than there is. False for anything else.
bool parsePeerValue(const PeerFaultKind& kind, std::string_view text, Fault& fault) {
  std::uint32_t relation = PeerLength::exact;
  if (kind.value == PeerFaultKind::Value::length && !text.empty()) {
    if (text[0] == '+') relation = PeerLength::more;
    if (text[0] == '-') relation = PeerLength::less;
    if (relation != PeerLength::exact) text.remove_prefix(1);
    fault.only = relation;
  }
  const bool time = kind.value == PeerFaultKind::Value::milliseconds;
  const auto number = parseNumber(text, time ? Fault::delayLimit : 0xffffffff);
  if (number) fault.value = static_cast<std::uint32_t>(*number);
  return number.has_value();
}

/// Reads what a peer is to do wrong; 0 or the exit status of a mistake.
int readPeerFault(Fault& fault, Arguments arguments) {
  fault.kind = Fault::Kind::peer;
  if (arguments.empty()) return misused("fault", "peer needs a fault");
  const PeerFaultKind* kind = findPeerFault(arguments[0]);
  if (kind == nullptr)
    return misused("fault", "unknown fault of a peer " + printable(arguments[0]));
  fault.peer = kind->fault;
  arguments = arguments.subspan(1);
  if (kind->value != PeerFaultKind::Value::none) {
    const std::string name = "peer " + std::string(kind->name);
    if (arguments.empty()) return misused("fault", name + " needs a value");
    if (!parsePeerValue(*kind, arguments[0], fault)) {
      return misused("fault", "bad " + name + " " + printable(arguments[0]));
    }
    arguments = arguments.subspan(1);
  }
  if (const int mistake = readOptions(fault, arguments); mistake != 0) return mistake;
  if (fault.device == Device::trace && isOfLengths(fault.peer)) {
    return misused("fault", "the peer trace announces no lengths");
  }
  return 0;
}

}  // namespace

int runFault(const Store& store, Arguments arguments) {
  requireLab(store);
  if (arguments.empty()) return listFaults(store);
  const std::string what = arguments[0];
  arguments = arguments.subspan(1);
  if (what == "clear") {
    return arguments.empty() ? clearFaults(store) : misused("fault", "clear takes no arguments");
  }
  if (what == "absent") return orderAbsence(store, arguments);

  Fault fault;
  if (what == "peer") {
    if (const int mistake = readPeerFault(fault, arguments); mistake != 0) return mistake;
    return order(store, fault);
  }
  if (what == "status") {
    fault.kind = Fault::Kind::status;
  } else if (what == "errno") {
    fault.kind = Fault::Kind::error;
  } else if (what == "delay") {
    fault.kind = Fault::Kind::delay;
  } else if (what == "signal") {
    fault.kind = Fault::Kind::signal;
  } else {
    return misused("fault", "unknown fault " + printable(what));
  }
  if (arguments.empty()) return misused("fault", what + " needs a value");
  const auto value = parseValue(fault.kind, arguments[0]);
  if (!value) return misused("fault", "bad " + what + " " + printable(arguments[0]));
  fault.value = *value;
  if (const int mistake = readOptions(fault, arguments.subspan(1)); mistake != 0) return mistake;
  return order(store, fault);
}

}  // namespace TarnLab
