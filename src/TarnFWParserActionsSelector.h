#pragma once

/// Actions of selectors: which filter a statement is for. Values live in the parse's arena.

#include "TarnFWParserActions.h"

namespace TarnFirewall {

/// Selector of all statements that name none, and the agent of those that name a switch port or a
/// vNIC. Process-wide: `config default agent` sets it for this parse and all later ones.
extern dvs_port_ g_tarnfw_default_dvsport;

dvs_port_* defaultSelector(const FWParse& parse);

/// `type` is `FW_SELECTOR_DVSPORT` or `FW_SELECTOR_VNIC`.
dvs_port_* selectorOfIdPort(const FWParse& parse, std::uint8_t type, const FWIdPort& idPort);
dvs_port_* selectorOfVnic(const FWParse& parse, std::uint8_t type, const FWParserText& text);

dvs_port_* selectorOfSwitch(const FWParse& parse, const FWParserText& id, std::int64_t port);
dvs_port_* selectorOfFilter(const FWParse& parse, const FWParserText& name);
dvs_port_* selectorOfVif(const FWParse& parse, const FWParserText& uuid);

/// Makes the selector, with this agent, the process-wide default.
void setDefaultSelector(const FWParserText& agent, const dvs_port_& port);

}  // namespace TarnFirewall
