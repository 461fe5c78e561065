#include <arpa/inet.h>

#include <cstdio>
#include <cstring>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "InsertionRecords.h"
#include "Records.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

// "encapslated" has always stood here, and in the error line.
constexpr char kGreUsage[] =
    "Add a GRE entry.\n\n" USAGE_OPTIONS
    "    -a <string> : ip address, e.g., 192.168.1.1\n"
    "    -k <hex>    : key, e.g., 0x8\n"
    "    -f <hex>    : flag, e.g., 0x2000,0\n"
    "    -e <hex>    : encapslated ethertypes, e.g., 0x0800, 0x6558, 0x883e\n"
    "    -m <string> : mac address\n"
    "    -g <string> : guest ip address, e.g., 172.16.1.1\n" USAGE_HELP;

bool takeAddress(const char* text, std::uint8_t (&address)[4]) {
  in_addr parsed{};
  if (inet_aton(text, &parsed) == 0) return false;
  std::memcpy(address, &parsed, sizeof address);
  return true;
}

bool takeMac(const char* text, std::uint8_t (&m)[6]) {
  return std::sscanf(text, "%2hhx:%2hhx:%2hhx:%2hhx:%2hhx:%2hhx", &m[0], &m[1], &m[2], &m[3], &m[4],
                     &m[5]) == 6 ||
         std::sscanf(text, "%2hhx-%2hhx-%2hhx-%2hhx-%2hhx-%2hhx", &m[0], &m[1], &m[2], &m[3], &m[4],
                     &m[5]) == 6;
}

int sendGre(const FWGreEntry_& entry) {
  // The kernel expects a byte of room after the entry.
  constexpr std::uint32_t kSize = sizeof entry;
  const auto copy = makeRecords<std::byte>(kSize + 1);
  if (copy == nullptr) return error("ERROR: no memory for gre buffer\n");
  storeRecord(copy.get(), entry);
  directRequest(kFirewall, FW_REQUEST_ADD_GRE, RequestMemory{copy.get(), kSize});
  return 0;
}

}  // namespace

int AddGRE(const char* cmd, int argc, char** argv) {
  FWGreEntry_ entry{};
  struct {
    bool address = false, key = false, flags = false, mac = false, guestAddress = false;
  } have;
  const auto takeWord = [](const char* text, long least, long most, host32* word) {
    long number = 0;
    if (!Str2Long(text, 16, &number) || number < least || number > most) return false;
    *word = static_cast<std::uint32_t>(number);
    return true;
  };

  const auto takeOuter = [&](const char* value, const Target&) {
    have.address = true;
    return takeAddress(value, entry.address) ? kGoOn
                                             : error("ERROR: invalid ip address %s\n", value);
  };
  const auto takeKey = [&](const char* value, const Target&) {
    have.key = true;
    return takeWord(value, INT32_MIN, UINT32_MAX, &entry.key)
               ? kGoOn
               : error("ERROR: invalid key: %s\n", value);
  };
  const auto takeFlags = [&](const char* value, const Target&) {
    have.flags = true;
    return takeWord(value, INT32_MIN, UINT32_MAX, &entry.flags)
               ? kGoOn
               : error("ERROR: invalid flag: %s\n", value);
  };
  // Goes into the key, so that the later one of -k and -e counts: the kernel's entries have always
  // been made like this.
  const auto takeEthertype = [&](const char* value, const Target&) {
    return takeWord(value, 0, UINT16_MAX, &entry.key)
               ? kGoOn
               : error("ERROR: invalid encapslated protocol: %s\n", value);
  };
  // The line has the fourth word of the command line and not the option's value.
  const auto takeHardware = [&](const char* value, const Target&) {
    have.mac = true;
    return takeMac(value, entry.mac)
               ? kGoOn
               : error("ERROR: invalid MAC address %s\n", argc > 4 ? argv[4] : "");
  };
  const auto takeGuest = [&](const char* value, const Target&) {
    have.guestAddress = true;
    return takeAddress(value, entry.guestAddress)
               ? kGoOn
               : error("ERROR: invalid guest ip address %s\n", value);
  };
  const auto complete = [&](const Target& target) {
    const bool all = have.address && have.key && have.flags && have.mac && have.guestAddress;
    return all ? kGoOn : target.usage.error("ERROR: missing argument(s).\n");
  };
  return onHost(cmd, argc, argv,
                {.usage = kGreUsage,
                 .letters = "ha:f:k:e:m:g:",
                 .own = {{'a', takeOuter},
                         {'k', takeKey},
                         {'f', takeFlags},
                         {'e', takeEthertype},
                         {'m', takeHardware},
                         {'g', takeGuest}},
                 .check = complete},
                [&](const Target&) { return sendGre(entry); });
}
