#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "FakeKernel.h"
#include "LogCapture.h"
#include "Sanitizers.h"
#include "TarnFWCmdList.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// A file with a text, removed at its end.
class TextFile {
 public:
  explicit TextFile(const std::string& text) {
    const int descriptor = mkstemp(path_);
    std::FILE* stream = fdopen(descriptor, "w");
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fclose(stream);
  }
  ~TextFile() { unlink(path_); }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  const char* path() const { return path_; }

 private:
  char path_[32] = "/tmp/tarnfw-load-XXXXXX";
};

fwlibhandle_* const kNoChannel = nullptr;

/// A load with its results, freed at its end.
struct Loaded {
  ~Loaded() {
    if (config != nullptr) FW_FreeConfigFile(config);
    if (channel != kNoChannel) delete fromLibHandle(channel);
  }
  CTarnFWCmdList* list() const { return reinterpret_cast<CTarnFWCmdList*>(config); }

  fwlibhandle_* channel = kNoChannel;
  fwconfigfile_* config = nullptr;
};

/// Verbosity of the public functions while it lives.
struct ApiLevel {
  ApiLevel() { FW_SetLibVerboseLevel(FW_COMPONENT_API, 1); }
  ~ApiLevel() { FW_SetLibVerboseLevel(FW_COMPONENT_API, 0); }
};

/// A text that is made while it is read: a head, many bytes of a fill, a tail.
class MadeText {
 public:
  MadeText(std::string head, std::size_t count, char fill, std::string tail)
      : head_(std::move(head)), count_(count), fill_(fill), tail_(std::move(tail)) {
    cookie_io_functions_t functions = {};
    functions.read = [](void* self, char* buffer, std::size_t room) {
      return static_cast<MadeText*>(self)->read(buffer, room);
    };
    stream_ = fopencookie(this, "r", functions);
  }
  ~MadeText() { std::fclose(stream_); }
  MadeText(const MadeText&) = delete;
  MadeText& operator=(const MadeText&) = delete;

  std::FILE* stream() const { return stream_; }
  std::size_t bytesRead() const { return place_; }

 private:
  ssize_t read(char* buffer, std::size_t room) {
    std::size_t made = 0;
    for (; made < room && place_ < head_.size() + count_ + tail_.size(); ++made, ++place_) {
      if (place_ < head_.size()) {
        buffer[made] = head_[place_];
      } else if (place_ - head_.size() < count_) {
        buffer[made] = fill_;
      } else {
        buffer[made] = tail_[place_ - head_.size() - count_];
      }
    }
    return static_cast<ssize_t>(made);
  }

  std::string head_;
  std::size_t count_;
  char fill_;
  std::string tail_;
  std::size_t place_ = 0;
  std::FILE* stream_ = nullptr;
};

constexpr std::size_t kMuch = kMemorySanitized ? 16000000 : 64000000;

/// What a load may take in MB beside its text: 2, and where a comment or a quoted name may turn out
/// not to be closed, 4 MiB more, held twice while they grow. Sanitizers keep freed memory, and the
/// one for threads has up to four bytes of its own for each: 16 MB that are kept would be 80.
constexpr int kPlainGrowth = kMemorySanitized ? 12 : 6;
constexpr int kHeldGrowth = kThreadSanitizer ? 48 : kMemorySanitized ? 24 : 16;

/// What a child process returns from `work`, which is at most 255.
int inAChild(const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) _exit(work());
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << status;
  return WEXITSTATUS(status);
}

/// By how many megabytes a load of the text grows its process at its peak. It must end with the
/// status, and a good one with one command.
int growthOfLoad(MadeText&& text, FWStatus_t status) {
  const int growth = inAChild([&] {
    rusage before{};
    rusage after{};
    Loaded result;
    getrusage(RUSAGE_SELF, &before);
    const FWStatus_t is =
        FW_LoadConfigFile2(text.stream(), "made", &result.channel, &result.config);
    getrusage(RUSAGE_SELF, &after);
    if (is != status || (result.config != nullptr) != (is == FW_STATUS_OK)) return 255;
    if (result.config != nullptr && result.list()->size() != 1) return 254;
    return static_cast<int>(std::min((after.ru_maxrss - before.ru_maxrss) / 1024, 253L));
  });
  EXPECT_NE(growth, 255) << "another status";
  EXPECT_NE(growth, 254) << "another number of commands";
  return growth;
}

