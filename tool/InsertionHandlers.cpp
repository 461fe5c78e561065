#include "InsertionHandlers.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

// --- Shared

constexpr std::size_t kMaxId = sizeof(FWServiceInstance_::id) - 1;
constexpr std::size_t kMaxLongId = sizeof(FWServiceProfile_::vendorTemplateId) - 1;

constexpr char kInvalidInstanceId[] = "ERROR: invalid instance id %s\n";

/// The number that a text begins with, in 32 bits. A negative one stands for its two's complement.
std::uint32_t wordOf(const char* text) {
  return static_cast<std::uint32_t>(boundedOption(text, INT32_MIN, UINT32_MAX));
}

bool fitsWord(long number) { return number >= INT32_MIN && number <= long{UINT32_MAX}; }

/// How one kind of record is asked for and shown.
template <typename Query, typename Record>
struct Listing {
  std::uint32_t countRequest;
  std::uint32_t listRequest;
  void (*printCount)(std::uint32_t count);
  int (*noMemory)(std::uint32_t count);
  void (*print)(const Record& record);

  /// The one record that the query names. Printed whatever the kernel says: what it did not write
  /// is empty.
  int showOne(Query query) const {
    Record record{};
    query.bufferLength = sizeof record;
    query.buffer = addressOf(&record);
    directRequest(kFirewall, listRequest, query);
    print(record);
    return 0;
  }

  int showAll() const {
    Query query{};
    directRequest(kFirewall, countRequest, query);
    const std::uint32_t known = query.count;
    printCount(known);
    if (known == 0) return 0;

    // The kernel takes the size in 32 bits.
    Records<Record> records;
    errno = ENOMEM;
    if (itemsFit(known, sizeof(Record), UINT32_MAX)) records = makeRecords<Record>(known);
    if (records == nullptr) return noMemory(known);

    query = {};
    query.count = known;
    query.bufferLength = known * static_cast<std::uint32_t>(sizeof(Record));
    query.buffer = addressOf(records.get());
    directRequest(kFirewall, listRequest, query);
    const std::uint32_t returned = query.count;
    if (returned > known) TARNFW_WARNING("%u records returned for room of %u\n", returned, known);
    for (std::uint32_t i = 0; i < std::min(returned, known); ++i) print(records[i]);
    return 0;
  }
};

constexpr Listing<FWInstanceQuery_, FWServiceInstance_> kInstances{
    .countRequest = FW_REQUEST_INSTANCE_COUNT,
    .listRequest = FW_REQUEST_INSTANCES,
    .printCount = [](std::uint32_t count) { std::printf("Num instances = %u\n\n", count); },
    .noMemory =
        [](std::uint32_t count) {
          return error("ERROR: no memory for %u instances: %s\n", count, std::strerror(errno));
        },
    .print = PrintInstance,
};
constexpr Listing<FWFilterList_, FWServiceProfile_> kProfiles{
    .countRequest = FW_REQUEST_PROFILE_COUNT,
    .listRequest = FW_REQUEST_PROFILES,
    .printCount = [](std::uint32_t count) { std::printf("Num profiles = %u\n\n", count); },
    .noMemory =
        [](std::uint32_t count) {
          return error("ERROR: no memory for %u profiles: %s\n", count, std::strerror(errno));
        },
    .print = PrintProfile,
};

// --- Transport of an instance

// Both name a "prec" that there is not; scripts match the lines as they are.
constexpr char kBadGre[] =
    "ERROR: bad spec, expected proto=prec=addrstr=key=flags=encapProto=gtmac=flipdir\n";
constexpr char kBadMacred[] = "ERROR: bad spec, expected proto=prec=addrstr=dgtmac=flipdir\n";

/// Tokens of the words for a transport, cut in place. Several "=" in a row count as one.
class SpecTokens {
 public:
  explicit SpecTokens(char* text) : rest_(text) {}

  /// Null after the last.
  char* next() { return strtok_r(nullptr, "=", &rest_); }

  /// Takes the next token into `token`; false when there is none.
  bool take(const char** token) { return (*token = next()) != nullptr; }

 private:
  char* rest_;
};

