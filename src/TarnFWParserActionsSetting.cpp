#include "TarnFWParserActionsSetting.h"

#include <strings.h>

#include <algorithm>
#include <iterator>

#include "TarnFWAddrSetID.h"
#include "TarnFWCmdConfigTCPStrict.h"
#include "TarnFWCmdCreateSpoofGuard.h"
#include "TarnFWCmdDeleteSpoofGuard.h"
#include "TarnFWCmdEnableVerbose.h"
#include "TarnFWCmdGetTCPStrict.h"
#include "TarnFWCmdGetTimeout.h"
#include "TarnFWCmdSetTimeout.h"
#include "TarnFWParserActionsAddress.h"
#include "TarnFWUtilTimeout.h"

namespace TarnFirewall {

namespace {

constexpr std::uint8_t kMaxDebugLevel = 15;

/// Halves of the kernel's firewall by their words.
constexpr struct {
  const char* word;
  unsigned int component;
} kDebugWords[] = {{"dp", 1}, {"pf", 1}, {"cp", 2}};

bool isWord(const FWParserText& text, const char* word) { return strcasecmp(text.data, word) == 0; }

/// The grammar takes no other kind of address where a MAC address stands.
const CTarnFWAddressEther& asEther(const CTarnFWAddress& mac) {
  return static_cast<const CTarnFWAddressEther&>(mac);
}

void checkTCP(const FWParserText& protocol) {
  if (!isWord(protocol, "tcp")) throw CParseFailure("expecting keyword tcp");
}

/// Values of 0, all of them marked.
FWInstTimeout_ allTimeouts() {
  FWInstTimeout_ timeouts{};
  std::fill(std::begin(timeouts.marks), std::end(timeouts.marks), std::uint8_t{1});
  return timeouts;
}

}  // namespace

std::unique_ptr<CTarnFWCmd> createSpoofGuard(const dvs_port_* port,
                                             std::unique_ptr<CTarnFWAddress> addresses,
                                             std::unique_ptr<CTarnFWAddress> mac) {
  return std::make_unique<CTarnFWCmdCreateSpoofGuard>(port, std::move(addresses), asEther(*mac));
}

std::unique_ptr<CTarnFWCmd> createSpoofGuard(const dvs_port_* port, const FWParserText& set,
                                             std::unique_ptr<CTarnFWAddress> mac) {
  return createSpoofGuard(port, std::make_unique<CTarnFWAddrSetID>(set.data, false),
                          std::move(mac));
}

std::unique_ptr<CTarnFWCmd> deleteSpoofGuard(const dvs_port_* port,
                                             std::unique_ptr<CTarnFWAddress> mac) {
  return std::make_unique<CTarnFWCmdDeleteSpoofGuard>(port, &asEther(*mac));
}

std::unique_ptr<CTarnFWCmd> configTCPStrict(const dvs_port_* port, const FWParserText& protocol,
                                            bool strict) {
  checkTCP(protocol);
  return std::make_unique<CTarnFWCmdConfigTCPStrict>(port, strict);
}

std::unique_ptr<CTarnFWCmd> getTCPStrict(const dvs_port_* port, const FWParserText& protocol) {
  checkTCP(protocol);
  return std::make_unique<CTarnFWCmdGetTCPStrict>(port);
}

std::unique_ptr<CTarnFWCmd> setTimeout(const dvs_port_* port, const FWParserText& name,
                                       std::int64_t value) {
  const std::uint32_t seconds = number32(value, "invalid timeout value");
  return std::make_unique<CTarnFWCmdSetTimeout>(port, name.data, seconds);
}

std::unique_ptr<CTarnFWCmd> setTimeouts(const dvs_port_* port, const FWParserText& values) {
  std::uint32_t seconds[kTimeouts];
  if (!ParseTimeoutList(values.data, seconds, kTimeouts)) throw CParseFailure("invalid timeouts");
  FWInstTimeout_ timeouts = allTimeouts();
  std::copy(std::begin(seconds), std::end(seconds), std::begin(timeouts.values));
  return std::make_unique<CTarnFWCmdSetTimeout>(port, timeouts);
}

std::unique_ptr<CTarnFWCmd> getTimeouts(const dvs_port_* port) {
  return std::make_unique<CTarnFWCmdGetTimeout>(port, allTimeouts());
}

std::unique_ptr<CTarnFWCmd> debug(const dvs_port_* port, const FWParserText& component,
                                  std::int64_t level) {
  const unsigned int value =
      numberUpTo<std::uint8_t>(level, kMaxDebugLevel, "debug level value overflows");
  for (const auto& row : kDebugWords) {
    if (isWord(component, row.word)) {
      return std::make_unique<CTarnFWCmdEnableVerbose>(port, row.component, value);
    }
  }
  return nullptr;
}

}  // namespace TarnFirewall
