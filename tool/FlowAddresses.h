#pragma once

/// The two ends of a flow as text: MAC addresses, or IP addresses with what the protocol adds.

#include <string>

#include "TarnFWFlowRecords.h"

/// Appends at most 155 characters.
void appendConnection(std::string& text, const TarnFirewall::FWFlowRecord_& flow);