fwconfigfile_* const kUntouched = reinterpret_cast<fwconfigfile_*>(16);

}  // namespace

TEST(TarnFWLoadConfig, RefusesNullArguments) {
  fwlibhandle_* channel = nullptr;
  fwconfigfile_* config = nullptr;
  EXPECT_EQ(FW_LoadConfigString(nullptr, &channel, &config), 3u);
  EXPECT_EQ(FW_LoadConfigString("", nullptr, &config), 3u);
  EXPECT_EQ(FW_LoadConfigString("", &channel, nullptr), 3u);
  EXPECT_EQ(FW_LoadConfigFile(nullptr, &channel, &config), 3u);
  EXPECT_EQ(FW_LoadConfigFile("x", nullptr, &config), 3u);
  EXPECT_EQ(FW_LoadConfigFile("x", &channel, nullptr), 3u);
  EXPECT_EQ(FW_LoadConfigFile2(nullptr, "x", &channel, &config), 3u);
  EXPECT_EQ(FW_LoadConfigFile2(stdin, nullptr, &channel, &config), 3u);
  EXPECT_EQ(FW_LoadConfigFile2(stdin, "x", nullptr, &config), 3u);
  EXPECT_EQ(FW_LoadConfigFile2(stdin, "x", &channel, nullptr), 3u);
  EXPECT_EQ(FW_EvaluateConfigFile(nullptr, kUntouched, nullptr, nullptr), 3u);
  FakeKernel kernel;
  EXPECT_EQ(FW_EvaluateConfigFile(kernel.handle(), nullptr, nullptr, nullptr), 3u);
  EXPECT_EQ(FW_FreeConfigFile(nullptr), 3u);
}

TEST(TarnFWLoadConfig, LoadsAnEmptyStringAsAnEmptyList) {
  Loaded loaded;
  EXPECT_EQ(FW_LoadConfigString("", &loaded.channel, &loaded.config), 0u);
  ASSERT_NE(loaded.config, nullptr);
  EXPECT_EQ(loaded.list()->size(), 0u);
  EXPECT_EQ(loaded.channel, kNoChannel);
  FakeKernel kernel;
  EXPECT_EQ(FW_EvaluateConfigFile(kernel.handle(), loaded.config, nullptr, nullptr), 0u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST(TarnFWLoadConfig, LoadsAFileAndAStream) {
  const TextFile file("destroy all ruleset;\ndestroy all addrset;\n");
  Loaded fromFile;
  EXPECT_EQ(FW_LoadConfigFile(file.path(), &fromFile.channel, &fromFile.config), 0u);
  ASSERT_NE(fromFile.config, nullptr);
  EXPECT_EQ(fromFile.list()->size(), 2u);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.path(), "r"),
                                                               &std::fclose);
  Loaded fromStream;
  EXPECT_EQ(FW_LoadConfigFile2(stream.get(), "name", &fromStream.channel, &fromStream.config), 0u);
  ASSERT_NE(fromStream.config, nullptr);
  EXPECT_EQ(fromStream.list()->size(), 2u);
}

TEST(TarnFWLoadConfig, MakesTheChannelThatTheTextNames) {
  const TextFile file("");
  Loaded loaded;
  const std::string text = std::string("config file \"") + file.path() + "\";";
  EXPECT_EQ(FW_LoadConfigString(text.c_str(), &loaded.channel, &loaded.config), 0u);
  ASSERT_NE(loaded.config, nullptr);
  EXPECT_EQ(loaded.list()->size(), 0u);
  EXPECT_NE(loaded.channel, kNoChannel);
}

TEST(TarnFWLoadConfig, SendsToTheFileThatTheTextNames) {
  const TextFile file("");
  Loaded loaded;
  const std::string text = std::string("config file \"") + file.path() + "\"; destroy all ruleset;";
  ASSERT_EQ(FW_LoadConfigString(text.c_str(), &loaded.channel, &loaded.config), 0u);
  EXPECT_EQ(FW_EvaluateConfigFile(loaded.channel, loaded.config, nullptr, nullptr), 0u);
  // Header, envelope and a body of 4 bytes.
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.path(), "r"),
                                                               &std::fclose);
  std::uint8_t bytes[64];
  EXPECT_EQ(std::fread(bytes, 1, sizeof bytes, stream.get()), 36u);
}

