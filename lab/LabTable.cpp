#include "LabTable.h"

#include <cerrno>

namespace TarnLab {

namespace {

std::string fileOf(const Table& table, const std::string& folder) {
  return folder + "/" + std::string(table.name);
}

}  // namespace

Table::Records Table::load(const Store& store, const std::string& folder) const {
  Records records;
  const auto content = store.read(fileOf(*this, folder), fileLimit);
  if (!content) return records;
  ConstBytes rest = *content;
  while (!rest.empty()) {
    const std::size_t size = rest.size() < 4 ? 0 : get32(rest, 0);
    if (rest.size() < 4 || size < least || size > rest.size() - 4) {
      throw StoreError("damaged file " + store.path(fileOf(*this, folder)), EINVAL);
    }
    const ConstBytes record = rest.subspan(4, size);
    records.emplace_back(record.begin(), record.end());
    rest = rest.subspan(4 + size);
  }
  return records;
}

void Table::save(const Store& store, const std::string& folder, const Records& records) const {
  if (records.empty()) {
    store.remove(fileOf(*this, folder));
    return;
  }
  ByteVector content(bytesOf(records) + 4 * records.size());
  std::size_t at = 0;
  for (const ByteVector& record : records) {
    put32(content, at, static_cast<std::uint32_t>(record.size()));
    if (!record.empty()) std::memcpy(&content[at + 4], record.data(), record.size());
    at += 4 + record.size();
  }
  store.replace(fileOf(*this, folder), {content});
}

std::size_t bytesOf(const Table::Records& records) {
  std::size_t bytes = 0;
  for (const ByteVector& record : records) bytes += record.size();
  return bytes;
}

}  // namespace TarnLab
