#include "Check.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "CheckTexts.h"
#include "DiagnosticPrinter.h"
#include "Options.h"
#include "StateFilter.h"

const char kCheckUsage[] =
    "Usage: tarnpolicy check [OPTION]... FILE...\n"
    "Finds the mistakes in configuration text. Several files are one policy, in their order; `-'\n"
    "is standard input. Nothing is changed.\n"
    "\n"
    "      --format FORM    human (the default), json or sarif\n"
    "      --strict         warnings count as errors\n"
    "  -f, --filter FILTER  all of it is for this filter, which is asked for the names that it "
    "holds\n"
    "  -h, --help           this text\n"
    "\n"
    "Exit status: 0 without errors, 1 with errors, 2 for a call that is wrong and for a file or\n"
    "filter that can't be read.\n";

namespace {

enum class Format { human, json, sarif };

Format formatOf(std::string_view word) {
  if (word == "human") return Format::human;
  if (word == "json") return Format::json;
  if (word == "sarif") return Format::sarif;
  throw CallError("no format " + std::string(word) + ": it is human, json or sarif");
}

/// Whether standard output is a terminal that shows colours, of somebody who wants them.
bool wantsColours() {
  const auto value = [](const char* name) {
    const char* const text = std::getenv(name);
    return std::string_view(text == nullptr ? "" : text);
  };
  return isatty(STDOUT_FILENO) != 0 && value("NO_COLOR").empty() && value("TERM") != "dumb";
}

/// The names that a filter holds. Sets and containers share one space of names.
HeldNames namesOf(const std::string& filter) {
  const State state = stateOfFilter(filter);
  HeldNames held;
  for (const auto& [name, set] : state.sets) {
    held.names[static_cast<std::size_t>(NameKind::set)].insert(name);
    held.names[static_cast<std::size_t>(NameKind::container)].insert(name);
  }
  for (const auto& [name, rules] : state.ruleSets) {
    held.names[static_cast<std::size_t>(NameKind::ruleSet)].insert(name);
  }
  return held;
}

}  // namespace

int runCheck(int argc, char** argv) {
  constexpr OptionForm kForms[] = {
      {"format", 'F', false, true}, {"strict", 's', false, false}, {"filter", 'f', true, true}};
  Format format = Format::human;
  bool strict = false;
  std::string filter;
  OptionReader options(argc, argv, kForms);
  while (const char letter = options.next()) {
    if (letter == 'F') format = formatOf(options.argument());
    if (letter == 's') strict = true;
    if (letter == 'f') filter = givenFilter(options.argument());
  }
  if (options.operands().empty()) throw CallError("a file is missing");

  SourceTexts sources;
  for (const char* path : options.operands()) sources.push_back(SourceText::read(path));
  std::optional<HeldNames> held;
  if (!filter.empty()) held = namesOf(filter);
  const Diagnostics diagnostics = checkTexts(sources, held ? &*held : nullptr);
  if (format == Format::human) printForPeople(stdout, sources, diagnostics, wantsColours());
  if (format == Format::json) printJson(stdout, sources, diagnostics);
  if (format == Format::sarif) printSarif(stdout, sources, diagnostics);
  return diagnostics.errors() > 0 || (strict && diagnostics.warnings() > 0) ? 1 : 0;
}
