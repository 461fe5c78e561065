#include <cerrno>

#include "LabBench.h"
#include "LabDirect.h"

namespace TarnLab {
namespace {

constexpr Name owner{0, 8, "owner", "owner"};
constexpr U32 number{8, "number"}, length{16, "length"};
constexpr U64 buffer{20, "buffer"};

/// Doubles the number, and the bytes of the buffer.
int doubleAll(Request& request, Body& body) {
  ByteVector bytes;
  if (const int error = request.readBuffer(buffer.get(body), length.get(body), 64, bytes)) {
    return error;
  }
  for (std::byte& byte : bytes) byte = byte << 1;
  if (const int error = request.writeBuffer(buffer.get(body), bytes)) return error;
  number.put(body, number.get(body) * 2);
  request.status = number.get(body) == 8 ? 9 : 0;
  return 0;
}

/// Writes the number into the output, twice; the number is also what ioctl returns.
int writeOutput(Request& request, Body& body) {
  number.put(Bytes(request.output), number.get(body));
  request.result = static_cast<int>(number.get(body));
  return 0;
}

constexpr FieldList fields{owner, number, Reserved{12, 4}, length, buffer};
constexpr DirectKind onFirewall{.device = Device::firewall,
                                .number = 4,
                                .title = "doubled",
                                .size = 28,
                                .answer = doubleAll,
                                .request = fields,
                                .reply = {number},
                                .sentStatus = 0};
constexpr DirectKind withStatus{.device = Device::firewall,
                                .number = 4,
                                .title = "doubled",
                                .size = 28,
                                .answer = doubleAll,
                                .request = fields,
                                .sentStatus = 0xbad0001};
constexpr DirectKind onTables{.device = Device::filterTables,
                              .number = 4,
                              .title = "doubled",
                              .size = 28,
                              .answer = doubleAll,
                              .request = fields,
                              .reply = {number}};
constexpr DirectKind onInsertion{.device = Device::serviceInsertion,
                                 .number = 4,
                                 .title = "written",
                                 .size = 16,
                                 .answer = writeOutput,
                                 .request = {owner, number, Reserved{12, 4}},
                                 .reply = {number},
                                 .output = 12};

std::uint64_t addressOf(const void* memory) { return reinterpret_cast<std::uintptr_t>(memory); }

class LabDirect : public LabBench {
 protected:
  /// Answers a request whose frame is at an address.
  int answer(const DirectKind& kind, std::uint64_t argument) {
    entry = JournalEntry();
    entry.device = kind.device;
    entry.request = kind.number;
    return answerDirect(&kind, store, faults, entry, argument);
  }

  int answerFrame(const DirectKind& kind, ByteVector& frame) {
    return answer(kind, addressOf(frame.data()));
  }

  /// The body of the requests that double, with the buffer that it points to.
  ByteVector body(unsigned value = 3) const {
    return Record()
        .text("me", 8)
        .u32(value)
        .u32(0)
        .u32(pointed.size())
        .u64(addressOf(pointed.data()));
  }

  ByteVector firewallFrame(const ByteVector& of, unsigned status = 0) const {
    return Record().u32(4).u32(status).u32(of.size()).u64(addressOf(of.data()));
  }

  ByteVector insertionFrame(const ByteVector& input, ByteVector& output) const {
    return Record()
        .u32(4)
        .u32(0xcccccccc)  // never written by a sender
        .u32(input.size())
        .u32(output.size())
        .u64(addressOf(input.data()))
        .u64(addressOf(output.data()));
  }

