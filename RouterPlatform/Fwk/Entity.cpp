#include <RouterPlatform/Base/Steps.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Trace/Assert.h>

namespace Fwk {

NotifieeList& Entity::notifieeList() { return notifiees_; }

void Entity::hasNotificationActiveIs(bool active) { notificationActive_ = active; }

void Entity::zeroReferencesIs(bool zero) {
  if (zero) notifiees_.notifyZeroReferences(*this);
}

Entity::~Entity() {
  while (firstPlaced_) firstPlaced_->loseParent();
  leavePlace();
}

void Entity::handleNameRestore(Name const&) {}

Name Entity::name() const { return Name(); }

void Entity::handleParent(Ptr<Entity>) {}

void Entity::handleBackup() {}

void Entity::handleRestore() {}

void Entity::onZeroReferences() noexcept {
  zeroReferencesIs(true);
  if (!releaseLastReference()) return;
  if (!made_) return;  // whoever made it ends it
  LiveCount& liveCount = *fwkType().liveCount;
  notifieeList().clear();
  leavePlace();  // the parent may end while this does, and must not call it
  parent_ = nullptr;
  delete this;
  liveCount.drop();
}

void Entity::notifyObservers(AttrId attr, NotificationKey const& key) {
  Ptr<Entity> const alive(this);
  notifiees_.notify(Notification{*this, attr, key});
}

Ptr<Entity> Entity::parent() const noexcept {
  // A parent that is ending has no references and may not get one again.
  return parent_ && parent_->references() > 0 ? Ptr<Entity>(parent_) : nullptr;
}

void Entity::parentIs(Entity* parent, AttrId attr) {
  bool const heldByAnAttribute = parent_ && !placed_;
  ASSERT_AT(!heldByAnAttribute, Trace::Location::here());
  if (parent != parent_) {
    leavePlace();
    if (parent) {
      nextPlaced_ = std::exchange(parent->firstPlaced_, this);
      placed_ = true;
    }
  }
  linkIs(parent, attr);
}

void Entity::linkIs(Entity* parent, AttrId attr) {
  bool const changed = parent != std::exchange(parent_, parent);
  parentAttr_ = parent ? attr : AttrId{0};
  if (changed) handleParent(this->parent());
}

void Entity::loseParent() noexcept {
  Ptr<Entity> const alive(this);
  leavePlace();
  Steps().run([this] { linkIs(nullptr, 0); });
}

void Entity::leavePlace() noexcept {
  if (!placed_) return;
  Entity** link = &parent_->firstPlaced_;
  while (*link != this) link = &(*link)->nextPlaced_;
  *link = std::exchange(nextPlaced_, nullptr);
  placed_ = false;
}

String Entity::parentAttrName() const {
  Ptr<Entity> const holder = parent();
  AttributeRecord const* const attr = holder ? holder->fwkType().attribute(parentAttr_) : nullptr;
  return attr ? String(attr->name) : String();
}

String Entity::keyText() const {
  if (AttributeRecord const* const key = fwkType().keyAttribute()) {
    String text;
    key->append(this, text);
    return text;
  }
  return name().toString();
}

namespace {

void appendKey(String& path, String const& key) {
  path += '[';
  for (char const c : key) {
    if (c == ']' || c == '\\') path += '\\';
    path += c;
  }
  path += ']';
}

}  // namespace

String Entity::fullName() const {
  Ptr<Entity> const holder = parent();
  if (!holder) return keyText();
  String path = holder->fullName();
  path += '/';
  path += parentAttrName();
  appendKey(path, keyText());
  return path;
}

}  // namespace Fwk
