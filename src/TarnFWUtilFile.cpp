#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWUtilFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <streambuf>
#include <string_view>
#include <utility>

#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

/// What log lines of all steps name as their function: readers of the log know no other.
constexpr char kReplaceFile[] = "FwReplaceFile";

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kEverybody = 0666;  // as far as the process's mask allows it

/// A descriptor that closes at its end.
class File {
 public:
  File(const std::string& path, int flags, mode_t mode = 0)
      : descriptor_(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
  ~File() { close(); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  explicit operator bool() const { return descriptor_ >= 0; }

  /// False when the last bytes could not be kept.
  bool close() {
    if (descriptor_ < 0) return true;
    return ::close(std::exchange(descriptor_, -1)) == 0;
  }

  bool write(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
  }

  /// Appends the rest of the file to `content`.
  bool read(std::string& content) {
    std::array<char, 4096> piece;
    for (;;) {
      const ssize_t got = ::read(descriptor_, piece.data(), piece.size());
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) return got == 0;
      content.append(piece.data(), static_cast<std::size_t>(got));
    }
  }

  /// Lets nobody but the owner read what is about to be written.
  void restrictTo(const std::string& path) {
    if (::fchmod(descriptor_, kOwnerOnly) != 0)
      TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to change mode of %s: %s\n", path.c_str(),
                    std::strerror(errno));
  }

 private:
  int descriptor_;
};

/// The stream of a file for its writer.
class FileStream final : public std::streambuf {
 public:
  explicit FileStream(File& file) : file_(file) { empty(); }

 private:
  int_type overflow(int_type character) override {
    if (sync() != 0) return traits_type::eof();
    if (!traits_type::eq_int_type(character, traits_type::eof()))
      sputc(traits_type::to_char_type(character));
    return traits_type::not_eof(character);
  }

  int sync() override {
    const bool kept = file_.write({pbase(), static_cast<std::size_t>(pptr() - pbase())});
    empty();
    return kept ? 0 : -1;
  }

  void empty() { setp(room_.data(), room_.data() + room_.size()); }

  File& file_;
  std::array<char, 4096> room_;
};

/// What stood in the file before.
struct Earlier {
  std::string content;
  bool kept = false;  // in the ".old" file
};

/// Writes a copy and closes it. A copy that is cut is reported and counts as none.
bool writeCopy(File& file, std::string_view content, const char* to) {
  if (file.write(content) && file.close()) return true;
  TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to write %s: %s\n", to, std::strerror(errno));
  return false;
}

/// Keeps the earlier content in the ".old" file. False when there is one that could not be read or
/// kept whole; the file must be left alone then.
bool keepEarlier(const std::string& path, const std::string& old, std::optional<Earlier>* earlier) {
  File file(path, O_RDONLY);
  if (!file) {
    TARNFW_LOG_IN(kReplaceFile, LOG_WARNING, "failed to open config file %s\n", path.c_str());
    return true;
  }
  earlier->emplace();
  if (!file.read((*earlier)->content)) {
    TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to read config file %s: %s\n", path.c_str(),
                  std::strerror(errno));
    return false;
  }

  File copy(old, O_WRONLY | O_CREAT | O_TRUNC, kOwnerOnly);
  if (!copy) {
    TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to open old file %s\n", old.c_str());
    return true;
  }
  copy.restrictTo(old);
  if (!writeCopy(copy, (*earlier)->content, old.c_str())) return false;
  (*earlier)->kept = true;
  TARNFW_TRACE_IN(kReplaceFile, LOG_DEBUG, FW_COMPONENT_UTIL, 0, "copied config file %s to %s\n",
                  path.c_str(), old.c_str());
  return true;
}

/// Runs the writer on the temporary file.
bool writeTemporary(const std::string& temporary, void* context, FwFileWriter_t writer) {
  File file(temporary, O_WRONLY | O_CREAT | O_TRUNC, kOwnerOnly);
  if (!file) {
    TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to open temporary file %s\n", temporary.c_str());
    return false;
  }
  file.restrictTo(temporary);
  FileStream buffer(file);
  std::ostream stream(&buffer);
  const bool made = writer(context, stream) == UTIL_STATUS_OK;
  stream.flush();
  if (!file.close() || !stream || !made) {
    TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to write temporary file %s\n", temporary.c_str());
    return false;
  }
  TARNFW_TRACE_IN(kReplaceFile, LOG_DEBUG, FW_COMPONENT_UTIL, 0, "wrote temporary file %s\n",
                  temporary.c_str());
  return true;
}

bool readTemporary(const std::string& temporary, std::string& content) {
  File file(temporary, O_RDONLY);
  if (file && file.read(content)) return true;
  TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to open temporary file %s\n", temporary.c_str());
  return false;
}

void putBack(const std::string& path, std::string_view content) {
  File file(path, O_WRONLY | O_TRUNC);
  if (!file) {
    TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to open config file %s\n", path.c_str());
    return;
  }
  writeCopy(file, content, path.c_str());
}

}  // namespace

UtilStatus_t FwReplaceFile(const char* path, void* context, FwFileWriter_t writer) {
  const std::string target = path;
  const std::string temporary = target + ".tmp";
  std::optional<Earlier> earlier;
  if (!keepEarlier(target, target + ".old", &earlier)) return UTIL_STATUS_FAILED;
  if (!writeTemporary(temporary, context, writer)) return UTIL_STATUS_FAILED;
  std::string content;
  if (!readTemporary(temporary, content)) return UTIL_STATUS_FAILED;

  File file(target, O_WRONLY | O_CREAT | O_TRUNC, kEverybody);
  if (!file) {
    TARNFW_LOG_IN(kReplaceFile, LOG_ERR, "failed to open config file %s\n", path);
    return UTIL_STATUS_FAILED;
  }
  if (!writeCopy(file, content, path)) {
    if (earlier && !earlier->kept) putBack(target, earlier->content);
    return UTIL_STATUS_FAILED;
  }
  TARNFW_TRACE_IN(kReplaceFile, LOG_DEBUG, FW_COMPONENT_UTIL, 0, "wrote config file %s\n", path);
  return UTIL_STATUS_OK;
}

UtilStatus_t FwWriteFile(std::FILE* file, void* context, FwTextWriter_t writer) {
  std::string text;
  if (writer(context, text) != UTIL_STATUS_OK) {
    TARNFW_WARNING("failed to write to file pointer\n");
    return UTIL_STATUS_FAILED;
  }
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t written = std::fwrite(rest.data(), 1, rest.size(), file);
    if (written == 0) return UTIL_STATUS_FAILED;
    rest.remove_prefix(written);
  }
  return UTIL_STATUS_OK;
}
