// Entries of the lab's log as text.
#ifndef TARNLAB_DECODE_H
#define TARNLAB_DECODE_H

#include <string>

#include "LabJournal.h"

namespace TarnLab {

/// One line, without a line end: when, who, which device and request, what was asked, the answer.
std::string decodeEntry(const JournalEntry& entry);

/// The same without when and who.
std::string decodeRequest(const JournalEntry& entry);

/// The bytes that were sent and answered, sixteen to a line, each line with an end.
std::string dumpEntry(const JournalEntry& entry);

/// The rules, addresses, elements and names that a message carries either way, one to a line, each
/// line with an end; empty for anything else.
std::string decodeRecords(const JournalEntry& entry);

/// The fields of a command's request, and those of its reply: "name value, name value".
/// A field that the body is too short for is left out.
std::string decodeRequestFields(std::uint16_t command, ConstBytes body);
std::string decodeReplyFields(std::uint16_t command, ConstBytes body);

}  // namespace TarnLab

#endif
