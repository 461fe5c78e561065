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

/// The records that a message or a direct request carries either way, such as rules, addresses and
/// names, one to a line, each line with an end.
std::string decodeRecords(const JournalEntry& entry);

}  // namespace TarnLab

#endif
