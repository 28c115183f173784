#include <Ipv6RouterAdvt/ModelAssert.h>
#include <Ipv6RouterAdvt/RouterAdvt/LifeTimeHashMap.h>
#include <Ipv6RouterAdvt/RouterAdvt/PrefixDefault.h>

#include <ostream>

/// The text forms of the configuration's value types.
namespace RouterAdvt {

namespace {

/// Writes exactly the text: a width that was set on the stream pads nothing and is used up.
std::ostream& write(std::ostream& out, String const& text) {
  out.width(0);
  return out << text;
}

}  // namespace

String valueToStrep(PrefixDefault const&) { return String(); }
String valueToStrep(LifeTimeHashMap const&) { return "None"; }

std::ostream& operator<<(std::ostream& out, PrefixDefault const& value) { return write(out, valueToStrep(value)); }
std::ostream& operator<<(std::ostream& out, LifeTimeHashMap const& value) { return write(out, valueToStrep(value)); }

PrefixDefault::PrefixDefault(String::IteratorConst&, String::IteratorConst const&) {}

LifeTimeHashMap::LifeTimeHashMap(String::IteratorConst&, String::IteratorConst const&) {
  ASSERT_AT_TEXT(false,
                 operationAt(ModelLine::lifeTimeHashMapFromText,
                             "RouterAdvt::LifeTimeHashMap::LifeTimeHashMap(String::IteratorConst&, "
                             "String::IteratorConst const&)"),
                 R"(!"No String constructor for LifeTimeHashMap - has collection")");
}

}  // namespace RouterAdvt
