#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>
#include <programs/common/text/TextTable.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/commands/Commands.h>

#include <ostream>

namespace Tool {

namespace {

using Fwk::AttributeRecord;
using Fwk::TypeRecord;

std::string kindOf(TypeRecord const& type) { return type.kind == Fwk::TypeKind::entity ? "entity" : "value"; }

/// The name without the namespaces that all types share.
std::string_view shortName(TypeRecord const& type) {
  std::string_view const name = type.name;
  auto const colons = name.find("::");
  return colons == std::string_view::npos ? name : name.substr(colons + 2);
}

TypeRecord const& findType(std::string const& name) {
  // A short name that the platform has too means the model's type.
  if (TypeRecord const* const ours = Fwk::typeRegistry().find("RouterAdvt::" + name)) return *ours;
  std::vector<std::string_view> names;
  for (TypeRecord const* type : Fwk::typeRegistry().types()) {
    if (name == type->name || name == shortName(*type)) return *type;
    names.emplace_back(name.find("::") == std::string::npos ? shortName(*type) : type->name);
  }
  throw Failure("there is no type " + inQuotes(name) + nearestNameHint(name, names));
}

std::string typeText(AttributeRecord const& attr) {
  if (!attr.collection) return attr.typeName;
  std::string text = attr.collection->keyTypeName;
  if (attr.collection->memberTypeName[0] != '\0') text += std::string(" to ") + attr.collection->memberTypeName;
  return text;
}

std::string remarkOf(AttributeRecord const& attr) {
  if (!attr.reflected) return "not reached by reflection";
  if (attr.settable()) return "settable";
  if (attr.appendFor) return std::string("takes an argument: ") + attr.argumentTypeName;
  if (attr.refer) return "reference";
  return {};
}

void addRows(TextTable& table, std::span<AttributeRecord const> attributes) {
  for (AttributeRecord const& attr : attributes)
    table.add({std::to_string(attr.id), attr.name, attr.reflected ? attributeKindName(attr.kind) : "-",
               attr.reflected ? typeText(attr) : "-", remarkOf(attr)});
}

class TypesCommand final : public Command {
 public:
  CommandText text() const override {
    return {"types", "list the model's types, or the attributes of one type",
            "A configuration file can set the 'settable' attributes and the members of collections; its section config "
            "has the attributes of the type Config. The numbers are those of reflection and of notifications.\n\n"
            "  routeradvt types\n"
            "  routeradvt types IntfConfig"};
  }

  void addTo(Options& options) override {
    options.argument("NAME", name_, "type", "type, with or without its namespace", Need::optional);
  }

  void run(Console& console) override {
    if (name_.empty())
      listTypes(console.out);
    else
      listAttributes(console.out, findType(name_));
  }

 private:
  static void listTypes(std::ostream& out) {
    TextTable table({"type", "kind", "attributes"});
    for (TypeRecord const* type : Fwk::typeRegistry().types())
      table.add({type->name, kindOf(*type), std::to_string(type->attributes.size())});
    out << table.text();
  }

  static void listAttributes(std::ostream& out, TypeRecord const& type) {
    out << type.name << " (" << kindOf(type) << ")\n\n";
    TextTable table({"number", "attribute", "kind", "type", ""});
    addRows(table, type.baseAttributes());
    addRows(table, type.attributes);
    out << table.text();
  }

  std::string name_;
};

}  // namespace

std::unique_ptr<Command> makeTypesCommand() { return std::make_unique<TypesCommand>(); }

}  // namespace Tool
