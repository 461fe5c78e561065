#include "HandlerFuzz.h"

#include <algorithm>

#include "CommandTable.h"
#include "Fuzz.h"
#include "FuzzHost.h"
#include "TarnSiIoctl.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kMaxWords = 320;  // more than there may be configs on one command line
constexpr std::uint8_t kEndOfWords = 1;

/// The default handle, its device and those of the filter tables and of service insertion stay open
/// to the end of the process.
void openDefaultHandle() {
  const FuzzHost host({});
  require(FW_GetDefaultLibHandle() != nullptr);
  require(WGT_GetFd() >= 0);
  require(TarnSi::CTarnSiIoctl::GetInstance()->descriptor() >= 0);
}

/// A word with nothing in the memory after its NUL.
std::vector<char> wordOf(const std::string& text) {
  return {text.c_str(), text.c_str() + text.size() + 1};
}

std::vector<std::string> wordsOf(std::span<const std::uint8_t> line) {
  std::vector<std::string> words;
  while (!line.empty() && words.size() < kMaxWords) {
    const auto end = std::find(line.begin(), line.end(), 0);
    words.emplace_back(line.begin(), end);
    line = line.subspan(std::min(words.back().size() + 1, line.size()));
  }
  return words;
}

}  // namespace

HandlerRun runProgram(const std::vector<std::string>& words, std::span<const std::uint8_t> host) {
  [[maybe_unused]] static const bool opened = (startAnew(), openDefaultHandle(), true);
  startAnew();

  std::vector<std::vector<char>> copies{wordOf("tarnioctl")};
  for (const std::string& word : words) copies.push_back(wordOf(word));
  std::vector<char*> argv;
  for (auto& copy : copies) argv.push_back(copy.data());
  argv.push_back(nullptr);

  const int free = freeDescriptor();
  HandlerRun run{};
  {
    const FuzzHost around(host);
    try {
      run.status = runCommand(static_cast<int>(copies.size()), argv.data());
    } catch (const FuzzHost::Signal&) {
      run.status = 1;
    }
    run.out = around.out();
    run.err = around.err();
    run.hostCalls = around.calls();
    require(around.openFiles() == 0);
  }
  require(run.status == 0 || run.status == 1);
  require(freeDescriptor() == free);
  return run;
}

HandlerRun runInput(std::span<const char* const> commands, std::span<const std::uint8_t> input) {
  const std::size_t chosen = input.empty() ? 0 : input[0] % commands.size();
  const auto rest = input.subspan(std::min<std::size_t>(1, input.size()));
  const auto end = std::find(rest.begin(), rest.end(), kEndOfWords);
  const auto length = static_cast<std::size_t>(end - rest.begin());

  std::vector<std::string> words{commands[chosen]};
  const FWCommand_* const command = findCommand(commands[chosen]);
  require(command != nullptr);
  if ((command->flags & kCommandDangerous) != 0) words.push_back("-Override");
  for (std::string& word : wordsOf(rest.first(length))) words.push_back(std::move(word));
  return runProgram(words, rest.subspan(std::min(length + 1, rest.size())));
}

void requireReason(const HandlerRun& run) { require(run.status == 0 || !run.silent()); }
