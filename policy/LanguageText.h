#pragma once

/// Names and addresses as the configuration language writes them, and as people read them.

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "TarnFWRecords.h"

/// Something that the language can't say; the text is the reason, as the end of a sentence that
/// begins with what it is.
class Unsayable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A name or text in the quotes that it needs. Throws `Unsayable` for one with both kinds of quotes
/// and for one that is longer than the language takes.
std::string quoted(std::string_view text);

/// An address, block, range, Ethernet address or reference of a set, with its "not". Throws
/// `Unsayable` for what is none of these.
std::string addressText(const TarnFirewall::FWAddress_& address);

/// Six octets: "00:11:22:33:44:55".
std::string macText(const std::uint8_t* octets);

/// The address for people: its text, or in parentheses why there is none.
std::string shownAddress(const TarnFirewall::FWAddress_& address);

/// The text for messages: control characters, bytes that are no UTF-8, and a backslash as \xNN.
std::string escapedText(std::string_view text);

/// The same for a name, in double quotes; a double quote in it is \x22.
std::string shownName(std::string_view name);

/// "1 rule", "2 rules".
std::string countedText(std::size_t count, const char* what);
