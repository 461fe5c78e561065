// What the devices of a fuzzed host answer, of the input's bytes.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <numeric>

#include "FlowQuery.h"
#include "Fuzz.h"
#include "FuzzHost.h"
#include "InsertionRecords.h"
#include "TableRecords.h"
#include "TarnFWFilter.h"
#include "TarnFWIOChannelIOCTL.h"
#include "TarnFWMsgBuf.h"
#include "TarnSiIoctl.h"
#include "TarnWGTIoctl.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// Requests with a buffer: the body, and where it names the buffer.
struct Buffered {
  unsigned long request;
  std::size_t body;
  std::size_t length;
  std::size_t buffer;
};
constexpr Buffered kBuffered[] = {
    {FW_REQUEST_INSTANCES, sizeof(FWInstanceQuery_), offsetof(FWInstanceQuery_, bufferLength),
     offsetof(FWInstanceQuery_, buffer)},
    {FW_REQUEST_PROFILES, sizeof(FWFilterList_), offsetof(FWFilterList_, bufferLength),
     offsetof(FWFilterList_, buffer)},
    {26, 116, 104, 108},  // flow exclusion
    {31, 161, 137, 141},  // discovered addresses
};

/// The results of the insertion device that are no errno have this in front of a status.
constexpr std::uint32_t kInsertionResult = 0xbad0000;

constexpr std::size_t kEnvelopeStatus = kMsgHeaderSize + 8;
constexpr std::size_t kBody = kMsgHeaderSize + 12;

template <typename Record>
Record* at(std::uint64_t address) {
  return reinterpret_cast<Record*>(static_cast<std::uintptr_t>(address));
}

}  // namespace

// --- Bytes

std::span<const std::uint8_t> FuzzHost::take(std::size_t size) {
  const auto part = bytes_.first(std::min(size, bytes_.size()));
  bytes_ = bytes_.subspan(part.size());
  return part;
}

std::uint64_t FuzzHost::number(std::size_t size) {
  std::uint64_t value = 0;
  unsigned int shift = 0;
  for (const std::uint8_t byte : take(size)) {
    value |= std::uint64_t{byte} << shift;
    shift += 8;
  }
  return value;
}

/// Counts a call; false when it fails because there were too many.
bool FuzzHost::answers() {
  if (++calls_ <= kMaxCalls) return true;
  fail(EIO);
  return false;
}

int FuzzHost::fail(int error) {
  error_ = error;
  errno = error;
  return -1;
}

/// Of a call that moves nothing: 0, or -1 with the errno that the next byte says.
int FuzzHost::outcome() {
  if (!answers()) return -1;
  const int error = static_cast<int>(number(1));
  return error == 0 ? 0 : fail(error);
}

// --- Kernel

int FuzzHost::reply(std::span<std::uint8_t> body, std::optional<std::uint32_t>* status,
                    std::span<std::uint8_t> request) {
  while (!bytes_.empty()) {
    switch (number(1) % (hostile_ ? 6 : 4)) {
      case 0:
        return 0;
      case 1: {
        const std::size_t offset = std::min<std::size_t>(number(2), body.size());
        const auto bytes = take(number(2));
        const auto room = body.subspan(offset);
        std::copy_n(bytes.begin(), std::min(bytes.size(), room.size()), room.begin());
        break;
      }
      case 2:
        *status = static_cast<std::uint32_t>(number(1));
        return 0;
      case 3:
        return fail(static_cast<int>(number(1)));
      case 4: {
        const auto bytes = take(request.size());
        std::copy(bytes.begin(), bytes.end(), request.begin());
        break;
      }
      default:
        return static_cast<int>(number(1));
    }
  }
  return 0;
}

int FuzzHost::answer(std::span<std::uint8_t> message) {
  require(message.size() >= kBody);
  std::optional<std::uint32_t> status;
  const int result = reply(message, &status);
  if (status) std::memcpy(&message[kEnvelopeStatus], &*status, sizeof *status);
  return result;
}

int FuzzHost::message(void* block) {
  const auto frame = loadRecord<FWIoctlFrame>(block);
  require(frame.bodyLength == sizeof(FWIoctlMessage_));
  const auto sent = loadRecord<FWIoctlMessage_>(at<void>(frame.body));
  require(sent.messageSize >= kBody);
  auto* const bytes = at<std::uint8_t>(sent.message);
  const std::size_t begin = hostile_ ? 0 : kBody;
  std::optional<std::uint32_t> status;
  if (!hostile_) status = FW_STATUS_OK;
  const int result = reply({bytes + begin, sent.messageSize - begin}, &status,
                           {at<std::uint8_t>(frame.body), sizeof(FWIoctlMessage_)});
  if (status) std::memcpy(bytes + kEnvelopeStatus, &*status, sizeof *status);
  return result;
}

