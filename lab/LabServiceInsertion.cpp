// Requests 1 to 12 of the firewall device: service instances, and the service profiles that attach
// them to filters. An instance that is to go while profiles use it is marked, and goes with the
// last of them.
#include "LabServiceInsertion.h"

#include <cerrno>

#include "LabFamily.h"

namespace TarnLab {

namespace {

// --- Service instances

/// The record, 293 bytes. It ends with the transport, by protocol.
namespace Instance {
constexpr std::size_t size = 293;
constexpr Name id{0, 32, "id", "instance"}, name{32, 64, "name", "service"};
constexpr U32 slot{96, "slot"}, deployType{100, "deploy type"}, references{104, "references"},
    marked{108, "marked"}, force{112, "force"}, protocol{116, "protocol"};
constexpr Name address{120, 128, "address", "address"};
constexpr std::size_t options = 120;  // everything that belongs to the protocol
}  // namespace Instance

namespace Macred {
constexpr U8 flip{248, "flip"};
constexpr Name gateway{249, 32, "gateway", "gateway"};
constexpr Reserved rest{281, 12, "transport"};
}  // namespace Macred

namespace Gre {
constexpr U32 key{248, "key"};
constexpr Hex32 flags{252, "flags"}, encapsulated{256, "encapsulates"};
constexpr Name gateway{260, 32, "gateway", "gateway"};
constexpr U8 flip{292, "flip"};
}  // namespace Gre

constexpr std::uint32_t ribs = 1, plankio = 2, macred = 3, gre = 4, noProtocol = 11;
constexpr std::uint32_t slots = 16, mostDeployType = 4;
constexpr std::size_t instanceLimit = 1024;

std::string transportText(ConstBytes record) {
  switch (Instance::protocol.get(record)) {
    case ribs:
      return "RIBS";
    case plankio:
      return "PLANKIO";
    case macred:
      return "MACRED " + fieldsText({Instance::address, Macred::gateway, Macred::flip}, record);
    case gre:
      return "GRE " + fieldsText({Instance::address, Gre::key, Gre::flags, Gre::encapsulated,
                                  Gre::gateway, Gre::flip},
                                 record);
    case noProtocol:
      return "no protocol";
    default:
      return fieldsText({Instance::protocol}, record);
  }
}

std::string instanceText(ConstBytes record) {
  return printable(Instance::id.get(record)) + " " +
         fieldsText({Instance::name, Instance::slot, Instance::deployType, Instance::references,
                     Instance::marked},
                    record) +
         ", " + transportText(record);
}

constexpr Table instances{"service-instances", Instance::size, instanceText};

/// The place of the instance in the records; their number when there is none.
std::size_t placeOf(const Table::Records& records, std::string_view id) {
  return static_cast<std::size_t>(
      std::find_if(records.begin(), records.end(),
                   [&](const ByteVector& record) { return Instance::id.get(record) == id; }) -
      records.begin());
}

// --- Service profiles

/// The record, 292 bytes: the one of a table in the filter's folder.
namespace Profile {
constexpr std::size_t size = 292;
constexpr Name id{0, 32, "id", "profile"}, instance{32, 32, "instance", "instance"},
    filter{64, 100, "filter", "filter"}, vendor{164, 64, "vendor template", "vendor template"},
    provided{228, 64, "vendor provided template", "vendor provided template"};
}  // namespace Profile

std::string profileText(ConstBytes record) {
  return printable(Profile::id.get(record)) + " " +
         fieldsText({Profile::instance, Profile::filter, Profile::vendor, Profile::provided},
                    record);
}

constexpr Table profiles{"service-profile", Profile::size, profileText};

constexpr std::size_t filterRoom = 99;  // characters of a filter's name in a request

/// The profiles of all filters, in the order of these.
Table::Records allProfiles(const Store& store, const Host& host) {
  Table::Records all;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    for (ByteVector& each : profiles.load(store, host.folderOf(i))) all.push_back(std::move(each));
  }
  return all;
}

// --- Requests about instances

int refuseMissing(const Request& request, std::string_view id) {
  return request.refuse(ENOENT, "there is no instance " + printable(id));
}

/// What is wrong with an instance that is to be made; empty when nothing is.
std::string instanceFault(ConstBytes record) {
  if (Instance::id.get(record).empty()) return "instance without an id";
  if (Instance::slot.get(record) >= slots) return fieldsText({Instance::slot}, record);
  if (Instance::deployType.get(record) > mostDeployType) {
    return fieldsText({Instance::deployType}, record);
  }
  if (Instance::references.get(record) != 0 || Instance::marked.get(record) != 0) {
    return "counts that are the kernel's";
  }
  switch (Instance::protocol.get(record)) {
    case macred: {
      std::string fault = reservedFault({Macred::rest}, record, "");
      return fault.empty() ? nameFault({Instance::address, Macred::gateway}, record) : fault;
    }
    case gre:
      return nameFault({Instance::address, Gre::gateway}, record);
    case ribs:
    case plankio:
    case noProtocol:
      return isZero(record.subspan(Instance::options)) ? "" : "options of a protocol that has none";
    default:
      return fieldsText({Instance::protocol}, record);
  }
}

ByteVector storedInstance(const Body& body) {
  ByteVector record(body.bytes().begin(), body.bytes().end());
  Instance::force.put(Bytes(record), 0);
  return record;
}

int createInstance(Request& request, Body& body) {
  if (const std::string fault = instanceFault(body); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  Table::Records records = instances.load(request.store, hostTableFolder);
  if (placeOf(records, Instance::id.get(body)) != records.size()) {
    return request.refuse(EEXIST, "instance " + printable(Instance::id.get(body)));
  }
  if (records.size() >= instanceLimit) return request.refuse(ENOSPC, "too many instances");
  records.push_back(storedInstance(body));
  instances.save(request.store, hostTableFolder, records);
  return 0;
}

/// The profiles stay, and the instance is not to go any more.
int replaceInstance(Request& request, Body& body) {
  if (const std::string fault = instanceFault(body); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  Table::Records records = instances.load(request.store, hostTableFolder);
  const std::size_t place = placeOf(records, Instance::id.get(body));
  if (place == records.size()) return refuseMissing(request, Instance::id.get(body));
  const std::uint32_t references = Instance::references.get(records[place]);
  records[place] = storedInstance(body);
  Instance::references.put(Bytes(records[place]), references);
  instances.save(request.store, hostTableFolder, records);
  return 0;
}

/// Only the id and the force flag count. By force the profiles that use it go as well.
int destroyInstance(Request& request, Body& body) {
  const std::string_view id = Instance::id.get(body);
  Table::Records records = instances.load(request.store, hostTableFolder);
  const std::size_t place = placeOf(records, id);
  if (place == records.size()) return refuseMissing(request, id);
  if (Instance::force.get(body) != 0) {
    for (std::size_t i = 0; i < request.host.filterCount(); ++i) {
      Table::Records kept = profiles.load(request.store, request.host.folderOf(i));
      if (std::erase_if(kept, [&](const auto& each) { return Profile::instance.get(each) == id; }))
        profiles.save(request.store, request.host.folderOf(i), kept);
    }
  }
  Instance::marked.put(Bytes(records[place]), 1);
  instances.save(request.store, hostTableFolder, records);
  settleServiceInstances(request.store, request.host);
  return 0;
}

/// Writes as many records as the buffer has room for, and counts those.
int writeRecords(Request& request, Table::Records records, std::size_t size, std::uint32_t room,
                 std::uint64_t buffer, std::uint32_t& written) {
  if (room % size != 0) return request.refuse(EINVAL, format("buffer of %u bytes", room));
  records.resize(std::min<std::size_t>(records.size(), room / size));
  ByteVector bytes;
  for (const ByteVector& each : records) bytes.insert(bytes.end(), each.begin(), each.end());
  written = static_cast<std::uint32_t>(records.size());
  return request.writeBuffer(buffer, bytes);
}

// The query, 48 bytes.
constexpr std::size_t querySize = 48;
constexpr Name wantedId{0, 32, "id", "instance"};
constexpr U32 instanceCount{32, "count"}, instanceRoom{36, "room"};
constexpr U64 instanceBuffer{40, "buffer"};

/// The instance that the query names, or all of them; an errno for one that there is not.
int chosenInstances(const Request& request, const Body& body, Table::Records& chosen) {
  const std::string_view wanted = wantedId.get(body);
  chosen = instances.load(request.store, hostTableFolder);
  if (wanted.empty()) return 0;
  std::erase_if(chosen, [&](const auto& record) { return Instance::id.get(record) != wanted; });
  return chosen.empty() ? refuseMissing(request, wanted) : 0;
}

int countInstances(Request& request, Body& body) {
  Table::Records chosen;
  if (const int error = chosenInstances(request, body, chosen)) return error;
  instanceCount.put(body, static_cast<std::uint32_t>(chosen.size()));
  return 0;
}

int readInstances(Request& request, Body& body) {
  Table::Records chosen;
  if (const int error = chosenInstances(request, body, chosen)) return error;
  std::uint32_t written = 0;
  if (const int error = writeRecords(request, chosen, Instance::size, instanceRoom.get(body),
                                     instanceBuffer.get(body), written)) {
    return error;
  }
  instanceCount.put(body, written);
  return 0;
}

// --- Requests about profiles

/// The folder of the filter of that name, or an errno.
int findFolder(const Request& request, std::string_view filter, std::string& folder) {
  const auto index = request.host.find(filter, filterRoom);
  if (!index) return request.refuse(ENOENT, "there is no filter " + printable(filter));
  folder = request.host.folderOf(*index);
  return 0;
}

int createProfile(Request& request, Body& body) {
  if (Profile::id.get(body).empty()) return request.refuse(EINVAL, "profile without an id");
  std::string folder;
  if (const int error = findFolder(request, Profile::filter.get(body), folder)) return error;
  if (!profiles.load(request.store, folder).empty()) {
    return request.refuse(EEXIST, "the filter has a profile");
  }
  const Table::Records known = instances.load(request.store, hostTableFolder);
  const std::size_t place = placeOf(known, Profile::instance.get(body));
  if (place == known.size()) return refuseMissing(request, Profile::instance.get(body));
  if (Instance::marked.get(known[place]) != 0) {
    return request.refuse(EBUSY, "the instance is marked for deletion");
  }
  profiles.save(request.store, folder, {ByteVector(body.bytes().begin(), body.bytes().end())});
  settleServiceInstances(request.store, request.host);
  return 0;
}

/// The vendor's ids are not looked at.
int destroyProfile(Request& request, Body& body) {
  if (!Profile::id.get(body).empty() || !Profile::instance.get(body).empty()) {
    return request.refuse(EINVAL, "the filter alone names its profile");
  }
  std::string folder;
  if (const int error = findFolder(request, Profile::filter.get(body), folder)) return error;
  if (profiles.load(request.store, folder).empty()) {
    return request.refuse(ENOENT, "the filter has no profile");
  }
  profiles.save(request.store, folder, {});
  settleServiceInstances(request.store, request.host);
  return 0;
}

// The query is that of the filters, 116 bytes.
constexpr std::size_t listSize = 116;
constexpr Name wantedFilter{0, 100, "filter", "filter"};
constexpr U32 profileCount{100, "count"}, profileRoom{104, "room"};
constexpr U64 profileBuffer{108, "buffer"};

int chosenProfiles(const Request& request, const Body& body, Table::Records& chosen) {
  const std::string_view wanted = wantedFilter.get(body);
  if (wanted.empty()) {
    chosen = allProfiles(request.store, request.host);
    return 0;
  }
  std::string folder;
  if (const int error = findFolder(request, wanted, folder)) return error;
  chosen = profiles.load(request.store, folder);
  return chosen.empty() ? request.refuse(ENOENT, "the filter has no profile") : 0;
}

int countProfiles(Request& request, Body& body) {
  Table::Records chosen;
  if (const int error = chosenProfiles(request, body, chosen)) return error;
  profileCount.put(body, static_cast<std::uint32_t>(chosen.size()));
  return 0;
}

int readProfiles(Request& request, Body& body) {
  Table::Records chosen;
  if (const int error = chosenProfiles(request, body, chosen)) return error;
  std::uint32_t written = 0;
  if (const int error = writeRecords(request, chosen, Profile::size, profileRoom.get(body),
                                     profileBuffer.get(body), written)) {
    return error;
  }
  profileCount.put(body, written);
  return 0;
}

// --- The usual host

struct NewInstance {
  const char* id;
  const char* name;
  std::uint32_t slot, deployType, protocol;
};

/// Every protocol, every type of deployment, and a type that nobody gave.
constexpr NewInstance newInstances[] = {
    {"web-inspection", "deep inspection of web traffic", 4, 4, gre},
    {"mail-gateway", "mail gateway", 7, 3, macred},
    {"guest-tap", "tap of a guest", 1, 1, ribs},
    {"copy-tap", "tap of a copy", 2, 2, plankio},
    {"reserve", "", 15, 0, noProtocol},
};

ByteVector recordOf(const NewInstance& made) {
  ByteVector record(Instance::size);
  const Bytes it(record);
  Instance::id.put(it, made.id);
  Instance::name.put(it, made.name);
  Instance::slot.put(it, made.slot);
  Instance::deployType.put(it, made.deployType);
  Instance::protocol.put(it, made.protocol);
  if (made.protocol == gre) {
    Instance::address.put(it, "10.20.9.8");
    Gre::key.put(it, 1234);
    Gre::flags.put(it, 0x2000);
    Gre::encapsulated.put(it, 0x6558);
    Gre::gateway.put(it, "00:50:56:99:4c:08");
    Gre::flip.put(it, 1);
  } else if (made.protocol == macred) {
    Instance::address.put(it, "00:50:56:99:4c:07");
    Macred::gateway.put(it, "00:50:56:99:4c:fe");
    Macred::flip.put(it, 2);
  }
  return record;
}

/// The instances, and the profiles of the filters that the host was made with.
void fill(const CommandContext& context) {
  if (context.host.isShowpiece(context.target.index)) {
    Table::Records records;
    for (const NewInstance& made : newInstances) records.push_back(recordOf(made));
    instances.save(context.store, hostTableFolder, records);
  }
  const std::size_t index = context.target.index;
  const std::string_view id =
      getText(context.host.record(index), FilterRecord::profile, FilterRecord::profileSize);
  if (id.empty()) return;
  ByteVector record(Profile::size);
  const Bytes it(record);
  Profile::id.put(it, id);
  Profile::instance.put(it, newInstances[0].id);
  Profile::filter.put(it, context.host.name(index));
  Profile::vendor.put(it, "inspection-basic");
  Profile::provided.put(it, "inspection-web");
  profiles.save(context.store, context.target.folder, {record});
  settleServiceInstances(context.store, context.host);
}

// --- What the log shows

std::string instanceAsked(ConstBytes body) {
  return " " + printable(Instance::id.get(body)) + " (" +
         fieldsText({Instance::name, Instance::slot, Instance::deployType, Instance::force}, body) +
         ", " + transportText(body) + ")";
}

std::string destroyAsked(ConstBytes body) {
  return " " + printable(Instance::id.get(body)) + " (" + fieldsText({Instance::force}, body) + ")";
}

std::string profileAsked(ConstBytes body) {
  return " of " + printable(Profile::filter.get(body)) + " (" +
         fieldsText({Profile::id, Profile::instance, Profile::vendor, Profile::provided}, body) +
         ")";
}

constexpr RecordKind instanceRecords{Instance::size, instanceText};
constexpr RecordKind profileRecords{Profile::size, profileText};

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 1,
     .title = "create service instance",
     .size = Instance::size,
     .answer = createInstance,
     .request = {Instance::id, Instance::name},
     .asked = instanceAsked},
    {.device = Device::firewall,
     .number = 2,
     .title = "replace service instance",
     .size = Instance::size,
     .answer = replaceInstance,
     .request = {Instance::id, Instance::name},
     .asked = instanceAsked},
    {.device = Device::firewall,
     .number = 3,
     .title = "destroy service instance",
     .size = Instance::size,
     .answer = destroyInstance,
     .request = {Instance::id, Instance::name},
     .asked = destroyAsked},
    {.device = Device::firewall,
     .number = 4,
     .title = "number of service instances",
     .size = querySize,
     .answer = countInstances,
     .request = {wantedId},
     .reply = {instanceCount}},
    {.device = Device::firewall,
     .number = 5,
     .title = "service instances",
     .size = querySize,
     .answer = readInstances,
     .request = {wantedId, instanceCount, instanceRoom},
     .reply = {instanceCount},
     .list = {.record = &instanceRecords, .count = instanceCount, .at = querySize}},
    {.device = Device::firewall,
     .number = 8,
     .title = "create service profile",
     .size = Profile::size,
     .answer = createProfile,
     .request = {Profile::id, Profile::instance, Profile::filter, Profile::vendor,
                 Profile::provided},
     .asked = profileAsked},
    {.device = Device::firewall,
     .number = 10,
     .title = "destroy service profile",
     .size = Profile::size,
     .answer = destroyProfile,
     .request = {Profile::id, Profile::instance, Profile::filter, Profile::vendor,
                 Profile::provided},
     .asked = profileAsked},
    {.device = Device::firewall,
     .number = 11,
     .title = "number of service profiles",
     .size = listSize,
     .answer = countProfiles,
     .request = {wantedFilter},
     .reply = {profileCount}},
    {.device = Device::firewall,
     .number = 12,
     .title = "service profiles",
     .size = listSize,
     .answer = readProfiles,
     .request = {wantedFilter, profileCount, profileRoom},
     .reply = {profileCount},
     .list = {.record = &profileRecords, .count = profileCount, .at = listSize}},
};

constexpr Table tables[] = {profiles};
constexpr Table ofHost[] = {instances};

}  // namespace

std::string serviceProfileOf(const Store& store, const std::string& folder) {
  const Table::Records records = profiles.load(store, folder);
  return records.empty() ? "" : std::string(Profile::id.get(records.front()));
}

void settleServiceInstances(const Store& store, const Host& host) {
  Table::Records records = instances.load(store, hostTableFolder);
  for (ByteVector& record : records) Instance::references.put(Bytes(record), 0);
  for (const ByteVector& profile : allProfiles(store, host)) {
    const std::size_t place = placeOf(records, Profile::instance.get(profile));
    if (place == records.size()) continue;
    Instance::references.put(Bytes(records[place]), Instance::references.get(records[place]) + 1);
  }
  std::erase_if(records, [](const ByteVector& record) {
    return Instance::marked.get(record) != 0 && Instance::references.get(record) == 0;
  });
  instances.save(store, hostTableFolder, records);
}

constinit const Family serviceInsertionFamily{
    .requests = requests, .fill = fill, .tables = tables, .hostTables = ofHost};

}  // namespace TarnLab
