#include "TarnFWScannerInput.h"

#include <algorithm>
#include <cerrno>

#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

/// What is kept of a text that is too long to be held: enough for a message.
constexpr std::size_t kKept = 256;

std::size_t readLine(std::FILE* stream, char* buffer, std::size_t room) {
  std::size_t count = 0;
  while (count < room) {
    const int c = std::getc(stream);
    if (c == EOF) break;
    buffer[count++] = static_cast<char>(c);
    if (c == '\n') break;
  }
  return count;
}

std::size_t readBlock(std::FILE* stream, char* buffer, std::size_t room) {
  errno = 0;
  std::size_t count = 0;
  while ((count = std::fread(buffer, 1, room, stream)) == 0 && std::ferror(stream) != 0 &&
         errno == EINTR) {
    errno = 0;
    std::clearerr(stream);
  }
  return count;
}

}  // namespace

void CTarnFWScannerInput::hold(std::string_view text, int line) {
  held_.clear();
  lost_ = false;
  line_ = line - static_cast<int>(std::count(text.begin(), text.end(), '\n'));
  add(text);
}

bool CTarnFWScannerInput::add(std::string_view text) {
  if (lost_) return false;
  if (text.size() > kHeldLimit - held_.size()) {
    lost_ = true;
    held_.resize(std::min(held_.size(), kKept));
    return false;
  }
  held_ += text;
  return true;
}

void CTarnFWScannerInput::readAgain() {
  if (lost_) held_.clear();
  again_.swap(held_);
  held_.clear();
  place_ = std::min<std::size_t>(1, again_.size());
  readsAgain_ = true;
}

std::size_t CTarnFWScannerInput::read(std::FILE* stream, bool interactive, char* buffer,
                                      std::size_t room) {
  if (readsAgain_) {
    const std::size_t count = again_.copy(buffer, room, place_);
    place_ += count;
    return count;
  }
  const std::size_t count =
      interactive ? readLine(stream, buffer, room) : readBlock(stream, buffer, room);
  if (count == 0 && std::ferror(stream) != 0)
    throw CTarnFWException("cannot read the configuration",
                           static_cast<int>(FW_STATUS_CANNOT_LOAD_FILE));
  return count;
}

}  // namespace TarnFirewall
