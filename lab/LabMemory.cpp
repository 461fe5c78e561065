// Request 37 of the firewall device: the memory of the data path, by heaps and their zones. The
// zones of the first two heaps count what the lab itself holds.
#include <cerrno>

#include "LabFamily.h"
#include "LabRuleRecord.h"
#include "LabSetFile.h"

namespace TarnLab {

namespace {

// The body, 21536 bytes: a head, and then the blocks of the heaps.
constexpr std::size_t bodySize = 21536, heapsAt = 16, heapSize = 2152, zonesAt = 104, zoneSize = 64;
constexpr std::uint32_t mostHeaps = 10, mostZones = 32;
constexpr U32 version{0, "version"}, heapCount{8, "heaps"};

namespace HeapBlock {
constexpr Text name{8, 32, "heap"};
constexpr U32 megabytes{40, "megabytes"};
constexpr U64 allocations{48, "allocations"}, frees{56, "frees"}, inUse{64, "in use"},
    mostInUse{72, "most in use"}, mostObjects{80, "most objects"};
constexpr U32 overhead{88, "overhead"}, zoneCount{96, "zones"};
}  // namespace HeapBlock

namespace ZoneBlock {
constexpr Text name{4, 32, "zone"};
constexpr U32 objectSize{36, "object size"};
constexpr U64 objects{48, "objects"}, failures{56, "failures"};
}  // namespace ZoneBlock

struct Zone {
  std::string name;
  std::size_t objectSize = 0;
  std::uint64_t objects = 0;
};

struct Heap {
  const char* name = nullptr;
  std::uint32_t megabytes = 0;
  std::vector<Zone> zones = {};
};

/// Rule sets and address sets of a folder, and what is in them.
void countSets(const Store& store, const std::string& folder, Zone& sets, Zone& entries) {
  for (const std::string& file : store.list(folder)) {
    if (const auto set = SetFile::open(store, folder + "/" + file)) {
      ++sets.objects;
      entries.objects += set->head().total();
    }
  }
}

/// What was configured.
Heap configuredHeap(const Store& store, const Host& host) {
  Zone ruleSets{"rule set", SetHead::size}, rules{"rule", RuleRecord::size};
  Zone addrSets{"address set", SetHead::size + 64}, addresses{"address", 144};
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    countSets(store, host.folderOf(i) + "/rulesets", ruleSets, rules);
    countSets(store, host.folderOf(i) + "/addrsets", addrSets, addresses);
  }
  const Zone filters{"filter", FilterRecord::size, host.filterCount()};
  return {"tarn-config", 512, {filters, ruleSets, rules, addrSets, addresses}};
}

/// What was learnt or given: a zone for each table that filters have.
Heap learntHeap(const Store& store, const Host& host) {
  Heap heap{"tarn-tables", 256};
  for (const Family* family : families()) {
    for (const Table& table : family->tables) {
      Zone zone{std::string(table.name), table.least};
      for (std::size_t i = 0; i < host.filterCount(); ++i) {
        zone.objects += table.load(store, host.folderOf(i)).size();
      }
      heap.zones.push_back(zone);
    }
  }
  return heap;
}

/// Buffers of many sizes: as many zones as a heap can have.
Heap bufferHeap() {
  Heap heap{"tarn-buffers", 1024};
  for (std::uint32_t i = 1; i <= mostZones; ++i) {
    heap.zones.push_back({format("buffer-%u", i * 64), i * std::size_t{64}, (i * 5) % 37});
  }
  return heap;
}

/// The heap of that place: what was allocated one by one, beside its zones, follows from the place.
void putHeap(Bytes block, const Heap& heap, std::uint64_t place) {
  const auto room = std::min<std::uint32_t>(HeapBlock::zoneCount.get(block), mostZones);
  const auto zones = static_cast<std::uint32_t>(std::min<std::size_t>(heap.zones.size(), room));
  const std::uint64_t objects = 10 * place + 3, freed = 5000 * place;
  HeapBlock::name.put(block, heap.name);
  HeapBlock::megabytes.put(block, heap.megabytes);
  HeapBlock::allocations.put(block, freed + objects);
  HeapBlock::frees.put(block, freed);
  HeapBlock::inUse.put(block, objects * 480);
  HeapBlock::mostInUse.put(block, (objects + 2 * place) * 480);
  HeapBlock::mostObjects.put(block, objects + 2 * place);
  HeapBlock::overhead.put(block, static_cast<std::uint32_t>(8 + 8 * place));
  HeapBlock::zoneCount.put(block, zones);
  for (std::size_t i = 0; i < zones; ++i) {
    const Bytes zone = part(block, zonesAt + i * zoneSize, zoneSize);
    ZoneBlock::name.put(zone, heap.zones[i].name);
    ZoneBlock::objectSize.put(zone, static_cast<std::uint32_t>(heap.zones[i].objectSize));
    ZoneBlock::objects.put(zone, heap.zones[i].objects);
    ZoneBlock::failures.put(zone, i % 4);
  }
}

int readMemory(Request& request, Body& body) {
  if (version.get(body) != 1)
    return request.refuse(EINVAL, format("version %u", version.get(body)));
  const std::uint32_t room = heapCount.get(body);
  if (room > mostHeaps) return request.refuse(EINVAL, format("room for %u heaps", room));
  const Heap heaps[] = {configuredHeap(request.store, request.host),
                        learntHeap(request.store, request.host),
                        bufferHeap(),
                        {"tarn-texts", 64}};
  std::uint32_t count = 0;
  for (const Heap& heap : heaps) {
    if (count == room) break;
    putHeap(body.reply(heapsAt + count * heapSize, heapSize), heap, count + 1);
    ++count;
  }
  heapCount.put(body, count);
  return 0;
}

std::string heapText(ConstBytes block) {
  using namespace HeapBlock;
  std::string text = std::string(name.get(block)) + " ";
  text += fieldsText(
      {megabytes, allocations, frees, inUse, mostInUse, mostObjects, overhead, zoneCount}, block);
  const std::uint32_t zones = std::min(zoneCount.get(block), mostZones);
  for (std::size_t i = 0; i < zones; ++i) {
    const ConstBytes zone = part(block, zonesAt + i * zoneSize, zoneSize);
    text += format("; %s %u x %llu", std::string(ZoneBlock::name.get(zone)).c_str(),
                   ZoneBlock::objectSize.get(zone),
                   static_cast<unsigned long long>(ZoneBlock::objects.get(zone)));
  }
  return text;
}

constexpr RecordKind heapRecords{heapSize, heapText};

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 37,
     .title = "memory",
     .size = bodySize,
     .answer = readMemory,
     .request = {version, Reserved{4, 4}, heapCount, Reserved{12, 4}},
     .reply = {heapCount},
     .list = {.record = &heapRecords, .count = heapCount, .at = heapsAt},
     .sentStatus = 0xbad0001},
};

}  // namespace

constinit const Family memoryFamily{.requests = requests};

}  // namespace TarnLab
