#include "LabBench.h"

#include <arpa/inet.h>
#include <unistd.h>

#include <filesystem>

#include "LabFamily.h"

namespace TarnLab {

namespace {

std::string makeFolder() {
  std::string pattern = ::testing::TempDir() + "tarnlab.XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "no folder for the lab";
  return pattern;
}

}  // namespace

Record& Record::integer(std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes_.push_back(static_cast<std::byte>(value >> (8 * i) & 0xff));
  }
  return *this;
}

Record& Record::text(const std::string& value, std::size_t size) {
  const std::size_t at = bytes_.size();
  zero(size);
  std::memcpy(&bytes_.at(at), value.data(), std::min(value.size(), size));
  return *this;
}

Record& Record::bytes(const ByteVector& value) {
  bytes_.insert(bytes_.end(), value.begin(), value.end());
  return *this;
}

ByteVector filterSelector(const std::string& name, const std::string& agent) {
  return Record().text(name, 64).text(agent, 32).zero(3).u8(7);
}

ByteVector ipv4(const std::string& address, bool negated) {
  in_addr binary{};
  EXPECT_EQ(::inet_pton(AF_INET, address.c_str(), &binary), 1);
  return Record().u16(1).u8(negated ? 1 : 0).u8(0).u32(binary.s_addr).to(144);
}

ByteVector ipv4Block(const std::string& address, unsigned prefix) {
  in_addr binary{};
  EXPECT_EQ(::inet_pton(AF_INET, address.c_str(), &binary), 1);
  return Record().u16(5).u16(0).u32(binary.s_addr).u8(prefix).to(144);
}

ByteVector ruleRecord(unsigned id, unsigned actionCode) {
  return Record().u32(id).to(892).set(750, actionCode).set(790, 16).set(884, 1);
}

LabBench::LabBench() : folder(makeFolder()), store(folder), model(store) {
  const StoreLock lock(store);
  Host::sample().save(store);
}

FilledLabBench::FilledLabBench() {
  const StoreLock lock(store);
  fillHost(store, Host::sample());
}

ByteVector FilledLabBench::usualSid(unsigned last) {
  return Record()
      .u32(0)
      .u8(1)
      .u8(4)
      .u32(0)
      .u8(0)
      .u8(5)
      .u32(21)
      .u32(1004336348)
      .u32(1177238915)
      .u32(last)
      .to(72);
}

LabBench::~LabBench() { std::filesystem::remove_all(folder); }

int LabBench::direct(std::uint32_t number, ByteVector& body) {
  const auto address = reinterpret_cast<std::uintptr_t>(body.data());
  const ByteVector frame = Record().u32(number).u32(0).u32(body.size()).u64(address);
  return model.request(Device::firewall, number, reinterpret_cast<std::uintptr_t>(frame.data()));
}

int LabBench::send(ByteVector& message, const ByteVector& selector) {
  const auto address = reinterpret_cast<std::uintptr_t>(message.data());
  ByteVector block = Record().bytes(selector).u32(message.size()).u64(address);
  return direct(15, block);
}

ByteVector LabBench::message(unsigned number, const ByteVector& body) {
  return Record()
      .text("TARN", 4)
      .u32(body.size() + 12)
      .u32(0)
      .u8(1)
      .u8(1)
      .u8(0)
      .u8(1)
      .u16(1)
      .u16(0)
      .u32(body.size())
      .u16(number)
      .u16(0xffff)  // never written by a sender
      .u32(0)
      .bytes(body);
}

std::uint32_t LabBench::command(unsigned number, const ByteVector& body,
                                const ByteVector& selector) {
  ByteVector sent = message(number, body);
  const int error = send(sent, selector);
  EXPECT_EQ(error, 0) << note();
  reply.assign(sent.begin() + 32, sent.end());
  return get32(sent, 28);
}

std::uint32_t LabBench::createRuleSet(const std::string& name,
                                      const std::vector<ByteVector>& rules) {
  Record body;
  body.zero(64).text(name, 64).u64(0).u32(rules.size()).u8(3).to(168);
  for (const ByteVector& rule : rules) body.bytes(rule);
  return command(3, body);
}

std::uint32_t LabBench::createAddrSet(const std::string& name,
                                      const std::vector<ByteVector>& addresses) {
  Record body;
  body.text(name, 38).u64(0).u32(addresses.size()).u32(1).u32(addresses.size() * 144).u8(3).to(86);
  for (const ByteVector& address : addresses) body.bytes(address);
  return command(13, body);
}

std::vector<JournalEntry> LabBench::journal() const {
  std::vector<JournalEntry> entries;
  Journal(store).read([&entries](const JournalEntry& entry) {
    entries.push_back(entry);
    return true;
  });
  return entries;
}

std::string LabBench::note() const {
  const auto entries = journal();
  return entries.empty() ? "" : entries.back().note;
}

}  // namespace TarnLab
