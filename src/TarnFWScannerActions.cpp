#include "TarnFWScannerActions.h"

#include <arpa/inet.h>

#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

/// Records the first failure and ends the input. The message is cut to its field.
__attribute__((format(printf, 3, 4))) int fail(fw_lex_extra_* extra, FWStatus_t status,
                                               const char* format, ...) {
  if (extra->status != FW_STATUS_OK) return 0;
  extra->status = status;
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(extra->message, sizeof extra->message, format, arguments);
  va_end(arguments);
  return 0;
}

/// A failure that is none of the text: the parser refuses the token wherever it stands.
int failHard(fw_lex_extra_* extra, FWStatus_t status, const char* message) {
  fail(extra, status, "%s", message);
  return TK_YYUNDEF;
}

int outOfMemory(fw_lex_extra_* extra) {
  return failHard(extra, FW_STATUS_OUT_OF_MEMORY, "out of memory");
}

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr std::uint8_t hexDigit(char c) {
  return static_cast<std::uint8_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
}

std::uint8_t hexByte(const char* digits) {
  return static_cast<std::uint8_t>(hexDigit(digits[0]) << 4 | hexDigit(digits[1]));
}

/// Six bytes of two digits each, with one character between them.
fw_ether_ etherBytes(const char* text) {
  fw_ether_ ether;
  for (std::size_t i = 0; i < sizeof ether.octet; ++i) ether.octet[i] = hexByte(text + 3 * i);
  return ether;
}

constexpr std::size_t kEtherLength = 17;

/// So many digits fit into 64 bits whatever they are.
constexpr std::size_t kSafeDigits = 18;

int scanEtherPair(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, int token) {
  void* room = extra->arena.allocateFor<FWEtherPair>();
  if (room == nullptr) return outOfMemory(extra);
  value->etherPair =
      ::new (room) FWEtherPair{etherBytes(text.data), etherBytes(text.data + kEtherLength + 1)};
  return token;
}

/// The number of the digits at `at`, which comes to stand after them.
std::int64_t readDigits(const char*& at) {
  std::int64_t number = 0;
  for (; isDigit(*at); ++at) number = 10 * number + (*at - '0');
  return number;
}

/// A number with a sign or with more digits than 64 bits always hold. Apart from the others, which
/// then need no room for what is kept across calls.
[[gnu::noinline]] int scanLongDecimal(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  const auto [end, error] = std::from_chars(text.data, text.data + text.length, value->number, 10);
  if (error != std::errc{}) {
    errno = ERANGE;
    return fail(extra, FW_STATUS_PARSING_ERROR, "decimal integer overflows - %s", text.data);
  }
  errno = 0;
  return TK_NUMBER;
}

int failRange(fw_lex_extra_* extra, const char* bound, ScannedText text) {
  errno = ERANGE;
  return fail(extra, FW_STATUS_PARSING_ERROR, "%s bound of decimal range overflows - %s", bound,
              text.data);
}

/// A range with more digits than 64 bits always hold.
int scanLongRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  const char* const end = text.data + text.length;
  std::int64_t low = 0;
  const auto first = std::from_chars(text.data, end, low);
  if (first.ec != std::errc{}) return failRange(extra, "low", text);
  std::int64_t high = 0;
  const auto second = std::from_chars(first.ptr + 1, end, high);
  if (second.ec != std::errc{}) return failRange(extra, "high", text);
  errno = 0;
  value->numberRange = {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(high)};
  return TK_NUMBER_RANGE;
}

/// `inet_pton` of one part of a range, or the failure that names the part.
template <typename Address>
bool parseAddress(fw_lex_extra_* extra, int family, std::string_view part, Address* address) {
  char copy[INET6_ADDRSTRLEN + 1];
  const std::size_t length = part.copy(copy, sizeof copy - 1);
  copy[length] = '\0';
  if (length == part.size() && inet_pton(family, copy, address) == 1) return true;
  fail(extra, FW_STATUS_INVALID_ADDRESS, "invalid ip address - %s", copy);
  return false;
}

}  // namespace

int scanText(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, int token) {
  value->text = extra->arena.copy(text.data, text.length);
  return value->text == nullptr ? outOfMemory(extra) : token;
}

int scanQuoted(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  const ScannedText body = {text.data + 1, text.length - 2};
  if (body.length > kParserTextLimit) {
    return fail(extra, FW_STATUS_NAME_TOO_LONG, "identifier too long - %s", text.data);
  }
  // A NUL inside the quotes ends the text: names are C texts from here on.
  return scanText(extra, value, {body.data, strnlen(body.data, body.length)}, TK_STRING);
}

int refuseLongQuoted(fw_lex_extra_* extra) {
  return fail(extra, FW_STATUS_NAME_TOO_LONG, "identifier too long - %s",
              extra->input.held().c_str());
}

int refuseLostComment(fw_lex_extra_* extra) {
  return fail(extra, FW_STATUS_PARSING_ERROR, "comment is not closed");
}

