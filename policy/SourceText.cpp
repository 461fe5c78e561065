#include "SourceText.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

SourceText::SourceText(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)) {}

SourceText SourceText::read(const std::string& path) {
  struct Close {
    void operator()(std::FILE* file) const {
      if (file != stdin) std::fclose(file);
    }
  };
  const std::unique_ptr<std::FILE, Close> file(path == "-" ? stdin
                                                           : std::fopen(path.c_str(), "re"));
  if (file == nullptr) throw SourceError("cannot open " + path + ": " + std::strerror(errno));
  std::string text;
  char buffer[65536];
  for (;;) {
    errno = 0;
    const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get());
    text.append(buffer, count);
    if (text.size() > kMaxSize) throw SourceError(path + " is larger than 2 GB");
    if (std::ferror(file.get()) != 0) {
      if (errno != EINTR) throw SourceError("cannot read " + path + ": " + std::strerror(errno));
      std::clearerr(file.get());
    } else if (count == 0) {
      return SourceText(path == "-" ? "<stdin>" : path, std::move(text));
    }
  }
}

SourceText::Place SourceText::place(std::uint32_t offset) const {
  if (lineStarts_.empty()) {
    lineStarts_.push_back(0);
    for (std::size_t end = text_.find('\n'); end != text_.npos; end = text_.find('\n', end + 1)) {
      lineStarts_.push_back(static_cast<std::uint32_t>(end + 1));
    }
  }
  const auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
  const auto line = static_cast<std::uint32_t>(next - lineStarts_.begin());
  return {line, offset - next[-1] + 1};
}

std::string_view SourceText::lineAt(std::uint32_t offset, std::size_t after) const {
  const std::size_t before = place(offset).column - 1;
  std::string_view line = text().substr(offset - before, before + after + 1);
  const std::size_t end = line.find('\n', before);
  if (end == line.npos) return line.substr(0, before + after);
  line = line.substr(0, end);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool SourceText::isFirstInLine(std::uint32_t offset) const {
  while (offset > 0 && (text_[offset - 1] == ' ' || text_[offset - 1] == '\t')) --offset;
  return offset == 0 || text_[offset - 1] == '\n' || text_[offset - 1] == '\r';
}
