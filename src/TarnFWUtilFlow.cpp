#include "TarnFWUtilFlow.h"

#include <cstdio>
#include <iterator>

namespace {

constexpr const char* kAlgTypes[] = {"??", "FTP", "ORACLE", "SUNRPC", "DCERPC", "TFTP"};
constexpr const char* kFlowTypes[] = {"??", "ctrl", "data"};
constexpr std::uint8_t kControl = 1;
constexpr std::uint8_t kData = 2;

}  // namespace

void StateAlgStr(std::uint8_t flowType, std::uint8_t algType, std::uint16_t port,
                 std::uint64_t controlId, std::span<char> buffer) {
  if (buffer.empty()) return;
  buffer[0] = '\0';
  if (flowType != kControl && flowType != kData) return;
  const char* const alg = kAlgTypes[algType < std::size(kAlgTypes) ? algType : 0];
  if (flowType == kControl) {
    std::snprintf(buffer.data(), buffer.size(), " alg %s(%s) %d", kFlowTypes[flowType], alg,
                  static_cast<int>(port));
  } else {
    std::snprintf(buffer.data(), buffer.size(), " alg %s(%s) %d %lx", kFlowTypes[flowType], alg,
                  static_cast<int>(port), static_cast<unsigned long>(controlId));
  }
}
