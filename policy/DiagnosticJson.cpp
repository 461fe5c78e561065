#include <algorithm>
#include <vector>

#include "DiagnosticPrinter.h"
#include "JsonText.h"
#include "ShownText.h"

namespace {

constexpr const char* kPage = "see docs/policy-checks.md#";

const char* severityWord(Severity severity) {
  return severity == Severity::error ? "error" : "warning";
}

/// Columns in characters, from 1. Characters are counted once, with marks on the way, so that many
/// finds in one long line do not count it from its beginning each.
class CharacterColumns {
 public:
  explicit CharacterColumns(const SourceText& source) : source_(source) {}

  std::size_t at(std::uint32_t offset) {
    const std::uint32_t before = source_.place(offset).column - 1;
    return charactersBefore(offset) - charactersBefore(offset - before) + 1;
  }

 private:
  static constexpr std::uint32_t kBetweenMarks = 4096;
  struct Mark {
    std::uint32_t offset;
    std::size_t characters;
  };

  /// Steps over a character, or over a byte that is none.
  static void step(std::string_view text, Mark& place) {
    const std::size_t size = characterSize(text.substr(place.offset));
    place.offset += static_cast<std::uint32_t>(std::max<std::size_t>(size, 1));
    ++place.characters;
  }

  std::size_t charactersBefore(std::uint32_t offset) {
    while (marks_.back().offset + kBetweenMarks < offset) {
      Mark next = marks_.back();
      while (next.offset < marks_.back().offset + kBetweenMarks) step(source_.text(), next);
      marks_.push_back(next);
    }
    auto mark = std::upper_bound(marks_.begin(), marks_.end(), offset,
                                 [](std::uint32_t at, const Mark& m) { return at < m.offset; });
    Mark place = *--mark;
    const std::string_view text = source_.text().substr(0, offset);
    while (place.offset < offset) step(text, place);
    return place.characters;
  }

  const SourceText& source_;
  std::vector<Mark> marks_ = {{0, 0}};
};

/// Those of all texts.
struct Columns {
  const SourceTexts& sources;
  std::vector<CharacterColumns> of;
};

void writePlace(JsonText& json, const SourceTexts& sources, const TextRange& range) {
  const SourceText& source = sources[range.file];
  const auto [line, column] = source.place(range.begin);
  const auto [endLine, endColumn] = source.place(range.end);
  json.member("file", source.name());
  json.member("line", line);
  json.member("column", column);
  json.member("endLine", endLine);
  json.member("endColumn", endColumn);
}

/// A file's name as a relative reference: what has a meaning in one is escaped.
std::string uriOf(std::string_view name) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string uri;
  for (const char c : name) {
    if (kPlain.find(c) != kPlain.npos) {
      uri += c;
      continue;
    }
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return uri;
}

void writeLocation(JsonText& json, Columns& columns, const TextRange& range) {
  const SourceText& source = columns.sources[range.file];
  CharacterColumns& column = columns.of[range.file];
  json.key("physicalLocation").beginObject();
  json.key("artifactLocation").beginObject();
  json.member("uri", uriOf(source.name()));
  json.endObject();
  json.key("region").beginObject();
  json.member("startLine", source.place(range.begin).line);
  json.member("startColumn", column.at(range.begin));
  json.member("endLine", source.place(range.end).line);
  json.member("endColumn", column.at(range.end));
  json.endObject();
  json.endObject();
}

void writeText(JsonText& json, const char* key, std::string_view text) {
  json.key(key).beginObject();
  json.member("text", text);
  json.endObject();
}

void writeResult(JsonText& json, Columns& columns, const Diagnostic& diagnostic) {
  json.beginObject();
  json.member("ruleId", rowOf(diagnostic.check).name);
  json.member("ruleIndex", static_cast<std::size_t>(diagnostic.check));
  json.member("level", severityWord(diagnostic.severity));
  std::string text = diagnostic.message;
  if (!diagnostic.expected.empty()) text += "; expected " + joinedWords(diagnostic.expected);
  if (!diagnostic.help.empty()) text += "; " + diagnostic.help;
  writeText(json, "message", text);
  json.key("locations").beginArray().beginObject();
  writeLocation(json, columns, diagnostic.range);
  json.endObject().endArray();
  if (!diagnostic.relatedMessage.empty()) {
    json.key("relatedLocations").beginArray().beginObject();
    writeLocation(json, columns, diagnostic.related);
    writeText(json, "message", diagnostic.relatedMessage);
    json.endObject().endArray();
  }
  json.endObject();
}

}  // namespace

void printJson(std::FILE* stream, const SourceTexts& sources, const Diagnostics& diagnostics) {
  JsonText json(stream);
  json.beginObject();
  json.member("version", 1);
  json.key("files").beginArray();
  for (const SourceText& source : sources) json.value(source.name());
  json.endArray();
  json.member("errors", diagnostics.errors());
  json.member("warnings", diagnostics.warnings());
  json.key("diagnostics").beginArray();
  for (const Diagnostic& diagnostic : diagnostics.all()) {
    json.beginObject();
    json.member("check", rowOf(diagnostic.check).name);
    json.member("severity", severityWord(diagnostic.severity));
    writePlace(json, sources, diagnostic.range);
    json.member("message", diagnostic.message);
    if (!diagnostic.expected.empty()) {
      json.key("expected").beginArray();
      for (const std::string& word : diagnostic.expected) json.value(word);
      json.endArray();
    }
    if (!diagnostic.help.empty()) json.member("help", diagnostic.help);
    if (!diagnostic.relatedMessage.empty()) {
      json.key("related").beginObject();
      writePlace(json, sources, diagnostic.related);
      json.member("message", diagnostic.relatedMessage);
      json.endObject();
    }
    json.endObject();
  }
  json.endArray();
  json.endObject();
  json.finish();
}

void printSarif(std::FILE* stream, const SourceTexts& sources, const Diagnostics& diagnostics) {
  JsonText json(stream);
  json.beginObject();
  json.member("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
  json.member("version", "2.1.0");
  json.key("runs").beginArray().beginObject();
  json.key("tool").beginObject().key("driver").beginObject();
  json.member("name", "tarnpolicy check");
  json.member("version", TARNFW_BUILD);
  json.key("rules").beginArray();
  for (const CheckRow& row : checkRows()) {
    json.beginObject();
    json.member("id", row.name);
    writeText(json, "shortDescription", row.summary);
    std::string page = kPage;
    page += row.name;
    writeText(json, "help", page);
    json.key("defaultConfiguration").beginObject();
    json.member("level", severityWord(row.severity));
    json.endObject();
    json.endObject();
  }
  json.endArray().endObject().endObject();
  json.member("columnKind", "unicodeCodePoints");
  json.key("results").beginArray();
  Columns columns{sources, {sources.begin(), sources.end()}};
  for (const Diagnostic& diagnostic : diagnostics.all()) writeResult(json, columns, diagnostic);
  json.endArray();
  json.endObject().endArray();
  json.endObject();
  json.finish();
}