int refuseInput(fw_lex_extra_* extra) {
  try {
    throw;
  } catch (const CTarnFWException& e) {
    return failHard(extra, static_cast<FWStatus_t>(e.retcode()), e.what());
  } catch (const std::bad_alloc&) {
    return outOfMemory(extra);
  }
}

void throwScannerError(const char* message) {
  const std::string_view text(message);
  // The generated code has two words for it. The second also stands for a match of 2 GB.
  if (text.find("out of dynamic memory") != text.npos ||
      text.find("buffer overflow") != text.npos) {
    throw std::bad_alloc();
  }
  throw CTarnFWException(message, static_cast<int>(FW_STATUS_INTERNAL_ERROR));
}

int scanIdentifier(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  if (text.length > kParserTextLimit) {
    return fail(extra, FW_STATUS_NAME_TOO_LONG, "identifier is too long - %s", text.data);
  }
  return scanText(extra, value, text, TK_STRING);
}

int scanDecimal(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  if (text.length > kSafeDigits || *text.data == '-') return scanLongDecimal(extra, value, text);
  const char* at = text.data;
  value->number = readDigits(at);
  errno = 0;
  return TK_NUMBER;
}

int scanHexadecimal(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  constexpr std::size_t kPrefix = 2;
  const char* const end = text.data + text.length;
  const auto read = std::from_chars(text.data + kPrefix, end, value->number, 16);
  if (read.ec != std::errc{}) errno = ERANGE;
  if (errno != 0) {
    return fail(extra, FW_STATUS_PARSING_ERROR, "hex integer overflows - %s", text.data);
  }
  return TK_NUMBER;
}

int scanRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  if (text.length > kSafeDigits) return scanLongRange(extra, value, text);
  const char* at = text.data;
  const std::int64_t low = readDigits(at);
  const std::int64_t high = readDigits(++at);
  errno = 0;
  value->numberRange = {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(high)};
  return TK_NUMBER_RANGE;
}

int scanIPv4ShortRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  const std::string_view whole(text.data, text.length);
  const std::size_t dash = whole.find('-');
  const std::string_view first = whole.substr(0, dash);
  FWIPv4Range range;
  if (!parseAddress(extra, AF_INET, first, &range.first)) return 0;
  char last[INET_ADDRSTRLEN];
  const std::size_t kept = first.rfind('.') + 1;
  first.copy(last, kept);
  const std::size_t digits = whole.copy(last + kept, sizeof last - kept, dash + 1);
  if (!parseAddress(extra, AF_INET, {last, kept + digits}, &range.last)) return 0;
  value->ipv4Range = range;
  return TK_IPV4_RANGE;
}

int scanIPv4Range(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  const std::string_view whole(text.data, text.length);
  const std::size_t dash = whole.find('-');
  FWIPv4Range range;
  if (!parseAddress(extra, AF_INET, whole.substr(0, dash), &range.first)) return 0;
  if (!parseAddress(extra, AF_INET, whole.substr(dash + 1), &range.last)) return 0;
  value->ipv4Range = range;
  return TK_IPV4_RANGE;
}

int scanIPv6Range(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  const std::string_view whole(text.data, text.length);
  const std::size_t dash = whole.find('-');
  FWIPv6Range range;
  if (!parseAddress(extra, AF_INET6, whole.substr(0, dash), &range.first)) return 0;
  if (!parseAddress(extra, AF_INET6, whole.substr(dash + 1), &range.last)) return 0;
  void* room = extra->arena.allocateFor<FWIPv6Range>();
  if (room == nullptr) return outOfMemory(extra);
  std::memcpy(room, &range, sizeof range);
  value->ipv6Range = static_cast<FWIPv6Range*>(room);
  return TK_IPV6_RANGE;
}

int scanIdPort(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text, char separator) {
  std::uint8_t id[16];
  const char* digits = text.data;
  for (std::uint8_t& byte : id) {
    if (*digits == '-') ++digits;
    byte = hexByte(digits);
    digits += 2;
  }
  void* room = extra->arena.allocateFor<FWIdPort>();
  if (room == nullptr) return outOfMemory(extra);
  FWIdPort result = {};
  std::snprintf(result.text, sizeof result.text,
                "%02x %02x %02x %02x %02x %02x %02x %02x-%02x %02x %02x %02x %02x %02x %02x %02x",
                id[0], id[1], id[2], id[3], id[4], id[5], id[6], id[7], id[8], id[9], id[10],
                id[11], id[12], id[13], id[14], id[15]);
  result.port =
      static_cast<std::uint32_t>(std::strtoul(std::strchr(text.data, separator) + 1, nullptr, 10));
  std::memcpy(room, &result, sizeof result);
  value->idPort = static_cast<FWIdPort*>(room);
  return TK_ID_PORT;
}

int scanEther(YYSTYPE* value, ScannedText text) {
  value->ether = etherBytes(text.data);
  return TK_ETHER;
}

int scanEtherRange(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  return scanEtherPair(extra, value, text, TK_ETHER_RANGE);
}

int scanEtherMask(fw_lex_extra_* extra, YYSTYPE* value, ScannedText text) {
  return scanEtherPair(extra, value, text, TK_ETHER_MASK);
}

}  // namespace TarnFirewall