  Faults faults;
  JournalEntry entry;
  ByteVector pointed{std::byte{1}, std::byte{2}};
};

TEST_F(LabDirect, TheFirewallsFrameLeadsToItsBodyAndOnToABuffer) {
  ByteVector sent = body();
  ByteVector frame = firewallFrame(sent);
  ASSERT_EQ(answerFrame(onFirewall, frame), 0) << entry.note;
  EXPECT_EQ(get32(sent, 8), 6u);
  EXPECT_EQ(pointed, (ByteVector{std::byte{2}, std::byte{4}}));
  EXPECT_EQ(get32(frame, 4), 0u);
  EXPECT_EQ(entry.size, 30u);
  EXPECT_EQ(get8(entry.sent, 28), 1u) << "the buffer stands after the body in the log";
  EXPECT_EQ(get8(entry.answered, 28), 2u);
}

TEST_F(LabDirect, AStatusGoesIntoTheFirewallsFrame) {
  ByteVector sent = body(4);
  ByteVector frame = firewallFrame(sent);
  ASSERT_EQ(answerFrame(onFirewall, frame), 0);
  EXPECT_EQ(get32(frame, 4), 9u);
  EXPECT_EQ(entry.status, 9u);
}

TEST_F(LabDirect, AStatusThatTheCallerPutsIntoTheFrameIsTakenAway) {
  ByteVector sent = body();
  ByteVector frame = firewallFrame(sent, 0xbad0001);
  ASSERT_EQ(answerFrame(withStatus, frame), 0);
  EXPECT_EQ(get32(frame, 4), 0u);
  EXPECT_EQ(answerFrame(withStatus, frame), EINVAL);
  EXPECT_EQ(entry.note, "frame has status 0");
  EXPECT_EQ(get32(sent, 8), 6u) << "what was refused changed nothing";
}

TEST_F(LabDirect, TheFirewallsFrameIsCheckedFieldByField) {
  ByteVector sent = body();
  const ByteVector good = firewallFrame(sent);
  for (const std::size_t at : {0u, 4u, 8u, 11u}) {
    ByteVector frame = Record().bytes(good).set(at, 0x77);
    EXPECT_EQ(answerFrame(onFirewall, frame), EINVAL) << at;
    EXPECT_FALSE(entry.note.empty());
  }
  ByteVector frame = Record().bytes(good).set(19, 0x77);
  EXPECT_EQ(answerFrame(onFirewall, frame), EFAULT);
  EXPECT_EQ(entry.note, "body cannot be read");
  EXPECT_EQ(answer(onFirewall, 0), EFAULT);
  EXPECT_EQ(entry.note, "frame cannot be read");
}

TEST_F(LabDirect, ABodyIsCheckedByItsFields) {
  ByteVector sent = Record().bytes(body()).set(12, 1);
  ByteVector frame = firewallFrame(sent);
  EXPECT_EQ(answerFrame(onFirewall, frame), EINVAL);
  EXPECT_EQ(entry.note, "doubled with reserved bytes set");
  sent = Record().bytes(body()).set(7, 'x');
  frame = firewallFrame(sent);
  EXPECT_EQ(answerFrame(onFirewall, frame), EINVAL);
  EXPECT_EQ(entry.note, "owner name is not padded with zeros");
}

TEST_F(LabDirect, ABufferHasALimitAndHasToBeThere) {
  pointed.resize(65);
  ByteVector sent = body();
  ByteVector frame = firewallFrame(sent);
  EXPECT_EQ(answerFrame(onFirewall, frame), EINVAL);
  EXPECT_EQ(entry.note, "buffer of 65 bytes");
  pointed.resize(2);
  sent = Record().bytes(body()).set(27, 0x77);
  frame = firewallFrame(sent);
  EXPECT_EQ(answerFrame(onFirewall, frame), EFAULT);
  EXPECT_EQ(entry.note, "buffer cannot be read");
}

TEST_F(LabDirect, TheFrameOfTheTableDeviceIsTheBody) {
  ByteVector frame = body();
  ASSERT_EQ(answerFrame(onTables, frame), 0) << entry.note;
  EXPECT_EQ(get32(frame, 8), 6u);
  EXPECT_EQ(pointed, (ByteVector{std::byte{2}, std::byte{4}}));
  frame = Record().bytes(body()).set(15, 1);
  EXPECT_EQ(answerFrame(onTables, frame), EINVAL);
  EXPECT_EQ(entry.note, "doubled with reserved bytes set");
  EXPECT_EQ(answer(onTables, 8), EFAULT);
}

TEST_F(LabDirect, TheInsertionDeviceReadsAnInputAndFillsAnOutput) {
  ByteVector input = Record().text("me", 8).u32(0xbad0003).u32(0);
  ByteVector output(20, std::byte{0xaa});
  ByteVector frame = insertionFrame(input, output);
  ASSERT_EQ(answerFrame(onInsertion, frame), 0) << entry.note;
  EXPECT_EQ(output, (const ByteVector&)Record().zero(8).u32(0xbad0003).zero(8));
  EXPECT_EQ(entry.result, 0xbad0003);
}

TEST_F(LabDirect, TheFrameOfTheInsertionDeviceIsCheckedFieldByField) {
  ByteVector input = Record().text("me", 8).u32(1).u32(0);
  ByteVector output(12, std::byte{0xaa});
  const ByteVector good = insertionFrame(input, output);
  for (const std::size_t at : {0u, 8u, 11u, 15u}) {
    ByteVector frame = Record().bytes(good).set(at, 0x77);
    EXPECT_EQ(answerFrame(onInsertion, frame), EINVAL) << at;
  }
  ByteVector frame = Record().bytes(good).set(12, 11);
  EXPECT_EQ(answerFrame(onInsertion, frame), EINVAL);
  EXPECT_EQ(entry.note, "output of 11 bytes, 12 needed");
  for (const std::size_t at : {23u, 31u}) {
    frame = Record().bytes(good).set(at, 0x77);
    EXPECT_EQ(answerFrame(onInsertion, frame), EFAULT) << at;
  }
  input[12] = std::byte{1};
  frame = good;
  EXPECT_EQ(answerFrame(onInsertion, frame), EINVAL);
  EXPECT_EQ(entry.note, "written with reserved bytes set");
  EXPECT_EQ(output, ByteVector(12, std::byte{0xaa})) << "what was refused wrote nothing";
}

TEST_F(LabDirect, ARequestThatNoFamilyHasIsNotThere) {
  entry.device = Device::filterTables;
  entry.request = 4;
  EXPECT_EQ(answerDirect(nullptr, store, faults, entry, 0), ENOTTY);
  EXPECT_EQ(entry.note, "no such request on this device");
}

}  // namespace
}  // namespace TarnLab
