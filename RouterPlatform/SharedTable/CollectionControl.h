#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/SharedTable/WriterBase.h>

namespace SharedTable {

/// State of one mounted collection. It keeps the entity that publishes the collection alive: an entity whose last
/// outside reference goes while other processes may be reading must not end before its table is unmounted. Observers
/// hear of mount status and quiescence; their exceptions reach the caller after all has been done. Used by one thread
/// at a time.
class ROUTER_PLATFORM_EXPORT CollectionControl final : public Fwk::Entity {
 public:
  enum Attr : Fwk::AttrId {
    mountStatusAttr = Fwk::firstOwnAttr,
    quiescedAttr,
  };

  CollectionControl() = default;

  /// Whether the collection is mounted, as the table last said.
  MountStatus mountStatus() const { return mountStatus_; }
  void mountStatusIs(MountStatus status);

  /// Whether the table is done with the shared memory.
  bool quiesced() const { return quiesced_; }
  void quiescedIs(bool quiesced);

  /// The entity to keep alive until the collection is neither mounted nor in use; at once let go if it is not now.
  /// Letting go may end the entity, and with it this control.
  void entityIs(Fwk::Ptr<Fwk::Entity> entity);
  /// The entity kept alive now, or null.
  Fwk::Ptr<Fwk::Entity> keptEntity() const { return kept_; }

  static constexpr char const* fwkTypeName = "SharedTable::CollectionControl";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~CollectionControl() override = default;
  void letGoUnlessInUse();

  MountStatus mountStatus_ = MountStatus::unmounted;
  bool quiesced_ = true;
  Fwk::Ptr<Fwk::Entity> kept_;
};

}  // namespace SharedTable
