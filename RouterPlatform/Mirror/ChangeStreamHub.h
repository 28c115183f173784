#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/Notifiee.h>
#include <RouterPlatform/Mirror/ChangeStream.h>
#include <RouterPlatform/Mirror/ChangeStreamLog.h>
#include <RouterPlatform/Mirror/ChangeStreamSchema.h>

#include <unordered_map>
#include <vector>

namespace Fwk::ChangeStream::detail {

class Hub;

/// The source's observer of one entity, with the path to it. Outlives the entity while changes refer to it.
class Node final : public Notifiee {
 public:
  Node(Hub& hub, Entity& entity, Node* parent, AttributeRecord const* attr, U64 introduced)
      : hub_(hub), entity_(entity), parent_(parent), attr_(attr), introduced_(introduced) {}

  /// Call it only while registered: after that the entity may be gone.
  Entity& entity() const noexcept { return entity_; }
  Node* parent() const noexcept { return parent_.get(); }
  /// The parent's attribute that holds the entity; null for a root.
  AttributeRecord const* attr() const noexcept { return attr_; }

  /// Sequence of the change with which subscribers get the whole entity. Later changes of it are told one by one.
  U64 introduced() const noexcept { return introduced_; }
  void introducedIs(U64 sequence) noexcept { introduced_ = sequence; }

  /// Whether the entity is still in its tree, and subscribers at `sequence` have it.
  bool reachable(U64 sequence) const noexcept;

  void handleNotification(Notification const& notification) override;
  void handleZeroReferences(Entity& entity) override;

 private:
  Hub& hub_;
  Entity& entity_;
  Ptr<Node> parent_;
  AttributeRecord const* attr_;
  U64 introduced_;
};

/// A subscriber's place in the changes.
class Subscriber {
 public:
  U64 cursor = 0;        ///< changes up to here have been drained
  bool live = false;     ///< false: needs a snapshot first
  bool waiting = false;  ///< has drained everything: the next change calls `onPending`
  std::function<void()> onPending;
};

/// Shared by the writers of a source: the observers of all entities, and the changes that some writer has not drained.
class Hub {
 public:
  Hub(std::vector<Ptr<Entity>> roots, SourceOptions const& options);
  Hub(Hub const&) = delete;
  Hub& operator=(Hub const&) = delete;
  ~Hub();

  std::vector<Ptr<Entity>> const& roots() const noexcept { return roots_; }
  Schema const& schema() const noexcept { return schema_; }
  ChangeLog const& log() const noexcept { return log_; }
  U32 rootIndex(Node const& node) const noexcept;

  void enter(Subscriber& subscriber) { subscribers_.push_back(&subscriber); }
  void leave(Subscriber& subscriber) noexcept;
  /// The subscriber begins with a snapshot of the present trees.
  void startSnapshot(Subscriber& subscriber);
  /// A cursor has moved, or a subscriber is no longer live: forgets changes that no subscriber needs.
  void cursorMoved() noexcept;

  void changed(Node& node, Notification const& notification) noexcept;
  void forget(Node& node) noexcept;

 private:
  void record(Node& node, AttributeRecord const& attr, NotificationKey const& key);
  void recordMember(Node& node, AttributeRecord const& attr, NotificationKey const& key);
  void recordFollowing(Node& node, AttributeRecord const& attr);
  U64 note(Node& node, AttributeRecord const& attr, bool order);
  void observe(Entity& entity, Node* parent, AttributeRecord const* attr, U64 introduced);
  void observeMembers(Node& node, U64 introduced);
  void observeRoots();
  void unregisterAll() noexcept;
  void makeRoomFor(Octets key) noexcept;
  void lapseAll() noexcept;
  void wakeWaiting();

  std::vector<Ptr<Entity>> roots_;
  Schema schema_;
  std::unordered_map<Entity const*, Ptr<Node>> nodes_;
  std::vector<Subscriber*> subscribers_;
  ChangeLog log_;
  U64 sequence_ = 0;  ///< of the latest change
  /// Greatest cursor there has been, also of subscribers that have left: once a change of an entity has been entered,
  /// all later ones must be, or those entered would seem to come after them.
  U64 furthest_ = 0;
  bool anyLive_ = false;
  bool anyWaiting_ = false;
  bool incomplete_ = false;  ///< memory ran out: some entities are not observed
  OctetBuffer key_;          ///< of the change being recorded
};

}  // namespace Fwk::ChangeStream::detail
