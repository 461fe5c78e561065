// A check of any bytes: it ends, each find lies in the text, all three forms are printed, and there
// is an error if and only if the library's parser refuses the text.

#include <string>

#include "CheckTexts.h"
#include "DiagnosticPrinter.h"
#include "Fuzz.h"
#include "LibraryVerdict.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static std::FILE* const nowhere = std::fopen("/dev/null", "w");
  const std::string text(reinterpret_cast<const char*>(data), size);
  SourceTexts sources;
  sources.emplace_back("input", text);
  const Diagnostics diagnostics = checkTexts(sources);
  for (const Diagnostic& diagnostic : diagnostics.all()) {
    require(diagnostic.range.begin <= diagnostic.range.end && diagnostic.range.end <= size);
    require(diagnostic.related.begin <= diagnostic.related.end && diagnostic.related.end <= size);
    require(!diagnostic.message.empty());
  }
  if (nowhere != nullptr) {
    printForPeople(nowhere, sources, diagnostics, true);
    printJson(nowhere, sources, diagnostics);
    printSarif(nowhere, sources, diagnostics);
  }
  std::FILE* const errors = stderr;
  if (nowhere != nullptr) stderr = nowhere;  // the scanner names there what it skips
  const bool accepted = libraryAccepts(text);
  stderr = errors;
  require(accepted == (diagnostics.errors() == 0));
  return 0;
}
