#include "TarnFWLog.h"

#include <sched.h>

namespace TarnFirewall {

constinit FWVerbose_ g_tarnfw_verbose[kComponentRows] = {
    {1, 0, "misc"},     {1, 0, "api"},    {1, 0, "library"},  {1, 0, "lexer"},   {1, 0, "parser"},
    {1, 0, "io"},       {1, 0, "msgbuf"}, {1, 0, "cmd"},      {1, 0, "address"}, {1, 0, "rule"},
    {1, 0, "protocol"}, {1, 0, "util"},   {1, 0, "protobuf"}, {1, 0, "ploy"},    {1, 0, "ipfix"},
    {1, 0, "flow"},     {1, 0, "filter"}, {1, 0, "trie"},     {1, 0, "cache"},
};
constinit std::atomic<unsigned int> g_tarnfw_max_component = FW_COMPONENT_PREDEFINED;
constinit Locks::StaticMutex g_tarnfw_verbose_mutex;

constinit const char* const hulld_comp_name[kHulldComponents] = {
    "misc",     "api",  "library",  "lexer", "parser", "io",   "msgbuf", "cmd",  "address", "rule",
    "protocol", "util", "protobuf", "ploy",  "ipfix",  "flow", "filter", "trie", "cache"};

constinit const char* const tarn_comp_name[kTarnComponents] = {
    "fastpath", "rule",   "table",  "icmp",   "tcp",     "udp",      "ioctl",
    "norm",     "rpc",    "ftp",    "oracle", "tftp",    "ospf",     "msg2pf",
    "layer7",   "layer4", "layer3", "layer2", "skiffer", "syncache", "lb"};

constinit FWLoggerPlace gTarnFWLogger;

constinit FWPrettyPrinting_t g_tarnfw_pretty_printing = nullptr;
constinit void* g_tarnfw_pretty_printing_context = nullptr;
constinit Locks::StaticMutex g_tarnfw_pretty_printing_mutex;

FWLogger_ FWLoggerPlace::load() const {
  for (;;) {
    const std::uint32_t before = version_.load(std::memory_order_acquire);
    // Acquired: whoever sees a new value here sees below that a thread writes or has written.
    const FWLogger_ logger = {function_.load(std::memory_order_acquire),
                              base_.load(std::memory_order_acquire)};
    if (before % 2 == 0 && version_.load(std::memory_order_relaxed) == before) return logger;
    sched_yield();
  }
}

void FWLoggerPlace::store(FWLogger_ logger) {
  std::uint32_t version = version_.load(std::memory_order_relaxed) & ~1u;
  while (!version_.compare_exchange_weak(version, version + 1, std::memory_order_acquire,
                                         std::memory_order_relaxed)) {
    version &= ~1u;  // even, so that only a place where nobody writes is taken
    sched_yield();
  }
  function_.store(logger.function, std::memory_order_release);
  base_.store(logger.base, std::memory_order_release);
  version_.store(version + 2, std::memory_order_release);
}

void vLogger(int priority, const char* format, va_list arguments) {
  const FWLogger_ logger = gTarnFWLogger.load();
  if (logger.function == nullptr) {
    vsyslog(priority, format, arguments);
    return;
  }
  // Unsigned, so that no base overflows.
  const unsigned int relative = static_cast<unsigned int>(priority) - LOG_INFO + logger.base;
  logger.function(static_cast<int>(relative), format, arguments);
}

void Logger(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  vLogger(priority, format, arguments);
  va_end(arguments);
}

}  // namespace TarnFirewall
