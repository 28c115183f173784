#include <RouterPlatform/Fwk/Notifiee.h>

namespace Fwk {

Notifiee::~Notifiee() { unregister(); }

void Notifiee::handleZeroReferences(Entity&) {}

void Notifiee::unregister() noexcept {
  if (list_) list_->remove(*this);
}

void Notifiee::onZeroReferences() noexcept {
  if (!releaseLastReference()) return;
  unregister();  // the entity may change during the destructor and must not call it then
  delete this;
}

// g++ 12 warns of the list's pointer to a walk on the stack: it does not see that the walk leaves the list at its end.
#pragma GCC diagnostic push
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif

/// A notification in progress: the next observer, and the last one that it reaches.
struct NotifieeList::Walk {
  explicit Walk(NotifieeList& walked) : list(walked), next(walked.first_), last(walked.last_), outer(walked.walks_) {
    list.walks_ = this;
  }
  ~Walk() { list.walks_ = outer; }

  Notifiee* take() {
    Notifiee* const current = next;
    if (current) next = current == last ? nullptr : current->next_;
    return current;
  }

  void forget(Notifiee const& gone) {
    if (next == &gone) next = next == last ? nullptr : gone.next_;
    if (last == &gone) last = gone.previous_;
  }

  NotifieeList& list;
  Notifiee* next;
  Notifiee* last;
  Walk* outer;
};

void NotifieeList::add(Notifiee& notifiee) noexcept {
  notifiee.unregister();
  notifiee.list_ = this;
  notifiee.previous_ = last_;
  notifiee.next_ = nullptr;
  (last_ ? last_->next_ : first_) = &notifiee;
  last_ = &notifiee;
}

void NotifieeList::remove(Notifiee& notifiee) noexcept {
  if (notifiee.list_ != this) return;
  for (Walk* walk = walks_; walk; walk = walk->outer) walk->forget(notifiee);
  (notifiee.previous_ ? notifiee.previous_->next_ : first_) = notifiee.next_;
  (notifiee.next_ ? notifiee.next_->previous_ : last_) = notifiee.previous_;
  notifiee.list_ = nullptr;
  notifiee.previous_ = notifiee.next_ = nullptr;
}

void NotifieeList::clear() noexcept {
  while (first_) remove(*first_);
}

template <class Call>
void NotifieeList::forEachActive(Call call) {
  Walk walk(*this);
  while (Notifiee* const next = walk.take()) {
    if (!next->hasNotificationActive()) continue;
    Ptr<Notifiee> const alive(next);
    call(*next);
  }
}

void NotifieeList::notify(Notification const& notification) {
  forEachActive([&](Notifiee& notifiee) { notifiee.handleNotification(notification); });
}

void NotifieeList::notifyZeroReferences(Entity& entity) {
  forEachActive([&](Notifiee& notifiee) { notifiee.handleZeroReferences(entity); });
}

#pragma GCC diagnostic pop

}  // namespace Fwk
