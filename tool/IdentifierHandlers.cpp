#include <cstdio>

#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWUtil.h"
#include "TarnFWWire.h"

using namespace TarnFirewall;

namespace {

constexpr option kLongOptions[] = {
    {"byteorder", no_argument, nullptr, 'b'},
    {"help", no_argument, nullptr, 'h'},
    {nullptr, 0, nullptr, 0},
};

/// An identifier as two numbers, the first eight bytes and the last eight.
struct NumberPair {
  unsigned long long first;
  unsigned long long second;
};

template <typename Number>
void storePair(const NumberPair& pair, std::uint8_t* uuid) {
  storeRecord(uuid, Number(pair.first));
  storeRecord(uuid + sizeof(Number), Number(pair.second));
}

template <typename Number>
NumberPair loadPair(const std::uint8_t* uuid) {
  return {loadRecord<Number>(uuid), loadRecord<Number>(uuid + sizeof(Number))};
}

/// Converts the operands one by one, up to the first that is none. Returns the exit status.
int convert(const char* cmd, int argc, char** argv, const char* usage,
            int (*convertOne)(const char* operand, bool hostOrder)) {
  bool hostOrder = false;
  return onHost(
      cmd, argc, argv,
      {.usage = usage, .letters = "hb", .words = kLongOptions, .own = {{'b', &hostOrder}}},
      [&](const Target& target) {
        int status = 0;
        for (int i = 0; i < target.options.operandCount() && status == 0; ++i)
          status = convertOne(target.options.operands()[i], hostOrder);
        return status;
      });
}

int numberToUuid(const char* operand, bool hostOrder) {
  NumberPair pair{};
  if (std::sscanf(operand, "%llu,%llu", &pair.first, &pair.second) != 2) {
    std::printf("cannot recognize uuid number pair %s\n", operand);
    return 1;
  }
  std::uint8_t uuid[kUuidSize];
  hostOrder ? storePair<host64>(pair, uuid) : storePair<net64>(pair, uuid);
  char text[64];
  uuid2normalstr(uuid, text, sizeof text);
  std::printf("%s: %s\n", operand, text);
  return 0;
}

int uuidToNumber(const char* operand, bool hostOrder) {
  std::uint8_t uuid[kUuidSize];
  if (!normalstr2uuid(uuid, operand)) {
    std::printf("cannot recognize uuid: %s\n", operand);
    return 1;
  }
  const NumberPair pair = hostOrder ? loadPair<host64>(uuid) : loadPair<net64>(uuid);
  std::printf("%s: %llu,%llu\n", operand, pair.first, pair.second);
  return 0;
}

}  // namespace

int Number2Uuid(const char* cmd, int argc, char** argv) {
  static constexpr char kUsage[] =
      "Convert coma separated number pairs to uuids.\n\n"
      "Usage: tarnioctl %s <number1,number2>\n"
      "    -b          : toggle byte order\n" USAGE_HELP;
  return convert(cmd, argc, argv, kUsage, numberToUuid);
}

int Uuid2Number(const char* cmd, int argc, char** argv) {
  static constexpr char kUsage[] =
      "Convert uuids like 5a43ddda-c21a-632a-4ae1-00505699723f to number pairs.\n\n"
      "Usage: tarnioctl %s <uuid>\n"
      "    -b          : toggle byte order\n" USAGE_HELP;
  return convert(cmd, argc, argv, kUsage, uuidToNumber);
}
