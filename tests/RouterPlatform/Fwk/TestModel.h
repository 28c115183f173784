#pragma once

#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Fwk/Collections.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <stdexcept>

/// A small model with an attribute of every kind, for the tests of the framework.
namespace TestModel {

using Fwk::AttrId;
using Fwk::Name;
using Fwk::Ptr;
using Fwk::String;
using Fwk::U32;
using Fwk::U8;
using Net::IntfId;
using Net::Ip6Addr;
using Net::Ip6AddrWithMask;

enum class Colour : U8 { red, green };
inline void appendText(std::string& out, Colour colour) { out += colour == Colour::red ? "red" : "green"; }
inline bool parseText(std::string_view text, Colour& colour) {
  if (text != "red" && text != "green") return false;
  colour = text == "red" ? Colour::red : Colour::green;
  return true;
}
constexpr char const* textTypeNameOf(Colour) { return "TestModel::Colour"; }

/// A value record that can be read from its text form, and be a key.
class Point {
 public:
  Point() = default;
  Point(U32 x, U32 y) : x_(x), y_(y) {}
  Point(String::IteratorConst& pos, String::IteratorConst const& end);
  U32 x() const { return x_; }
  U32 y() const { return y_; }
  bool operator==(Point const&) const = default;
  Fwk::U64 hash(Fwk::U64 seed) const noexcept { return Fwk::HashAccumulator(seed).mix(x_).mix(y_).result(); }

  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"x", &Point::x_}, Fwk::StoredAttribute{"y", &Point::y_});
  }
  static constexpr char const* fwkTypeName = "TestModel::Point";
  static Fwk::TypeRecord const& typeRecord();

 private:
  U32 x_ = 0;
  U32 y_ = 0;
};
inline Point::Point(String::IteratorConst& pos, String::IteratorConst const& end) {
  Fwk::recordFromStrep(pos, end, *this);
}
inline String valueToStrep(Point const& point) { return Fwk::recordToStrep(point); }
inline Fwk::TypeRecord const& Point::typeRecord() {
  static constexpr auto attrs = Fwk::attributes<Point>(Fwk::scalar<&Point::x>("x"), Fwk::scalar<&Point::y>("y"));
  static constexpr Fwk::TypeRecord record = Fwk::valueRecord<Point>(attrs);
  return record;
}

/// A value record with a collection inside, which is therefore not read from text.
class Bag {
 public:
  using Marks = Fwk::OrderedMap<U32, bool>;

  Bag() = default;
  Bag(String::IteratorConst&, String::IteratorConst const&) { throw std::logic_error("holds a collection"); }
  Marks const& marks() const { return marks_; }
  void marksIs(U32 key, bool value) { marks_.set(key, value); }
  bool operator==(Bag const&) const = default;

  static constexpr auto storedAttributes() { return std::tuple(Fwk::StoredAttribute{"marks", &Bag::marks_}); }
  static constexpr char const* fwkTypeName = "TestModel::Bag";
  static Fwk::TypeRecord const& typeRecord();

 private:
  Marks marks_;
};
inline String valueToStrep(Bag const& bag) { return Fwk::recordToStrep(bag); }
inline Fwk::TypeRecord const& Bag::typeRecord() {
  static constexpr auto attrs = Fwk::attributes<Bag>(Fwk::collection<&Bag::marks_>("marks"));
  static constexpr Fwk::TypeRecord record = Fwk::valueRecord<Bag>(attrs);
  return record;
}

/// Identified by a key that is no name. Remembers what it is told of its parent. Refuses to be made for `"broken"`.
class Port final : public Fwk::Entity {
 public:
  enum Attr : AttrId { intfIdAttr = Fwk::firstOwnAttr, speedAttr };

  explicit Port(IntfId intfId) : intfId_(intfId) {
    if (intfId == "broken") throw std::runtime_error("broken port");
  }
  IntfId const& key() const noexcept { return intfId_; }
  IntfId intfId() const { return intfId_; }
  U32 speed() const { return speed_; }
  void speedIs(U32 v) { attrIs(speed_, v, speedAttr); }

  void handleParent(Ptr<Fwk::Entity> parent) override {
    ++parentChanges;
    toldParent = parent.get();
  }
  int parentChanges = 0;
  Fwk::Entity* toldParent = nullptr;

  static constexpr char const* fwkTypeName = "TestModel::Port";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr auto attrs =
        Fwk::attributes<Port>(Fwk::key<&Port::intfId>("intfId"), Fwk::scalar<&Port::speed, &Port::speedIs>("speed"));
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Port, IntfId>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Port() override = default;

  std::string padding_ = std::string(100, 'x');  ///< something to leak
  IntfId intfId_;
  U32 speed_ = 0;
};

