#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "TarnFWAddressIPv4.h"
#include "TarnFWCmdCreateAddrSet.h"
#include "TarnFWCmdList.h"
#include "TarnFWException.h"
#include "TarnFWLoadMemory.h"
#include "TarnFWRuleParts.h"

using namespace TarnFirewall;

namespace {

/// An address that counts how many of it live.
class Counted : public CTarnFWAddress {
 public:
  explicit Counted(int* living, bool throws = false) : living_(living) {
    if (throws) throw std::runtime_error("refused");
    ++*living_;
  }
  Counted(const Counted& other) : CTarnFWAddress(other), living_(other.living_) { ++*living_; }
  ~Counted() override { --*living_; }
  int getType() const override { return 1; }
  std::string toString() const override { return "counted"; }
  bool toMessage(void*, unsigned int, unsigned int*) override { return false; }
  bool operator<(const CTarnFWAddress&) const override { return false; }

 private:
  int* living_;
};

}  // namespace

TEST(TarnFWLoadMemory, ItsObjectsEndOneByOneAndItsMemoryAtOnce) {
  int living = 0;
  CTarnFWLoadMemory memory;
  std::vector<std::unique_ptr<CTarnFWAddress>> objects;
  for (int i = 0; i < 1000; ++i) objects.push_back(memory.make<Counted>(&living));
  EXPECT_EQ(living, 1000);
  objects.resize(400);
  EXPECT_EQ(living, 400);
  for (const auto& object : objects) EXPECT_EQ(object->toString(), "counted");
  objects.clear();
  EXPECT_EQ(living, 0);
}

TEST(TarnFWLoadMemory, ObjectsOfTheHeapAndOfALoadEndAlike) {
  int living = 0;
  CTarnFWLoadMemory memory;
  std::unique_ptr<CTarnFWAddress> object = memory.make<Counted>(&living);
  object = std::make_unique<Counted>(&living);
  EXPECT_EQ(living, 1);
  object = memory.make<Counted>(&living);
  object.reset();
  EXPECT_EQ(living, 0);
}

TEST(TarnFWLoadMemory, ACopyOfAnObjectHasMemoryOfItsOwn) {
  int living = 0;
  std::unique_ptr<Counted> copy;
  {
    CTarnFWLoadMemory memory;
    const auto object = memory.make<Counted>(&living);
    copy = std::make_unique<Counted>(*object);
  }
  EXPECT_EQ(living, 1);
  EXPECT_EQ(copy->toString(), "counted");
  copy.reset();
  EXPECT_EQ(living, 0);
}

TEST(TarnFWLoadMemory, NothingRemainsOfAnObjectThatIsRefused) {
  int living = 0;
  CTarnFWLoadMemory memory;
  EXPECT_THROW(memory.make<Counted>(&living, true), std::runtime_error);
  EXPECT_THROW(std::make_unique<Counted>(&living, true), std::runtime_error);
  EXPECT_EQ(living, 0);
}

TEST(TarnFWLoadMemory, LivesAsLongAsTheCommandsOfItsLoad) {
  int living = 0;
  CTarnFWCmdList list;
  {
    auto memory = std::make_shared<CTarnFWLoadMemory>();
    CTarnFWCmdList loaded(memory);
    auto addresses = std::make_unique<CTarnFWAddressList>(*memory);
    addresses->addAddress(memory->make<CTarnFWAddressIPv4>("10.0.0.1", false));
    addresses->addAddress(addresses->make<Counted>(&living));
    loaded.addCmd(std::make_unique<CTarnFWCmdCreateAddrSet>(nullptr, "a", FW_ADDRSET_IP,
                                                            std::move(addresses)));
    list.mergeCmdList(loaded);
  }
  EXPECT_EQ(living, 1);
  EXPECT_EQ(list.toString(), "create addrset a with {ip 10.0.0.1, counted};\n");
}

TEST(TarnFWLoadMemory, BeginsInTheBytesThatItIsGivenAndGoesOnWhenTheyAreFull) {
  int living = 0;
  {
    alignas(Counted) std::byte first[2 * sizeof(Counted)];
    CTarnFWLoadMemory memory(first);
    std::vector<std::unique_ptr<Counted>> objects;
    for (int i = 0; i < 100; ++i) objects.push_back(makeIn<Counted>(&memory, &living));
#ifndef TARNFW_SANITIZED
    EXPECT_EQ(static_cast<void*>(objects[0].get()), static_cast<void*>(first));
    EXPECT_EQ(static_cast<void*>(objects[1].get()), static_cast<void*>(first + sizeof(Counted)));
#endif
    for (const auto& object : objects) EXPECT_EQ(object->toString(), "counted");
    EXPECT_EQ(living, 100);
  }
  EXPECT_EQ(living, 0);
}

TEST(TarnFWLoadMemory, WithoutAMemoryAnObjectHasItsOwn) {
  int living = 0;
  std::unique_ptr<CTarnFWAddress> object = makeIn<Counted>(nullptr, &living);
  EXPECT_EQ(living, 1);
  object.reset();
  EXPECT_EQ(living, 0);
}

TEST(TarnFWLoadMemory, HoldsTheContainersOfARule) {
  const std::string name(37, 'n');
  std::unique_ptr<CTarnFWContainerID> copy;
  {
    alignas(std::max_align_t) std::byte first[1024];
    CTarnFWLoadMemory memory(first);
    FWRuleParts parts;
    parts.extras = memory.make<FWRuleExtras>();
    parts.extras->attributeProfile = memory.make<CTarnFWContainerID>(name);
    parts.extras->extendedSource = std::make_unique<CTarnFWContainerID>(std::string("own"));
    parts.setTag("tag");
    EXPECT_THROW(memory.make<CTarnFWContainerID>(name + "n"), CInvalidContainerNameException);
#ifndef TARNFW_SANITIZED
    EXPECT_EQ(static_cast<void*>(parts.extras.get()), static_cast<void*>(first));
#endif
    EXPECT_STREQ(parts.tag(), "tag");
    EXPECT_EQ(parts.extendedSource()->getContainerID(), "own");
    copy = std::make_unique<CTarnFWContainerID>(*parts.attributeProfile());
  }
  EXPECT_EQ(copy->getContainerID(), name);
}
