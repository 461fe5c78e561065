// What a filter does beside its rules: dropping ICMP errors, exporting its state, learning names
// and copying for layer 7.
#include "LabAddressRecord.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

constexpr FlagSetting dropsErrors{"icmp.errors-dropped", "ICMP errors are dropped"};
constexpr FlagSetting copies{"l7.copied", "packets are copied for layer 7"};
constexpr NumberSetting exportVersion{"export.version", 1000};

// How long learned names live.
constexpr std::uint8_t inSeconds = 0, forEver = 1, automatic = 2;
constexpr NumberSetting liveKind{"names.live", automatic}, liveSeconds{"names.live-seconds"};

std::string serversText(ConstBytes records) {
  std::string text;
  for (; records.size() >= AddressRecord::size; records = records.subspan(AddressRecord::size)) {
    text += (text.empty() ? "" : ", ") + AddressRecord::text(records.first(AddressRecord::size));
  }
  return text;
}

constexpr BytesSetting servers{"names.servers", serversText};

constexpr U32 enable{0, "enable"}, version{0, "version"};
constexpr Bits copying{0, 0x01, "enable"};
constexpr Reserved copyingBits{0, 1, nullptr, 0xfe}, copyingRest{1, 3};

constexpr Reserved profileStart{0, 4};
constexpr U8 kind{4, "kind"};
constexpr U32 seconds{5, "seconds"}, addresses{9, "addresses"};
constexpr std::size_t headSize = 13;
constexpr RecordKind server{.size = AddressRecord::size, .text = AddressRecord::text};

std::uint32_t dropErrors(Context context, Body& body) {
  return changeSettings(context, [&](Settings& settings) {
    settings.set(dropsErrors, enable.get(body) != 0);
    return Status::ok;
  });
}

std::uint32_t copyPackets(Context context, Body& body) {
  return changeSettings(context, [&](Settings& settings) {
    settings.set(copies, copying.get(body) != 0);
    return Status::ok;
  });
}

std::uint32_t setExportVersion(Context context, Body& body) {
  return changeSettings(context, [&](Settings& settings) {
    settings.set(exportVersion, version.get(body));
    return Status::ok;
  });
}

std::uint32_t getExportVersion(Context context, Body& body) {
  version.put(body, static_cast<std::uint32_t>(settingsOf(context).get(exportVersion)));
  return Status::ok;
}

std::uint32_t setProfile(Context context, Body& body) {
  const std::size_t count = (body.size() - headSize) / AddressRecord::size;
  if (addresses.get(body) != count || (body.size() - headSize) % AddressRecord::size != 0) {
    return context.refuse(Status::badMessage, format("%u addresses in %zu bytes",
                                                     addresses.get(body), body.size() - headSize));
  }
  const ConstBytes records = body.bytes().subspan(headSize);
  for (std::size_t i = 0; i < count; ++i) {
    const ConstBytes record = part(records, i * AddressRecord::size, AddressRecord::size);
    std::string fault = AddressRecord::fault(record);
    if (fault.empty() && !AddressRecord::isIp(get16(record, AddressRecord::type))) {
      fault = "the address of a server is none of the IP family";
    }
    if (!fault.empty()) return context.refuse(Status::invalidAddress, fault);
  }
  return changeSettings(context, [&](Settings& settings) {
    settings.set(liveKind, kind.get(body));
    settings.set(liveSeconds, seconds.get(body));
    settings.set(servers, records);
    return Status::ok;
  });
}

std::uint32_t getProfile(Context context, Body& body) {
  const Settings settings = settingsOf(context);
  kind.put(body, static_cast<std::uint8_t>(settings.get(liveKind)));
  seconds.put(body, static_cast<std::uint32_t>(settings.get(liveSeconds)));
  addresses.put(body,
                static_cast<std::uint32_t>(settings.get(servers).size() / AddressRecord::size));
  return Status::ok;
}

/// Every third filter keeps names for ever, and every third for some minutes; every second one
/// exports in a later version.
void fill(Context context) {
  const std::size_t index = context.target.index;
  changeSettings(context, [&](Settings& settings) {
    if (index % 2 == 1) settings.set(exportVersion, 1100);
    if (index % 3 == 1) settings.set(liveKind, forEver);
    if (index % 3 == 2) {
      settings.set(liveKind, inSeconds);
      settings.set(liveSeconds, 60 * (index % 1000 + 1));
    }
    return Status::ok;
  });
}

constexpr CommandKind commands[] = {
    {.number = 49, .least = 4, .answer = dropErrors, .request = {enable}},
    {.number = 54, .least = 4, .answer = setExportVersion, .request = {version}},
    {.number = 55, .least = 4, .answer = getExportVersion, .reply = {version}},
    {.number = 83,
     .least = headSize,
     .answer = setProfile,
     .request = {profileStart, kind, seconds, addresses},
     .list = {.record = &server, .inRequest = true, .count = addresses, .at = headSize}},
    {.number = 84, .least = headSize, .answer = getProfile, .reply = {kind, seconds, addresses}},
    {.number = 85,
     .least = 4,
     .answer = copyPackets,
     .request = {copying, copyingBits, copyingRest}},
};

constexpr Setting settings[] = {dropsErrors, copies, exportVersion, liveKind, liveSeconds, servers};

}  // namespace

constinit const Family filterFeatureFamily{
    .commands = commands, .settings = settings, .fill = fill};

}  // namespace TarnLab