/// Identified by its name.
class Disk final : public Fwk::Entity {
 public:
  explicit Disk(Name name) : name_(name) {
    if (name == "broken") throw std::runtime_error("broken disk");
  }
  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  static constexpr char const* fwkTypeName = "TestModel::Disk";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Disk, Name>({}, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Disk() override = default;
  Name name_;
};

/// An attribute of every kind. Own attributes are numbered in the order of `Attr`.
class Box final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    flagAttr = Fwk::firstOwnAttr,
    flagDefaultAttr,
    numberAttr,
    smallAttr,
    ratioAttr,
    textAttr,
    colourAttr,
    prefixAttr,
    pointAttr,
    twiceAttr,
    hiddenAttr,
    scaledAttr,
    portsAttr,
    labelsAttr,
    pointsAttr,
    addressesAttr,
    diskAttr,
  };

  explicit Box(Name name) : name_(name) {}
  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  bool flag() const { return flag_; }
  void flagIs(bool v) { attrIs(flag_, v, flagAttr); }
  static constexpr bool flagDefault() { return true; }
  U32 number() const { return number_; }
  void numberIs(U32 v) { attrIs(number_, v, numberAttr); }
  U8 small() const { return small_; }
  void smallIs(U8 v) { attrIs(small_, v, smallAttr); }
  double ratio() const { return ratio_; }
  void ratioIs(double v) { attrIs(ratio_, v, ratioAttr); }
  String const& text() const { return text_; }
  void textIs(String const& v) { attrIs(text_, v, textAttr); }
  Colour colour() const { return colour_; }
  void colourIs(Colour v) { attrIs(colour_, v, colourAttr); }
  Ip6AddrWithMask prefix() const { return prefix_; }
  void prefixIs(Ip6AddrWithMask const& v) { attrIs(prefix_, v, prefixAttr); }
  Point const& point() const { return point_; }
  void pointIs(Point const& v) { attrIs(point_, v, pointAttr); }
  U32 twice() const { return number_ * 2; }
  U32 scaled(U32 factor) const { return number_ * factor; }

  auto const& ports() const { return ports_; }
  Ptr<Port> ports(IntfId key) const { return ports_.member(key); }
  Ptr<Port> portsIs(IntfId key) { return ports_.memberIs(key); }
  Ptr<Port> portsDel(IntfId key) { return ports_.memberDel(key); }
  void portsDelAll() { ports_.memberDelAll(); }

  auto const& labels() const { return labels_; }
  String labels(String const& key) const { return labels_.member(key); }
  void labelsIs(String const& key, String const& value) { labels_.memberIs(key, value); }
  String labelsDel(String const& key) { return labels_.memberDel(key); }
  void labelsDelAll() { labels_.memberDelAll(); }

  auto const& points() const { return points_; }
  void pointsIs(U32 key, Point const& value) { points_.memberIs(key, value); }
  Point pointsDel(U32 key) { return points_.memberDel(key); }

  auto const& addresses() const { return addresses_; }
  void addressesIs(Ip6Addr const& key) { addresses_.memberIs(key); }
  bool addressesDel(Ip6Addr const& key) { return addresses_.memberDel(key); }
  void addressesDelAll() { addresses_.memberDelAll(); }

  Ptr<Disk> disk() const { return disk_.child(); }
  Ptr<Disk> diskIs(Name const& name) { return disk_.childIs(name); }
  Ptr<Disk> diskDel() { return disk_.childDel(); }

  static constexpr char const* fwkTypeName = "TestModel::Box";
  static Fwk::TypeRecord const& typeRecord() {
    using namespace Fwk;
    static constinit LiveCount live;
    static constexpr auto attrs = attributes<Box>(
        scalar<&Box::flag, &Box::flagIs>("flag"), constant<&Box::flagDefault>("flagDefault"),
        scalar<&Box::number, &Box::numberIs>("number"), scalar<&Box::small, &Box::smallIs>("small"),
        scalar<&Box::ratio, &Box::ratioIs>("ratio"), scalar<&Box::text, &Box::textIs>("text"),
        scalar<&Box::colour, &Box::colourIs>("colour"), scalar<&Box::prefix, &Box::prefixIs>("prefix"),
        scalar<&Box::point, &Box::pointIs>("point"), computed<&Box::twice>("twice"), unreflected("hidden"),
        computedWithArgument<&Box::scaled>("scaled"), collection<&Box::ports_>("ports"),
        collection<&Box::labels_>("labels"), collection<&Box::points_>("points"),
        collection<&Box::addresses_>("addresses"), child<&Box::disk_>("disk"));
    static constexpr TypeRecord record = entityRecord<Box, Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Box() override = default;

  Name name_;
  U32 number_ = 0;
  double ratio_ = 0;
  String text_;
  Ip6AddrWithMask prefix_;
  Point point_;
  bool flag_ = flagDefault();
  U8 small_ = 0;
  Colour colour_ = Colour::red;
  Fwk::EntityCollection<IntfId, Port> ports_{*this, portsAttr};
  Fwk::ValueCollection<String, String> labels_{*this, labelsAttr};
  Fwk::ValueCollection<U32, Point> points_{*this, pointsAttr};
  Fwk::ValueSet<Ip6Addr> addresses_{*this, addressesAttr};
  Fwk::OwnedChild<Disk> disk_{*this, diskAttr};
};

/// One change as the tests write it down.
struct Change {
  AttrId attr;
  std::string key;
  bool operator==(Change const&) const = default;
};
inline std::ostream& operator<<(std::ostream& os, Change const& c) { return os << c.attr << '[' << c.key << ']'; }
inline Change changeOf(Fwk::Notification const& notification) {
  Change change{notification.attr, {}};
  notification.key.appendTo(change.key);
  return change;
}

}  // namespace TestModel