std::uint8_t flipDirection(const char* text) {
  return static_cast<std::uint8_t>(boundedOption(text, INT8_MIN, UINT8_MAX));
}

int takeGre(SpecTokens& tokens, FWServiceInstance_* instance) {
  const char *address, *key, *flags, *encap, *mac, *flip;
  if (!tokens.take(&address) || !tokens.take(&key) || !tokens.take(&flags) || !tokens.take(&encap))
    return error(kBadGre);
  long protocol = 0;
  if (!Str2Long(encap, 0, &protocol) || !fitsWord(protocol))
    return error("ERROR: bad encap protocol %s\n", encap);
  if (!tokens.take(&mac) || !tokens.take(&flip)) return error(kBadGre);

  Strncpy(instance->address, address, sizeof instance->address);
  FWTransportGre_ gre{};
  gre.key = wordOf(key);
  gre.flags = wordOf(flags);
  gre.encapProtocol = static_cast<std::uint32_t>(protocol);
  Strncpy(gre.gatewayMac, mac, sizeof gre.gatewayMac);
  gre.flipDirection = flipDirection(flip);
  storeRecord(instance->transport, gre);
  return kGoOn;
}

int takeMacred(SpecTokens& tokens, FWServiceInstance_* instance) {
  const char *address, *mac, *flip;
  if (!tokens.take(&address) || !tokens.take(&mac) || !tokens.take(&flip)) return error(kBadMacred);

  Strncpy(instance->address, address, sizeof instance->address);
  FWTransportMacred_ macred{};
  Strncpy(macred.gatewayMac, mac, sizeof macred.gatewayMac);
  macred.flipDirection = flipDirection(flip);
  storeRecord(instance->transport, macred);
  return kGoOn;
}

/// Reads a transport into the record, in the place of one before it. Returns `kGoOn`, or 1 after an
/// error line.
int takeTransport(char* text, FWServiceInstance_* instance) {
  std::memset(instance->address, 0, sizeof instance->address);
  std::memset(instance->transport, 0, sizeof instance->transport);
  SpecTokens tokens(text);
  const char* const first = tokens.next();
  if (first == nullptr) return error("ERROR: invalid transport specification\n");

  const auto protocol = static_cast<int>(boundedOption(first, INT_MIN, INT_MAX));
  instance->protocol = static_cast<std::uint32_t>(protocol);
  switch (protocol) {
    case FW_TRANSPORT_GRE:
      return takeGre(tokens, instance);
    case FW_TRANSPORT_MACRED:
      return takeMacred(tokens, instance);
    case FW_TRANSPORT_PLANKIO:
      std::printf("No options for PLANKIO.\n");
      return kGoOn;
    case FW_TRANSPORT_RIBS:
      std::printf("No options for RIBS.\n");
      return kGoOn;
    case FW_TRANSPORT_NONE:
      std::printf("No protocol.\n");
      return kGoOn;
    default:
      return error("ERROR: invalid protocol: %d\n", protocol);
  }
}

// --- Usage texts

// -f, the force flag, is not in the text.
#define INSTANCE_OPTIONS                                            \
  USAGE_OPTIONS                                                     \
  "    -i <string> : service instance id\n"                         \
  "    -n <string> : service name\n"                                \
  "    -s <number> : slot, 0 to 15\n"                               \
  "    -d <number> : deploy type, 1 (RIBS), 2 (PLANKIO), 3 (L2),\n" \
  "                  or 4 (L3)\n"                                   \
  "    -t <string> : transport specification\n"                     \
  "       transport is '=' separated string and its first token\n"  \
  "       defines the transport protocol in number, and the rest\n" \
  "       of string defines the options for the protocol:\n"        \
  "       1: RIBS, no option\n"                                     \
  "       2: PLANKIO, no option\n"                                  \
  "       3: MACRED, 3=addrstr=dgtmac=flipdir\n"                    \
  "       4: GRE, 4=addrstr=key=flags=encapProto=gtmac=flipdir\n"   \
  "       11: NONE, no option\n" USAGE_HELP

/// By operation, from 1 on.
constexpr const char* kInstanceUsages[] = {
    "Create a service instance.\n\n" INSTANCE_OPTIONS,
    "Replace a service instance.\n\n" INSTANCE_OPTIONS,
    "Destroy a service instance.\n\n" INSTANCE_OPTIONS,
};