TEST(TarnFWLoadConfig, GivesNoHandleWhenTheChannelCannotBeMade) {
  LogCapture log;
  const ApiLevel level;
  Loaded loaded;
  const FWStatus_t status = FW_LoadConfigString("destroy all ruleset; config file \"/nonesuch/x\";",
                                                &loaded.channel, &loaded.config);
  EXPECT_NE(status, 0u);
  EXPECT_EQ(loaded.config, nullptr);
  EXPECT_EQ(loaded.channel, kNoChannel);
  EXPECT_TRUE(log.has(7, "failed to load new IO channel: " + std::to_string(status) + ".\n"));
}

TEST(TarnFWLoadConfig, GivesNoHandleForASyntaxError) {
  LogCapture log;
  Loaded loaded;
  EXPECT_EQ(FW_LoadConfigString("destroy all ruleset;\ndestroy all addrset;\ndestroy;",
                                &loaded.channel, &loaded.config),
            16u);
  EXPECT_EQ(loaded.config, nullptr);
  EXPECT_EQ(loaded.channel, kNoChannel);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_NE(log.lines()[0].text.find(" [<cmd>:3] syntax error, "), std::string::npos);
}

TEST(TarnFWLoadConfig, NamesTheFileInAnError) {
  LogCapture log;
  const TextFile file("\n\ndestroy;");
  Loaded loaded;
  EXPECT_EQ(FW_LoadConfigFile(file.path(), &loaded.channel, &loaded.config), 16u);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_NE(log.lines()[0].text.find(std::string(" [") + file.path() + ":3] syntax error, "),
            std::string::npos);
}

TEST(TarnFWLoadConfig, GivesTheScannersStatusInsideAStatement) {
  LogCapture log;
  Loaded loaded;
  EXPECT_EQ(FW_LoadConfigString("create addrset a 10.0.0.256-9;", &loaded.channel, &loaded.config),
            33u);
}

TEST(TarnFWLoadConfig, GivesTheScannersFailureBeforeThatOfTheStatementInFrontOfIt) {
  LogCapture log;
  Loaded loaded;
  const std::string text = "create ruleset " + std::string(64, 'n') + "\n10.0.0.256-9;";
  EXPECT_EQ(FW_LoadConfigString(text.c_str(), &loaded.channel, &loaded.config), 33u);
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_TRUE(log.has(3, "[<cmd>:2] invalid ip address - 10.0.0.256\n"));
}

TEST(TarnFWLoadConfig, LeavesTheCallersChannelWhenTheLoadFailsOrNamesNone) {
  LogCapture log;
  FakeKernel kernel;
  for (const char* text :
       {"", "destroy;", "config file \"/nonesuch/x\";", "config file \"/nonesuch/x\"; destroy;"}) {
    fwlibhandle_* channel = kernel.handle();
    fwconfigfile_* config = nullptr;
    FW_LoadConfigString(text, &channel, &config);
    EXPECT_EQ(channel, kernel.handle()) << text;
    if (config != nullptr) FW_FreeConfigFile(config);
  }
}

TEST(TarnFWLoadConfig, IgnoresWhatFollowsAScannerFailureBetweenStatements) {
  Loaded loaded;
  EXPECT_EQ(FW_LoadConfigString("destroy all ruleset; 10.0.0.256-9 nonsense", &loaded.channel,
                                &loaded.config),
            0u);
  ASSERT_NE(loaded.config, nullptr);
  EXPECT_EQ(loaded.list()->size(), 1u);
}

TEST(TarnFWLoadConfig, LeavesOrClearsTheHandleWhenAParseFailsWithoutAStatus) {
  const std::string text = "create nonesuch attrset a with x;";
  fwlibhandle_* channel = nullptr;
  fwconfigfile_* config = kUntouched;
  EXPECT_EQ(FW_LoadConfigString(text.c_str(), &channel, &config), 0u);
  EXPECT_EQ(config, kUntouched);
  const TextFile file(text);
  EXPECT_EQ(FW_LoadConfigFile(file.path(), &channel, &config), 0u);
  EXPECT_EQ(config, nullptr);
}

