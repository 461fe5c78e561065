#include "LabBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

constexpr std::size_t identifierSize = 1239;

class LabNames : public FilledLabBench {
 protected:
  std::pair<unsigned, unsigned> count(const std::string& filter = web) {
    EXPECT_EQ(command(70, Record().u64(0), filterSelector(filter)), 0u) << note();
    return {get32(reply, 0), get32(reply, 4)};
  }

  /// The entry after the one in `reply`, or the first one.
  std::uint32_t first() { return command(71, Record().zero(170)); }
  std::uint32_t next() {
    return command(71, Record()
                           .zero(4)
                           .bytes(ByteVector(reply.begin() + 4, reply.begin() + 20))
                           .to(144)
                           .u8(get8(reply, 144))
                           .to(170));
  }

  /// The identifiers of an address.
  std::uint32_t identifiers(const ByteVector& address, unsigned max) {
    return command(72, Record().bytes(address).to(1235).u32(max).to(max * identifierSize));
  }

  static ByteVector ipv6(unsigned last) {
    return Record().u16(2).u16(0).u8(0xfd).u16(0).u8(0x20).u8(0).u8(5).to(19).u8(last).to(144);
  }

  /// An element with the domain's identifier, 16 like bytes, and its name.
  static ByteVector domain(unsigned identifier, const std::string& name, unsigned key = 7) {
    const std::size_t length = 28 + name.size() + 1;
    Record bytes;
    bytes.u16(1).u16(0).u32(length).u16(key).u16(3).u32(length).u16(0);
    for (unsigned i = 0; i < 16; ++i) bytes.u8(identifier);
    return bytes.u16(static_cast<unsigned>(name.size()) + 1).text(name, name.size() + 1);
  }

  std::uint32_t add(const ByteVector& domain, const std::vector<ByteVector>& addresses) {
    Record bytes;
    bytes.u32(addresses.size()).u32(domain.size() + 144 * addresses.size()).bytes(domain);
    for (const ByteVector& address : addresses) bytes.bytes(address);
    return command(76, bytes);
  }
};

TEST_F(LabNames, TheReplyOfOneEntryIsTheKeyOfTheNext) {
  EXPECT_EQ(count(), (std::pair{5u, 7u}));
  std::vector<std::array<unsigned, 6>> entries;
  unsigned identifierSum = 0;
  for (std::uint32_t status = first(); status == 0; status = next()) {
    entries.push_back({get16(reply, 0), get8(reply, 144), get32(reply, 161), get8(reply, 165),
                       get32(reply, 166), static_cast<unsigned>(get64(reply, 145))});
    identifierSum += get32(reply, 166);
  }
  EXPECT_EQ(note(), "there is no entry after that");
  EXPECT_EQ(entries, (std::vector<std::array<unsigned, 6>>{{1, 2, 300, 0, 1, 120},
                                                           {1, 2, 0, 1, 2, 260},
                                                           {1, 2, 60, 0, 0, 380},
                                                           {2, 28, 86400, 0, 1, 540},
                                                           {2, 28, 0, 1, 3, 660}}));
  EXPECT_EQ(identifierSum, 7u);
}

TEST_F(LabNames, AnEntryIsLaidOutWithoutGaps) {
  ASSERT_EQ(first(), 0u) << note();
  const ByteVector wanted =
      Record().bytes(ipv4("10.20.5.10")).u8(2).u64(120).u64(0).u32(300).u8(0).u32(1);
  EXPECT_EQ(wanted.size(), 170u);
  EXPECT_EQ(reply, wanted);
}

TEST_F(LabNames, IdentifiersOfAnEntryFollowEachOther) {
  ASSERT_EQ(identifiers(ipv6(0x11), 4), 0u) << note();
  EXPECT_EQ(get32(reply, 1235), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    const ConstBytes record = part(ConstBytes(reply), i * identifierSize, identifierSize);
    EXPECT_EQ(getText(record, 145, 1090),
              "6f1c2b90-4d3e-4a57-8c61-00000000000" + std::to_string(5 + i));
    EXPECT_EQ(get16(record, 0), 2u);
    EXPECT_EQ(get8(record, 144), 28u);
  }
  EXPECT_TRUE(isZero(part(ConstBytes(reply), 3 * identifierSize, identifierSize)));
  ASSERT_EQ(identifiers(ipv6(0x11), 2), 0u);
  EXPECT_EQ(get32(reply, 1235), 2u);
  ASSERT_EQ(identifiers(ipv4("10.20.5.12"), 1), 0u);
  EXPECT_EQ(get32(reply, 1235), 0u) << "an entry without identifiers";
}

TEST_F(LabNames, IdentifiersOfWhatIsNoEntryAreRefused) {
  EXPECT_EQ(identifiers(ipv4("10.20.5.99"), 1), 30u);
  EXPECT_EQ(note(), "there is no such entry");
  EXPECT_EQ(command(72, Record().bytes(ipv6(0x11)).to(identifierSize)), 25u);
  EXPECT_EQ(command(72, Record().bytes(ipv6(0x11)).to(1235).u32(2)), 25u);
  EXPECT_EQ(note(), "room for 2 identifiers in 1239 bytes");
  EXPECT_EQ(command(72, Record().bytes(ipv6(0x11)).to(1235).u32(0xffffffff)), 25u);
  EXPECT_EQ(command(72, Record().zero(1238)), 25u);
}

