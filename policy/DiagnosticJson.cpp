#include "CheckWords.h"
#include "DiagnosticPrinter.h"
#include "JsonText.h"

namespace {

constexpr const char* kPage = "see docs/policy-checks.md#";

const char* severityWord(Severity severity) {
  return severity == Severity::error ? "error" : "warning";
}

/// Column in characters, from 1.
std::size_t characterColumn(const SourceText& source, std::uint32_t offset) {
  const std::uint32_t bytes = source.place(offset).column - 1;
  std::string_view before = source.text().substr(offset - bytes, bytes);
  std::size_t column = 1;
  while (!before.empty()) {
    before.remove_prefix(std::max<std::size_t>(characterSize(before), 1));
    ++column;
  }
  return column;
}

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

void writeLocation(JsonText& json, const SourceTexts& sources, const TextRange& range) {
  const SourceText& source = sources[range.file];
  json.key("physicalLocation").beginObject();
  json.key("artifactLocation").beginObject();
  json.member("uri", uriOf(source.name()));
  json.endObject();
  json.key("region").beginObject();
  json.member("startLine", source.place(range.begin).line);
  json.member("startColumn", characterColumn(source, range.begin));
  json.member("endLine", source.place(range.end).line);
  json.member("endColumn", characterColumn(source, range.end));
  json.endObject();
  json.endObject();
}

void writeText(JsonText& json, const char* key, std::string_view text) {
  json.key(key).beginObject();
  json.member("text", text);
  json.endObject();
}

void writeResult(JsonText& json, const SourceTexts& sources, const Diagnostic& diagnostic) {
  json.beginObject();
  json.member("ruleId", rowOf(diagnostic.check).name);
  json.member("ruleIndex", static_cast<std::size_t>(diagnostic.check));
  json.member("level", severityWord(diagnostic.severity));
  std::string text = diagnostic.message;
  if (!diagnostic.expected.empty()) text += "; expected " + joinedWords(diagnostic.expected);
  if (!diagnostic.help.empty()) text += "; " + diagnostic.help;
  writeText(json, "message", text);
  json.key("locations").beginArray().beginObject();
  writeLocation(json, sources, diagnostic.range);
  json.endObject().endArray();
  if (!diagnostic.relatedMessage.empty()) {
    json.key("relatedLocations").beginArray().beginObject();
    writeLocation(json, sources, diagnostic.related);
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
  for (const Diagnostic& diagnostic : diagnostics.all()) writeResult(json, sources, diagnostic);
  json.endArray();
  json.endObject().endArray();
  json.endObject();
  json.finish();
}
