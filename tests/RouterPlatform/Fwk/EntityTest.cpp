#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <vector>

namespace {

using Fwk::Entity;
using Fwk::Notification;
using Fwk::Ptr;
using testing::ElementsAre;
using TestModel::Box;
using TestModel::Disk;
using TestModel::Port;

Fwk::S64 alive(Fwk::TypeRecord const& type) { return type.liveCount->value(); }

/// Place of a virtual operation in the vtable: in the Itanium C++ ABI (2.3) a pointer to a virtual member function
/// holds one plus the offset of its entry.
template <class Operation>
std::ptrdiff_t slotOf(Operation operation) {
  std::array<std::ptrdiff_t, 2> parts;
  static_assert(sizeof operation == sizeof parts);
  std::memcpy(&parts, &operation, sizeof parts);
  std::ptrdiff_t const offset = parts[0] - 1;
  return offset / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(EntityVtable, HasTheOperationsInTheirFixedOrder) {
  EXPECT_EQ(slotOf(&Entity::notifieeList), 0);
  EXPECT_EQ(slotOf(&Entity::hasNotificationActiveIs), 1);
  EXPECT_EQ(slotOf(&Entity::zeroReferencesIs), 2);
  EXPECT_EQ(slotOf(&Entity::fwkType), 3);
  // 4 and 5: the destructor, once without and once with giving the storage back.
  EXPECT_EQ(slotOf(&Entity::handleNameRestore), 6);
  EXPECT_EQ(slotOf(&Entity::name), 7);
  EXPECT_EQ(slotOf(&Entity::handleParent), 8);
  EXPECT_EQ(slotOf(&Entity::handleBackup), 9);
  EXPECT_EQ(slotOf(&Entity::handleRestore), 10);
}

/// Writes down which of its operations ran.
class Witness : public Entity {
 public:
  static inline std::vector<std::string> calls;

  Fwk::NotifieeList& notifieeList() override {
    calls.emplace_back("notifieeList");
    return Entity::notifieeList();
  }
  void hasNotificationActiveIs(bool active) override {
    calls.emplace_back("hasNotificationActiveIs");
    Entity::hasNotificationActiveIs(active);
  }
  void zeroReferencesIs(bool) override { calls.emplace_back("zeroReferencesIs"); }
  Fwk::TypeRecord const& fwkType() const override {
    calls.emplace_back("fwkType");
    return typeRecord();
  }
  ~Witness() override { calls.emplace_back("destructor"); }
  void handleNameRestore(Fwk::Name const&) override { calls.emplace_back("handleNameRestore"); }
  Fwk::Name name() const override {
    calls.emplace_back("name");
    return "witness";
  }
  void handleParent(Ptr<Entity>) override { calls.emplace_back("handleParent"); }
  void handleBackup() override { calls.emplace_back("handleBackup"); }
  void handleRestore() override { calls.emplace_back("handleRestore"); }

  static constexpr char const* fwkTypeName = "TestModel::Witness";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr Fwk::TypeRecord record = [] {
      Fwk::TypeRecord made{fwkTypeName, Fwk::TypeKind::entity, {}};
      made.liveCount = &live;
      return made;
    }();
    return record;
  }
};

/// The entry of `slot` in the vtable that `object` points to.
template <class Function>
Function entryOf(Entity* object, std::size_t slot) {
  void* const* vtable;
  std::memcpy(&vtable, static_cast<void*>(object), sizeof vtable);
  return std::bit_cast<Function>(vtable[slot]);
}

/// Undefined to the language, defined by the ABI: an entry is called with the object as its first argument.
__attribute__((no_sanitize("undefined"))) void callPlain(Entity* object, std::size_t slot) {
  entryOf<void (*)(Entity*)>(object, slot)(object);
}

TEST(EntityVtable, ACallThroughEachPlainSlotReachesItsOperation) {
  auto* const object = ::new Witness;
  Witness::calls.clear();
  for (std::size_t const slot : {std::size_t{0}, std::size_t{3}, std::size_t{9}, std::size_t{10}})
    callPlain(object, slot);
  EXPECT_THAT(Witness::calls, ElementsAre("notifieeList", "fwkType", "handleBackup", "handleRestore"));
  ::delete object;
}

TEST(EntityVtable, TheDestructorsStandInTheFifthAndSixthSlot) {
  Witness::calls.clear();
  Witness::calls.reserve(8);  // so that only the object itself is allocated and released below
  std::size_t const before = liveAllocationCount();
  auto* const object = ::new Witness;
  callPlain(object, 4);
  EXPECT_EQ(liveAllocationCount(), before + 1);  // destroyed, and its storage still there
  ::new (object) Witness;
  callPlain(object, 5);
  EXPECT_EQ(liveAllocationCount(), before);
  EXPECT_THAT(Witness::calls, ElementsAre("destructor", "destructor"));
}

TEST(Entity, TheHookOfTheLastReferenceRunsBeforeTheEnd) {
  Ptr<Witness> witness = Fwk::create<Witness>();
  EXPECT_EQ(alive(Witness::typeRecord()), 1);
  Witness::calls.clear();
  witness = nullptr;
  EXPECT_EQ(Witness::calls.front(), "zeroReferencesIs");
  EXPECT_EQ(Witness::calls.back(), "destructor");
  EXPECT_EQ(alive(Witness::typeRecord()), 0);
}

TEST(Entity, HooksOfNameBackupAndRestoreDoNothingByThemselves) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  int notified = 0;
  auto const subscription = Fwk::observe(box, [&](Notification const&) { ++notified; });
  box->handleNameRestore("other");
  box->handleBackup();
  box->handleRestore();
  EXPECT_EQ(box->name(), "box");
  EXPECT_EQ(notified, 0);
}