constexpr char kGetInstancesUsage[] =
    "Get service instances.\n\n" USAGE_OPTIONS "    -i <string> : service instance id\n" USAGE_HELP;

constexpr char kCreateProfileUsage[] =
    "Create a service profile for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -p <string> : service profile id\n"
    "    -i <string> : service instance id\n"
    "    -v <string> : vendor template id\n"
    "    -t <string> : vendor provided template id\n" USAGE_HELP;

// -v and -t are taken all the same.
constexpr char kDestroyProfileUsage[] =
    "Destroy a service profile for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_HELP;

constexpr char kGetProfilesUsage[] =
    "Get service profiles.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_HELP;

void printField(const char* name, const std::string& value) {
  std::printf("%-24s : %s\n", name, value.c_str());
}
void printField(const char* name, std::uint32_t value) {
  std::printf("%-24s : %d\n", name, static_cast<int>(value));
}

}  // namespace

// --- Service instances

void PrintInstance(const FWServiceInstance_& instance) {
  printField("Instance Id", fieldText(instance.id));
  printField("Name", fieldText(instance.name));
  printField("Deployment Type", instance.deployType);
  printField("Ref Count", instance.references);
  printField("Mark for Deletion", instance.markedForDeletion);
  std::printf("-- Transport --\n");
  printField("Protocol", instance.protocol);
  if (instance.protocol == FW_TRANSPORT_GRE) {
    const auto gre = loadRecord<FWTransportGre_>(instance.transport);
    printField("Address Str", fieldText(instance.address));
    printField("GRE key", gre.key);
    printField("GRE Flags", gre.flags);
    printField("GRE Encap Protocol", gre.encapProtocol);
    printField("GRE Gtway Mac", fieldText(gre.gatewayMac));
    printField("GRE Flip dir", gre.flipDirection);
  } else if (instance.protocol == FW_TRANSPORT_MACRED) {
    const auto macred = loadRecord<FWTransportMacred_>(instance.transport);
    printField("Address Str", fieldText(instance.address));
    printField("MACRED Gtway Mac", fieldText(macred.gatewayMac));
    printField("MACRED Flip dir", macred.flipDirection);
  }
  std::printf("\n");
}

int SetServiceInstance(const char* cmd, int argc, char** argv, int operation) {
  if (operation < kCreateInstance || operation > kDestroyInstance) {
    std::printf("Invalid command entered");
    return 1;
  }

  FWServiceInstance_ instance{};
  const char* id = nullptr;
  const char* name = nullptr;
  bool force = false;
  bool withTransport = false;
  const auto takeDeployType = [&](const char* value, const Target&) {
    instance.deployType = wordOf(value);
    return kGoOn;
  };
  const auto takeSlot = [&](const char* value, const Target&) {
    constexpr std::uint32_t kSlots = 16;
    instance.slot = wordOf(value);
    return instance.slot < kSlots ? kGoOn : error("ERROR: invalid slot number, expected 0 to 15\n");
  };
  const auto takeSpec = [&](const char* value, const Target&) {
    withTransport = true;
    return takeTransport(const_cast<char*>(value), &instance);  // a word of argv, which is ours
  };
  const auto complete = [&](const Target& target) {
    const bool enough = id != nullptr && (withTransport || operation == kDestroyInstance);
    return enough ? kGoOn : target.usage(1);
  };
  return onHost(cmd, argc, argv,
                {.usage = kInstanceUsages[operation - 1],
                 .letters = "fhi:n:d:s:t:",
                 .own = {{'f', &force},
                         {'i', &id, kMaxId, kInvalidInstanceId},
                         {'n', &name, kMaxLongId, "ERROR: invalid instance name %s\n"},
                         {'d', takeDeployType},
                         {'s', takeSlot},
                         {'t', takeSpec}},
                 .check = complete},
                [&](const Target&) {
                  Strncpy(instance.id, id, sizeof instance.id);
                  if (name != nullptr) Strncpy(instance.name, name, sizeof instance.name);
                  instance.force = force ? 1 : 0;
                  directRequest(kFirewall, static_cast<std::uint32_t>(operation), instance);
                  return 0;
                });
}

