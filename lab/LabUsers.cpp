// Commands 80 to 82: the sids that users have.
#include "LabUsers.h"

#include "LabFamily.h"
#include "LabSid.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

/// A user, and after it the sids. It is stored as it is answered.
namespace User {
constexpr std::size_t size = 88;
constexpr U8 active{0, "active"};
constexpr U32 sids{4, "sids"}, connections{12, "connections"};
constexpr Blob uid{16, Sid::size, "uid", As::sid};
}  // namespace User

ConstBytes sidOf(ConstBytes user, std::size_t place) {
  return part(user, User::size + place * Sid::size, Sid::size);
}

std::string userText(ConstBytes user) {
  std::string text = Sid::text(User::uid.get(user)) +
                     (User::active.get(user) != 0 ? " active" : " inactive") +
                     format(", %u connections", User::connections.get(user));
  for (std::uint32_t i = 0; i < User::sids.get(user); ++i) {
    text += "\n  " + Sid::text(sidOf(user, i));
  }
  return text;
}

constexpr Table users{"users", User::size, userText};

/// The place of a user; the count of them when there is none such.
std::size_t placeOfUser(const Table::Records& all, ConstBytes uid) {
  std::size_t place = 0;
  while (place < all.size() &&
         std::memcmp(&all[place][User::uid.offset], uid.data(), Sid::size) != 0) {
    ++place;
  }
  return place;
}

std::size_t placeOfSid(ConstBytes user, ConstBytes sid) {
  std::size_t place = 0;
  while (place < User::sids.get(user) &&
         std::memcmp(sidOf(user, place).data(), sid.data(), Sid::size) != 0) {
    ++place;
  }
  return place;
}

/// Adds a sid that the user does not have yet.
void addSid(ByteVector& user, ConstBytes sid) {
  const std::uint32_t count = User::sids.get(user);
  if (placeOfSid(user, sid) < count) return;
  user.insert(user.end(), sid.begin(), sid.end());
  User::sids.put(Bytes(user), count + 1);
}

void removeSid(ByteVector& user, ConstBytes sid) {
  const std::uint32_t count = User::sids.get(user);
  const std::size_t place = placeOfSid(user, sid);
  if (place == count) return;
  const auto at = user.begin() + static_cast<std::ptrdiff_t>(User::size + place * Sid::size);
  user.erase(at, at + static_cast<std::ptrdiff_t>(Sid::size));
  User::sids.put(Bytes(user), count - 1);
}

ByteVector newUser(ConstBytes uid) {
  ByteVector user(User::size);
  User::uid.put(Bytes(user), uid);
  return user;
}

// Command 80
constexpr std::size_t sidsAt = 84;
constexpr U32 operation{4, "operation"}, sidCount{8, "sids"};
constexpr Blob uid{12, Sid::size, "uid", As::sid};
constexpr std::uint32_t addSids = 0, deleteSids = 1;

/// What is wrong with the sids of a body; empty when nothing is.
std::string sidsFault(const Body& body) {
  if (std::string fault = Sid::fault(uid.get(body)); !fault.empty()) return "uid: " + fault;
  for (std::size_t at = sidsAt; at < body.size(); at += Sid::size) {
    if (std::string fault = Sid::fault(part(body.bytes(), at, Sid::size)); !fault.empty()) {
      return fault;
    }
  }
  return "";
}

/// Adds the sids to the user, who need not be known, or takes them away. Without sids, the user
/// goes.
std::uint32_t change(Context context, const Body& body, Table::Records& all) {
  const bool adding = operation.get(body) == addSids;
  const std::size_t place = placeOfUser(all, uid.get(body));
  if (place == all.size()) {
    if (!adding) {
      return context.refuse(Status::noUser, "there is no user " + Sid::text(uid.get(body)));
    }
    all.push_back(newUser(uid.get(body)));
  }
  for (std::size_t at = sidsAt; at < body.size(); at += Sid::size) {
    const ConstBytes sid = part(body.bytes(), at, Sid::size);
    adding ? addSid(all[place], sid) : removeSid(all[place], sid);
  }
  if (!adding && sidCount.get(body) == 0) {
    all.erase(all.begin() + static_cast<std::ptrdiff_t>(place));
  }
  return Status::ok;
}