TEST(Create, GivesTheOnlyPtrToAnEntityWithNotificationActive) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  EXPECT_EQ(box->references(), 1U);
  EXPECT_TRUE(box->hasNotificationActive());
  EXPECT_TRUE(box->notifieeList().empty());
  EXPECT_EQ(box->parent(), nullptr);
}

TEST(Create, CountsLivingInstancesPerType) {
  Fwk::S64 const boxes = alive(Box::typeRecord());
  Fwk::S64 const ports = alive(Port::typeRecord());
  Ptr<Box> box = Fwk::create<Box>("box");
  Ptr<Port> const port = box->portsIs("Ethernet1");
  box->portsIs("Ethernet2");
  EXPECT_EQ(alive(Box::typeRecord()), boxes + 1);
  EXPECT_EQ(alive(Port::typeRecord()), ports + 2);
  box = nullptr;
  EXPECT_EQ(alive(Box::typeRecord()), boxes);
  EXPECT_EQ(alive(Port::typeRecord()), ports + 1);
}

TEST(Create, TakesTheCountBackAndReleasesTheStorageWhenTheConstructorThrows) {
  Fwk::S64 const ports = alive(Port::typeRecord());
  std::size_t const storage = liveAllocationCount();
  EXPECT_THROW(Fwk::create<Port>("broken"), std::runtime_error);
  EXPECT_EQ(alive(Port::typeRecord()), ports);
  EXPECT_EQ(liveAllocationCount(), storage);
}

TEST(Create, TakesTheCountBackWhenThereIsNoMemory) {
  Fwk::S64 const ports = alive(Port::typeRecord());
  for (std::size_t allowed : {0U, 1U}) {  // the entity itself, then what it holds
    std::size_t const storage = liveAllocationCount();
    bool thrown = false;
    try {
      AllocationFailure const failure(allowed);
      Fwk::create<Port>("Ethernet1");
    } catch (std::bad_alloc const&) {
      thrown = true;
    }
    EXPECT_TRUE(thrown);
    EXPECT_EQ(alive(Port::typeRecord()), ports);
    EXPECT_EQ(liveAllocationCount(), storage);
  }
}

/// Whether `new` makes a `T`, for anybody.
template <class T, class... Args>
concept MadeByNew = requires(Args... args) {
  new T(args...);
};
static_assert(!MadeByNew<Box, Fwk::Name> && !MadeByNew<Port, Net::IntfId> && !MadeByNew<Witness>);
static_assert(std::is_constructible_v<std::string, char const*> && MadeByNew<std::string, char const*>);

TEST(Entity, InStorageOfAnotherKindIsNotCountedAndEndsWithThatStorage) {
  Fwk::S64 const before = alive(Witness::typeRecord());
  {
    Witness local;
    EXPECT_EQ(alive(Witness::typeRecord()), before);
    {
      Ptr<Witness> const pointer(&local);
      EXPECT_EQ(local.references(), 1U);
    }
    EXPECT_EQ(local.references(), 0U);
    Witness::calls.clear();
  }
  EXPECT_EQ(std::ranges::count(Witness::calls, "destructor"), 1);
  EXPECT_EQ(alive(Witness::typeRecord()), before);
}

/// Says that it is of a type of its own, and inherits the operation by which `create` could have learnt of another.
class Heir final : public Witness {
 public:
  Fwk::TypeRecord const& fwkType() const override { return Disk::typeRecord(); }
};

