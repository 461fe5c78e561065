#include "HandlerCommon.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "TarnFWLog.h"
#include "TarnFWUtil.h"

void printWith(FILE* stream, const char* text, const char* word) {
  const char* const place = std::strstr(text, "%s");
  if (place == nullptr) {
    std::fputs(text, stream);
    return;
  }
  std::fwrite(text, 1, static_cast<std::size_t>(place - text), stream);
  std::fputs(word, stream);
  std::fputs(place + 2, stream);
}

int Usage::operator()(int status) const {
  printWith(stdout, text_, cmd_);
  return status;
}

int Usage::error(const char* format, ...) const {
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  return (*this)(1);
}

int error(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  return 1;
}

int pretty_printing(void* stream, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int written = std::vfprintf(static_cast<FILE*>(stream), format, arguments);
  va_end(arguments);
  return written;
}

Options::Options(int argc, char** argv, const char* letters, const option* words)
    : argc_(argc), argv_(argv), letters_(letters), words_(words) {
  optind = 0;  // glibc: forget the walk before
}

int Options::next() {
  return words_ != nullptr ? getopt_long(argc_, argv_, letters_, words_, nullptr)
                           : getopt(argc_, argv_, letters_);
}

bool decimalOption(const char* text, int* value) {
  char* end = nullptr;
  errno = 0;
  const long number = std::strtol(text, &end, 10);
  if (errno != 0 || end == text || *end != '\0' || number < INT_MIN || number > INT_MAX)
    return false;
  *value = static_cast<int>(number);
  return true;
}

long boundedOption(const char* text, long least, long most) {
  return std::clamp(std::strtol(text, nullptr, 10), least, most);
}

FilterTarget::FilterTarget() { Strncpy(agent, kDefaultAgent, sizeof agent); }

int FilterTarget::take(const char* text) {
  if (std::strlen(text) > kMaxName) return error("ERROR: invalid filter name %s\n", text);
  Strncpy(name, text, sizeof name);

  // A repeated -f begins with the default agent again.
  Strncpy(agent, kDefaultAgent, sizeof agent);
  if (GetAgentFromFilterName(name, agent) == 0) {
    setSelectorType(port, TarnFirewall::FW_SELECTOR_FILTER);
    Strncpy(port.agent, agent, sizeof port.agent);
  } else {
    setSelectorType(port, TarnFirewall::FW_SELECTOR_VIF);
    std::memset(port.agent, 0, sizeof port.agent);
  }
  Strncpy(port.identifier, name, sizeof port.identifier);
  given = true;
  return 0;
}

void FilterTarget::settleAgent(bool always) {
  if (always || selectorType(port) == TarnFirewall::FW_SELECTOR_VIF)
    Strncpy(port.agent, agent, sizeof port.agent);
}

void Verbosity::raise(const char* text) {
  const long step = text != nullptr ? std::max(std::strtol(text, nullptr, 10), 0L) : 1;
  level = static_cast<int>(std::min<long>(step, INT_MAX - level)) + level;
}

int Verbosity::takeComponent(const char* text) {
  if (ParseCompString(text, &component, TarnFirewall::hulld_comp_name,
                      TarnFirewall::kHulldComponents))
    return 0;
  return error("ERROR: bad component id %s\n", text);
}

void Verbosity::announce(const FilterTarget& target) const {
  if (level == 0) return;
  std::printf("verbose level : %d\n", level);
  std::printf("weirgate agent: %s\n", target.port.agent);
}

void Verbosity::raiseLibrary() const {
  if (level != 0) FW_SetLibVerboseLevel(component, static_cast<unsigned int>(level));
}

int initFWLibrary(fwlibhandle_** handle) {
  *handle = FW_GetDefaultLibHandle();
  return *handle != nullptr ? 0 : error("ERROR: unable to open firewall library\n");
}