TEST(TarnFWLoadConfig, RefusesAFileThatCannotBeOpened) {
  LogCapture log;
  const ApiLevel level;
  fwlibhandle_* channel = nullptr;
  fwconfigfile_* config = kUntouched;
  EXPECT_EQ(FW_LoadConfigFile("/nonesuch/x", &channel, &config), 12u);
  EXPECT_EQ(config, kUntouched);
  EXPECT_TRUE(log.has(7, "failed to open file /nonesuch/x - " + std::to_string(ENOENT) + "\n"));
}

TEST(TarnFWLoadConfig, SendsTheCommandsInOrderEachTime) {
  Loaded loaded;
  ASSERT_EQ(FW_LoadConfigString("destroy all ruleset; destroy all addrset;", &loaded.channel,
                                &loaded.config),
            0u);
  FakeKernel kernel;
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(FW_EvaluateConfigFile(kernel.handle(), loaded.config, nullptr, nullptr), 0u);
  }
  ASSERT_EQ(kernel.messages().size(), 4u);
  EXPECT_EQ(kernel.messages()[0].envelope()[4], 60);
  EXPECT_EQ(kernel.messages()[1].envelope()[4], 65);
  EXPECT_EQ(kernel.messages()[2].envelope()[4], 60);
}

TEST(TarnFWLoadConfig, PutsTheCallersSelectorOnEveryCommand) {
  Loaded loaded;
  ASSERT_EQ(
      FW_LoadConfigString("destroy all ruleset of filter f;", &loaded.channel, &loaded.config), 0u);
  FakeKernel kernel;
  dvs_port_ port = {};
  port.identifier[0] = 'g';
  setSelectorType(port, FW_SELECTOR_FILTER);
  EXPECT_EQ(FW_EvaluateConfigFile(kernel.handle(), loaded.config, &port, nullptr), 0u);
  ASSERT_TRUE(kernel.last().port.has_value());
  EXPECT_STREQ(kernel.last().port->identifier, "g");
}

TEST(TarnFWLoadConfig, StopsAtTheFirstCommandThatFails) {
  Loaded loaded;
  ASSERT_EQ(FW_LoadConfigString("destroy all ruleset; destroy all addrset;", &loaded.channel,
                                &loaded.config),
            0u);
  FakeKernel kernel;
  kernel.answer(28);
  EXPECT_EQ(FW_EvaluateConfigFile(kernel.handle(), loaded.config, nullptr, nullptr), 28u);
  EXPECT_EQ(kernel.messages().size(), 1u);
}

namespace {

/// Debug lines of a load in the public function, which says what it is about to do and what came of
/// it; with the line of its entry in front.
std::vector<std::string> debugLines(const std::string& function,
                                    std::initializer_list<std::string> texts) {
  std::vector<std::string> lines;
  const auto add = [&](const std::string& text) {
    lines.push_back("7|tarnfw:api TarnFWLibMain:" + function + "():N " + text + "\n");
  };
  add(function + ".");
  for (const std::string& text : texts) add(text);
  return lines;
}

/// What the functions of configurations log at debug level: not what is reported, nor what others
/// of the public functions say.
std::vector<std::string> debugLinesOf(const LogCapture& log) {
  std::vector<std::string> lines;
  for (const std::string& line : log.normalized()) {
    const std::string place = line.substr(0, line.find("()"));
    if (place.starts_with("7|tarnfw:api TarnFWLibMain:") &&
        place.find("Config") != std::string::npos)
      lines.push_back(line);
  }
  return lines;
}

}  // namespace

