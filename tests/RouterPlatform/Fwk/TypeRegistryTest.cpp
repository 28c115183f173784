#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Fwk::TypeRegistry;
using testing::ElementsAre;
using testing::IsEmpty;
using TestModel::Box;
using TestModel::Point;
using TestModel::Port;

TEST(TypeRegistry, IsEmptyAtFirst) {
  TypeRegistry const registry;
  EXPECT_THAT(registry.types(), IsEmpty());
  EXPECT_EQ(registry.find("TestModel::Box"), nullptr);
}

TEST(TypeRegistry, FindsTypesByQualifiedName) {
  TypeRegistry registry;
  registry.add(Box::typeRecord());
  registry.add(Point::typeRecord());
  EXPECT_EQ(registry.find("TestModel::Box"), &Box::typeRecord());
  EXPECT_EQ(registry.find("TestModel::Point"), &Point::typeRecord());
  EXPECT_EQ(registry.find("Box"), nullptr);
  EXPECT_EQ(registry.find("TestModel::Boxes"), nullptr);
  EXPECT_EQ(registry.find(""), nullptr);
}

TEST(TypeRegistry, ListsTypesInTheOrderOfRegistration) {
  TypeRegistry registry;
  for (Fwk::TypeRecord const* const type : {&Port::typeRecord(), &Box::typeRecord(), &Point::typeRecord()})
    registry.add(*type);
  EXPECT_THAT(registry.types(), ElementsAre(&Port::typeRecord(), &Box::typeRecord(), &Point::typeRecord()));
}

TEST(TypeRegistry, KeepsTheFirstOfAName) {
  Fwk::TypeRecord const other{"TestModel::Box", Fwk::TypeKind::value, {}};
  TypeRegistry registry;
  registry.add(Box::typeRecord());
  registry.add(other);
  registry.add(Box::typeRecord());
  EXPECT_THAT(registry.types(), ElementsAre(&Box::typeRecord()));
}

TEST(TypeRegistry, IsOneForTheProcess) { EXPECT_EQ(&Fwk::typeRegistry(), &Fwk::typeRegistry()); }

TEST(TypeRegistry, HasTheEntitiesOfThePlatform) {
  for (char const* const name :
       {"Fwk::Entity", "Ip6::IntfStatus", "Ip6::VirtualRouterStatusV6", "SharedTable::CollectionControl"}) {
    Fwk::TypeRecord const* const type = Fwk::typeRegistry().find(name);
    ASSERT_NE(type, nullptr) << name;
    EXPECT_EQ(type->kind, Fwk::TypeKind::entity);
    EXPECT_EQ(type->baseAttributes().size(), 5U);
  }
  EXPECT_EQ(Fwk::typeRegistry().find("Fwk::Entity")->create, nullptr);
}

TEST(TypeRegistry, HasEveryEntityTypeThatABaseAttributeNames) {
  for (Fwk::AttributeRecord const& attr : Box::typeRecord().baseAttributes()) {
    bool const qualified = std::string_view(attr.typeName).find("::") != std::string_view::npos;
    EXPECT_EQ(Fwk::typeRegistry().find(attr.typeName) != nullptr, qualified) << attr.name;
  }
}

}  // namespace
