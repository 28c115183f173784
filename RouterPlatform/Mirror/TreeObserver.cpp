#include <RouterPlatform/Mirror/ChangeStreamHub.h>
#include <RouterPlatform/Mirror/TreeObserver.h>

#include <utility>

namespace Fwk {

using namespace ChangeStream::detail;

/// The only subscriber of a hub of its own. It reads the log as a writer does, and needs no snapshot: the tree is here.
class TreeObserver::Impl : public Subscriber {
 public:
  Impl(Ptr<Entity> root, std::function<void()> call, ChangeStream::SourceOptions const& options)
      : hub_({std::move(root)}, options) {
    onPending = std::move(call);
    waiting = true;
    hub_.enter(*this);
    hub_.startSnapshot(*this);
  }
  ~Impl() { hub_.leave(*this); }

  bool pending() const noexcept { return !live || hub_.log().lastSequence() > cursor; }

  Batch take() {
    Batch batch;
    batch.everything = !live;
    if (live)
      for (U32 at = hub_.log().firstBehind(cursor); at != ChangeLog::none; at = hub_.log()[at].next)
        append(batch.changes, hub_.log()[at]);
    waiting = true;
    hub_.startSnapshot(*this);
    return batch;
  }

 private:
  void append(std::vector<Change>& changes, ChangeLog::Change const& change) const {
    Node const& node = static_cast<Node const&>(*change.node);
    if (!node.reachable(change.sequence)) return;
    // A value that was replaced, and removed or added as well, is in the log twice.
    bool const twice = !change.order && hub_.log().find({&node, change.place, true, change.key}) != ChangeLog::none;
    if (!twice)
      changes.push_back({Ptr<Entity>(&node.entity()), static_cast<AttrId>(firstOwnAttr + change.place), change.key});
  }

  Hub hub_;
};

TreeObserver::TreeObserver(Ptr<Entity> root, std::function<void()> onPending,
                           ChangeStream::SourceOptions const& options)
    : impl_(std::make_unique<Impl>(std::move(root), std::move(onPending), options)) {}
TreeObserver::TreeObserver(TreeObserver&&) noexcept = default;
TreeObserver& TreeObserver::operator=(TreeObserver&&) noexcept = default;
TreeObserver::~TreeObserver() = default;

bool TreeObserver::pending() const noexcept { return impl_->pending(); }
TreeObserver::Batch TreeObserver::take() { return impl_->take(); }

}  // namespace Fwk
