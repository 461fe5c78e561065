#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabFamily.h"
#include "LabServiceInsertion.h"

namespace TarnLab {
namespace {

constexpr const char* inspected = "nic-1002672-eth0-kelpco-inspect.4";

class LabServiceInsertion : public LabBench {
 protected:
  LabServiceInsertion() {
    const StoreLock lock(store);
    fillHost(store, Host::sample());
  }

  /// An instance without options, slot 3 and type 1.
  static Record instance(const std::string& id, unsigned protocol = 11, unsigned force = 0) {
    return Record()
        .text(id, 32)
        .text("service", 64)
        .u32(3)
        .u32(1)
        .zero(8)
        .u32(force)
        .u32(protocol)
        .to(293);
  }
  static Record profile(const std::string& id, const std::string& instance,
                        const std::string& filter) {
    return Record()
        .text(id, 32)
        .text(instance, 32)
        .text(filter, 100)
        .text("vendor", 64)
        .text("provided", 64);
  }

  int create(const Record& record) { return sendRecord(1, record); }
  int replace(const Record& record) { return sendRecord(2, record); }
  int destroy(const std::string& id, unsigned force = 0) {
    return sendRecord(3, Record().text(id, 32).to(112).u32(force).to(293));
  }
  int createProfile(const Record& record) { return sendRecord(8, record); }
  int destroyProfile(const std::string& filter) {
    return sendRecord(10, Record().zero(64).text(filter, 100).to(292));
  }

  /// The instance as request 5 gives it; empty when there is none.
  ByteVector read(const std::string& id) {
    ByteVector record(293, std::byte{0xee});
    ByteVector body =
        Record().text(id, 32).u32(0).u32(293).u64(reinterpret_cast<std::uintptr_t>(record.data()));
    if (direct(5, body) != 0) return {};
    EXPECT_EQ(get32(body, 32), 1u);
    return record;
  }

  std::uint32_t references(const std::string& id) { return get32(read(id), 104); }
  std::uint32_t marked(const std::string& id) { return get32(read(id), 108); }

  std::uint32_t instanceCount() {
    ByteVector body(48);
    EXPECT_EQ(direct(4, body), 0);
    return get32(body, 32);
  }
  std::uint32_t profileCount() {
    ByteVector body(116);
    EXPECT_EQ(direct(11, body), 0);
    return get32(body, 100);
  }

  std::string profileOf(std::size_t index) {
    return serviceProfileOf(store, Host::load(store).folderOf(index));
  }

