#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

#include "CallShim.h"
#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnFWUtilFile.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

/// A folder with a file "config" in it.
class UtilFile : public testing::Test {
 protected:
  UtilFile() {
    char name[] = "/tmp/tarnfw-file-XXXXXX";
    folder_ = mkdtemp(name);
    path_ = folder_ + "/config";
  }
  ~UtilFile() override {
    for (const char* end : {"", ".tmp", ".old"}) {
      std::remove((path_ + end).c_str());
      rmdir((path_ + end).c_str());
    }
    rmdir(folder_.c_str());
  }

  void put(const std::string& content, const std::string& end = "") {
    std::ofstream(path_ + end) << content;
  }

  /// Nothing when the file is not there.
  std::optional<std::string> content(const std::string& end = "") const {
    std::ifstream file(path_ + end);
    if (!file) return std::nullopt;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }

  struct stat status(const std::string& end = "") const {
    struct stat found {};
    EXPECT_EQ(stat((path_ + end).c_str(), &found), 0) << end;
    return found;
  }
  mode_t mode(const std::string& end = "") const { return status(end).st_mode & 07777; }

  UtilStatus_t replace(const std::string& content) {
    std::string copy = content;
    return FwReplaceFile(path_.c_str(), &copy, [](void* context, std::ostream& stream) {
      stream << *static_cast<std::string*>(context);
      return UTIL_STATUS_OK;
    });
  }

  std::string folder_, path_;
};

/// A writer that fails after a part.
UtilStatus_t writePart(void* context, std::ostream& stream) {
  stream << "part";
  return *static_cast<UtilStatus_t*>(context);
}

const std::string kLong(100'000, 'n');

}  // namespace

TEST_F(UtilFile, ReplacesAFileAndKeepsTheEarlierOne) {
  put("earlier");
  chmod(path_.c_str(), 0644);
  const struct stat before = status();
  LogCapture log;
  FW_SetLibVerboseLevel(FW_COMPONENT_UTIL, 1);
  EXPECT_EQ(replace("new"), 1);
  EXPECT_EQ(content(), "new");
  EXPECT_EQ(content(".old"), "earlier");
  EXPECT_EQ(content(".tmp"), "new");
  EXPECT_EQ(status().st_ino, before.st_ino);
  EXPECT_EQ(mode(), 0644u);
  EXPECT_EQ(mode(".old"), 0600u);
  EXPECT_EQ(mode(".tmp"), 0600u);
  const std::string place = "7|tarnfw:util TarnFWUtil:FwReplaceFile():N ";
  EXPECT_EQ(log.normalized(),
            (Lines{place + "copied config file " + path_ + " to " + path_ + ".old\n",
                   place + "wrote temporary file " + path_ + ".tmp\n",
                   place + "wrote config file " + path_ + "\n"}));
}

TEST_F(UtilFile, WhoHasTheFileOpenSeesTheNewContent) {
  put("earlier");
  chmod(path_.c_str(), 0751);
  std::ifstream reader(path_);
  LogCapture log;
  EXPECT_EQ(replace("new"), 1);
  std::string text;
  reader >> text;
  EXPECT_EQ(text, "new");
  EXPECT_EQ(mode(), 0751u);
}

TEST_F(UtilFile, ReplacesWithMoreAndWithLess) {
  for (const std::string& next : {kLong, std::string("short"), std::string(), kLong + "x"}) {
    const std::string before = content().value_or("");
    LogCapture log;
    EXPECT_EQ(replace(next), 1);
    EXPECT_EQ(content(), next);
    EXPECT_EQ(content(".old").value_or(""), before);
  }
}

TEST_F(UtilFile, TheWritersResultIsTheResult) {
  put("earlier");
  for (const UtilStatus_t result : {0, 2, -1}) {
    LogCapture log;
    UtilStatus_t context = result;
    EXPECT_EQ(FwReplaceFile(path_.c_str(), &context, writePart), 0);
    EXPECT_EQ(content(), "earlier");
    EXPECT_EQ(content(".tmp"), "part");
    EXPECT_EQ(log.normalized(),
              Lines{"3|tarnfw: TarnFWUtil:FwReplaceFile():N failed to write temporary file " +
                    path_ + ".tmp\n"});
  }
}

