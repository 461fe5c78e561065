#pragma once

/// The table device with the tables of one agent, and the host's list of machines, for the handlers
/// that work on them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CallShim.h"
#include "DeviceShim.h"
#include "Expect.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace TableTest {

using Words = std::vector<std::string>;

inline const char kTables[] = "/dev/weirgatetbl";
inline const char kVmList[] = "/bin/tarn_vm_list.sh";
#define UUID "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f"
#define VNIC "00010203-0405-0607-0809-0a0b0c0d0e0f"

inline Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

inline Bytes operator+(const Bytes& a, const Bytes& b) {
  Bytes both(a.size() + b.size());
  std::copy(a.begin(), a.end(), both.begin());
  std::copy(b.begin(), b.end(), both.begin() + static_cast<std::ptrdiff_t>(a.size()));
  return both;
}

/// An entry with its head.
inline Bytes entry(int type, const Bytes& value) {
  const auto length = static_cast<int>(value.size());
  return Bytes(3).at(0, {type, length & 0xff, length >> 8}) + value;
}

inline const Bytes kUuid({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});

template <typename Number>
Number load(const std::uint8_t* from) {
  Number number;
  std::memcpy(&number, from, sizeof number);
  return number;
}

/// The table device for the length of a test, and the host's list of machines.
class Tables {
 public:
  struct Request {
    unsigned long number;
    std::string agent;
    Bytes entries = Bytes(0);  // that were sent; for the revalidation its record
    std::uint32_t size = 0;    // of the frame
  };

  explicit Tables(const std::string& list = "") : program_(kVmList, "printf '" + list + "'") {
    DeviceShim::put(kTables, [this](const DeviceShim::Call& call) {
      return answer(call.request, static_cast<std::uint8_t*>(call.argument));
    });
  }
  ~Tables() {
    DeviceShim::put(kTables);
    EXPECT_FALSE(hasChild());
  }
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;

  Bytes exclude = Bytes(0), include = Bytes(0);
  std::map<unsigned long, int> errors;                // by request
  std::optional<std::uint32_t> size = {}, told = {};  // what replies say instead of the truth
  std::vector<Request> requests;

  std::string numbers() const {
    std::string text;
    for (const Request& request : requests)
      text += (text.empty() ? "" : " ") + std::to_string(request.number);
    return text;
  }

  const CallShim::Program& program() const { return program_; }

 private:
  int answer(unsigned long number, std::uint8_t* frame) {
    if (number == 10) {
      requests.push_back({number, "", Bytes(20), 20});
      std::memcpy(requests.back().entries.data(), frame, 20);
      return outcome(number);
    }
    const bool asksSize = number == 3 || number == 8;
    const bool reads = number == 4 || number == 9;
    EXPECT_EQ(frame[39], 0);
    const std::string agent(reinterpret_cast<char*>(frame));
    EXPECT_TRUE(std::all_of(frame + agent.size(), frame + 40, [](int byte) { return byte == 0; }));
    if (asksSize) {
      requests.push_back({number, agent});
    } else {
      Request request{number, agent, Bytes(0), load<std::uint32_t>(frame + 48)};
      const auto* const at = reinterpret_cast<const std::uint8_t*>(load<std::uint64_t>(frame + 40));
      if (!reads && request.size != 0)
        request.entries =
            Bytes(Bytes::const_iterator(at), Bytes::const_iterator(at + request.size));
      requests.push_back(request);
    }
    if (const int result = outcome(number); result != 0) return result;
    const Bytes& table = number < 5 ? exclude : include;
    if (asksSize) {
      const std::uint32_t bytes = size.value_or(static_cast<std::uint32_t>(table.size()));
      std::memcpy(frame + 40, &bytes, 4);
    }
    if (reads) {
      auto* const at = reinterpret_cast<std::uint8_t*>(load<std::uint64_t>(frame + 40));
      std::copy_n(table.begin(), std::min<std::size_t>(table.size(), requests.back().size), at);
      const std::uint32_t bytes = told.value_or(static_cast<std::uint32_t>(table.size()));
      std::memcpy(frame + 48, &bytes, 4);
    }
    return 0;
  }

  int outcome(unsigned long number) {
    const auto found = errors.find(number);
    if (found == errors.end()) return 0;
    errno = found->second;
    return -1;
  }

  LogCapture log_;
  CallShim::Program program_;
};

inline std::string usageOf(const std::string& command) {
  return runCommand({command, "-Override", "-h"}).out;
}

inline const std::string kLongAgent(39, 'a');

/// Entries of one virtual NIC and of the host.
inline const Bytes kExcludeEntry = entry(1, kUuid + Bytes({7, 0, 0, 0}));
inline const Bytes kIncludeEntry = entry(4, kUuid + Bytes({7, 2, 0, 0, 0}) + Bytes(8));
inline const Bytes kHostEntry = entry(6, Bytes(12).at(0, {2}));

#define VM "1000:" UUID "\\n"
inline const Bytes kVm = Bytes({0xe8, 3, 0, 0}) + kUuid;

}  // namespace TableTest
