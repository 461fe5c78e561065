#include "LabStatusNames.h"

#include <iterator>

#include "LabText.h"

namespace TarnLab {

namespace {

// Indexed by the status.
constexpr std::string_view names[] = {
    "ok",
    "lib-not-initialized",
    "invalid-lib-handle",
    "invalid-argument",
    "invalid-input-buffer",
    "unknown-error",
    "internal-error",
    "not-supported",
    "out-of-memory",
    "input-buffer-too-small",
    "cannot-initialize-io-channel",
    "socket-error",
    "cannot-load-file",
    "cannot-rename-file",
    "cannot-delete-file",
    "unknown-io-channel",
    "parsing-error",
    "integer-too-large",
    "unsupported-version",
    "ioctl-failed",
    "slowpath-ioctl-failed",
    "switch-port-not-found",
    "kernel-unsupported",
    "bad-transaction",
    "bad-update",
    "bad-message",
    "bad-state",
    "no-rule",
    "no-ruleset",
    "no-addrset",
    "no-address",
    "name-too-long",
    "id-too-long",
    "invalid-network-address",
    "invalid-addrset-type",
    "invalid-attribute",
    "invalid-attrset-type",
    "invalid-rule-action",
    "invalid-tcp-udp-port",
    "too-many-tcp-udp-ports",
    "invalid-tcp-flags",
    "invalid-tcp-options",
    "invalid-rule-direction",
    "invalid-protocol-spec",
    "missing-jump-target",
    "invalid-rule",
    "invalid-rule-target",
    "invalid-vnic-uuid",
    "vnic-uuid-not-found",
    "invalid-vnic-uuid-set",
    "ipfix-packet-full",
    "missing-nat-target",
    "unknown-protocol-name",
    "rule-address-mismatch",
    "invalid-switch-uuid",
    "component-not-found",
    "reached-maximal-components",
    "invalid-address-family",
    "invalid-timeout",
    "cannot-save-file",
    "bad-dscp-markings",
    "threshold-crossed",
    "invalid-filter-name",
    "invalid-vif-uuid",
    "failed-to-get-firewall-config",
    "kernel-out-of-memory",
    "invalid-attribute-key",
    "invalid-attribute-value",
    "unmapped-encoded-int-attribute",
    "invalid-container-name",
    "failed-to-find-uid-to-sid-mapping",
};
static_assert(std::size(names) == statusCount);

}  // namespace

std::string_view statusName(std::uint32_t status) { return names[status]; }

std::optional<std::uint32_t> statusNumber(std::string_view name) {
  if (const auto number = parseNumber(name, 0xffffffff)) {
    return static_cast<std::uint32_t>(*number);
  }
  for (std::uint32_t status = 0; status < statusCount; ++status) {
    if (equalIgnoringCase(names[status], name)) return status;
  }
  return std::nullopt;
}

}  // namespace TarnLab
