#pragma once

/// What the tests that walk all commands know of each family of them. A family's commands stand in
/// a file of their own beside this one, also the ones whose classes are not built yet.

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "CommandMakers.h"
#include "Expect.h"
#include "FakeKernel.h"
#include "TarnFWCreateCmd.h"

/// One command and its golden request.
struct Golden {
  const char* className;
  int number;
  int type;
  const char* name;       // as logs print it
  std::uint32_t request;  // bytes of the body that really are request
  std::uint32_t filled;   // end of the last byte in them that this object sets
  std::uint32_t entries;  // where a creation's entries begin, the body's size for all others
  CommandPtr (*make)();
  Bytes body;
};

/// One field or record that a command reads: the size that the reply must have for it, and what is
/// printed then. Fields are listed in the order in which they are read.
struct Field {
  std::size_t end;
  std::string text;
  bool silent = false;  // read without a printer, too
};

/// Records of a reply: where they stand, the text of each, and what the log calls them, if it says
/// how many were retrieved.
struct Records {
  std::size_t first = 0;
  std::size_t stride = 0;
  std::vector<std::string> texts;
  std::string logged;
};

/// One reply of a command, whole, and what is read of it.
struct ReplyRow {
  const char* className;
  std::function<CommandPtr()> make;
  Bytes reply;
  std::vector<Field> fields;
  Records records;
};

/// A command whose reply has nothing that it reads.
inline void readsNothing(std::vector<ReplyRow>& rows, const char* name,
                         std::function<CommandPtr()> make) {
  const std::size_t size = make()->getMsgSize();
  rows.push_back({name, std::move(make), Bytes(size, 0xff), {}, {}});
}

/// The creations, which keep a transaction id, and where their heads have it.
struct Creation {
  const char* className;
  std::function<std::unique_ptr<TarnFirewall::CTarnFWCreateCmd>()> make;
  std::size_t flags;
  std::size_t transaction;
};

/// Every class of the family stands in `goldens` or in `later`; a class that is built has its reply
/// in `replies`, `creations` or a test of its own. Those in `cutRequest` write more than the
/// catalogue calls their request, so that a peer on a socket does not get the rest.
struct CommandFamily {
  std::vector<Golden> goldens;
  std::vector<ReplyRow> replies;
  std::vector<Creation> creations;
  std::set<std::string> ownReplyTest;
  std::set<std::string> later;
  std::set<std::string> cutRequest = {};
};

CommandFamily ruleSetCommands();
CommandFamily addrSetCommands();
CommandFamily connectionCommands();
CommandFamily identityCommands();
CommandFamily settingsCommands();
CommandFamily loadBalancerCommands();
CommandFamily profileCommands();

/// All families.
inline std::vector<CommandFamily> commandFamilies() {
  std::vector<CommandFamily> families;
  families.push_back(ruleSetCommands());
  families.push_back(addrSetCommands());
  families.push_back(connectionCommands());
  families.push_back(identityCommands());
  families.push_back(settingsCommands());
  families.push_back(loadBalancerCommands());
  families.push_back(profileCommands());
  return families;
}

/// All rows of one kind: `rowsOf(&CommandFamily::goldens)`.
template <typename Rows>
Rows rowsOf(Rows CommandFamily::*kind) {
  Rows all;
  for (const CommandFamily& family : commandFamilies()) {
    all.insert(all.end(), (family.*kind).begin(), (family.*kind).end());
  }
  return all;
}
template <typename Class>
std::set<Class> namesOf(std::set<Class> CommandFamily::*kind) {
  std::set<Class> all;
  for (const CommandFamily& family : commandFamilies()) {
    all.insert((family.*kind).begin(), (family.*kind).end());
  }
  return all;
}

/// A selection index with all its bytes different.
inline constexpr unsigned int kFrom = 0x04030201;

// A moment that no calendar has is printed the same on every host, whenever it was started.
inline constexpr std::uint64_t kNoMoment = 0x7fffffffffffffff;
inline constexpr const char* kTime = "realization time : 1900-01-00T00:00:00\n";
inline constexpr const char* kHashTime = "# realization time : 1900-01-00T00:00:00\n";

/// Generation and time of a reply.
inline Bytes& at(Bytes& reply, std::size_t generation, std::size_t time) {
  return put64(put64(reply, generation, 42), time, kNoMoment);
}
