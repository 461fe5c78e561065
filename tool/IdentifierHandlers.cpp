#include <cstdio>

#include "HandlerCommon.h"
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

}  // namespace

int Number2Uuid(const char* cmd, int argc, char** argv) {
  static constexpr char kUsage[] =
      "Convert coma separated number pairs to uuids.\n\n"
      "Usage: tarnioctl %s <number1,number2>\n"
      "    -b          : toggle byte order\n"
      "    -h          : this help message\n";
  const Usage usage(kUsage, cmd);

  bool hostOrder = false;
  Options options(argc, argv, "hb", kLongOptions);
  for (int option; (option = options.next()) != -1;) {
    if (option == 'h') return usage(0);
    if (option != 'b') return usage(1);
    hostOrder = true;
  }

  for (int i = 0; i < options.operandCount(); ++i) {
    const char* const operand = options.operands()[i];
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
  }
  return 0;
}

int Uuid2Number(const char* cmd, int argc, char** argv) {
  static constexpr char kUsage[] =
      "Convert uuids like 5a43ddda-c21a-632a-4ae1-00505699723f to number pairs.\n\n"
      "Usage: tarnioctl %s <uuid>\n"
      "    -b          : toggle byte order\n"
      "    -h          : this help message\n";
  const Usage usage(kUsage, cmd);

  bool hostOrder = false;
  Options options(argc, argv, "hb", kLongOptions);
  for (int option; (option = options.next()) != -1;) {
    if (option == 'h') return usage(0);
    if (option != 'b') return usage(1);
    hostOrder = true;
  }

  for (int i = 0; i < options.operandCount(); ++i) {
    const char* const operand = options.operands()[i];
    std::uint8_t uuid[kUuidSize];
    if (!normalstr2uuid(uuid, operand)) {
      std::printf("cannot recognize uuid: %s\n", operand);
      return 1;
    }
    const NumberPair pair = hostOrder ? loadPair<host64>(uuid) : loadPair<net64>(uuid);
    std::printf("%s: %llu,%llu\n", operand, pair.first, pair.second);
  }
  return 0;
}
