#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

#include <RouterPlatform/Fwk/TypeRegistry.h>

namespace {

using namespace ModelTest;
using namespace RouterAdvt;

struct TypeRow {
  char const* name;
  Fwk::TypeRecord const& record;
  Fwk::TypeKind kind;
};
// In the order in which they are registered when the library is loaded.
TypeRow const typeRows[] = {
    {"RouterAdvt::Status", Status::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::RaPacketStatus", RaPacketStatus::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::RouterNeighbor", RouterNeighbor::typeRecord(), Fwk::TypeKind::value},
    {"RouterAdvt::PrefixDefault", PrefixDefault::typeRecord(), Fwk::TypeKind::value},
    {"RouterAdvt::RouterNeighborStatus", RouterNeighborStatus::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::RouterNeighborRaKey", RouterNeighborRaKey::typeRecord(), Fwk::TypeKind::value},
    {"RouterAdvt::RouterNeighborRa", RouterNeighborRa::typeRecord(), Fwk::TypeKind::value},
    {"RouterAdvt::PrefixProfileEntry", PrefixProfileEntry::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::PrefixConfigEntry", PrefixConfigEntry::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::RaPacket", RaPacket::typeRecord(), Fwk::TypeKind::value},
    {"RouterAdvt::IntfConfig", IntfConfig::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::Table::RouterNeighborRaStatus", Table::RouterNeighborRaStatus::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::LifeTimeHashMap", LifeTimeHashMap::typeRecord(), Fwk::TypeKind::value},
    {"RouterAdvt::DNSServerConfigEntry", DNSServerConfigEntry::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::DNSSuffixConfigEntry", DNSSuffixConfigEntry::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::RaPacketPrefixInfo", RaPacketPrefixInfo::typeRecord(), Fwk::TypeKind::value},
    {"RouterAdvt::ProcFileDirDataSet", ProcFileDirDataSet::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::Config", Config::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::IntfStatus", IntfStatus::typeRecord(), Fwk::TypeKind::entity},
    {"RouterAdvt::RouterNeighbors", RouterNeighbors::typeRecord(), Fwk::TypeKind::entity},
};

TEST(Registration, EntersTheTypesOfTheModelInTheirOrder) {
  std::vector<std::string> expected, registered;
  for (TypeRow const& row : typeRows) expected.push_back(row.name);
  for (Fwk::TypeRecord const* const type : Fwk::typeRegistry().types())
    if (std::string_view(type->name).starts_with("RouterAdvt::")) registered.push_back(type->name);
  EXPECT_EQ(registered, expected);
}

TEST(Registration, FindsEachTypeByItsQualifiedName) {
  for (TypeRow const& row : typeRows) {
    SCOPED_TRACE(row.name);
    EXPECT_STREQ(row.record.name, row.name);
    EXPECT_EQ(Fwk::typeRegistry().find(row.name), &row.record);
    EXPECT_EQ(row.record.kind, row.kind);
    EXPECT_EQ(row.record.liveCount != nullptr, row.kind == Fwk::TypeKind::entity);
    EXPECT_EQ(row.record.create != nullptr, row.kind == Fwk::TypeKind::entity);
  }
}

TEST(Registration, FindsNoTypeByAnotherName) {
  EXPECT_EQ(Fwk::typeRegistry().find("Config"), nullptr);
  EXPECT_EQ(Fwk::typeRegistry().find("RouterAdvt::config"), nullptr);
  EXPECT_EQ(Fwk::typeRegistry().find(""), nullptr);
}

TEST(Registration, NamesMembersOfCollectionsAndChildrenByTheirRegisteredNames) {
  for (TypeRow const& row : typeRows) {
    for (Fwk::AttributeRecord const& attr : row.record.attributes) {
      SCOPED_TRACE(row.name + std::string("::") + attr.name);
      if (attr.collection && attr.collection->memberType) {
        EXPECT_EQ(Fwk::typeRegistry().find(attr.typeName), &attr.collection->memberType());
      }
      if (attr.child) {
        EXPECT_NE(Fwk::typeRegistry().find(attr.typeName), nullptr);
      }
    }
  }
}

TEST(Registration, GivesEveryEntityTypeTheFiveBaseAttributesAheadOfItsOwn) {
  for (TypeRow const& row : typeRows) {
    SCOPED_TRACE(row.name);
    std::vector<std::pair<AttrId, std::string>> base;
    for (Fwk::AttributeRecord const& attr : row.record.baseAttributes()) base.emplace_back(attr.id, attr.name);
    if (row.kind == Fwk::TypeKind::value) {
      EXPECT_TRUE(base.empty());
    } else {
      EXPECT_EQ(base,
                (std::vector<std::pair<AttrId, std::string>>{
                    {253, "name"}, {254, "fullName"}, {255, "parent"}, {256, "parentAttrName"}, {257, "entity"}}));
    }
    ASSERT_FALSE(row.record.attributes.empty());
    EXPECT_EQ(row.record.attributes[0].id, 258);
  }
}

}  // namespace