TEST(Create, CountsTheTypeOfWhichTheEntitySaysThatItIs) {
  Fwk::S64 const disks = alive(Disk::typeRecord());
  Fwk::S64 const witnesses = alive(Witness::typeRecord());
  Ptr<Heir> heir = Fwk::create<Heir>();
  EXPECT_EQ(alive(Disk::typeRecord()), disks + 1);
  heir = nullptr;
  EXPECT_EQ(alive(Disk::typeRecord()), disks);
  EXPECT_EQ(alive(Witness::typeRecord()), witnesses);
}

TEST(Entity, ATypeMadeFromANameReportsIt) {
  EXPECT_EQ(Fwk::create<Box>("box")->name(), "box");
  EXPECT_EQ(Fwk::create<Box>("box")->keyText(), "box");
}

TEST(Entity, ATypeMadeFromAnotherKeyHasAnEmptyName) {
  Ptr<Port> const port = Fwk::create<Port>("Ethernet1");
  EXPECT_TRUE(port->name().empty());
  EXPECT_EQ(port->keyText(), "Ethernet1");
}

TEST(Entity, SettingTheValueItHasNotifiesNobody) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  int notified = 0;
  auto const subscription = Fwk::observe(box, [&](Notification const&) { ++notified; });
  box->numberIs(0);
  box->flagIs(Box::flagDefault());
  box->textIs("");
  box->prefixIs({});
  box->pointIs({});
  EXPECT_EQ(notified, 0);
}

TEST(Entity, SettingAnotherValueNotifiesOnceWithoutAKey) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  std::vector<TestModel::Change> changes;
  auto const subscription = Fwk::observe(box, [&](Notification const& n) {
    EXPECT_FALSE(n.key);
    changes.push_back(TestModel::changeOf(n));
  });
  box->numberIs(1);
  box->textIs("x");
  box->pointIs({1, 2});
  box->colourIs(TestModel::Colour::green);
  EXPECT_THAT(changes, ElementsAre(TestModel::Change{Box::numberAttr, ""}, TestModel::Change{Box::textAttr, ""},
                                   TestModel::Change{Box::pointAttr, ""}, TestModel::Change{Box::colourAttr, ""}));
}

TEST(Entity, ChangesWithoutAllocation) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  std::size_t const before = allocationCount();
  box->numberIs(1);
  box->numberIs(1);
  box->prefixIs(Net::Ip6AddrWithMask("2001:db8::/64"));
  EXPECT_EQ(allocationCount(), before);
}

TEST(EntityParent, IsTheOwnerOfTheCollectionAndNamesTheAttribute) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  Ptr<Port> const port = box->portsIs("Ethernet1");
  EXPECT_EQ(port->parent(), box);
  EXPECT_EQ(port->parentAttrName(), "ports");
  Ptr<Disk> const disk = box->diskIs("root");
  EXPECT_EQ(disk->parent(), box);
  EXPECT_EQ(disk->parentAttrName(), "disk");
}

TEST(EntityParent, IsNeverKeptAliveByItsMembers) {
  Fwk::S64 const boxes = alive(Box::typeRecord());
  Ptr<Box> box = Fwk::create<Box>("box");
  Ptr<Port> const port = box->portsIs("Ethernet1");
  EXPECT_EQ(box->references(), 1U);
  box = nullptr;
  EXPECT_EQ(alive(Box::typeRecord()), boxes);
  EXPECT_EQ(port->parent(), nullptr);
  EXPECT_EQ(port->parentAttrName(), "");
  EXPECT_EQ(port->fullName(), "Ethernet1");
}

TEST(EntityParent, IsToldToTheMemberWhenItIsSetAndWhenItIsCleared) {
  Ptr<Box> box = Fwk::create<Box>("box");
  Ptr<Port> const deleted = box->portsIs("Ethernet1");
  Ptr<Port> const orphaned = box->portsIs("Ethernet2");
  EXPECT_EQ(deleted->parentChanges, 1);
  EXPECT_EQ(deleted->toldParent, box.get());
  box->portsDel("Ethernet1");
  EXPECT_EQ(deleted->parentChanges, 2);
  EXPECT_EQ(deleted->toldParent, nullptr);
  box = nullptr;
  EXPECT_EQ(orphaned->parentChanges, 2);
  EXPECT_EQ(orphaned->toldParent, nullptr);
}

