#include "FakeKernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>

#include "TarnFWBootTime.h"
#include "TarnFWIOChannelGeneric.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

const std::thread::id g_testThread = std::this_thread::get_id();
std::vector<unsigned int> g_sleeps;

}  // namespace

// Stands in front of the C library's: a test that waits for a busy kernel costs no time. Other
// threads, such as the fuzzer's own, sleep.
extern "C" unsigned int sleep(unsigned int seconds) {
  if (std::this_thread::get_id() != g_testThread) {
    const timespec time{static_cast<time_t>(seconds), 0};
    return nanosleep(&time, nullptr) == 0 ? 0 : seconds;
  }
  g_sleeps.push_back(seconds);
  return 0;
}

const std::vector<unsigned int>& Sleeps::seen() { return g_sleeps; }
void Sleeps::clear() { g_sleeps.clear(); }

/// The functions of the generic channel; the context is the kernel.
struct FakeKernelIO {
  static FWStatus_t init(void* argument, void** context) {
    *context = argument;
    return 0;
  }
  static void exit(void*) {}
  static FWStatus_t request(void* context, void* message, unsigned int size, void* callContext) {
    return static_cast<FakeKernel*>(context)->request(message, size, callContext);
  }
};

/// A generic channel that notes the selector, which such a channel does not pass on.
class FakeKernel::Channel : public CTarnFWIOChannel {
 public:
  explicit Channel(FakeKernel& kernel) : kernel_(kernel) {
    FWLibGenericIO_ table{};
    table.init = FakeKernelIO::init;
    table.exit = FakeKernelIO::exit;
    table.request = FakeKernelIO::request;
    generic_ = std::make_unique<CTarnFWIOChannelGeneric>(&table, &kernel, nullptr);
  }
  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override {
    kernel_.port_.reset();
    if (port != nullptr) kernel_.port_ = *port;
    return generic_->sendIOCTL(port, message, size, context);
  }

 private:
  FakeKernel& kernel_;
  std::unique_ptr<CTarnFWIOChannelGeneric> generic_;
};

FakeKernel::FakeKernel() : library_(CTarnFWLibHandle::GetInstance()) {
  library_->setIOChannel(std::make_unique<Channel>(*this));
}

FakeKernel::~FakeKernel() { EXPECT_TRUE(answers_.empty()) << "an answer was not asked for"; }

void FakeKernel::answer(FWStatus_t status, const Bytes& reply) {
  answerWith([status, reply](std::uint8_t* message, unsigned int size) -> FWStatus_t {
    EXPECT_LE(reply.size() + 32, size) << "the prepared reply does not fit";
    std::memcpy(message + 28, &status, sizeof status);
    std::copy_n(reply.begin(), std::min<std::size_t>(reply.size(), size - 32), message + 32);
    return 0;
  });
}

void FakeKernel::fail(FWStatus_t result) {
  answerWith([result](std::uint8_t*, unsigned int) { return result; });
}

void FakeKernel::answerWith(std::function<FWStatus_t(std::uint8_t*, unsigned int)> f) {
  answers_.push_back(std::move(f));
}

void FakeKernel::answerAllWith(std::function<FWStatus_t(std::uint8_t*, unsigned int)> f) {
  otherwise_ = std::move(f);
}

FWStatus_t FakeKernel::request(void* message, unsigned int size, void* context) {
  auto* bytes = static_cast<std::uint8_t*>(message);
  Message kept;
  kept.bytes.assign(bytes, bytes + size);
  kept.port = port_;
  kept.context = context;
  messages_.push_back(std::move(kept));
  if (answers_.empty()) {
    if (otherwise_) return otherwise_(bytes, size);
    std::memset(bytes + 28, 0, 4);
    return 0;
  }
  const auto answer = std::move(answers_.front());
  answers_.pop_front();
  return answer(bytes, size);
}

namespace {

__attribute__((format(printf, 2, 3))) int keep(void* context, const char* format, ...) {
  char text[4096];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  *static_cast<std::string*>(context) += text;
  return length;
}

template <typename T>
Bytes& put(Bytes& bytes, std::size_t offset, T value) {
  EXPECT_LE(offset + sizeof value, bytes.size());
  std::memcpy(bytes.data() + offset, &value, sizeof value);
  return bytes;
}

}  // namespace

Printed::Printed() { FW_SetLibPrettyPrinting(keep, &text_); }
Printed::~Printed() { FW_SetLibPrettyPrinting(nullptr, nullptr); }

Bytes requestOf(CTarnFWCmd& command) {
  // Behind the room stand bytes that must stay as they are.
  const std::size_t size = command.getMsgSize();
  Bytes body(size + 8, 0xcd);
  unsigned int written = 0;
  if (!command.writeCmdBody(body.data(), static_cast<unsigned int>(size), &written, 0)) {
    return Bytes(0);
  }
  EXPECT_EQ(written, size);
  for (std::size_t i = size; i < body.size(); ++i) EXPECT_EQ(body[i], 0xcd) << "after the room";
  body.resize(size);
  if (size != 0) {
    std::uint8_t one = 0xcd;
    EXPECT_FALSE(command.writeCmdBody(&one, static_cast<unsigned int>(size) - 1, &written, 0));
    EXPECT_EQ(one, 0xcd);
  }
  return body;
}

dvs_port_ filterPort(const std::string& name) {
  dvs_port_ port{};
  name.copy(port.identifier, sizeof port.identifier);
  setSelectorType(port, FW_SELECTOR_FILTER);
  return port;
}

FWStatus_t executeOnce(FakeKernel& kernel, CTarnFWCmd& command) {
  void* reply = nullptr;
  unsigned int size = 0;
  const FWStatus_t status = command.execute(&kernel.library(), &reply, &size, nullptr);
  EXPECT_EQ(reply != nullptr, status == 0);
  EXPECT_EQ(size, status == 0 ? command.getMsgSize() : 0u);
  if (reply != nullptr) {
    EXPECT_TRUE(CTarnFWCmd::releaseCmdBuffer(&kernel.library(), reply));
  }
  return status;
}

std::string printedFor(CTarnFWCmd& command, const Bytes& reply) {
  FakeKernel kernel;
  const Printed printed;
  kernel.answer(0, reply);
  EXPECT_EQ(executeOnce(kernel, command), 0u);
  return printed.text();
}

std::string maskTime(std::string text, std::uint64_t bootSeconds) {
  for (std::size_t at = 0; at + 19 <= text.size(); ++at) {
    if (text[at] < '0' || text[at] > '9') continue;
    std::tm time{};
    const std::string part = text.substr(at, 19);
    const char* const end = strptime(part.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
    if (end != part.c_str() + 19) continue;
    time.tm_isdst = -1;
    EXPECT_NEAR(static_cast<double>(std::mktime(&time)),
                static_cast<double>(bootsec2time(bootSeconds)), 2);
    return text.replace(at, 19, "TIME");
  }
  ADD_FAILURE() << "no time in: " << text;
  return text;
}

Bytes& put16(Bytes& bytes, std::size_t offset, std::uint16_t value) {
  return put(bytes, offset, value);
}
Bytes& put32(Bytes& bytes, std::size_t offset, std::uint32_t value) {
  return put(bytes, offset, value);
}
Bytes& put64(Bytes& bytes, std::size_t offset, std::uint64_t value) {
  return put(bytes, offset, value);
}