 private:
  int sendRecord(std::uint32_t number, const Record& record) {
    ByteVector body = record;
    return direct(number, body);
  }
};

TEST_F(LabServiceInsertion, TheUsualHostHasEveryProtocolAndType) {
  ASSERT_EQ(instanceCount(), 5u);
  ByteVector records(5 * 293);
  ByteVector body =
      Record().zero(32).u32(5).u32(5 * 293).u64(reinterpret_cast<std::uintptr_t>(records.data()));
  ASSERT_EQ(direct(5, body), 0) << note();
  EXPECT_EQ(get32(body, 32), 5u);
  std::vector<std::pair<unsigned, unsigned>> forms;
  for (std::size_t at = 0; at < records.size(); at += 293) {
    forms.emplace_back(get32(records, at + 116), get32(records, at + 100));
  }
  EXPECT_EQ(forms,
            (std::vector<std::pair<unsigned, unsigned>>{{4, 4}, {3, 3}, {1, 1}, {2, 2}, {11, 0}}));
  EXPECT_EQ(references("web-inspection"), 1u);
  EXPECT_EQ(profileOf(1), "web-profile");
  EXPECT_EQ(profileOf(0), "");
}

TEST_F(LabServiceInsertion, AnInstanceComesBackAsItWasMade) {
  const Record made =
      Record().bytes(instance("new", 4, 1)).set(120, 'a').set(248, 7).set(260, 'm').set(292, 1);
  ASSERT_EQ(create(made), 0) << note();
  EXPECT_EQ(read("new"), (const ByteVector&)Record().bytes(made).set(112, 0));
  EXPECT_EQ(instanceCount(), 6u);
  EXPECT_EQ(create(made), EEXIST);
  EXPECT_EQ(replace(instance("new", 2)), 0);
  EXPECT_EQ(read("new"), (const ByteVector&)instance("new", 2));
  EXPECT_EQ(destroy("new"), 0);
  EXPECT_EQ(read("new"), ByteVector());
  EXPECT_EQ(note(), "there is no instance new");
  EXPECT_EQ(replace(instance("new")), ENOENT);
  EXPECT_EQ(destroy("new"), ENOENT);
}

TEST_F(LabServiceInsertion, WhatIsWrongIsRefused) {
  const auto refused = [&](const Record& record) {
    const int error = create(record);
    EXPECT_EQ(replace(record), error);
    return error;
  };
  const Record good = instance("guest-tap");
  EXPECT_EQ(refused(instance("")), EINVAL);
  EXPECT_EQ(note(), "instance without an id");
  EXPECT_EQ(refused(instance(std::string(33, 'i'))), EINVAL);
  EXPECT_EQ(note(), "instance name is not padded with zeros");
  const struct {
    unsigned at, value;
    const char* why;
  } faults[] = {{96, 16, "slot 16"},
                {100, 5, "deploy type 5"},
                {104, 1, "counts that are the kernel's"},
                {108, 1, "counts that are the kernel's"},
                {116, 5, "protocol 5"},
                {120, 'a', "options of a protocol that has none"},
                {292, 1, "options of a protocol that has none"}};
  for (const auto& [at, value, why] : faults) {
    EXPECT_EQ(refused(Record().bytes(good).set(at, value)), EINVAL) << at;
    EXPECT_EQ(note(), why);
  }
  EXPECT_EQ(refused(Record().bytes(instance("new", 3)).set(281, 1)), EINVAL);
  EXPECT_EQ(note(), "transport with reserved bytes set");
  EXPECT_EQ(refused(Record().bytes(instance("new", 3)).set(250, 'm')), EINVAL);
  EXPECT_EQ(note(), "gateway name is not padded with zeros");
  EXPECT_EQ(refused(Record().bytes(instance("new", 4)).set(261, 'm')), EINVAL);
  EXPECT_EQ(refused(Record().bytes(instance("new", 4)).set(130, 'a')), EINVAL);
  EXPECT_EQ(instanceCount(), 5u);
}

TEST_F(LabServiceInsertion, ProfilesAreCountedAsReferences) {
  ASSERT_EQ(createProfile(profile("tap", "guest-tap", web)), 0) << note();
  ASSERT_EQ(createProfile(profile("tap", "guest-tap", other)), 0) << note();
  EXPECT_EQ(references("guest-tap"), 2u);
  EXPECT_EQ(profileCount(), 3u);
  EXPECT_EQ(replace(instance("guest-tap", 2)), 0);
  EXPECT_EQ(references("guest-tap"), 2u);
  ASSERT_EQ(destroyProfile(web), 0) << note();
  EXPECT_EQ(references("guest-tap"), 1u);
}

TEST_F(LabServiceInsertion, AnInstanceInUseIsMarkedAndGoesWithItsLastProfile) {
  ASSERT_EQ(createProfile(profile("tap", "guest-tap", web)), 0);
  ASSERT_EQ(createProfile(profile("tap", "guest-tap", other)), 0);
  EXPECT_EQ(destroy("guest-tap"), 0);
  EXPECT_EQ(marked("guest-tap"), 1u);
  EXPECT_EQ(destroy("guest-tap"), 0);
  EXPECT_EQ(create(instance("guest-tap")), EEXIST);
  EXPECT_EQ(createProfile(profile("more", "guest-tap", "nic-1003120-eth0-kelpco-sfw.2")), EBUSY);
  EXPECT_EQ(destroyProfile(web), 0);
  EXPECT_EQ(marked("guest-tap"), 1u);
  EXPECT_EQ(destroyProfile(other), 0);
  EXPECT_EQ(read("guest-tap"), ByteVector());
  EXPECT_EQ(instanceCount(), 4u);
}

TEST_F(LabServiceInsertion, ReplacingAnInstanceTakesItsMarkAway) {
  ASSERT_EQ(destroy("web-inspection"), 0);
  EXPECT_EQ(marked("web-inspection"), 1u);
  ASSERT_EQ(replace(instance("web-inspection")), 0);
  EXPECT_EQ(marked("web-inspection"), 0u);
  EXPECT_EQ(references("web-inspection"), 1u);
}

TEST_F(LabServiceInsertion, ByForceItsProfilesGoAsWell) {
  ASSERT_EQ(createProfile(profile("tap", "guest-tap", web)), 0);
  EXPECT_EQ(destroy("web-inspection", 1), 0);
  EXPECT_EQ(read("web-inspection"), ByteVector());
  EXPECT_EQ(profileCount(), 1u);
  EXPECT_EQ(profileOf(0), "tap");
  EXPECT_EQ(profileOf(1), "");
}

TEST_F(LabServiceInsertion, AFilterHasOneProfile) {
  EXPECT_EQ(createProfile(profile("second", "guest-tap", inspected)), EEXIST);
  EXPECT_EQ(createProfile(profile("", "guest-tap", web)), EINVAL);
  EXPECT_EQ(createProfile(profile("p", "nothing", web)), ENOENT);
  EXPECT_EQ(note(), "there is no instance nothing");
  EXPECT_EQ(createProfile(profile("p", "guest-tap", "nic-1-eth0-kelpco-sfw.2")), ENOENT);
  EXPECT_EQ(note(), "there is no filter nic-1-eth0-kelpco-sfw.2");
  EXPECT_EQ(destroyProfile(web), ENOENT);
  EXPECT_EQ(note(), "the filter has no profile");
  EXPECT_EQ(destroyProfile("nowhere"), ENOENT);
  ByteVector named = Record().text("web-profile", 32).zero(32).text(inspected, 100).to(292);
  EXPECT_EQ(direct(10, named), EINVAL);
  EXPECT_EQ(profileCount(), 1u);
}

TEST_F(LabServiceInsertion, ProfilesAreReadByFilterOrAll) {
  ByteVector record(2 * 292, std::byte{0xee});
  const auto query = [&](const std::string& filter, std::size_t room) {
    return Record()
        .text(filter, 100)
        .u32(0)
        .u32(room)
        .u64(reinterpret_cast<std::uintptr_t>(record.data()));
  };
  ByteVector body = query(inspected, 292);
  ASSERT_EQ(direct(12, body), 0) << note();
  EXPECT_EQ(get32(body, 100), 1u);
  EXPECT_EQ(getText(record, 0, 32), "web-profile");
  EXPECT_EQ(getText(record, 32, 32), "web-inspection");
  EXPECT_EQ(getText(record, 64, 100), inspected);
  EXPECT_EQ(get8(record, 292), 0xee);
  ASSERT_EQ(createProfile(profile("tap", "guest-tap", web)), 0);
  body = query("", 2 * 292);
  ASSERT_EQ(direct(12, body), 0);
  EXPECT_EQ(get32(body, 100), 2u);
  EXPECT_EQ(getText(record, 0, 32), "tap") << "in the order of the filters";
  EXPECT_EQ(getText(record, 292, 32), "web-profile");
  body = query("", 292);
  ASSERT_EQ(direct(12, body), 0);
  EXPECT_EQ(get32(body, 100), 1u);
  for (const ByteVector& bad : {ByteVector(query("", 291)), ByteVector(query(other, 292)),
                                ByteVector(query("nowhere", 292))}) {
    body = bad;
    EXPECT_NE(direct(12, body), 0);
  }
  body = Record().text(other, 100).to(116);
  EXPECT_EQ(direct(11, body), ENOENT);
}

TEST_F(LabServiceInsertion, NoMoreInstancesAreWrittenThanThereIsRoomFor) {
  ByteVector records(3 * 293, std::byte{0xee});
  const auto query = [&](std::size_t room) {
    return Record().zero(32).u32(5).u32(room).u64(reinterpret_cast<std::uintptr_t>(records.data()));
  };
  ByteVector body = query(2 * 293);
  ASSERT_EQ(direct(5, body), 0);
  EXPECT_EQ(get32(body, 32), 2u);
  EXPECT_EQ(get8(records, 2 * 293), 0xee);
  body = query(292);
  EXPECT_EQ(direct(5, body), EINVAL);
  body = Record().bytes(query(293)).set(47, 0x77);
  EXPECT_EQ(direct(5, body), EFAULT);
}

TEST_F(LabServiceInsertion, FiltersAreListedWithTheirProfile) {
  ASSERT_EQ(createProfile(profile("tap", "guest-tap", web)), 0);
  ByteVector records(2 * 866);
  ByteVector body =
      Record().zero(100).u32(2).u32(2 * 866).u64(reinterpret_cast<std::uintptr_t>(records.data()));
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(getText(records, 728, 32), "tap");
  EXPECT_EQ(getText(records, 866 + 728, 32), "web-profile");
  ASSERT_EQ(destroyProfile(inspected), 0);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(getText(records, 866 + 728, 32), "");
}

TEST_F(LabServiceInsertion, AProfileGoesWithItsFilter) {
  ASSERT_EQ(destroy("web-inspection"), 0);
  ASSERT_EQ(marked("web-inspection"), 1u);
  // Destroys the filter by its NIC and slot.
  ByteVector filter = Record()
                          .text("kelpco-inspect", 40)
                          .to(4208)
                          .u32(1002672)
                          .u32(4)
                          .text("502e1f3a-c21a-632a-4ae1-00505699b626.000", 64)
                          .u32(0);
  ASSERT_EQ(direct(1000, filter), 0) << note();
  EXPECT_EQ(note(), std::string("destroyed ") + inspected);
  EXPECT_EQ(profileCount(), 0u);
  EXPECT_EQ(read("web-inspection"), ByteVector());
}

TEST_F(LabServiceInsertion, TheLogHasTheFields) {
  ASSERT_EQ(create(Record().bytes(instance("new", 4)).set(120, 'a').set(253, 0x20)), 0);
  EXPECT_EQ(decodeRequest(journal().back()),
            "firewall 1: create service instance new (name \"service\", slot 3, deploy type 1, "
            "force 0, GRE address \"a\", key 0, flags 0x2000, encapsulates 0x0, gateway \"\", "
            "flip 0) = ok");
  read("mail-gateway");
  EXPECT_EQ(decodeRequest(journal().back()),
            "firewall 5: service instances(id \"mail-gateway\", count 0, room 293) = ok {count 1}");
  EXPECT_EQ(decodeRecords(journal().back()),
            "    mail-gateway name \\x22mail gateway\\x22, slot 7, deploy type 3, references 0, "
            "marked 0, MACRED address \\x2200:50:56:99:4c:07\\x22, gateway "
            "\\x2200:50:56:99:4c:fe\\x22, flip 2\n");
}

// --- GRE

class LabGre : public LabBench {
 protected:
  static Record entry(unsigned last, unsigned key) {
    return Record()
        .u8(10)
        .u8(20)
        .u8(9)
        .u8(last)
        .u32(key)
        .u32(0x2000)
        .u32(0)
        .u32(0)
        .u8(0)
        .u8(0x50)
        .u8(0x56)
        .u8(0x99)
        .u8(0x4c)
        .u8(last)
        .u8(172)
        .u8(16)
        .u8(1)
        .u8(1);
  }
  int add(const Record& record) {
    ByteVector body = record;
    return direct(16, body);
  }
  std::vector<std::string> entries() {
    std::vector<std::string> texts;
    for (const Family* family : families()) {
      for (const Table& table : family->hostTables) {
        if (table.name != "gre") continue;
        for (const ByteVector& record : table.load(store, hostTableFolder)) {
          texts.push_back(table.text(record));
        }
      }
    }
    return texts;
  }
};

TEST_F(LabGre, AnEntryTakesThePlaceOfOneWithTheSameAddresses) {
  ASSERT_EQ(add(entry(1, 8)), 0) << note();
  ASSERT_EQ(add(entry(2, 9)), 0);
  ASSERT_EQ(add(entry(1, 10)), 0);
  EXPECT_EQ(entries(), (std::vector<std::string>{"10.20.9.2 for 172.16.1.1, key 0x9, flags 0x2000, "
                                                 "encapsulates 0x0, mac 00:50:56:99:4c:02",
                                                 "10.20.9.1 for 172.16.1.1, key 0xa, flags 0x2000, "
                                                 "encapsulates 0x0, mac 00:50:56:99:4c:01"}));
  EXPECT_EQ(decodeRequest(journal().back()), "firewall 16: add GRE " + entries().back() + " = ok");
}

TEST_F(LabGre, WhatIsWrongIsRefused) {
  EXPECT_EQ(add(Record().bytes(entry(1, 8)).set(16, 1)), EINVAL);
  EXPECT_EQ(note(), "add GRE with reserved bytes set");
  EXPECT_EQ(add(Record().bytes(entry(1, 8)).set(14, 1)), EINVAL);
  EXPECT_EQ(note(), "encapsulates 0x10000");
  EXPECT_EQ(add(Record().bytes(entry(0, 8)).set(0, 0).set(1, 0).set(2, 0)), EINVAL);
  EXPECT_EQ(note(), "address 0.0.0.0");
  EXPECT_TRUE(entries().empty());
}

}  // namespace
}  // namespace TarnLab
