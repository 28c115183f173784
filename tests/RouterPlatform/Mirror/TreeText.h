#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/Reflection.h>

#include <algorithm>
#include <string>
#include <vector>

/// A tree as text, to compare trees by: everything that reflection shows, by plain text alone. Members stand in order
/// where it counts, otherwise sorted.
namespace TreeText {

inline void appendAttributes(std::string& out, Fwk::ConstObjectRef object);

inline void appendMembers(std::string& out, Fwk::ConstObjectRef object, Fwk::AttributeRecord const& attr) {
  std::vector<std::string> members;
  attr.collection->forEach(object.object, [&](Fwk::MemberRef const& member) {
    std::string& text = members.emplace_back(member.key + "=>");
    if (member.entity) {
      appendAttributes(text, Fwk::objectRef(static_cast<Fwk::Entity const&>(*member.entity)));
      if (member.entity->parent().get() != object.object) text += "PARENT IS ANOTHER";
    } else if (member.value.object) {
      appendAttributes(text, member.value);
    }
    (text += member.text) += ", ";
    return true;
  });
  if (attr.memberOrder == Fwk::MemberOrder::arbitrary) std::ranges::sort(members);
  for (std::string const& member : members) out += member;
}

inline void appendAttribute(std::string& out, Fwk::ConstObjectRef object, Fwk::AttributeRecord const& attr) {
  (out += attr.name) += ": ";
  if (attr.collection) appendMembers(out, object, attr);
  if (attr.child) {
    if (auto const child = attr.child->get(object.object)) {
      out += child->keyText();
      appendAttributes(out, Fwk::objectRef(static_cast<Fwk::Entity const&>(*child)));
      if (child->parent().get() != object.object) out += "PARENT IS ANOTHER";
    }
  }
  if (attr.append) attr.append(object.object, out);
  if (attr.visit) attr.visit(object.object, [&](Fwk::ConstObjectRef value) { appendAttributes(out, value); });
  out += "; ";
}

inline void appendAttributes(std::string& out, Fwk::ConstObjectRef object) {
  out += '{';
  for (Fwk::AttributeRecord const& attr : object.type->attributes)
    if (attr.reflected) appendAttribute(out, object, attr);
  out += '}';
}

inline std::string of(Fwk::Entity const& root) {
  std::string out;
  appendAttributes(out, Fwk::objectRef(root));
  return out;
}
template <class T>
std::string of(Fwk::Ptr<T> const& root) {
  return root ? of(static_cast<Fwk::Entity const&>(*root)) : "none";
}

}  // namespace TreeText