int FuzzHost::filterList(unsigned long request, void* block) {
  auto frame = loadRecord<FWIoctlFrame>(block);
  require(frame.bodyLength == sizeof(FWFilterList_));
  auto list = loadRecord<FWFilterList_>(at<void>(frame.body));
  std::span<std::uint8_t> buffer;
  if (request != FW_REQUEST_FILTER_COUNT)
    buffer = {at<std::uint8_t>(list.buffer), std::size_t{list.bufferLength}};
  list.count = static_cast<std::uint32_t>(number(4));
  list.bufferLength = static_cast<std::uint32_t>(number(4));
  std::optional<std::uint32_t> status;
  const int result = reply(buffer, &status);
  frame.status = status.value_or(FW_STATUS_OK);
  storeRecord(at<void>(frame.body), list);
  storeRecord(block, frame);
  return result;
}

int FuzzHost::record(void* block) {
  auto frame = loadRecord<FWIoctlFrame>(block);
  std::optional<std::uint32_t> status;
  const int result = reply({at<std::uint8_t>(frame.body), std::size_t{frame.bodyLength}}, &status);
  frame.status = status.value_or(FW_STATUS_OK);
  storeRecord(block, frame);
  return result;
}

bool FuzzHost::hasBuffer(unsigned long request) {
  return std::any_of(std::begin(kBuffered), std::end(kBuffered),
                     [&](const Buffered& each) { return each.request == request; });
}

int FuzzHost::buffered(unsigned long request, void* block) {
  const Buffered& form = *std::find_if(std::begin(kBuffered), std::end(kBuffered),
                                       [&](const auto& each) { return each.request == request; });
  auto frame = loadRecord<FWIoctlFrame>(block);
  require(frame.bodyLength == form.body);
  auto* const body = at<std::uint8_t>(frame.body);
  const std::span<std::uint8_t> buffer{at<std::uint8_t>(loadRecord<host64>(body + form.buffer)),
                                       std::size_t{loadRecord<host32>(body + form.length)}};
  const int result = record(block);
  if (result != 0 || buffer.empty()) return result;
  std::optional<std::uint32_t> status;
  return reply(buffer, &status);
}

int FuzzHost::insertion(void* block) {
  const auto frame = loadRecord<SIIoctlFrame>(block);
  std::optional<std::uint32_t> status;
  const int result =
      reply({at<std::uint8_t>(frame.output), std::size_t{frame.outputLength}}, &status);
  return status ? static_cast<int>(kInsertionResult + *status) : result;
}

int FuzzHost::flows(void* block) {
  const auto frame = loadRecord<FWIoctlFrame>(block);
  require(frame.bodyLength == sizeof(FWFlowQuery_));
  auto query = loadRecord<FWFlowQuery_>(at<void>(frame.body));
  std::span<std::uint8_t> buffer;
  if (query.operation == FW_FLOWS_READ)
    buffer = {at<std::uint8_t>(query.buffer), std::size_t{query.bufferLength}};
  for (FWFlowCounts_* const counts : {&query.active, &query.inactive, &query.drop}) {
    const auto bytes = take(sizeof *counts);
    if (!bytes.empty()) std::memcpy(counts, bytes.data(), bytes.size());
  }
  storeRecord(at<void>(frame.body), query);
  std::optional<std::uint32_t> status;
  return reply(buffer, &status);
}

int FuzzHost::table(unsigned long request, void* block) {
  constexpr std::size_t kRevalidation = 20;
  std::optional<std::uint32_t> status;
  auto* const bytes = static_cast<std::uint8_t*>(block);
  if (request == WGT_REQUEST_INCLUDE_SIZE || request == WGT_REQUEST_EXCLUDE_SIZE)
    return reply({bytes, sizeof(WGTSizeFrame)}, &status);
  if (request == WGT_REQUEST_REVALIDATE) return reply({bytes, kRevalidation}, &status);
  auto frame = loadRecord<WGTEntryFrame>(block);
  const std::span<std::uint8_t> entries{at<std::uint8_t>(frame.entries), std::size_t{frame.size}};
  // The kernel reads all that it is given.
  [[maybe_unused]] const volatile auto sum = std::accumulate(entries.begin(), entries.end(), 0u);
  frame.size = static_cast<std::uint32_t>(number(4));
  const int result = reply(entries, &status);
  storeRecord(block, frame);
  return result;
}
