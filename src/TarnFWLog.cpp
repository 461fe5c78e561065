#include "TarnFWLog.h"

namespace TarnFirewall {

constinit FWVerbose_ g_tarnfw_verbose[kComponentRows] = {
    {1, 0, "misc"},     {1, 0, "api"},    {1, 0, "library"},  {1, 0, "lexer"},   {1, 0, "parser"},
    {1, 0, "io"},       {1, 0, "msgbuf"}, {1, 0, "cmd"},      {1, 0, "address"}, {1, 0, "rule"},
    {1, 0, "protocol"}, {1, 0, "util"},   {1, 0, "protobuf"}, {1, 0, "ploy"},    {1, 0, "ipfix"},
    {1, 0, "flow"},     {1, 0, "filter"}, {1, 0, "trie"},     {1, 0, "cache"},
};
unsigned int g_tarnfw_max_component = FW_COMPONENT_PREDEFINED;
Locks::Mutex g_tarnfw_verbose_mutex;

constinit const char* const hulld_comp_name[kHulldComponents] = {
    "misc",     "api",  "library",  "lexer", "parser", "io",   "msgbuf", "cmd",  "address", "rule",
    "protocol", "util", "protobuf", "ploy",  "ipfix",  "flow", "filter", "trie", "cache"};

constinit const char* const tarn_comp_name[kTarnComponents] = {
    "fastpath", "rule",   "table",  "icmp",   "tcp",     "udp",      "ioctl",
    "norm",     "rpc",    "ftp",    "oracle", "tftp",    "ospf",     "msg2pf",
    "layer7",   "layer4", "layer3", "layer2", "skiffer", "syncache", "lb"};

constinit FWLogger_ gTarnFWLogger = {nullptr, 0};

constinit FWPrettyPrinting_t g_tarnfw_pretty_printing = nullptr;
constinit void* g_tarnfw_pretty_printing_context = nullptr;
Locks::Mutex g_tarnfw_pretty_printing_mutex;

void vLogger(int priority, const char* format, va_list arguments) {
  const FWLogger_ logger = gTarnFWLogger;
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
