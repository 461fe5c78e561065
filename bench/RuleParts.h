#pragma once

/// The rule that the benchmarks measure: two CIDR addresses and a port.

#include <arpa/inet.h>

#include <memory>

#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleBuilder.h"
#include "TarnFWRuleFactory.h"

inline std::unique_ptr<TarnFirewall::CTarnFWRule> buildRule(unsigned int id) {
  using namespace TarnFirewall;
  CTarnFWRuleBuilder builder;
  builder.setId(id);
  builder.setPosition(-1);
  builder.setDirection(FW_DIRECTION_INOUT);
  builder.setType(true);
  builder.setProtocol(6, false);
  builder.setSource(std::make_unique<CTarnFWAddressIPv4CIDR>(
      in_addr{htonl(0x0a000000u + (id & 0xffff00u))}, static_cast<unsigned char>(24), false));
  builder.setDest(std::make_unique<CTarnFWAddressIPv4CIDR>(
      in_addr{htonl(0x0b000000u + (id & 0xffff00u))}, static_cast<unsigned char>(24), false));
  builder.setDestPort(static_cast<unsigned short>(1 + id % 65535), false);
  builder.setAction(std::make_unique<CTarnFWRuleActionAccept>());
  return builder.buildRule();
}