TEST_F(UtilFile, WithoutAnEarlierFileThereIsNoBackup) {
  const mode_t mask = umask(022);
  LogCapture log;
  EXPECT_EQ(replace("new"), 1);
  umask(mask);
  EXPECT_EQ(content(), "new");
  EXPECT_EQ(content(".old"), std::nullopt);
  EXPECT_EQ(mode(), 0644u);
  EXPECT_EQ(log.normalized(), (Lines{"4|tarnfw: TarnFWUtil:FwReplaceFile():N "
                                     "failed to open config file " +
                                     path_ + "\n"}));
}

TEST_F(UtilFile, WhatTheOthersHeldBeforeIsReplaced) {
  put("earlier");
  for (const char* end : {".tmp", ".old"}) {
    put("of another time, and longer", end);
    chmod((path_ + end).c_str(), 0666);
  }
  LogCapture log;
  EXPECT_EQ(replace("new"), 1);
  EXPECT_EQ(content(".old"), "earlier");
  EXPECT_EQ(content(".tmp"), "new");
  EXPECT_EQ(mode(".old"), 0600u);
  EXPECT_EQ(mode(".tmp"), 0600u);
}

TEST_F(UtilFile, WithoutABackupFileItGoesOn) {
  put("earlier");
  mkdir((path_ + ".old").c_str(), 0700);
  LogCapture log;
  EXPECT_EQ(replace("new"), 1);
  EXPECT_EQ(content(), "new");
  EXPECT_EQ(
      log.normalized(),
      Lines{"3|tarnfw: TarnFWUtil:FwReplaceFile():N failed to open old file " + path_ + ".old\n"});
}

TEST_F(UtilFile, WithoutATemporaryFileItEnds) {
  put("earlier");
  mkdir((path_ + ".tmp").c_str(), 0700);
  LogCapture log;
  EXPECT_EQ(replace("new"), 0);
  EXPECT_EQ(content(), "earlier");
  EXPECT_EQ(log.normalized(),
            Lines{"3|tarnfw: TarnFWUtil:FwReplaceFile():N failed to open temporary file " + path_ +
                  ".tmp\n"});
}

TEST_F(UtilFile, ATargetThatCannotBeOpenedIsReported) {
  path_ = folder_ + "/none/config";
  LogCapture log;
  EXPECT_EQ(replace("new"), 0);
  path_ = folder_ + "/config";
  put("earlier");
  // Opened: the earlier file, its backup, the temporary file twice, the target.
  const CallShim::Failing failing(4, EACCES, "open");
  EXPECT_EQ(replace("new"), 0);
  EXPECT_TRUE(log.has(3, "failed to open config file " + path_ + "\n"));
  EXPECT_TRUE(failing.reached());
}

TEST_F(UtilFile, WhateverFailsNoContentIsLost) {
  const std::vector<int> descriptors = openDescriptors();
  for (const std::string& earlier : {std::string("earlier"), kLong + "earlier"}) {
    unsigned int failures = 0;
    for (unsigned int number = 0;; ++number) {
      put(earlier);
      put("of another time", ".old");
      LogCapture log;
      std::string failed;
      UtilStatus_t result = 0;
      {
        const CallShim::Failing failing(number, EIO);
        result = replace(kLong);
        if (failing.reached()) failed = failing.name();
      }
      EXPECT_EQ(openDescriptors(), descriptors);
      if (failed.empty()) {
        EXPECT_EQ(result, 1);
        break;
      }
      ++failures;
      if (result == 1) {
        EXPECT_EQ(content(), kLong) << number << failed;
      } else {
        EXPECT_TRUE(content() == earlier || content(".old") == earlier) << number << failed;
      }
      // Of closing a file that was only read there is nothing to report.
      EXPECT_TRUE(!log.lines().empty() || failed == "close") << number << failed;
    }
    EXPECT_GE(failures, 15u);
  }
}

TEST_F(UtilFile, OnAFullDiskNoContentIsLost) {
  for (const bool backup : {true, false}) {
    if (!backup) {
      std::remove((path_ + ".old").c_str());
      mkdir((path_ + ".old").c_str(), 0700);
    }
    for (unsigned int number = 0;; ++number) {
      put("earlier");
      LogCapture log;
      UtilStatus_t result = 0;
      {
        const CallShim::FullDisk full(number);
        result = replace(kLong);
      }
      if (result == 1) break;
      EXPECT_FALSE(log.lines().empty());
      if (backup) {
        EXPECT_TRUE(content() == "earlier" || content(".old") == "earlier") << number;
      }
    }
  }
}

