#include <RouterPlatform/Base/Steps.h>
#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <RouterPlatform/SharedTable/CollectionControl.h>

#include <utility>

namespace SharedTable {

void CollectionControl::mountStatusIs(MountStatus status) {
  Fwk::Ptr<CollectionControl> const alive(this);
  Fwk::Steps steps;
  steps.run([&] { attrIs(mountStatus_, status, mountStatusAttr); });
  letGoUnlessInUse();
  steps.finish();
}

void CollectionControl::quiescedIs(bool quiesced) {
  Fwk::Ptr<CollectionControl> const alive(this);
  Fwk::Steps steps;
  steps.run([&] { attrIs(quiesced_, quiesced, quiescedAttr); });
  letGoUnlessInUse();
  steps.finish();
}

void CollectionControl::entityIs(Fwk::Ptr<Fwk::Entity> entity) {
  Fwk::Ptr<CollectionControl> const alive(this);
  kept_ = std::move(entity);
  letGoUnlessInUse();
}

/// The reference goes last: dropping it may end the entity, whose table may call in here again.
void CollectionControl::letGoUnlessInUse() {
  if (mountStatus_ == MountStatus::mounted || !quiesced_) return;
  Fwk::Ptr<Fwk::Entity> const dropped = std::exchange(kept_, nullptr);
}

Fwk::TypeRecord const& CollectionControl::typeRecord() {
  using namespace Fwk;
  static constinit LiveCount live;
  static constexpr auto attrs = attributes<CollectionControl>(scalar<&CollectionControl::mountStatus>("mountStatus"),
                                                              scalar<&CollectionControl::quiesced>("quiesced"));
  static constexpr TypeRecord record = [] {
    TypeRecord made{fwkTypeName, TypeKind::entity, attrs};
    made.liveCount = &live;
    made.create = [](std::string_view key) -> Ptr<Entity> {
      return key.empty() ? create<CollectionControl>() : nullptr;
    };
    return made;
  }();
  return record;
}

namespace {

Fwk::TypeRegistration const registration(CollectionControl::typeRecord());

}  // namespace

}  // namespace SharedTable