int CreateInstance(const char* cmd, int argc, char** argv) {
  return SetServiceInstance(cmd, argc, argv, kCreateInstance);
}

int ReplaceInstance(const char* cmd, int argc, char** argv) {
  return SetServiceInstance(cmd, argc, argv, kReplaceInstance);
}

int DestroyInstance(const char* cmd, int argc, char** argv) {
  return SetServiceInstance(cmd, argc, argv, kDestroyInstance);
}

int GetInstances(const char* cmd, int argc, char** argv) {
  const char* id = nullptr;
  return onHost(cmd, argc, argv,
                {.usage = kGetInstancesUsage,
                 .letters = "hi:",
                 .own = {{'i', &id, kMaxId, kInvalidInstanceId}}},
                [&](const Target&) {
                  if (id == nullptr) return kInstances.showAll();
                  FWInstanceQuery_ query{};
                  Strncpy(query.id, id, sizeof query.id);
                  return kInstances.showOne(query);
                });
}

// --- Service profiles

void PrintProfile(const FWServiceProfile_& profile) {
  const auto line = [](const char* name, const std::string& value) {
    std::printf("%-30s : %s\n", name, value.c_str());
  };
  line("Profile Id", fieldText(profile.id));
  line("Instance Id", fieldText(profile.instanceId));
  line("Filter Name", fieldText(profile.filter));
  line("Vendor Template Id", fieldText(profile.vendorTemplateId));
  line("Vendor Provided Template Id", fieldText(profile.vendorProvidedTemplateId));
  std::printf("\n");
}

int CreateDestroyProfile(const char* cmd, int argc, char** argv, bool create) {
  const char* id = nullptr;
  const char* instanceId = nullptr;
  const char* vendorTemplate = "";
  const char* vendorProvidedTemplate = "";
  const auto complete = [&](const Target& target) {
    const bool idsAreRight =
        create ? id != nullptr && instanceId != nullptr : id == nullptr && instanceId == nullptr;
    return target.filter.given && idsAreRight ? kGoOn : target.usage(1);
  };
  return onHost(
      cmd, argc, argv,
      {.usage = create ? kCreateProfileUsage : kDestroyProfileUsage,
       .letters = "hp:i:f:v:t:",
       .own = {{'p', &id, kMaxId, "ERROR: invalid profile id %s\n"},
               {'i', &instanceId, kMaxId, kInvalidInstanceId},
               {'v', &vendorTemplate, kMaxLongId, "ERROR: invalid vendor template id %s\n"},
               {'t', &vendorProvidedTemplate, kMaxLongId,
                "ERROR: invalid vendor provided template id %s\n"}},
       .check = complete},
      [&](const Target& target) {
        FWServiceProfile_ profile{};
        if (create) {
          Strncpy(profile.id, id, sizeof profile.id);
          Strncpy(profile.instanceId, instanceId, sizeof profile.instanceId);
        }
        Strncpy(profile.filter, target.filter.name, sizeof profile.filter);
        Strncpy(profile.vendorTemplateId, vendorTemplate, sizeof profile.vendorTemplateId);
        Strncpy(profile.vendorProvidedTemplateId, vendorProvidedTemplate,
                sizeof profile.vendorProvidedTemplateId);
        directRequest(kFirewall, create ? FW_REQUEST_CREATE_PROFILE : FW_REQUEST_DESTROY_PROFILE,
                      profile);
        return 0;
      });
}

int CreateProfile(const char* cmd, int argc, char** argv) {
  return CreateDestroyProfile(cmd, argc, argv, true);
}

int DestroyProfile(const char* cmd, int argc, char** argv) {
  return CreateDestroyProfile(cmd, argc, argv, false);
}

int GetProfiles(const char* cmd, int argc, char** argv) {
  return onHost(cmd, argc, argv, {.usage = kGetProfilesUsage, .letters = "hf:"},
                [](const Target& target) {
                  if (!target.filter.given) return kProfiles.showAll();
                  FWFilterList_ query{};
                  Strncpy(query.name, target.filter.name, sizeof query.name);
                  return kProfiles.showOne(query);
                });
}