TEST(EntityParent, IsToldToTheMemberOnlyWhenItChanges) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  Ptr<Port> const port = Fwk::create<Port>("Ethernet1");
  port->parentIs(nullptr, 0);
  EXPECT_EQ(port->parentChanges, 0);
  port->parentIs(box.get(), Box::portsAttr);
  port->parentIs(box.get(), Box::diskAttr);
  EXPECT_EQ(port->parentChanges, 1);
  EXPECT_EQ(port->parentAttrName(), "disk");
  port->parentIs(nullptr, 0);
  port->parentIs(nullptr, 0);
  EXPECT_EQ(port->parentChanges, 2);
}

TEST(EntityParent, GivenDirectlyIsLostWhenItEnds) {
  Ptr<Box> box = Fwk::create<Box>("box");
  std::vector<Ptr<Port>> ports;
  for (char const* const intfId : {"Ethernet1", "Ethernet2", "Ethernet3"}) {
    ports.push_back(Fwk::create<Port>(intfId));
    ports.back()->parentIs(box.get(), Box::portsAttr);
  }
  EXPECT_EQ(ports[1]->fullName(), "box/ports[Ethernet2]");
  ports[1]->parentIs(nullptr, 0);
  box = nullptr;
  for (Ptr<Port> const& port : ports) {
    EXPECT_EQ(port->parent(), nullptr);
    EXPECT_EQ(port->parentChanges, 2);
    EXPECT_EQ(port->toldParent, nullptr);
  }
  EXPECT_EQ(ports[0]->fullName(), "Ethernet1");
}

TEST(EntityParent, GivenDirectlyMayOutliveTheChildAndMayBeReplaced) {
  Ptr<Box> box = Fwk::create<Box>("box");
  Ptr<Box> const other = Fwk::create<Box>("other");
  Ptr<Port> ended = Fwk::create<Port>("Ethernet1");
  Ptr<Port> const moved = Fwk::create<Port>("Ethernet2");
  ended->parentIs(box.get(), Box::portsAttr);
  moved->parentIs(box.get(), Box::portsAttr);
  ended = nullptr;
  moved->parentIs(other.get(), Box::portsAttr);
  box = nullptr;
  EXPECT_EQ(moved->parent(), other);
}

/// Keeps its parent alive, against the rule that links go downwards.
class Clinging final : public Entity {
 public:
  ~Clinging() override { held = nullptr; }
  Fwk::TypeRecord const& fwkType() const override { return Disk::typeRecord(); }
  void handleParent(Ptr<Entity>) override { ++changes; }
  Ptr<Entity> held;
  static inline int changes = 0;
};

TEST(EntityParent, ThatEndsWithItsChildDoesNotCallTheChildAnyMore) {
  Fwk::S64 const boxes = alive(Box::typeRecord());
  Ptr<Clinging> child = Fwk::create<Clinging>();
  child->held = Fwk::create<Box>("box");
  child->parentIs(child->held.get(), Box::diskAttr);
  Clinging::changes = 0;
  child = nullptr;
  EXPECT_EQ(alive(Box::typeRecord()), boxes);
  EXPECT_EQ(Clinging::changes, 0);
}

/// Refuses to lose its parent.
class Stubborn final : public Entity {
 public:
  Fwk::TypeRecord const& fwkType() const override { return Disk::typeRecord(); }
  void handleParent(Ptr<Entity> parent) override {
    if (!parent) throw std::runtime_error("no parent");
  }
};

TEST(EntityParent, EndsAlthoughAChildThrows) {
  Ptr<Stubborn> const child = Fwk::create<Stubborn>();
  Ptr<Box> box = Fwk::create<Box>("box");
  child->parentIs(box.get(), Box::diskAttr);
  box = nullptr;
  EXPECT_EQ(child->parent(), nullptr);
}

TEST(EntityParentDeathTest, OfAMemberIsTheCollectionsBusiness) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  Ptr<Box> const other = Fwk::create<Box>("other");
  Ptr<Port> const port = box->portsIs("Ethernet1");
  Ptr<Disk> const disk = box->diskIs("root");
  EXPECT_DEATH(port->parentIs(other.get(), Box::portsAttr), "assertion \"!heldByAnAttribute\" failed");
  EXPECT_DEATH(disk->parentIs(nullptr, 0), "assertion \"!heldByAnAttribute\" failed");
  box->portsDel("Ethernet1");
  port->parentIs(other.get(), Box::portsAttr);
  EXPECT_EQ(port->parent(), other);
}

TEST(EntityParent, CostsAnEntityTwoPointers) {
  struct WithoutTheList {
    void* virtualOperations;
    Fwk::U32 references;
    bool flags[2];
    Fwk::AttrId parentAttr;
    Entity* parent;
    Fwk::NotifieeList notifiees;
  };
  EXPECT_EQ(sizeof(Entity), sizeof(WithoutTheList) + 2 * sizeof(void*));
}