TEST(TarnFWLoadConfig, TracesTheStepsOfAString) {
  LogCapture log;
  const ApiLevel level;
  const TextFile messages("");
  const auto load = [&](const std::string& text) {
    log.clear();
    Loaded loaded;
    FW_LoadConfigString(text.c_str(), &loaded.channel, &loaded.config);
    return debugLinesOf(log);
  };
  const std::string function = "FW_LoadConfigString";
  EXPECT_EQ(load(""), debugLines(function, {"obtained config handle.", function + ": ok"}));
  EXPECT_EQ(load(std::string("config file \"") + messages.path() + "\";"),
            debugLines(function, {"loading new IO channel.", "delete cmd list/config",
                                  "obtained config handle.", function + ": ok"}));
  EXPECT_EQ(load("config file \"/nonesuch/x\";"),
            debugLines(function, {"loading new IO channel.", "delete cmd list/config",
                                  "failed to load new IO channel: 12.", "delete cmd list/config",
                                  function + ": cannot load file"}));
  EXPECT_EQ(load("x"),
            debugLines(function, {"failed to parse config string.", function + ": parsing error"}));
}

TEST(TarnFWLoadConfig, TracesTheStepsOfAStream) {
  LogCapture log;
  const ApiLevel level;
  const TextFile messages("");
  const auto load = [&](const std::string& text) {
    const TextFile file(text);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.path(), "r"),
                                                                 &std::fclose);
    log.clear();
    Loaded loaded;
    FW_LoadConfigFile2(stream.get(), "name", &loaded.channel, &loaded.config);
    return debugLinesOf(log);
  };
  const std::string function = "FW_LoadConfigFile2";
  EXPECT_EQ(load(""), debugLines(function, {"obtained config file handle.", function + ": ok"}));
  EXPECT_EQ(
      load(std::string("config file \"") + messages.path() + "\";"),
      debugLines(function, {"loading new IO channel from config file.", "delete cmd list/config",
                            "obtained config file handle.", function + ": ok"}));
  EXPECT_EQ(
      load("config file \"/nonesuch/x\";"),
      debugLines(function, {"loading new IO channel from config file.", "delete cmd list/config",
                            "failed to load new IO channel from config file: 12.",
                            "delete cmd list/config", function + ": cannot load file"}));
  EXPECT_EQ(load("x"),
            debugLines(function, {"failed to parse config file.", function + ": parsing error"}));
}

TEST(TarnFWLoadConfig, TracesAFileThatItOpensAndAConfigThatItFrees) {
  LogCapture log;
  const ApiLevel level;
  const TextFile file("");
  {
    Loaded loaded;
    FW_LoadConfigFile(file.path(), &loaded.channel, &loaded.config);
  }
  std::vector<std::string> lines =
      debugLines("FW_LoadConfigFile", {std::string("opened config file ") + file.path()});
  for (const std::string& line :
       debugLines("FW_LoadConfigFile2", {"obtained config file handle.", "FW_LoadConfigFile2: ok"}))
    lines.push_back(line);
  lines.push_back("7|tarnfw:api TarnFWLibMain:FW_LoadConfigFile():N FW_LoadConfigFile: ok\n");
  for (const std::string& line :
       debugLines("FW_FreeConfigFile", {"deleting config file handle.", "FW_FreeConfigFile: ok"}))
    lines.push_back(line);
  EXPECT_EQ(debugLinesOf(log), lines);
}

TEST(TarnFWLoadConfig, NeedsNoMemoryForBlanksAndComments) {
  const std::string head = "create ruleset ";
  const std::string tail = " \"a\";";
  EXPECT_LT(growthOfLoad(MadeText(head, kMuch, ' ', tail), FW_STATUS_OK), kPlainGrowth);
  EXPECT_LT(growthOfLoad(MadeText(head, kMuch, '\n', tail), FW_STATUS_OK), kPlainGrowth);
  EXPECT_LT(growthOfLoad(MadeText(head, kMuch, '\r', tail), FW_STATUS_OK), kPlainGrowth);
  EXPECT_LT(growthOfLoad(MadeText(head + "#", kMuch, 'x', "\n" + tail), FW_STATUS_OK),
            kPlainGrowth);
  EXPECT_LT(growthOfLoad(MadeText(head + "/*", kMuch, 'x', "*/" + tail), FW_STATUS_OK),
            kHeldGrowth);
  EXPECT_LT(growthOfLoad(MadeText(head + "/*", kMuch, '*', "*/" + tail), FW_STATUS_OK),
            kHeldGrowth);
  EXPECT_LT(growthOfLoad(MadeText(head + "/*", kMuch, '\n', "*/" + tail), FW_STATUS_OK),
            kHeldGrowth);
}

