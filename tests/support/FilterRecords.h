#pragma once

/// Records of filters by their offsets, and a kernel that lists them.

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "DeviceShim.h"
#include "FakeKernel.h"
#include "FilterHandlers.h"
#include "RunCommand.h"
#include "TarnFWFilterRecords.h"

namespace FilterRecords {

using TarnFirewall::FWFilterRecord_;

/// One filter record by its offsets.
struct Record : Bytes {
  Record() : Bytes(866) {}

  Record& name(const std::string& value) { return field(0, value); }
  Record& agent(const std::string& value) { return field(204, value); }
  Record& vmUuid(const std::string& value) { return field(304, value); }
  Record& vnicIndex(int value) { return number(432, value, 4); }
  Record& flowFlags(int value) { return number(436, value, 4); }
  Record& counter(int index, long long value) {
    return number(448 + 8 * static_cast<std::size_t>(index), value, 8);
  }
  Record& rate(int index, int value) {
    return number(704 + 4 * static_cast<std::size_t>(index), value, 4);
  }
  Record& profile(const std::string& value) { return field(728, value); }
  Record& hash(int value) { return number(760, value, 2); }
  Record& slowPath(int value) { return number(762, value, 4); }
  Record& ruleConfig(int value) { return number(766, value, 4); }
  Record& vif(const std::string& value) { return field(770, value); }
  Record& lsp(const std::string& value) { return field(818, value); }

  Record& field(std::size_t offset, const std::string& value) {
    text(offset, value);
    return *this;
  }
  Record& number(std::size_t offset, long long value, std::size_t size) {
    std::memcpy(data() + offset, &value, size);
    return *this;
  }

  FWFilterRecord_ record() const {
    FWFilterRecord_ result;
    std::memcpy(&result, data(), sizeof result);
    return result;
  }
};

inline Record webFilter() {
  return Record()
      .name("nic-1002672-eth0-kelpco-sfw.2")
      .agent("kelpco-sfw")
      .vmUuid("50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff")
      .vnicIndex(1)
      .hash(40961)
      .ruleConfig(1);
}

inline constexpr char kWebText[] =
    "\n"
    "Filter Name              : nic-1002672-eth0-kelpco-sfw.2\n"
    "VM UUID                  : 50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff\n"
    "VNIC Index               : 1\n"
    "VNIC UUID                : 50194b2a-0001-0203-0405-060708090aff.001\n"
    "Filter Rule Config       : configured\n"
    "Filter Hash              : 40961\n";

inline const std::string kHeader = "VM UUID" + std::string(44, ' ') + "VNIC Index" +
                                   std::string(13, ' ') + "Filter Name" + std::string(22, ' ') +
                                   "SlowPathID\n" + std::string(120, '-') + "\n";

inline std::uint32_t number32(const std::byte* at) {
  std::uint32_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

/// Answers the two filter requests with records, and keeps what was asked.
class FilterKernel {
 public:
  explicit FilterKernel(std::vector<Record> records = {}) : records_(std::move(records)) {
    DeviceShim::put("/dev/brq-tarn", [this](const DeviceShim::Call& call) {
      return answer(call.request, call.argument);
    });
  }
  ~FilterKernel() { DeviceShim::put("/dev/brq-tarn"); }
  FilterKernel(const FilterKernel&) = delete;
  FilterKernel& operator=(const FilterKernel&) = delete;

  // What the kernel says instead of the truth.
  std::optional<std::uint32_t> knownCount, returnedCount, returnedLength;
  std::uint32_t countStatus = 0, listStatus = 0;
  int countErrno = 0, listErrno = 0;

  struct Request {
    unsigned long number;
    Bytes frame;
    Bytes body;
  };
  std::vector<Request> requests;

 private:
  int answer(unsigned long request, void* argument) {
    auto* const frame = static_cast<std::byte*>(argument);
    std::uint64_t bodyAddress;
    std::memcpy(&bodyAddress, frame + 12, sizeof bodyAddress);
    auto* const body = reinterpret_cast<std::byte*>(bodyAddress);

    Request seen{request, Bytes(20), Bytes(number32(frame + 8))};
    std::memcpy(seen.frame.data(), frame, 20);
    std::memcpy(seen.body.data(), body, seen.body.size());
    requests.push_back(seen);

    const bool list = request == 21;
    if (const int error = list ? listErrno : countErrno; error != 0) {
      errno = error;
      return -1;
    }
    const std::uint32_t status = list ? listStatus : countStatus;
    std::memcpy(frame + 4, &status, 4);
    if (status != 0) return 0;

    const auto count = static_cast<std::uint32_t>(records_.size());
    if (!list) return put(body + 100, knownCount.value_or(count));

    std::uint64_t buffer;
    std::memcpy(&buffer, body + 108, sizeof buffer);
    std::uint32_t filled = 0;
    for (const Record& record : records_) {
      if (number32(body + 104) - filled < record.size()) break;
      std::memcpy(reinterpret_cast<std::byte*>(buffer) + filled, record.data(), record.size());
      filled += static_cast<std::uint32_t>(record.size());
    }
    put(body + 100, returnedCount.value_or(count));
    return put(body + 104, returnedLength.value_or(filled));
  }

  static int put(std::byte* at, std::uint32_t value) {
    std::memcpy(at, &value, sizeof value);
    return 0;
  }

  std::vector<Record> records_;
};

/// What a filter of this record prints.
inline std::string printed(const Record& record, const FilterView& view = {}) {
  return captured([&] { return PrintFilter(record.record(), view), 0; }).out;
}

}  // namespace FilterRecords
