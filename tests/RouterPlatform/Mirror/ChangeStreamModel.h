#pragma once

#include <RouterPlatform/Mirror/ChangeStream.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>

#include <optional>
#include <string>

/// Types for the tests of change streams, beside the small model: a tree of three levels, records as keys and values.
namespace TestModel {

/// A record that is a key. Text: `3,4`.
class Spot {
 public:
  Spot() = default;
  Spot(U32 x, U32 y) : x_(x), y_(y) {}
  bool operator==(Spot const&) const = default;
  Fwk::U64 hash(Fwk::U64 seed) const noexcept { return Fwk::HashAccumulator(seed).mix(x_).mix(y_).result(); }

  void appendTo(std::string& out) const { out += std::to_string(x_) + ',' + std::to_string(y_); }
  static std::optional<Spot> parse(std::string_view) { return std::nullopt; }
  static constexpr char const* textTypeName = "TestModel::Spot";

  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"x", &Spot::x_}, Fwk::StoredAttribute{"y", &Spot::y_});
  }
  static constexpr char const* fwkTypeName = "TestModel::Spot";

 private:
  U32 x_ = 0;
  U32 y_ = 0;
};

/// Holds boxes, one of them on top, and bags by the spot they stand at.
class Rack final : public Fwk::Entity {
 public:
  enum Attr : AttrId { boxesAttr = Fwk::firstOwnAttr, bagsAttr, topAttr };

  explicit Rack(Name name) : name_(name) {}
  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  auto const& boxes() const { return boxes_; }
  Ptr<Box> boxes(Name const& key) const { return boxes_.member(key); }
  Ptr<Box> boxesIs(Name const& key) { return boxes_.memberIs(key); }
  Ptr<Box> boxesDel(Name const& key) { return boxes_.memberDel(key); }
  void boxesDelAll() { boxes_.memberDelAll(); }

  auto const& bags() const { return bags_; }
  void bagsIs(Spot const& key, Bag const& value) { bags_.memberIs(key, value); }
  Bag bagsDel(Spot const& key) { return bags_.memberDel(key); }

  Ptr<Box> top() const { return top_.child(); }
  Ptr<Box> topIs(Name const& name) { return top_.childIs(name); }
  Ptr<Box> topDel() { return top_.childDel(); }

  static constexpr char const* fwkTypeName = "TestModel::Rack";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr auto attrs = Fwk::attributes<Rack>(
        Fwk::collection<&Rack::boxes_>("boxes"), Fwk::collection<&Rack::bags_>("bags"), Fwk::child<&Rack::top_>("top"));
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Rack, Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Rack() override = default;

  Name name_;
  Fwk::EntityCollection<Name, Box> boxes_{*this, boxesAttr};
  Fwk::ValueCollection<Spot, Bag> bags_{*this, bagsAttr};
  Fwk::OwnedChild<Box> top_{*this, topAttr};
};

}  // namespace TestModel
