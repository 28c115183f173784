#pragma once

#include <RouterPlatform/Fwk/AttrId.h>
#include <RouterPlatform/Mirror/ChangeStream.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Fwk {

/// Collects the changes of a whole tree, for a program that acts on them later.
///
///     Fwk::TreeObserver observer(config, [&] { loop.post(advertise); });  // marks
///     ...
///     void advertise() {                                                  // acts: every setter has returned
///       for (auto const& change : observer.take().changes) ...
///     }
///
/// A batch is whatever changed between two calls of `take`. Each attribute and each member is in it once, however often
/// it changed. A new entity is in it once, as a member or child of its holder; its own attributes, and entities below
/// it, are not listed. An entity that has left the tree is in it as a member or child that changed, and with nothing
/// else. A member that was removed and added again looks like a new one: compare its address where that matters.
///
/// Covers the attributes that type records call streamed. Observes every entity of the tree, also those that come
/// later, and keeps the root alive. Thread rule: that of the tree. docs/adr/0013
class ROUTER_PLATFORM_EXPORT TreeObserver {
 public:
  /// An attribute, or a member of a collection, that has changed. The tree holds its present state.
  struct Change {
    Ptr<Entity> entity;  ///< has the attribute; hung in the tree when the batch was taken
    AttrId attr = 0;
    OctetBuffer keyOctets;  ///< key of the member as a change stream has it; empty for scalars and children

    /// Key of the member, where `attr` is a collection with keys of type `K`.
    template <Streamable K>
    std::optional<K> key() const {
      K key{};
      return takeWhole(keyOctets, key) ? std::optional<K>(std::move(key)) : std::nullopt;
    }
  };
  /// Everything that changed since the last `take`.
  struct Batch {
    /// The changes could not be held: anything in the tree may differ. `changes` is empty then.
    bool everything = false;
    std::vector<Change> changes;  ///< in the order of the latest change of each
  };

  /// Begins with no change pending. `onPending` is called with the first change after the construction and after each
  /// `take`. It runs inside the setter, where a new member is not filled yet: it marks or wakes, and must not take,
  /// change the tree, or throw. Throws std::bad_alloc.
  explicit TreeObserver(Ptr<Entity> root, std::function<void()> onPending = {},
                        ChangeStream::SourceOptions const& options = {});
  TreeObserver(TreeObserver&&) noexcept;
  TreeObserver& operator=(TreeObserver&&) noexcept;
  ~TreeObserver();

  /// Whether anything has changed since the last `take`.
  bool pending() const noexcept;

  /// The changes since the last call. Call it when the setter, `assignTree` or `Reader::feed` that made them has
  /// returned, from the program's loop. The tree may be changed while the batch is gone through; those changes are in
  /// the next one. Throws std::bad_alloc, and then nothing is lost.
  Batch take();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace Fwk
