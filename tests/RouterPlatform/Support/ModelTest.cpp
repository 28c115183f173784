#include <tests/RouterPlatform/Support/ModelTest.h>

namespace ModelTest {

namespace {

void expectUnreflected(Fwk::TypeRecord const& type, Fwk::ObjectRef object, AttributeRow const& row) {
  EXPECT_EQ(type.attribute(row.id), nullptr);
  EXPECT_EQ(type.attribute(row.name), nullptr);
  std::string text;
  EXPECT_EQ(Fwk::readAttribute(object, row.id, text).error, Fwk::ReflectionError::noSuchAttribute);
  EXPECT_EQ(text, "");
  EXPECT_EQ(Fwk::setAttribute(object, row.id, "1").error, Fwk::ReflectionError::noSuchAttribute);
}

void expectReflected(Fwk::TypeRecord const& type, Fwk::ObjectRef object, AttributeRow const& row) {
  Fwk::AttributeRecord const* const found = type.attribute(row.id);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(type.attribute(row.name), found);
  EXPECT_STREQ(Fwk::attributeKindName(found->kind), Fwk::attributeKindName(row.kind));
  EXPECT_STREQ(found->typeName, row.typeName);
  EXPECT_EQ(found->settable(), row.settable);
  EXPECT_EQ(found->collection != nullptr, row.kind == AttributeKind::collection);
  EXPECT_EQ(found->child != nullptr, row.kind == AttributeKind::child);
  if (row.text)
    EXPECT_EQ(readText(object, row.id), row.text);
  else
    EXPECT_FALSE(found->readable());
  if (!row.settable) {
    EXPECT_EQ(Fwk::setAttribute(object, row.id, "1").error, Fwk::ReflectionError::notSettable);
  }
}

std::string storedText(Fwk::ConstObjectRef object, Fwk::AttributeRecord const& attr) {
  std::string text;
  if (attr.append) attr.append(object.object, text);
  if (attr.collection) {
    attr.collection->forEach(object.object, [&](Fwk::MemberRef const& member) {
      text += member.key + ",";
      return true;
    });
  }
  if (attr.child) {
    Ptr<Fwk::Entity> const child = attr.child->get(object.object);
    text = child ? "set " + child->name().toString() : "none";
  }
  return text;
}

}  // namespace

void expectAttributes(Fwk::TypeRecord const& type, Fwk::ObjectRef object, std::span<AttributeRow const> rows) {
  ASSERT_EQ(type.attributes.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(rows[i].name);
    EXPECT_EQ(rows[i].enumerator, rows[i].id);
    EXPECT_EQ(type.attributes[i].id, rows[i].id);
    EXPECT_STREQ(type.attributes[i].name, rows[i].name);
    if (rows[i].typeName)
      expectReflected(type, object, rows[i]);
    else
      expectUnreflected(type, object, rows[i]);
  }
}

std::map<std::string, std::string> snapshot(Fwk::ConstObjectRef object) {
  std::map<std::string, std::string> result;
  for (Fwk::AttributeRecord const& attr : object.type->baseAttributes()) result[attr.name] = storedText(object, attr);
  for (Fwk::AttributeRecord const& attr : object.type->attributes)
    if (attr.kind != AttributeKind::computed) result[attr.name] = storedText(object, attr);
  return result;
}

std::vector<std::string> changedBetween(std::map<std::string, std::string> const& before,
                                        std::map<std::string, std::string> const& after) {
  std::vector<std::string> names;
  for (auto const& [name, text] : after)
    if (before.at(name) != text) names.push_back(name);
  return names;
}

Changes::Changes(Fwk::Entity& entity, std::function<void(Fwk::Notification const&)> whenTold)
    : subscription_(Fwk::observe(entity, [this, &entity, whenTold](Fwk::Notification const& told) {
        EXPECT_EQ(&told.entity, &entity);
        Change change{told.attr};
        if (told.key) told.key.appendTo(change.key.emplace());
        list_.push_back(std::move(change));
        if (whenTold) whenTold(told);
      })) {}

}  // namespace ModelTest