TEST_F(LabNames, ADeletedTreeHasNoEntries) {
  ASSERT_EQ(command(69, Record().u32(0)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u);
  EXPECT_EQ(count(), (std::pair{0u, 0u}));
  EXPECT_EQ(first(), 30u);
  EXPECT_EQ(count(other), (std::pair{0u, 0u}));
  EXPECT_EQ(command(69, Record().u32(1)), 25u);
  EXPECT_EQ(command(70, Record().u64(1)), 25u);
}

TEST_F(LabNames, AddressesOfADomainBecomeEntriesThatStay) {
  ASSERT_EQ(command(69, Record().u32(0)), 0u);
  ASSERT_EQ(add(domain(0xab, "db.kelpco.example"), {ipv6(9), ipv4("10.9.9.9"), ipv4("10.9.9.8")}),
            0u)
      << note();
  EXPECT_EQ(count(), (std::pair{3u, 3u}));
  ASSERT_EQ(first(), 0u);
  EXPECT_EQ(ByteVector(reply.begin(), reply.begin() + 144), ipv4("10.9.9.8"));
  EXPECT_EQ(get8(reply, 165), 1u);
  EXPECT_EQ(get32(reply, 166), 1u);
  ASSERT_EQ(identifiers(ipv4("10.9.9.8"), 1), 0u);
  EXPECT_EQ(getText(reply, 145, 1090), "abababab-abab-abab-abab-abababababab");
}

TEST_F(LabNames, AnAddressCollectsTheIdentifiersOfItsDomains) {
  ASSERT_EQ(command(69, Record().u32(0)), 0u);
  ASSERT_EQ(add(domain(1, "a.example"), {ipv4("10.9.9.9")}), 0u);
  ASSERT_EQ(add(domain(2, "b.example"), {ipv4("10.9.9.9")}), 0u);
  ASSERT_EQ(add(domain(1, "c.example"), {ipv4("10.9.9.9")}), 0u);
  EXPECT_EQ(count(), (std::pair{1u, 2u})) << "an identifier is kept once";
}

TEST_F(LabNames, DomainsThatAreWrongInThemselvesAreRefused) {
  const auto before = count();
  EXPECT_EQ(add(domain(1, "a.example", 5), {ipv4("10.9.9.9")}), 35u);
  EXPECT_EQ(note(), "attribute key 5 in the place of a domain");
  EXPECT_EQ(add(domain(1, ""), {ipv4("10.9.9.9")}), 35u);
  EXPECT_EQ(note(), "domain without a proper name");
  EXPECT_EQ(add(domain(1, std::string(1026, 'x')), {ipv4("10.9.9.9")}), 35u);
  EXPECT_EQ(add(domain(1, "a.example"), {ipv4Block("10.9.9.0", 24)}), 33u);
  EXPECT_EQ(add(domain(1, "a.example"), {ipv4("10.9.9.9", true)}), 33u);
  EXPECT_EQ(note(), "negated address for a domain");
  EXPECT_EQ(add(domain(1, "a.example"), {ipv4("10.9.9.9"), ByteVector(144)}), 33u);
  EXPECT_EQ(add(Record().u32(1), {}), 35u);
  EXPECT_EQ(note(), "domain is cut off");
  EXPECT_EQ(add(Record().u16(1).u16(0).u32(0xffffffff), {}), 35u);
  EXPECT_EQ(count(), before) << "what was refused changed nothing";
}

TEST_F(LabNames, CountsOfADomainHaveToAgreeWithItsBytes) {
  const ByteVector name = domain(1, "a.example");
  EXPECT_EQ(command(76, Record().u32(1).u32(name.size()).bytes(name)), 25u);
  EXPECT_EQ(note(), "1 addresses in 0 bytes");
  EXPECT_EQ(command(76, Record().u32(0).u32(name.size() + 1).bytes(name)), 25u);
  EXPECT_EQ(command(76, Record().u32(0xffffffff).u32(name.size()).bytes(name)), 25u);
  EXPECT_EQ(command(76, Record().u32(0)), 25u);
}

TEST_F(LabNames, KeysThatMakeNoSenseAreRefused) {
  EXPECT_EQ(command(71, Record().zero(144).u8(3).to(170)), 33u);
  EXPECT_EQ(note(), "family 3");
  EXPECT_EQ(command(71, Record().u8(1).to(170)), 25u);
  EXPECT_EQ(command(71, Record().zero(20).u8(1).to(170)), 25u);
  EXPECT_EQ(command(71, Record().zero(166).u8(1).to(170)), 25u);
  EXPECT_EQ(command(71, Record().zero(169)), 25u);
}

TEST_F(LabNames, TheLogShowsIdentifiersAndDomains) {
  ASSERT_EQ(identifiers(ipv6(0x10), 1), 0u);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    6f1c2b90-4d3e-4a57-8c61-000000000004 shop4.kelpco.example\n");
  ASSERT_EQ(add(domain(0xab, "db.kelpco.example"), {ipv4("10.9.9.9"), ipv6(9)}), 0u);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    FQDN : db.kelpco.example(abababab-abab-abab-abab-abababababab)\n"
            "    ip 10.9.9.9\n"
            "    ip fd00:20:5::9\n");
  ASSERT_EQ(add(Record().u32(1), {}), 35u);
  EXPECT_EQ(decodeRecords(journal().back()), "    ? 1 elements counted, 0 found\n");
  ASSERT_EQ(command(69, Record().u32(0)), 0u);
  EXPECT_NE(decodeRequest(journal().back()).find(": DeleteFqdnTree() = ok {result 0}"),
            std::string::npos);
}

}  // namespace
}  // namespace TarnLab