TEST(TarnFWLoadConfig, RefusesACommentOfAnyLengthThatIsNotClosed) {
  EXPECT_LT(growthOfLoad(MadeText("create ruleset /*", kMuch, 'x', ""), FW_STATUS_PARSING_ERROR),
            kHeldGrowth);
  EXPECT_LT(growthOfLoad(MadeText("create ruleset a; /*", kMuch, 'x', ""), FW_STATUS_PARSING_ERROR),
            kHeldGrowth);
  LogCapture log;
  Loaded result;
  MadeText text("create ruleset\n\n/*", 6400000, '\n', "");
  EXPECT_EQ(FW_LoadConfigFile2(text.stream(), "made", &result.channel, &result.config), 16u);
  EXPECT_TRUE(log.has(3, "[made:3] comment is not closed\n"));
}

TEST(TarnFWLoadConfig, ReadsANameNoFurtherThanItIsLegal) {
  MadeText name("create ruleset ", kMuch, 'x', ";");
  Loaded result;
  EXPECT_EQ(FW_LoadConfigFile2(name.stream(), "made", &result.channel, &result.config), 31u);
  EXPECT_LT(name.bytesRead(), 100000u);
  EXPECT_LT(growthOfLoad(MadeText("create ruleset ", kMuch, 'x', ";"), FW_STATUS_NAME_TOO_LONG),
            kPlainGrowth);
  EXPECT_LT(growthOfLoad(MadeText("create ruleset \"", kMuch, 'x', "\";"), FW_STATUS_NAME_TOO_LONG),
            kHeldGrowth);
}

TEST(TarnFWLoadConfig, RefusesAStreamThatCannotBeReadWhereverItFails) {
  for (const char* const text : {"", "create ruleset a;", "create ruleset "}) {
    std::string left = text;
    cookie_io_functions_t functions = {};
    functions.read = [](void* self, char* buffer, std::size_t room) -> ssize_t {
      auto& rest = *static_cast<std::string*>(self);
      if (rest.empty()) {
        errno = EIO;
        return -1;
      }
      const std::size_t count = rest.copy(buffer, room);
      rest.erase(0, count);
      return static_cast<ssize_t>(count);
    };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(fopencookie(&left, "r", functions),
                                                                 &std::fclose);
    LogCapture log;
    Loaded result;
    EXPECT_EQ(FW_LoadConfigFile2(stream.get(), "made", &result.channel, &result.config), 12u)
        << text;
    EXPECT_EQ(result.config, nullptr);
    EXPECT_TRUE(log.has(3, "[made:1] cannot read the configuration\n")) << text;
  }
  Loaded folder;
  EXPECT_EQ(FW_LoadConfigFile("/", &folder.channel, &folder.config), 12u);
}

TEST(TarnFWLoadConfig, EndsWithAStatusWhenTheScannersMemoryIsUsedUp) {
  if (kMemorySanitized) GTEST_SKIP() << "a sanitizer takes address space of its own";
  for (const char* const head : {"create ruleset a; ", "describe list of ruleset from "}) {
    MadeText number(head, std::size_t{1} << 30, '0', ";");
    EXPECT_EQ(inAChild([&] {
                rlimit limit = {std::size_t{128} << 20, std::size_t{128} << 20};
                if (setrlimit(RLIMIT_AS, &limit) != 0) return 99;
                Loaded result;
                return static_cast<int>(
                    FW_LoadConfigFile2(number.stream(), "made", &result.channel, &result.config));
              }),
              8);
  }
}

TEST(TarnFWLoadConfig, EndsWithAStatusWhenThereIsNoMemoryForACopyOfTheText) {
  if (kMemorySanitized) GTEST_SKIP() << "a sanitizer takes address space of its own";
  const std::string text(std::size_t{100} << 20, ' ');
  EXPECT_EQ(
      inAChild([&] {
        rlimit limit = {std::size_t{200} << 20, std::size_t{200} << 20};
        if (setrlimit(RLIMIT_AS, &limit) != 0) return 99;
        Loaded result;
        return static_cast<int>(FW_LoadConfigString(text.c_str(), &result.channel, &result.config));
      }),
      8);
}