TEST_F(UtilFile, WithoutABackupTheEarlierContentIsPutBack) {
  put("earlier");
  mkdir((path_ + ".old").c_str(), 0700);
  // Writes: the temporary file's pieces, then the target.
  bool restored = false;
  for (unsigned int number = 0;; ++number) {
    LogCapture log;
    const CallShim::Failing failing(number, EIO, "write");
    if (replace(kLong) == 1) break;
    EXPECT_EQ(content(), "earlier") << number;
    restored = restored || log.has(3, "failed to write " + path_ + ": Input/output error\n");
  }
  EXPECT_TRUE(restored);
}

TEST_F(UtilFile, ShortAndInterruptedCallsAreGoneOnWith) {
  put(kLong + "earlier");
  const CallShim::ShortCalls calls(1000);
  LogCapture log;
  EXPECT_EQ(replace(kLong), 1);
  EXPECT_EQ(content(), kLong);
  EXPECT_EQ(content(".old"), kLong + "earlier");
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(UtilFile, AnExceptionOfTheWriterPassesAndLeavesNoDescriptor) {
  put("earlier");
  const std::vector<int> descriptors = openDescriptors();
  LogCapture log;
  EXPECT_THROW(FwReplaceFile(path_.c_str(), nullptr,
                             [](void*, std::ostream& stream) -> UtilStatus_t {
                               stream << "part" << std::flush;
                               throw std::runtime_error("none");
                             }),
               std::runtime_error);
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_EQ(content(), "earlier");
  EXPECT_EQ(content(".tmp"), "part");
}

namespace {

/// What a file of the C library was given, and how much of it is taken by one call.
struct Sink {
  std::string text;
  std::size_t limit = 1 << 20;
};

std::FILE* openSink(Sink& sink) {
  cookie_io_functions_t functions{};
  functions.write = [](void* cookie, const char* bytes, std::size_t size) {
    auto& kept = *static_cast<Sink*>(cookie);
    const std::size_t taken = std::min(size, kept.limit - std::min(kept.limit, kept.text.size()));
    kept.text.append(bytes, taken);
    return static_cast<ssize_t>(taken);
  };
  std::FILE* const file = fopencookie(&sink, "w", functions);
  std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
}

UtilStatus_t writeText(void* context, std::string& text) {
  EXPECT_EQ(text, "");
  text = *static_cast<std::string*>(context);
  return UTIL_STATUS_OK;
}

}  // namespace

TEST(FwWriteFile, WritesWhatTheWriterMade) {
  for (std::string text : {std::string(), std::string("one\n"), kLong, std::string("a\0b", 3)}) {
    Sink sink;
    std::FILE* const file = openSink(sink);
    LogCapture log;
    EXPECT_EQ(FwWriteFile(file, &text, writeText), 1);
    std::fclose(file);
    EXPECT_EQ(sink.text, text);
    EXPECT_TRUE(log.lines().empty());
  }
}

TEST(FwWriteFile, WritesNothingWhenTheWriterFails) {
  for (UtilStatus_t result : {0, 2, -1}) {
    Sink sink;
    std::FILE* const file = openSink(sink);
    LogCapture log;
    EXPECT_EQ(FwWriteFile(file, &result,
                          [](void* context, std::string& text) {
                            text = "part";
                            return *static_cast<UtilStatus_t*>(context);
                          }),
              0);
    std::fclose(file);
    EXPECT_EQ(sink.text, "");
    EXPECT_EQ(log.normalized(), Lines{"4|tarnfw: TarnFWUtil:FwWriteFile():N failed to write to "
                                      "file pointer\n"});
  }
}

TEST(FwWriteFile, AFileThatTakesNoMoreIsAFailure) {
  std::string text = kLong;
  Sink sink;
  sink.limit = 1000;
  std::FILE* const file = openSink(sink);
  LogCapture log;
  EXPECT_EQ(FwWriteFile(file, &text, writeText), 0);
  std::fclose(file);
  EXPECT_EQ(sink.text, text.substr(0, 1000));
}
