// What the parts of the address-set commands share.
#ifndef TARNLAB_ADDR_SET_COMMANDS_H
#define TARNLAB_ADDR_SET_COMMANDS_H

#include "LabCommand.h"
#include "LabSetFile.h"

namespace TarnLab::AddrSets {

inline constexpr std::size_t nameSize = 38;

/// Folder of the address sets and containers of a filter, or of those that an agent shares.
std::string folderOf(const CommandContext& context);

std::string fileOf(const CommandContext& context, std::string_view name);

/// The names in their order.
std::vector<std::string> names(const CommandContext& context);

/// A name field has to be terminated and zero behind its end: 0, or a status.
std::uint32_t checkName(const CommandContext& context, ConstBytes body, std::size_t offset);

/// Refuses for want of the set.
std::uint32_t noAddrSet(const CommandContext& context, std::string_view name);

/// The commands that read.
std::uint32_t getTypeAndSize(const CommandContext& context, CommandBody& body);
std::uint32_t getInfo(const CommandContext& context, CommandBody& body);
std::uint32_t getAddresses(const CommandContext& context, CommandBody& body);
std::uint32_t getMarks(const CommandContext& context, CommandBody& body);
std::uint32_t getEntryStatistics(const CommandContext& context, CommandBody& body);
std::uint32_t getCount(const CommandContext& context, CommandBody& body);
std::uint32_t getList(const CommandContext& context, CommandBody& body);
std::uint32_t getStatisticsList(const CommandContext& context, CommandBody& body);
std::uint32_t getElements(const CommandContext& context, CommandBody& body);

/// Statistics on and off, and the mark of one address.
std::uint32_t configure(const CommandContext& context, CommandBody& body);

}  // namespace TarnLab::AddrSets

#endif