TEST(EntityParent, CannotBeTakenHoldOfWhileItEnds) {
  Ptr<Box> box = Fwk::create<Box>("box");
  Ptr<Port> const port = box->portsIs("Ethernet1");
  struct AtZero final : Fwk::Notifiee {
    void handleNotification(Notification const&) override {}
    void handleZeroReferences(Entity&) override { parent = member->parent(); }
    Ptr<Port> member;
    Ptr<Entity> parent;
  };
  Ptr<AtZero> const atZero(new AtZero);
  atZero->member = port;
  atZero->hasNotificationActiveIs(true);
  box->notifieeList().add(*atZero);
  box = nullptr;
  // In the hook it is still counted, so this kept it.
  ASSERT_TRUE(atZero->parent);
  EXPECT_EQ(port->parent(), atZero->parent);
  atZero->hasNotificationActiveIs(false);
  atZero->parent = nullptr;
  EXPECT_EQ(port->parent(), nullptr);
}

TEST(EntityFullName, IsThePathOfAttributesAndKeysFromTheRoot) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  EXPECT_EQ(box->fullName(), "box");
  EXPECT_EQ(box->portsIs("Ethernet1")->fullName(), "box/ports[Ethernet1]");
  EXPECT_EQ(box->diskIs("root")->fullName(), "box/disk[root]");
}

/// A chain of three, which no type of the test model makes.
class Prefixes final : public Entity {
 public:
  explicit Prefixes(Net::IntfId intfId) : intfId_(intfId) {}
  Net::IntfId intfId() const { return intfId_; }
  Net::IntfId const& key() const noexcept { return intfId_; }
  Ptr<Port> portsIs(Net::IntfId key) { return ports_.memberIs(key); }
  static constexpr char const* fwkTypeName = "TestModel::Prefixes";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr auto attrs =
        Fwk::attributes<Prefixes>(Fwk::key<&Prefixes::intfId>("intfId"), Fwk::collection<&Prefixes::ports_>("ports"));
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Prefixes, Net::IntfId>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  Net::IntfId intfId_;
  Fwk::EntityCollection<Net::IntfId, Port> ports_{*this, 259};
};
class Root final : public Entity {
 public:
  explicit Root(Fwk::Name name) : name_(name) {}
  Fwk::Name name() const override { return name_; }
  Ptr<Prefixes> intfIs(Net::IntfId key) { return intf_.memberIs(key); }
  static constexpr char const* fwkTypeName = "TestModel::Root";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr auto attrs = Fwk::attributes<Root>(Fwk::collection<&Root::intf_>("intf"));
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Root, Fwk::Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  Fwk::Name name_;
  Fwk::EntityCollection<Net::IntfId, Prefixes> intf_{*this, 258};
};

TEST(EntityFullName, EscapesWhatWouldCloseTheBrackets) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  EXPECT_EQ(box->portsIs("a]/b[\\")->fullName(), "box/ports[a\\]/b[\\\\]");
}

TEST(EntityFullName, GoesThroughEveryGeneration) {
  Ptr<Root> root = Fwk::create<Root>("ra");
  Ptr<Prefixes> const middle = root->intfIs("Ethernet1");
  Ptr<Port> const leaf = middle->portsIs("Ethernet1.5");
  EXPECT_EQ(leaf->fullName(), "ra/intf[Ethernet1]/ports[Ethernet1.5]");
  root = nullptr;
  EXPECT_EQ(leaf->fullName(), "Ethernet1/ports[Ethernet1.5]");
}

TEST(EntityBaseAttributes, HaveTheNumbersFrom253To257AndComeBeforeTheOwn) {
  std::vector<std::pair<Fwk::AttrId, std::string>> base;
  for (Fwk::AttributeRecord const& attr : Box::typeRecord().baseAttributes()) base.emplace_back(attr.id, attr.name);
  EXPECT_THAT(base, ElementsAre(std::pair(253, "name"), std::pair(254, "fullName"), std::pair(255, "parent"),
                                std::pair(256, "parentAttrName"), std::pair(257, "entity")));
  EXPECT_EQ(Box::typeRecord().attributes[0].id, 258);
}

TEST(EntityBaseAttributes, EntityIsTheObjectAsItsBase) {
  Ptr<Box> const box = Fwk::create<Box>("box");
  EXPECT_EQ(box->entity().get(), static_cast<Entity const*>(box.get()));
}

}  // namespace
