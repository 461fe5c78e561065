#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>

#include <cstdio>
#include <cstring>

#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

// The first line says that the command sets something, and it reads: scripts compare the text.
constexpr char kAttributesUsage[] =
    "Set connection attribute setting for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -m <number> : state id\n"
    "    -S <IP Address> : source address\n"
    "    -D <IP Address> : destination address\n"
    "    -s <0-65535> : source port\n"
    "    -d <0-65535> : destination port\n"
    "    -p <TCP,UDP> : protocol, default is TCP\n"
    "    -i <IN, OUT> : direction, default is OUT\n"
    "    -v <number> : enable verbose log\n" USAGE_HELP;

constexpr char kInspectionUsage[] =
    "get state dpi info for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -s <stateid> : state id, hexadecimal\n" USAGE_VERBOSE USAGE_HELP;

constexpr option kAttributesWords[] = {kHelpWord,
                                       kVerboseWord,
                                       kFilterWord,
                                       {"direction", required_argument, nullptr, 'i'},
                                       {"srcip", required_argument, nullptr, 'S'},
                                       {"dstip", required_argument, nullptr, 'D'},
                                       {"sport", required_argument, nullptr, 's'},
                                       {"dport", required_argument, nullptr, 'd'},
                                       {"proto", required_argument, nullptr, 'p'},
                                       {"stateid", required_argument, nullptr, 'm'},
                                       kLastWord};

// No letter of the last two is an option, so that both print the usage text.
constexpr option kInspectionWords[] = {kHelpWord,
                                       kVerboseWord,
                                       kFilterWord,
                                       {"stateid", required_argument, nullptr, 'm'},
                                       {"byteorder", no_argument, nullptr, 'b'},
                                       kLastWord};

/// The connection that the options of `getattrinfo` describe.
struct Wanted {
  enum Direction : std::uint8_t { kIn = kConnectionIn, kOut = kConnectionOut };

  long id = 0;
  bool hasId = false;
  const char* source = nullptr;
  const char* destination = nullptr;
  long sourcePort = 0;
  long destinationPort = 0;
  Direction direction = kOut;
  int protocol = IPPROTO_TCP;
  Verbosity verbosity{};
  bool isShown = false;  // the connection, before it is asked for
  FWConnection_ connection{};

  /// Also a -v that leaves the level at 0 has the connection shown.
  int takeVerbosity(const char* text, const Target&) {
    verbosity.raise(text);
    isShown = true;
    return kGoOn;
  }

  int takeId(const char* text, const Target& target) {
    if (!Str2Long(text, 10, &id)) return target.usage.error("ERROR: Invalid state id\n");
    hasId = true;
    return kGoOn;
  }

  int takeSourcePort(const char* text, const Target& target) {
    if (Str2Port(text, &sourcePort)) return kGoOn;
    return target.usage.error("ERROR: Invalid Sport Specified\n");
  }

  int takeDestinationPort(const char* text, const Target& target) {
    // Also for a good port, and without a line end: scripts that read standard error expect it.
    error("ERROR: reading dst port");
    if (Str2Port(text, &destinationPort)) return kGoOn;
    return target.usage.error("ERROR: Invalid Dport Specified\n");
  }

  /// A bad protocol or direction ends with status 0, which scripts depend on.
  int takeProtocol(const char* text, const Target& target) {
    const protoent* const entry = getprotobyname(text);
    if (entry == nullptr) {
      error("ERROR: Invalid Protocol Name Specified\n");
      return target.usage(0);
    }
    if (entry->p_proto != IPPROTO_TCP && entry->p_proto != IPPROTO_UDP) {
      error("ERROR: Invalid Protocol Specified\n");
      return target.usage(0);
    }
    protocol = entry->p_proto;
    return kGoOn;
  }

  int takeDirection(const char* text, const Target& target) {
    if (std::strcmp(text, "IN") != 0 && std::strcmp(text, "OUT") != 0) {
      error("ERROR: Invalid Dir Specified\n");
      return target.usage(0);
    }
    direction = text[0] == 'I' ? kIn : kOut;
    return kGoOn;
  }

  /// Fills the record; false when an address is none.
  bool fill() {
    const bool isIpv6 =
        std::strchr(source, ':') != nullptr && std::strchr(destination, ':') != nullptr;
    const int family = isIpv6 ? AF_INET6 : AF_INET;
    connection.flags = static_cast<std::uint8_t>(direction | (isIpv6 ? kConnectionIPv6 : 0));
    connection.protocol = static_cast<std::uint8_t>(protocol);
    connection.sourcePort = static_cast<std::uint16_t>(sourcePort);
    connection.destinationPort = static_cast<std::uint16_t>(destinationPort);
    return inet_pton(family, source, connection.sourceAddress) == 1 &&
           inet_pton(family, destination, connection.destinationAddress) == 1;
  }
};

