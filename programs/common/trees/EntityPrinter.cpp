#include <RouterPlatform/Fwk/Reflection.h>
#include <programs/common/config/EffectiveValue.h>
#include <programs/common/text/Text.h>
#include <programs/common/trees/EntityPrinter.h>

#include <algorithm>

namespace Tool {

namespace {

using Fwk::AttributeKind;
using Fwk::AttributeRecord;
using Fwk::Entity;
using Fwk::Ptr;

// Where value and remark begin, unless the text in front of them is longer.
constexpr std::size_t valueColumn = 46;
constexpr std::size_t remarkColumn = 64;

class Lines {
 public:
  void heading(std::size_t depth, std::string const& text) { out_ += indent(depth) + text + '\n'; }
  void line(std::size_t depth, std::string const& name, std::string const& value, std::string const& remark) {
    std::string text = padded(indent(depth) + name, valueColumn - 1) + ' ' + value;
    if (!remark.empty()) text = padded(text, remarkColumn - 1) + ' ' + remark;
    out_ += text + '\n';
  }
  std::string take() { return std::move(out_); }

 private:
  static std::string indent(std::size_t depth) { return std::string(2 * depth, ' '); }
  std::string out_;
};

std::string quotedIfFree(std::string_view typeName, std::string const& text) {
  return typeName == "String" ? '"' + printable(text) + '"' : printable(text);
}

class EntityLines {
 public:
  EntityLines(Lines& lines, Entity const& entity, std::size_t depth)
      : lines_(lines),
        entity_(entity),
        type_(entity.fwkType()),
        depth_(depth),
        fresh_(type_.create ? type_.create(entity.keyText()) : nullptr) {}

  void print() {
    for (AttributeRecord const& attr : type_.attributes)
      if (attr.kind == AttributeKind::scalar || attr.kind == AttributeKind::computed) printValue(attr);
    for (AttributeRecord const& attr : type_.attributes)
      if (attr.collection)
        printCollection(attr);
      else if (attr.child)
        printChild(attr);
  }

 private:
  void printValue(AttributeRecord const& attr) {
    if (!attr.reflected || (!attr.readable() && !attr.visit) || isEffectiveValue(type_, attr)) return;
    std::string const value = attributeText(attr, entity_);
    lines_.line(depth_, attr.name, value, remarkOn(attr, value));
  }

  std::string remarkOn(AttributeRecord const& attr, std::string const& value) {
    if (attr.kind == AttributeKind::computed) return "computed";
    std::string remark = fresh_ && attributeText(attr, *fresh_) == value ? "default" : "";
    if (auto const effective = effectiveValue(entity_, attr))
      remark += (remark.empty() ? "" : ", ") + ("effective " + *effective);
    return remark;
  }

  void printCollection(AttributeRecord const& attr) {
    if (attr.collection->size(&entity_) == 0) return lines_.line(depth_, attr.name, "none", "default");
    attr.collection->forEach(&entity_, [&](Fwk::MemberRef const& member) {
      std::string const name = std::string(attr.name) + '[' + printable(member.key) + ']';
      if (member.entity) {
        lines_.heading(depth_, name);
        EntityLines(lines_, *member.entity, depth_ + 1).print();
      } else {
        lines_.line(depth_, name, memberText(attr, member), "");
      }
      return true;
    });
  }

  void printChild(AttributeRecord const& attr) {
    Ptr<Entity> const child = attr.child->get(&entity_);
    if (!child) return lines_.line(depth_, attr.name, "none", "default");
    lines_.heading(depth_, std::string(attr.name) + '[' + printable(child->keyText()) + ']');
    EntityLines(lines_, *child, depth_ + 1).print();
  }

  Lines& lines_;
  Entity const& entity_;
  Fwk::TypeRecord const& type_;
  std::size_t depth_;
  Ptr<Entity> fresh_;  // a new entity of the type: its values are the defaults
};

template <class T>
void printList(Lines& lines, std::string const& name, std::vector<T> const& list) {
  if (list.empty()) lines.line(1, name, "none", "");
  for (std::size_t i = 0; i < list.size(); ++i)
    lines.line(1, name + '[' + std::to_string(i) + ']', list[i].toString(), "");
}

}  // namespace

std::string entityText(Entity const& entity) {
  Lines lines;
  lines.heading(0, printable(entity.fullName()));
  EntityLines(lines, entity, 1).print();
  return lines.take();
}

std::string entityLines(Entity const& entity) {
  Lines lines;
  EntityLines(lines, entity, 1).print();
  return lines.take();
}

std::string attributeText(AttributeRecord const& attr, Entity const& entity) {
  std::string text;
  if (!attr.visit) attr.append(&entity, text);
  if (!attr.visit) return quotedIfFree(attr.typeName, text);
  attr.visit(&entity, [&](Fwk::ConstObjectRef value) { text = value.type->value->text(value.object); });
  return text;
}

std::string memberText(AttributeRecord const& attr, Fwk::MemberRef const& member) {
  if (member.value.object) return member.value.type->value->text(member.value.object);
  return quotedIfFree(attr.collection->memberTypeName, member.text);
}

std::string linkText(LinkConfig const& link) {
  Lines lines;
  lines.heading(0, printable(linkPath(link.intfId)));
  lines.line(1, "mac", link.mac ? link.mac->toString() : "none", "");
  lines.line(1, "mtu", std::to_string(link.mtu.value_or(LinkConfig::mtuDefault)), link.mtu ? "" : "default");
  lines.line(1, "nsRetransmitInterval", std::to_string(link.nsRetransmitInterval),
             link.nsRetransmitInterval == 0 ? "default" : "");
  printList(lines, "addresses", link.addresses);
  if (link.virtualRouter)
    printList(lines, "virtualRouter", *link.virtualRouter);
  else
    lines.line(1, "virtualRouter", "absent", "default");
  return lines.take();
}

}  // namespace Tool