std::uint32_t changeUser(Context context, Body& body) {
  if (operation.get(body) > deleteSids) {
    return context.refuse(Status::invalidArgument, format("operation %u", operation.get(body)));
  }
  if (std::uint64_t{sidCount.get(body)} * Sid::size != body.size() - sidsAt) {
    return context.refuse(Status::badMessage,
                          format("%u sids in %zu bytes", sidCount.get(body), body.size() - sidsAt));
  }
  if (const std::string fault = sidsFault(body); !fault.empty()) {
    return context.refuse(Status::invalidAttribute, fault);
  }
  Table::Records all = users.load(context.store, context.target.folder);
  const std::uint32_t status = change(context, body, all);
  if (status == Status::ok) users.save(context.store, context.target.folder, all);
  return status;
}

// Commands 81 and 82
constexpr U32 userCount{4, "users"}, byteCount{8, "bytes"};

std::uint32_t countUsers(Context context, Body& body) {
  const Table::Records all = users.load(context.store, context.target.folder);
  userCount.put(body, static_cast<std::uint32_t>(all.size()));
  byteCount.put(body, static_cast<std::uint32_t>(bytesOf(all)));
  return Status::ok;
}

/// Answers with as many whole users as the request has room for.
std::uint32_t readUsers(Context context, Body& body) {
  if (byteCount.get(body) > body.size() - sidsAt) {
    return context.refuse(Status::badMessage, format("users of %u bytes, room for %zu",
                                                     byteCount.get(body), body.size() - sidsAt));
  }
  const std::uint32_t most = userCount.get(body);
  std::uint32_t left = byteCount.get(body), count = 0;
  std::size_t at = sidsAt;
  for (const ByteVector& user : users.load(context.store, context.target.folder)) {
    if (count == most || user.size() > left) break;
    copyRecord(body.reply(at, user.size()), user);
    at += user.size();
    left -= static_cast<std::uint32_t>(user.size());
    ++count;
  }
  return Status::ok;
}

std::string sidRecordText(ConstBytes sid) { return Sid::text(sid); }

/// Users one after the other, up to the first that is none.
std::vector<std::string> userLines(ConstBytes rest) {
  std::vector<std::string> lines;
  while (rest.size() >= User::size && Sid::fault(User::uid.get(rest)).empty()) {
    const std::uint32_t sids = User::sids.get(rest);
    if (sids > (rest.size() - User::size) / Sid::size) break;
    const std::size_t size = User::size + sids * Sid::size;
    std::string text = userText(rest.first(size));
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
      lines.push_back(text.substr(0, end));
      text.erase(0, end + 1);
    }
    lines.push_back(text);
    rest = rest.subspan(size);
  }
  return lines;
}

/// Active and inactive users, with none to three sids.
void fill(Context context) {
  if (!context.host.isShowpiece(context.target.index)) return;
  Table::Records all;
  for (std::uint32_t i = 0; i < 4; ++i) {
    ByteVector user = newUser(Sid::make(5, {21, 1004336348, 1177238915, 1101 + i}));
    const bool active = i % 2 == 0;
    User::active.put(Bytes(user), active ? 1 : 0);
    User::connections.put(Bytes(user), active ? 7 + i : 0);
    for (std::uint32_t group = 0; group < 3 - i; ++group) {
      addSid(user, Sid::make(5, {21, 1004336348, 1177238915, 513 + 10 * i + group}));
    }
    all.push_back(user);
  }
  users.save(context.store, context.target.folder, all);
}

constexpr RecordKind sidRecords{Sid::size, sidRecordText};
constexpr RecordKind userRecords{0, nullptr, {}, userLines};

constexpr CommandKind commands[] = {
    {.number = 80,
     .least = sidsAt,
     .answer = changeUser,
     .request = {Reserved{0, 4}, operation, sidCount, uid},
     .list = {.record = &sidRecords, .inRequest = true, .count = sidCount, .at = sidsAt}},
    {.number = 81,
     .least = sidsAt,
     .answer = readUsers,
     .request = {Reserved{0, 4}, userCount, byteCount, Reserved{12, 72}},
     .list = {.record = &userRecords, .count = userCount, .at = sidsAt}},
    {.number = 82,
     .least = sidsAt,
     .answer = countUsers,
     .request = {Reserved{0, sidsAt}},
     .reply = {userCount, byteCount}},
};

constexpr Table tables[] = {users};

}  // namespace

bool hasUser(const CommandContext& context, ConstBytes sid) {
  const Table::Records all = users.load(context.store, context.target.folder);
  return placeOfUser(all, sid) < all.size();
}

constinit const Family userFamily{.commands = commands, .fill = fill, .tables = tables};

}  // namespace TarnLab
