// What the host holds, as text: for "tarnlab show", and for what the host daemon writes out.
#ifndef TARNLAB_HOLDINGS_H
#define TARNLAB_HOLDINGS_H

#include <functional>
#include <string>

#include "LabHost.h"
#include "LabSetFile.h"
#include "LabTable.h"

namespace TarnLab::Holdings {

/// Calls the visitor with the name and the set of each file in a folder.
void forEachSet(const Store& store, const std::string& folder,
                const std::function<void(const std::string&, const SetFile&)>& visit);

/// A filter, and below it its flows in numbers, its settings that are not as usual, and its sets.
std::string filter(const Store& store, const Host& host, std::size_t index);

/// The settings of a folder that are not as usual, and how much its sets hold.
std::string settings(const Store& store, const std::string& folder);
std::string sets(const Store& store, const std::string& folder);

/// A set with all of its rules, addresses or elements.
std::string set(const std::string& name, const SetFile& set);

/// A table with its records; empty when it has none.
std::string table(const Store& store, const std::string& folder, const Table& table);

/// The table of that name, of filters or of the host; null when no family has it.
const Table* findTable(std::string_view name);

/// How many flows there are of each kind, in words.
std::string flowCounts(const Store& store, const std::string& folder);

}  // namespace TarnLab::Holdings

#endif
