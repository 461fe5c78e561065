#pragma once

#include <string>

namespace TarnFirewall {

/// A printf format and its arguments as a string. Texts of any length come out whole.
std::string formatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Appends a printf format and its arguments to `text`.
void appendText(std::string& text, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace TarnFirewall