/// Says the level and, unlike other commands, the selector's name as well.
int announce(const Target& target, const Verbosity& verbosity) {
  FilterTarget filter = target.filter;
  filter.settleAgent();
  verbosity.announce(filter);
  if (verbosity.level != 0)
    std::printf("weirgate vm uuid: %s\n", fieldText(filter.port.identifier).c_str());
  verbosity.raiseLibrary();
  return kGoOn;
}

int showAttributes(const Target& target, const FWConnection_* connection, long id) {
  unsigned int count = 0;
  unsigned int size = 0;
  const FWStatus_t status = FW_GetConnAttrInfo(target.handle, target.port, nullptr, connection,
                                               static_cast<std::uint64_t>(id), &count, &size);
  if (status != FW_STATUS_OK) return 1;  // without a text: scripts look at the status
  std::printf("Number of attributes : %u\n", count);
  std::printf("Serialization size : %u\n", size);
  return 0;
}

/// The step that finds out whether what is wanted can be asked for.
int checkWanted(const Target& target, Wanted& wanted) {
  if (wanted.hasId) return wanted.id != 0 ? kGoOn : target.usage.error("ERROR: invalid state id\n");
  if (wanted.source == nullptr || wanted.destination == nullptr)
    return target.usage.error("ERROR: SRC or DST Addr is missing\n");
  return wanted.fill() ? kGoOn : target.usage.error("ERROR: Invalid SRC/DST Address\n");
}

int showWanted(const Target& target, const Wanted& wanted) {
  if (wanted.hasId) return showAttributes(target, nullptr, wanted.id);
  // The protocol's word is the same for UDP.
  if (wanted.isShown)
    std::printf("DEBUG: SRC %s:%d  DST %s:%d  Dir %s Proto %s\n", wanted.source,
                static_cast<int>(wanted.sourcePort), wanted.destination,
                static_cast<int>(wanted.destinationPort),
                wanted.direction == Wanted::kIn ? "IN" : "OUT", "tcp");
  return showAttributes(target, &wanted.connection, 0);
}

/// Prints how far inspection has come. A request that fails has found no state.
int showInspection(const Target& target, std::uint64_t id) {
  FWDPIInfo_ info{};
  FW_GetConnectionDPIInfo(target.handle, target.port, nullptr, &id, 1, &info, 1);
  std::printf("state id : %lx\n", static_cast<unsigned long>(info.id));
  if (info.found == 1)
    std::printf("DPI State : %s\n", FW_DPIStateToString(info.state));
  else
    std::printf("failed to find state\n");
  return 0;
}

}  // namespace

int GetConnAttrInfo(const char* cmd, int argc, char** argv) {
  Wanted wanted;
  const auto by = [&](int (Wanted::*take)(const char*, const Target&)) {
    return [&wanted, take](const char* value, const Target& target) {
      return (wanted.*take)(value, target);
    };
  };
  return onFilter(cmd, argc, argv,
                  {.usage = kAttributesUsage,
                   .letters = "hv::a:x:C:U:f:t:S:D:s:d:p:i:o:m:",
                   .words = kAttributesWords,
                   .own = {{'m', by(&Wanted::takeId)},
                           {'S', &wanted.source},
                           {'D', &wanted.destination},
                           {'s', by(&Wanted::takeSourcePort)},
                           {'d', by(&Wanted::takeDestinationPort)},
                           {'p', by(&Wanted::takeProtocol)},
                           {'i', by(&Wanted::takeDirection)},
                           {'v', by(&Wanted::takeVerbosity)}},
                   .missing = {.text = kFilterMissingPlain},
                   .check =
                       [&](const Target& target) {
                         announce(target, wanted.verbosity);
                         return checkWanted(target, wanted);
                       },
                   .announces = false,
                   .raisesLibraryLevel = false},
                  [&](const Target& target) { return showWanted(target, wanted); });
}

int GetStateDPIInfo(const char* cmd, int argc, char** argv) {
  unsigned long id = 0;
  const auto takeId = [&](const char* value, const Target& target) {
    if (!Str2ULong(value, 16, &id))
      return target.usage.error("ERROR: Invalid state id %s\n", value);
    id = wire::hostToNetwork(id);
    std::printf("oaks: stateid: %lu\n", id);
    std::printf("oaks: stateid: %lx\n", id);
    return kGoOn;
  };
  return onFilter(cmd, argc, argv,
                  {.usage = kInspectionUsage,
                   .letters = "hv::f:s:",
                   .words = kInspectionWords,
                   .own = {{'s', takeId}},
                   .missing = {.text = kFilterMissingPlain},
                   .check = [](const Target& target) { return announce(target, target.verbosity); },
                   .announces = false,
                   .raisesLibraryLevel = false},
                  [&](const Target& target) { return showInspection(target, id); });
}
