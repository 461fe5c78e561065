#pragma once

/// Plain values that the scanner hands to the parser, and the record by which one parse keeps the
/// scanner's failure. All but that record are trivially copyable, so that the parser's stack may be
/// moved as bytes; what is pointed to lies in the parse's arena and is never freed by itself.

#include <netinet/in.h>

#include <cstdint>
#include <memory>

#include "TarnFWAddress.h"
#include "TarnFWLoadMemory.h"
#include "TarnFWParserArena.h"
#include "TarnFWProtocolNames.h"
#include "TarnFWScannerInput.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Longest text of a token in characters: quoted strings and identifiers above it are refused.
inline constexpr std::size_t kParserTextLimit = 255;

/// What a text that may be left out is without it.
inline constexpr FWParserText kNoText = {"", 0};

/// The two numbers of a range token as they were written: unordered, unchecked.
struct FWNumberRange {
  std::uint32_t low;
  std::uint32_t high;
};

struct FWIPv4Range {
  in_addr first;
  in_addr last;
};

struct FWIPv6Range {
  in6_addr first;
  in6_addr last;
};

/// An address, and the end or the mask that follows it.
struct FWEtherPair {
  fw_ether_ first;
  fw_ether_ second;
};

/// A virtual machine's or switch's identifier in the form of the host's configuration files, and
/// the port that follows it.
struct FWIdPort {
  char text[64];
  std::uint32_t port;
};

/// An IPv4 address with a port in host order.
struct FWIPPort {
  in_addr address;
  std::uint16_t port;
};

/// What one parse carries beside the scanner: the scanner's first failure and its input, the memory
/// of the tokens and that of the results. The caller of the parser owns it and value-initialises it
/// before the parse.
struct fw_lex_extra_ {
  FWStatus_t status = FW_STATUS_OK;  // 0, or the status of the first failure of the scanner
  char message[256] = {};            // its text, always terminated
  bool unclosed = false;             // a comment is not closed, and so is none after it
  CTarnFWScannerInput input;
  CTarnFWParserArena arena;
  std::shared_ptr<CTarnFWLoadMemory> memory;  // null until the parse begins
  CTarnFWProtocolNames protocols;
};

}  // namespace TarnFirewall
