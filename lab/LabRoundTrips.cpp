// Request 42 of the firewall device: the round trips of one flow.
#include <cerrno>

#include "LabFamily.h"
#include "LabFlowFile.h"

namespace TarnLab {

namespace {

// The body, 220 bytes.
constexpr std::size_t bodySize = 220, nameSize = 100;
constexpr Name filter{0, nameSize, "filter", "filter"};
constexpr Hex64 flow{100, "flow"};
constexpr U32 version{108, "version"}, size{112, "size"}, reset{120, "reset"};
constexpr U64 cycles{188, "cycles"};
constexpr U32 roundTrip{196, "round trip"}, windowSamples{200, "window samples"},
    windowWeight{204, "window weight"}, accumulatedWeight{208, "accumulated weight"},
    entries{212, "entries"}, length{216, "length"};

/// The fields of one direction.
struct Direction {
  U32 sequence;
  U64 ticks, windowTicks;
  U32 samples;
  U64 average;
};
constexpr Direction out{{124, "out sequence"},
                        {132, "out ticks"},
                        {148, "out window"},
                        {164, "out samples"},
                        {172, "out average"}};
constexpr Direction in{{128, "in sequence"},
                       {140, "in ticks"},
                       {156, "in window"},
                       {168, "in samples"},
                       {180, "in average"}};

constexpr std::uint64_t cyclesOfHost = 2400;  // a microsecond
constexpr std::uint32_t found = 1;

/// A direction that takes so many microseconds; samples of the present window take 3 more than
/// those before, too few of them to change the whole.
void putDirection(Body& body, const Direction& fields, std::uint32_t number, std::uint64_t time,
                  std::uint32_t samples) {
  const std::uint64_t average = time * cyclesOfHost;
  fields.sequence.put(body, number);
  fields.ticks.put(body, std::uint64_t{number} * cyclesOfHost);
  fields.windowTicks.put(body, samples * (average + 3 * cyclesOfHost));
  fields.samples.put(body, samples);
  fields.average.put(body, average);
}

/// What a flow has measured: the time that the list of flows shows, two fifths of it outwards. A
/// flow whose averages were started again has no samples.
void putFigures(Body& body, ConstBytes record) {
  const std::uint32_t number = FlowNumber::ofId(FlowRecord::id.get(record)) + 1;
  const std::uint32_t whole = FlowRecord::shapeOf(record).roundTrip.get(record);
  const std::uint32_t outward = whole / 5 * 2;
  const bool measured = whole != 0;
  version.put(body, found);
  putDirection(body, out, number * 1460, outward, measured ? number % 5 : 0);
  putDirection(body, in, number * 536, whole - outward, measured ? number % 4 : 0);
  cycles.put(body, cyclesOfHost);
  roundTrip.put(body, whole);
  windowSamples.put(body, 8);
  windowWeight.put(body, 3);
  accumulatedWeight.put(body, 5);
  entries.put(body, 16 + number % 16);
  length.put(body, 32 + number % 32);
}

/// Starts the averages of one connection again.
void startAgain(const Request& asked, const std::string& folder, const FlowFile& file,
                std::size_t place) {
  FlowGroups groups = file.copy();
  const Bytes record = part(Bytes(groups[activeGroup]), place * FlowRecord::size, FlowRecord::size);
  FlowRecord::shapeOf(record).roundTrip.put(record, 0);
  FlowFile::save(asked.store, folder, groups);
}

std::string fault(const Body& body) {
  if (size.get(body) != bodySize) return format("size %u", size.get(body));
  return reset.get(body) > 1 ? format("reset %u", reset.get(body)) : "";
}

/// Round trips are those of TCP connections. Of any other flow the version stays 0.
int answer(Request& asked, Body& body) {
  if (const std::string wrong = fault(body); !wrong.empty()) return asked.refuse(EINVAL, wrong);
  const auto index = asked.host.find(filter.get(body), nameSize - 1);
  if (!index) {
    return asked.refuse(ENOENT, "there is no filter " + printable(filter.get(body)));
  }
  const std::string folder = asked.host.folderOf(*index);
  const auto file = FlowFile::open(asked.store, folder);
  const std::uint64_t wanted = flow.get(body);
  const std::size_t place = file ? file->placeOfId(wanted) : 0;
  if (!file || place == file->count(activeGroup)) return 0;
  const ConstBytes record = file->record(activeGroup, place);
  if (FlowRecord::id.get(record) != wanted || !FlowRecord::isIp(record) ||
      FlowRecord::protocol.get(record) != FlowRecord::tcp) {
    return 0;
  }
  putFigures(body, record);
  if (reset.get(body) == 1) startAgain(asked, folder, *file, place);
  return 0;
}

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 42,
     .title = "round trips",
     .size = bodySize,
     .answer = answer,
     .request = {filter, flow, Reserved{108, 4}, size, Reserved{116, 4}, reset,
                 Reserved{124, bodySize - 124}},
     .reply = {version, roundTrip, cycles, out.sequence, out.average, out.samples, in.sequence,
               in.average, in.samples}},
};

}  // namespace

constinit const Family roundTripFamily{.requests = requests};

}  // namespace TarnLab
