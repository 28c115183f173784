#include <RouterPlatform/Fwk/Entity.h>

namespace Fwk {

NotifieeList& Entity::notifieeList() { return notifiees_; }

void Entity::hasNotificationActiveIs(bool active) { notificationActive_ = active; }

void Entity::zeroReferencesIs(bool zero) {
  if (zero) notifiees_.notifyZeroReferences(*this);
}

Entity::~Entity() = default;

void Entity::handleNameRestore(Name const&) {}

Name Entity::name() const { return Name(); }

void Entity::handleParent(Ptr<Entity>) {}

void Entity::handleBackup() {}

void Entity::handleRestore() {}

void Entity::onZeroReferences() noexcept {
  zeroReferencesIs(true);
  if (!releaseLastReference()) return;
  LiveCount& liveCount = *fwkType().liveCount;
  notifieeList().clear();
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
  parent_ = parent;
  parentAttr_ = parent ? attr : AttrId{0};
  handleParent(this->parent());
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

String Entity::fullName() const {
  Ptr<Entity> const holder = parent();
  if (!holder) return keyText();
  String path = holder->fullName();
  path += '/';
  path += parentAttrName();
  path += '[';
  path += keyText();
  path += ']';
  return path;
}

}  // namespace Fwk
