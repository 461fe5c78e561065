#include "LogCapture.h"

#include <cstdio>
#include <mutex>

#include "TarnFWLog.h"
#include "tarnfw.h"

namespace {

std::vector<LogCapture::Line> g_lines;
std::mutex g_mutex;

__attribute__((format(printf, 2, 0))) void capture(int priority, const char* format,
                                                   va_list arguments) {
  char text[4096];
  std::vsnprintf(text, sizeof text, format, arguments);
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_lines.push_back({priority, text});
}

/// End of "():123 " in a line, or npos.
std::size_t endOfPlace(const std::string& text, std::size_t* digits) {
  const std::size_t at = text.find("():");
  if (at == std::string::npos) return at;
  *digits = at + 3;
  return text.find(' ', at);
}

}  // namespace

LogCapture::LogCapture() {
  g_lines.clear();
  FW_RegisterLogger(capture, 6);
}

LogCapture::~LogCapture() {
  for (unsigned int row = 0; row < TarnFirewall::kComponentRows; ++row) {
    TarnFirewall::g_tarnfw_verbose[row].level = 0;
  }
  FW_UnregisterLogger();
  g_lines.clear();
}

const std::vector<LogCapture::Line>& LogCapture::lines() const { return g_lines; }

std::vector<std::string> LogCapture::normalized() const {
  std::vector<std::string> result;
  for (const Line& line : g_lines) {
    std::string text = line.text;
    std::size_t digits = 0;
    const std::size_t end = endOfPlace(text, &digits);
    if (end != std::string::npos) text.replace(digits, end - digits, "N");
    result.push_back(std::to_string(line.priority) + "|" + text);
  }
  return result;
}

bool LogCapture::has(int priority, const std::string& text) const {
  for (const Line& line : g_lines) {
    std::size_t digits = 0;
    const std::size_t end = endOfPlace(line.text, &digits);
    const std::string message = end == std::string::npos ? line.text : line.text.substr(end + 1);
    if (line.priority == priority && message == text) return true;
  }
  return false;
}

void LogCapture::clear() { g_lines.clear(); }
